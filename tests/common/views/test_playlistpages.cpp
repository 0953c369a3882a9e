#include "common/media/library/medialibraryapi.h"
#include "common/media/models/playlist/playlisteditormodel.h"
#include "common/media/models/playlist/playlistlibrarymodel.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/playback/playbackwidget.h"
#include "common/ui/toolkit/ztdialog.h"
#include "common/views/playlist/playlistcontainer.h"
#include "common/views/playlist/playlisteditor.h"
#include "common/views/playlist/playlistmenu.h"
#include "common/views/playlist/playlistview.h"
#include "tarn/json/patch.h"
#include "tarn/media/medialibrary.h"
#include "tests/common/playback/playerfixture.h"
#include "tests/support/patience.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QUndoStack>

using namespace vantrel;
using namespace vantrel::test;

/// What opens over the playlist editor and beside it: the page of all lists, files, and a narrow table.
class TestPlaylistPages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_fixture.reset(); }

    void listsAreEdited_data();
    void listsAreEdited();
    void listsOnProgramKeepTheirNumbers();
    void heldKeysMoveOneList();
    void questionsAreAboutTheListThatWasSeen();
    void listsAreChosen();
    void theChooserSaysWhatItLacks();
    void numbersAreShownWhole();
    void nothingIsBelowTheScrollBar();
    void columnsThatGaveWayAreEdited();
    void filesComeAndGo();
    void listsStayInReachWithoutAServer();

private:
    QTableView* openPage();
    int undoCount() const { return m_fixture->peer.session->getQUndoStack()->count(); }
    QString told() const
    {
        const auto all = NotificationManagerImpl::instance()->notifications();
        return all.isEmpty() ? QString() : all.last()->details();
    }

    std::unique_ptr<PlayerFixture> m_fixture;
    PlaylistEditor* m_editor = nullptr;
    PlaylistView* m_view = nullptr;
};

void TestPlaylistPages::init()
{
    m_fixture = std::make_unique<PlayerFixture>();
    QVERIFY(m_fixture->connectWithPlaylists(
        {{"1", PlayerFixture::playlistOf("Empty", {})},
         {"2", PlayerFixture::playlistOf("Show", {"0.999", "12.125", "14"})}, // on both sides of 1
         {"4", PlayerFixture::playlistOf("Late", {"1"})}}));
    m_editor = m_fixture->part<PlaylistEditor>("Preview-PlaylistEditor");
    m_view = m_editor->container()->list();
    NotificationManagerImpl::instance()->clear();
    m_editor->changePlaylistNumber(2);
    QCOMPARE(m_editor->model()->rowCount(), 3);
}

/// By the key, from the list; its row is that of the list.
QTableView* TestPlaylistPages::openPage()
{
    QTest::keyClick(m_view, Qt::Key_P, Qt::ControlModifier);
    return m_editor->findChild<QTableView*>(QStringLiteral("AllPlaylists-table"));
}

void TestPlaylistPages::listsAreEdited_data()
{
    QTest::addColumn<QKeySequence>("key");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("sent"); // parts of the patch; none: nothing is sent
    QTest::addColumn<QString>("told");
    const QKeySequence rename(Qt::Key_F2), number(Qt::CTRL | Qt::Key_R);
    QTest::newRow("rename") << rename << "Gala" << QStringList{"/playlists/2/name", "Gala"} << "";
    QTest::newRow("the name that it has") << rename << "Show" << QStringList() << "";
    QTest::newRow("a free number") << number << "7" << QStringList{"/playlists/2", "/playlists/7"} << "";
    QTest::newRow("a taken number") << number << "4" << QStringList()
                                    << "Playlist 4 has that number: Late. Choose a free one, or move the "
                                       "playlist up or down.";
    QTest::newRow("no number") << number << "x" << QStringList()
                               << "\"x\" is no number of a playlist: write 1 to 9999.";
    QTest::newRow("up") << QKeySequence(Qt::ALT | Qt::Key_Up) << ""
                        << QStringList{"/playlists/1", "/playlists/2"} << "";
    QTest::newRow("down") << QKeySequence(Qt::ALT | Qt::Key_Down) << ""
                          << QStringList{"/playlists/2", "/playlists/4"} << "";
    QTest::newRow("duplicate") << QKeySequence(Qt::CTRL | Qt::Key_C) << ""
                               << QStringList{"/playlists/3", "Copy of Show"} << "";
    QTest::newRow("remove, which is asked") << QKeySequence(Qt::Key_Delete) << "" << QStringList() << "";
}

void TestPlaylistPages::listsAreEdited()
{
    QFETCH(QKeySequence, key);
    QFETCH(QString, typed);
    QFETCH(QStringList, sent);
    QFETCH(QString, told);
    QTableView* table = openPage();
    QVERIFY(table && table->isVisible());
    const QAbstractItemModelTester tester(table->model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    QCOMPARE(table->currentIndex().row(), 1);
    QTest::keyClick(table, key[0].key(), key[0].keyboardModifiers());
    if (!typed.isEmpty()) {
        auto* field = table->findChild<QLineEdit*>();
        QVERIFY(field);
        field->setText(typed);
        QTest::keyClick(field, Qt::Key_Return);
    }
    QTRY_COMPARE(undoCount(), int(!sent.isEmpty()));
    QTRY_COMPARE(this->told(), told.toHtmlEscaped());
    if (key == QKeySequence(Qt::Key_Delete))
        QVERIFY(m_editor->findChild<ZTDialog*>(QStringLiteral("PlaylistEditor-remove-list-confirmation")));
    if (sent.isEmpty())
        return;
    QTRY_COMPARE(m_fixture->patches.size(), 1);
    for (const QString& part : std::as_const(sent))
        QVERIFY2(m_fixture->patches.first().contains(part.toUtf8()), m_fixture->patches.first().constData());
}

/// What plays is known by the number of its list; neither it nor one that would take its place moves.
void TestPlaylistPages::listsOnProgramKeepTheirNumbers()
{
    m_fixture->set("program", "media", quoted("brume://playlists/4/entries/1"));
    QTableView* table = openPage();
    QVERIFY(table);
    const QAbstractItemModel* lists = table->model();
    QTRY_COMPARE(lists->index(2, 0).data().toString(), QStringLiteral("PGM"));
    QCOMPARE(lists->index(1, 0).data().toString(), QString());
    QTest::keyClick(table, Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(undoCount(), 0);
    QCOMPARE(told(), QStringLiteral("Playlist 4 is on program and keeps its number until it is off."));
}

/// Pressed again before the server has answered, a key moves the same list on, not the one that it passes.
void TestPlaylistPages::heldKeysMoveOneList()
{
    QTableView* table = openPage();
    QVERIFY(table);
    table->setCurrentIndex(table->model()->index(0, PlaylistLibraryModel::PlainNameColumn));
    for (int press = 0; press < 2; ++press)
        QTest::keyClick(table, Qt::Key_Down, Qt::AltModifier);
    const auto nameOf = [this](int playlist) {
        const Ref<const MediaLibrary> then = m_fixture->peer.session->getMediaLibraryApi()->expectedLibrary();
        const Playlist* list = std::as_const(*then).findPlaylist(playlist);
        return list ? list->getName() : std::string();
    };
    QCOMPARE(nameOf(1), std::string("Show"));
    QCOMPARE(nameOf(2), std::string("Late"));
    QCOMPARE(nameOf(4), std::string("Empty"));
    QKeyEvent held(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, QString(), true);
    QCoreApplication::sendEvent(table, &held);
    QCOMPARE(undoCount(), 2);
}

/// The number may be another list's by the answer: after somebody's edit, or a library that was read anew.
void TestPlaylistPages::questionsAreAboutTheListThatWasSeen()
{
    QTableView* table = openPage();
    QVERIFY(table);
    QTest::keyClick(table, Qt::Key_Delete);
    auto* accept = m_editor->findChild<QPushButton*>(
        QStringLiteral("PlaylistEditor-remove-list-confirmation-accept-button"));
    QVERIFY(accept);
    Patch patch;
    QVERIFY(Patch::parseString(R"([{"op":"replace","path":"/playlists/2/name","value":"Gala"}])", patch));
    m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(patch);
    accept->click();
    QCOMPARE(undoCount(), 0);
    QVERIFY2(told().startsWith(QStringLiteral("Playlist 2 was renamed")), qPrintable(told()));
}

void TestPlaylistPages::listsAreChosen()
{
    QTableView* table = openPage();
    QVERIFY(table);
    QTest::keyClick(table, Qt::Key_Down);
    QTest::keyClick(table, Qt::Key_Return);
    QCOMPARE(m_editor->model()->playlistNumber(), 4U);
}

/// At every text size: an address that is cut looks like another one.
/// There are lists, and none is chosen; then there are none.
void TestPlaylistPages::theChooserSaysWhatItLacks()
{
    const auto* chooser = m_fixture->part<QComboBox>("Preview-PlaylistEditor-dropdown");
    for (const auto& [removed, says] :
         {std::pair(R"([{"op":"remove","path":"/playlists/2"}])", QStringLiteral("No playlist chosen")),
          std::pair(R"([{"op":"remove","path":"/playlists/1"},{"op":"remove","path":"/playlists/4"}])",
                    QStringLiteral("No playlists"))}) {
        Patch patch;
        QVERIFY(Patch::parseString(removed, patch));
        m_fixture->peer.session->getMediaLibraryApi()->applyMediaLibraryPatch(patch);
        QTRY_COMPARE(chooser->currentIndex(), -1);
        QTRY_COMPARE(chooser->placeholderText(), says);
    }
}

void TestPlaylistPages::numbersAreShownWhole()
{
    for (const FontSize size : {FontSize::Small, FontSize::Medium, FontSize::Large, FontSize::Huge}) {
        configuration()->setValue(TEXT_SIZE, QVariant::fromValue(size));
        m_editor->container()->updateHeaders();
        for (int row = 0; row < m_editor->model()->rowCount(); ++row) {
            const QString number =
                m_editor->model()->index(row, PlaylistModel::NumberColumn).data().toString();
            const int room = m_view->columnWidth(PlaylistModel::NumberColumn) - 12; // the margins of a cell
            QVERIFY2(m_view->fontMetrics().horizontalAdvance(number) <= room, qPrintable(number));
        }
    }
    configuration()->resetValue(TEXT_SIZE);
}

/// The bar comes when the list has become long enough, and takes its room from the name.
void TestPlaylistPages::nothingIsBelowTheScrollBar()
{
    const QHeaderView* header = m_view->horizontalHeader();
    const int last = header->logicalIndexAt(m_view->viewport()->width() - 2);
    m_editor->container()->updateHeaders();
    const int needed = header->sectionSize(last);
    const int room = m_view->viewport()->width();
    m_view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    QTRY_VERIFY(m_view->viewport()->width() < room);
    QTRY_COMPARE(header->length(), m_view->viewport()->width());
    QTRY_COMPARE(header->sectionSize(last), needed); // what is too much is taken from it first
}

/// The editor of a column that has given way is seen all the same, and the order that it makes is named.
void TestPlaylistPages::columnsThatGaveWayAreEdited()
{
    m_view->setColumnHidden(PlaylistModel::TransitionDurationColumn, true);
    m_view->selectRow(1);
    QTest::keyClick(m_view, Qt::Key_D, Qt::ControlModifier);
    const auto* field =
        m_view->findChild<QWidget*>(QStringLiteral("Preview-PlaylistTransitionDuration-editor"));
    QVERIFY(field && field->isVisible());
    const QRect row = m_view->visualRect(m_editor->model()->index(1, PlaylistModel::MediaColumn));
    QVERIFY(row.intersects(field->geometry()));
    m_view->sortByColumn(PlaylistModel::MediaColumn, Qt::DescendingOrder);
    // Pictures have no order: the mark stays where the rows are sorted.
    m_view->horizontalHeader()->setSortIndicator(PlaylistModel::ThumbnailColumn, Qt::AscendingOrder);
    QCOMPARE(m_view->horizontalHeader()->sortIndicatorSection(), int(PlaylistModel::MediaColumn));
    QCOMPARE(m_view->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    m_editor->changePlaylistNumber(4);
    QCOMPARE(m_editor->model()->sortColumn(), int(PlaylistModel::NumberColumn));
}

/// A list is saved, and read back with a word on what is on air and on the lines that cannot be taken.
void TestPlaylistPages::filesComeAndGo()
{
    m_fixture->set("program", "media", quoted("brume://playlists/2/entries/14"));
    const auto* end = m_fixture->part<QLabel>("Program-PlaylistEditor-end");
    QTRY_VERIFY2(end->text().contains(QStringLiteral("not running")), qPrintable(end->text()));
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("show.csv"));
    const auto choose = [&](const char* action) {
        m_editor->menu()
            ->findChild<QAction*>(
                QStringLiteral("PlaylistEditor-PlaylistMenu-%1-Action").arg(QLatin1String(action)))
            ->trigger();
        auto* dialog = m_editor->findChild<QFileDialog*>(QStringLiteral("PlaylistEditor-file-dialog"));
        Q_EMIT dialog->fileSelected(file);
        delete dialog;
    };
    choose("Export");
    QTRY_COMPARE(NotificationManagerImpl::instance()->notifications().size(), 1);
    QFile table(file);
    QVERIFY(table.open(QIODevice::ReadWrite));
    QCOMPARE(table.readAll().count("brume://"), 3);
    table.write("3.05,,brume://collections/1/slots/1\r\n");
    table.close();
    choose("Import");
    auto* accept = m_editor->findChild<QPushButton*>(QStringLiteral("PlaylistEditor-import-accept-button"));
    QTRY_VERIFY(accept->isEnabled());
    const auto* text = m_editor->findChild<QLabel*>(QStringLiteral("PlaylistEditor-import-description"));
    QVERIFY2(text->text().contains(QStringLiteral("It is on program: 14")), qPrintable(text->text()));
    const auto* faults = m_editor->findChild<QPlainTextEdit*>(QStringLiteral("PlaylistEditor-import-faults"));
    QVERIFY2(faults->toPlainText().startsWith(QStringLiteral("Line 5: ")), qPrintable(faults->toPlainText()));
    accept->click();
    QCOMPARE(undoCount(), 0); // it holds what is there: no step
}

/// In the minute without a server the list is wanted on paper.
void TestPlaylistPages::listsStayInReachWithoutAServer()
{
    QVERIFY(m_view->isEnabled());
    const auto* preview = m_fixture->channel()->previewWidget();
    QVERIFY(preview->isEnabled());
    m_fixture->peer.link.socket->abort();
    QTRY_VERIFY(!preview->isEnabled());
    QVERIFY(m_view->isEnabled());
    m_editor->menu()->refresh();
    const auto offers = [this](const char* action) {
        return m_editor->menu()
            ->findChild<QAction*>(
                QStringLiteral("PlaylistEditor-PlaylistMenu-%1-Action").arg(QLatin1String(action)))
            ->isEnabled();
    };
    QVERIFY(offers("Print") && offers("Export") && !offers("Import") && !offers("Clear"));
}

HALCYRA_TEST(TestPlaylistPages)
#include "test_playlistpages.moc"
