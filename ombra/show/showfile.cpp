#include "ombra/show/showfile.h"

#include "ombra/base/version.h"
#include "ombra/show/librarysize.h"
#include "ombra/show/scenesettings.h"

#include <algorithm>

namespace vantrel::ombra::showfile {

namespace {

constexpr std::string_view formatName = "halcyra-show";
static_assert(largest > librarysize::limit);

/// What a file may hold of values. A library of the size that is taken has fewer, and each costs memory
/// before anybody can tell what it is for.
constexpr std::ptrdiff_t mostValues = 24'000'000;
constexpr std::ptrdiff_t mostRecords = 3'000'000;
constexpr std::size_t mostSettings = 10'000;

} // namespace

Json make(const Json& library, const Json& settings, const Json& outputs)
{
    return Json::object({{"format", formatName},
                         {"version", version},
                         {"server", versionText()},
                         {"library", library},
                         {"outputs", outputs},
                         {"settings", settings}});
}

std::string textOf(const Json& show)
{
    return show.toString();
}

Reading read(const std::string& text)
{
    Reading reading;
    const auto refuse = [&reading](unsigned status, const std::string& sentence) {
        reading.status = status;
        reading.error = sentence;
        return reading;
    };
    constexpr const char* tooMuch = "The file holds more than a show may have.";
    if (std::ranges::count(text, '{') > mostRecords || std::ranges::count(text, ',') > mostValues)
        return refuse(413, tooMuch);
    std::string why;
    if (!Json::parseString(text, reading.show, &why) || reading.show.get("format").stringView() != formatName)
        return refuse(400, "This is no show file" + (why.empty() ? why : ": " + why) + ".");
    const Json number = reading.show.get("version");
    if (number.type() != JsonType::Int || number.asInt() < 1)
        return refuse(400, "This is no show file: its version is no whole number from 1 on.");
    const Json* settings = reading.show.find("settings");
    if (settings && !settings->isObject())
        return refuse(400, "This is no show file: its settings are no object.");
    if (settings && settings->size() > mostSettings)
        return refuse(413, tooMuch);
    reading.library.parseJson(reading.show.get("library"), &reading.libraryError);
    return reading;
}

std::optional<std::set<std::string>> sectionsOf(std::string_view include)
{
    std::set<std::string> known = SceneSettings::sections();
    known.insert("medialibrary");
    if (include.empty())
        return known;
    std::set<std::string> chosen;
    while (!include.empty()) {
        const std::size_t comma = include.find(',');
        const std::string name(include.substr(0, comma));
        include = comma == std::string_view::npos ? std::string_view() : include.substr(comma + 1);
        if (!known.contains(name))
            return std::nullopt;
        chosen.insert(name);
    }
    return chosen;
}

} // namespace vantrel::ombra::showfile
