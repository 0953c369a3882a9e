#pragma once

#include "ombra/decode/picturereader.h"

namespace vantrel::ombra {

/// One picture for ever, as 25 a second: a still, or the black that stands where there is only sound.
class ConstantReader : public PictureReader
{
public:
    ConstantReader(MediaType type, Ref<DecodedPicture> image, double duration)
        : m_type(type)
        , m_image(std::move(image))
        , m_duration(duration)
    {
    }

    MediaType type() const override { return m_type; }
    double fps() const override { return rate; }
    double duration() const override { return m_duration; }
    bool seek(double time, Picture& out) override;
    bool next(Picture& out) override;

private:
    static constexpr double rate = 25;

    MediaType m_type;
    Ref<DecodedPicture> m_image;
    double m_duration;
    long long m_index = -1;
};

} // namespace vantrel::ombra
