#include "ombra/show/showfiles.h"

#include "ombra/base/fail.h"
#include "ombra/outputs/outputs.h"
#include "ombra/show/currentshow.h"
#include "ombra/show/missingmedia.h"
#include "ombra/show/scenesettings.h"
#include "ombra/show/showplayback.h"

#include <boost/asio/post.hpp>

#include <chrono>
#include <utility>

namespace vantrel::ombra {

namespace {

constexpr std::string_view configurationPath = "/device/showConfiguration/"; // of no show

unsigned statusOf(const EditResult& result)
{
    return result.status == EditResult::Status::Saved      ? 200
           : result.status == EditResult::Status::TooLarge ? 413
                                                           : 507;
}

std::string sentenceOf(std::string reason)
{
    if (reason.empty())
        return reason;
    if (reason[0] >= 'a' && reason[0] <= 'z')
        reason[0] = static_cast<char>(reason[0] - 'a' + 'A');
    return reason.ends_with('.') ? reason : reason + '.';
}

/// What became of a file to be saved.
struct Saving
{
    std::string why; // it was not
    bool keptOther = false;
};

ShowFiles::Outcome withoutCopy(const std::string& why)
{
    return {507, "No copy of the present show could be kept first: " + why + ". Nothing was changed.", {}};
}

/// As the second half of a sentence.
std::string reasonOf(std::string sentence)
{
    const bool isWord = sentence.size() > 1 && sentence[0] >= 'A' && sentence[0] <= 'Z' && sentence[1] >= 'a';
    if (isWord)
        sentence[0] = static_cast<char>(sentence[0] - 'A' + 'a');
    return sentence;
}

Json entryJson(const ShowFolder::Entry& entry)
{
    return Json::object({{"bytes", entry.bytes},
                         {"contents", entry.contents.toJson()},
                         {"error", entry.error.empty() ? Json() : Json(entry.error)},
                         {"modified", entry.modified}});
}

} // namespace

ShowFiles::ShowFiles(boost::asio::io_context& io, Parts parts, const std::filesystem::path& stateFolder,
                     std::filesystem::path mediaFolder, std::chrono::milliseconds hour)
    : m_io(io)
    , m_parts(parts)
    , m_media(std::move(mediaFolder))
    , m_folder(std::make_shared<ShowFolder>(stateFolder))
    , m_hourLength(hour)
    , m_hour(io)
{
    readSaved();
    startHour();
}

ShowFiles::~ShowFiles()
{
    m_alive.reset();
    m_disk.join();
}

/// Does the work on the disk's thread, then goes on with what came of it on this one.
template <typename Work, typename Then>
void ShowFiles::aside(Work work, Then then)
{
    boost::asio::post(m_disk, [this, alive = std::weak_ptr(m_alive), work = std::move(work),
                               then = std::move(then)]() mutable {
        auto result = std::make_shared<decltype(work())>(work());
        boost::asio::post(m_io, [alive, then = std::move(then), result = std::move(result)]() mutable {
            if (!alive.expired())
                then(*result);
        });
    });
}

void ShowFiles::enqueue(std::function<void()> operation)
{
    m_waiting.push_back(std::move(operation));
    if (!m_isBusy)
        next();
}

void ShowFiles::finish(const Done& done, const Outcome& outcome)
{
    done(outcome);
    next();
}

void ShowFiles::next()
{
    m_isBusy = !m_waiting.empty();
    if (!m_isBusy)
        return;
    const std::function<void()> operation = std::move(m_waiting.front());
    m_waiting.pop_front();
    operation();
}

Json ShowFiles::show() const
{
    return showfile::make(m_parts.store.library().toJson(), m_parts.settings.current(),
                          m_parts.settings.outputs());
}

void ShowFiles::importShow(std::shared_ptr<const showfile::Reading> file, const std::string& include,
                           bool forced, Done done)
{
    const auto sections = showfile::sectionsOf(include);
    if (!sections)
        return done({400, "There is no such section: \"" + include + "\".", {}});
    const Change change{"import", std::move(file), *sections, forced, {}, std::move(done)};
    enqueue([this, shared = std::make_shared<const Change>(change)] { check(shared); });
}

void ShowFiles::load(const std::string& name, bool forced, Done done)
{
    const auto read = [folder = m_folder, name](std::string* why) { return folder->read(name, why); };
    enqueue([this, read,
             change = Change{"revert", {}, *showfile::sectionsOf({}), forced, name, std::move(done)}] {
        readThenCheck(read, change);
    });
}

void ShowFiles::bringBack(const std::string& id, bool forced, Done done)
{
    const auto read = [folder = m_folder, id](std::string* why) { return folder->readCopy(id, why); };
    enqueue(
        [this, read, change = Change{"earlier", {}, *showfile::sectionsOf({}), forced, {}, std::move(done)}] {
            readThenCheck(read, change);
        });
}

void ShowFiles::readThenCheck(const std::function<std::optional<std::string>(std::string*)>& read,
                              Change change)
{
    const auto work = [read] {
        std::pair<std::shared_ptr<const showfile::Reading>, std::string> result;
        if (const auto text = read(&result.second))
            result.first = std::make_shared<const showfile::Reading>(showfile::read(*text));
        return result;
    };
    aside(work, [this, change = std::move(change)](const auto& result) mutable {
        if (!result.first)
            return finish(change.done, {404, sentenceOf(result.second), {}});
        change.file = result.first;
        check(std::make_shared<const Change>(std::move(change)));
    });
}

/// Refuses what cannot or should not be taken over, before anything is changed.
void ShowFiles::check(const SharedChange& change)
{
    const showfile::Reading& file = *change->file;
    const bool hasLibrary = change->sections.contains("medialibrary");
    Outcome outcome;
    if (file.status != 200)
        outcome = {file.status, file.error, {}};
    else if (hasLibrary && !file.libraryError.empty())
        outcome = {422, sentenceOf("The show's library cannot be used: " + file.libraryError), {}};
    else if (const std::string misfit = m_parts.settings.misfit(file.show.get("settings"), change->sections);
             !misfit.empty())
        outcome = {422, misfit, {}};
    if (outcome.status != 200)
        return finish(change->done, outcome);
    if (!hasLibrary)
        return askOrReplace(change, {});
    const auto ask = [change, media = m_media] { return missingMedia(media, change->file->library); };
    aside(ask, [this, change](const std::vector<std::string>& missing) { askOrReplace(change, missing); });
}

/// All that an operator may overrule is told at once, and what is missing also behind it.
void ShowFiles::askOrReplace(const SharedChange& change, const std::vector<std::string>& missing)
{
    std::string doubt;
    const Json version = change->file->show.get("version");
    if (version.asInt() != showfile::version)
        doubt = "The show is of version " + version.asString() + " of the format, and this server knows " +
                std::to_string(showfile::version) + ".";
    if (!missing.empty() && !change->takesMissing)
        doubt += (doubt.empty() ? "" : " ") + missingCount(missing);
    if (doubt.empty() || change->forced)
        replace(change, missing);
    else
        finish(change->done, {409, doubt, missing});
}

/// Keeps the present show as a copy that can be brought back, unless the newest one is the same. then is told
/// why that was not possible.
void ShowFiles::keepCopy(const std::string& before, std::function<void(const std::string& why)> then,
                         int tries)
{
    const Json library = m_parts.store.latestLibrary().toJson();
    const Json settings = m_parts.settings.current();
    if (library.sameNode(m_keptLibrary) && settings == m_keptSettings)
        return then({});
    const auto write = [folder = m_folder, before, library, settings, outputs = m_parts.settings.outputs()] {
        std::string why;
        folder->keepCopy(before, showfile::textOf(showfile::make(library, settings, outputs)), &why);
        return why;
    };
    aside(write,
          [this, before, library, settings, then = std::move(then), tries](const std::string& why) mutable {
              if (!why.empty())
                  return then(why);
              replaceAside(m_keptLibrary, library);
              m_keptSettings = settings;
              // Somebody may have edited meanwhile.
              if (tries > 1 && !m_parts.store.latestLibrary().toJson().sameNode(library))
                  return keepCopy(before, std::move(then), tries - 1);
              then({});
          });
}

void ShowFiles::replace(const SharedChange& change, const std::vector<std::string>& missing)
{
    keepCopy(change->before, [this, change, missing](const std::string& why) {
        if (!why.empty())
            return finish(change->done, withoutCopy(why));
        std::string note;
        Json settings = m_parts.settings.chosen(change->file->show, change->sections, note);
        const bool hasLibrary = change->sections.contains("medialibrary");
        if (!hasLibrary)
            leaveOtherMedia(settings, change->file->library, m_parts.store.latestLibrary(), note);
        change->instead.forEachMember([&settings](std::string_view path, const Json& value) {
            settings.set(path, value);
            return true;
        });
        Json saved = settings;
        if (!change->name.empty())
            saved.set(CurrentShow::namePath, change->name);
        const auto replaced = [this, change, settings, missing, note](const EditResult& result) {
            if (result.status != EditResult::Status::Saved)
                return finish(change->done, {statusOf(result), sentenceOf(result.message), {}});
            m_parts.settings.apply(settings, change->sections);
            if (!change->name.empty())
                m_parts.current.setSaved(change->name, m_parts.store.library().toJson(),
                                         m_parts.settings.current());
            tell(note); // and no more what it said of the show before
            finish(change->done, {200, {}, missing, note});
            letGoLater(change);
        };
        put(hasLibrary ? std::optional(change->file->library) : std::nullopt, saved, replaced);
    });
}

/// What a show comes to as an edit is worked out aside, and anew where somebody edits meanwhile; at last on
/// this thread, where nobody does. No library: the one that there is.
void ShowFiles::put(const std::optional<MediaLibrary>& library, const Json& settings,
                    const ShowStore::Answer& answer, int tries)
{
    const auto work = [library, settings, present = m_parts.store.latestLibrary(),
                       saved = m_parts.current.savedLibrary()] {
        return std::make_shared<ShowEdit>(present, library ? *library : present, saved, settings);
    };
    const auto take = [this, answer](const std::shared_ptr<ShowEdit>& edit) {
        return m_parts.store.replaceShow(*edit, [this, edit, answer](const EditResult& result) {
            answer(result);
            letGoLater(edit);
        });
    };
    if (tries == 0) {
        take(work());
        return;
    }
    aside(work, [this, library, settings, answer, take, tries](const std::shared_ptr<ShowEdit>& edit) {
        if (!take(edit))
            put(library, settings, answer, tries - 1);
    });
}

/// Once nobody here holds it any more.
void ShowFiles::letGoLater(std::shared_ptr<const void> library)
{
    boost::asio::post(m_io, [library = std::move(library)]() mutable { letGo(std::move(library)); });
}

bool ShowFiles::invoke(const std::string& method, const Json& args, std::string* error)
{
    std::string name(args.get("showName").stringView());
    if (!ShowFolder::isName(name))
        return fail(error, "\"showName\" must be a text of 1 to 80 bytes");
    // Asked for now, it is the show that is on by then.
    const auto named = [this, name] { return name == CurrentShow::unnamed ? m_parts.current.name() : name; };
    if (method == "saveShow")
        enqueue(
            [this, named] { save(named(), telling("The show could not be saved as \"" + named() + '"')); });
    else if (method == "revertShow")
        enqueue([this, named] { takeSaved(named(), Json::object(), " could not be taken back", {}); });
    else if (method == "clearShow")
        enqueue([this] { clear(telling("The show could not be cleared")); });
    else
        return fail(error, "unknown method");
    return true;
}

/// What comes to nothing is told, and not asked about.
ShowFiles::Done ShowFiles::telling(const std::string& what) const
{
    return [this, what](const Outcome& outcome) {
        tell(outcome.status == 200 ? std::string() : what + ": " + reasonOf(outcome.error));
    };
}

void ShowFiles::startWith(const std::string& name, const Json& instead, Done done)
{
    enqueue([this, name, instead, done = std::move(done)] {
        takeSaved(name, instead, " could not be started with", done);
    });
}

void ShowFiles::takeSaved(const std::string& name, const Json& instead, const char* failure, Done done)
{
    const std::string title = "The show \"" + name + '"';
    const auto told = [this, title, failed = telling(title + failure),
                       done = std::move(done)](const Outcome& outcome) {
        if (outcome.status == 200 && !outcome.missing.empty())
            tell(title + " is on. " + missingSentence(outcome.missing) +
                 (outcome.note.empty() ? "" : ' ' + outcome.note));
        else if (outcome.status == 200)
            tell(outcome.note);
        else
            failed(outcome);
        if (done)
            done(outcome);
    };
    const auto read = [folder = m_folder, name](std::string* why) { return folder->read(name, why); };
    Change change{"revert", {}, *showfile::sectionsOf({}), false, name, told};
    change.takesMissing = true;
    change.instead = instead;
    readThenCheck(read, std::move(change));
}

/// What was saved under the name before stays as an earlier state where somebody may miss it: it was another
/// show, or nothing is saved in its place.
void ShowFiles::save(const std::string& name, const Done& done)
{
    const Json library = m_parts.store.library().toJson();
    const Json settings = m_parts.settings.current();
    const bool isEmpty = ShowContents::of(library).isNothing();
    const bool replaces = isEmpty || name != m_parts.current.name();
    const auto write = [folder = m_folder, name, library, settings, replaces,
                        outputs = m_parts.settings.outputs()] {
        Saving saving;
        saving.keptOther = replaces && folder->keepReplaced(name, library, &saving.why);
        if (saving.why.empty())
            folder->save(name, showfile::textOf(showfile::make(library, settings, outputs)), &saving.why);
        return saving;
    };
    aside(write, [this, name, library, settings, isEmpty, done](const Saving& saving) {
        const std::string& why = saving.why;
        if (why.empty())
            m_parts.current.setSaved(name, library, settings);
        if (saving.keptOther)
            replaceAside(m_keptLibrary, Json()); // it is no more the newest
        finish(done, {why.empty() ? 200u : 507u, sentenceOf(why), {}});
        if (why.empty() && saving.keptOther && isEmpty)
            tell("The show \"" + name +
                 "\" was saved without any media. What was saved under this name before stays among the "
                 "earlier states.");
    });
}

/// The players stop once the library is gone, and not before: a disk that takes nothing leaves all as it is.
void ShowFiles::clear(const Done& done)
{
    keepCopy("clear", [this, done](const std::string& why) {
        if (!why.empty())
            return finish(done, withoutCopy(why));
        // The settings go with the library: a server that is killed now starts with nothing of the show.
        Json settings = Json::object();
        m_parts.settings.current().forEachMember([&settings](std::string_view path, const Json&) {
            if (!path.starts_with(configurationPath))
                settings.set(path, Json());
            return true;
        });
        put(MediaLibrary(), settings, [this, done](const EditResult& result) {
            if (result.status != EditResult::Status::Saved)
                return finish(done, {statusOf(result), sentenceOf(result.message), {}});
            m_parts.outputs.reset();
            m_parts.settings.resetPlayback();
            finish(done, {});
        });
    });
}

void ShowFiles::remove(const std::string& name, Done done)
{
    enqueue([this, name, done = std::move(done)] {
        const auto work = [folder = m_folder, name] {
            std::string why;
            folder->remove(name, &why);
            return why;
        };
        aside(work, [this, name, done](const std::string& why) {
            if (why.empty() && name == m_parts.current.name())
                m_parts.current.setSaved(name, MediaLibrary().toJson(), Json::object());
            finish(done, {why.empty() ? 200u : 404u, sentenceOf(why), {}});
        });
    });
}

void ShowFiles::listShows(Listed listed)
{
    const auto work = [folder = m_folder] {
        Json list = Json::array();
        for (const ShowFolder::Entry& entry : folder->shows()) {
            Json one = entryJson(entry);
            one.set("name", entry.name);
            list.append(one);
        }
        return list;
    };
    aside(work, [this, listed = std::move(listed)](const Json& list) {
        listed(Json::object({{"current", m_parts.current.name()}, {"shows", list}}));
    });
}

void ShowFiles::listEarlier(Listed listed)
{
    const auto work = [folder = m_folder, library = m_parts.store.library().toJson(),
                       settings = m_parts.settings.current()] {
        Json list = Json::array();
        for (const ShowFolder::Entry& entry : folder->copies(library)) {
            Json one = entryJson(entry);
            one.set("id", entry.id);
            one.set("before", entry.name);
            if (entry.error.empty())
                one.set("difference",
                        ShowDifference(library, entry.library, settings, entry.settings).toJson());
            list.append(one);
        }
        return list;
    };
    aside(work, [listed = std::move(listed)](const Json& list) { listed(Json::object({{"states", list}})); });
}

/// What the show that is on is compared with from the start on.
void ShowFiles::readSaved()
{
    const std::string name = m_parts.current.name();
    const auto work = [folder = m_folder, name, present = m_parts.store.library().toJson()] {
        std::string none;
        const auto text = folder->read(name, &none);
        showfile::Reading reading = text ? showfile::read(*text) : showfile::Reading();
        return std::pair(sharing(present, reading.library.toJson()), reading.show.get("settings"));
    };
    m_isBusy = true;
    aside(work, [this, name](const std::pair<Json, Json>& saved) {
        m_parts.current.setSaved(name, saved.first, saved.second);
        next();
    });
}

void ShowFiles::startHour()
{
    m_hour.expires_after(m_hourLength);
    m_hour.async_wait([this](boost::system::error_code code) {
        if (code)
            return;
        enqueue([this] {
            keepCopy("hour", [this](const std::string& why) {
                if (!why.empty())
                    tell("The copy that is kept every hour could not be written: " + why +
                         ". Make room on the server's disk. The show itself goes on.");
                next();
            });
        });
        startHour();
    });
}

void ShowFiles::tell(const std::string& sentence) const
{
    if (m_trouble)
        m_trouble(sentence);
}

} // namespace vantrel::ombra
