#include "ombra/decode/pictureend.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <vector>

namespace vantrel::ombra {

namespace {

using namespace std::string_view_literals;

constexpr int partsAtMost = 1'000'000; // chunks, segments or strips of a file

/// Numbers of a file, of either byte order; whatever lies behind its end fails.
class Bytes
{
public:
    explicit Bytes(const std::filesystem::path& file)
        : m_in(file, std::ios::binary)
    {
        std::error_code code;
        const auto size = std::filesystem::file_size(file, code);
        m_size = code ? 0 : size;
    }

    std::uint64_t size() const { return m_size; }

    bool read(std::uint64_t at, char* to, std::size_t count)
    {
        if (count > m_size || at > m_size - count)
            return false;
        m_in.clear();
        m_in.seekg(static_cast<std::streamoff>(at));
        return bool(m_in.read(to, static_cast<std::streamsize>(count)));
    }

    bool begins(std::string_view with)
    {
        std::array<char, 16> head{};
        return read(0, head.data(), with.size()) && std::string_view(head.data(), with.size()) == with;
    }

    bool number(std::uint64_t at, int bytes, bool bigEndian, std::uint64_t& out)
    {
        std::array<char, 8> raw{};
        if (!read(at, raw.data(), static_cast<std::size_t>(bytes)))
            return false;
        out = 0;
        for (int i = 0; i < bytes; ++i)
            out = out << 8 |
                  static_cast<std::uint8_t>(raw[static_cast<std::size_t>(bigEndian ? i : bytes - 1 - i)]);
        return true;
    }

private:
    std::ifstream m_in;
    std::uint64_t m_size = 0;
};

bool isCutPng(Bytes& file)
{
    std::uint64_t at = 8;
    for (int chunk = 0; chunk < partsAtMost; ++chunk) {
        std::uint64_t length = 0;
        std::array<char, 4> type{};
        if (!file.number(at, 4, true, length) || !file.read(at + 4, type.data(), type.size()))
            return true;
        at += length + 12;
        if (std::string_view(type.data(), type.size()) == "IEND")
            return at > file.size();
    }
    return false;
}

/// From the place behind a scan's header to the next marker that is none of the scan's own.
bool skipScan(Bytes& file, std::uint64_t& at)
{
    std::vector<char> block(64 * 1024);
    bool marked = false; // the byte before was 0xff
    while (at < file.size()) {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(block.size(), file.size() - at));
        if (!file.read(at, block.data(), count))
            return false;
        for (std::size_t i = 0; i < count; ++i) {
            const auto byte = static_cast<std::uint8_t>(block[i]);
            if (marked && byte != 0 && byte != 0xff && (byte < 0xd0 || byte > 0xd7)) {
                at = at + i - 1; // may lie in the block before
                return true;
            }
            marked = byte == 0xff;
        }
        at += count;
    }
    return false;
}

bool isCutJpeg(Bytes& file)
{
    constexpr std::uint64_t endOfImage = 0xffd9, startOfScan = 0xffda;
    std::uint64_t at = 2;
    for (int segment = 0; segment < partsAtMost; ++segment) {
        std::uint64_t marker = 0, length = 0;
        if (!file.number(at, 2, true, marker))
            return true;
        if (marker == endOfImage)
            return false;
        if (marker == 0xffff) { // fill bytes may stand before a marker
            ++at;
            continue;
        }
        if (marker >> 8 != 0xff)
            return false; // damaged in another way
        if (!file.number(at + 2, 2, true, length) || at + 2 + length > file.size())
            return true;
        at += 2 + length;
        if (marker == startOfScan && !skipScan(file, at))
            return true;
    }
    return false;
}

bool isCutGif(Bytes& file)
{
    constexpr std::uint64_t padding = 1024;
    for (std::uint64_t back = 1; back <= std::min(padding, file.size()); ++back) {
        std::uint64_t byte = 0;
        if (!file.number(file.size() - back, 1, true, byte))
            return false;
        if (byte != 0)
            return byte != ';';
    }
    return true;
}

/// The last byte that an image directory of a TIFF speaks of; 0 where it lies behind the end itself.
std::uint64_t tiffEnd(Bytes& file, bool big)
{
    std::uint64_t directory = 0, entries = 0;
    if (!file.number(4, 4, big, directory) || !file.number(directory, 2, big, entries))
        return 0;
    // Where the strips or tiles lie, and how long they are: type, count, place of the values.
    struct Field
    {
        std::uint64_t type = 0, count = 0, at = 0;
    };
    Field places, lengths;
    std::uint64_t end = directory + 2 + entries * 12;
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t at = directory + 2 + i * 12;
        std::uint64_t tag = 0;
        Field field;
        if (!file.number(at, 2, big, tag) || !file.number(at + 2, 2, big, field.type) ||
            !file.number(at + 4, 4, big, field.count))
            return 0;
        const bool isPlace = tag == 273 || tag == 324, isLength = tag == 279 || tag == 325;
        const std::uint64_t unit = field.type == 3 ? 2 : 4;
        if ((!isPlace && !isLength) || field.count > partsAtMost)
            continue;
        field.at = at + 8;
        if (field.count * unit > 4 && !file.number(at + 8, 4, big, field.at))
            return 0;
        (isPlace ? places : lengths) = field;
    }
    for (std::uint64_t i = 0; i < std::min(places.count, lengths.count); ++i) {
        std::uint64_t at = 0, length = 0;
        const int placeBytes = places.type == 3 ? 2 : 4, lengthBytes = lengths.type == 3 ? 2 : 4;
        if (!file.number(places.at + i * static_cast<unsigned>(placeBytes), placeBytes, big, at) ||
            !file.number(lengths.at + i * static_cast<unsigned>(lengthBytes), lengthBytes, big, length))
            return 0;
        end = std::max(end, at + length);
    }
    return end;
}

bool isCutTiff(Bytes& file, bool big)
{
    const std::uint64_t end = tiffEnd(file, big);
    return end == 0 || end > file.size();
}

/// Behind an OpenEXR header; 0 where the file ends in it.
std::uint64_t exrHeaderEnd(Bytes& file)
{
    constexpr std::uint64_t longestName = 256;
    const auto skipText = [&](std::uint64_t& at) {
        std::uint64_t byte = 1;
        for (const std::uint64_t begin = at; byte != 0 && at - begin <= longestName; ++at) {
            if (!file.number(at, 1, false, byte))
                return false;
        }
        return true;
    };
    std::uint64_t at = 8;
    for (int attribute = 0; attribute < 10'000; ++attribute) {
        std::uint64_t first = 0, size = 0;
        if (!file.number(at, 1, false, first))
            return 0;
        if (first == 0)
            return at + 1;
        if (!skipText(at) || !skipText(at) || !file.number(at, 4, false, size))
            return 0;
        at += 4 + size;
    }
    return 0;
}

bool isCutExr(Bytes& file)
{
    constexpr std::uint64_t tiled = 0x200, severalParts = 0x1000, deep = 0x800;
    std::uint64_t flags = 0, first = 0;
    if (!file.number(4, 4, false, flags))
        return true;
    if (flags & (severalParts | deep))
        return false;
    const std::uint64_t table = exrHeaderEnd(file);
    if (table == 0 || !file.number(table, 8, false, first))
        return true;
    if (first == 0)
        return true; // its writer came to no end
    if (first < table || first > file.size() || (first - table) / 8 > partsAtMost)
        return first > file.size();
    std::uint64_t last = first;
    for (std::uint64_t at = table; at + 8 <= first; at += 8) {
        std::uint64_t place = 0;
        if (!file.number(at, 8, false, place) || place == 0)
            return true;
        last = std::max(last, place);
    }
    const std::uint64_t head = flags & tiled ? 20 : 8; // its place in the picture, and its size
    std::uint64_t size = 0;
    return !file.number(last + head - 4, 4, false, size) || last + head + size > file.size();
}

/// A size that the file says at its beginning, with what is before the bytes that it counts.
bool isShorter(Bytes& file, std::uint64_t at, bool big, std::uint64_t before)
{
    constexpr std::uint64_t unknown = 0xffffffff;
    std::uint64_t said = 0;
    return !file.number(at, 4, big, said) || (said != 0 && said != unknown && said + before > file.size());
}

} // namespace

bool isPictureCutOff(const std::filesystem::path& path)
{
    Bytes file(path);
    if (file.begins("\x89PNG\r\n\x1a\n"sv))
        return isCutPng(file);
    if (file.begins("\xff\xd8\xff"sv))
        return isCutJpeg(file);
    if (file.begins("GIF8"sv))
        return isCutGif(file);
    if (file.begins("RIFF"sv)) {
        std::array<char, 4> kind{};
        return file.read(8, kind.data(), kind.size()) &&
               std::string_view(kind.data(), kind.size()) == "WEBP" && isShorter(file, 4, false, 8);
    }
    if (file.begins("BM"sv))
        return isShorter(file, 2, false, 0);
    if (file.begins("II*\0"sv) || file.begins("MM\0*"sv))
        return isCutTiff(file, file.begins("MM"sv));
    if (file.begins("\x76\x2f\x31\x01"sv))
        return isCutExr(file);
    if (file.begins("SDPX"sv) || file.begins("XPDS"sv))
        return isShorter(file, 16, file.begins("S"sv), 0);
    return false;
}

} // namespace vantrel::ombra
