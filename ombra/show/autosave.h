#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>

namespace vantrel::ombra {

class CurrentShow;
class ShowFiles;
class ShowStore;

/// Saves the show under its name soon after it was changed, while the configuration ("autoSave") says so. A
/// show of nothing is left for the operator to save: it is cleared to load another one, and what was saved
/// under its name must outlast that. The thread of the scene.
class AutoSave
{
public:
    /// All must outlive this.
    AutoSave(boost::asio::io_context& io, ShowFiles& files, CurrentShow& current, ShowStore& store);

private:
    void wait(std::chrono::seconds time);
    void saveWhatDiffers();
    bool isWanted() const;

    ShowFiles& m_files;
    CurrentShow& m_current;
    ShowStore& m_store;
    boost::asio::steady_timer m_timer;
    bool m_isSoon = false;
};

} // namespace vantrel::ombra
