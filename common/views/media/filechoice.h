#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/views/media/sequencesearch.h"

#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QVariantMap>

#include <memory>

namespace vantrel {

class FileSystemProvider;
class FilesModel;
class GuiMediaSlot;
class MediaLibraryModel;

/// Which of the server's files is to take the place of one that slots play ("fileChoice"): it shows folders,
/// and points all those slots at what is chosen as one step of undo. The view owns it; main thread only.
class FileChoice : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("common/filesystem/models/filesmodel.h")
    /// The folder that is shown; null while nothing is chosen, or once the server is gone.
    Q_PROPERTY(vantrel::FilesModel* files READ files NOTIFY changed)
    /// The name of the file that is to be replaced, and how many slots play it.
    Q_PROPERTY(QString lost READ lost NOTIFY changed)
    Q_PROPERTY(int slotCount READ slotCount NOTIFY changed)
    /// A sequence is looked for among the names of the folder.
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)

public:
    /// Both must outlive this. files: null has no server.
    FileChoice(MediaLibraryModel* library, FileSystemProvider* files, QObject* parent = nullptr);
    ~FileChoice() override;

    FilesModel* files() const { return m_files.get(); }
    QString lost() const;
    int slotCount() const;
    bool isBusy() const { return m_search.isRunning(); }

    /// False where no server shows its files. It begins in the folder that holds the file, or held it.
    Q_INVOKABLE bool begin(const QUrl& file);
    /// Why the file in that row cannot be taken, a sentence; empty where it can.
    Q_INVOKABLE QString faultOf(int row) const;
    /// chosen() comes once the slots are on their way to that file; not where the library takes no edit.
    Q_INVOKABLE void choose(int row);
    Q_INVOKABLE void end();

Q_SIGNALS:
    void changed();
    void chosen();

private:
    void point(const GuiMediaSlot& media);

    MediaLibraryModel* m_library;
    FileSystemProvider* m_provider;
    QPointer<FileSystem> m_fileSystem;
    std::unique_ptr<FilesModel> m_files;
    SequenceSearch m_search;
    QUrl m_lost;
};

} // namespace vantrel
