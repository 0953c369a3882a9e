#pragma once

#include <QObject>

class QFileDialog;
class QUndoStack;

namespace vantrel {

class MediaLibrary;
class PlaylistEditorModel;

/// A playlist from and to files: imported from a table after a look at what it holds, exported to one, and
/// printed as a cue sheet. Each works on the list it was called for, whatever is shown by the time that a
/// file is chosen. Owned by the editor; main thread.
class PlaylistFiles : public QObject
{
    Q_OBJECT

public:
    /// A playlist as it was when the operator chose to do something with it.
    struct List
    {
        uint number;
        QString name;
        bool isNew;      // it comes to be by what is imported
        QString warning; // what there is to say before it is replaced
    };

    /// window: over which the dialogs open.
    PlaylistFiles(PlaylistEditorModel* model, QUndoStack* stack, QWidget* window);

    /// Asks for a file.
    void importTable(const List& list);
    void exportTable(const List& list);
    void printSheet(const List& list);
    /// Shows what the file holds and imports it when the operator agrees.
    void openTable(const QString& fileName, const List& list);

private:
    QFileDialog* ask(const QString& title, const QString& filter, const QString& proposal);
    const MediaLibrary& library() const;
    bool isStillThere(const List& list, const QString& title) const;
    void writeTable(const List& list, const QString& fileName);
    void tellWritten(const QString& fault, const QString& fileName) const;

    PlaylistEditorModel* m_model;
    QUndoStack* m_stack;
    QWidget* m_window;
};

} // namespace vantrel
