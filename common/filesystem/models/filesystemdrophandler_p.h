#pragma once

#include "common/filesystem/models/dropentry.h"
#include "common/filesystem/models/filesystemdrophandler.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <optional>

namespace vantrel {

/// What FileSystemDropHandler does.
class FileSystemDropHandlerPrivate : public QObject
{
    Q_OBJECT

public:
    using Entries = QList<DropEntry>;
    /// ByDrag: within one side a move, from one to the other a copy.
    enum class Way { ByDrag, Copy, Move };

    FileSystemDropHandlerPrivate(FileSystemProvider* provider, FileSystemOperations* operations,
                                 ConflictDesk* desk);

    bool drop(const QVariantMap& mime, const QVariant& target, const QString& targetPath, Way way);
    FileSystem* getFileSystem(const QString& name) const;
    FileSystem* targetOf(const QVariant& target) const;
    /// Nothing when one element is not sound.
    std::optional<Entries> parseMimeData(const QVariantMap& mime, FileSystem* target,
                                         const QString& targetPath) const;
    std::optional<DropEntry> parseEntry(const QJsonValue& element, const QJsonDocument& document,
                                        FileSystem* target, const QString& targetPath) const;
    bool isValid(const DropEntry& entry) const;
    QString filterPath(const QString& path, FileSystem* fileSystem) const;
    void handleEntries(const Entries& entries, Way way);

    FileSystemProvider* m_provider;
    FileSystemOperations* m_operations;
    ConflictDesk* m_desk;
};

} // namespace vantrel
