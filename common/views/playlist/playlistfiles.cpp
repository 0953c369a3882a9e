#include "common/views/playlist/playlistfiles.h"

#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/edit/playlist/importplaylistcommand.h"
#include "common/media/items/abstractplaylistprovider.h"
#include "common/media/library/aside.h"
#include "common/media/models/playlist/playlistcsv.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/views/playlist/cuesheetdialog.h"
#include "common/views/playlist/playlistimportdialog.h"
#include "tarn/media/medialibrary.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFuture>
#include <QSaveFile>
#include <QtConcurrentRun>

#include <algorithm>

namespace vantrel {

namespace {

const QString tables = QStringLiteral("CSV (*.csv)");

/// Whether an import would change nothing, and so is no step to undo.
bool isAlike(const Playlist* list, const ImportPlaylistCommand::Entries& entries)
{
    return list && list->getEntries().size() == std::size_t(entries.size()) &&
           std::ranges::all_of(entries, [list](const auto& item) {
               const PlaylistEntry* present = list->findEntry(item.first);
               return present && *present == item.second;
           });
}

} // namespace

PlaylistFiles::PlaylistFiles(PlaylistEditorModel* model, QUndoStack* stack, QWidget* window)
    : QObject(window)
    , m_model(model)
    , m_stack(stack)
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

const MediaLibrary& PlaylistFiles::library() const
{
    return *m_model->playlistProvider()->mediaLibrary();
}

/// A list of another name under the number is another list.
bool PlaylistFiles::isStillThere(const List& list, const QString& title) const
{
    const Playlist* found = library().findPlaylist(static_cast<int>(list.number));
    if (list.isNew ? !found : found && QString::fromStdString(found->getName()) == list.name)
        return true;
    tellNotDone(title,
                tr("Playlist %1, \"%2\", was removed, renamed or made anew meanwhile. Look at it and do "
                   "it again.")
                    .arg(list.number)
                    .arg(list.name));
    return false;
}

void PlaylistFiles::importTable(const List& list)
{
    connect(ask(tr("Import playlist"), tables, {}), &QFileDialog::fileSelected, this,
            [this, list](const QString& file) { openTable(file, list); });
}

void PlaylistFiles::openTable(const QString& fileName, const List& list)
{
    if (!isStillThere(list, tr("Import playlist")))
        return;
    const Playlist* present = library().findPlaylist(static_cast<int>(list.number));
    const int count = present ? static_cast<int>(present->getEntries().size()) : 0;
    auto* dialog = new PlaylistImportDialog(fileName, list.name, count, library(), m_window);
    dialog->setWarning(list.warning);
    connect(dialog, &PlaylistImportDialog::importConfirmed, this,
            [this, list](const ImportPlaylistCommand::Entries& entries) {
                if (isStillThere(list, tr("Import playlist")) &&
                    !isAlike(library().findPlaylist(static_cast<int>(list.number)), entries))
                    execute<ImportPlaylistCommand>(m_stack, "ImportPlaylistCommand", &library(),
                                                   static_cast<int>(list.number), list.name, entries);
            });
    dialog->open();
}

void PlaylistFiles::exportTable(const List& list)
{
    connect(ask(tr("Export playlist"), tables, list.name + QStringLiteral(".csv")),
            &QFileDialog::fileSelected, this, [this, list](const QString& fileName) {
                if (!isStillThere(list, tr("Export playlist")))
                    return;
                writeTable(list, fileName);
            });
}

/// On another thread, from the library as it is now: a long list takes longer than a picture does.
void PlaylistFiles::writeTable(const List& list, const QString& fileName)
{
    const Ref<MediaLibrary> kept = makeRef<MediaLibrary>(library());
    const auto write = [kept, fileName, number = static_cast<int>(list.number)] {
        QString fault;
        QSaveFile file(fileName);
        const bool isWritten = file.open(QIODevice::WriteOnly) &&
                               PlaylistCsv::write(file, *kept, number, &fault) && file.commit();
        return isWritten ? QString() : fault.isEmpty() ? file.errorString() : fault;
    };
    QtConcurrent::run(&aside::files(), write).then(this, [this, fileName](const QString& fault) {
        tellWritten(fault, fileName);
    });
}

void PlaylistFiles::printSheet(const List& list)
{
    connect(ask(tr("Cue sheet"), QStringLiteral("PDF (*.pdf)"), list.name + QStringLiteral(".pdf")),
            &QFileDialog::fileSelected, this, [this, list](const QString& fileName) {
                if (!isStillThere(list, tr("Cue sheet")))
                    return;
                if (m_model->playlistNumber() != list.number) {
                    tellNotDone(tr("Cue sheet"), tr("Another playlist is shown now. Show \"%1\" and print it "
                                                    "again.")
                                                     .arg(list.name));
                    return;
                }
                const CueSheet sheet(*m_model, list.name);
                auto* dialog = new CueSheetDialog(sheet, m_model, fileName, m_window);
                connect(dialog, &CueSheetDialog::ended, this,
                        [this, fileName](const QString& fault) { tellWritten(fault, fileName); });
            });
}

/// fault: why it was not; empty when it was.
void PlaylistFiles::tellWritten(const QString& fault, const QString& fileName) const
{
    const QString name = QFileInfo(fileName).fileName();
    if (fault.isEmpty())
        NotificationManagerImpl::instance()->createNotification(
            Notification::CheckedMessage, tr("Saved %1").arg(name.toHtmlEscaped()), QString());
    else
        tellNotDone(tr("Save %1").arg(name),
                    tr("The file cannot be written (%1). Choose another folder, or make "
                       "room on the disk.")
                        .arg(fault));
}

} // namespace vantrel
