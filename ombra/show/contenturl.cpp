#include "ombra/show/contenturl.h"

#include "tarn/media/imagesequenceformat.h"
#include "tarn/media/numberfields.h"

#include <algorithm>
#include <string_view>

namespace vantrel::ombra {

std::string contentUrl(const std::filesystem::path& relative)
{
    constexpr std::string_view plain = "-._~!$&'()*+,;=:@/";
    constexpr char digits[] = "0123456789ABCDEF";
    std::string url = "file:///";
    for (const char c : relative.generic_string()) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (letter || plain.find(c) != std::string_view::npos) {
            url += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            url += '%';
            url += digits[byte >> 4];
            url += digits[byte & 15];
        }
    }
    return url;
}

std::vector<std::string> sequencePatterns(const std::string& fileName)
{
    std::vector<std::string> patterns;
    std::vector<NumberField> fields;
    findNumberFields(fileName, fields);
    for (const NumberField& field : fields) {
        const int digits = static_cast<int>(std::min<std::size_t>(field.length, 100));
        if (digits > ImageSequenceFormat::maxWidth ||
            !beginsWithSuffix(std::string_view(fileName).substr(field.end())))
            continue;
        const bool isPadded = digits > 1 && fileName[field.start] == '0';
        for (int width = isPadded ? digits : 1; width <= digits; ++width)
            patterns.push_back(
                ImageSequenceFormat(fileName.substr(0, field.start), width, fileName.substr(field.end()))
                    .toString());
    }
    return patterns;
}

} // namespace vantrel::ombra
