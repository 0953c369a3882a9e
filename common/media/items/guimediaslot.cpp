#include "common/media/items/guimediaslot.h"

#include "common/media/address/mediafiles.h"
#include "common/media/address/medialogging.h"
#include "common/media/items/othermembers.h"
#include "tarn/media/enumtext.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/mediametadata.h"
#include "tarn/media/mediaslot.h"

#include <QJsonObject>

namespace vantrel {

namespace {

bool isNumberOrNull(const QJsonValue& value)
{
    return value.isDouble() || value.isNull();
}

bool isNumberWherePresent(const QJsonValue& value)
{
    return value.isUndefined() || value.isDouble();
}

QJsonValue orNull(std::optional<double> value)
{
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

std::optional<int> frameOf(const QJsonValue& value)
{
    return value.isDouble() ? std::optional(value.toInt()) : std::nullopt;
}

bool isImageSequence(const QJsonValue& value)
{
    if (!value.isObject())
        return value.isUndefined() || value.isNull();
    const QJsonObject sequence = value.toObject();
    return sequence.value(QStringLiteral("framerate")).isDouble() &&
           isNumberWherePresent(sequence.value(QStringLiteral("firstFrame"))) &&
           isNumberWherePresent(sequence.value(QStringLiteral("lastFrame")));
}

bool isDurationType(const QJsonValue& value)
{
    return value.isString() &&
           (value.toString() == QStringLiteral("infinite") || value.toString() == QStringLiteral("manual"));
}

bool isScaleMode(const QJsonValue& value)
{
    ScaleMode mode = ScaleMode::Default;
    if (value.isUndefined() || (value.isString() && fromStr(value.toString().toStdString(), mode)))
        return true;
    qCWarning(lcMedia) << "Invalid scale mode:" << value.toVariant();
    return false;
}

} // namespace

GuiMediaSlot::GuiMediaSlot()
    : m_scaleMode(ScaleMode::Default)
{
}

GuiMediaSlot::GuiMediaSlot(MediaAddress address, const MediaSlot& slot)
    : m_address(address)
    , m_name(QString::fromStdString(slot.getName()))
    , m_contentUrl(QString::fromStdString(slot.getUrl()))
    , m_inpoint(slot.getInpoint())
    , m_outpoint(slot.getOutpoint())
    , m_duration(slot.getEffectiveMediaDuration())
    , m_scaleMode(slot.getScaleMode())
    , m_isPlayable(slot.getIsPlayable())
    , m_durationType(slot.getDurationType())
    , m_frameRate(slot.getFrameRate())
    , m_firstFrame(slot.getFirstFrameNum())
    , m_lastFrame(slot.getLastFrameNum())
    , m_others(otherMembersOf(slot))
{
    if (const MediaType type = slot.getMetadata().getMediaType(); type != MediaType::Unknown)
        m_mediaType = type;
}

bool GuiMediaSlot::hasInfiniteDuration() const
{
    return m_durationType == MediaDurationType::Infinite;
}

MediaSlot GuiMediaSlot::toSdkMediaSlot() const
{
    MediaSlot slot(m_name.toStdString(), mediaUrlToString(m_contentUrl).toStdString());
    // What a new one has is left alone: thousands of them are made for one drop.
    if (m_inpoint != 0)
        slot.setInpoint(m_inpoint);
    if (m_outpoint)
        slot.setOutpoint(m_outpoint);
    // Only a still image has a duration that the operator chose.
    if (m_mediaType == MediaType::ImageFile)
        slot.setCustomMediaDuration(m_duration);
    else
        slot.setInherentMediaDuration(m_duration);
    if (m_scaleMode != ScaleMode::Default)
        slot.setScaleMode(m_scaleMode);
    if (!m_isPlayable)
        slot.setIsPlayable(false);
    if (m_durationType != MediaDurationType::Manual)
        slot.setDurationType(m_durationType);
    if (m_frameRate)
        slot.setFrameRate(*m_frameRate);
    if (m_firstFrame)
        slot.setFirstFrameNum(*m_firstFrame);
    if (m_lastFrame)
        slot.setLastFrameNum(*m_lastFrame);
    return withOtherMembers(slot, m_others);
}

QJsonObject GuiMediaSlot::toJson() const
{
    QJsonObject json{
        {QStringLiteral("address"), QString::fromStdString(m_address.toString())},
        {QStringLiteral("name"), m_name},
        {QStringLiteral("contentUrl"), mediaUrlToString(m_contentUrl)},
        {QStringLiteral("inpoint"), m_inpoint},
        {QStringLiteral("outpoint"), orNull(m_outpoint)},
        {QStringLiteral("duration"), m_duration},
        {QStringLiteral("scaleMode"), QString::fromUtf8(toStr(m_scaleMode))},
        {QStringLiteral("isPlayable"), m_isPlayable},
        {QStringLiteral("durationType"), QString::fromUtf8(toStr(m_durationType))},
        {QStringLiteral("imageSequence"), QJsonValue(QJsonValue::Null)},
    };
    if (m_frameRate && m_firstFrame && m_mediaType) {
        QJsonObject sequence{
            {QStringLiteral("framerate"), *m_frameRate},
            {QStringLiteral("firstFrame"), *m_firstFrame},
        };
        if (m_lastFrame)
            sequence.insert(QStringLiteral("lastFrame"), *m_lastFrame);
        json.insert(QStringLiteral("imageSequence"), sequence);
    }
    if (m_mediaType)
        json.insert(QStringLiteral("type"), QString::fromUtf8(toStr(*m_mediaType)));
    return json;
}

bool GuiMediaSlot::validate(const QJsonObject& json)
{
    const auto value = [&json](const char* key) { return json.value(QLatin1String(key)); };
    // Reversed on purpose: a type that the server knows is the server's to tell.
    MediaType known = MediaType::Unknown;
    const QJsonValue type = value("type");
    return value("address").isString() && value("name").isString() && value("contentUrl").isString() &&
           value("inpoint").isDouble() && isNumberOrNull(value("outpoint")) && value("duration").isDouble() &&
           isScaleMode(value("scaleMode")) && value("isPlayable").isBool() &&
           isDurationType(value("durationType")) && isImageSequence(value("imageSequence")) &&
           !(type.isString() && fromStr(type.toString().toStdString(), known));
}

bool GuiMediaSlot::fromJson(const QJsonObject& json)
{
    MediaAddress address;
    if (!validate(json) ||
        !address.parseString(json.value(QStringLiteral("address")).toString().toStdString()))
        return false;
    const auto value = [&json](const char* key) { return json.value(QLatin1String(key)); };
    m_address = address;
    m_name = value("name").toString();
    m_contentUrl = QUrl(value("contentUrl").toString());
    m_inpoint = value("inpoint").toDouble();
    const QJsonValue outpoint = value("outpoint");
    m_outpoint = outpoint.isDouble() ? std::optional(outpoint.toDouble()) : std::nullopt;
    m_duration = value("duration").toDouble();
    m_scaleMode = ScaleMode::Default;
    fromStr(value("scaleMode").toString().toStdString(), m_scaleMode);
    m_isPlayable = value("isPlayable").toBool();
    if (!fromStr(value("durationType").toString().toStdString(), m_durationType))
        qCWarning(lcMedia) << "Invalid duration type";
    const QJsonObject sequence = value("imageSequence").toObject();
    const QJsonValue frameRate = sequence.value(QStringLiteral("framerate"));
    m_frameRate = frameRate.isDouble() ? std::optional(frameRate.toDouble()) : std::nullopt;
    m_firstFrame = frameOf(sequence.value(QStringLiteral("firstFrame")));
    m_lastFrame = frameOf(sequence.value(QStringLiteral("lastFrame")));
    m_mediaType.reset();
    return true;
}

bool operator==(const GuiMediaSlot& a, const GuiMediaSlot& b)
{
    return a.m_address == b.m_address && a.m_name == b.m_name && a.m_contentUrl == b.m_contentUrl &&
           a.m_inpoint == b.m_inpoint && a.m_outpoint == b.m_outpoint && a.m_duration == b.m_duration &&
           a.m_scaleMode == b.m_scaleMode && a.m_isPlayable == b.m_isPlayable &&
           a.m_durationType == b.m_durationType && a.m_frameRate == b.m_frameRate &&
           a.m_firstFrame == b.m_firstFrame && a.m_lastFrame == b.m_lastFrame &&
           a.m_mediaType == b.m_mediaType;
}

} // namespace vantrel
