#include "ombra/rest/mediadata.h"

#include "ombra/decode/mediaprobe.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/decode/thumbnail.h"
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
constexpr std::size_t maxCacheBytes = 64u * 1024 * 1024;
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
    std::error_code code;
    const std::filesystem::path folder = std::filesystem::path(pattern.prefix).parent_path();
    for (std::filesystem::directory_iterator it(folder, code), end; !code && it != end; it.increment(code)) {
        const std::string name = it->path().string();
        if (!name.starts_with(pattern.prefix) || !name.ends_with(pattern.suffix))
            continue;
        std::error_code gone;
        const auto size = it->file_size(gone);
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

HttpReply describe(const std::filesystem::path& file)
{
    std::string error;
    const auto info = probeMedia(file, &error);
    if (!info)
        return httpError(404, error);
    MediaMetadata metadata(info->type, info->playable);
    if (info->unsupportedAudio)
        metadata.addCaveat(MediaCaveat::UnsupportedAudio);
    if (info->duration > 0)
        metadata.setDuration(info->duration);
    if (info->type == MediaType::ImageFile || info->type == MediaType::ImageSequence) {
        metadata.setImage(picturesOf(*info));
    } else if (info->width > 0 && info->height > 0) {
        MediaMetadata::Pictures video = picturesOf(*info);
        video.profile = info->profile;
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
    if (jpeg.empty())
        return httpError(404, error);
    return {.body = std::string(jpeg.begin(), jpeg.end()), .contentType = "image/jpeg"};
}

} // namespace

MediaData::MediaData(boost::asio::io_context& io, std::filesystem::path mediaFolder)
    : m_io(io)
    , m_folder(std::move(mediaFolder))
{
}

MediaData::~MediaData()
{
    m_alive.reset();
    m_worker.stop();
    m_worker.join();
}

void MediaData::metadata(const std::string& contentUrl, HttpAnswer answer)
{
    serve("m", contentUrl, describe, std::move(answer));
}

void MediaData::thumbnail(const std::string& contentUrl, HttpAnswer answer)
{
    serve("t", contentUrl, picture, std::move(answer));
}

void MediaData::serve(const char* kind, const std::string& contentUrl, Work work, HttpAnswer answer)
{
    const auto file = resolveMediaUrl(m_folder, contentUrl);
    const auto stamp = file ? stampOf(*file) : std::nullopt;
    if (!stamp)
        return answer(httpError(404, "no such media: " + contentUrl));
    const std::string key = kind + file->string() + "\n" + *stamp;
    if (const HttpReply* reply = cached(key))
        return answer(*reply);
    if (m_waiting.size() >= maxWaiting)
        return answer(httpError(503, "too many requests are waiting"));
    std::vector<HttpAnswer>& waiting = m_waiting[key];
    waiting.push_back(std::move(answer));
    if (waiting.size() > 1)
        return;
    boost::asio::post(m_worker, [this, alive = std::weak_ptr(m_alive), key, file = *file, work] {
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

void MediaData::finish(const std::string& key, const HttpReply& reply)
{
    const auto waiting = m_waiting.extract(key);
    if (reply.status < 500) {
        m_recent.emplace_front(key, reply);
        m_cache[key] = m_recent.begin();
        m_cacheBytes += key.size() + reply.body.size();
        while (m_cacheBytes > maxCacheBytes && m_recent.size() > 1) {
            const auto& [oldKey, oldReply] = m_recent.back();
            m_cacheBytes -= oldKey.size() + oldReply.body.size();
            m_cache.erase(oldKey);
            m_recent.pop_back();
        }
    }
    if (waiting) {
        for (const HttpAnswer& answer : waiting.mapped())
            answer(reply);
    }
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
