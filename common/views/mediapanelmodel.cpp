#include "common/views/mediapanelmodel.h"

#include "common/media/models/medialibrarymodel.h"
#include "common/views/slotplace.h"
#include "tarn/media/medialibrary.h"

#include <QUrl>

namespace vantrel {

MediaPanelModel::MediaPanelModel(MediaLibraryModel* model, QObject* parent)
    : SortedLibraryModel(model, parent)
    , m_library(model)
{
    m_look.setSingleShot(true);
    connect(&m_look, &QTimer::timeout, this, [this] { invalidateFilter(); });
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last) {
                followPlaces(first.parent(), first.row(), last.row());
            });
    connect(model, &QAbstractItemModel::rowsInserted, this, &MediaPanelModel::followPlaces);
}

void MediaPanelModel::setSearchText(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (m_searchText == trimmed)
        return;
    m_searchText = trimmed;
    invalidate(); // all at once: told row by row, a few matches among thousands take seconds
}

/// A slot that comes or goes makes the places beside it other ones, of which the library says nothing.
void MediaPanelModel::followPlaces(const QModelIndex& parent, int first, int last)
{
    if (!parent.isValid() || !m_searchText.isEmpty() || m_look.isActive())
        return;
    const int collection = MediaLibraryModel::getCollectionIndexNumber(parent);
    for (const int row : {std::max(m_library->slotBefore(collection, first), 0) + 1, last + 1}) {
        const QModelIndex source = m_library->index(row, MediaLibraryModel::NameColumn, parent);
        if (!source.isValid())
            continue;
        const QModelIndex shown = mapFromSource(source);
        if (shown.isValid() != filterAcceptsRow(row, parent))
            m_look.start(0); // once for all that comes with it
        else if (shown.isValid() && placeAt(shown).isThere())
            Q_EMIT dataChanged(shown, shown);
    }
}

SlotPlace MediaPanelModel::placeAt(const QModelIndex& index) const
{
    const QModelIndex collection = mapToSource(index.parent());
    if (!collection.isValid())
        return {};
    return SlotPlace::from(*m_library, MediaLibraryModel::getCollectionIndexNumber(collection),
                           mapToSource(index).row());
}

QVariant MediaPanelModel::data(const QModelIndex& index, int role) const
{
    const bool isOfPlaces = role == PlaceRole || role == PlaceLastRole || role == Qt::AccessibleTextRole ||
                            role == Qt::ToolTipRole ||
                            (role == Qt::DisplayRole && index.column() == MediaLibraryModel::NameColumn);
    const SlotPlace place = isOfPlaces && index.isValid() ? placeAt(index) : SlotPlace();
    if (!place.isThere())
        return SortedLibraryModel::data(index, role);
    if (role == PlaceLastRole)
        return place.last;
    if (role == Qt::ToolTipRole)
        return SlotPlace::hint();
    return role == Qt::AccessibleTextRole ? place.spoken() : place.text();
}

Qt::ItemFlags MediaPanelModel::flags(const QModelIndex& index) const
{
    return index.isValid() && placeAt(index).isThere() ? Qt::ItemFlags(Qt::ItemIsEnabled)
                                                       : SortedLibraryModel::flags(index);
}

bool MediaPanelModel::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    if (!parent.isValid())
        return SortedLibraryModel::filterAcceptsRow(row, parent);
    if (row < MediaCollection::slotIndexMin)
        return false;
    const int collection = MediaLibraryModel::getCollectionIndexNumber(parent);
    if (!m_library->holdsMedia({collection, row})) {
        const int next = m_library->nextSlot(collection, row);
        const bool isFirst =
            row == MediaCollection::slotIndexMin || m_library->slotBefore(collection, row) == row - 1;
        return m_searchText.isEmpty() && (next == row || (next > row && isFirst));
    }
    if (m_searchText.isEmpty())
        return true;
    const QModelIndex index = m_library->index(row, 0, parent);
    return isSlotFound(m_searchText, row, index.data(MediaLibraryModel::NameRole).toString(),
                       index.data(MediaLibraryModel::UrlRole).toUrl());
}

} // namespace vantrel
