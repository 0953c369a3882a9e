#include "common/filesystem/schedule/defaultfilesystemprovider.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "tests/common/filesystem/scriptedftp.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>

namespace vantrel::test {

class TestProvider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A server that is back with its files at another port: nothing waits for the one before.
    void followsTheServerToAnotherPort()
    {
        auto* const provider = DefaultFileSystemProvider::instance();
        const QString server = QStringLiteral("server");
        ScriptedFtp before;
        ScriptedFtp after;
        QPointer<ServerFileSystem> old;
        {
            ScriptedPeer peer(before.port());
            QCOMPARE(provider->getFileSystem(server), nullptr);
            QVERIFY(peer.connect());
            QTRY_VERIFY(peer.session->isConnected() && provider->getFileSystem(server));
            old = qobject_cast<ServerFileSystem*>(provider->getFileSystem(server));
            QTRY_VERIFY(old->isConnectedToServer() && !old->isLoading());
        }
        QSignalSpy givenUp(old, &FileSystem::givenUp);
        ScriptedPeer peer(after.port());
        QVERIFY(peer.connect());
        QTRY_COMPARE(after.count("LIST"), 1);
        auto* const now = qobject_cast<ServerFileSystem*>(provider->getFileSystem(server));
        QVERIFY(now);
        QCOMPARE(now->server().port(), int(after.port()));
        QCOMPARE(givenUp.count(), 1);
        QTRY_COMPARE(before.count("QUIT"), 1);
        // There and back again.
        QSignalSpy left(now, &FileSystem::givenUp);
        QCOMPARE(provider->getServerFileSystem(old->server(), {}, {}), old);
        QCOMPARE(left.count(), 1);
        QCOMPARE(provider->getFileSystem(server), old);
        QTRY_VERIFY(old->isConnectedToServer());
        QTRY_COMPARE(after.count("QUIT"), 1);
        delete old;
        delete now;
    }
};

HALCYRA_TEST(TestProvider)

} // namespace vantrel::test

#include "test_provider.moc"
