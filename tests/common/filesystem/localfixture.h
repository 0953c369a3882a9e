#pragma once

#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/modifyoperation.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace vantrel::test {

/// A folder of the test's own with files in it, and a local file system to work on it.
struct LocalFixture
{
    QTemporaryDir folder;
    LocalFileSystem files;

    QString path(const QString& name) const { return folder.filePath(name); }
    FileSystemTarget target(const QString& name) { return {&files, path(name)}; }

    /// Makes the file with its folders.
    bool write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        return QDir().mkpath(QFileInfo(path(name)).path()) && file.open(QIODevice::WriteOnly) &&
               file.write(content) == content.size();
    }
    /// Null when there is no such file.
    QByteArray read(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QByteArray("").append(file.readAll()) : QByteArray();
    }
    /// All names in a folder of it, hidden ones too.
    QStringList names(const QString& name = {}) const
    {
        return QDir(path(name))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    }
    QSharedPointer<FileTransferOperation> transfer(TransferOperation::TransferType type, const QString& from,
                                                   const QString& to)
    {
        return QSharedPointer<FileTransferOperation>::create(target(from), target(to), type);
    }
};

/// Runs it to its end and tells how that was; NotStarted when it took longer than the limit.
inline RunnableOperation::OperationState outcomeOf(RunnableOperation& operation)
{
    QSignalSpy stopped(&operation, &BaseOperation::operationStopped);
    operation.run();
    return !stopped.isEmpty() || stopped.wait(20000) ? operation.state() : RunnableOperation::NotStarted;
}

} // namespace vantrel::test
