#include "common/filesystem/local/localfilesystem.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/filesystem/models/operationsmodel.h"
#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/schedule/filesystemoperationsrunner.h"
#include "common/filesystem/schedule/operationfactory.h"
#include "tests/common/filesystem/quietfilesystem.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <condition_variable>
#include <cstdarg>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <mutex>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

// A disk that does not answer: whoever asks it for something is held until it does, but for the main thread,
// whose questions are counted instead.
constinit std::atomic<bool> isSilent = false;
constinit std::atomic<int> askedOnMain = 0;
std::mutex mutex;
std::condition_variable changed;
char place[4096];

void meet(const char* path)
{
    if (!isSilent || std::strncmp(path, place, std::strlen(place)) != 0)
        return;
    if (::gettid() == ::getpid()) {
        ++askedOnMain;
        return;
    }
    std::unique_lock lock(mutex);
    changed.wait(lock, [] { return !isSilent; });
}

void setSilent(bool silent)
{
    const std::lock_guard lock(mutex);
    isSilent = silent;
    changed.notify_all();
}

template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

#ifndef HALCYRA_SANITIZED // which stands in these places itself
extern "C" {
int statx(int at, const char* __restrict path, int flags, unsigned mask, struct statx* __restrict to) noexcept
{
    meet(path);
    return next<int(int, const char*, int, unsigned, struct statx*)>("statx")(at, path, flags, mask, to);
}
int stat(const char* __restrict path, struct stat* __restrict to) noexcept
{
    meet(path);
    return next<int(const char*, struct stat*)>("stat")(path, to);
}
int lstat(const char* __restrict path, struct stat* __restrict to) noexcept
{
    meet(path);
    return next<int(const char*, struct stat*)>("lstat")(path, to);
}
int stat64(const char* __restrict path, struct stat64* __restrict to) noexcept
{
    meet(path);
    return next<int(const char*, struct stat64*)>("stat64")(path, to);
}
int lstat64(const char* __restrict path, struct stat64* __restrict to) noexcept
{
    meet(path);
    return next<int(const char*, struct stat64*)>("lstat64")(path, to);
}
int statvfs(const char* __restrict path, struct statvfs* __restrict to) noexcept
{
    meet(path);
    return next<int(const char*, struct statvfs*)>("statvfs")(path, to);
}
int access(const char* path, int mode) noexcept
{
    meet(path);
    return next<int(const char*, int)>("access")(path, mode);
}
int inotify_add_watch(int to, const char* path, uint32_t mask) noexcept
{
    meet(path);
    return next<int(int, const char*, uint32_t)>("inotify_add_watch")(to, path, mask);
}
DIR* opendir(const char* path)
{
    meet(path);
    return next<DIR*(const char*)>("opendir")(path);
}
int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    meet(path);
    return next<int(const char*, int, mode_t)>("open64")(path, flags, mode);
}
}
#endif

namespace vantrel::test {

/// What an operator does while a share hangs: nothing of it may hold the window.
class TestSilentDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
#ifdef HALCYRA_SANITIZED
        QSKIP("the sanitizer stands between the program and the disk");
#endif
        m_folder = std::make_unique<QTemporaryDir>();
        for (const char* name : {"share/sub", "disk"})
            QVERIFY(QDir().mkpath(path(QString::fromLatin1(name))));
        for (const char* name : {"share/a.mov", "share/sub/b.mov", "disk/c.mov"}) {
            QFile file(path(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("1234") == 4);
        }
        std::strncpy(place, QFile::encodeName(path(QStringLiteral("share"))).constData(), sizeof place - 1);
        askedOnMain = 0;
    }

    void cleanup()
    {
        setSilent(false);
    }

    void foldersAreEntered()
    {
        LocalFileSystem files;
        FilesModel model(&files, nullptr);
        model.setDirectoryPath(path(QStringLiteral("disk")));
        QTRY_COMPARE(model.count(), 1);
        setSilent(true);
        model.setDirectoryPath(path(QStringLiteral("share")));
        QCOMPARE(model.directoryPath(), path(QStringLiteral("share/")));
        QVERIFY(model.isWaiting());
        model.refresh();
        model.setDirectoryPath(path(QStringLiteral("share/sub")));
        model.setDirectoryPath(path(QStringLiteral("disk")));
        QTRY_COMPARE(model.count(), 1);
        model.setDirectoryPath(path(QStringLiteral("share")));
        QCOMPARE(model.count(), 0);
        setSilent(false);
        QTRY_COMPARE(model.count(), 2);
        QCOMPARE(askedOnMain.load(), 0);
    }

    void whatCannotBeReadIsLeft()
    {
        LocalFileSystem files;
        files.setPatience(std::chrono::milliseconds(200));
        FilesModel model(&files, nullptr);
        model.setDirectoryPath(path(QStringLiteral("disk")));
        QTRY_COMPARE(model.count(), 1);
        setSilent(true);
        QSignalSpy refused(&model, &FilesModel::pathRefused);
        expectWarning(QStringLiteral("Unable to read directory of a disk that does not answer:"));
        model.setDirectoryPath(path(QStringLiteral("share")));
        QVERIFY(refused.wait());
        QCOMPARE(model.directoryPath(), path(QStringLiteral("disk/")));
        QCOMPARE(askedOnMain.load(), 0);
    }

    void transfersWait_data()
    {
        QTest::addColumn<bool>("isUpload");
        QTest::addColumn<bool>("comesBack");
        QTest::newRow("from it") << true << true;
        QTest::newRow("to it") << false << true;
        QTest::newRow("from it, for good") << true << false;
        QTest::newRow("to it, for good") << false << false;
    }
    void transfersWait()
    {
        QFETCH(bool, isUpload);
        QFETCH(bool, comesBack);
        auto* disk =
            qobject_cast<LocalFileSystem*>(DefaultFileSystemProvider::instance()->getLocalFileSystem());
        disk->setPatience(std::chrono::milliseconds(comesBack ? 20000 : 500));
        QuietFileSystem server;
        server.types.insert(QStringLiteral("/x.mov"), FileSystem::File);
        OperationFactory factory;
        FileSystemOperationsRunner queue(&factory);
        OperationsModel model(&queue);
        QList<FileSystemFile> shown;
        QTRY_VERIFY(disk->getFiles(path(QStringLiteral("share")), shown) && shown.size() == 1);
        setSilent(true);
        const OperationPtr operation =
            isUpload ? queue.copy(disk, path(QStringLiteral("share/a.mov")), &server, QStringLiteral("/"))
                     : queue.copy(&server, QStringLiteral("/x.mov"), disk, path(QStringLiteral("share")));
        QVERIFY(operation);
        const auto wait = [&model] { return model.index(0, 0).data(OperationsModel::WaitsForRole).toInt(); };
        QTRY_COMPARE(wait(), static_cast<int>(OperationsModel::Wait::Disk));
        if (comesBack) {
            setSilent(false);
            QTRY_VERIFY(operation->isRunning());
            qSharedPointerCast<RunnableOperation>(operation)->abort();
        } else {
            QTRY_VERIFY(operation->hasFinished());
            const auto failed = qSharedPointerCast<RunnableOperation>(operation);
            QVERIFY(failed->errors().constFirst().message.contains(QStringLiteral("does not answer")));
            QVERIFY(disk->isLink(path(QStringLiteral("share/a.mov")))); // nothing is removed through it
        }
        QTRY_COMPARE(wait(), static_cast<int>(OperationsModel::Wait::Nothing));
        QCOMPARE(askedOnMain.load(), 0);
        setSilent(false);
        const QDir share(path(QStringLiteral("share")));
        QTRY_COMPARE(share.entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("a.mov")});
    }

private:
    QString path(const QString& below) const
    {
        return m_folder->filePath(below);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

HALCYRA_TEST(TestSilentDisk)

} // namespace vantrel::test

#include "test_silentdisk.moc"
