#include "common/views/playlist/playliststable.h"

#include "common/media/address/showntext.h"
#include "common/session/settings/timeutils.h"
#include "common/ui/style/colors.h"
#include "common/views/playlist/listclock.h"
#include "util/clocktime.h"

namespace vantrel {

PlaylistsTable::PlaylistsTable(PlaylistLibraryModel* library, const ListClock* clock, QObject* parent)
    : QIdentityProxyModel(parent)
    , m_library(library)
    , m_clock(clock)
{
    setSourceModel(library);
    connect(clock, &ListClock::courseChanged, this, [this] {
        if (rowCount() > 0)
            Q_EMIT dataChanged(index(0, Column::RowColumn), index(rowCount() - 1, Column::RowColumn));
    });
}

bool PlaylistsTable::isOnAir(int row) const
{
    return m_clock->playlist() > 0 && m_clock->playlist() == m_library->playlistNumberAt(row);
}

QString PlaylistsTable::text(const QModelIndex& index) const
{
    const auto value = [&index, this](int column) {
        return m_library->index(index.row(), column).data(Qt::EditRole);
    };
    switch (index.column()) {
    case Column::RowColumn:
        return isOnAir(index.row()) ? QStringLiteral("PGM") : QString();
    case Column::DurationColumn: {
        const double seconds = value(Column::DurationColumn).toDouble();
        const QString time = TimeUtils::formatClockTimeShort(clocktime::fromSeconds(seconds));
        return value(Column::InfiniteColumn).toBool() ? tr("%1, then without end").arg(time) : time;
    }
    default:
        return value(index.column()).toString();
    }
}

QVariant PlaylistsTable::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const bool isText = index.column() == Column::PlainNameColumn || index.column() == Column::RowColumn;
    switch (role) {
    case Qt::DisplayRole:
        return shownText(text(index));
    case Qt::EditRole:
        return text(index);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignVCenter | (isText ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::ForegroundRole:
        return index.column() == Column::RowColumn ? colors::getColor(colors::Red_error) : QVariant();
    case Qt::AccessibleTextRole:
        return shownText(isOnAir(index.row()) ? tr("%1, on program").arg(text(index)) : text(index));
    default:
        return {};
    }
}

bool PlaylistsTable::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    const uint playlist = m_library->playlistNumberAt(index.row());
    const QString typed = value.toString().trimmed();
    if (typed.isEmpty() || typed == text(index))
        return false;
    if (index.column() == Column::PlainNameColumn)
        Q_EMIT renameRequested(playlist, typed);
    else
        Q_EMIT numberRequested(playlist, typed);
    return true;
}

QVariant PlaylistsTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter |
                                   (section == Column::PlainNameColumn ? Qt::AlignLeft : Qt::AlignRight));
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Column::NumberColumn:
        return QStringLiteral("#");
    case Column::PlainNameColumn:
        return tr("Name");
    case Column::DurationColumn:
        return tr("Duration");
    case Column::CountColumn:
        return tr("Entries");
    default:
        return {};
    }
}

Qt::ItemFlags PlaylistsTable::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const bool isTyped = index.column() == Column::PlainNameColumn || index.column() == Column::NumberColumn;
    return m_isEditable && isTyped ? flags | Qt::ItemIsEditable : flags;
}

} // namespace vantrel
