#include "ombra/show/showstore.h"

#include "ombra/show/journalline.h"
#include "ombra/show/librarysize.h"
#include "ombra/show/showloader.h"

#include <boost/asio/post.hpp>

#include <chrono>
#include <utility>

namespace vantrel::ombra {

namespace {

/// Microseconds of the clock: no process makes edits so fast that the next one would start below its last
/// number. Far below 2^53, which is as far as readers of JSON count.
std::uint64_t firstRevision()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

EditResult tooLarge()
{
    return {EditResult::Status::TooLarge, "the library would be larger than " +
                                              std::to_string(librarysize::limit / (1024 * 1024)) + " MiB"};
}

} // namespace

ShowStore::ShowStore(boost::asio::io_context& io, std::filesystem::path stateFolder)
    : m_io(io)
    , m_folder(std::move(stateFolder))
    , m_disk(std::make_unique<ShowDisk>(m_folder))
    , m_library(makeRef<MediaLibrary>())
    , m_revision(firstRevision())
    , m_latestRevision(m_revision)
    , m_retry(io)
{
}

ShowStore::~ShowStore()
{
    m_alive.reset();
    flushSettings();
    m_writer.reset();
}

bool ShowStore::open(const std::function<MediaLibrary()>& makeInitial, std::string* error)
{
    if (!m_disk->open(error))
        return false;
    const LoadedShow loaded = loadShow(m_folder);
    m_loadNotice = loaded.notice;
    m_disk->adopt(loaded);
    m_latest = loaded.found ? loaded.library : makeInitial();
    m_settings = loaded.settings;
    m_libraryBytes = m_latestBytes = librarysize::of(m_latest.toJson());
    *m_library = m_latest;
    std::string why;
    const bool saved = m_disk->writeSnapshot(m_latest.toJson(), m_settings, &why);
    m_writer = std::make_unique<ShowWriter>(*m_disk, m_latest.toJson(), m_settings);
    if (!saved)
        setTrouble(why);
    return true;
}

bool ShowStore::isTooLarge(std::size_t bytes) const
{
    return bytes > librarysize::limit && bytes > m_latestBytes; // one that was too large may shrink
}

/// Makes the edit part of the latest library, if it can be.
EditResult ShowStore::accept(const Patch& patch)
{
    const Json before = m_latest.toJson();
    Json document = before;
    // Before the records are read: that takes time for each, and a patch of copies makes millions.
    if (patch.apply(document) && isTooLarge(librarysize::after(m_latestBytes, before, document)))
        return tooLarge();
    MediaLibrary after(m_latest);
    EditResult result;
    const int code = after.applyDiff(patch, &result.message);
    if (code == MediaLibrary::invalidContent)
        result.status = EditResult::Status::BreaksRules;
    else if (code == static_cast<int>(PatchError::TestFailed))
        result.status = EditResult::Status::TestFailed;
    else if (code != 0)
        result.status = EditResult::Status::DoesNotFit;
    if (code != 0)
        return result;
    const std::size_t bytes = librarysize::after(m_latestBytes, before, after.toJson());
    if (isTooLarge(bytes))
        return tooLarge();
    m_latest = after;
    m_latestBytes = bytes;
    return result;
}

void ShowStore::patchLibrary(const Patch& patch, Answer answer)
{
    const Json before = m_latest.toJson();
    const EditResult accepted = accept(patch);
    if (accepted.status != EditResult::Status::Saved)
        return answer(accepted);
    Patch difference;
    Patch::diff(before, m_latest.toJson(), difference);
    saveLatest(
        {encodeJournalLine(journalEntry(patch, {})), std::make_shared<const Patch>(std::move(difference))},
        [] {}, std::move(answer));
}

void ShowStore::replaceLibrary(const MediaLibrary& library, Answer answer)
{
    Patch patch;
    Patch::diff(m_latest.toJson(), library.toJson(), patch);
    patchLibrary(patch, std::move(answer));
}

bool ShowStore::replaceShow(ShowEdit& show, Answer answer)
{
    if (!show.before.toJson().sameNode(m_latest.toJson()))
        return false;
    if (isTooLarge(show.bytes)) {
        answer(tooLarge());
        return true;
    }
    m_latest = show.library;
    m_latestBytes = show.bytes;
    flushSettings(); // what was set before comes before
    const Json old = setSettings(show.settings);
    saveLatest(
        {std::move(show.line), show.difference, true}, [this, old] { setSettings(old); }, std::move(answer));
    return true;
}

/// Writes down what m_latest has become; undo: of what else was changed, where that is not to be had.
void ShowStore::saveLatest(Edit edit, std::function<void()> undo, Answer answer)
{
    m_latestRevision += edit.difference->empty() ? 0 : 1;
    auto after = std::make_shared<MediaLibrary>(m_latest);
    std::string line = std::exchange(edit.line, {});
    save(std::move(line),
         [this, edit = std::move(edit), after, undo = std::move(undo), revision = m_latestRevision,
          bytes = m_latestBytes, answer = std::move(answer)](bool ok, const std::string& error) {
             ok ? librarySaved(edit, *after, revision, bytes) : undo();
             answer({ok ? EditResult::Status::Saved : EditResult::Status::NotSaved, error, revision});
         });
}

/// A null takes a setting out. Returns what they were.
Json ShowStore::setSettings(const Json& settings)
{
    Json old = Json::object();
    settings.forEachMember([&](std::string_view path, const Json& value) {
        old.set(path, m_settings.get(path));
        if (value.isNull())
            m_settings.erase(path);
        else
            m_settings.set(path, value);
        return true;
    });
    return old;
}

void ShowStore::changeSetting(const std::string& path, const Json& value)
{
    const Json* old = m_settings.find(path);
    if (old && *old == value)
        return;
    m_settings.set(path, value);
    m_changedSettings.set(path, value);
    if (m_settingsListener)
        m_settingsListener();
    if (std::exchange(m_flushPosted, true))
        return;
    boost::asio::post(m_io, [this, alive = std::weak_ptr(m_alive)] {
        if (!alive.expired())
            flushSettings();
    });
}

void ShowStore::flushSettings()
{
    m_flushPosted = false;
    if (m_changedSettings.size() > 0 && m_writer)
        submitSettings();
}

/// Also without any: then it only finds out whether the disk takes something.
void ShowStore::submitSettings()
{
    const Json changed = std::exchange(m_changedSettings, Json::object());
    save(encodeJournalLine(Json::object({{"settings", changed}})),
         [this, changed](bool ok, const std::string&) {
             if (ok)
                 return;
             changed.forEachMember([this](std::string_view path, const Json&) {
                 m_changedSettings.set(path, m_settings.get(path)); // until the disk takes them
                 return true;
             });
         });
}

void ShowStore::save(std::string line, std::function<void(bool, const std::string&)> done)
{
    ShowWriter::Job job;
    job.epoch = m_epoch;
    job.line = std::move(line);
    job.library = m_latest.toJson();
    job.settings = m_settings;
    job.done = [this, alive = std::weak_ptr(m_alive), epoch = m_epoch,
                done = std::move(done)](bool ok, const std::string& error) mutable {
        // Nothing of the one who waits stays behind on the writer's thread, to end there with the job.
        boost::asio::post(m_io, [this, alive, epoch, done = std::move(done), ok, error] {
            if (alive.expired())
                return;
            setTrouble(error);
            if (!ok)
                goBack(epoch);
            done(ok, ok ? std::string() : "The edit was not saved. " + m_trouble);
        });
    };
    m_writer->submit(std::move(job));
}

void ShowStore::setTroubleListener(TroubleListener listener)
{
    m_troubleListener = std::move(listener);
    if (!m_trouble.empty())
        m_troubleListener(m_trouble);
}

void ShowStore::setTrouble(const std::string& why)
{
    constexpr auto retryTime = std::chrono::seconds(2);
    const std::string before = m_trouble;
    m_trouble = why.empty() ? why
                            : "The server cannot write to its disk (" + why +
                                  "). The show plays on, but edits are refused until there is room and "
                                  "right to write.";
    if (before != m_trouble && m_troubleListener)
        m_troubleListener(m_trouble);
    if (m_trouble.empty()) {
        m_retry.cancel();
        if (!before.empty())
            flushSettings(); // those that waited
        return;
    }
    m_retry.expires_after(retryTime);
    m_retry.async_wait([this, alive = std::weak_ptr(m_alive)](boost::system::error_code code) {
        if (!code && !alive.expired())
            submitSettings();
    });
}

void ShowStore::librarySaved(const Edit& edit, const MediaLibrary& after, std::uint64_t revision,
                             std::size_t bytes)
{
    *m_library = after;
    m_libraryBytes = bytes;
    if (edit.difference->empty())
        return;
    m_revision = revision;
    for (const LibraryListener& listener : m_listeners)
        listener(edit.difference, edit.isAnotherShow);
}

void ShowStore::goBack(std::uint64_t epoch)
{
    if (epoch != m_epoch)
        return; // by an earlier edit of the same epoch
    ++m_epoch;
    m_latest = *m_library;
    m_latestRevision = m_revision;
    m_latestBytes = m_libraryBytes;
}

} // namespace vantrel::ombra
