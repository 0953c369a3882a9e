#include "common/media/address/mediautils.h"
#include "common/media/edit/playlist/addplaylistcommand.h"
#include "common/media/edit/playlist/removeplaylistcommand.h"
#include "common/media/edit/playlist/renameplaylistcommand.h"
#include "common/media/edit/slot/addmediatocollectioncommand.h"
#include "common/media/edit/slot/clearslotfromcollectioncommand.h"
#include "common/media/edit/slot/copycollectioncommand.h"
#include "common/media/edit/slot/editslotscalingcommand.h"
#include "common/media/edit/slot/insertcollectioncommand.h"
#include "common/media/edit/slot/moveslotincollectioncommand.h"
#include "common/media/edit/slot/removecollectioncommand.h"
#include "common/media/edit/slot/renamecollectioncommand.h"
#include "common/media/edit/slot/renameslotcommand.h"
#include "common/media/edit/slot/setinpointcommand.h"
#include "common/media/edit/slot/setoutpointcommand.h"
#include "common/media/items/guimediacollection.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/items/guiplaylist.h"
#include "common/media/items/guiplaylistentry.h"
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

using CommandPtr = std::unique_ptr<LibraryEditCommand>;

/// The session would send a command to the one window of this process: here each has its own client.
template <typename Command>
class Loose : public Command
{
protected:
    bool hasApi() const override { return true; }
};

template <typename Command, typename... Args>
CommandPtr make(const MediaLibrary* library, Args&&... args)
{
    auto command = std::make_unique<Loose<Command>>();
    return command->init(library, std::forward<Args>(args)...) ? CommandPtr(std::move(command)) : nullptr;
}

/// Edits entries by hand of the library.
class EntryCommand : public LibraryEditCommand
{
public:
    bool init(const MediaLibrary* library, const Edit& edit)
    {
        return rehearse(library, QStringLiteral("entry"), edit);
    }
};

/// An operator's random next step, from what the own window shows.
class Operator
{
public:
    explicit Operator(quint32 seed)
        : m_random(seed)
    {
    }

    int below(int bound) { return m_random.bounded(bound); }

    CommandPtr next(const MediaLibrary* library)
    {
        const int collection = 1 + below(6);
        const int slot = 1 + below(12);
        const QString url = media::MediaUtils::toSlotAddress(collection, slot);
        switch (below(16)) {
        case 0:
            return make<InsertCollectionCommand>(library, collection, name());
        case 1:
            return below(3) ? nullptr : make<RemoveCollectionCommand>(library, collection);
        case 2:
            return make<CopyCollectionCommand>(library, collection, 1 + below(6));
        case 3:
            return make<RenameCollectionCommand>(library, collection, name());
        case 4:
        case 5:
            return make<AddMediaToCollectionCommand>(library, collection, slot, medias());
        case 6:
            return make<ClearSlotFromCollectionCommand>(library, collection, slot);
        case 7:
            return make<MoveSlotInCollectionCommand>(library, collection, slot, 1 + below(12));
        case 8:
            return make<SetInpointCommand>(library, url, below(1000) / 7.0);
        case 9:
            return make<SetOutpointCommand>(library, url,
                                            below(2) ? std::optional(below(1000) / 3.0) : std::nullopt);
        case 10:
            return make<RenameSlotCommand>(library, collection, slot, name());
        case 11:
            return make<AddPlaylistCommand>(library, 1 + below(4), name());
        case 12:
            return below(4) ? nullptr : make<RemovePlaylistCommand>(library, 1 + below(4));
        case 13:
            return make<RenamePlaylistCommand>(library, 1 + below(4), name());
        default:
            return entryEdit(library, url.toStdString());
        }
    }

private:
    QString name()
    {
        static const QStringList words{QStringLiteral("loop"),         QStringLiteral("a  b   c"),
                                       QStringLiteral("\"quoted\\\""), QStringLiteral("夜景 \u00a0x"),
                                       QStringLiteral("data: x\n\ny"), QStringLiteral("tab\t end ")};
        return words[below(int(words.size()))] + QString::number(below(1000));
    }

    QList<GuiMediaSlot> medias()
    {
        QList<GuiMediaSlot> list(1 + below(3));
        for (GuiMediaSlot& slot : list) {
            slot.setName(name());
            slot.setContentUrl(QUrl(QStringLiteral("file:///clips/%1.mp4").arg(below(50))));
            slot.setDuration(below(500));
        }
        return list;
    }

    CommandPtr entryEdit(const MediaLibrary* library, const std::string& slotUrl)
    {
        const int kind = below(5);
        const int playlist = 1 + below(4);
        const EntryAddress at(1 + below(10), below(3));
        const PlaylistEntry entry(slotUrl, EndAction(below(4)), TakeTransitionType(below(3)), below(9));
        return make<EntryCommand>(library, [=](MediaLibrary& copy) {
            Playlist* list = copy.findPlaylist(playlist);
            if (!list)
                return false;
            if (kind == 0)
                return list->removeEntry(at);
            if (kind == 1)
                return list->moveEntry(at, {at.major + 1, 0});
            return kind == 2 ? list->replaceEntry(at, entry) : list->addEntry(at, entry);
        });
    }

    QRandomGenerator m_random;
};

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
