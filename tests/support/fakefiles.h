#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/homelocations.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/filesystem/schedule/filesystemoperations.h"

#include <QMap>
#include <QSet>

namespace vantrel::test {

/// A file system in memory, which answers at once or, as a server does, only after release().
class FakeFiles : public FileSystem
{
public:
    explicit FakeFiles(const QString& name, bool isSlow = false)
        : m_name(name)
        , m_isSlow(isSlow)
    {
        add(QStringLiteral("/"));
    }

    /// Paths of directories end with "/"; those above come into being.
    void add(const QString& path, qint64 bytes = 1000)
    {
        for (qsizetype at = path.indexOf(u'/'); at >= 0; at = path.indexOf(u'/', at + 1))
            m_items.insert(path.left(at + 1), -1);
        if (!path.endsWith(u'/'))
            m_items.insert(path, bytes);
    }
    void remove(const QString& path) { m_items.remove(path); }
    void change(const QString& directory)
    {
        Q_EMIT directoryChanged(FileSystemDirectory::fromFullPath(directory));
    }
    /// Gives the answer that a slow one owes.
    void release(const QString& directory)
    {
        m_known.insert(directory);
        change(directory);
    }
    void setLoading(bool isLoading)
    {
        m_isLoading = isLoading;
        Q_EMIT isLoadingChanged(isLoading);
    }
    void setReady(bool isReady)
    {
        m_isReady = isReady;
        Q_EMIT isReadyChanged(isReady);
    }

    QString fileSystemName() const override { return m_name; }
    QString defaultRootPath() const override { return QStringLiteral("/"); }
    bool isReady() const override { return m_isReady; }
    bool isLoading() const override { return m_isLoading; }
    OperationVisitor* operationVisitor() override { return nullptr; }
    bool isValidDirectoryPath(QString path) const override { return m_items.value(path, 0) == -1; }
    ItemType getType(QString path) override
    {
        if (isValidDirectoryPath(path.endsWith(u'/') ? path : path + u'/'))
            return Directory;
        return m_items.contains(path) ? File : Unknown;
    }
    bool getDirectories(QString path, QList<FileSystemDirectory>& result) override
    {
        if (!isAnswered(path))
            return false;
        if (path != QLatin1String("/"))
            result.append({QStringLiteral(".."), path + QStringLiteral("../")});
        forEachBelow(path, [&](const QString& name, qint64 bytes) {
            if (bytes < 0)
                result.append({name, path + name + u'/'});
        });
        return true;
    }
    bool getFiles(QString path, QList<FileSystemFile>& result) override
    {
        if (!isAnswered(path))
            return false;
        result.clear();
        const FileSystemDirectory directory = FileSystemDirectory::fromFullPath(path);
        forEachBelow(path, [&](const QString& name, qint64 bytes) {
            if (bytes >= 0)
                result.append({name, bytes, directory});
        });
        return true;
    }
    bool requestMetadata(QString path, FileMetadata& result) override
    {
        asked.append(path);
        if (!metadata.contains(path))
            return false;
        result = metadata.value(path);
        return true;
    }

    bool requestMetadataAlone(const QString& path, FileMetadata& result) override
    {
        askedAlone.append(path);
        result = metadata.value(path);
        return metadata.contains(path);
    }

    QMap<QString, FileMetadata> metadata;
    QStringList asked;
    QStringList askedAlone; // without a picture

private:
    bool isAnswered(const QString& path)
    {
        if (!isValidDirectoryPath(path))
            Q_EMIT invalidDirectoryPathRequest(path);
        return isValidDirectoryPath(path) && (!m_isSlow || m_known.contains(path));
    }
    template <typename Use>
    void forEachBelow(const QString& path, const Use& use) const
    {
        for (auto item = m_items.lowerBound(path); item != m_items.cend() && item.key().startsWith(path);
             ++item) {
            QString name = item.key().mid(path.size());
            if (name.endsWith(u'/'))
                name.chop(1);
            if (!name.isEmpty() && !name.contains(u'/'))
                use(name, *item);
        }
    }

    QString m_name;
    QMap<QString, qint64> m_items; // bytes; -1 for a directory
    QSet<QString> m_known;
    bool m_isSlow;
    bool m_isReady = true;
    bool m_isLoading = false;
};

class FakeHomes : public HomeLocations
{
public:
    QString homePath() const override { return QStringLiteral("Drives"); }
    QList<HomeLocation> homeLocations() override { return places; }

    QList<HomeLocation> places{{QStringLiteral("/"), QStringLiteral("/"), 1},
                               {QStringLiteral("STICK"), QStringLiteral("/media/STICK/"), 1}};
};

/// A transfer that goes on when a test says so.
class FakeTransfer : public TransferOperation
{
public:
    using TransferOperation::TransferOperation;
    bool accept(OperationVisitor*) override { return true; }
};

/// A queue that only notes what it is asked for.
class FakeOperations : public FileSystemOperations
{
public:
    OperationPtrList allOperations() const override { return all; }
    OperationPtrList activeOperations() const override { return {}; }
    OperationPtrList pendingOperations() const override { return {}; }
    OperationPtrList finishedOperations() const override { return {}; }
    OperationPtrList findOperations(FileSystem*, QString) const override { return {}; }
    OperationPtr rename(FileSystem*, QString path, QString newName) override
    {
        calls.append(QStringLiteral("rename %1 %2").arg(path, newName));
        return {};
    }
    OperationPtr remove(FileSystem*, QString path) override
    {
        calls.append(QStringLiteral("remove %1").arg(path));
        return {};
    }
    OperationPtr createDirectory(FileSystem*, QString path) override
    {
        calls.append(QStringLiteral("create %1").arg(path));
        return {};
    }
    OperationPtr createFile(FileSystem*, QString) override { return {}; }
    OperationPtr move(FileSystem* from, QString fromPath, FileSystem* to, QString toPath) override
    {
        calls.append(QStringLiteral("move %1 %2").arg(fromPath, toPath));
        return push(from, fromPath, to, toPath, TransferOperation::Move);
    }
    OperationPtr copy(FileSystem* from, QString fromPath, FileSystem* to, QString toPath) override
    {
        calls.append(QStringLiteral("copy %1 %2").arg(fromPath, toPath));
        return push(from, fromPath, to, toPath, TransferOperation::Copy);
    }
    OperationPtr push(FileSystem* from, const QString& fromPath, FileSystem* to, const QString& toPath,
                      TransferOperation::TransferType type)
    {
        const auto operation = QSharedPointer<FakeTransfer>::create(FileSystemTarget{from, fromPath},
                                                                    FileSystemTarget{to, toPath}, type);
        all.append(operation);
        Q_EMIT pendingOperationsChanged();
        Q_EMIT allOperationsChanged();
        return operation;
    }
    FakeTransfer* transfer(int number) const { return static_cast<FakeTransfer*>(all[number].data()); }

    QStringList calls;
    OperationPtrList all;
};

class FakeProvider : public FileSystemProvider
{
public:
    FileSystem* getServerFileSystem(QUrl, QString, QString) override { return server; }
    FileSystem* getLocalFileSystem() override { return local; }
    FileSystem* getFileSystem(QString kind) override
    {
        return kind == QLatin1String("local") ? local : kind == QLatin1String("server") ? server : nullptr;
    }

    FileSystem* local = nullptr;
    FileSystem* server = nullptr;
};

} // namespace vantrel::test
