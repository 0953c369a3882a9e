#pragma once

#include "common/media/edit/playlist/addmediatoplaylistcommand.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "tarn/media/playenums.h"

#include <QDeadlineTimer>

#include <functional>

class QMimeData;
class QUndoStack;

namespace vantrel {

class MediaLibrary;
class MediaLibraryApi;
class Playlist;
class PlaylistEntry;
class PlaylistSelectionModel;
class ResourceStatusProvider;

/// A playlist with what an operator does to it: every operation is one command on the undo stack. Why one was
/// not done goes to the operator as a notification. Main thread only.
class PlaylistEditorModel : public PlaylistModel
{
    Q_OBJECT

public:
    using AddMode = AddMediaToPlaylistCommand::AddMode;

    using PlaylistModel::PlaylistModel;
    ~PlaylistEditorModel() override;

    /// What the operations work with beside the library. Each may be null: what needs it does nothing then.
    void setUndoStack(QUndoStack* stack);
    void setResourceStatusProvider(ResourceStatusProvider* status);
    void setSelection(PlaylistSelectionModel* selection);
    /// The client of the connection: gestures have regard to its edits that are under way.
    void setLibraryApi(const MediaLibraryApi* api);

    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    /// URLs of slots, in front of, in place of and behind the first selected row. Without a selection they go
    /// to the end.
    void doInsertBefore(const QList<QString>& urls);
    void doReplace(const QList<QString>& urls);
    void doInsertAfter(const QList<QString>& urls);
    void doInsertEnd(const QList<QString>& urls);
    /// At a row; an invalid index is the start of the list.
    void doDropCollection(const QList<QString>& urls, const QModelIndex& target, AddMode mode);
    /// Moves entries behind the row on the screen that is given; an invalid one is the top of the list.
    void doDropInsert(const QList<QModelIndex>& sources, const QModelIndex& target);
    /// Moves entries in the place of another one.
    void doDropReplace(const QList<QModelIndex>& sources, const QModelIndex& target);
    /// On the screen. While an edit of the list is under way they wait for it, and several become one.
    void doMoveUp(const QList<QModelIndex>& indexes);
    void doMoveDown(const QList<QModelIndex>& indexes);
    void doRemove(const QList<QModelIndex>& indexes);
    void doClear();
    /// In the order of their addresses. 0 when done, 3 when one of the entries is not there, 4 without room,
    /// 1 for anything else.
    int doRenumber(const EntryAddress& start, const QList<EntryAddress>& entries);

    /// One undo step each; of several rows too.
    void setEndAction(const QModelIndex& index, EndAction action);
    void setTransition(const QModelIndex& index, TakeTransitionType type);
    void setTransitionDuration(const QModelIndex& index, double seconds);
    /// The same value for the cells of one column in several rows: one undo step.
    bool setSelectedData(const QList<QModelIndex>& indexes, const QVariant& value);

    /// The payload of entries, for the clipboard and for drags; null without any. The caller owns it.
    QMimeData* copyEntries(const QList<QModelIndex>& indexes) const;
    static bool canPaste(const QMimeData* payload);
    /// Entries, or slots, of a payload below a row, or at the end for an invalid index; one undo step.
    /// False, and nothing changes, for anything that is no such payload.
    bool doPaste(const QMimeData* payload, const QModelIndex& after);
    /// Entries of another list, behind the row on the screen or in its place; an invalid row is the top of
    /// the list.
    bool doDropEntries(const QList<PlaylistEntry>& entries, const QModelIndex& target, AddMode mode);

    /// An entry that is being moved is played when it has arrived.
    void doDirectPlayPreview(const QModelIndex& index, int channel);
    void doDirectPlayProgram(const QModelIndex& index, int channel);
    void doDirectPlayPreviewWithAddress(const EntryAddress& address, int channel);
    void doDirectPlayProgramWithAddress(const EntryAddress& address, int channel);
    void doDirectPlayWithSlot(bool preview, int channel, int collection, int slot);

    /// Whether the entries find room when they move up, or down, by count rows.
    bool isRoomForInsertBefore(const QList<QModelIndex>& indexes, uint count) const;
    bool isRoomForInsertAfter(const QList<QModelIndex>& indexes, uint count) const;
    bool hasPlaylist() const;
    /// Behind which entry of the list something goes that is put below this row on the screen; an invalid
    /// index is the top of the screen, an invalid address the start of the list.
    EntryAddress addressAbove(const QModelIndex& target) const;
    /// Of a row of the model that the index belongs to; invalid where there is no such row.
    EntryAddress getAddressAtRow(const QModelIndex& index, int row) const;
    /// "3.5: Applause loop"
    QString getPlaybackInfo(const QModelIndex& index) const;

public Q_SLOTS:
    void onSlotModify(const QList<std::pair<uint, vantrel::EntryAddress>>& entries);

private:
    const MediaLibrary* library() const;
    const Playlist* list() const; // null when there is none
    bool areEditsUnderWay() const;
    bool willHavePlaylist() const; // once what is under way has arrived
    int number() const { return static_cast<int>(playlistNumber()); }
    QModelIndex selectedIndex() const;
    QList<EntryAddress> sortedAddresses(const QList<QModelIndex>& indexes) const;
    void insertAtSelection(AddMode mode, const QList<QString>& urls);
    void executeAddMediaCommand(AddMode mode, const EntryAddress& address, const QList<QString>& urls);
    template <typename Command, typename... Args>
    bool run(const QString& failure, Args&&... args);
    bool editEntries(const QList<QModelIndex>& indexes,
                     const std::function<void(PlaylistEntry& entry)>& change);
    bool isInOrder(const QString& title) const;
    bool hasSlotsOf(const QString& title, const QList<PlaylistEntry>& entries) const;
    void directPlay(bool preview, const QModelIndex& index, int channel);
    void directPlayAddress(bool preview, const EntryAddress& address, int channel);
    template <typename... Place>
    void play(bool preview, int channel, Place&&... place);
    bool isPreviewConstrained() const;

    /// A gesture that waits until the list shows what is under way; its rows go with their entries.
    struct Held
    {
        enum class Kind { Move, Preview, Program };
        Kind kind;
        QList<QPersistentModelIndex> rows;
        int value; // rows to move down the screen, or the channel
        QDeadlineTimer patience;
    };
    bool isSettled() const;
    bool isReady(const Held& held) const;
    bool areStill(const QList<EntryAddress>& addresses) const;
    bool areStillOrTells(const QString& title, const QList<EntryAddress>& addresses) const;
    void move(const QList<QModelIndex>& indexes, int steps);
    bool placeEntries(const QList<PlaylistEntry>& entries, AddMode mode, const QModelIndex& target);
    void moveUp(const QList<QModelIndex>& indexes, int steps);
    void moveDown(const QList<QModelIndex>& indexes, int steps);
    void hold(Held::Kind kind, const QList<QModelIndex>& rows, int value);
    void dropExpired();
    void resume();
    void perform(const Held& held);
    void showError(const QString& title, const QString& text) const;
    /// What the command has named is not there any more, or there is no room.
    void showRefusal(const QString& title, const QList<EntryAddress>& named) const;

    QPointer<QUndoStack> m_stack;
    QPointer<ResourceStatusProvider> m_resourceStatus;
    QPointer<PlaylistSelectionModel> m_selection;
    QPointer<const MediaLibraryApi> m_api;
    QList<Held> m_held;
};

} // namespace vantrel
