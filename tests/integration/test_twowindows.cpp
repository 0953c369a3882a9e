#include "common/media/address/mediautils.h"
#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
#include "tests/integration/randomoperator.h"
#include "tests/support/choppyproxy.h"
#include "tests/support/mediamirror.h"
#include "tests/support/ombraprocess.h"
#include "tests/support/testmain.h"

#include <QAbstractItemModelTester>
#include <QNetworkReply>
#include <QTest>

namespace vantrel::test {

namespace {

constexpr int edits = 1000;
constexpr int undone = 200;
constexpr int drops = 5;

/// What one window holds, and its way to the server.
class Window
{
public:
    Window(quint16 port, quint32 seed)
        : operatorOf(seed)
        , m_mirror(makeRef<MediaLibrary>())
        , m_tester(&m_mirror.model, QAbstractItemModelTester::FailureReportingMode::QtTest)
        , m_port(port)
    {
        connectAnew();
    }

    /// As the session does after each connection.
    void connectAnew()
    {
        m_api.reset();
        m_isLoaded = false;
        m_api = std::make_unique<MediaLibraryApi>(QStringLiteral("127.0.0.1"), &m_manager,
                                                  m_mirror.library.get());
        m_api->setPort(m_port);
        m_mirror.wire(*m_api);
        QObject::connect(m_api.get(), &MediaLibraryApi::mediaLibraryReplaced, m_api.get(),
                         [this] { m_isLoaded = true; });
        m_api->listenChanges();
        m_api->requestMediaLibrary();
    }
    bool isLoaded() const { return m_isLoaded; }

    void send(const Patch& patch)
    {
        QNetworkReply* reply = m_api->patchMediaLibrary(patch);
        ++m_waiting;
        QObject::connect(reply, &QNetworkReply::finished, &m_manager, [this, reply] {
            accepted += reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == 200;
            --m_waiting;
            reply->deleteLater();
        });
    }
    int waiting() const { return m_waiting; }

    QByteArray text() const { return QByteArray::fromStdString(m_mirror.library->toJson().toString()); }
    const MediaMirror& mirror() const { return m_mirror; }

    Operator operatorOf;
    std::vector<CommandPtr> done;
    int accepted = 0;

private:
    QNetworkAccessManager m_manager;
    MediaMirror m_mirror;
    QAbstractItemModelTester m_tester;
    quint16 m_port;
    std::unique_ptr<MediaLibraryApi> m_api;
    int m_waiting = 0;
    bool m_isLoaded = false;
};

/// What the items and the model show of a library, slot by slot.
QStringList shown(const MediaMirror& mirror)
{
    QStringList lines;
    for (const auto& [index, collection] : mirror.library->getCollections()) {
        const auto item = mirror.provider.collection(index);
        lines.append(item ? item->name() : QStringLiteral("no item"));
        for (const auto& [number, slot] : collection.getSlots()) {
            const auto slotItem = mirror.provider.slot({index, number});
            const QVariant name = mirror.model.slotIndex({index, number}).data(MediaLibraryModel::NameRole);
            lines.append(QStringLiteral("%1 %2").arg(slotItem ? slotItem->name() : QStringLiteral("no item"),
                                                     name.toString()));
        }
    }
    for (const auto& [number, playlist] : mirror.library->getPlaylists()) {
        const auto item = mirror.playlists.playlist(uint(number));
        lines.append(
            QStringLiteral("%1 %2").arg(item ? item->name() : QString()).arg(item ? item->duration() : -1));
        for (const auto& entry : mirror.playlists.entries(uint(number))) {
            const MediaAddress address = media::MediaUtils::parseSlotAddress(entry->slotUrl());
            // Of a removed collection the items may stay until the next load.
            const auto slot = mirror.library->findSlot(address.collection, address.slot)
                                  ? mirror.playlists.entrySlot(uint(number), entry->address())
                                  : nullptr;
            lines.append(QStringLiteral("%1 %2 %3 %4")
                             .arg(QString::fromStdString(entry->address().toString(true)), entry->slotUrl(),
                                  slot ? slot->name() : QStringLiteral("nothing"))
                             .arg(entry->runtimeAfter()));
        }
    }
    return lines;
}

} // namespace

/// Two windows on one server, over a line that cuts what it brings into pieces and breaks now and then.
class TestTwoWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!OmbraProcess::isAvailable())
            QSKIP("HALCYRA_BIN names no folder with ombra in it");
    }
    void bothEndAlike();

private:
    QByteArray serversText();
    void step(Window& window, int i);

    OmbraProcess m_server;
};

QByteArray TestTwoWindows::serversText()
{
    QNetworkAccessManager manager;
    const QNetworkRequest request(
        QUrl(QStringLiteral("http://127.0.0.1:%1/api/brume/v1/medialibrary").arg(m_server.ports().http)));
    const std::unique_ptr<QNetworkReply> reply(manager.get(request));
    return QTest::qWaitFor([&] { return reply->isFinished(); }) ? reply->readAll() : QByteArray();
}

/// An edit, or every so often one that is taken back and made again.
void TestTwoWindows::step(Window& window, int i)
{
    if (i % (edits / undone) == 0 && !window.done.empty()) {
        const auto& command = window.done[size_t(window.operatorOf.below(int(window.done.size())))];
        window.send(command->undoPatch());
        window.send(command->redoPatch());
    }
    CommandPtr command;
    while (!command)
        command = window.operatorOf.next(window.mirror().library.get());
    window.send(command->redoPatch());
    window.done.push_back(std::move(command));
    if (window.done.size() > 3)
        window.done.erase(window.done.begin()); // only the latest are worth an undo
}

void TestTwoWindows::bothEndAlike()
{
    // Random commands often find nothing to edit, and say so.
    QLoggingCategory::setFilterRules(QStringLiteral("vantrel.media.debug=false\nvantrel.command=false"));
    allowWarnings(QStringLiteral("Missing slot: '"));
    allowWarnings(QStringLiteral("Failed to get media library"));
    allowWarnings(QStringLiteral("Invalid entry slot url: brume://")); // an entry's URL only marks it here
    // Both add the same one at the same time: the later addition replaces the earlier.
    allowWarnings(QStringLiteral("already existed. Invalid signaling."));
    QVERIFY(m_server.start());
    ChoppyProxy proxy(m_server.ports().http, 7);
    Window first(proxy.port(), 11);
    Window second(proxy.port(), 12);
    const std::array windows{&first, &second};
    QRandomGenerator random(13);
    const auto quiet = [&] { return first.waiting() + second.waiting() == 0; };
    const auto loaded = [&] { return first.isLoaded() && second.isLoaded(); };
    QTRY_VERIFY_WITH_TIMEOUT(loaded(), 10000);

    for (int i = 1; i <= edits; ++i) {
        step(*windows[random.bounded(2)], i);
        if (random.bounded(8) == 0)
            QTRY_VERIFY_WITH_TIMEOUT(quiet(), 20000); // else several are under way at once
        if (i % (edits / (drops + 1)) == 0 && i / (edits / (drops + 1)) <= drops) {
            proxy.drop();
            for (Window* window : windows)
                window->connectAnew(); // edits go on while it loads
        }
    }
    QTRY_VERIFY_WITH_TIMEOUT(quiet() && loaded(), 20000);

    const QByteArray expected = serversText();
    QVERIFY(!expected.isEmpty()); // how much random edits leave depends on the order in which they arrive
    QTRY_COMPARE_WITH_TIMEOUT(first.text(), expected, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(second.text(), expected, 10000);
    const QByteArray counts = QByteArray::number(first.accepted) + " and " +
                              QByteArray::number(second.accepted) + " accepted in " +
                              QByteArray::number(proxy.pieces()) + " pieces";
    QVERIFY2(first.accepted > edits / 4 && second.accepted > edits / 4, counts.constData());
    QVERIFY2(proxy.pieces() > 3 * edits, counts.constData());

    MediaMirror fresh(makeRef<MediaLibrary>());
    *fresh.library = *first.mirror().library;
    fresh.load();
    QCOMPARE(shown(first.mirror()), shown(fresh));
    QCOMPARE(shown(second.mirror()), shown(fresh));
    QLoggingCategory::setFilterRules(QString());
}

} // namespace vantrel::test

using vantrel::test::TestTwoWindows;
HALCYRA_TEST(TestTwoWindows)
#include "test_twowindows.moc"
