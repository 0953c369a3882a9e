#include "tests/support/appprocess.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/robotclient.h"
#include "tests/support/testmain.h"

#include <QImage>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTest>

using namespace vantrel::test;

/// An operator builds a library in the window by mouse and keyboard, undoes all of it and redoes it. What
/// counts is what the server holds after each step.
class BuildLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void stepsReachTheServer();
    void undoneToTheStartAndRedoneToTheEnd();
    void fromNothingToFullAndBack();
    void endsCleanly();

private:
    QJsonObject library();
    QJsonObject collection(const QString& index) { return library()["collections"][index].toObject(); }
    bool answerDialog(const QString& dialog, const QString& text);
    bool collectionMenu(const QString& entry);
    void keep() { m_states.append(library()); }
    bool emptyTheLibrary();
    void undoAndRedoAll();

    QTemporaryDir m_media;
    OmbraProcess m_ombra;
    AppProcess m_app;
    RobotClient m_robot;
    QNetworkAccessManager m_network;
    QList<QJsonObject> m_states; // the server's library at the start and after each edit
};

QJsonObject BuildLibrary::library()
{
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_ombra.ports().http));
    const std::unique_ptr<QNetworkReply> reply(m_network.get(QNetworkRequest(url)));
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, 5000))
        return {};
    return QJsonDocument::fromJson(reply->readAll()).object();
}

bool BuildLibrary::answerDialog(const QString& dialog, const QString& text)
{
    if (!m_robot.click(dialog + QStringLiteral("-input-0")))
        return false;
    m_robot.key(QStringLiteral("CtrlA"));
    m_robot.type(text);
    return m_robot.click(dialog + QStringLiteral("-accept-button"));
}

bool BuildLibrary::collectionMenu(const QString& entry)
{
    return m_robot.click(QStringLiteral("MediaPanel-menu-button")) &&
           m_robot.clickMenuEntry(QStringLiteral("MediaPanel-menu"), entry);
}

void BuildLibrary::initTestCase()
{
    for (const char* name : {"logo.png", "plate.png"}) {
        QImage picture(320, 180, QImage::Format_RGB32);
        picture.fill(Qt::darkCyan);
        QVERIFY(picture.save(m_media.filePath(QString::fromLatin1(name))));
    }
    m_ombra.setMediaFolder(m_media.path());
    QVERIFY2(m_ombra.start(), m_ombra.output().constData());
    QVERIFY2(m_app.start(AppProcess::connectTo(m_ombra.ports())), qPrintable(m_app.output()));
    QVERIFY(m_robot.connectTo(m_app.uiTestPort()));
    QVERIFY(!m_robot.waitFor(QStringLiteral("MediaPanel-slots-view")).isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(m_robot.cells(QStringLiteral("MediaPanel-slots-view")).size(), 2, 15000);
    keep();
}

void BuildLibrary::stepsReachTheServer()
{
    QVERIFY(collectionMenu(QStringLiteral("Duplicate collection")));
    QTRY_COMPARE(collection("2")["name"].toString(), QStringLiteral("Duplicate of Media"));
    keep();

    QVERIFY(m_robot.click(QStringLiteral("MediaPanel-add-collection-button")));
    QVERIFY(answerDialog(QStringLiteral("MediaPanel-new-collection"), QStringLiteral("act one")));
    QTRY_COMPARE(collection("3")["name"].toString(), QStringLiteral("act one"));
    keep();

    QVERIFY(collectionMenu(QStringLiteral("Rename collection...")));
    QVERIFY(answerDialog(QStringLiteral("MediaPanel-rename-collection"), QStringLiteral("act two")));
    QTRY_COMPARE(collection("3")["name"].toString(), QStringLiteral("act two"));
    keep();

    QVERIFY(collectionMenu(QStringLiteral("Remove collection...")));
    QVERIFY(m_robot.click(QStringLiteral("MediaPanel-remove-collection-accept-button")));
    QTRY_VERIFY(collection("3").isEmpty());
    keep();

    const QString view = QStringLiteral("MediaPanel-slots-view");
    QTRY_COMPARE(m_robot.cells(view).size(), 2);
    QVERIFY(m_robot.clickCell(view, 1, 0));
    const QJsonObject before = library();
    m_robot.key(QStringLiteral("Delete"));
    QTRY_VERIFY(library() != before);
    keep();
}

void BuildLibrary::undoneToTheStartAndRedoneToTheEnd()
{
    QCOMPARE(m_states.size(), 6);
    undoAndRedoAll();
}

void BuildLibrary::undoAndRedoAll()
{
    for (qsizetype i = m_states.size() - 2; i >= 0; --i) {
        m_robot.key(QStringLiteral("CtrlZ"));
        QTRY_COMPARE(library(), m_states[i]);
    }
    // Which keys redo is the platform's choice; without a display it is this one.
    for (qsizetype i = 1; i < m_states.size(); ++i) {
        m_robot.key(QStringLiteral("CtrlY"));
        QTRY_COMPARE(library(), m_states[i]);
    }
}

/// Another client replaces the library by one that holds nothing.
bool BuildLibrary::emptyTheLibrary()
{
    QNetworkRequest request(
        QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_ombra.ports().http)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const std::unique_ptr<QNetworkReply> reply(
        m_network.post(request, QByteArrayLiteral("{\"collections\":{},\"playlists\":{}}")));
    return QTest::qWaitFor([&] { return reply->isFinished(); }, 5000) &&
           reply->error() == QNetworkReply::NoError;
}

void BuildLibrary::fromNothingToFullAndBack()
{
    QVERIFY(emptyTheLibrary());
    const QString chooser = QStringLiteral("MediaPanel-collection-chooser");
    QTRY_COMPARE(m_robot.text(chooser), QString());
    m_states.clear();
    keep();
    QVERIFY(m_states.first()["collections"].toObject().isEmpty());

    for (const QString& name : {QStringLiteral("act one"), QStringLiteral("act two")}) {
        QVERIFY(m_robot.click(QStringLiteral("MediaPanel-add-collection-button")));
        QVERIFY(answerDialog(QStringLiteral("MediaPanel-new-collection"), name));
        QTRY_COMPARE(collection(QString::number(m_states.size()))["name"].toString(), name);
        QTRY_VERIFY(m_robot.text(chooser).contains(name));
        keep();
    }
    QVERIFY(collectionMenu(QStringLiteral("Duplicate collection")));
    QTRY_COMPARE(collection("3")["name"].toString(), QStringLiteral("Duplicate of act two"));
    keep();
    undoAndRedoAll();
}

void BuildLibrary::endsCleanly()
{
    QCOMPARE(m_app.stop(), 0);
    m_ombra.stop();
    QVERIFY(!m_ombra.isRunning());
}

HALCYRA_TEST(BuildLibrary)
#include "buildlibrary.moc"
