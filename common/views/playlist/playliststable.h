#pragma once

#include "common/media/models/playlist/playlistlibrarymodel.h"

#include <QIdentityProxyModel>

namespace vantrel {

class ListClock;

/// All playlists as people read them: number, name, duration, entries, and which one is on program. What is
/// typed into it is asked for by signals. Belongs to a view; main thread.
class PlaylistsTable : public QIdentityProxyModel
{
    Q_OBJECT

public:
    using Column = PlaylistLibraryModel::Column;

    /// Both outlive this.
    PlaylistsTable(PlaylistLibraryModel* library, const ListClock* clock, QObject* parent);

    void setEditable(bool editable) { m_isEditable = editable; }
    PlaylistLibraryModel* library() const { return m_library; }

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    void renameRequested(uint playlist, QString name);
    /// to: as it was typed.
    void numberRequested(uint playlist, QString to);

private:
    QString text(const QModelIndex& index) const;
    bool isOnAir(int row) const;

    PlaylistLibraryModel* m_library;
    const ListClock* m_clock;
    bool m_isEditable = true;
};

} // namespace vantrel
