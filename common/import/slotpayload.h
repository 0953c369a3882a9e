#pragma once

#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QString>
#include <QVariantMap>

class QJsonDocument;
class QJsonObject;
class QMimeData;

namespace vantrel {

/// One file or directory that is dragged.
struct MediaEntry
{
    QString path;
    QString fileSystem; // its name
    QString name;
    double durationSeconds = 0;
    bool isDirectory = false;
    bool isPlayable = false;
    bool isKnown = true; // else nobody has looked into the file yet
};

/// What a drag brings to a slot, read with distrust: it comes from anywhere. A value; it knows no library, so
/// that what it names may be gone.
class SlotPayload
{
public:
    enum class Kind { Nothing, Slots, Media };

    static SlotPayload of(const QMimeData* data); // isMediaPayload()
    /// mime: "application/type" and "application/json", as texts.
    static SlotPayload read(const QVariantMap& mime);
    /// {"slots": [numbers], "collection": number}, the collection being the target's where it is not named;
    /// or an array of slots as the library's views drag them.
    static SlotPayload readSlots(const QJsonDocument& document);
    /// An array of entries. What stands before a bad one is kept beside the fault.
    static SlotPayload readMedia(const QJsonDocument& document);

    /// Of entries that are known already.
    static SlotPayload ofFiles(const QList<MediaEntry>& entries);

    Kind kind() const { return m_kind; }
    /// What is wrong with it, as a sentence for the operator; empty for a sound one.
    const QString& fault() const { return m_fault; }
    bool isSound() const { return m_kind != Kind::Nothing && m_fault.isEmpty(); }
    /// Each once, in the order in which they were dragged; a collection of -1 is the target's.
    const QList<MediaAddress>& addresses() const { return m_addresses; }
    const QList<MediaEntry>& entries() const { return m_entries; }
    bool isCopy() const { return m_isCopy; }
    void setIsCopy(bool isCopy) { m_isCopy = isCopy; }
    bool isMove() const { return m_isMove; }
    /// Slots that come from another collection leave it.
    void setIsMove(bool isMove) { m_isMove = isMove; }
    /// Whether they are slots of the collection, and none that are copied.
    bool movesWithin(int collection) const;
    /// Whether some of another collection come into this one and leave theirs.
    bool movesInto(int collection) const;
    /// Those of the collection that leave where they are.
    QList<int> leaving(int collection) const;

private:
    static SlotPayload refused(const QString& fault);
    bool addEntry(const QJsonObject& object);

    Kind m_kind = Kind::Nothing;
    QString m_fault;
    QList<MediaAddress> m_addresses;
    QList<MediaEntry> m_entries;
    bool m_isCopy = false;
    bool m_isMove = false;
};

} // namespace vantrel
