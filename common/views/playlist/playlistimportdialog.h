#pragma once

#include "common/media/models/playlist/playlistcsv.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QFile>
#include <QTimer>

class QPlainTextEdit;

namespace vantrel {

/// Shows what of a file becomes a playlist and names every line that cannot be taken, before anything is
/// changed. Reads in slices between which the window lives on. Deletes itself once it is closed.
class PlaylistImportDialog : public ZTDialog
{
    Q_OBJECT

public:
    /// list: the name of the playlist that gets the entries; count: those that it loses. The library must
    /// outlive the dialog.
    PlaylistImportDialog(const QString& file, const QString& list, int count, const MediaLibrary& library,
                         QWidget* parent = nullptr);

    /// Is said behind what an import would do.
    void setWarning(const QString& text) { m_warning = text; }

Q_SIGNALS:
    void importConfirmed(const vantrel::ImportPlaylistCommand::Entries& entries);

private:
    void readSome();
    void showResult();
    void refuse(const QString& reason);

    QString m_warning;
    QString m_list;
    int m_count;
    QFile m_file;
    PlaylistCsvImport m_import;
    QTimer m_reading;
    QPlainTextEdit* m_faults;
};

} // namespace vantrel
