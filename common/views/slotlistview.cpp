#include "common/views/slotlistview.h"

#include "common/ui/colors.h"
#include "common/ui/iconcache.h"

#include <QKeyEvent>
#include <QPainter>

namespace vantrel {

using colors::getColor;

SlotListView::SlotListView(QWidget* parent)
    : QListView(parent)
{
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(EditKeyPressed);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
}

void SlotListView::setEmpty(const QString& icon, const QString& text)
{
    if (m_emptyText == text && m_emptyIcon == icon)
        return;
    m_emptyIcon = icon;
    m_emptyText = text;
    viewport()->update();
}

void SlotListView::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (m_emptyText.isEmpty() || (model() && model()->rowCount(rootIndex()) > 0))
        return;
    QPainter painter(viewport());
    const QFontMetrics metrics(font());
    const int side = metrics.height() * 2;
    QRect box = viewport()->rect().adjusted(16, 16, -16, -16);
    const QRect text = metrics.boundingRect(box, Qt::AlignHCenter | Qt::TextWordWrap, m_emptyText);
    const int top = std::max(box.top(), box.center().y() - (side + 12 + text.height()) / 2);
    painter.drawPixmap(box.center().x() - side / 2, top,
                       IconCache::pixmap(m_emptyIcon, getColor(colors::Zt_white_30), QSize(side, side),
                                         devicePixelRatioF()));
    box.setTop(top + side + 12);
    painter.setPen(getColor(colors::Zt_white_70));
    painter.drawText(box, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, m_emptyText);
}

void SlotListView::keyboardSearch(const QString& text)
{
    Q_EMIT textTyped(text);
}

void SlotListView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::NoModifier) {
        Q_EMIT deleteRequested();
        event->accept();
        return;
    }
    QListView::keyPressEvent(event);
}

void SlotListView::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    // The one height that all rows share is the text's.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        scheduleDelayedItemsLayout();
}

} // namespace vantrel
