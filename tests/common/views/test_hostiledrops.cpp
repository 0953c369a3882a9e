#include "common/media/items/guimediaslot.h"
#include "common/qml/qmlmanager.h"
#include "tests/common/views/droppinghand.h"
#include "tests/support/testmain.h"

#include <QFile>
#include <QUndoStack>

namespace vantrel::test {

/// Drops of what lies, goes or leads nowhere: a sentence each, and nothing half done.
class TestHostileDrops : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
        allowWarnings(QStringLiteral("Getting system property failed"));
        allowWarnings(QStringLiteral("Failed to get media library"));
    }
    void init()
    {
        NotificationManagerImpl::instance()->clear();
        m_hand = std::make_unique<DroppingHand>();
        QVERIFY(m_hand->isReady());
    }
    void cleanup() { m_hand.reset(); }
    void cleanupTestCase() { QMLManager::instance()->deinitialize(); }

    void linksThatLeadBack()
    {
        expectWarning(QStringLiteral("Unable to get listed directory content"));
        m_hand->makePicture(QStringLiteral("act/sky.png"));
        for (const char* name : {"again", "once more"})
            QVERIFY(QFile::link(path(QStringLiteral("act")),
                                path(QStringLiteral("act/%1").arg(QLatin1String(name)))));
        QVERIFY(m_hand->drop({QStringLiteral("act")}, 3));
        QTRY_COMPARE(m_hand->told(),
                     QStringLiteral("&quot;act&quot; has not arrived, so no slot was made of it."));
        QVERIFY(m_hand->wasTold(QStringLiteral("a link that leads back into it")));
        QVERIFY(!onServer(QStringLiteral("act")));
    }

    /// HALCYRA_ENTRIES=1000000 gives up what takes longer.
    void folderOfManyIsGivenUp_data()
    {
        QTest::addColumn<bool>("isLocal");
        QTest::newRow("of this computer") << true;
        QTest::newRow("of the server") << false;
    }
    void folderOfManyIsGivenUp()
    {
        QFETCH(bool, isLocal);
        // Of what it is at in that moment.
        allowWarnings(QStringLiteral("Aborting rest of the operations"));
        const QString folder =
            isLocal ? path(QStringLiteral("many")) : m_hand->server.mediaFolder() + QStringLiteral("/many");
        QVERIFY(QDir().mkpath(folder));
        const int count = std::max(20000, qEnvironmentVariableIntValue("HALCYRA_ENTRIES"));
        for (int i = 0; i < count; ++i) {
            QFile file(folder + QStringLiteral("/still %1 of many.png").arg(i));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        const int steps = m_hand->live.session->getQUndoStack()->index();
        QMimeData data;
        data.setData(QStringLiteral("application/type"), "media");
        data.setData(
            QStringLiteral("application/json"),
            R"([{"path":"/many","fileSystem":"server","name":"many","duration":0,"isDirectory":true,"isPlayable":true}])");
        QVERIFY(isLocal ? m_hand->drop({QStringLiteral("many")}, 3) : m_hand->drop(data, 3));
        QTRY_VERIFY(!m_hand->drops->pendingText().isEmpty());
        m_hand->drops->givePendingUp();
        QTRY_COMPARE(m_hand->drops->pendingText(), QString());
        QTRY_VERIFY2(m_hand->told().contains(QStringLiteral("o slot was made of it")),
                     qPrintable(m_hand->told()));
        // The next one is not held up by it.
        m_hand->makePicture(QStringLiteral("logo.png"));
        QVERIFY(m_hand->drop({QStringLiteral("logo.png")}, 5));
        QVERIFY(m_hand->approve());
        QTRY_VERIFY(m_hand->slot(5) && m_hand->slot(5)->isPlayable());
        QVERIFY(!m_hand->slot(3));
        QCOMPARE(m_hand->live.session->getQUndoStack()->index(), steps + 1);
    }

    void longestNames()
    {
        const QString file = QString(251, u'x') + QStringLiteral(".png");
        const QString folder = QString(255, u'y');
        m_hand->makePicture(file);
        m_hand->makePicture(folder + u'/' + file);
        QVERIFY(m_hand->drop({file}, 3));
        QVERIFY(m_hand->approve());
        QTRY_VERIFY(m_hand->slot(3) && m_hand->slot(3)->isPlayable());
        QVERIFY(m_hand->drop({folder}, 4));
        QVERIFY(m_hand->approve());
        QTRY_VERIFY(m_hand->slot(4) && m_hand->slot(4)->isPlayable());
    }

    /// Minutes may pass before the operator has looked.
    void goneBeforeApproved_data()
    {
        QTest::addColumn<bool>("isReplaced");
        QTest::newRow("gone") << false;
        QTest::newRow("folders of the same names") << true;
    }
    void goneBeforeApproved()
    {
        QFETCH(bool, isReplaced);
        const QStringList going{QStringLiteral("logo.png"), QStringLiteral("rain_01.png"),
                                QStringLiteral("clip.mov")};
        const QStringList staying{QStringLiteral("plate.png"), QStringLiteral("rain_02.png"),
                                  QStringLiteral("rain_03.png")};
        for (const QString& name : going + staying)
            m_hand->makePicture(name);
        QVERIFY(m_hand->drop(going + staying, 3));
        QTRY_VERIFY(m_hand->reviewed());
        for (const QString& name : going) {
            QVERIFY(QFile::remove(path(name)));
            if (isReplaced)
                m_hand->makePicture(name + QStringLiteral("/plate.png"));
        }
        QVERIFY(m_hand->approve());
        QTRY_VERIFY(m_hand->slot(4) && m_hand->slot(4)->isPlayable());
        QCOMPARE(m_hand->slot(3)->name(), QStringLiteral("rain_%02d.png"));
        QCOMPARE(m_hand->slot(4)->name(), QStringLiteral("plate.png"));
        QVERIFY(!m_hand->slot(5));
        QTRY_VERIFY(m_hand->drops->arrivals().isEmpty());
        for (const QString& name : going) {
            QVERIFY(m_hand->told().contains(name));
            QVERIFY2(!onServer(name), qPrintable(name));
        }
    }

    void collectionIsRemovedBeforeApproved()
    {
        m_hand->makePicture(QStringLiteral("logo.png"));
        QVERIFY(m_hand->drop({QStringLiteral("logo.png")}, 3));
        QTRY_VERIFY(m_hand->reviewed());
        QVERIFY(m_hand->live.manager.removeCollection(LiveSession::collection));
        QTRY_VERIFY(!m_hand->live.library()->collection(LiveSession::collection));
        m_hand->reviewed()->acceptButton()->click();
        QCOMPARE(m_hand->reviewed()->description(),
                 QStringLiteral("Its collection is not in the library any more."));
        QVERIFY(!m_hand->reviewed()->acceptButton()->isEnabled());
        m_hand->reviewed()->reject();
        QTRY_VERIFY(!m_hand->reviewed());
        QVERIFY(!onServer(QStringLiteral("logo.png")));
    }

    /// Of a still as of any other medium: what only has its name is not played in its place.
    void nameIsTakenMeanwhile()
    {
        const QString name = QStringLiteral("logo.png");
        m_hand->makePicture(name);
        QVERIFY(m_hand->drop({name}, 3));
        QTRY_VERIFY(m_hand->reviewed());
        QVERIFY(QFile::copy(path(name), m_hand->server.mediaFolder() + u'/' + name));
        QVERIFY(m_hand->approve());
        QTRY_VERIFY(m_hand->slot(3) && m_hand->slot(3)->contentUrl().isEmpty());
        QVERIFY(m_hand->told().contains(QStringLiteral("Slot 3 of collection 7 was cleared")));
    }

    void payloadsThatLie_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("warning");
        const auto file = [](const char* path, const char* system, bool isDirectory) {
            return QStringLiteral(
                       R"({"path":"%1","fileSystem":"%2","name":"<b>x</b>","duration":1,"isDirectory":%3,)"
                       R"("isPlayable":true,"isKnown":true})")
                .arg(QLatin1String(path), QLatin1String(system),
                     isDirectory ? QStringLiteral("true") : QStringLiteral("false"));
        };
        const auto list = [](const QStringList& files) { return (u'[' + files.join(u',') + u']').toUtf8(); };
        QTest::newRow("of both sides")
            << QByteArray("media") << list({file("/a.mov", "local", false), file("/a.mov", "server", false)})
            << QStringLiteral("one after the other") << QString();
        QTest::newRow("a folder that is a file")
            << QByteArray("media") << list({file("/here.mov", "server", true)})
            << QStringLiteral("another one by now") << QStringLiteral("Mismatching type of dropped path");
        QTest::newRow("a folder that is none")
            << QByteArray("media") << list({file("/nowhere", "server", true)})
            << QStringLiteral("could not be read") << QStringLiteral("Listing directory failed");
        QTest::newRow("out of the folder")
            << QByteArray("media") << list({file("/../etc/x.mov", "server", false)})
            << QStringLiteral("cannot be read") << QStringLiteral("Unable to read media variables");
        QTest::newRow("nobody's disk") << QByteArray("media") << list({file("/a.mov", "moon", false)})
                                       << QStringLiteral("no connection to where it is")
                                       << QStringLiteral("Unable to get file system for");
        QTest::newRow("slots that are not there")
            << QByteArray("slot") << QByteArray(R"({"slots":[40,41]})")
            << QStringLiteral("Slot 7-40 is not in the library any more") << QString();
        QTest::newRow("slots of no collection")
            << QByteArray("slot") << QByteArray(R"({"collection":5,"slots":[1]})")
            << QStringLiteral("not in the library any more") << QString();
    }
    void payloadsThatLie()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, json);
        QFETCH(QString, told);
        QFETCH(QString, warning);
        if (!warning.isEmpty())
            expectWarning(warning);
        QFile here(m_hand->server.mediaFolder() + QStringLiteral("/here.mov"));
        QVERIFY(here.open(QIODevice::WriteOnly));
        QTRY_VERIFY(m_hand->isListed(QStringLiteral("/here.mov")));
        const int steps = m_hand->live.session->getQUndoStack()->index();
        QMimeData data;
        data.setData(QStringLiteral("application/type"), type);
        data.setData(QStringLiteral("application/json"), json);
        QVERIFY(m_hand->drop(data, 3));
        QTRY_VERIFY2(m_hand->told().contains(told), qPrintable(m_hand->told()));
        QVERIFY(!m_hand->told().contains(u'<'));
        QCOMPARE(m_hand->live.session->getQUndoStack()->index(), steps);
        QVERIFY(!m_hand->slot(3));
    }

private:
    QString path(const QString& name) const { return m_hand->local.filePath(name); }
    bool onServer(const QString& name) const
    {
        return QFile::exists(m_hand->server.mediaFolder() + u'/' + name);
    }

    std::unique_ptr<DroppingHand> m_hand;
};

} // namespace vantrel::test

using vantrel::test::TestHostileDrops;
HALCYRA_TEST(TestHostileDrops)
#include "test_hostiledrops.moc"
