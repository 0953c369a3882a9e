#pragma once

#include <QModelIndex>
#include <QObject>
#include <QPointer>
#include <QVariantMap>

#include <memory>

class QMimeData;

namespace vantrel {

class FollowedCollection;
class ImplMediaCollectionManager;
class MediaLibraryModel;
class Session;
class SlotDrops;

/// What the MEDIA tab cannot do by itself ("mediaActions"): edits and cues of slots, drags that leave the
/// view and drops that may come from anywhere, and how far the library is there. The view owns it; main
/// thread only.
class MediaActions : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("common/views/collectionnumbers.h")
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY libraryChanged)
    /// Whether what is shown is what the server has now.
    Q_PROPERTY(bool isLive READ isLive NOTIFY libraryChanged)
    Q_PROPERTY(bool isEditable READ isEditable NOTIFY libraryChanged)
    /// Grows with every change of what arriving() tells.
    Q_PROPERTY(int arrivalsRevision READ arrivalsRevision NOTIFY arrivalsChanged)
    /// What was dropped on slots and is not in them yet; empty for none.
    Q_PROPERTY(QString pendingDrop READ pendingDrop NOTIFY arrivalsChanged)
    /// What stands between the operator and the library, a sentence; empty for nothing.
    Q_PROPERTY(QString obstacle READ obstacle NOTIFY libraryChanged)
    /// What can be done with a place without media.
    Q_PROPERTY(QString placeHint READ placeHint CONSTANT)
    /// Slots as a table or as pictures. Kept in the settings.
    Q_PROPERTY(bool isTable READ isTable WRITE setIsTable NOTIFY isTableChanged)
    /// Whether what is selected is told about beside the slots. Kept in the settings.
    Q_PROPERTY(bool hasDetails READ hasDetails WRITE setHasDetails NOTIFY hasDetailsChanged)

public:
    /// session: null where there is no server to ask and nothing to cue. All must outlive this.
    MediaActions(QWidget* view, MediaLibraryModel* library, Session* session, QObject* parent = nullptr);
    ~MediaActions() override;

    SlotDrops* drops() const { return m_drops.get(); }
    bool isConnected() const { return m_isConnected; }
    bool isLive() const { return m_isConnected && m_silence.isEmpty(); }
    bool isEditable() const { return m_isEditable; }
    int arrivalsRevision() const { return m_arrivalsRevision; }
    QString pendingDrop() const;
    QString obstacle() const;
    QString placeHint() const;
    bool isTable() const { return m_isTable; }
    void setIsTable(bool isTable);
    bool hasDetails() const { return m_hasDetails; }
    void setHasDetails(bool hasDetails);

    /// What is asked about a collection stays with it when others renumber it.
    Q_INVOKABLE vantrel::FollowedCollection* follow(int collection);
    Q_INVOKABLE void cue(int collection, int slot);
    /// Of a slot's file that is on its way to the server: "arriving 43 %"; empty for others.
    Q_INVOKABLE QString arriving(int collection, int slot) const;
    /// The same from 0 to 1; below 0 for others.
    Q_INVOKABLE double arrivedPart(int collection, int slot) const;
    Q_INVOKABLE bool rename(int collection, int slot, const QString& name);
    Q_INVOKABLE void clear(int collection, const QList<int>& slotNumbers);
    /// The name of what the operator has given the keys to, of all that is done by keys in this tab; empty
    /// for others.
    Q_INVOKABLE QString actionOf(int key, int modifiers) const;
    Q_INVOKABLE QString keysOf(const QString& action) const;

    /// To the clipboard, from where they are copied or, when they are cut, move to where they are pasted.
    /// What has been done, a sentence.
    Q_INVOKABLE QString copy(int collection, const QList<int>& slotNumbers, bool isCut);
    /// To the first room behind the slot.
    Q_INVOKABLE void paste(int collection, int slot);
    /// Asks for the number to which the slots are to move.
    Q_INVOKABLE void askMove(int collection, const QList<int>& slotNumbers);
    /// Drags slots until they are dropped.
    Q_INVOKABLE void startDrag(int collection, const QList<int>& slotNumbers);
    /// What is dragged over the view has come over the slots of a collection; false for what they do not
    /// take.
    Q_INVOKABLE bool beginDrop(int collection);
    /// What a drop would do: "isPossible", "canCopy" and "canMove" with a key, "first", "last", "isExact",
    /// "overwrites", "text".
    Q_INVOKABLE QVariantMap aim(int slot);
    /// The first slot behind that one with room for the drag; 0 is before all.
    Q_INVOKABLE int roomBehind(int slot);
    Q_INVOKABLE void drop(int slot);
    Q_INVOKABLE void endDrop();
    /// What pendingDrop() speaks of: nothing of it goes into slots.
    Q_INVOKABLE void givePendingDropUp();

Q_SIGNALS:
    /// The operator wants a server.
    void connectRequested();
    void libraryChanged();
    void arrivalsChanged();
    void isTableChanged();
    void hasDetailsChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();
    void readState();
    void runDrag(int collection, const QList<int>& slotNumbers);
    QMimeData* dataOf(int collection, const QList<int>& slotNumbers) const;
    QModelIndex slotAt(int collection, int slot) const;

    QWidget* m_view;
    MediaLibraryModel* m_library;
    QPointer<const QMimeData> m_dragged; // over the view
    Session* m_session;
    std::unique_ptr<ImplMediaCollectionManager> m_manager;
    std::unique_ptr<SlotDrops> m_drops;
    QString m_unread;  // why the library is not read, a sentence
    QString m_silence; // of a link that is there and says nothing, a sentence
    int m_arrivalsRevision = 0;
    bool m_isConnected = false;
    bool m_isEditable = false;
    bool m_isTable = false;
    bool m_hasDetails = true;
};

} // namespace vantrel
