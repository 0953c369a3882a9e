#pragma once

#include <QObject>

class QFileDialog;

namespace vantrel {

class PlaylistEditorModel;

/// A playlist from and to files: imported from a table after a look at what it holds, exported to one, and
/// printed as a cue sheet. A file is read beside the main thread. Owned by the editor; main thread.
class PlaylistFiles : public QObject
{
    Q_OBJECT

public:
    /// window: over which the dialogs open.
    PlaylistFiles(PlaylistEditorModel* model, QWidget* window);

    /// Asks for a file; list: the playlist's name.
    void importTable(const QString& list);
    void exportTable(const QString& list);
    void printSheet(const QString& list);
    /// Shows what the file holds and imports it when the operator agrees.
    void openTable(const QString& fileName, const QString& list);

private:
    QFileDialog* ask(const QString& title, const QString& filter, const QString& proposal);
    void tellWritten(bool written, const QString& fileName) const;

    PlaylistEditorModel* m_model;
    QWidget* m_window;
};

} // namespace vantrel
