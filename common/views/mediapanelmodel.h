#pragma once

#include "common/media/models/sortedlibrarymodel.h"

#include <QString>
#include <QTimer>

namespace vantrel {

struct SlotPlace;

/// The slots of the media panel: those that hold media, and of them what the search text asks for. Without
/// one, what is free in front of the last slot stands there too, each place as one row, which cannot be
/// selected.
class MediaPanelModel : public SortedLibraryModel
{
    Q_OBJECT

public:
    enum Roles {
        PlaceRole = 300,     // "5 – 20 free"; empty for a slot with media
        PlaceLastRole = 301, // the last number of it
    };

    explicit MediaPanelModel(MediaLibraryModel* model, QObject* parent = nullptr);

    const QString& searchText() const { return m_searchText; }
    /// A part of a name or of a file's name, case ignored, or the beginning of a slot's number.
    void setSearchText(const QString& text);

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    SlotPlace placeAt(const QModelIndex& index) const;
    void followPlaces(const QModelIndex& parent, int first, int last);

    MediaLibraryModel* m_library;
    QString m_searchText;
    QTimer m_look; // for places that have come or gone
};

} // namespace vantrel
