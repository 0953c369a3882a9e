#include "ombra/decode/sequencereader.h"

#include "ombra/decode/still.h"
#include "tarn/log/log.h"

#include <algorithm>
#include <cmath>

namespace vantrel::ombra {

std::unique_ptr<SequenceReader> SequenceReader::open(const SequencePattern& pattern, const SequenceRun& run,
                                                     Canvas canvas, const std::atomic<bool>& stop,
                                                     std::string* error)
{
    const auto range = findSequenceRange(pattern);
    std::unique_ptr<SequenceReader> reader(new SequenceReader(pattern, canvas, stop));
    if (range) {
        reader->m_first = std::max(run.firstFrame.value_or(range->first), range->first);
        reader->m_last = std::min(run.lastFrame.value_or(range->second), range->second);
    }
    if (!range || reader->m_last < reader->m_first) {
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
    const std::filesystem::path file = sequencePicture(m_pattern, m_first + index);
    std::string error = "it is a link that leads elsewhere";
    Ref<Surface> surface = file.empty() ? nullptr : decodeStill(file, m_canvas, m_stop, &error);
    if (surface) {
        m_surface = std::move(surface);
    } else if (!m_complained) {
        m_complained = true;
        Log::write_fmt(LogLevel::Warning, {}, "vantrel.decode", "Cannot read picture '%s' of a sequence: %s",
                       m_pattern.file(m_first + index).c_str(), error.c_str());
    }
    if (!m_surface)
        m_surface = blackSurface(m_canvas);
    m_index = index;
    out = {m_surface, index / m_fps, 1 / m_fps};
    return true;
}

} // namespace vantrel::ombra
