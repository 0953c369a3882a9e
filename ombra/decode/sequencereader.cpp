#include "ombra/decode/sequencereader.h"

#include "ombra/decode/still.h"
#include "tarn/log/log.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

std::unique_ptr<SequenceReader> SequenceReader::open(const SequencePattern& pattern, const SequenceRun& run,
                                                     const std::atomic<bool>& stop, std::string* error)
{
    std::unique_ptr<SequenceReader> reader(new SequenceReader(pattern, stop));
    reader->m_numbers = findSequenceNumbers(pattern);
    const std::vector<int>& numbers = reader->m_numbers;
    if (!numbers.empty()) {
        reader->m_first = std::max(run.firstFrame.value_or(numbers.front()), numbers.front());
        reader->m_last = std::min(run.lastFrame.value_or(numbers.back()), numbers.back());
    }
    if (numbers.empty() || reader->m_last < reader->m_first) {
        if (error)
            *error = "the image sequence has no pictures";
        return nullptr;
    }
    if (std::isfinite(run.framerate) && run.framerate >= 0.01 && run.framerate <= 1000)
        reader->m_fps = run.framerate;
    return reader;
}

bool SequenceReader::seek(double time, Picture& out)
{
    return load(indexAt(time), out);
}

int SequenceReader::indexAt(double time) const
{
    const double wanted = std::floor((time + std::min(tolerance, 0.25 / m_fps)) * m_fps);
    return static_cast<int>(std::clamp(wanted, 0.0, count() - 1));
}

bool SequenceReader::next(Picture& out)
{
    return m_index + 1 < count() && load(m_index + 1, out);
}

bool SequenceReader::catchUp(double time, Picture& out)
{
    return m_index + 1 < count() && load(std::max(indexAt(time), m_index + 1), out);
}

bool SequenceReader::load(int index, Picture& out)
{
    if (m_stop)
        return false;
    const int wanted = m_first + index;
    if (!show(wanted))
        showBefore(wanted);
    if (!m_image)
        m_image = makeRef<DecodedPicture>();
    m_index = index;
    out = {m_image, index / m_fps, 1 / m_fps};
    return true;
}

/// False, and the picture as it was, for one that is missing or damaged.
bool SequenceReader::show(int number)
{
    const std::filesystem::path file = sequencePicture(m_pattern, number);
    std::string error = "it is a link that leads elsewhere";
    Ref<DecodedPicture> image = file.empty() ? nullptr : decodeStill(file, m_stop, &error);
    if (image) {
        m_image = std::move(image);
        m_shown = number;
        return true;
    }
    if (!m_complained && !m_stop) {
        m_complained = true;
        Log::write_fmt(LogLevel::Warning, {}, "vantrel.decode", "Cannot read picture '%s' of a sequence: %s",
                       m_pattern.file(number).c_str(), error.c_str());
    }
    return false;
}

/// Where a picture is missing, the nearest before it is shown, wherever the reader comes from.
void SequenceReader::showBefore(int number)
{
    constexpr int damagedInARow = 4; // each of them costs a decoding
    auto before = std::ranges::lower_bound(m_numbers, number);
    for (int tries = 0; before != m_numbers.begin() && tries < damagedInARow && !m_stop; ++tries) {
        --before;
        if (*before == m_shown || show(*before))
            return;
    }
}

} // namespace vantrel::ombra
