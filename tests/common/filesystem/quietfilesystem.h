#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/operationvisitor.h"

#include <QMap>

namespace vantrel::test {

/// A file system that holds nothing but the types it is told, visits what comes and does no work.
class QuietFileSystem : public FileSystem, public OperationVisitor
{
public:
    QString fileSystemName() const override { return QStringLiteral("Quiet files"); }
    QString defaultRootPath() const override { return QStringLiteral("/"); }
    bool isReady() const override { return true; }
    bool isLoading() const override { return false; }
    bool getDirectories(QString, QList<FileSystemDirectory>&) override { return false; }
    bool getFiles(QString, QList<FileSystemFile>&) override { return false; }
    ItemType getType(QString path) override { return types.value(path, Unknown); }
    bool requestMetadata(QString, FileMetadata&) override { return false; }
    bool isValidDirectoryPath(QString) const override { return false; }
    OperationVisitor* operationVisitor() override { return this; }
    bool wantsFreeNames() const override { return isCareful; }

    bool visit(QSharedPointer<FileTransferOperation>) override { return note("file transfer"); }
    bool visit(QSharedPointer<DirectoryTransferOperation>) override { return note("directory transfer"); }
    bool visit(QSharedPointer<ModifyOperation>) override { return note("modification"); }
    bool visit(QSharedPointer<RecursiveRemoveOperation>) override { return note("recursive removal"); }

    QMap<QString, ItemType> types;
    bool isCareful = false;
    bool accepts = true;
    QByteArrayList visits;

private:
    bool note(const char* visited)
    {
        visits.append(visited);
        return accepts;
    }
};

} // namespace vantrel::test
