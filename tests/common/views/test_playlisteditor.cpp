#include "common/media/items/mimedata.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/playlistprovider.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/ui/style/colors.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/views/playlist/cuesheetdialog.h"
#include "common/views/playlist/listclock.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/playlist/playlisteditorheader.h"
#include "common/views/playlist/playlistmenu.h"
#include "common/views/playlist/playlistview.h"
#include "common/views/playlistwidget.h"
#include "tarn/json/patch.h"
#include "tests/common/playback/playerfixture.h"
#include "tests/support/patience.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QDropEvent>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUndoStack>

using namespace vantrel;
using namespace vantrel::test;

namespace {

/// A slot of the panel on its way.
QMimeData* draggedLogo()
{
    const QJsonObject slot{{"address", "brume://collections/1/slots/2"},
                           {"name", "Logo"},
                           {"contentUrl", "file:///logo.png"},
                           {"inpoint", 0},
                           {"outpoint", QJsonValue::Null},
                           {"duration", 4},
                           {"isPlayable", true},
                           {"durationType", "manual"}};
    return createMimeData({slot}, MimeItemCategory::MediaLibrary, MediaItemType::Slot);
}

} // namespace

/// The editor under preview beside a scripted server: what its menu offers, its dialogs and its keys.
class TestPlaylistEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PlayerFixture>();
        // There is no room between 3 and 3.1.
        QVERIFY(m_fixture->connectWithPlaylists(
            {{"1", PlayerFixture::playlistOf("Empty", {})},
             {"2", PlayerFixture::playlistOf("Show", {"1", "2", "3", "3.1"})}}));
        m_editor = m_fixture->part<PlaylistEditor>("Preview-PlaylistEditor");
        m_view = m_editor->container()->list();
        NotificationManagerImpl::instance()->clear();
        m_editor->changePlaylistNumber(2);
        QCOMPARE(m_editor->model()->rowCount(), 4);
    }
    void cleanup() { m_fixture.reset(); }

    void menuOffersWhatIsPossible_data();
    void menuOffersWhatIsPossible();
    void emptyListsSayWhatToDo();
    void renumberingSaysWhatIsWrong();
    void allEntriesOfALongListAreRenumbered();
    void removalIsAskedFor();
    void doubleClickCues();
    void keysEdit_data();
    void keysEdit();
    void typedNumbersAreFound();
    void nameIsEdited();
    void typedTimesCount_data();
    void typedTimesCount();
    void listsStartOnProgramWithTheirFirst();
    void lyingDropsChangeNothing();
    void entriesOfOtherListsGoWhereTheyAreShown_data();
    void entriesOfOtherListsGoWhereTheyAreShown();
    void dropsOnWhatHasMovedAreRefused();
    void programTellsItsCourse();
    void cueSheetsAreWhole();
    void dropsGoWhereTheyAreShown_data();
    void dropsGoWhereTheyAreShown();

private:
    void select(const QList<int>& rows)
    {
        m_view->clearSelection();
        for (const int row : rows)
            m_editor->selection()->select(m_editor->model()->index(row, 0),
                                          QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    template <typename T>
    T* dialogPart(const char* name) const
    {
        return m_editor->findChild<T*>(QLatin1String(name));
    }
    void drop(PlaylistEditor* editor, QMimeData* data, const QPoint& at);
    void drop(QMimeData* data, const QPoint& viewportPosition);

    std::unique_ptr<PlayerFixture> m_fixture;
    PlaylistEditor* m_editor = nullptr;
    PlaylistView* m_view = nullptr;
    QColor m_hovered; // of a list's corner, while something was over it
};

void TestPlaylistEditor::menuOffersWhatIsPossible_data()
{
    QTest::addColumn<int>("playlist");
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QString>("offered"); // Preview, Renumber, Up, Down, rEmove, reName, Clear
    QTest::newRow("empty list") << 1 << QList<int>{} << "N";
    QTest::newRow("nothing selected") << 2 << QList<int>{} << "NC";
    QTest::newRow("first") << 2 << QList<int>{0} << "PRDENC";
    QTest::newRow("second, without room below") << 2 << QList<int>{1} << "PRUENC";
    QTest::newRow("last") << 2 << QList<int>{3} << "PRUENC";
    QTest::newRow("two") << 2 << QList<int>{1, 2} << "RUDENC";
    QTest::newRow("first and last") << 2 << QList<int>{0, 3} << "RENC";
}

void TestPlaylistEditor::menuOffersWhatIsPossible()
{
    QFETCH(int, playlist);
    QFETCH(QList<int>, rows);
    m_editor->changePlaylistNumber(playlist);
    select(rows);
    m_editor->menu()->refresh();
    QString offered;
    const auto add = [&](const char* name, QChar letter) {
        const auto* action = m_editor->menu()->findChild<QAction*>(
            QStringLiteral("PlaylistEditor-PlaylistMenu-%1-Action").arg(QLatin1String(name)));
        QVERIFY(action);
        if (action->isEnabled())
            offered.append(letter);
    };
    add("Preview", u'P');
    add("Renumber", u'R');
    add("MoveUp", u'U');
    add("MoveDown", u'D');
    add("Remove", u'E');
    add("Rename", u'N');
    add("Clear", u'C');
    QTEST(offered, "offered");
}

void TestPlaylistEditor::emptyListsSayWhatToDo()
{
    QCOMPARE(m_view->placeholderText(),
             QStringLiteral("Insert items from Collections tab to build playlist."));
    const auto* program = m_fixture->part<PlaylistView>("Program-PlaylistContainer-playlist");
    QCOMPARE(program->placeholderText(), QStringLiteral("Take from Preview or drag a playlist here."));
    const QImage full = m_view->viewport()->grab().toImage();
    m_editor->changePlaylistNumber(1);
    QTRY_VERIFY(m_view->viewport()->grab().toImage() != full);
    QVERIFY(m_view->isColumnHidden(3) && m_view->isColumnHidden(4));
}

void TestPlaylistEditor::renumberingSaysWhatIsWrong()
{
    m_editor->model()->sort(PlaylistModel::NumberColumn, Qt::DescendingOrder); // they keep their own order
    allowWarnings(QStringLiteral("Failed to find 8"));
    allowWarnings(QStringLiteral("Unable to acquire valid numbering plan"));
    select({2, 3});
    m_editor->doRenumber();
    auto* dialog = dialogPart<QDialog>("Playlist-Renumber-Dialog");
    QVERIFY(dialog && dialog->isVisible());
    auto* from = dialog->findChild<QLineEdit*>(QStringLiteral("Playlist-Renumber-Dialog-input-0"));
    auto* to = dialog->findChild<QLineEdit*>(QStringLiteral("Playlist-Renumber-Dialog-input-1"));
    QCOMPARE(from->text(), QStringLiteral("1-2"));
    QCOMPARE(to->text(), QStringLiteral("1"));
    auto* accept = dialog->findChild<QPushButton*>(QStringLiteral("Playlist-Renumber-Dialog-accept-button"));
    const auto tried = [&](const char* source, const char* target, int field) {
        from->setText(QLatin1String(source));
        to->setText(QLatin1String(target));
        accept->click();
        const auto* error =
            dialog->findChild<QLabel*>(QStringLiteral("Playlist-Renumber-Dialog-input-%1-error").arg(field));
        return dialog->isVisible() && error->isVisible() ? error->text() : QString();
    };
    QCOMPARE(tried("1-2", "x", 1), QStringLiteral("Invalid slot number given for first slot."));
    QCOMPARE(tried("8", "20", 0), QStringLiteral("Given slot(s) not found."));
    QCOMPARE(tried("1-2", "2.999", 1), QStringLiteral("Not enough space for renumbering."));
    // The numbers that they have are no step to undo.
    QCOMPARE(m_editor->model()->doRenumber(EntryAddress(1, 0), {EntryAddress(1, 0), EntryAddress(2, 0)}), 0);
    QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), 0);
    const QPointer<QDialog> open = dialog;
    QCOMPARE(tried("1-2", "20", 1), QString());
    QTRY_VERIFY(!open || !open->isVisible());
    QTRY_COMPARE(m_fixture->patches.size(), 1);
}

/// More text than a field of input takes as a rule.
void TestPlaylistEditor::allEntriesOfALongListAreRenumbered()
{
    QStringList addresses;
    for (int number = 1000; number < 6000; ++number)
        addresses.append(QString::number(number) + QStringLiteral(".5"));
    const QJsonArray edit{QJsonObject{
        {"op", "add"}, {"path", "/playlists/3"}, {"value", PlayerFixture::playlistOf("Long", addresses)}}};
    Patch patch;
    QVERIFY(Patch::parseString(QJsonDocument(edit).toJson().toStdString(), patch));
    m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(patch);
    m_editor->changePlaylistNumber(3);
    m_view->selectAll();
    m_editor->doRenumber();
    const auto* from = dialogPart<QLineEdit>("Playlist-Renumber-Dialog-input-0");
    QCOMPARE(from->text(), addresses.join(u','));
}

void TestPlaylistEditor::removalIsAskedFor()
{
    for (const auto& rows : {QList<int>{1}, QList<int>{1, 2}}) {
        select(rows);
        m_editor->doRemove();
        auto* dialog = dialogPart<QDialog>("PlaylistEditor-remove-confirmation");
        const auto* text =
            dialog->findChild<QLabel*>(QStringLiteral("PlaylistEditor-remove-confirmation-description"));
        QCOMPARE(text->text(), rows.size() == 1
                                   ? QStringLiteral("Are you sure you want to remove selected entry?")
                                   : QStringLiteral("Are you sure you want to remove selected entries?"));
        dialog->reject();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), 0);
    m_editor->doClearList();
    dialogPart<QPushButton>("PlaylistEditor-clear-confirmation-accept-button")->click();
    QTRY_COMPARE(m_fixture->patches.size(), 1);
}

void TestPlaylistEditor::doubleClickCues()
{
    auto* widget = m_fixture->part<PlaylistWidget>("Preview-PlaylistWidget");
    m_fixture->takeSent();
    m_editor->handleEntryDoubleClick(m_editor->model()->index(1, PlaylistModel::EndActionColumn));
    QCOMPARE(widget->currentTab(), int(PlaylistWidget::PlaylistEditorTab));
    m_editor->header()->pinButton()->click();
    m_editor->handleEntryDoubleClick(m_editor->model()->index(1, PlaylistModel::MediaColumn));
    QVERIFY(m_fixture->waitForSent().contains(QStringLiteral("playlists/2/entries/2")));
    QCOMPARE(widget->currentTab(), int(PlaylistWidget::PlaylistEditorTab));
    m_editor->header()->pinButton()->click();
    m_editor->handleEntryDoubleClick(m_editor->model()->index(1, PlaylistModel::MediaColumn));
    QCOMPARE(widget->currentTab(), int(PlaylistWidget::SingleMediaTab));
    allowWarnings(QStringLiteral("Double clicked invalid model index"));
    m_editor->handleEntryDoubleClick({});
}

void TestPlaylistEditor::typedNumbersAreFound()
{
    QTest::keyClicks(m_view, QStringLiteral("3.1"));
    QCOMPARE(m_view->currentIndex().row(), 3);
}

void TestPlaylistEditor::keysEdit_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<QString>("opens");
    QTest::addColumn<bool>("edits");
    const auto none = Qt::KeyboardModifiers();
    const auto alt = Qt::KeyboardModifiers(Qt::AltModifier);
    const auto control = Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("up") << int(Qt::Key_Up) << alt << "" << true;
    QTest::newRow("down") << int(Qt::Key_Down) << alt << "" << true;
    QTest::newRow("cut") << int(Qt::Key_X) << control << "" << true;
    QTest::newRow("transition") << int(Qt::Key_T) << control << "Preview-PlaylistTransitionType-dropdown"
                                << false;
    QTest::newRow("time") << int(Qt::Key_D) << control << "Preview-PlaylistTransitionDuration-editor"
                          << false;
    QTest::newRow("end action") << int(Qt::Key_E) << control << "Preview-PlaylistEndAction-dropdown" << false;
    QTest::newRow("insert in front") << int(Qt::Key_Insert) << Qt::KeyboardModifiers(Qt::ShiftModifier) << ""
                                     << true;
    QTest::newRow("replace") << int(Qt::Key_Insert) << control << "" << true;
    QTest::newRow("delete") << int(Qt::Key_Delete) << none << "PlaylistEditor-remove-confirmation" << false;
    QTest::newRow("renumber") << int(Qt::Key_R) << control << "Playlist-Renumber-Dialog" << false;
    QTest::newRow("rename") << int(Qt::Key_F2) << none << "Preview-PlaylistEditor-dropdown-edit" << false;
    QTest::newRow("a letter") << int(Qt::Key_A) << none << "" << false;
}

void TestPlaylistEditor::keysEdit()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(QString, opens);
    QFETCH(bool, edits);
    m_editor->setMediaSource([] { return QList<QString>{QStringLiteral("brume://collections/1/slots/2")}; });
    select({2});
    QTest::keyClick(m_view, Qt::Key(key), modifiers);
    if (!opens.isEmpty())
        QVERIFY(m_editor->findChild<QWidget*>(opens));
    QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), int(edits));
}

void TestPlaylistEditor::nameIsEdited()
{
    auto* chooser = m_fixture->part<QComboBox>("Preview-PlaylistEditor-dropdown");
    QTRY_COMPARE(chooser->currentText(), QStringLiteral("2: Show"));
    const auto field = [this] {
        return m_editor->findChild<QLineEdit*>(QStringLiteral("Preview-PlaylistEditor-dropdown-edit"));
    };
    m_editor->doRenamePlaylist();
    QVERIFY(field());
    QCOMPARE(field()->selectedText(), QStringLiteral("Show"));
    QTest::keyClick(field(), Qt::Key_Escape);
    QTRY_VERIFY(!field());
    QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), 0);
    m_editor->doRenamePlaylist();
    field()->setText(QStringLiteral("Gala"));
    // What is shown goes over to another list, and the library tells of the list: the name stays what it is.
    m_editor->changePlaylistNumber(1);
    QTRY_COMPARE(chooser->currentText(), QStringLiteral("1: Empty"));
    QCOMPARE(field()->text(), QStringLiteral("Gala"));
    QTest::keyClick(field(), Qt::Key_Return);
    QTRY_COMPARE(m_fixture->patches.size(), 1);
    QVERIFY(m_fixture->patches.first().contains("Gala"));
    QVERIFY2(m_fixture->patches.first().contains("/2"), m_fixture->patches.first().constData());
    m_editor->changePlaylistNumber(2);
    QTRY_COMPARE(chooser->currentText(), QStringLiteral("2: Gala"));
    // The next list of that number is not the one that is being named.
    m_editor->doRenamePlaylist();
    for (const char* edit : {R"([{"op":"remove","path":"/playlists/2"}])",
                             R"([{"op":"add","path":"/playlists/2","value":{"name":"Other"}}])"}) {
        Patch patch;
        QVERIFY(Patch::parseString(edit, patch));
        m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(patch);
    }
    QTRY_VERIFY(!field());
}

void TestPlaylistEditor::typedTimesCount_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("edited"); // entries
    QTest::newRow("Enter") << "2.5" << int(Qt::Key_Return) << 2;
    QTest::newRow("Tab") << "2.5" << int(Qt::Key_Tab) << 2;
    QTest::newRow("nothing typed") << "" << int(Qt::Key_Tab) << 0;
    QTest::newRow("what its row has already") << "1.0" << int(Qt::Key_Return) << 1;
}

/// A time is for all rows that are selected, and the key that ends it means nothing else.
void TestPlaylistEditor::typedTimesCount()
{
    QFETCH(QString, typed);
    QFETCH(int, key);
    QFETCH(int, edited);
    Patch other;
    QVERIFY(Patch::parseString(
        R"([{"op":"replace","path":"/playlists/2/entries/2/transitionDuration","value":0.25}])", other));
    m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(other);
    select({0, 1});
    m_fixture->takeSent();
    const QModelIndex cell = m_editor->model()->index(0, PlaylistModel::TransitionDurationColumn);
    static_cast<QAbstractItemView*>(m_view)->edit(cell);
    auto* field =
        m_editor->findChild<QLineEdit*>(QStringLiteral("Preview-PlaylistTransitionDuration-editor"));
    QVERIFY(field);
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, typed);
    const QPointer<QLineEdit> open = field;
    QTest::keyClick(field, Qt::Key(key));
    QTRY_VERIFY(!open);
    if (edited > 0)
        QTRY_COMPARE(m_fixture->patches.size(), 1);
    QCOMPARE(m_fixture->patches.value(0).count("transitionDuration"), edited);
    QVERIFY(!m_fixture->takeSent().contains(QStringLiteral("playlists/2/entries"))); // nothing was cued
}

/// By the first address, whatever the rows are sorted by; the list that is shown is that on air.
void TestPlaylistEditor::listsStartOnProgramWithTheirFirst()
{
    auto* program = m_fixture->part<PlaylistEditor>("PlaylistEditor-program");
    program->model()->sort(PlaylistModel::NumberColumn, Qt::DescendingOrder);
    m_fixture->takeSent();
    const uint before = program->model()->playlistNumber();
    const QJsonObject show{{"name", "Show"}, {"number", 2}, {"entryCount", 4}, {"duration", 2}};
    drop(program, createMimeData({show}, MimeItemCategory::Playlist, MediaItemType::Playlist), {5, 5});
    QVERIFY(m_fixture->waitForSent().contains(QStringLiteral("playlists/2/entries/1\"")));
    QCOMPARE(program->model()->playlistNumber(), before);
    QCOMPARE(m_hovered, colors::getColor(colors::Zt_red)); // told before it was let go
}

/// Drags the data over the editor to a point and drops it there.
void TestPlaylistEditor::drop(PlaylistEditor* editor, QMimeData* data, const QPoint& at)
{
    const std::unique_ptr<QMimeData> owned(data);
    QDragEnterEvent enter(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor, &enter);
    QDragMoveEvent move(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor, &move);
    m_hovered = editor->findChild<PlaylistView*>()->viewport()->grab().toImage().pixelColor(2, 2);
    QDropEvent event(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor, &event);
}

void TestPlaylistEditor::drop(QMimeData* data, const QPoint& viewportPosition)
{
    drop(m_editor, data, m_view->viewport()->mapTo(m_editor, viewportPosition));
}

/// Seen by their addresses: what is put below a row stands in front of it in a list that is shown backwards.
void TestPlaylistEditor::entriesOfOtherListsGoWhereTheyAreShown_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<Qt::SortOrder>("order");
    QTest::addColumn<double>("share");
    QTest::addColumn<QByteArray>("expected"); // none: refused, with a sentence
    const int number = PlaylistModel::NumberColumn;
    QTest::newRow("behind") << number << Qt::AscendingOrder << 0.95 << QByteArray("/entries/2.1\"");
    QTest::newRow("behind, backwards")
        << number << Qt::DescendingOrder << 0.95 << QByteArray("/entries/2.1\"");
    QTest::newRow("in place") << number << Qt::DescendingOrder << 0.5 << QByteArray("/entries/3/");
    QTest::newRow("sorted by name") << int(PlaylistModel::MediaColumn) << Qt::AscendingOrder << 0.95
                                    << QByteArray();
}

void TestPlaylistEditor::entriesOfOtherListsGoWhereTheyAreShown()
{
    QFETCH(int, column);
    QFETCH(Qt::SortOrder, order);
    QFETCH(double, share);
    QFETCH(QByteArray, expected);
    m_view->sortByColumn(column, order);
    const QJsonObject entry{
        {"playlistIndex", 7}, {"entryAddress", "4"}, {"slotUrl", "brume://collections/1/slots/2"},
        {"endAction", 1},     {"transitionType", 0}, {"transitionDuration", 2},
        {"runtimeBefore", 0}, {"runtimeAfter", 1}};
    const QRect rect = m_view->visualRect(m_editor->model()->index(1, 0));
    drop(createMimeData({entry}, MimeItemCategory::Playlist, MediaItemType::PlaylistEntry),
         {50, rect.top() + qRound(share * (rect.height() - 1))});
    QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), int(!expected.isEmpty()));
    QCOMPARE(NotificationManagerImpl::instance()->notifications().isEmpty(), !expected.isEmpty());
    if (expected.isEmpty())
        return;
    QTRY_COMPARE(m_fixture->patches.size(), 1);
    QVERIFY2(m_fixture->patches.first().contains(expected), m_fixture->patches.first().constData());
}

/// While a drag stands still somebody else's edit may put another entry under it.
void TestPlaylistEditor::dropsOnWhatHasMovedAreRefused()
{
    const QRect rect = m_view->visualRect(m_editor->model()->index(2, 0));
    const QPoint at = m_view->viewport()->mapTo(m_editor, rect.center());
    const std::unique_ptr<QMimeData> data(draggedLogo());
    QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_editor, &enter);
    QDragMoveEvent move(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_editor, &move);
    QVERIFY(m_view->dropTarget().isReplace());
    allowWarnings(QStringLiteral("No entry found with a address: 1"));
    Patch patch;
    QVERIFY(Patch::parseString(R"([{"op":"remove","path":"/playlists/2/entries/1"}])", patch));
    m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(patch);
    QCOMPARE(m_editor->model()->rowCount(), 3);
    QDropEvent event(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_editor, &event);
    QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), 0);
    QCOMPARE(NotificationManagerImpl::instance()->notifications().size(), 1);
}

/// By what the server tells of what is on air, also of what was removed from the list meanwhile.
void TestPlaylistEditor::programTellsItsCourse()
{
    const auto* next = m_fixture->part<QLabel>("Program-PlaybackWidget-Next");
    const auto* end = m_fixture->part<QLabel>("Program-PlaylistEditor-end");
    QVERIFY(next && end);
    m_fixture->set("program", "media", quoted("brume://playlists/2/entries/1"));
    QTRY_COMPARE(next->text(), QStringLiteral("Next: 2 Walk-in"));
    m_fixture->set("program", "nextMedia", quoted("brume://playlists/2/entries/3"));
    QTRY_COMPARE(next->text(), QStringLiteral("Next: 3 Walk-in"));
    QTRY_VERIFY2(end->text().contains(QStringLiteral("not running")), qPrintable(end->text()));
    m_fixture->set("program", "heldMedia", quoted("file:///a.mp4"));
    m_fixture->set("program", "media", quoted(""));
    const auto apply = [this](const char* text) {
        Patch edit;
        QVERIFY(Patch::parseString(text, edit));
        m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(edit);
    };
    const GUIPlayback* playback = m_fixture->peer.session->sceneObjectProvider()->programPlayback();
    QTRY_VERIFY(playback->media().isEmpty());
    apply(R"([{"op":"remove","path":"/playlists/2/entries/1"}])");
    QTRY_COMPARE(next->text(), QStringLiteral("1 was removed. Next: 3 Walk-in"));
    const QString removed = QStringLiteral("1 was removed and plays to its end");
    QCOMPARE(end->text(), removed);
    // Its number is another entry's now, which is not on air; then the whole list is gone.
    const auto* clock = ListClock::ofProgram(m_fixture->peer.session);
    const QSignalSpy worked(clock, &ListClock::courseChanged);
    apply(R"([{"op":"remove","path":"/playlists/2/entries/2"},
              {"op":"add","path":"/playlists/2/entries/1","value":{"slotUrl":"brume://collections/1/slots/1"}}])");
    QVERIFY(m_fixture->peer.session->playlistProvider()->entry(2, EntryAddress(1, 0)));
    QTRY_VERIFY(!worked.isEmpty());
    QVERIFY(!clock->isPlaying(EntryAddress(1, 0)));
    QCOMPARE(end->text(), removed);
    apply(R"([{"op":"remove","path":"/playlists/2"}])");
    QTRY_VERIFY(worked.count() > 1);
    QCOMPARE(end->text(), removed);
}

/// All pages and no more, with the text of the last entry on the last of them; a folder that is none is told.
void TestPlaylistEditor::cueSheetsAreWhole()
{
    QTemporaryDir folder;
    CueSheet sheet(*m_editor->model(), QStringLiteral("Show"));
    QCOMPARE(sheet.pictureCount(), 1); // four entries of one slot
    QList<int> pages;
    const QString file = folder.filePath(QStringLiteral("show.pdf"));
    QCOMPARE(sheet.savePdf(file,
                           [&](int page, int of) {
                               pages << page << of;
                               return true;
                           }),
             QString());
    QCOMPARE(pages, QList<int>({1, 1}));
    QFile written(file);
    QVERIFY(written.open(QIODevice::ReadOnly) && written.read(5) == "%PDF-");
    QVERIFY(!sheet.savePdf(folder.filePath(QStringLiteral("none/show.pdf"))).isEmpty());
    const QString ended = folder.filePath(QStringLiteral("ended.pdf"));
    QVERIFY(!sheet.savePdf(ended, [](int, int) { return false; }).isEmpty());
    QVERIFY(!QFile::exists(ended));

    auto* dialog = new CueSheetDialog(sheet, m_editor->model(), ended, m_editor);
    QSignalSpy told(dialog, &CueSheetDialog::ended);
    QVERIFY(told.wait(10000));
    QCOMPARE(told.first().first().toString(), QString());
    QVERIFY(QFile::exists(ended));
}

void TestPlaylistEditor::lyingDropsChangeNothing()
{
    const auto payload = [](const char* type, const char* json) {
        auto* data = new QMimeData;
        data->setData(mimeformat::type, type);
        data->setData(mimeformat::json, json);
        return data;
    };
    const char* const slot =
        R"([{"address":"brume://collections/9/slots/9","name":"a","contentUrl":"file:///a.mp4","inpoint":0,)"
        R"("outpoint":null,"duration":4,"isPlayable":true,"durationType":"manual"}])";
    for (QMimeData* data :
         {payload("4", slot), payload("media", "[]"), payload("2", slot), payload("4", "x")}) {
        NotificationManagerImpl::instance()->clear();
        drop(data, {50, 5});
        QCOMPARE(m_fixture->peer.session->getQUndoStack()->count(), 0);
        QCOMPARE(NotificationManagerImpl::instance()->notifications().size(), 1);
        QVERIFY(!NotificationManagerImpl::instance()->notifications().first()->details().isEmpty());
        QVERIFY(m_view->dropTarget().kind == DropTarget::Kind::None);
    }
}

void TestPlaylistEditor::dropsGoWhereTheyAreShown_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<double>("share"); // of the row's height, from its top
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("onto the second") << 1 << 0.5 << QByteArray("/entries/2");
    QTest::newRow("behind the second") << 1 << 0.95 << QByteArray("/entries/2.1");
    QTest::newRow("in front of the second") << 1 << 0.05 << QByteArray("/entries/1.1");
    QTest::newRow("on top") << 0 << 0.05 << QByteArray("/entries/0.");
}

void TestPlaylistEditor::dropsGoWhereTheyAreShown()
{
    QFETCH(int, row);
    QFETCH(double, share);
    QFETCH(QByteArray, expected);
    const QRect rect = m_view->visualRect(m_editor->model()->index(row, 0));
    drop(draggedLogo(), {50, rect.top() + qRound(share * (rect.height() - 1))});
    QTRY_COMPARE(m_fixture->patches.size(), 1);
    const QByteArray sent = m_fixture->patches.first();
    QVERIFY2(sent.contains(expected + '"') || sent.contains(expected + '/') ||
                 (expected.endsWith('.') && sent.contains(expected)),
             sent.constData());
    QVERIFY2(sent.contains("slots/2"), sent.constData());
}

HALCYRA_TEST(TestPlaylistEditor)
#include "test_playlisteditor.moc"
