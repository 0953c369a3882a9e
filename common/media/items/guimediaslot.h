#pragma once

#include "common/media/items/guimediaitem.h"
#include "tarn/json/json.h"
#include "tarn/media/mediaaddress.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <optional>

namespace vantrel {

enum class MediaDurationType : std::int32_t;
enum class MediaType : std::int32_t;
enum class ScaleMode : std::int32_t;

class MediaSlot;

/// A slot as views see it. Times are seconds; an absent out point means the end of the media.
class GuiMediaSlot final : public GuiMediaItem
{
    Q_GADGET
    Q_PROPERTY(QString name READ name WRITE setName)

public:
    GuiMediaSlot();
    GuiMediaSlot(MediaAddress address, const MediaSlot& slot);

    MediaAddress address() const { return m_address; }
    void setAddress(MediaAddress address) { m_address = address; }
    const QString& name() const { return m_name; }
    void setName(const QString& name) { m_name = name; }
    const QUrl& contentUrl() const { return m_contentUrl; }
    void setContentUrl(const QUrl& url) { m_contentUrl = url; }
    double inpoint() const { return m_inpoint; }
    void setInpoint(double seconds) { m_inpoint = seconds; }
    std::optional<double> outpoint() const { return m_outpoint; }
    void setOutpoint(std::optional<double> seconds) { m_outpoint = seconds; }
    double duration() const { return m_duration; }
    void setDuration(double seconds) { m_duration = seconds; }
    ScaleMode scaleMode() const { return m_scaleMode; }
    void setScaleMode(ScaleMode mode) { m_scaleMode = mode; }
    bool isPlayable() const { return m_isPlayable; }
    void setIsPlayable(bool playable) { m_isPlayable = playable; }
    MediaDurationType durationType() const { return m_durationType; }
    void setDurationType(MediaDurationType type) { m_durationType = type; }
    bool hasInfiniteDuration() const;
    std::optional<double> frameRate() const { return m_frameRate; }
    void setFrameRate(std::optional<double> rate) { m_frameRate = rate; }
    std::optional<int> firstFrame() const { return m_firstFrame; }
    void setFirstFrame(std::optional<int> frame) { m_firstFrame = frame; }
    std::optional<int> lastFrame() const { return m_lastFrame; }
    void setLastFrame(std::optional<int> frame) { m_lastFrame = frame; }
    std::optional<MediaType> mediaType() const { return m_mediaType; }
    void setMediaType(std::optional<MediaType> type) { m_mediaType = type; }

    /// The library's record of this slot, for commands.
    MediaSlot toSdkMediaSlot() const;
    QJsonObject toJson() const;
    /// A "type" that names a media type is refused: a payload says what a slot is, and the server what it
    /// holds.
    bool fromJson(const QJsonObject& json) override;

    friend bool operator==(const GuiMediaSlot& a, const GuiMediaSlot& b);

private:
    static bool validate(const QJsonObject& json);

    MediaAddress m_address;
    QString m_name;
    QUrl m_contentUrl;
    double m_inpoint = 0;
    std::optional<double> m_outpoint;
    double m_duration = 0;
    ScaleMode m_scaleMode;
    bool m_isPlayable = false;
    MediaDurationType m_durationType{}; // Manual
    std::optional<double> m_frameRate;
    std::optional<int> m_firstFrame;
    std::optional<int> m_lastFrame;
    std::optional<MediaType> m_mediaType;
    Json m_others; // of its record; not in its JSON
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::GuiMediaSlot)
