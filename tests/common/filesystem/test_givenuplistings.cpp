#include "common/filesystem/operations/recursivedirectorylister.h"
#include "common/filesystem/server/serverfilesystem.h"
#include "tests/common/filesystem/scriptedclient.h"
#include "tests/support/testmain.h"

#include <QSignalSpy>
#include <QTest>

using namespace vantrel;
using namespace vantrel::test;

/// What nobody waits for any more holds nobody up, and says nothing of the path.
class TestGivenUpListings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAbortedAndAskedForAnew()
    {
        const QString many = QStringLiteral("/many/");
        const QString list = QStringLiteral("list /many/");
        ScriptedClientFactory factory;
        ScriptedClient& client = *factory.client;
        ServerFileSystem server(QUrl(QStringLiteral("ftp://stage")), &factory);
        client.setConnected(true);
        const QSignalSpy invalid(&server, &FileSystem::invalidDirectoryPathRequest);
        const QSignalSpy changed(&server, &FileSystem::directoryChanged);
        RecursiveDirectoryLister lister(&server, many, 1);
        lister.start();
        QTRY_COMPARE(client.last(), list);
        lister.stop();
        QCOMPARE(client.last(), QStringLiteral("abort"));
        client.finishList(many, {}, false);
        QCOMPARE(invalid.size(), 0);
        QCOMPARE(changed.size(), 1); // another one may wait for it
        QList<FileSystemFile> files;
        QVERIFY(!server.getFiles(many, files));
        QCOMPARE(client.last(), list);
        // What somebody else has asked for is not the lister's to give up.
        lister.start();
        QCoreApplication::processEvents();
        lister.stop();
        QCOMPARE(client.last(), list);
        client.finishList(many, {}, false);
        QCOMPARE(invalid.size(), 1);
    }
};

HALCYRA_TEST(TestGivenUpListings)
#include "test_givenuplistings.moc"
