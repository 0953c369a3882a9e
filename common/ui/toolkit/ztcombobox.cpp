#include "common/ui/toolkit/ztcombobox.h"

#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"

#include <QAbstractItemView>
#include <QStylePainter>
#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace vantrel {

ZTComboBox::ZTComboBox(QWidget* parent)
    : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    // The default delegate of the popup draws menu entries of the platform's style, past the style sheet.
    setItemDelegate(new QStyledItemDelegate(this));
}

void ZTComboBox::setObjectNames(const QString& base)
{
    setObjectName(base);
}

void ZTComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ZTComboBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    if (currentIndex() < 0)
        option.currentText = placeholderText();
    // The style would cut a long text off in the middle of a letter.
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideRight, field.width() - 2);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);

    const int side = qMin(height() / 2, 18);
    const QColor colour = colors::getColor(isEnabled() ? colors::Zt_white_70 : colors::Zt_white_50);
    painter.drawPixmap(
        width() - side - 8, (height() - side) / 2,
        IconCache::pixmap(QStringLiteral("chevron_down"), colour, QSize(side, side), devicePixelRatioF()));
}

} // namespace vantrel
