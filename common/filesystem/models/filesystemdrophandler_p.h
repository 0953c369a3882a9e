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

    FileSystemDropHandlerPrivate(FileSystemProvider* provider, FileSystemOperations* operations,
                                 ConflictDesk* desk);

    /// A drag moves within a side and copies to the other one.
    enum class How { Drag, Copy, Move };

    bool drop(const QVariantMap& mime, const QVariant& target, const QString& targetPath, How how);
    FileSystem* getFileSystem(const QString& name) const;
    FileSystem* targetOf(const QVariant& target) const;
    /// Nothing when one element is not sound.
    std::optional<Entries> parseMimeData(const QVariantMap& mime, FileSystem* target,
                                         const QString& targetPath) const;
    std::optional<DropEntry> parseEntry(const QJsonValue& element, const QJsonDocument& document,
                                        FileSystem* target, const QString& targetPath) const;
    bool isValid(const DropEntry& entry) const;
    QString filterPath(const QString& path, FileSystem* fileSystem) const;
    void handleEntries(const Entries& entries, How how);

    FileSystemProvider* m_provider;
    FileSystemOperations* m_operations;
    ConflictDesk* m_desk;
};

} // namespace vantrel
