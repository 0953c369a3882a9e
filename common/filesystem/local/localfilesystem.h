#pragma once

#include "common/filesystem/model/filesystem.h"

#include <chrono>
#include <memory>

namespace vantrel {

class LocalFileSystemPrivate;

/// The disks of the operator's computer. It is always ready; listings are read beside the main thread, and so
/// is all work on the disk; of one that does not answer only what is known already is told. Nothing that is
/// there is ever overwritten unless an operation's conflict policy says so.
class LocalFileSystem : public FileSystem
{
    Q_OBJECT

public:
    explicit LocalFileSystem(QObject* parent = nullptr);
    /// Stops what runs and waits for it.
    ~LocalFileSystem() override;
    /// How long anything waits for a disk that does not answer, before it is given up: twenty seconds.
    void setPatience(std::chrono::milliseconds patience);

    QString fileSystemName() const override;
    /// "/".
    QString defaultRootPath() const override;
    bool isReady() const override;
    bool isLoading() const override;
    bool getDirectories(QString directoryPath, QList<FileSystemDirectory>& result) override;
    bool getFiles(QString directoryPath, QList<FileSystemFile>& result) override;
    ItemType getType(QString path) override;
    /// Always false: nobody looks into local files.
    bool requestMetadata(QString filePath, FileMetadata& result) override;
    bool isValidDirectoryPath(QString directoryPath) const override;
    OperationVisitor* operationVisitor() override;
    qint64 availableBytes(const QString& path) const override;
    qint64 fileSize(const QString& path) const override;
    int otherFiles(const QString& directoryPath) const override;
    bool isLink(const QString& path) const override;
    bool wantsFreeNames() const override;
    void whenReachable(const QString& path, QObject* context, std::function<void(bool)> next) override;

private:
    std::unique_ptr<LocalFileSystemPrivate> m_private;
};

} // namespace vantrel
