#include "ombra/rest/eventtext.h"

#include <array>
#include <string_view>

namespace vantrel::ombra {

namespace {

struct Space
{
    std::string_view bytes;
    const char* escape;
};

constexpr std::array spaces = {
    Space{"\xC2\x85", "\\u0085"},     Space{"\xC2\xA0", "\\u00a0"},     Space{"\xE1\x9A\x80", "\\u1680"},
    Space{"\xE2\x80\x80", "\\u2000"}, Space{"\xE2\x80\x81", "\\u2001"}, Space{"\xE2\x80\x82", "\\u2002"},
    Space{"\xE2\x80\x83", "\\u2003"}, Space{"\xE2\x80\x84", "\\u2004"}, Space{"\xE2\x80\x85", "\\u2005"},
    Space{"\xE2\x80\x86", "\\u2006"}, Space{"\xE2\x80\x87", "\\u2007"}, Space{"\xE2\x80\x88", "\\u2008"},
    Space{"\xE2\x80\x89", "\\u2009"}, Space{"\xE2\x80\x8A", "\\u200a"}, Space{"\xE2\x80\xA8", "\\u2028"},
    Space{"\xE2\x80\xA9", "\\u2029"}, Space{"\xE2\x80\xAF", "\\u202f"}, Space{"\xE2\x81\x9F", "\\u205f"},
    Space{"\xE3\x80\x80", "\\u3000"},
};

const Space* spaceAt(std::string_view text)
{
    for (const Space& space : spaces) {
        if (text.starts_with(space.bytes))
            return &space;
    }
    return nullptr;
}

} // namespace

std::string eventStreamMessage(const Patch& patch, std::uint64_t revision)
{
    Json operations = patch.toJson();
    if (Json* first = operations.edit(std::size_t{0}))
        first->set("revision", revision);
    const std::string json = operations.toString(); // compact: blanks stand in strings only
    std::string message = "data: ";
    message.reserve(json.size() + 16);
    for (std::size_t i = 0; i < json.size(); ++i) {
        const auto byte = static_cast<unsigned char>(json[i]);
        if (byte == ' ' && json[i - 1] == ' ') {
            message += "\\u0020";
        } else if (byte == 0x7F) {
            message += "\\u007f";
        } else if (const Space* space = byte >= 0xC2 ? spaceAt(std::string_view(json).substr(i)) : nullptr) {
            message += space->escape;
            i += space->bytes.size() - 1;
        } else {
            message += json[i];
        }
    }
    return message + "\n\n";
}

} // namespace vantrel::ombra
