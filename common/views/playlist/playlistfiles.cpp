#include "common/views/playlist/playlistfiles.h"

#include "common/command/refusal.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/views/playlist/cuesheet.h"
#include "common/views/playlist/playlistcsv.h"
#include "common/views/playlist/playlistimportdialog.h"
#include "tarn/media/medialibrary.h"

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>
#include <QSaveFile>
#include <QThreadPool>

#include <memory>
#include <optional>

namespace vantrel {

namespace {

const QString tables = QStringLiteral("CSV (*.csv)");

/// Nothing, and why, for a file that is none or too large for a cue list.
std::optional<QByteArray> bytesOf(const QString& fileName, QString& reason)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        reason = PlaylistFiles::tr("The file cannot be read: %1.").arg(file.errorString());
        return std::nullopt;
    }
    if (file.size() > PlaylistCsv::largestFile) {
        reason = PlaylistFiles::tr("The file has %1 MB, which is no cue list: %2 MB hold a hundred thousand "
                                   "entries. Choose another.")
                     .arg(file.size() / (1024 * 1024))
                     .arg(PlaylistCsv::largestFile / (1024 * 1024));
        return std::nullopt;
    }
    return file.readAll();
}

} // namespace

PlaylistFiles::PlaylistFiles(PlaylistEditorModel* model, QWidget* window)
    : QObject(window)
    , m_model(model)
    , m_window(window)
{
}

QFileDialog* PlaylistFiles::ask(const QString& title, const QString& filter, const QString& proposal)
{
    auto* dialog = new QFileDialog(m_window, title, {}, filter);
    dialog->setObjectName(QStringLiteral("PlaylistEditor-file-dialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (!proposal.isEmpty()) {
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setDefaultSuffix(QFileInfo(proposal).suffix());
        // A name may hold what no file name does.
        dialog->selectFile(QString(proposal).replace(u'/', u'-').replace(u'\\', u'-'));
    } else {
        dialog->setFileMode(QFileDialog::ExistingFile);
    }
    dialog->open();
    return dialog;
}

void PlaylistFiles::importTable(const QString& list)
{
    connect(ask(tr("Import playlist"), tables, {}), &QFileDialog::fileSelected, this,
            [this, list](const QString& file) { openTable(file, list); });
}

void PlaylistFiles::openTable(const QString& fileName, const QString& list)
{
    auto* dialog = new PlaylistImportDialog(fileName, list, m_model->rowCount(), m_window);
    const uint playlist = m_model->playlistNumber();
    connect(dialog, &PlaylistImportDialog::importConfirmed, this,
            [this, playlist](const ImportPlaylistCommand::Entries& entries) {
                if (m_model->playlistNumber() == playlist) // another may be shown by now
                    m_model->doImport(entries);
                else
                    tellNotDone(tr("Import playlist"), tr("Another playlist is shown now. Import it again."));
            });
    dialog->open();
    const QPointer<PlaylistImportDialog> shown = dialog;
    QThreadPool::globalInstance()->start([this, fileName, shown] {
        QString reason;
        const std::optional<QByteArray> bytes = bytesOf(fileName, reason);
        auto reading = std::make_shared<PlaylistCsv::Reading>(bytes ? PlaylistCsv::read(*bytes)
                                                                    : PlaylistCsv::Reading());
        QMetaObject::invokeMethod(
            qApp,
            [self = this, shown, reading, reason] {
                if (!shown) // and with it goes whoever opened it
                    return;
                if (!reason.isEmpty()) {
                    shown->setFault(reason);
                    return;
                }
                PlaylistCsv::checkMedia(*reading, *self->m_model->playlistProvider()->mediaLibrary());
                shown->setReading(*reading);
            },
            Qt::QueuedConnection);
    });
}

void PlaylistFiles::exportTable(const QString& list)
{
    connect(ask(tr("Export playlist"), tables, list + QStringLiteral(".csv")), &QFileDialog::fileSelected,
            this, [this](const QString& fileName) {
                const MediaLibrary& library = *m_model->playlistProvider()->mediaLibrary();
                const QByteArray text =
                    PlaylistCsv::write(library, static_cast<int>(m_model->playlistNumber()));
                QSaveFile file(fileName);
                const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
                tellWritten(isWritten && file.commit(), fileName);
            });
}

void PlaylistFiles::printSheet(const QString& list)
{
    connect(ask(tr("Cue sheet"), QStringLiteral("PDF (*.pdf)"), list + QStringLiteral(".pdf")),
            &QFileDialog::fileSelected, this, [this, list](const QString& fileName) {
                tellWritten(CueSheet(m_model, list).savePdf(fileName), fileName);
            });
}

void PlaylistFiles::tellWritten(bool written, const QString& fileName) const
{
    const QString name = QFileInfo(fileName).fileName();
    if (written)
        NotificationManagerImpl::instance()->createNotification(
            Notification::CheckedMessage, tr("Saved %1").arg(name.toHtmlEscaped()), QString());
    else
        tellNotDone(tr("Save %1").arg(name),
                    tr("The file cannot be written. Choose another folder, or make room on the disk."));
}

} // namespace vantrel
