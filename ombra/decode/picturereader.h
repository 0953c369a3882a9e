#pragma once

#include "ombra/decode/decodedpicture.h"
#include "tarn/media/mediaenums.h"
#include "tarn/preview/frame.h"
#include "tarn/ref.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace vantrel::ombra {

/// A surface that a picture is drawn on: an image of the output's picture, and how the media stands in that,
/// on black. All in pixels. With a height of 0 there is no output: the surface is as high as the media's
/// picture needs, and never enlarged.
struct Canvas
{
    int width = 480;
    int height = 270;
    ScaleMode scaling = ScaleMode::Fit; // Default means Fit
    int outputWidth = 1920;             // what 1:1 refers to; the output's picture is fitted into the canvas
    int outputHeight = 1080;
    friend bool operator==(const Canvas&, const Canvas&) = default;
};

/// One picture of a medium.
struct Picture
{
    Ref<DecodedPicture> image;
    double time = 0;     // seconds from the start of the media
    double duration = 0; // seconds for which it stands
};

/// How an image sequence runs: pictures a second, and the first and last number where they are limited.
struct SequenceRun
{
    double framerate = 25;
    std::optional<int> firstFrame;
    std::optional<int> lastFrame;
    friend bool operator==(const SequenceRun&, const SequenceRun&) = default;
};

/// What to open: a file, or the printf pattern of an image sequence and how it runs. Or the URL of either
/// below a media folder, which is asked of the disk only where it is opened.
struct MediaSource
{
    std::filesystem::path file;
    std::optional<SequenceRun> sequence = {};
    std::filesystem::path folder = {}; // of the URL
    std::string url = {};

    /// Asks the disk. Empty for a URL that leads out of the folder, which opens like any other missing file.
    std::filesystem::path locate() const;
};

/// Reads the pictures of one medium in order. One thread at a time; calls block while they decode. The flag
/// given on opening ends a call early, which then fails.
class PictureReader
{
public:
    static constexpr double endless = std::numeric_limits<double>::infinity();
    /// A time that falls short of a picture's by less still means that picture: clients round to
    /// milliseconds.
    static constexpr double tolerance = 0.0006;

    virtual ~PictureReader() = default;

    virtual MediaType type() const = 0;
    virtual double fps() const = 0;
    virtual double duration() const = 0; // seconds; endless for stills

    /// The last picture whose time is at or before the given one (seconds); the first one where there is no
    /// such.
    virtual bool seek(double time, Picture& out) = 0;
    /// The picture after the one read last; false at the end.
    virtual bool next(Picture& out) = 0;
    /// A later picture than the one read last, for whoever has fallen behind: the one of the time (seconds)
    /// where what lies before it can be passed over. Times after a short reach are reached in steps.
    virtual bool catchUp(double /*time*/, Picture& out) { return next(out); }
};

/// Opens what the source names, whatever kind it is. Sound without pictures reads as black. Null, and the
/// reason. The flag must outlive the reader.
std::unique_ptr<PictureReader> openReader(const MediaSource& source, const std::atomic<bool>& stop,
                                          std::string* error);

using PictureOpener = std::function<decltype(openReader)>;

/// A black surface of the canvas's size; with a height of 0 of the shape of a screen.
Ref<Surface> blackSurface(Canvas canvas);

} // namespace vantrel::ombra
