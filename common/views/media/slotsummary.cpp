#include "common/views/media/slotsummary.h"

#include "common/filesystem/model/filesize.h"
#include "common/media/address/mediautils.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/session/settings/timeutils.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/mediametadata.h"
#include "util/clocktime.h"

#include <QCoreApplication>
#include <QLocale>
#include <QVariantMap>

#include <cmath>

namespace vantrel {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("vantrel::SlotSummary", text);
}

QString counted(int count, const char* one, const char* many)
{
    return tr(count == 1 ? one : many).arg(QLocale().toString(count));
}

QString kindText(MediaType kind, int count)
{
    switch (kind) {
    case MediaType::VideoFile:
        return counted(count, "%1 video", "%1 videos");
    case MediaType::AudioFile:
        return counted(count, "%1 of sound", "%1 of sound");
    case MediaType::ImageFile:
        return counted(count, "%1 still", "%1 stills");
    case MediaType::ImageSequence:
        return counted(count, "%1 image sequence", "%1 image sequences");
    default:
        return counted(count, "%1 of unknown kind", "%1 of unknown kind");
    }
}

} // namespace

void SlotSummary::Common::add(const QString& text)
{
    if (!m_text)
        m_text = text;
    else
        m_differs = m_differs || *m_text != text;
}

QString SlotSummary::Common::text() const
{
    return m_differs ? tr("various") : m_text.value_or(QString());
}

void SlotSummary::add(const QModelIndex& slot, const MediaMetadataPtr& metadata, bool isUsed)
{
    ++m_count;
    ++m_kinds[static_cast<MediaType>(slot.data(MediaLibraryModel::KnownTypeRole).toInt())];
    if (slot.data(MediaLibraryModel::HasInfiniteDurationRole).toBool())
        ++m_endless;
    else
        m_seconds += slot.data(MediaLibraryModel::DurationSecondsRole).toDouble();
    m_unusable += slot.data(MediaLibraryModel::PlayableRole).toBool() ? 0 : 1;
    m_unused += isUsed ? 0 : 1;
    m_scaling.add(
        scaleModeToPrettyString(static_cast<ScaleMode>(slot.data(MediaLibraryModel::ScaleModeRole).toInt())));

    const QUrl file = slot.data(MediaLibraryModel::UrlRole).toUrl();
    if (m_files.contains(file))
        return; // it is counted once, however many play it
    m_files.insert(file);
    if (!metadata) {
        ++m_unknownSizes;
        return;
    }
    if (const auto bytes = metadata->getFileSize())
        m_bytes += *bytes;
    const auto& pictures = metadata->getVideo() ? metadata->getVideo() : metadata->getImage();
    if (!pictures)
        return;
    if (pictures->width && pictures->height)
        m_picture.add(tr("%1 x %2").arg(*pictures->width).arg(*pictures->height));
    m_codec.add(QString::fromStdString(pictures->codec).toUpper());
    if (pictures->frameRate)
        m_rate.add(QString::number(std::round(*pictures->frameRate * 1000) / 1000));
}

QVariantList SlotSummary::facts() const
{
    QVariantList all;
    const auto tell = [&all](const QString& label, const QString& value) {
        if (!value.isEmpty())
            all.append(QVariantMap{{QStringLiteral("label"), label}, {QStringLiteral("value"), value}});
    };
    const QLocale locale;
    tell(tr("Media:"), kindText());
    tell(tr("Duration:"), durationText());
    tell(tr("File size:"), sizeText());
    tell(tr("Picture:"), m_picture.text());
    tell(tr("Video:"), m_codec.text());
    tell(tr("FPS:"), m_rate.text());
    tell(tr("Scaling:"), m_scaling.text());
    if (m_unusable > 0)
        tell(tr("Not playable:"), locale.toString(m_unusable));
    if (m_unused > 0)
        tell(tr("In no playlist:"), locale.toString(m_unused));
    return all;
}

QString SlotSummary::kindText() const
{
    QStringList parts;
    for (const auto& [kind, count] : m_kinds)
        parts.append(vantrel::kindText(kind, count));
    return parts.join(QStringLiteral(", "));
}

QString SlotSummary::durationText() const
{
    const QString endless =
        m_endless > 0 ? counted(m_endless, "%1 without an end", "%1 without an end") : QString();
    if (m_endless == m_count)
        return endless;
    const QString sum = TimeUtils::formatClockTimeShort(clocktime::fromSeconds(m_seconds));
    return endless.isEmpty() ? sum : tr("%1, and %2").arg(sum, endless);
}

QString SlotSummary::sizeText() const
{
    if (m_unknownSizes == m_files.size())
        return {};
    const QString size = fileSizeText(m_bytes);
    return m_unknownSizes > 0
               ? tr("%1, and %2").arg(size, counted(m_unknownSizes, "%1 unread file", "%1 unread files"))
               : size;
}

} // namespace vantrel
