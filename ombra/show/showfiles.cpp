#include "ombra/show/showfiles.h"

#include "ombra/base/version.h"
#include "ombra/outputs/outputs.h"
#include "ombra/show/atomicfile.h"
#include "ombra/show/librarysize.h"
#include "ombra/show/scenesettings.h"
#include "ombra/show/showstore.h"

#include <set>
#include <string_view>

namespace vantrel::ombra {

namespace {

constexpr std::string_view formatName = "halcyra-show";
constexpr std::size_t maxFile = librarysize::limit + 16u * 1024 * 1024; // what can be saved can be read
constexpr std::size_t longestName = 80; // bytes; three times that, escaped, must fit a file name

bool fail(std::string* error, const std::string& text)
{
    if (error)
        *error = text;
    return false;
}

/// The sections that an import names; false on an unknown one.
bool parseSections(std::string_view include, std::set<std::string>& out)
{
    std::set<std::string> known = SceneSettings::sections();
    known.insert("medialibrary");
    if (include.empty())
        out = known;
    while (!include.empty()) {
        const std::size_t comma = include.find(',');
        const std::string name(include.substr(0, comma));
        include = comma == std::string_view::npos ? std::string_view() : include.substr(comma + 1);
        if (!known.contains(name))
            return false;
        out.insert(name);
    }
    return true;
}

} // namespace

ShowFiles::ShowFiles(ShowStore& store, SceneSettings& settings, Outputs& outputs,
                     std::filesystem::path stateFolder)
    : m_store(store)
    , m_settings(settings)
    , m_outputs(outputs)
    , m_folder(std::move(stateFolder))
{
}

Json ShowFiles::show() const
{
    return Json::object({{"format", formatName},
                         {"version", formatVersion},
                         {"server", versionText()},
                         {"library", m_store.library().toJson()},
                         {"settings", m_settings.current()}});
}

/// Without a layout, which would take more room than what it lays out.
std::string ShowFiles::textOf(const Json& show)
{
    return show.toString();
}

ShowFiles::Reading ShowFiles::read(const std::string& file)
{
    Reading reading;
    std::string why;
    if (!Json::parseString(file, reading.show, &why) || reading.show.get("format").stringView() != formatName)
        reading.whyNoShow = "this is no show file" + (why.empty() ? why : ": " + why);
    else
        reading.library.parseJson(reading.show.get("library"), &reading.whyNoLibrary);
    return reading;
}

void ShowFiles::importShow(const Reading& file, const std::string& include, bool forced, Done done)
{
    if (!file.whyNoShow.empty())
        return done(400, file.whyNoShow);
    std::set<std::string> sections;
    if (!parseSections(include, sections))
        return done(400, "unknown section in \"" + include + "\"");
    if (file.show.get("version").asInt() != formatVersion && !forced)
        return done(409, "the show is of another version");
    if (sections.contains("medialibrary") && !file.whyNoLibrary.empty())
        return done(422, file.whyNoLibrary);
    const Json settings = file.show.get("settings");
    const auto rest = [this, settings, sections, done](const EditResult& result) {
        if (result.status != EditResult::Status::Saved)
            return done(result.status == EditResult::Status::TooLarge ? 413 : 507, result.message);
        m_settings.apply(settings, sections);
        done(200, {});
    };
    if (sections.contains("medialibrary"))
        m_store.replaceLibrary(file.library, rest);
    else
        rest({});
}

bool ShowFiles::invoke(const std::string& method, const Json& args, std::string* error)
{
    const std::string name(args.get("showName").stringView());
    if (name.empty() || name.size() > longestName)
        return fail(error, "\"showName\" must be a text of 1 to 80 bytes");
    if (method == "saveShow")
        return saveShow(name, error);
    if (method == "revertShow")
        return revertShow(name, error);
    if (method == "clearShow") {
        clearShow();
        return true;
    }
    return fail(error, "unknown method");
}

bool ShowFiles::saveShow(const std::string& name, std::string* error)
{
    const std::filesystem::path path = pathOf(name);
    std::error_code code;
    std::filesystem::create_directories(path.parent_path(), code);
    std::string why;
    const bool isSaved = writeFileAtomically(path, textOf(show()), &why);
    tell(isSaved ? std::string() : "The show could not be saved as \"" + name + "\": " + why + ".");
    return isSaved || fail(error, why);
}

bool ShowFiles::revertShow(const std::string& name, std::string* error)
{
    const auto refuse = [this, name](const std::string& why) {
        tell("The show \"" + name + "\" could not be taken back: " + why + ".");
    };
    std::string why;
    const auto text = readWholeFile(pathOf(name), maxFile, &why);
    if (!text) {
        if (why.empty())
            why = "no show was saved under that name";
        refuse(why);
        return fail(error, why);
    }
    importShow(read(*text), {}, false, [this, refuse](unsigned status, const std::string& message) {
        status == 200 ? tell({}) : refuse(message);
    });
    return true;
}

/// The players stop once the library is gone, and not before: a disk that takes nothing leaves all as it is.
void ShowFiles::clearShow()
{
    m_store.replaceLibrary(MediaLibrary(), [this](const EditResult& result) {
        if (result.status != EditResult::Status::Saved)
            return tell("The show could not be cleared: " + result.message + ".");
        m_outputs.reset();
        m_settings.resetPlayback();
        tell({});
    });
}

void ShowFiles::tell(const std::string& sentence) const
{
    if (m_trouble)
        m_trouble(sentence);
}

std::filesystem::path ShowFiles::pathOf(const std::string& name) const
{
    // The name comes from outside: encoded, and "/" and a leading "." with it, it is one harmless file name.
    std::string file;
    for (const char c : name) {
        const bool plain =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
        if (plain) {
            file += c;
        } else {
            constexpr char digits[] = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(c);
            file += '%';
            file += digits[byte >> 4];
            file += digits[byte & 15];
        }
    }
    return m_folder / "shows" / (file + ".show");
}

} // namespace vantrel::ombra
