#pragma once

#include "common/ui/toolkit/ztframe.h"
#include "tarn/media/channelenums.h"
#include "tarn/media/entryaddress.h"

#include <QElapsedTimer>
#include <QModelIndex>
#include <QSet>
#include <QTimer>

class QItemSelectionModel;

namespace vantrel {

class ListClock;
class PlaylistDelegate;
class PlaylistHeader;
class PlaylistModel;
class PlaylistView;

/// A playlist's table: its view, the titles of its columns and what paints its cells. It shares the width out
/// among the columns, and can follow what plays. Owned by the editor; main thread.
class PlaylistContainer : public ZTFrame
{
    Q_OBJECT

public:
    PlaylistContainer(const QSet<PlaybackViewMode>& modes, bool editable, QWidget* parent = nullptr);

    PlaylistView* list() const { return m_view; }
    /// The model outlives this, or is taken away by a null one.
    void setModel(PlaylistModel* model);
    void setSelectionModel(QItemSelectionModel* selection);
    /// Marks what is on air and next by this clock, which outlives this.
    void setClock(const ListClock* clock);
    /// Keeps the entry on air and the next one in view, as long as the operator does not look elsewhere.
    void followClock();
    /// Names this and, with the suffix "-playlist", the view.
    void setObjectNames(const QString& base) override;

public Q_SLOTS:
    void updateHeaders();
    /// Back to the order of the list.
    void sortByNumber();

Q_SIGNALS:
    void entryDoubleClick(QModelIndex index);
    void entryDragStarted(QModelIndex index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void arrangeColumns();
    QRect timesArea() const;
    void onBrowsed();
    void showPlaying();

    QSet<PlaybackViewMode> m_modes;
    bool m_isEditable;
    PlaylistView* m_view;
    PlaylistHeader* m_header;
    PlaylistDelegate* m_delegate;
    PlaylistModel* m_model = nullptr;
    const ListClock* m_clock = nullptr;
    bool m_follows = false;
    QTimer m_headers; // so that many changes make one measure
    QTimer m_scrollRest;
    QTimer m_browseRest;
    EntryAddress m_shown; // the entry that was on air when the list last moved by itself
};

} // namespace vantrel
