#include "common/ui/toolkit/placeholderview.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QVBoxLayout>

namespace vantrel {

PlaceholderView::PlaceholderView(const QString& icon, const QString& text, QWidget* parent)
    : ZTFrame(parent)
{
    setProperty("class", QStringLiteral("panel"));
    auto* picture = new QLabel(this);
    followFontSize(picture, [picture, icon](FontSize size) {
        const int extent = scaled(56, size);
        picture->setPixmap(IconCache::pixmap(icon, colors::getColor(colors::Zt_white_50),
                                             QSize(extent, extent), picture->devicePixelRatioF()));
    });
    auto* label = new ZTLabel(text, this);
    label->setStyleClass(QStringLiteral("dim"));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(16);
    layout->addStretch(1);
    layout->addWidget(picture, 0, Qt::AlignHCenter);
    layout->addWidget(label);
    layout->addStretch(1);
}

} // namespace vantrel
