#pragma once

#include <QObject>
#include <QPointer>

class QUndoStack;

namespace vantrel {

class ListClock;
class PlaylistEditorModel;
class PlaylistLibraryModel;
class PlaylistsDialog;

/// Opens the page of all playlists and does what is asked for on it, each by one step of the undo stack. A
/// list that is on program keeps its number. Owned by the editor; main thread.
class AllPlaylists : public QObject
{
    Q_OBJECT

public:
    /// What the page shows and acts on; all of it outlives this.
    struct Sources
    {
        PlaylistEditorModel* model; // of the list that is looked at
        PlaylistLibraryModel* library;
        const ListClock* clock; // program's
        QUndoStack* stack;
    };
    /// window: over which the page opens.
    AllPlaylists(const Sources& sources, QWidget* window);

    void show();
    /// Without a server to send edits to the page can be read only.
    void setEditable(bool editable);

    void rename(uint playlist, const QString& name);
    /// to: as it was typed.
    void renumber(uint playlist, const QString& to);
    void swap(uint playlist, uint other);

Q_SIGNALS:
    void copyWanted(uint playlist);
    void removalWanted(uint playlist);

private:
    bool mayMove(uint playlist) const;
    QString nameOf(uint playlist) const;
    void follow(uint from, uint to);
    void refuse(const QString& why) const;

    Sources m_sources;
    QWidget* m_window;
    QPointer<PlaylistsDialog> m_dialog;
    uint m_movedTo = 0; // by the last edit of a number
    bool m_isEditable = true;
};

} // namespace vantrel
