#include "common/views/mediapanelwidget.h"

#include "common/command/refusal.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/implmediacollectionmanager.h"
#include "common/media/library/medialibraryapi.h"
#include "common/media/library/medialibraryprovider.h"
#include "common/media/models/collectionselectormodel.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/media/models/sortedcollectionselectormodel.h"
#include "common/session/link/signalrelay.h"
#include "common/session/session.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/storedvalue.h"
#include "common/ui/keyboard/hotkeys.h"
#include "common/ui/keyboard/hotkeytip.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztcombobox.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztmenu.h"
#include "common/views/mediapanelmodel.h"
#include "common/views/pendingdropsbar.h"
#include "common/views/slotdelegate.h"
#include "common/views/slotdrops.h"
#include "common/views/slotlistview.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr int scrollRestMs = 120;
const QString collectionKey = QStringLiteral("Window/Collection");
constexpr int minimumPanelWidth = 220;
constexpr int addButtonWidth = 200; // of the panel, at the medium text size

} // namespace

MediaPanelWidget::MediaPanelWidget(Session* session, QWidget* parent)
    : MediaPanelWidget(session->mediaLibraryModel(), session->mediaLibraryProvider(),
                       new ImplMediaCollectionManager, parent, session)
{
    dynamic_cast<ImplMediaCollectionManager*>(m_manager)->setParent(this);
    connect(this, &MediaPanelWidget::directPlayRequested, session->signalRelay(),
            &SignalRelay::handleDirectPlay);
    connect(session, &Session::connected, this, [this] { setConnected(true); });
    connect(session, &Session::disconnected, this, [this] { setConnected(false); });
    setConnected(session->isConnected());
    connect(session, &Session::libraryReadingChanged, this, [this, session] { showReading(session); });
    connect(session, &Session::libraryObstacleChanged, this, &MediaPanelWidget::updateEditable);
    showReading(session);
    if (Hotkeys* hotkeys = session->hotkeys())
        addHotkeys(hotkeys);
}

MediaPanelWidget::MediaPanelWidget(MediaLibraryModel* library, AbstractMediaLibraryProvider* provider,
                                   MediaCollectionManager* manager, QWidget* parent, Session* session)
    : ZTFrame(parent)
    , m_session(session)
    , m_library(library)
    , m_manager(manager)
    , m_selector(new CollectionSelectorModel(provider, this))
    , m_sortedSelector(new SortedCollectionSelectorModel(m_selector, this))
    , m_model(new MediaPanelModel(library, this))
    , m_delegate(new SlotDelegate(this))
    , m_drops(new SlotDrops(session, manager, this))
{
    setObjectName(QStringLiteral("PlayerTab-mediapanel-widget"));
    setDynamicStyle(this, "class", QStringLiteral("panel"));
    followFontSize(this, [this](FontSize size) { setMinimumWidth(scaled(minimumPanelWidth, size)); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(8);
    buildHeader();
    buildList();
    buildMenu();
    QWidget::setTabOrder(m_chooser, m_search);
    QWidget::setTabOrder(m_search, m_addButton);
    QWidget::setTabOrder(m_addButton, m_menuButton);
    QWidget::setTabOrder(m_menuButton, m_view);
    connectModels();
    // A collection that was refused does not come: the next one is somebody else's.
    connect(provider, &AbstractMediaLibraryProvider::editsSettled, this, [this] { m_choosesAdded = false; });
    m_scrollRest.setSingleShot(true);
    m_scrollRest.setInterval(scrollRestMs);
    connect(&m_scrollRest, &QTimer::timeout, this, [this] {
        m_delegate->setFetching(true);
        m_view->viewport()->update();
    });
    updateChooser();
    showCollection();
}

MediaPanelWidget::~MediaPanelWidget() = default;

void MediaPanelWidget::addHotkeys(Hotkeys* hotkeys)
{
    const auto find = [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    };
    hotkeys->addShortcut(QStringLiteral("find"), this, find, Qt::WindowShortcut, this);
}

void MediaPanelWidget::buildHeader()
{
    m_chooser = new ZTComboBox(this);
    m_chooser->setObjectNames(QStringLiteral("MediaPanel-collection-chooser"));
    m_chooser->setToolTip(tr("The collection whose media is listed"));
    m_chooser->setAccessibleName(tr("Collection"));
    m_chooser->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_chooser->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_chooser->setMaxVisibleItems(20);
    m_chooser->setModel(m_sortedSelector);
    m_chooser->setModelColumn(1);

    m_addButton = new IconButton(QStringLiteral("plus"), {}, this);
    m_addButton->setObjectName(QStringLiteral("MediaPanel-add-collection-button"));
    m_addButton->setToolTip(tr("New collection"));
    m_addButton->setAccessibleName(tr("New collection"));
    connect(m_addButton, &QAbstractButton::clicked, this, &MediaPanelWidget::askForNewCollection);

    m_menuButton = new IconButton(QStringLiteral("more"), {}, this);
    m_menuButton->setObjectName(QStringLiteral("MediaPanel-menu-button"));
    m_menuButton->setToolTip(tr("What can be done with this collection"));
    m_menuButton->setAccessibleName(tr("Collection menu"));

    m_search = new ZTEdit(this);
    m_search->setObjectNames(QStringLiteral("MediaPanel-search"));
    setHotkeyTip(m_search, tr("Lists the slots whose name, file or number holds the text"),
                 {QStringLiteral("find")});
    m_search->setAccessibleName(tr("Search the collection"));
    m_search->setClearButtonEnabled(true);
    m_search->setEscapeClears(true);
    m_lens = m_search->addAction(tintedIcon(QStringLiteral("search")), QLineEdit::LeadingPosition);
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_model->setSearchText(text);
        updateEmptyText();
    });

    // The chooser has a line of its own: a collection's name is what the operator looks for.
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(m_search, 1);
    row->addWidget(m_addButton);
    row->addWidget(m_menuButton);
    auto* column = static_cast<QVBoxLayout*>(layout());
    column->addWidget(m_chooser);
    column->addLayout(row);
}

void MediaPanelWidget::buildList()
{
    m_view = new SlotListView(this);
    m_view->setObjectName(QStringLiteral("MediaPanel-slots-view"));
    m_view->setAccessibleName(tr("Slots"));
    m_view->setItemDelegate(m_delegate);
    m_view->setDrops(m_drops);
    m_delegate->setArrivals(&m_drops->arrivals());
    connect(m_drops, &SlotDrops::arrivalsChanged, m_view->viewport(), qOverload<>(&QWidget::update));
    m_drops->setObstacle([this] { return obstacle(); });
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    auto* column = static_cast<QVBoxLayout*>(layout());
    column->addWidget(m_view, 1);
    column->addWidget(new PendingDropsBar(m_drops, this));
    connect(m_view, &QAbstractItemView::activated, this, &MediaPanelWidget::onActivated);
    connect(m_view, &QWidget::customContextMenuRequested, this, &MediaPanelWidget::showSlotMenu);
    connect(m_view, &SlotListView::deleteRequested, this, &MediaPanelWidget::clearSelectedSlots);
    connect(m_view, &SlotListView::moveSelectedRequested, this, &MediaPanelWidget::askForMove);
    connect(m_view, &SlotListView::copyRequested, this, &MediaPanelWidget::copySelected);
    connect(m_view, &SlotListView::pasteRequested, this, [this] { pasteBehind(m_view->currentIndex()); });
    connect(m_view, &SlotListView::insertRequested, this,
            [this] { Q_EMIT mediaInsertRequested(selectedMedia()); });
    connect(m_view, &SlotListView::moveRequested, this, &MediaPanelWidget::moveSlot);
    connect(m_view, &SlotListView::textTyped, this, [this](const QString& text) {
        m_search->setFocus(Qt::OtherFocusReason);
        m_search->insert(text);
    });
    connect(m_view->verticalScrollBar(), &QScrollBar::valueChanged, this, &MediaPanelWidget::onScrolled);
}

void MediaPanelWidget::buildMenu()
{
    auto* menu = new ZTMenu(this);
    menu->setObjectNames(QStringLiteral("MediaPanel-menu"));
    m_menu = menu;
    m_addEntry = menu->addEntry(QStringLiteral("plus"), tr("New collection..."));
    connect(m_addEntry, &QAction::triggered, this, &MediaPanelWidget::askForNewCollection);
    m_addEntry->setVisible(false);
    const auto add = [this, menu](const char* icon, const QString& text, void (MediaPanelWidget::*slot)()) {
        connect(menu->addEntry(QString::fromLatin1(icon), text), &QAction::triggered, this, slot);
    };
    m_editEntry = menu->addEntry(QStringLiteral("media"), tr("Edit collection"));
    connect(m_editEntry, &QAction::triggered, this,
            [this] { Q_EMIT collectionEditRequested(selectedCollection()); });
    m_editEntry->setVisible(false);
    add("edit", tr("Rename collection..."), &MediaPanelWidget::askForName);
    connect(menu->addEntry(QStringLiteral("copy"), tr("Duplicate collection")), &QAction::triggered, this,
            [this] { chooseAdded([this] { return m_manager->copyCollection(selectedCollection(), -1); }); });
    menu->addSeparator();
    add("trash", tr("Remove collection..."), &MediaPanelWidget::askForRemoval);
    connect(m_menuButton, &QAbstractButton::clicked, this,
            [this] { m_menu->popup(m_menuButton->mapToGlobal(QPoint(0, m_menuButton->height() + 2))); });
}

void MediaPanelWidget::setCollectionsEditable(bool editable)
{
    m_editEntry->setVisible(editable);
}

void MediaPanelWidget::connectModels()
{
    connect(m_chooser, &QComboBox::activated, this, [this](int row) {
        const int number = m_chooser->itemData(row, CollectionSelectorModel::CollectionNumberRole).toInt();
        m_selector->setSelectedCollectionIndex(number);
        storeValue(collectionKey, number);
        m_remembered = -1;
    });
    connect(m_selector, &CollectionSelectorModel::selectionChanged, this, [this] {
        updateChooser();
        showCollection();
    });
    connect(m_selector, &QAbstractItemModel::rowsInserted, this, [this](const QModelIndex&, int first) {
        if (std::exchange(m_choosesAdded, false))
            selectCollection(
                m_selector->index(first, 0).data(CollectionSelectorModel::CollectionNumberRole).toInt());
    });
    // In the next turn, once for all: the chooser and the list have heard of the changes by then.
    m_refresh.setSingleShot(true);
    m_remembered = storedValue(collectionKey, -1).toInt();
    connect(&m_refresh, &QTimer::timeout, this, [this] {
        // Once, when the library with it has come.
        if (m_remembered >= 0 &&
            m_chooser->findData(m_remembered, CollectionSelectorModel::CollectionNumberRole) >= 0)
            m_selector->setSelectedCollectionIndex(std::exchange(m_remembered, -1));
        updateChooser();
        showCollection();
    });
    for (const QAbstractItemModel* model :
         {static_cast<QAbstractItemModel*>(m_sortedSelector), static_cast<QAbstractItemModel*>(m_model)}) {
        const auto refresh = [this] { m_refresh.start(0); };
        connect(model, &QAbstractItemModel::modelReset, this, refresh);
        connect(model, &QAbstractItemModel::rowsInserted, this, refresh);
        connect(model, &QAbstractItemModel::rowsRemoved, this, refresh);
    }
}

int MediaPanelWidget::selectedCollection() const
{
    return m_selector->selectedCollectionIndex();
}

void MediaPanelWidget::selectCollection(int collection)
{
    m_selector->setSelectedCollectionIndex(collection);
}

void MediaPanelWidget::setConnected(bool connected)
{
    m_connected = connected;
    updateEditable();
}

void MediaPanelWidget::showReading(const Session* session)
{
    const MediaLibraryApi* api = session->getMediaLibraryApi();
    if (!api)
        return;
    m_unread = api->unread();
    updateEditable();
}

QString MediaPanelWidget::obstacle() const
{
    if (m_session)
        return m_session->libraryObstacle();
    return m_connected ? QString() : tr("There is no connection to the server.");
}

void MediaPanelWidget::setStale(bool stale)
{
    if (m_delegate->setStale(stale))
        m_view->viewport()->update();
}

void MediaPanelWidget::updateEditable()
{
    m_addButton->setEnabled(isEditable());
    m_menuButton->setEnabled(isEditable() && selectedCollection() >= 0);
    m_view->viewport()->update(); // the place that invites a drop
    updateEmptyText();
}

void MediaPanelWidget::updateChooser()
{
    const int number = selectedCollection();
    m_chooser->setCurrentIndex(
        number < 0 ? -1 : m_chooser->findData(number, CollectionSelectorModel::CollectionNumberRole));
    m_menuButton->setEnabled(isEditable() && number >= 0);
    fitButtons();
}

void MediaPanelWidget::showCollection()
{
    const QModelIndex root = m_model->mapFromSource(m_library->collectionIndex(selectedCollection()));
    // Without a root the list would show the collections themselves.
    QAbstractItemModel* shown = root.isValid() ? m_model : nullptr;
    if (m_view->model() != shown) {
        m_view->setModel(shown);
        m_view->setModelColumn(MediaLibraryModel::NameColumn);
    }
    m_drops->setCollection(shown ? selectedCollection() : -1);
    if (shown && m_view->rootIndex() != root) {
        m_view->setRootIndex(root);
        m_view->scrollToTop();
    }
    updateEmptyText();
}

void MediaPanelWidget::updateEmptyText()
{
    m_chooser->setPlaceholderText(!m_connected               ? tr("Not connected")
                                  : m_unread.brief.isEmpty() ? tr("No collections")
                                                             : m_unread.brief);
    const bool hasCollection = selectedCollection() >= 0;
    if (!hasCollection && !m_connected)
        m_view->setEmpty(QStringLiteral("media"),
                         tr("No server connected. Connect from the menu to see its media."));
    else if (!hasCollection && !m_unread.whole.isEmpty())
        m_view->setEmpty(QStringLiteral("media"), m_unread.whole);
    else if (!hasCollection)
        m_view->setEmpty(QStringLiteral("folder"),
                         tr("There are no collections yet. Add one with the + button above."));
    else if (!m_model->searchText().isEmpty())
        m_view->setEmpty(QStringLiteral("search"), tr("No slot matches \"%1\".").arg(m_model->searchText()));
    else
        m_view->setEmpty(QStringLiteral("import"),
                         tr("This collection is empty. Drop files, folders or slots here."));
}

void MediaPanelWidget::onActivated(const QModelIndex& index)
{
    const QModelIndex source = m_model->mapToSource(index.siblingAtColumn(0));
    if (source.isValid() && index.data(MediaPanelModel::PlaceRole).toString().isEmpty())
        Q_EMIT directPlayRequested(source);
}

void MediaPanelWidget::onScrolled()
{
    m_delegate->setFetching(false);
    m_scrollRest.start();
}

/// Remembered before it is asked for: the answer may come while it is.
void MediaPanelWidget::chooseAdded(const std::function<bool()>& add)
{
    m_choosesAdded = true;
    if (!add())
        m_choosesAdded = false;
}

QString MediaPanelWidget::collectionName() const
{
    return m_chooser->itemData(m_chooser->currentIndex(), CollectionSelectorModel::EditTextRole).toString();
}

void MediaPanelWidget::askForNewCollection()
{
    auto* dialog = new TextInputDialog(tr("New collection"), tr("Name"), tr("CREATE"), this);
    dialog->setObjectNames(QStringLiteral("MediaPanel-new-collection"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &TextInputDialog::valuesConfirmed, this, [this](const QStringList& values) {
        chooseAdded([this, &values] { return m_manager->appendCollection(values.value(0)); });
    });
    dialog->open();
}

void MediaPanelWidget::askForName()
{
    const auto collection = m_drops->numbers().follow(selectedCollection());
    auto* dialog = new TextInputDialog(tr("Rename collection"), tr("Name"), tr("RENAME"), this);
    dialog->setObjectNames(QStringLiteral("MediaPanel-rename-collection"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setValue(0, collectionName());
    connect(dialog, &TextInputDialog::valuesConfirmed, this, [this, collection](const QStringList& values) {
        if (FollowedCollection::isThere(collection, tr("Rename collection")))
            m_manager->renameCollection(*collection, values.value(0));
    });
    dialog->open();
}

void MediaPanelWidget::askForRemoval()
{
    const auto collection = m_drops->numbers().follow(selectedCollection());
    const auto title = [collection] {
        return *collection < 0 ? tr("The collection is gone") : tr("Remove collection %1?").arg(*collection);
    };
    auto* dialog = new ConfirmationDialog(
        title(),
        tr("\"%1\" goes with all its slots. Playlists that play them lose their media. It can be undone.")
            .arg(shownText(collectionName())),
        tr("REMOVE"), this);
    dialog->setObjectNames(QStringLiteral("MediaPanel-remove-collection"));
    dialog->setAcceptClass(QStringLiteral("red"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ZTDialog::confirmed, this, [this, collection] {
        if (FollowedCollection::isThere(collection, tr("Remove collection")))
            m_manager->removeCollection(*collection);
    });
    connect(&m_drops->numbers(), &CollectionNumbers::changed, dialog,
            [dialog, title] { dialog->setTitle(title()); });
    dialog->open();
}

/// The search field comes before the add button, which the menu stands in for.
void MediaPanelWidget::fitButtons()
{
    const bool isNarrow = width() < scaled(addButtonWidth, currentFontSize()) && selectedCollection() >= 0;
    m_addButton->setVisible(!isNarrow);
    m_addEntry->setVisible(isNarrow);
}

void MediaPanelWidget::resizeEvent(QResizeEvent* event)
{
    ZTFrame::resizeEvent(event);
    fitButtons();
}

/// In a narrow panel the field names itself by its text or by its lens, whichever fits whole.
void MediaPanelWidget::fitSearch()
{
    const QString text = tr("Search");
    const QFontMetrics metrics(m_search->font());
    const int room = m_search->width() - 2 * metrics.averageCharWidth();
    const int textWidth = metrics.horizontalAdvance(text);
    const bool hasText = textWidth < room;
    m_search->setPlaceholderText(hasText ? text : QString());
    m_lens->setVisible(!hasText || textWidth + m_search->height() < room);
}

/// A number is the name of a slot, and cues that one or none; of other text a single hit is cued.
bool MediaPanelWidget::cueFromSearch()
{
    const QString text = m_search->text().trimmed();
    if (text.isEmpty() || !m_view->model())
        return false;
    const bool isNumber =
        std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    const QModelIndex root = m_view->rootIndex();
    QPersistentModelIndex source;
    bool isInRange = false;
    const int number = text.toInt(&isInRange);
    if (isNumber && isInRange)
        source = m_library->slotIndex({selectedCollection(), number});
    else if (!isNumber && m_model->rowCount(root) == 1)
        source = m_model->mapToSource(m_model->index(0, 0, root));
    if (isNumber && source.data(MediaLibraryModel::UrlRole).toUrl().isEmpty()) {
        tellNotDone(tr("Cue slot %1").arg(text),
                    tr("Collection %1 holds nothing in slot %2. Preview stays as it is.")
                        .arg(selectedCollection())
                        .arg(text));
        m_search->selectAll();
        return true;
    }
    if (!source.isValid())
        return false;
    if (isNumber)
        m_search->clear();
    m_view->setFocus(Qt::OtherFocusReason);
    m_view->setCurrentIndex(m_model->mapFromSource(source).siblingAtColumn(MediaLibraryModel::NameColumn));
    Q_EMIT directPlayRequested(source);
    return true;
}

bool MediaPanelWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_search && event->type() == QEvent::ShortcutOverride) {
        // A field without edits of its own leaves undo and redo to the library.
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->matches(QKeySequence::Undo) && !m_search->isUndoAvailable()) ||
            (key->matches(QKeySequence::Redo) && !m_search->isRedoAvailable())) {
            event->ignore();
            return true;
        }
    }
    if (watched == m_search && event->type() == QEvent::Resize)
        fitSearch();
    if (watched != m_search || event->type() != QEvent::KeyPress)
        return ZTFrame::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool isEnter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (key != Qt::Key_Down && !isEnter)
        return false;
    if (isEnter && (static_cast<QKeyEvent*>(event)->isAutoRepeat() || cueFromSearch()))
        return true;
    if (m_view->model() && m_model->rowCount(m_view->rootIndex()) > 0) {
        if (!m_view->currentIndex().isValid())
            m_view->setCurrentIndex(m_model->index(0, MediaLibraryModel::NameColumn, m_view->rootIndex()));
        m_view->setFocus(Qt::OtherFocusReason);
    }
    return true;
}

} // namespace vantrel
