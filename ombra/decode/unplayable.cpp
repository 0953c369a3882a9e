#include "ombra/decode/unplayable.h"

#include "ombra/decode/mediaurl.h"
#include "ombra/decode/pictureend.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <unistd.h>

namespace vantrel::ombra {

namespace {

std::string beginning(const std::filesystem::path& file)
{
    std::string bytes(4096, '\0');
    std::ifstream in(file, std::ios::binary);
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

bool isPlain(unsigned char c)
{
    return c >= 0x20 ? c != 0x7f : c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

/// How many bytes go on the character that begins with this one; -1 for none of UTF-8.
int bytesToFollow(unsigned char c)
{
    return c < 0x80                ? 0
           : c >= 0xc2 && c < 0xe0 ? 1
           : c >= 0xe0 && c < 0xf0 ? 2
           : c >= 0xf0 && c < 0xf5 ? 3
                                   : -1;
}

bool isText(std::string_view bytes)
{
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff"))
        return std::ranges::count(bytes, '\0') * 4 > static_cast<std::ptrdiff_t>(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        const int more = bytesToFollow(c);
        if (more < 0 || (more == 0 && !isPlain(c)))
            return false;
        for (int n = 0; n < more && i + 1 < bytes.size(); ++n) {
            if ((static_cast<unsigned char>(bytes[++i]) & 0xc0) != 0x80)
                return false;
        }
    }
    return !bytes.empty();
}

std::uint64_t bigEndian(const char* bytes, int count)
{
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    return value;
}

/// An MP4 or QuickTime file that ends inside one of its boxes, before the one that describes the rest.
bool endsBeforeItsIndex(const std::filesystem::path& file, std::uint64_t size)
{
    constexpr std::array<std::string_view, 5> known{"ftyp", "mdat", "wide", "free", "skip"};
    constexpr int boxesAtMost = 10'000;
    std::ifstream in(file, std::ios::binary);
    std::array<char, 16> header{};
    std::uint64_t at = 0;
    for (int box = 0; box < boxesAtMost && at < size; ++box) {
        in.seekg(static_cast<std::streamoff>(at));
        if (!in.read(header.data(), header.size()))
            return box > 0;
        const std::string_view type(header.data() + 4, 4);
        if (type == "moov" || (box == 0 && std::ranges::find(known, type) == known.end()))
            return false;
        std::uint64_t length = bigEndian(header.data(), 4);
        if (length == 1)
            length = bigEndian(header.data() + 8, 8);
        if (length == 0 || length > size - at)
            return true; // to the end of the file, or beyond
        if (length < 8)
            return false;
        at += length;
    }
    return at >= size;
}

} // namespace

bool looksLikeText(const std::filesystem::path& file)
{
    return isText(beginning(file));
}

std::string unplayableReason(const std::filesystem::path& file, const std::string& detail)
{
    std::error_code code;
    const auto size = std::filesystem::file_size(file, code);
    if (code || ::access(file.c_str(), R_OK) != 0)
        return "The server may not read this file. Change its permissions.";
    if (size == 0)
        return "The file is empty. Copy it again.";
    if (looksLikeText(file))
        return "The file holds text, neither pictures nor sound. Give the slot another file.";
    if (isPictureCutOff(file))
        return "The file is cut off: nothing of its picture can be shown. Copy it again.";
    if (endsBeforeItsIndex(file, size))
        return "The file is cut off before the part that describes it. Copy it again.";
    return "The file is damaged or of a kind that is not known here (" + detail +
           "). Copy it again or convert it.";
}

std::string missingReason(const std::filesystem::path& file)
{
    if (parseSequencePattern(file))
        return "The media folder has no pictures named " + file.filename().string() +
               ". Copy them there or give the slot another file.";
    return "The media folder has no " + file.filename().string() +
           ". Copy it there or give the slot another file.";
}

} // namespace vantrel::ombra
