#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

/// The program itself: how it starts, says what is wrong, and ends.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with the server");
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("arguments"); // %1 a folder, %2 a port in use
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("said");
        const auto row = [](const char* name, const char* arguments, int code, const char* said) {
            QTest::newRow(name) << QString::fromLatin1(arguments).split(u' ') << code << QByteArray(said);
        };
        row("no folders", "--bind 127.0.0.1", 2, "--media and --state are needed");
        row("unknown option", "--media %1 --state %1/s --speed 3", 2, "cannot use \"--speed 3\"");
        row("bad port", "--media %1 --state %1/s --http-port 70000", 2, "cannot use \"--http-port 70000\"");
        row("bad address", "--media %1 --state %1/s --bind nowhere", 2, "cannot use \"--bind nowhere\"");
        row("no value", "--media %1 --state %1/s --link-port", 2, "cannot use \"--link-port\"");
        row("no media", "--media %1/none --state %1/s", 1, "there is no media folder");
        row("state is a file", "--media %1 --state /dev/null/s", 1, "cannot create");
        row("port in use",
            "--media %1 --state %1/s --http-port 0 --link-port %2 --preview-port 0 --ftp-port 0", 1,
            "cannot listen on 127.0.0.1 port %2");
    }

    void refusals()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QByteArray, said);
        const QTemporaryDir folder;
        QTcpServer taken;
        QVERIFY(taken.listen(QHostAddress::LocalHost));
        const QString port = QString::number(taken.serverPort());
        for (QString& argument : arguments)
            argument.replace(QLatin1String("%1"), folder.path()).replace(QLatin1String("%2"), port);
        said.replace("%2", port.toLatin1());
        QProcess process;
        process.start(OmbraProcess::binary(QStringLiteral("ombra")), arguments);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), code);
        const QByteArray output = process.readAllStandardError();
        QVERIFY2(output.contains("ombra: ") && output.contains(said), output.constData());
    }

    /// As the file server of one that was killed does, a moment after it.
    void waitsForAPortThatIsGivenBack_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("link") << QStringLiteral("--link-port");
        QTest::newRow("files") << QStringLiteral("--ftp-port");
    }

    void waitsForAPortThatIsGivenBack()
    {
        QFETCH(QString, option);
        QTcpServer before;
        QVERIFY(before.listen(QHostAddress::LocalHost));
        const QTemporaryDir folder;
        QProcess server;
        server.setProcessChannelMode(QProcess::MergedChannels);
        QStringList arguments{QStringLiteral("--media"), folder.path(), QStringLiteral("--state"),
                              folder.filePath(QStringLiteral("state")), QStringLiteral("--no-discovery")};
        for (const char* port : {"--http-port", "--link-port", "--preview-port", "--ftp-port"})
            arguments +=
                {QLatin1String(port),
                 option == QLatin1String(port) ? QString::number(before.serverPort()) : QStringLiteral("0")};
        server.start(OmbraProcess::binary(QStringLiteral("ombra")), arguments);
        QByteArray said;
        const auto says = [&](const char* words) {
            return QTest::qWaitFor(
                [&] {
                    said += server.readAll();
                    return said.contains(words);
                },
                20000);
        };
        QVERIFY2(says("waits for port "), said.constData());
        before.close();
        QVERIFY2(says("ombra ready"), said.constData());
        server.terminate();
        QVERIFY(server.waitForFinished(20000));
    }

    void endsWhenAsked()
    {
        OmbraProcess server;
        QVERIFY2(server.start(), server.output().constData());
        QProcess second; // the folder is taken as long as the first one runs
        second.start(OmbraProcess::binary(QStringLiteral("ombra")),
                     {QStringLiteral("--media"), server.mediaFolder(), QStringLiteral("--state"),
                      server.stateFolder(), QStringLiteral("--http-port"), QStringLiteral("0")});
        QVERIFY(second.waitForFinished(20000));
        QCOMPARE(second.exitCode(), 1);
        QVERIFY(second.readAllStandardError().contains("another server uses"));
        server.stop();
        QVERIFY(!server.isRunning());
        QVERIFY(!server.output().contains("error"));
        QVERIFY2(server.start(), server.output().constData()); // on the same ports
    }
};

HALCYRA_TEST(ProgramTest)
#include "programtest.moc"
