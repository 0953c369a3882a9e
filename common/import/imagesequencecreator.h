#pragma once

#include "common/filesystem/operations/filesystemreader.h"
#include "common/import/imagesequencecandidate.h"

#include <QList>
#include <QObject>
#include <QString>

#include <filesystem>
#include <vector>

namespace vantrel {

class GuiMediaSlot;
class MediaCollectionManager;
class Session;
struct ImageSequenceInfo;

/// Finds image sequences among paths and stores them in slots. Whoever makes it owns it and keeps what it is
/// given alive. One thread at a time, and only the main thread stores.
class ImageSequenceCreator : public QObject
{
    Q_OBJECT
    Q_PROPERTY(vantrel::FileSystemReader* fileSystemReader READ fileSystemReader WRITE setFileSystemReader
                   NOTIFY fileSystemReaderChanged)

public:
    /// session: whose metadata is fetched for what is stored; null fetches none.
    ImageSequenceCreator(Session* session, MediaCollectionManager* manager, QObject* parent = nullptr);

    FileSystemReader* fileSystemReader() const { return m_reader; }
    void setFileSystemReader(FileSystemReader* reader);
    MediaCollectionManager* mediaCollectionManager() const { return m_manager; }

    /// The sequences among the files, and in the directories, which the reader must have read.
    QList<ImageSequenceCandidate> fromPaths(const QList<QString>& paths) const;
    /// In consecutive slots. False, and nothing stored, where there is no room for all.
    bool saveCandidates(const QList<ImageSequenceCandidate>& candidates, int collection, int startingSlot);
    /// What these slots hold then, for who stores them together with others and calls fetchMetadata().
    static QList<GuiMediaSlot> slotsOf(const QList<ImageSequenceCandidate>& candidates, int collection,
                                       int startingSlot);
    /// What the server tells of them.
    void fetchMetadata(const QList<ImageSequenceCandidate>& candidates) const;

Q_SIGNALS:
    void fileSystemReaderChanged();

private:
    QList<ImageSequenceCandidate> createCandidates(const std::vector<ImageSequenceInfo>& infos) const;
    std::vector<std::filesystem::path> list(const std::filesystem::path& path) const;

    Session* m_session;
    MediaCollectionManager* m_manager;
    FileSystemReader* m_reader = nullptr;
};

} // namespace vantrel
