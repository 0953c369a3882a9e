#pragma once

#include "ombra/show/showdisk.h"
#include "ombra/show/showedit.h"
#include "ombra/show/showwriter.h"
#include "tarn/json/patch.h"
#include "tarn/media/medialibrary.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantrel::ombra {

/// What became of an edit.
struct EditResult
{
    enum class Status { Saved, TestFailed, DoesNotFit, BreaksRules, TooLarge, NotSaved };
    Status status = Status::Saved;
    std::string message;
    std::uint64_t revision = 0; // what a saved edit made of the library
};

/// The show: the media library and the settings of the scene that last. An edit is checked at once against
/// all that was accepted before it, and answered, published and told to the listeners when it is safe on the
/// disk. One thread, that of the io_context.
class ShowStore
{
public:
    using Answer = std::function<void(const EditResult&)>;
    using Difference = std::shared_ptr<const Patch>;
    using LibraryListener = std::function<void(const Difference&, bool isAnotherShow)>;

    ShowStore(boost::asio::io_context& io, std::filesystem::path stateFolder);
    /// Saves what was accepted; no answer is called any more.
    ~ShowStore();
    ShowStore(const ShowStore&) = delete;
    ShowStore& operator=(const ShowStore&) = delete;

    /// Loads the show; on a first start takes the library that makeInitial gives. False, with the reason,
    /// when the folder cannot be used. A disk that takes nothing is trouble (see setTroubleListener), but
    /// none for showing what there is.
    bool open(const std::function<MediaLibrary()>& makeInitial, std::string* error);

    /// The library as it is saved.
    MediaLibrary& library() noexcept { return *m_library; }
    /// The number of what library() holds: one more with each edit, and never one that an earlier process on
    /// this show gave out, so that who has slept through a restart is not taken for somebody who is up to
    /// date.
    std::uint64_t libraryRevision() const noexcept { return m_revision; }
    /// With the edits that are accepted and not saved yet: what the next edit will be applied to.
    const MediaLibrary& latestLibrary() const noexcept { return m_latest; }
    /// Of the library as text, about, in bytes.
    std::size_t librarySize() const noexcept { return m_libraryBytes; }
    std::uint64_t latestRevision() const noexcept { return m_latestRevision; }
    /// Values of lasting scene properties by their path.
    const Json& settings() const noexcept { return m_settings; }

    void patchLibrary(const Patch& patch, Answer answer);
    /// Replaces the whole; listeners get what differs.
    void replaceLibrary(const MediaLibrary& library, Answer answer);
    /// Library and settings by one edit: both are saved, or neither. Settings that are not named stay. False,
    /// and no answer comes, where the library has been edited since the edit was made: make it anew.
    bool replaceShow(ShowEdit& show, Answer answer);
    void changeSetting(const std::string& path, const Json& value);

    /// Called after each saved edit of the library that changed something, with what is different now, and
    /// whether it is another show's: additions, removals and replacements of no more than that, however the
    /// edit was put. Who mirrors the library need not know what it means to move a slot or to replace all
    /// collections.
    void addLibraryListener(LibraryListener listener) { m_listeners.push_back(std::move(listener)); }

    /// Called after each change of a setting, saved or not.
    void setSettingsListener(std::function<void()> listener) { m_settingsListener = std::move(listener); }

    /// What the operator must know of the show as it was loaded; empty when all was sound.
    const std::string& loadNotice() const noexcept { return m_loadNotice; }

    /// Told why the disk takes nothing, and an empty text once it does again. Until then edits are refused
    /// and settings wait. Called at once where there is something to tell.
    using TroubleListener = std::function<void(const std::string& sentence)>;
    void setTroubleListener(TroubleListener listener);

private:
    struct Alive
    {
    };

    EditResult accept(const Patch& patch);
    bool isTooLarge(std::size_t bytes) const;
    struct Edit
    {
        std::string line; // of the journal
        Difference difference;
        bool isAnotherShow = false;
    };
    void saveLatest(Edit edit, std::function<void()> undo, Answer answer);
    Json setSettings(const Json& settings);
    void save(std::string line, std::function<void(bool, const std::string&)> done);
    void librarySaved(const Edit& edit, const MediaLibrary& after, std::uint64_t revision, std::size_t bytes);
    void goBack(std::uint64_t epoch);
    void flushSettings();
    void submitSettings();
    void setTrouble(const std::string& why);

    boost::asio::io_context& m_io;
    std::filesystem::path m_folder;
    std::unique_ptr<ShowDisk> m_disk;
    std::unique_ptr<ShowWriter> m_writer;
    Ref<MediaLibrary> m_library;
    std::uint64_t m_revision;
    std::size_t m_libraryBytes = 0; // see librarysize
    MediaLibrary m_latest;
    std::uint64_t m_latestRevision;
    std::size_t m_latestBytes = 0;
    Json m_settings = Json::object();
    Json m_changedSettings = Json::object(); // of this turn
    bool m_flushPosted = false;
    std::string m_loadNotice;
    std::string m_trouble; // a sentence
    TroubleListener m_troubleListener;
    boost::asio::steady_timer m_retry; // while there is trouble
    std::uint64_t m_epoch = 1;         // see ShowWriter
    std::vector<LibraryListener> m_listeners;
    std::function<void()> m_settingsListener;
    std::shared_ptr<Alive> m_alive = std::make_shared<Alive>(); // completions hold it weakly
};

} // namespace vantrel::ombra
