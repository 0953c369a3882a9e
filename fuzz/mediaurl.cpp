// Content URLs of slots: whatever they say, the file is below the media folder, and a pattern names files
// beside it.
#include "ombra/decode/mediaurl.cpp"

#include <cstdint>
#include <cstdlib>

using namespace vantrel::ombra;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::filesystem::path folder = std::filesystem::weakly_canonical("/tmp/media");
    const auto file = resolveMediaUrl(folder, text);
    if (!file)
        return 0;
    if (!file->string().starts_with(folder.string() + '/') ||
        file->string().find("/../") != std::string::npos)
        std::abort();
    if (const auto pattern = parseSequencePattern(*file)) {
        const std::filesystem::path first = pattern->file(7);
        if (first.parent_path() != file->parent_path() || pattern->width < 1 || pattern->width > 9)
            std::abort();
    }
    return 0;
}
