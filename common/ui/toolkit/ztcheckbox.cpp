#include "common/ui/toolkit/ztcheckbox.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace vantrel {

ZTCheckBox::ZTCheckBox(QWidget* parent)
    : ZTCheckBox(QString(), parent)
{
}

ZTCheckBox::ZTCheckBox(const QString& text, QWidget* parent)
    : QCheckBox(text, parent)
{
}

void ZTCheckBox::setObjectNames(const QString& base)
{
    setObjectName(base);
}

void ZTCheckBox::paintEvent(QPaintEvent* event)
{
    QCheckBox::paintEvent(event);
    if (!isChecked())
        return;
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect box = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    painter.drawPixmap(box.topLeft(),
                       IconCache::pixmap(QStringLiteral("check"), colors::getColor(colors::Slate_grey_900),
                                         box.size(), devicePixelRatioF()));
}

} // namespace vantrel
