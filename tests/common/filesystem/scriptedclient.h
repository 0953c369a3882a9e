#pragma once

#include "common/filesystem/ftp/clientcredentials.h"
#include "common/filesystem/ftp/filesystemclient.h"
#include "common/filesystem/model/abstractclientfactory.h"

#include <QIODevice>
#include <QStringList>

#include <utility>

namespace vantrel::test {

/// A client of which the test is the server: it notes what is asked of it, and answers when the test says so.
class ScriptedClient : public FileSystemClient
{
public:
    QStringList calls; // "list /", "move /a /b"
    ClientCredentials known;
    QString errorText; // of the last command

    QString last() const { return calls.value(calls.size() - 1); }
    void setConnected(bool connected)
    {
        m_isConnected = connected;
        m_isLoading = false;
        Q_EMIT isServerConnectedChanged(connected);
    }
    /// Ends what runs: free again, then the signal of the end.
    void finishList(const QString& path, const QList<ClientFileSystemInfo>& entries, bool succeeded = true)
    {
        free();
        Q_EMIT listFinished(path, entries, succeeded);
    }
    void finishRemove(const QString& path, bool succeeded)
    {
        free();
        Q_EMIT removeFinished(path, ClientFileSystemType::File, succeeded);
    }
    void finishCreate(const QString& path, bool succeeded)
    {
        free();
        Q_EMIT createFinished(path, ClientFileSystemType::Directory, succeeded);
    }
    void finishWrite(const QString& path, bool succeeded)
    {
        free();
        Q_EMIT writeFinished(path, succeeded);
    }
    void finishRead(const QString& path, const QByteArray& bytes)
    {
        m_device->write(bytes);
        Q_EMIT readProgressed(path, bytes.size(), bytes.size());
        free();
        Q_EMIT readFinished(path, true);
    }
    void finishMove(const QString& from, const QString& to, bool succeeded)
    {
        free();
        Q_EMIT moveFinished(from, to, ClientFileSystemType::File, succeeded);
    }
    void finishSize(const QString& path, qint64 bytes, bool succeeded = true)
    {
        free();
        Q_EMIT sizeFinished(path, bytes, succeeded);
    }

    int defaultPort() const override { return 21; }
    bool setCredentials(const ClientCredentials& credentials) override
    {
        known = credentials;
        return true;
    }
    ClientCredentials credentials() const override { return known; }
    bool isServerConnected() const override { return m_isConnected; }
    bool isLoading() const override { return m_isLoading; }
    bool connectToServer(const QString&, int) override { return true; }
    bool disconnectServer() override { return true; }
    bool list(const QString& path) override { return begin("list", path); }
    bool remove(const QString& path) override { return begin("remove", path); }
    bool create(const QString& path, ClientFileSystemType) override { return begin("create", path); }
    bool rename(const QString& path, const QString& newName) override
    {
        return begin("rename", path, newName);
    }
    bool write(const QString& path, QIODevice*, qint64) override { return begin("write", path); }
    bool resumeWrite(const QString& path, QIODevice*, qint64 offset) override
    {
        return begin("resume", path, QString::number(offset));
    }
    bool read(const QString& path, QIODevice* device, qint64) override
    {
        m_device = device;
        return begin("read", path);
    }
    bool copy(const QString&, const QString&) override { return false; }
    bool move(const QString& from, const QString& to) override { return begin("move", from, to); }
    bool size(const QString& path) override { return begin("size", path); }
    QString lastErrorText() const override { return errorText; }
    void abort() override { calls << QStringLiteral("abort"); }

private:
    bool begin(const char* verb, const QString& path, const QString& more = {})
    {
        if (!m_isConnected || m_isLoading)
            return false;
        calls << (QString::fromLatin1(verb) + u' ' + path + (more.isEmpty() ? QString() : u' ' + more));
        m_isLoading = true;
        Q_EMIT isLoadingChanged(true);
        return true;
    }
    void free()
    {
        m_isLoading = false;
        Q_EMIT isLoadingChanged(false);
    }

    bool m_isConnected = false;
    bool m_isLoading = false;
    QIODevice* m_device = nullptr;
};

class ScriptedClientFactory : public AbstractClientFactory
{
public:
    QSharedPointer<ScriptedClient> client = QSharedPointer<ScriptedClient>::create();

    QSharedPointer<FileSystemClient> createFtpClient() override { return client; }
};

inline ClientFileSystemInfo fileEntry(const QString& path, qint64 size)
{
    return {ClientFileSystemType::File, path.mid(path.lastIndexOf(u'/') + 1), path, size, false};
}

inline ClientFileSystemInfo directoryEntry(const QString& path)
{
    const QString plain = path.chopped(1);
    return {ClientFileSystemType::Directory, plain.mid(plain.lastIndexOf(u'/') + 1), path, 0, false};
}

} // namespace vantrel::test
