#include "common/ui/shell/notificationlist.h"

#include "common/notification/notificationmodel.h"
#include "common/notification/sortednotificationmodel.h"
#include "common/ui/shell/notificationstyle.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/iconcache.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace vantrel {

using colors::getColor;

namespace {

constexpr int margin = 8;
constexpr int gap = 2; // between title and details
constexpr int wrapping = Qt::TextWordWrap | Qt::TextWrapAnywhere;

Notification::MessageType typeOf(const QModelIndex& index)
{
    return index.data(NotificationModel::TypeRole).value<Notification::MessageType>();
}

QString titleOf(const QModelIndex& index)
{
    return plainTitle(index.data(NotificationModel::TitleRole).toString(),
                      index.data(NotificationModel::RepeatsRole).toInt());
}

QString detailsOf(const QModelIndex& index)
{
    return plainText(index.data(NotificationModel::DetailsRole).toString());
}

QString timeOf(const QModelIndex& index)
{
    return index.data(NotificationModel::DateTimeRole).toDateTime().toString(QStringLiteral("HH:mm:ss"));
}

/// With what a screen reader says of a row, and what is copied of it.
class ShownNotifications : public SortedNotificationModel
{
public:
    using SortedNotificationModel::SortedNotificationModel;

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
            return SortedNotificationModel::data(index, role);
        return NotificationList::tr("%1, %2: %3\n%4")
            .arg(timeOf(index), notificationName(typeOf(index)), titleOf(index), detailsOf(index))
            .trimmed();
    }
};

class NotificationDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const Layout place = layoutOf(option, index);
        const bool isDim = index.data(NotificationModel::AcceptedRole).toBool();
        painter->save();
        if (option.state & (QStyle::State_Selected | QStyle::State_MouseOver)) {
            painter->setRenderHint(QPainter::Antialiasing);
            painter->setPen(Qt::NoPen);
            painter->setBrush(getColor(option.state.testFlag(QStyle::State_Selected) ? colors::Zt_orange_20
                                                                                     : colors::Zt_white_4));
            painter->drawRoundedRect(option.rect.adjusted(2, 1, -2, -1), 4, 4);
        }
        const auto type = typeOf(index);
        painter->setOpacity(isDim ? 0.6 : 1.0);
        painter->drawPixmap(place.icon.topLeft(),
                            IconCache::pixmap(notificationIcon(type), notificationColor(type),
                                              place.icon.size(), painter->device()->devicePixelRatioF()));
        painter->setOpacity(1.0);
        painter->setFont(option.font);
        painter->setPen(getColor(colors::Zt_white_70));
        painter->drawText(place.time, Qt::AlignLeft | Qt::AlignTop, timeOf(index));
        painter->setFont(titleFont(option.font));
        painter->setPen(getColor(isDim ? colors::Zt_white_70 : colors::White));
        painter->drawText(place.title, wrapping, place.titleText);
        painter->setFont(option.font);
        painter->setPen(getColor(isDim ? colors::Zt_white_70 : colors::Zt_white_80));
        painter->drawText(place.details, wrapping, place.detailsText);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const Layout place = layoutOf(option, index);
        const int bottom = place.details.isEmpty() ? place.title.bottom() : place.details.bottom();
        return {100, bottom - option.rect.top() + margin};
    }

private:
    struct Layout
    {
        QRect icon;
        QRect time;
        QRect title;
        QRect details;
        QString titleText;
        QString detailsText;
    };

    static QFont titleFont(QFont font)
    {
        font.setWeight(QFont::DemiBold);
        return font;
    }

    static Layout layoutOf(const QStyleOptionViewItem& option, const QModelIndex& index)
    {
        const auto* view = qobject_cast<const QListView*>(option.widget);
        const int width = view ? view->viewport()->width() : option.rect.width();
        const QFontMetrics metrics(option.font);
        Layout place;
        const int line = metrics.height();
        place.icon = QRect(option.rect.left() + margin, option.rect.top() + margin, line, line);
        place.time = QRect(place.icon.right() + margin, place.icon.top(),
                           metrics.horizontalAdvance(QStringLiteral("00:00:00 ")), line);
        const int left = place.time.right() + margin;
        const QRect room(left, place.icon.top(), std::max(40, width - left - 2 * margin), 100000);
        const auto wrapped = [](const QFontMetrics& font, const QRect& box, const QString& text) {
            return text.isEmpty() ? QRect(box.topLeft(), QSize(0, 0))
                                  : font.boundingRect(box, wrapping, text);
        };
        place.titleText = titleOf(index);
        place.title = wrapped(QFontMetrics(titleFont(option.font)), room, place.titleText);
        place.title.setWidth(room.width());
        place.detailsText = detailsOf(index);
        place.details = wrapped(metrics, room.translated(0, place.title.height() + gap), place.detailsText);
        place.details.setWidth(place.details.isEmpty() ? 0 : room.width());
        return place;
    }
};

} // namespace

NotificationList::NotificationList(NotificationManager* manager, QWidget* parent)
    : QListView(parent)
{
    setObjectName(QStringLiteral("NotificationDialog-list"));
    setAccessibleName(tr("Notifications"));
    auto* shown = new ShownNotifications(this);
    shown->setManager(manager);
    m_shown = shown;
    setModel(shown);
    setItemDelegate(new NotificationDelegate(this));
    setLayoutMode(Batched); // thousands may have come
    setResizeMode(Adjust);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(NoEditTriggers);
    for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(shown, signal, this, &NotificationList::changed);
    connect(shown, &QAbstractItemModel::dataChanged, this, &NotificationList::changed);
}

bool NotificationList::hasWaiting() const
{
    for (int row = 0; row < m_shown->rowCount(); ++row) {
        if (!m_shown->index(row, 0).data(NotificationModel::AcceptedRole).toBool())
            return true;
    }
    return false;
}

void NotificationList::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    if (m_shown->rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(getColor(colors::Zt_white_70));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap,
                     tr("Nothing has been reported since the start."));
}

void NotificationList::resizeEvent(QResizeEvent* event)
{
    QListView::resizeEvent(event);
    scheduleDelayedItemsLayout(); // other widths, other heights
}

void NotificationList::keyPressEvent(QKeyEvent* event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && currentIndex().isValid())
        m_shown->setData(currentIndex(), true, NotificationModel::AcceptedRole);
    else
        QListView::keyPressEvent(event);
}

} // namespace vantrel
