#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/operationvisitor.h"
#include "common/filesystem/operations/directorytransferoperation.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/recursiveremoveoperation.h"

#include <QMap>
#include <QSet>

#include <functional>

namespace vantrel::test {

/// A tree in memory. What is to be done on it is noted, and ends as the test says: at once and well, as a
/// failure, or when the test gets to it.
class PuppetFileSystem : public FileSystem, public OperationVisitor
{
public:
    enum class Fate { Passes, Fails, Waits };

    QStringList done; // the paths of what was started
    std::function<Fate(const QString& path)> fate = [](const QString&) { return Fate::Passes; };

    std::function<void(const TransferOperation& operation)> onTransfer; // of each file that comes

    void add(const QString& path, qint64 size) { m_files[path] = size; }
    void addDirectory(const QString& path) { m_files[path] = -1; }
    /// It is listed still.
    void vanish(const QString& path) { m_vanished.insert(path); }
    /// Of a directory that is there.
    void makeLink(const QString& path) { m_links.insert(path); }
    void setReady(bool ready)
    {
        m_isReady = ready;
        Q_EMIT isReadyChanged(ready);
    }

    QString fileSystemName() const override { return QStringLiteral("Puppet"); }
    QString defaultRootPath() const override { return QStringLiteral("/"); }
    bool isReady() const override { return m_isReady; }
    bool isLoading() const override { return false; }
    bool getDirectories(QString path, QList<FileSystemDirectory>& result) override
    {
        for (const QString& below : childrenOf(path))
            if (m_files.value(below) < 0)
                result.append(FileSystemDirectory::fromFullPath(below));
        return true;
    }
    bool getFiles(QString path, QList<FileSystemFile>& result) override
    {
        for (const QString& below : childrenOf(path))
            if (m_files.value(below) >= 0)
                result.append({nameOf(below), m_files.value(below), FileSystemDirectory::fromFullPath(path)});
        return true;
    }
    ItemType getType(QString path) override
    {
        const QString plain = path.size() > 1 && path.endsWith(u'/') ? path.chopped(1) : path;
        return m_vanished.contains(plain)     ? Unknown
               : plain == QStringLiteral("/") ? Directory
               : !m_files.contains(plain)     ? Unknown
               : m_files.value(plain) < 0     ? Directory
                                              : File;
    }
    bool requestMetadata(QString, FileMetadata&) override { return false; }
    qint64 fileSize(const QString& path) const override { return m_files.value(path, -1); }
    bool isLink(const QString& path) const override
    {
        return m_links.contains(path.endsWith(u'/') ? path.chopped(1) : path);
    }
    bool isValidDirectoryPath(QString) const override { return true; }
    OperationVisitor* operationVisitor() override { return this; }

    bool visit(QSharedPointer<FileTransferOperation> operation) override
    {
        if (operation->to().fileSystem != this)
            return true;
        if (onTransfer)
            onTransfer(*operation);
        return follow(operation, operation->to().fullPath);
    }
    bool visit(QSharedPointer<DirectoryTransferOperation>) override { return true; }
    bool visit(QSharedPointer<ModifyOperation> operation) override
    {
        return follow(operation, operation->target().fullPath);
    }
    bool visit(QSharedPointer<RecursiveRemoveOperation> operation) override
    {
        RecursiveRemoveOperation* raw = operation.data();
        connect(raw, &RecursiveRemoveOperation::contentIsRemoved, this, [this, raw](bool succeeded) {
            done << raw->target().fullPath;
            succeeded ? raw->finish() : raw->abort();
        });
        return true;
    }

private:
    bool follow(const QSharedPointer<RunnableOperation>& operation, const QString& path)
    {
        RunnableOperation* raw = operation.data();
        connect(raw, &BaseOperation::operationStarted, this, [this, raw, path] {
            done << path;
            const Fate how = fate(path);
            auto* const transfer = qobject_cast<FileTransferOperation*>(raw);
            if (how == Fate::Passes && transfer)
                transfer->setTransferredBytes(
                    static_cast<quint64>(transfer->from().fileSystem->fileSize(transfer->from().fullPath)));
            if (how == Fate::Passes)
                raw->finish();
            else if (how == Fate::Fails)
                raw->abort();
        });
        return true;
    }
    static QString nameOf(const QString& path) { return path.mid(path.lastIndexOf(u'/') + 1); }
    QStringList childrenOf(const QString& path) const
    {
        const QString above = path.endsWith(u'/') ? path : path + u'/';
        QStringList below;
        for (const QString& file : m_files.keys())
            if (file.startsWith(above) && !file.mid(above.size()).contains(u'/'))
                below << file;
        return below;
    }

    QSet<QString> m_links;
    QSet<QString> m_vanished;
    QMap<QString, qint64> m_files; // size; -1: a directory
    bool m_isReady = true;
};

} // namespace vantrel::test
