#pragma once

#include "tarn/media/imagesequenceinfo.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace vantrel {

/// Tells image sequences from other files by their names alone: two or more pictures of one folder that
/// differ in one number only, which stands before a suffix ("clip_0001.png", "clip.0001.left.exr"). Of
/// several numbers it is the last that runs; versions, days and sizes are none. Numbers may be missing.
/// Any thread.
class ImgSeqAnalyzer
{
public:
    /// Gives the files of a directory, as paths or as names; nothing for what is no directory.
    using Lister = std::function<std::vector<std::filesystem::path>(const std::filesystem::path&)>;

    ImgSeqAnalyzer();
    /// suffixes: of pictures, in small letters without the dot; they outlive this.
    explicit ImgSeqAnalyzer(std::span<const std::string_view> suffixes);

    /// The sequences among the paths: those of pictures stand for themselves, of all others the lister is
    /// asked, and of what ends in "/". In the order of their names, by which clip2 comes before clip10.
    std::vector<ImageSequenceInfo> findSequences(const std::vector<std::filesystem::path>& paths,
                                                 const Lister& lister) const;

private:
    bool isPicture(std::string_view path) const;

    std::span<const std::string_view> m_suffixes;
};

} // namespace vantrel
