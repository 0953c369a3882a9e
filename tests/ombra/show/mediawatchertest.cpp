#include "ombra/show/mediawatcher.h"

#include "tests/support/testmain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <boost/asio/io_context.hpp>

#include <ctime>

using namespace vantrel::ombra;

class MediaWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_told.clear();
        touch(QStringLiteral("old.mp4"));
        m_watcher = std::make_unique<MediaWatcher>(
            m_io, m_folder->filePath(QStringLiteral("media")).toStdString(),
            [this](MediaWatcher::Event event, const std::string& url) {
                static constexpr const char* names[] = {"added ", "changed ", "removed "};
                m_told += QLatin1String(names[static_cast<int>(event)]) + QString::fromStdString(url);
            });
        std::string error;
        QVERIFY2(m_watcher->start(&error), error.c_str());
    }

    void cleanup()
    {
        m_watcher.reset();
        m_io.restart();
        m_io.poll();
    }

    void files()
    {
        touch(QStringLiteral("old.mp4"));
        touch(QStringLiteral("new.mp4"));
        QVERIFY(comes({QStringLiteral("added file:///new.mp4"), QStringLiteral("changed file:///old.mp4")}));
        QVERIFY(QFile::rename(path(QStringLiteral("old.mp4")), path(QStringLiteral("renamed.mp4"))));
        QVERIFY(
            comes({QStringLiteral("added file:///renamed.mp4"), QStringLiteral("removed file:///old.mp4")}));
        touch(QStringLiteral("f_0001.png"));
        QVERIFY(comes(
            {QStringLiteral("added file:///f_0001.png"), QStringLiteral("changed file:///f_%2504d.png")}));
        // An upload is nobody's business before it is whole.
        touch(QStringLiteral(".halcyra-01.part"));
        touch(QStringLiteral("other.mp4"));
        QVERIFY(comes({QStringLiteral("added file:///other.mp4")}));
        QVERIFY(QFile::rename(path(QStringLiteral(".halcyra-01.part")), path(QStringLiteral("whole.mp4"))));
        QVERIFY(comes({QStringLiteral("added file:///whole.mp4")}));
    }

    void folders()
    {
        const QString outside = m_folder->filePath(QStringLiteral("outside/deep"));
        QVERIFY(QDir().mkpath(outside));
        QFile file(outside + QStringLiteral("/a.mp4"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QVERIFY(QDir().rename(m_folder->filePath(QStringLiteral("outside")), path(QStringLiteral("in"))));
        QVERIFY(comes({QStringLiteral("added file:///in/deep/a.mp4")}));
        touch(QStringLiteral("in/deep/b.mp4")); // what came along is watched too
        QVERIFY(comes({QStringLiteral("added file:///in/deep/b.mp4")}));
        QVERIFY(QDir().rename(path(QStringLiteral("in")), m_folder->filePath(QStringLiteral("gone"))));
        QVERIFY(comes({QStringLiteral("removed file:///in/deep/a.mp4"),
                       QStringLiteral("removed file:///in/deep/b.mp4")}));
        QVERIFY(QDir().mkpath(path(QStringLiteral("x/y/z"))));
        touch(QStringLiteral("x/y/z/c.mp4"));
        QVERIFY(comes({QStringLiteral("added file:///x/y/z/c.mp4")}));
    }

    /// A disk that is slow holds nobody else up: what is to be asked of it is not the loop's work.
    void looksAside()
    {
        const QString outside = m_folder->filePath(QStringLiteral("outside"));
        for (int i = 0; i < 4000; ++i)
            QVERIFY(QDir().mkpath(outside + QStringLiteral("/%1").arg(i)));
        QFile file(outside + QStringLiteral("/a.mp4"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        const long all = worked(CLOCK_PROCESS_CPUTIME_ID), own = worked(CLOCK_THREAD_CPUTIME_ID);
        QVERIFY(QDir().rename(outside, path(QStringLiteral("in"))));
        QVERIFY(comes({QStringLiteral("added file:///in/a.mp4")}));
        const long allOf = worked(CLOCK_PROCESS_CPUTIME_ID) - all;
        const long ownOf = worked(CLOCK_THREAD_CPUTIME_ID) - own;
        qInfo("%ld of %ld us in the loop", ownOf, allOf);
        QVERIFY(ownOf < allOf / 2);
    }

    /// As its disk does; a folder that is made again in the same moment may even be the same to the system.
    void theFolderGoesAndComes()
    {
        QStringList folder;
        m_watcher->setFolderListener([&](MediaWatcher::Folder now) {
            static constexpr const char* names[] = {"there", "empty", "gone"};
            folder += QLatin1String(names[static_cast<int>(now)]);
        });
        const QString media = m_folder->filePath(QStringLiteral("media"));
        const QString aside = m_folder->filePath(QStringLiteral("aside"));
        QVERIFY(QDir().rename(media, aside));
        QVERIFY(comes({QStringLiteral("removed file:///old.mp4")}));
        QVERIFY(QDir().rename(aside, media));
        QVERIFY(comes({QStringLiteral("added file:///old.mp4")}));
        touch(QStringLiteral("new.mp4")); // and is watched again
        QVERIFY(comes({QStringLiteral("added file:///new.mp4")}));
        QVERIFY(QDir(media).removeRecursively() && QDir().mkpath(media));
        QVERIFY(
            comes({QStringLiteral("removed file:///new.mp4"), QStringLiteral("removed file:///old.mp4")}));
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 3000 && folder.last() != QLatin1String("empty");)
            m_io.run_one_for(std::chrono::milliseconds(5));
        for (timer.start(); timer.elapsed() < 5000 && m_told.isEmpty();) {
            touch(QStringLiteral("late.mp4"));
            m_io.restart();
            m_io.run_one_for(std::chrono::milliseconds(50));
        }
        QVERIFY(m_told.contains(QStringLiteral("added file:///late.mp4")));
        QCOMPARE(folder.join(u' '), QStringLiteral("there gone there empty there"));
    }

private:
    /// Microseconds, whatever else the machine does.
    static long worked(clockid_t whose)
    {
        timespec time{};
        clock_gettime(whose, &time);
        return time.tv_sec * 1'000'000 + time.tv_nsec / 1000;
    }

    QString path(const QString& name) const { return m_folder->filePath(QStringLiteral("media/") + name); }

    void touch(const QString& name)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path(name)).path()));
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
        file.write("x");
    }

    /// Whether just these are told next, in any order.
    bool comes(QStringList expected)
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 5000 && m_told.size() < expected.size();) {
            m_io.restart();
            m_io.run_one_for(std::chrono::milliseconds(5));
        }
        QStringList told = std::exchange(m_told, {});
        told.sort();
        expected.sort();
        if (told != expected)
            qInfo() << told;
        return told == expected;
    }

    boost::asio::io_context m_io;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MediaWatcher> m_watcher;
    QStringList m_told;
};

HALCYRA_TEST(MediaWatcherTest)
#include "mediawatchertest.moc"
