#pragma once

#include "common/ui/toolkit/ztdialog.h"

class QTableView;
class QUndoStack;

namespace vantrel {

class ListClock;
class MediaLibrary;
class PlaylistLibraryModel;

/// All playlists side by side, with what they hold and how long they take, and which is on air: to choose
/// one, to give it another number, or to remove it. Deletes itself when it is closed; main thread.
class PlaylistsDialog : public ZTDialog
{
    Q_OBJECT

public:
    /// What it shows and works with; all must outlive it. The clock is program's.
    struct Sources
    {
        PlaylistLibraryModel* playlists;
        const MediaLibrary* library;
        QUndoStack* stack;
        const ListClock* clock;
    };

    PlaylistsDialog(const Sources& sources, uint shown, QWidget* parent);

    /// Without a server to send edits to, lists are only looked at.
    void setEditable(bool editable);

Q_SIGNALS:
    /// The operator wants to see it.
    void chosen(uint playlist);
    void removalWanted(uint playlist);

private:
    void buildTable();
    uint current() const;
    void refresh();
    void askForNumber();

    Sources m_sources;
    QTableView* m_table;
    PushButton* m_number;
    PushButton* m_remove;
    bool m_isEditable = true;
};

} // namespace vantrel
