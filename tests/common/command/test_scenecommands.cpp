#include "common/command/abstractscenecompositecommand.h"
#include "common/command/addcommand.h"
#include "common/command/duplicatecommand.h"
#include "common/command/movecommand.h"
#include "common/command/playback/directplaycommand.h"
#include "common/command/playback/mutecommand.h"
#include "common/command/playback/playmediacommand.h"
#include "common/command/playback/seekcommand.h"
#include "common/command/playback/selectaudiodevicecommand.h"
#include "common/command/playback/setvolumecommand.h"
#include "common/command/playback/stepcommand.h"
#include "common/command/playback/takecommand.h"
#include "common/command/removecommand.h"
#include "common/command/setcommand.h"
#include "tarn/media/mediaaddress.h"
#include "tarn/media/playenums.h"
#include "tests/common/session/scriptedpeer.h"
#include "tests/support/testmain.h"

#include <QTest>
#include <QUndoStack>

namespace vantrel::test {

namespace {

const char* const sampleScene = R"([
    {"op":"add","path":"/device/channels/0","value":{"type":"Channel",
        "preview":{"properties":{"volume":0.25,"media":"before"}}}},
    {"op":"add","path":"/device/surfaces/0","value":{"properties":{"name":"first"}}},
    {"op":"add","path":"/device/surfaces/1","value":{"properties":{"name":"second"}}}])";

const Path volumePath("/device/channels/0/preview/properties/volume");

using Factory = std::function<AbstractSessionCommand*()>;

/// An initialised command of this type; null when its init refused.
template <typename T, typename... Args>
AbstractSessionCommand* made(bool (T::*init)(Args...), std::type_identity_t<Args>... args)
{
    auto command = std::make_unique<T>();
    const bool ready = (command.get()->*init)(args...);
    return ready && command->initialized() ? command.release() : nullptr;
}

} // namespace

} // namespace vantrel::test

Q_DECLARE_METATYPE(vantrel::test::Factory)

namespace vantrel::test {

class TestSceneCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_peer = std::make_unique<ScriptedPeer>();
        QVERIFY(m_peer->connect());
        m_peer->send(sampleScene);
        QTRY_VERIFY(scene()->findObject("/device/surfaces/1"));
        QTRY_COMPARE(int(m_peer->link.received.size()), 1);
    }
    void cleanup() { m_peer.reset(); }

    void setsAndRestoresAProperty_data()
    {
        QTest::addColumn<double>("given"); // the old value given at init, negative for none
        QTest::addColumn<double>("restored");
        QTest::newRow("old value read at the first redo") << -1.0 << 0.25;
        QTest::newRow("old value given") << 0.125 << 0.125;
    }
    void setsAndRestoresAProperty()
    {
        QFETCH(double, given);
        QFETCH(double, restored);
        auto* command = new SetCommand;
        QCOMPARE(command->text(), QStringLiteral("Set object property value(s)"));
        command->init(volumePath, Variant::from(0.5), given < 0 ? Variant() : Variant::from(given));
        push(command);
        QCOMPARE(volume(), 0.5);
        QTRY_COMPARE(sent(), QStringLiteral("replace /device/channels/0/preview/properties/volume 0.5"));
        stack()->undo();
        QCOMPARE(volume(), restored);
        stack()->redo();
        QCOMPARE(volume(), 0.5);
    }

    void mergesOnlyWhatIsMeantTo_data()
    {
        QTest::addColumn<bool>("mine");
        QTest::addColumn<bool>("others");
        QTest::addColumn<bool>("samePath");
        QTest::addColumn<bool>("sameType");
        QTest::addColumn<bool>("merges");
        QTest::addColumn<double>("result");
        QTest::newRow("neither mergeable") << false << false << true << true << false << 0.1;
        QTest::newRow("both mergeable") << true << true << true << true << true << 0.2;
        QTest::newRow("the end of a gesture") << true << false << true << true << true << 0.1;
        QTest::newRow("another type") << true << false << true << false << false << 0.1;
        QTest::newRow("another path") << true << true << false << true << false << 0.1;
    }
    void mergesOnlyWhatIsMeantTo()
    {
        QFETCH(bool, mine);
        QFETCH(bool, others);
        QFETCH(bool, samePath);
        QFETCH(bool, sameType);
        SetCommand first;
        first.init(volumePath, Variant::from(0.1));
        first.setMergeable(mine);
        SetCommand second;
        second.init(samePath ? volumePath : Path("/device/elsewhere"),
                    sameType ? Variant::from(0.2) : Variant::from(true));
        second.setMergeable(others);
        QCOMPARE(first.id(), second.id());
        QTEST(first.mergeWith(&second), "merges");
        QTEST(first.value().as<double>(), "result");
        const auto bytes = Variant::from(std::vector<std::uint8_t>{1});
        QVERIFY(!SetCommand::canMerge(bytes, bytes));
    }

    void addsRemovesAndMoves()
    {
        auto* add = new AddCommand;
        add->init(Path("/device/surfaces/2"), {{"name", Variant::from("third")}});
        push(add);
        QCOMPARE(names(), QStringLiteral("first second third"));
        auto* move = new MoveCommand;
        move->init(Path("/device/surfaces/0"), Path("/device/surfaces/1"));
        push(move);
        QCOMPARE(names(), QStringLiteral("second first third"));
        QTRY_COMPARE(names(atServer().get()), names());
        auto* remove = new RemoveCommand;
        remove->init(Path("/device/surfaces/0"));
        push(remove);
        QCOMPARE(names(), QStringLiteral("first third"));
        stack()->undo();
        QCOMPARE(names(), QStringLiteral("second first third"));
        stack()->undo();
        QCOMPARE(names(), QStringLiteral("first second third"));
        stack()->undo();
        QCOMPARE(names(), QStringLiteral("first second"));
        // What is brought back is what stood there at the last redo.
        scene()->replaceProperty(scene()->find("/device/surfaces/1/properties/name"),
                                 Variant::from("renamed"));
        auto* last = new RemoveCommand;
        last->init(Path("/device/surfaces/1"));
        push(last);
        stack()->undo();
        QCOMPARE(names(), QStringLiteral("first renamed"));
        QTRY_COMPARE(names(atServer().get()), names());
        // What moves is there with all that it has, back and forth.
        for (const char* property : {"opacity", "rotation"})
            scene()->replaceProperty(scene()->find(std::string("/device/surfaces/0/properties/") + property),
                                     Variant::from(0.5));
        auto* back = new MoveCommand;
        back->init(Path("/device/surfaces/0"), Path("/device/surfaces/1"));
        push(back);
        const auto isMirrored = [&] {
            return Scene::toJson(atServer()->findObject("/device/surfaces")) ==
                   Scene::toJson(scene()->findObject("/device/surfaces"));
        };
        QTRY_COMPARE(names(atServer().get()), QStringLiteral("renamed first"));
        QTRY_VERIFY(isMirrored());
        stack()->undo();
        QTRY_COMPARE(names(atServer().get()), QStringLiteral("first renamed"));
        QTRY_VERIFY(isMirrored());
    }

    /// What cannot be undone passes the stack by: what was undone can still be redone.
    void keepsWhatMayBeRedone()
    {
        auto* set = new SetCommand;
        set->init(Path("/device/surfaces/0/properties/name"), Variant::from("other"));
        push(set);
        stack()->undo();
        auto* step = new StepCommand;
        QVERIFY(step->init(object("preview"), 1));
        push(step);
        auto* play = new DirectPlayCommand;
        QVERIFY(play->init(true, 0, QStringLiteral("brume://collections/1/slots/1")));
        push(play);
        QVERIFY(stack()->canRedo());
        stack()->redo();
        QCOMPARE(names(), QStringLiteral("other second"));
    }

    void survivesWhatIsGone()
    {
        auto* set = new SetCommand;
        set->init(Path("/device/surfaces/0/properties/name"), Variant::from("other"));
        push(set);
        scene()->removeObject(scene()->find("/device/surfaces/0"));
        scene()->removeObject(scene()->find("/device/surfaces/0"));
        stack()->undo();
        stack()->redo();
        auto* duplicate = new DuplicateCommand;
        duplicate->init(Path("/device/channels/0"), Path("/device/channels/1"));
        push(duplicate);
        QVERIFY(!scene()->findObject("/device/channels/1"));
        QVERIFY(scene()->findObject("/device/channels/0"));
    }

    void runsChildrenInOrder()
    {
        auto* composite = new AbstractSceneCompositeCommand;
        for (const char* name : {"a", "b"})
            (new SetCommand(composite))
                ->init(Path("/device/surfaces/0/properties/name"), Variant::from(name));
        push(composite);
        QCOMPARE(names(), QStringLiteral("b second"));
        stack()->undo();
        QCOMPARE(names(), QStringLiteral("first second"));
    }

    void invokes_data()
    {
        QTest::addColumn<Factory>("make");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("patch");
        const auto row = [](const char* text, const char* patch, const Factory& make) {
            QTest::addRow("%s: %s", text, patch)
                << make << QString::fromLatin1(text) << QString::fromLatin1(patch);
        };
        const auto invoke = [this](const char* name) { return object(name); };
        row("Seek media", R"(invoke /device/channels/0/preview/methods/seekMedia {"mediaPosition":0.0})",
            [=] { return made(&SeekCommand::init, invoke("preview"), 0.0); });
        row("Next frame", R"(invoke /device/channels/0/preview/methods/step {"frameCount":1})",
            [=] { return made(&StepCommand::init, invoke("preview"), 1); });
        row("Previous frame", R"(invoke /device/channels/0/preview/methods/step {"frameCount":-1})",
            [=] { return made(&StepCommand::init, invoke("preview"), -1); });
        row("Step multiple frames", R"(invoke /device/channels/0/program/methods/step {"frameCount":5})",
            [=] { return made(&StepCommand::init, invoke("program"), 5); });
        row("Select audio device",
            R"(invoke /device/channels/0/program/methods/selectAudioDevice {"device":"dante"})",
            [=] { return made(&SelectAudioDeviceCommand::init, invoke("program"), "dante"); });
        row("Take",
            R"(invoke /device/channels/0/methods/take {"playheadOption":"position","presetToggle":true,"transitionDuration":1.5,"transitionType":"dipToColor"})",
            [=] {
                return made(&TakeCommand::init, invoke(""), true, PlayheadOption::FromPosition,
                            TakeTransitionType::DipToColor, 1.5);
            });
        using Slot = bool (PlayMediaCommand::*)(bool, int, int, int);
        using Entry = bool (PlayMediaCommand::*)(bool, int, int, const EntryAddress&);
        row("Play media",
            R"(invoke /device/channels/0/preview/methods/playMedia {"mediaUrl":"brume:\/\/collections/2/slots/7"})",
            [] { return made(static_cast<Slot>(&PlayMediaCommand::init), true, 0, 2, 7); });
        row("Play media",
            R"(invoke /device/channels/0/program/methods/playMedia {"mediaUrl":"brume:\/\/playlists/2/entries/7.1"})",
            [] {
                return made(static_cast<Entry>(&PlayMediaCommand::init), false, 0, 2, EntryAddress(7, 1));
            });
    }
    void invokes()
    {
        QFETCH(Factory, make);
        QFETCH(QString, patch);
        AbstractSessionCommand* command = make();
        QVERIFY(command);
        QTEST(command->text(), "text");
        push(command);
        QCOMPARE(stack()->count(), 0);
        QVERIFY(!stack()->canUndo());
        QTRY_COMPARE(sent(), patch.replace(QStringLiteral("\\/"), QStringLiteral("/")));
    }

    void refusesToInvoke()
    {
        QVERIFY(!made(&SeekCommand::init, object("preview"), -0.5));
        QVERIFY(!made(&SeekCommand::init, object("preview"), std::numeric_limits<double>::quiet_NaN()));
        QVERIFY(!made(&StepCommand::init, object("preview"), 0));
        expectWarning(QStringLiteral("No object set"));
        QVERIFY(!made(&SeekCommand::init, nullptr, 1.0));
        expectWarning(QStringLiteral("No such method take on Playback"));
        QVERIFY(!made(&TakeCommand::init, object("preview"), false, PlayheadOption::FromInpoint,
                      TakeTransitionType::Crossfade, 0.0));
        const Ref<Object> stranger(TypeInfo::instantiate("Playback"));
        expectWarning(QStringLiteral("pathOf failed"));
        QVERIFY(!made(&SeekCommand::init, stranger.get(), 1.0));
        expectWarning(QStringLiteral("No object found for path /device/channels/4/preview"));
        using Slot = bool (PlayMediaCommand::*)(bool, int, int, int);
        QVERIFY(!made(static_cast<Slot>(&PlayMediaCommand::init), true, 4, 1, 1));
        QCOMPARE(int(m_peer->link.received.size()), 1);
    }

    void invokesBothWaysWhenToldHow()
    {
        auto* command = new InvokeMethodCommand;
        expectWarning(QStringLiteral("Please initialize first"));
        QVERIFY(!command->setUndo(QStringLiteral("step"), {}));
        QVERIFY(command->init(object("preview"), QStringLiteral("nextMedia"), {}));
        QVERIFY(command->setUndo(QStringLiteral("prevMedia"), {}));
        push(command);
        QCOMPARE(stack()->count(), 1);
        QTRY_COMPARE(sent(), QStringLiteral("invoke /device/channels/0/preview/methods/nextMedia {}"));
        stack()->undo();
        QTRY_COMPARE(sent(), QStringLiteral("invoke /device/channels/0/preview/methods/prevMedia {}"));
        QVERIFY(stack()->canRedo());
    }

    void writesPlaybackProperties()
    {
        using ByChannel = bool (SetVolumeCommand::*)(int, bool, double, double);
        push(made(static_cast<ByChannel>(&SetVolumeCommand::init), 0, false, 0.5, 0.75));
        QCOMPARE(volume(), 0.5);
        stack()->undo();
        QCOMPARE(volume(), 0.75);
        push(made(&MuteCommand::init, Path("/device/channels/0/program"), true));
        QTRY_COMPARE(sent(), QStringLiteral("replace /device/channels/0/program/properties/muted true"));
        QVERIFY(stack()->canUndo());
        stack()->undo();
        QTRY_COMPARE(sent(), QStringLiteral("replace /device/channels/0/program/properties/muted false"));
    }

    void playsDirectlyWithoutATrace()
    {
        using ByUrl = bool (DirectPlayCommand::*)(bool, int, const QString&);
        using BySlot = bool (DirectPlayCommand::*)(bool, int, int, int);
        push(made(static_cast<BySlot>(&DirectPlayCommand::init), true, 0, 3, 4));
        QCOMPARE(stack()->count(), 0);
        Variant media;
        QVERIFY(object("preview")->getProperty("media", media));
        QCOMPARE(media.asString(), MediaAddress(3, 4).toString());
        QVERIFY(!made(static_cast<ByUrl>(&DirectPlayCommand::init), true, 0, QString()));
        QVERIFY(!made(static_cast<BySlot>(&DirectPlayCommand::init), true, 0, -1, 4));
        using ByEntry = bool (DirectPlayCommand::*)(bool, int, int, EntryAddress);
        QVERIFY(!made(static_cast<ByEntry>(&DirectPlayCommand::init), true, 0, 1, EntryAddress()));
        expectWarning(QStringLiteral("No Playlist found with a number: 2"));
        push(made(static_cast<ByEntry>(&DirectPlayCommand::init), false, 0, 2, EntryAddress(7, 1)));
        QTRY_COMPARE(sent(), QStringLiteral("replace /device/channels/0/program/properties/media "
                                            "\"brume://playlists/2/entries/7.1\""));
    }

private:
    Scene* scene() const { return m_peer->session->getScene(); }
    QUndoStack* stack() const { return m_peer->session->getQUndoStack(); }
    void push(AbstractSessionCommand* command)
    {
        QVERIFY(command);
        m_peer->session->executeCommand(command);
    }
    QString sent() const { return describe(m_peer->lastReceived()); }
    Object* object(const char* child) const
    {
        const std::string path = std::string("/device/channels/0") + (*child ? "/" : "") + child;
        return scene()->findObject(path);
    }
    double volume() const
    {
        Variant value;
        scene()->getProperty(scene()->find(PathView(volumePath)), value);
        return value.as<double>();
    }
    /// What a server has that does all it was sent.
    Ref<Scene> atServer() const
    {
        const auto server = makeRef<Scene>();
        Patch patch;
        if (!Patch::parseString(sampleScene, patch))
            qFatal("bad scene");
        for (const Patch& sent : m_peer->link.received) {
            for (const PatchOp& op : sent) {
                if (op.op != PatchOpType::Get && op.op != PatchOpType::Invoke)
                    patch.append(op);
            }
        }
        server->apply(patch, false);
        return server;
    }
    QString names() const { return names(scene()); }
    static QString names(const Scene* of)
    {
        QStringList list;
        for (const Object* surface : of->findObject("/device/surfaces")->getChildren()) {
            Variant name;
            surface->getProperty("name", name);
            list << QString::fromStdString(name.asString());
        }
        return list.join(u' ');
    }

    std::unique_ptr<ScriptedPeer> m_peer;
};

HALCYRA_TEST(TestSceneCommands)

} // namespace vantrel::test

#include "test_scenecommands.moc"
