#include "common/outputs/outputcolumn.h"

#include "common/ui/style/dynamicstyle.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QMap>
#include <QScrollArea>

namespace vantrel {

int outputColumnWidth(FontSize size)
{
    static const QMap<FontSize, int> widths{
        {FontSize::Small, 270}, {FontSize::Medium, 360}, {FontSize::Large, 540}, {FontSize::Huge, 720}};
    return widths.value(size);
}

ZTLabel* makeColumnTitle(const QString& text, QWidget* parent)
{
    auto* title = new ZTLabel(text, parent);
    title->setStyleClass(QStringLiteral("title"));
    setDynamicStyle(title, "title", true);
    title->setMinimumHeight(IconButton().sizeHint().height()); // one has a menu beside it
    return title;
}

QScrollArea* makeScrollArea(QWidget* content, QWidget* parent)
{
    auto* area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(content);
    return area;
}

} // namespace vantrel
