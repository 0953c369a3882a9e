#include "common/import/slotpayload.h"

#include "common/media/address/medialogging.h"
#include "common/media/items/mimedata.h"
#include "common/media/items/slotmimedata.h"
#include "tarn/media/mediacollection.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMimeData>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace vantrel {

namespace {

// A payload of all slots of a collection is some megabytes; what is larger was not made by a drag of ours.
constexpr qsizetype largestPayload = 16 * 1024 * 1024;
constexpr double longestSeconds = 1e7;

QString translated(const char* text)
{
    return QCoreApplication::translate("SlotPayload", text);
}

QString unreadable()
{
    return translated(
        "What was dropped cannot be read. Drag slots from the media panel or files from FILES.");
}

/// A slot's number, or -1.
int slotNumber(const QJsonValue& value)
{
    const int number = value.toInt(-1);
    return number >= 0 && number <= MediaCollection::getMediaSlotIndexMax() ? number : -1;
}

/// Absolute, and without what would name a file elsewhere than it says.
bool isSoundPath(const QString& path)
{
    return path.startsWith(u'/') && !path.contains(QChar(u'\0')) && !path.contains(QLatin1String("/../")) &&
           !path.endsWith(QLatin1String("/.."));
}

} // namespace

SlotPayload SlotPayload::of(const QMimeData* data)
{
    if (const auto* own = qobject_cast<const SlotMimeData*>(data)) {
        SlotPayload payload;
        payload.m_kind = Kind::Slots;
        payload.m_addresses = own->addresses();
        return payload;
    }
    return read({{mimeformat::type, QString::fromUtf8(data->data(mimeformat::type))},
                 {mimeformat::json, QString::fromUtf8(data->data(mimeformat::json))}});
}

SlotPayload SlotPayload::refused(const QString& fault)
{
    SlotPayload nothing;
    nothing.m_fault = fault;
    return nothing;
}

SlotPayload SlotPayload::read(const QVariantMap& mime)
{
    if (!mime.contains(mimeformat::type) || !mime.contains(mimeformat::json)) {
        qCWarning(lcMedia) << "Unable to handle MIME map due missing values -" << mime.keys();
        return refused(unreadable());
    }
    const QString text = mime.value(mimeformat::json).toString();
    const QJsonDocument document =
        text.size() > largestPayload ? QJsonDocument() : QJsonDocument::fromJson(text.toUtf8());
    if (document.isEmpty()) {
        qCWarning(lcMedia) << "MIME" << mimeformat::json << "is empty/error";
        return refused(unreadable());
    }
    const QString type = mime.value(mimeformat::type).toString();
    if (type == mimeformat::slotType)
        return readSlots(document);
    if (type == mimeformat::mediaType)
        return readMedia(document);
    qCWarning(lcMedia) << "Unknown MIME type:" << type.left(100) << "- Ignoring drop";
    return refused(translated("This cannot be put into a slot. Slots and files can."));
}

SlotPayload SlotPayload::readSlots(const QJsonDocument& document)
{
    const QJsonObject object = document.object();
    if (!document.isArray() && !object.value(QLatin1String("slots")).isArray()) {
        qCWarning(lcMedia) << "Unable to read target slots from MIME JSON:" << document.toJson().left(200);
        return refused(unreadable());
    }
    SlotPayload payload;
    QSet<QPair<int, int>> seen;
    const int collection = object.value(QLatin1String("collection")).toInt(-1);
    const QJsonArray elements =
        document.isArray() ? document.array() : object.value(QLatin1String("slots")).toArray();
    for (const QJsonValue& element : elements) {
        MediaAddress address(collection, slotNumber(element));
        if (element.isObject()) {
            const std::string text =
                element.toObject().value(QLatin1String("address")).toString().toStdString();
            if (!address.parseString(text) || slotNumber(address.slot) < 0)
                address = MediaAddress();
        }
        if (address.slot < 0) {
            qCWarning(lcMedia) << "Unable to read target slots from MIME JSON:"
                               << document.toJson().left(200);
            return refused(unreadable());
        }
        if (seen.contains({address.collection, address.slot}))
            continue;
        seen.insert({address.collection, address.slot});
        payload.m_addresses.append(address);
    }
    if (payload.m_addresses.isEmpty()) {
        qCWarning(lcMedia) << "Source slot array was empty in MIME data. Skipping drop(s)";
        return refused(translated("Nothing was dragged: there is no slot in what was dropped."));
    }
    payload.m_kind = Kind::Slots;
    return payload;
}

SlotPayload SlotPayload::readMedia(const QJsonDocument& document)
{
    if (!document.isArray()) {
        qCWarning(lcMedia) << "Expected MIME JSON to contain an array:" << document.toJson().left(200);
        return refused(unreadable());
    }
    const QJsonArray elements = document.array();
    qCInfo(lcMedia) << "Handling" << elements.size() << "JSON item(s) in an array";
    SlotPayload payload;
    payload.m_kind = Kind::Media;
    payload.m_entries.reserve(elements.size());
    for (const QJsonValue& element : elements) {
        if (payload.addEntry(element.toObject()))
            continue;
        qCWarning(lcMedia) << "Unable to read media variables from MIME JSON:"
                           << QJsonDocument(element.toObject()).toJson(QJsonDocument::Compact).left(200);
        payload.m_fault = unreadable();
        break;
    }
    return payload;
}

bool SlotPayload::addEntry(const QJsonObject& object)
{
    const auto at = [&object](const char* key) { return object.value(QLatin1String(key)); };
    const double seconds = at("duration").toDouble(-1);
    if (!at("path").isString() || !at("fileSystem").isString() || !at("name").isString() ||
        !at("isDirectory").isBool() || !at("isPlayable").isBool() || !(seconds >= 0) ||
        seconds > longestSeconds || !isSoundPath(at("path").toString()))
        return false;
    m_entries.append({at("path").toString(), at("fileSystem").toString(), at("name").toString(), seconds,
                      at("isDirectory").toBool(), at("isPlayable").toBool(), at("isKnown").toBool(true)});
    return true;
}

SlotPayload SlotPayload::ofFiles(const QList<MediaEntry>& entries)
{
    SlotPayload payload;
    payload.m_kind = entries.isEmpty() ? Kind::Nothing : Kind::Media;
    payload.m_entries = entries;
    return payload;
}

bool SlotPayload::movesWithin(int collection) const
{
    return m_kind == Kind::Slots && !m_isCopy &&
           std::ranges::all_of(m_addresses, [collection](const MediaAddress& address) {
               return address.collection < 0 || address.collection == collection;
           });
}

bool SlotPayload::movesInto(int collection) const
{
    return m_kind == Kind::Slots && m_isMove && !m_isCopy && !movesWithin(collection);
}

QList<int> SlotPayload::leaving(int collection) const
{
    QList<int> left;
    if (!movesWithin(collection) && !movesInto(collection))
        return left;
    for (const MediaAddress& address : m_addresses) {
        if (address.collection < 0 || address.collection == collection)
            left.append(address.slot);
    }
    return left;
}

} // namespace vantrel
