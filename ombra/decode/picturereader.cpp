#include "ombra/decode/picturereader.h"

#include "ombra/decode/avinput.h"
#include "ombra/decode/constantreader.h"
#include "ombra/decode/mediaurl.h"
#include "ombra/decode/sequencereader.h"
#include "ombra/decode/still.h"
#include "ombra/decode/videoreader.h"

namespace vantrel::ombra {

namespace {

Ref<DecodedPicture> firstPicture(PictureReader& reader, std::string* error)
{
    Picture picture;
    if (reader.seek(0, picture))
        return picture.image;
    if (error)
        *error = "no picture of it can be decoded";
    return nullptr;
}

} // namespace

std::filesystem::path MediaSource::locate() const
{
    return url.empty() ? file : resolveMediaUrl(folder, url).value_or("");
}

std::unique_ptr<PictureReader> openReader(const MediaSource& source, const std::atomic<bool>& stop,
                                          std::string* error)
{
    const std::filesystem::path file = source.locate();
    const auto pattern = parseSequencePattern(file);
    std::error_code code;
    if (pattern && (source.sequence || !std::filesystem::exists(file, code)))
        return SequenceReader::open(*pattern, source.sequence.value_or(SequenceRun{}), stop, error);

    std::unique_ptr<AvInput> input = AvInput::open(file, stop, error);
    if (!input)
        return nullptr;
    if (!input->video()) {
        if (!input->openDecoder(input->audio(), error))
            return nullptr; // nothing of it would be seen or heard
        const double duration = input->duration();
        return std::make_unique<ConstantReader>(MediaType::AudioFile, makeRef<DecodedPicture>(), duration);
    }
    std::unique_ptr<VideoReader> reader = VideoReader::open(std::move(input), error);
    if (!reader || reader->type() != MediaType::ImageFile)
        return reader;
    Ref<DecodedPicture> image = firstPicture(*reader, error);
    if (!image)
        return nullptr;
    return std::make_unique<ConstantReader>(MediaType::ImageFile, image, PictureReader::endless);
}

Ref<DecodedPicture> decodeStill(const std::filesystem::path& file, const std::atomic<bool>& stop,
                                std::string* error)
{
    std::unique_ptr<AvInput> input = AvInput::open(file, stop, error);
    if (!input)
        return nullptr;
    if (!input->video()) {
        if (error)
            *error = "there is no picture in it";
        return nullptr;
    }
    const std::unique_ptr<VideoReader> reader =
        VideoReader::open(std::move(input), error, VideoReader::Decoding::ByProcessor);
    return reader ? firstPicture(*reader, error) : nullptr;
}

Ref<Surface> blackSurface(Canvas canvas)
{
    auto surface = makeRef<Surface>();
    surface->format = Surface::formatRgb24;
    surface->width = canvas.width;
    surface->height = canvas.height > 0 ? canvas.height : canvas.width * 9 / 16;
    surface->bytesPerLine = surface->width * 3;
    surface->pixels.assign(static_cast<std::size_t>(surface->bytesPerLine) * surface->height, 0);
    return surface;
}

} // namespace vantrel::ombra
