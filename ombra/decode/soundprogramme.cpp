#include "ombra/decode/soundprogramme.h"

#include <algorithm>
#include <utility>

namespace vantrel::ombra {

namespace {

bool isProgramme(const std::vector<AVStream*>& streams)
{
    return streams.size() > 1 && std::ranges::all_of(streams, [](const AVStream* stream) {
               return stream->codecpar->ch_layout.nb_channels == 1;
           });
}

} // namespace

std::unique_ptr<SoundProgramme> SoundProgramme::open(const std::filesystem::path& file,
                                                     const std::atomic<bool>& stop, std::string* error)
{
    std::string why;
    std::unique_ptr<AvInput> input = AvInput::open(file, stop, &why, AvInput::Read::Sound);
    if (error)
        error->clear();
    if (!input || !input->audio())
        return nullptr; // a file that does not open is reported by who reads its pictures
    const std::vector<AVStream*> streams = input->sounds();
    const int told = input->audio()->codecpar->ch_layout.nb_channels;
    std::unique_ptr<SoundProgramme> programme(new SoundProgramme);
    if (!isProgramme(streams)) {
        programme->m_tracks.push_back({AudioReader::open(std::move(input), error)});
        programme->m_partial = streams.size() > 1 || told > Sound::maxChannels;
        return programme->m_tracks.front().reader ? std::move(programme) : nullptr;
    }
    const std::size_t count = std::min<std::size_t>(streams.size(), Sound::maxChannels);
    programme->m_partial = count < streams.size();
    bool anything = false;
    for (std::size_t i = 0; i < count; ++i) {
        // Each stream is read at its own pace, by an input of its own.
        std::unique_ptr<AvInput> own =
            i + 1 < count ? AvInput::open(file, stop, &why, AvInput::Read::Sound) : std::move(input);
        if (own && own->chooseSound(i))
            programme->m_tracks.push_back({AudioReader::open(std::move(own), error)});
        else
            programme->m_tracks.emplace_back();
        const bool decodes = programme->m_tracks.back().reader != nullptr;
        anything = anything || decodes;
        programme->m_partial = programme->m_partial || !decodes;
    }
    return anything ? std::move(programme) : nullptr;
}

int SoundProgramme::channels() const
{
    return m_tracks.size() > 1 ? static_cast<int>(m_tracks.size()) : m_tracks.front().reader->channels();
}

double SoundProgramme::duration() const
{
    double longest = 0;
    for (const Track& track : m_tracks)
        longest = std::max(longest, track.reader ? track.reader->duration() : 0);
    return longest;
}

bool SoundProgramme::seek(double time)
{
    bool found = false;
    for (Track& track : m_tracks) {
        track.ahead.clear();
        track.ended = !track.reader || !track.reader->seek(time);
        found = found || !track.ended;
    }
    return found;
}

bool SoundProgramme::next(std::vector<float>& out)
{
    if (m_tracks.size() == 1)
        return m_tracks.front().reader->next(out);
    std::size_t count = 0, longest = 0;
    bool first = true;
    for (Track& track : m_tracks) {
        longest = std::max(longest, (fill(track), track.ahead.size()));
        if (!track.ended) // what has ended is silent as long as another one sounds
            count = std::exchange(first, false) ? track.ahead.size() : std::min(count, track.ahead.size());
    }
    if (first)
        count = longest;
    const std::size_t at = out.size();
    out.resize(at + count * m_tracks.size(), 0.0f);
    for (std::size_t channel = 0; channel < m_tracks.size(); ++channel) {
        std::vector<float>& ahead = m_tracks[channel].ahead;
        const std::size_t own = std::min(count, ahead.size());
        for (std::size_t i = 0; i < own; ++i)
            out[at + i * m_tracks.size() + channel] = ahead[i];
        ahead.erase(ahead.begin(), ahead.begin() + static_cast<std::ptrdiff_t>(own));
    }
    return count > 0;
}

/// Decodes some of a channel where nothing of it lies ready; false at its end.
bool SoundProgramme::fill(Track& track)
{
    while (track.ahead.empty() && !track.ended) {
        const std::size_t channels = track.reader ? static_cast<std::size_t>(track.reader->channels()) : 1;
        std::vector<float> more;
        track.ended = !track.reader || !track.reader->next(more);
        for (std::size_t i = 0; i < more.size(); i += channels) // one channel was announced
            track.ahead.push_back(more[i]);
    }
    return !track.ended;
}

} // namespace vantrel::ombra
