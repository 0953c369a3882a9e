#pragma once

#include "ombra/decode/mediaurl.h"
#include "ombra/decode/picturereader.h"
#include "tarn/media/mediaenums.h"

#include <vector>

namespace vantrel::ombra {

/// An image sequence: one file a picture. A missing or damaged file shows the picture before it.
class SequenceReader : public PictureReader
{
public:
    /// Null, and the reason, when there is no file of the pattern in the run.
    static std::unique_ptr<SequenceReader> open(const SequencePattern& pattern, const SequenceRun& run,
                                                const std::atomic<bool>& stop, std::string* error);

    MediaType type() const override { return MediaType::ImageSequence; }
    double fps() const override { return m_fps; }
    double duration() const override { return count() / m_fps; }
    bool seek(double time, Picture& out) override;
    bool next(Picture& out) override;
    bool catchUp(double time, Picture& out) override;

private:
    SequenceReader(SequencePattern pattern, const std::atomic<bool>& stop)
        : m_pattern(std::move(pattern))
        , m_stop(stop)
    {
    }
    double count() const { return double(m_last) - m_first + 1; }
    int indexAt(double time) const;
    bool load(int index, Picture& out);
    bool show(int number);
    void showBefore(int number);

    SequencePattern m_pattern;
    const std::atomic<bool>& m_stop;
    double m_fps = 25;
    int m_first = 0;
    int m_last = 0;
    int m_index = -1;           // of the picture read last, from 0
    std::vector<int> m_numbers; // of the pictures that there were when it was opened
    int m_shown = -1;           // the number of what is in the image
    Ref<DecodedPicture> m_image;
    bool m_complained = false;
};

} // namespace vantrel::ombra
