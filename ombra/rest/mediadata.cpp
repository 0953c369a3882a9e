#include "ombra/rest/mediadata.h"

#include "ombra/decode/mediaprobe.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/decode/thumbnail.h"
#include "ombra/decode/unplayable.h"
#include "tarn/media/mediaenums.h"
#include "tarn/media/mediametadata.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace vantrel::ombra {

namespace {

constexpr std::size_t maxWaiting = 4000;
constexpr int thumbnailWidth = 320;   // pixels
constexpr double thumbnailTime = 1.0; // seconds: the very first picture is often black

/// Changes when the file does; for a sequence when its folder does. Nothing when it is missing.
std::optional<std::string> stampOf(const std::filesystem::path& file)
{
    std::error_code code;
    const std::filesystem::path seen = parseSequencePattern(file) ? file.parent_path() : file;
    const auto time = std::filesystem::last_write_time(seen, code);
    if (code)
        return std::nullopt;
    const auto size =
        std::filesystem::is_regular_file(seen, code) ? std::filesystem::file_size(seen, code) : 0;
    return std::to_string(time.time_since_epoch().count()) + "/" + std::to_string(size);
}

/// The bytes of all pictures of a sequence together.
std::int64_t bytesOf(const SequencePattern& pattern)
{
    std::int64_t bytes = 0;
    for (const int number : findSequenceNumbers(pattern)) {
        std::error_code gone;
        const auto size = std::filesystem::file_size(pattern.file(number), gone);
        bytes += gone ? 0 : static_cast<std::int64_t>(size);
    }
    return bytes;
}

/// When the file came to this disk and when it was last written, and its bytes; for a sequence the dates are
/// those of its last picture.
void describeFile(const std::filesystem::path& file, MediaMetadata& metadata)
{
    std::error_code code;
    std::filesystem::path seen = file;
    std::optional<std::int64_t> bytes;
    const auto pattern = parseSequencePattern(file);
    if (pattern && !std::filesystem::exists(file, code)) {
        const auto range = findSequenceRange(*pattern);
        if (!range)
            return;
        bytes = bytesOf(*pattern);
        seen = pattern->file(range->second);
    }
    struct statx status
    {
    };
    if (statx(AT_FDCWD, seen.c_str(), 0, STATX_BTIME | STATX_MTIME | STATX_SIZE, &status) != 0)
        return;
    metadata.setFileSize(bytes.value_or(static_cast<std::int64_t>(status.stx_size)));
    metadata.setModified(DateTime(status.stx_mtime.tv_sec));
    if (status.stx_mask & STATX_BTIME)
        metadata.setImported(DateTime(status.stx_btime.tv_sec));
}

MediaMetadata::Pictures picturesOf(const MediaInfo& info)
{
    MediaMetadata::Pictures pictures;
    pictures.width = info.width;
    pictures.height = info.height;
    pictures.pixelAspect = info.pixelAspect;
    pictures.codec = info.codec;
    pictures.colorSpace = info.colorSpace;
    pictures.pixelFormat = info.pixelFormat;
    return pictures;
}

/// "AAC" and "LC, 48 kHz"; "PCM S16LE" and "44.1 kHz".
MediaMetadata::Audio soundOf(const MediaInfo& info)
{
    MediaMetadata::Audio audio;
    audio.codec = info.audioCodec;
    std::ranges::transform(audio.codec, audio.codec.begin(), [](unsigned char c) {
        return c == '_' ? ' ' : static_cast<char>(std::toupper(c));
    });
    audio.description = info.audioProfile;
    if (info.sampleRate > 0) {
        std::array<char, 32> rate{};
        std::snprintf(rate.data(), rate.size(), "%g kHz", info.sampleRate / 1000.0);
        audio.description += (audio.description.empty() ? "" : ", ") + std::string(rate.data());
    }
    audio.channels = info.audioChannels;
    return audio;
}

HttpReply describeMissing(const std::string& why)
{
    MediaMetadata metadata(MediaType::Unknown, false);
    metadata.setError(why);
    return {.body = metadata.toJson().toString()};
}

std::string secondsText(double seconds)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f s", seconds);
    return text.data();
}

/// What an operator should know of a medium that plays.
void describeCaveats(const MediaInfo& info, MediaMetadata& metadata)
{
    const std::string sound = "Media contains unsupported audio";
    if (info.partialAudio)
        metadata.addCaveat(MediaCaveat::UnsupportedAudio,
                           sound +
                               ": some of its streams or channels are not played. Make one stream of them.");
    else if (info.unsupportedAudio)
        metadata.addCaveat(MediaCaveat::UnsupportedAudio,
                           sound + (info.audioKind.empty() ? "" : " (" + info.audioKind + ")") +
                               ": it plays without sound. Convert the sound.");
    if (info.cutOff)
        metadata.addCaveat(MediaCaveat::CutOff, "The file is cut off at " + secondsText(info.cutOff->at) +
                                                    " of " + secondsText(info.cutOff->announced) +
                                                    ". Copy it again.");
    else if (info.isPictureCutOff)
        metadata.addCaveat(MediaCaveat::CutOff,
                           "The file is cut off: its picture is not whole. Copy it again.");
    if (info.missing > 0)
        metadata.addCaveat(MediaCaveat::MissingPictures,
                           std::to_string(info.missing) + " of " + std::to_string(info.frames) +
                               " pictures of the sequence are missing, the first is number " +
                               std::to_string(info.firstMissing) +
                               ". The picture before stands instead. Copy them again.");
}

HttpReply describe(const std::filesystem::path& file)
{
    std::string error;
    const auto info = probeMedia(file, &error);
    if (!info)
        return describeMissing(error);
    MediaMetadata metadata(info->type, info->playable);
    describeCaveats(*info, metadata);
    metadata.setStartTimecode(info->startTimecode);
    if (info->type == MediaType::ImageSequence)
        metadata.setMissingPictures(info->missing);
    if (info->duration > 0)
        metadata.setDuration(info->duration);
    if (info->type == MediaType::ImageFile || info->type == MediaType::ImageSequence) {
        metadata.setImage(picturesOf(*info));
    } else if (info->width > 0 && info->height > 0) {
        MediaMetadata::Pictures video = picturesOf(*info);
        video.profile = info->profile;
        video.fieldOrder = info->fieldOrder;
        if (info->fps > 0)
            video.frameRate = info->fps;
        if (info->bitRate > 0)
            video.bitRate = info->bitRate;
        metadata.setVideo(std::move(video));
    }
    if (!info->audioCodec.empty())
        metadata.setAudio(soundOf(*info));
    describeFile(file, metadata);
    if (!info->playable)
        metadata.setError(error);
    return {.body = metadata.toJson().toString()};
}

HttpReply picture(const std::filesystem::path& file)
{
    std::string error;
    auto jpeg = renderThumbnail(file, thumbnailTime, thumbnailWidth, &error);
    if (jpeg.empty())
        jpeg = renderThumbnail(file, 0, thumbnailWidth, &error); // shorter than that
    // What holds none, a sound say, is no error: asking again would not help before its file is another.
    return {.body = std::string(jpeg.begin(), jpeg.end()), .contentType = "image/jpeg"};
}

} // namespace

MediaData::MediaData(boost::asio::io_context& io, std::filesystem::path mediaFolder, std::size_t keptBytes)
    : m_io(io)
    , m_folder(std::move(mediaFolder))
    , m_keptBytes(keptBytes)
{
}

MediaData::~MediaData()
{
    m_alive.reset();
    m_worker.stop();
    m_asker.stop();
    m_worker.join();
    m_asker.join();
}

void MediaData::metadata(const std::string& contentUrl, HttpAnswer answer, Wanted wanted)
{
    find(contentUrl, answer, [this, answer, wanted = std::move(wanted)](const Found& found) {
        if (!found.isFolderThere)
            return answer(
                describeMissing("The media folder of the server is not there. Mount or make it again."));
        if (!found.file)
            return answer(
                describeMissing("This is no file of the media folder. Give the slot another file."));
        if (!found.stamp)
            return answer(describeMissing(missingReason(*found.file)));
        serve("m", found, describe, {answer, wanted});
    });
}

void MediaData::thumbnail(const std::string& contentUrl, HttpAnswer answer, Wanted wanted)
{
    find(contentUrl, answer, [this, contentUrl, answer, wanted = std::move(wanted)](const Found& found) {
        if (!found.stamp)
            return answer(httpError(404, "no such media: " + contentUrl));
        serve("t", found, picture, {answer, wanted});
    });
}

/// A share that is gone answers late or never: nobody but those who ask for its files waits for it.
void MediaData::find(const std::string& contentUrl, const HttpAnswer& answer,
                     std::function<void(const Found&)> then)
{
    if (m_finding >= maxWaiting)
        return answer(httpError(503, "too many requests are waiting"));
    ++m_finding;
    boost::asio::post(m_asker, [this, alive = std::weak_ptr(m_alive), folder = m_folder, contentUrl,
                                then = std::move(then)]() mutable {
        if (alive.expired())
            return;
        Found found;
        std::error_code code;
        found.isFolderThere = std::filesystem::is_directory(folder, code);
        found.file = resolveMediaUrl(folder, contentUrl);
        if (found.file)
            found.stamp = stampOf(*found.file);
        boost::asio::post(m_io, [this, alive, found = std::move(found), then = std::move(then)] {
            if (alive.expired())
                return;
            --m_finding;
            then(found);
        });
    });
}

void MediaData::serve(const char* kind, const Found& found, Work work, Waiter waiter)
{
    const std::string key = kind + found.file->string() + "\n" + *found.stamp;
    if (const HttpReply* reply = cached(key))
        return waiter.answer(*reply);
    if (m_jobs.size() >= maxWaiting)
        return waiter.answer(httpError(503, "too many requests are waiting"));
    Job& job = m_jobs[key];
    job.waiters.push_back(std::move(waiter));
    if (job.work)
        return; // asked for already
    job.file = *found.file;
    job.work = work;
    m_queue.push_back(key);
    startNext();
}

void MediaData::startNext()
{
    while (!m_busy && !m_queue.empty()) {
        const std::string key = std::move(m_queue.front());
        m_queue.pop_front();
        const auto job = m_jobs.find(key);
        std::erase_if(job->second.waiters,
                      [](const Waiter& waiter) { return waiter.wanted && !waiter.wanted(); });
        if (job->second.waiters.empty()) {
            m_jobs.erase(job);
            continue;
        }
        m_busy = true;
        boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), key, file = job->second.file,
                                     work = job->second.work] {
            if (alive.expired())
                return;
            HttpReply reply;
            try {
                reply = work(file);
            } catch (const std::exception& e) {
                reply = httpError(500, e.what());
            }
            boost::asio::post(m_io, [this, alive, key, reply = std::move(reply)] {
                if (!alive.expired())
                    finish(key, reply);
            });
        });
    }
}

void MediaData::finish(const std::string& key, const HttpReply& reply)
{
    const auto done = m_jobs.extract(key);
    m_busy = false;
    startNext();
    if (reply.status < 500) {
        m_recent.emplace_front(key, reply);
        m_cache[key] = m_recent.begin();
        m_cacheBytes += key.size() + reply.body.size();
        while (m_cacheBytes > m_keptBytes && m_recent.size() > 1) {
            const auto& [oldKey, oldReply] = m_recent.back();
            m_cacheBytes -= oldKey.size() + oldReply.body.size();
            m_cache.erase(oldKey);
            m_recent.pop_back();
        }
    }
    for (const Waiter& waiter : done.mapped().waiters)
        waiter.answer(reply);
}

const HttpReply* MediaData::cached(const std::string& key)
{
    const auto found = m_cache.find(key);
    if (found == m_cache.end())
        return nullptr;
    m_recent.splice(m_recent.begin(), m_recent, found->second);
    return &found->second->second;
}

} // namespace vantrel::ombra
