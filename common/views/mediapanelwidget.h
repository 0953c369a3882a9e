#pragma once

#include "common/media/library/libraryunread.h"
#include "common/ui/toolkit/ztframe.h"

#include <QModelIndex>
#include <QTimer>

#include <functional>

class QAction;
class QMenu;

namespace vantrel {

class AbstractMediaLibraryProvider;
class CollectionSelectorModel;
class Hotkeys;
class IconButton;
class MediaCollectionManager;
class MediaLibraryModel;
class MediaPanelModel;
class Session;
class SlotDelegate;
class SlotDrops;
class SlotListView;
class SortedCollectionSelectorModel;
class ZTComboBox;
class ZTEdit;
class ZTMenu;

/// The media library beside the player: a collection is chosen, its slots are listed and searched, and a
/// double click or Enter on one plays it. Main thread; everything it is given must outlive it.
class MediaPanelWidget : public ZTFrame
{
    Q_OBJECT

public:
    /// On the session's library; what is to be played goes to its SignalRelay.
    explicit MediaPanelWidget(Session* session, QWidget* parent = nullptr);
    MediaPanelWidget(MediaLibraryModel* library, AbstractMediaLibraryProvider* provider,
                     MediaCollectionManager* manager, QWidget* parent = nullptr, Session* session = nullptr);
    ~MediaPanelWidget() override;

    /// -1 while there is none.
    int selectedCollection() const;
    void selectCollection(int collection);
    /// Without a server an empty panel says so.
    void setConnected(bool connected);
    /// Whether the marks on the slots are no longer what the server says.
    void setStale(bool stale);
    /// Whether the menu offers to edit the collection: where somebody follows collectionEditRequested.
    void setCollectionsEditable(bool editable);
    /// The URLs of the selected slots, in their order.
    QList<QString> selectedMedia() const;

Q_SIGNALS:
    /// An index of MediaLibraryModel.
    void directPlayRequested(QModelIndex index);
    void collectionEditRequested(int collection);
    /// URLs of slots are to go into the playlist that is edited.
    void mediaInsertRequested(QList<QString> urls);

private:
    void addHotkeys(Hotkeys* hotkeys);
    void buildHeader();
    void buildList();
    void buildMenu();
    void connectModels();
    void showCollection();
    void updateChooser();
    void fitSearch();
    void fitButtons();
    void showReading(const Session* session);
    void updateEditable();
    bool isEditable() const { return obstacle().isEmpty(); }
    QString obstacle() const;
    void updateEmptyText();
    void onActivated(const QModelIndex& index);
    bool cueFromSearch();
    void onScrolled();
    void moveSlot(const QModelIndex& source, int beforeRow);
    void showSlotMenu(const QPoint& position);
    void addSlotEntries(ZTMenu* menu, const QModelIndex& index);
    void askForMove();
    void copySelected(bool isCut);
    void pasteBehind(const QModelIndex& index);
    QList<int> selectedSlots() const;
    void clearSelectedSlots();
    void askForNewCollection();
    void chooseAdded(const std::function<bool()>& add);
    void askForName();
    void askForRemoval();
    QString collectionName() const;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    Session* m_session; // null for none
    MediaLibraryModel* m_library;
    MediaCollectionManager* m_manager;
    CollectionSelectorModel* m_selector;
    SortedCollectionSelectorModel* m_sortedSelector;
    MediaPanelModel* m_model;
    SlotDelegate* m_delegate;
    ZTComboBox* m_chooser = nullptr;
    IconButton* m_addButton = nullptr;
    IconButton* m_menuButton = nullptr;
    QMenu* m_menu = nullptr;
    QAction* m_addEntry = nullptr;
    QAction* m_editEntry = nullptr;
    ZTEdit* m_search = nullptr;
    QAction* m_lens = nullptr; // in the search field
    SlotListView* m_view = nullptr;
    SlotDrops* m_drops;
    QTimer m_scrollRest;
    QTimer m_refresh;
    LibraryUnread m_unread; // until the library is the server's
    int m_remembered = -1;  // the collection of the last run, until it has come
    bool m_connected = false;
    bool m_choosesAdded = false; // the next collection that comes is the one made here
};

} // namespace vantrel
