#pragma once

#include "common/ui/toolkit/ztdialog.h"
#include "common/views/playlist/playlistcsv.h"

class QPlainTextEdit;

namespace vantrel {

/// Shows what of a file becomes a playlist and names every line that cannot be taken, before anything is
/// changed. Deletes itself once it is closed.
class PlaylistImportDialog : public ZTDialog
{
    Q_OBJECT

public:
    /// list: the name of the playlist that gets the entries; count: those that it loses.
    PlaylistImportDialog(const QString& file, const QString& list, int count, QWidget* parent = nullptr);

    /// What was read. Until then the dialog says that it reads.
    void setReading(const PlaylistCsv::Reading& reading);
    /// The file could not be read at all; why, as a sentence.
    void setFault(const QString& reason);

Q_SIGNALS:
    void importConfirmed(const vantrel::ImportPlaylistCommand::Entries& entries);

private:
    QString m_list;
    int m_count;
    PlaylistCsv::Reading m_reading;
    QPlainTextEdit* m_faults;
};

} // namespace vantrel
