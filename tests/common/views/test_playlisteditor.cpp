#include "common/media/items/mimedata.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistselectionmodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/playlist/playlisteditorheader.h"
#include "common/views/playlist/playlistmenu.h"
#include "common/views/playlist/playlistview.h"
#include "common/views/playlistwidget.h"
#include "tests/common/playback/playerfixture.h"

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QDropEvent>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QUndoStack>

using namespace vantrel;
using namespace vantrel::test;

namespace {

/// Playlist 1 is empty, 2 holds 1, 2, 3 and 3.1; there is no room between 3 and 3.1.
QByteArray libraryWithLists()
{
    const QJsonObject entry{{"slotUrl", "brume://collections/1/slots/1"},
                            {"endAction", "next"},
                            {"transitionType", "crossfade"},
                            {"transitionDuration", 1.0}};
    QJsonObject entries;
    for (const char* address : {"1", "2", "3", "3.1"})
        entries.insert(QLatin1String(address), entry);
    const QJsonObject empty{{"name", "Empty"}, {"entries", QJsonObject()}};
    const QJsonObject show{{"name", "Show"}, {"entries", entries}};
    return QJsonDocument(QJsonObject{{"1", empty}, {"2", show}}).toJson(QJsonDocument::Compact);
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
        const qsizetype at = m_fixture->library.indexOf("\"playlists\":") + 12;
        m_fixture->library = m_fixture->library.left(at) + libraryWithLists() + '}';
        QVERIFY(m_fixture->connectWithLibrary());
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
    void removalIsAskedFor();
    void doubleClickCues();
    void keysEdit_data();
    void keysEdit();
    void nameIsEdited();
    void lyingDropsChangeNothing();
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
    void drop(QMimeData* data, const QPoint& viewportPosition);

    std::unique_ptr<PlayerFixture> m_fixture;
    PlaylistEditor* m_editor = nullptr;
    PlaylistView* m_view = nullptr;
};

void TestPlaylistEditor::menuOffersWhatIsPossible_data()
{
    QTest::addColumn<int>("playlist");
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<QString>("offered"); // Preview, Renumber, Up, Down, rEmove, reName, Clear
    QTest::newRow("empty list") << 1 << QList<int>{} << "N";
    QTest::newRow("nothing selected") << 2 << QList<int>{} << "NC";
    QTest::newRow("first") << 2 << QList<int>{0} << "PRDENC";
    QTest::newRow("second") << 2 << QList<int>{1} << "PRUDENC";
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
    allowWarnings(QStringLiteral("numbering plan|Failed to find|renumber|Failed to add"));
    select({0, 1});
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
    QVERIFY(m_fixture->patches.isEmpty());
    const QPointer<QDialog> open = dialog;
    QCOMPARE(tried("1-2", "20", 1), QString());
    QTRY_VERIFY(!open || !open->isVisible());
    QTRY_COMPARE(m_fixture->patches.size(), 1);
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
    QVERIFY(m_fixture->patches.isEmpty());
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
    select({1});
    QTest::keyClick(m_view, Qt::Key(key), modifiers);
    if (!opens.isEmpty())
        QVERIFY(m_editor->findChild<QWidget*>(opens));
    if (edits)
        QTRY_COMPARE(m_fixture->patches.size(), 1);
    else
        QVERIFY(m_fixture->patches.isEmpty());
}

void TestPlaylistEditor::nameIsEdited()
{
    auto* chooser = m_fixture->part<QComboBox>("Preview-PlaylistEditor-dropdown");
    QTRY_COMPARE(chooser->currentText(), QStringLiteral("2: Show"));
    m_editor->doRenamePlaylist();
    QVERIFY(chooser->isEditable());
    QCOMPARE(chooser->lineEdit()->selectedText(), QStringLiteral("Show"));
    QTest::keyClick(chooser->lineEdit(), Qt::Key_Escape);
    QTRY_VERIFY(!chooser->isEditable());
    QVERIFY(m_fixture->patches.isEmpty());
    m_editor->doRenamePlaylist();
    chooser->lineEdit()->setText(QStringLiteral("Gala"));
    QTest::keyClick(chooser->lineEdit(), Qt::Key_Return);
    QTRY_COMPARE(m_fixture->patches.size(), 1);
    QVERIFY(m_fixture->patches.first().contains("Gala"));
    QTRY_COMPARE(chooser->currentText(), QStringLiteral("2: Gala"));
}

/// Drags the data over the view to a point and drops it there.
void TestPlaylistEditor::drop(QMimeData* data, const QPoint& viewportPosition)
{
    const std::unique_ptr<QMimeData> owned(data);
    const QPoint at = m_view->viewport()->mapTo(m_editor, viewportPosition);
    QDragEnterEvent enter(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_editor, &enter);
    QDragMoveEvent move(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_editor, &move);
    QDropEvent event(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_editor, &event);
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
    const QJsonObject slot{{"address", "brume://collections/1/slots/2"},
                           {"name", "Logo"},
                           {"contentUrl", "file:///logo.png"},
                           {"inpoint", 0},
                           {"outpoint", QJsonValue::Null},
                           {"duration", 4},
                           {"isPlayable", true},
                           {"durationType", "manual"}};
    drop(createMimeData({slot}, MimeItemCategory::MediaLibrary, MediaItemType::Slot),
         {50, rect.top() + qRound(share * (rect.height() - 1))});
    QTRY_COMPARE(m_fixture->patches.size(), 1);
    const QByteArray sent = m_fixture->patches.first();
    QVERIFY2(sent.contains(expected + '"') || sent.contains(expected + '/') ||
                 (expected.endsWith('.') && sent.contains(expected)),
             sent.constData());
    QVERIFY2(sent.contains("slots/2"), sent.constData());
}

HALCYRA_TEST(TestPlaylistEditor)
#include "test_playlisteditor.moc"
