#pragma once

#include "ombra/base/asidethread.h"
#include "ombra/show/showfile.h"
#include "ombra/show/showfolder.h"
#include "ombra/show/showstore.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vantrel::ombra {

class CurrentShow;
class Outputs;
class SceneSettings;

/// Whole shows: saved under names, taken back, imported and cleared, one after the other, each whole or not
/// at all. Of what a change takes away a copy is kept first, and one every hour. The disk is asked on a
/// thread of its own; everything else is the thread of the scene.
class ShowFiles
{
public:
    struct Parts
    {
        ShowStore& store;
        SceneSettings& settings;
        Outputs& outputs;
        CurrentShow& current;
    };
    ShowFiles(boost::asio::io_context& io, Parts parts, const std::filesystem::path& stateFolder,
              std::filesystem::path mediaFolder, std::chrono::milliseconds hour);
    ~ShowFiles();
    ShowFiles(const ShowFiles&) = delete;
    ShowFiles& operator=(const ShowFiles&) = delete;

    /// The show as it is now, as a file's content.
    Json show() const;

    struct Outcome
    {
        unsigned status = 200;            // of HTTP
        std::string error;                // a sentence
        std::vector<std::string> missing; // media; where it is refused, for them among others
        std::string note = {};            // what is on otherwise than the show has it, a sentence
    };
    using Done = std::function<void(const Outcome&)>;

    /// Takes over sections of a show file: names out of "output", "audio", "playback" and "medialibrary" with
    /// commas between, none meaning all. 400 for what is no show file or section; 409, unless it is forced,
    /// for another version and for media that are not there, which are told in both cases; 413 when its
    /// library is too large, 422 when it is not valid, 507 when the disk takes nothing.
    void importShow(std::shared_ptr<const showfile::Reading> file, const std::string& include, bool forced,
                    Done done);
    /// Goes on with the show that was saved under a name; 404 where there is none.
    void load(const std::string& name, bool forced, Done done);
    /// The same for a start, where nobody can be asked: what comes to nothing, or lacks media, is told.
    /// instead: settings that stand in the place of the show's own.
    void startWith(const std::string& name, const Json& instead, Done done);
    /// Goes back to an earlier state, under the name that the show has now.
    void bringBack(const std::string& id, bool forced, Done done);
    void remove(const std::string& name, Done done);

    using Listed = std::function<void(const Json&)>;
    void listShows(Listed listed);
    void listEarlier(Listed listed);

    /// Called with a sentence when something that was invoked comes to nothing, or lacks media, and with none
    /// when a show was taken over or saved.
    void setTroubleListener(std::function<void(const std::string& sentence)> listener)
    {
        m_trouble = std::move(listener);
    }

    /// The methods of the scene's showConfiguration: "saveShow", "revertShow", "clearShow". False, with the
    /// reason, for what cannot even be tried.
    bool invoke(const std::string& method, const Json& args, std::string* error);

private:
    /// One show to go on with, instead of the present one.
    struct Change
    {
        std::string before; // what the copy of the present one is kept for
        std::shared_ptr<const showfile::Reading> file;
        std::set<std::string> sections;
        bool forced = false;
        std::string name; // of the show from then on; empty keeps the present one
        Done done;
        bool takesMissing = false;     // who wants it cannot be asked: what is missing is told behind it
        Json instead = Json::object(); // settings in the place of the show's own
    };
    using SharedChange = std::shared_ptr<const Change>;

    template <typename Work, typename Then>
    void aside(Work work, Then then);
    void enqueue(std::function<void()> operation);
    void finish(const Done& done, const Outcome& outcome);
    void next();

    void readThenCheck(const std::function<std::optional<std::string>(std::string*)>& read, Change change);
    void check(const SharedChange& change);
    void askOrReplace(const SharedChange& change, const std::vector<std::string>& missing);
    void keepCopy(const std::string& before, std::function<void(const std::string& why)> then, int tries = 3);
    void replace(const SharedChange& change, const std::vector<std::string>& missing);
    void put(const std::optional<MediaLibrary>& library, const Json& settings,
             const ShowStore::Answer& answer, int tries = 3);
    void letGoLater(std::shared_ptr<const void> library);
    void takeSaved(const std::string& name, const Json& instead, const char* failure, Done done);
    Done telling(const std::string& what) const;
    void clear(const Done& done);
    void save(const std::string& name, const Done& done);
    void readSaved();
    void startHour();
    void tell(const std::string& sentence) const;

    boost::asio::io_context& m_io;
    Parts m_parts;
    std::filesystem::path m_media;
    std::shared_ptr<ShowFolder> m_folder; // of the thread that asks the disk
    std::function<void(const std::string& sentence)> m_trouble;
    std::deque<std::function<void()>> m_waiting;
    bool m_isBusy = false;
    Json m_keptLibrary, m_keptSettings;           // of the newest copy
    const std::chrono::milliseconds m_hourLength; // of a copy by itself
    boost::asio::steady_timer m_hour;
    std::shared_ptr<int> m_alive =
        std::make_shared<int>(0); // what comes back from the thread holds it weakly
    AsideThread m_disk;
};

} // namespace vantrel::ombra
