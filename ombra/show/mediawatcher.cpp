#include "ombra/show/mediawatcher.h"

#include "ombra/show/contenturl.h"
#include "tarn/log/log.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace vantrel::ombra {

namespace {

constexpr std::uint32_t watched =
    IN_CLOSE_WRITE | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;
constexpr auto settleTime = std::chrono::milliseconds(100);
constexpr auto checkTime = std::chrono::seconds(1);
const std::string nowhere = "-"; // the identity of a folder that is gone

/// A path as the system's table of mounts writes it.
std::string escaped(const std::string& path)
{
    std::string text;
    for (const char c : path) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\\') {
            std::array<char, 8> octal{};
            std::snprintf(octal.data(), octal.size(), "\\%03o", static_cast<unsigned>(c));
            text += octal.data();
        } else {
            text += c;
        }
    }
    return text;
}

/// Which folder this is, and which disks are mounted at it and below. Any thread.
std::string identityOf(const std::filesystem::path& folder)
{
    struct stat status
    {
    };
    if (::stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode))
        return nowhere;
    std::string identity = std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
    const std::string root = escaped(folder.string());
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream fields(line);
        std::string id, parent, device, source, point;
        fields >> id >> parent >> device >> source >> point;
        if (point == root || point.starts_with(root + "/"))
            identity += " " + id + ":" + device + ":" + point;
    }
    return identity;
}

/// What an upload goes to until it is whole: each client would ask what it is, with every piece.
bool isUnderWay(const std::filesystem::path& path)
{
    const std::string name = path.filename().string();
    return name.starts_with('.') && name.ends_with(".part");
}

} // namespace

MediaWatcher::MediaWatcher(boost::asio::io_context& io, std::filesystem::path mediaFolder, Listener listener)
    : m_stream(io)
    , m_timer(io)
    , m_folder(std::move(mediaFolder))
    , m_listener(std::move(listener))
    , m_check(io)
{
}

MediaWatcher::~MediaWatcher()
{
    m_alive.reset();
    m_asker.stop();
    m_asker.join();
}

bool MediaWatcher::start(std::string* error)
{
    m_identity = identityOf(m_folder);
    scheduleCheck();
    if (m_identity == nowhere)
        return true;
    if (!open(error))
        return false;
    if (!take(watchTree(m_stream.native_handle(), m_folder, {}), false))
        m_identity.clear(); // gone again, or not to be watched: the next look tells
    read();
    return true;
}

bool MediaWatcher::open(std::string* error)
{
    const int fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd < 0) {
        *error = "cannot watch " + m_folder.string() + ": " + std::strerror(errno);
        return false;
    }
    m_stream.assign(fd);
    return true;
}

void MediaWatcher::setFolderListener(FolderListener listener)
{
    m_folderListener = std::move(listener);
    m_told.reset();
    tellFolder();
}

void MediaWatcher::tellFolder()
{
    const Folder now = m_identity == nowhere ? Folder::Gone : m_known.empty() ? Folder::Empty : Folder::There;
    if (m_told == now || !m_folderListener || !m_isListed || m_identity.empty())
        return;
    m_told = now;
    m_folderListener(now);
}

void MediaWatcher::scheduleCheck()
{
    m_check.expires_after(checkTime);
    m_check.async_wait([this, alive = std::weak_ptr(m_alive)](boost::system::error_code code) {
        if (code || alive.expired())
            return;
        boost::asio::post(m_asker, [this, alive, folder = m_folder,
                                    loop = boost::asio::make_work_guard(m_check.get_executor())] {
            boost::asio::post(loop.get_executor(), [this, alive, identity = identityOf(folder)] {
                if (alive.expired())
                    return;
                if (identity != m_identity && m_looks == 0) // otherwise the next time: they use the watch
                    follow(identity);
                scheduleCheck();
            });
        });
    });
}

/// Another folder, another disk, or none: watches what is there now, and tells what came and went.
void MediaWatcher::follow(const std::string& identity)
{
    const std::set<std::filesystem::path> before = std::exchange(m_known, {});
    m_watches.clear();
    ++m_round;
    m_reads = false;
    boost::system::error_code ignored;
    m_stream.close(ignored);
    m_identity = identity;
    const auto tellGone = [this, before] {
        m_isListed = true;
        for (const auto& file : before) {
            if (!m_known.contains(file))
                note(Event::Removed, file);
        }
        scheduleFlush(); // also of nothing, which tells how the folder is
    };
    std::string why;
    if (identity != nowhere && open(&why)) {
        m_isListed = false;
        return look({}, tellGone);
    }
    if (identity != nowhere)
        m_identity.clear(); // no watch: the next look tries again
    tellGone();
}

/// Has a folder and all below it watched and listed on the thread that asks the disk. Nothing is read from
/// the watch meanwhile, so that what happens comes after what was found.
void MediaWatcher::look(const std::filesystem::path& relative, std::function<void()> then)
{
    ask([this, fd = m_stream.native_handle(), root = m_folder, relative, then = std::move(then)] {
        return [this, relative, then, tree = watchTree(fd, root, relative)] {
            if (!take(tree, true) && relative.empty())
                m_identity.clear(); // as at the start
            if (then)
                then();
        };
    });
}

/// A new name for a file that is whole, a link say: nobody will close it. Others are empty yet.
void MediaWatcher::lookAtNew(std::vector<std::filesystem::path> files)
{
    ask([this, root = m_folder, files = std::move(files)]() mutable {
        std::erase_if(files, [&root](const std::filesystem::path& file) {
            std::error_code code;
            const auto bytes = std::filesystem::file_size(root / file, code);
            return code || bytes == 0;
        });
        return [this, files = std::move(files)] {
            for (const auto& file : files) {
                if (m_known.insert(file).second)
                    note(Event::Added, file);
            }
        };
    });
}

/// Runs work on the thread that asks the disk, and afterwards here what it gives; the loop does not end
/// before.
void MediaWatcher::ask(std::function<std::function<void()>()> work)
{
    ++m_looks;
    boost::asio::post(m_asker,
                      [this, alive = std::weak_ptr(m_alive),
                       loop = boost::asio::make_work_guard(m_check.get_executor()), work = std::move(work)] {
                          boost::asio::post(loop.get_executor(), [this, alive, then = work()] {
                              if (alive.expired())
                                  return;
                              --m_looks;
                              then();
                              read();
                          });
                      });
}

/// Any thread. Each folder is watched before it is listed, so that what comes meanwhile is seen at least
/// once.
MediaWatcher::Tree MediaWatcher::watchTree(int inotify, const std::filesystem::path& root,
                                           const std::filesystem::path& relative)
{
    Tree tree;
    std::vector<std::filesystem::path> folders{relative};
    while (!folders.empty()) {
        const std::filesystem::path folder = std::move(folders.back());
        folders.pop_back();
        const std::filesystem::path path = folder.empty() ? root : root / folder;
        const int watch = ::inotify_add_watch(inotify, path.c_str(), watched);
        if (watch >= 0)
            tree.watches.emplace_back(watch, folder);
        else if (errno != ENOENT)
            tree.trouble = "cannot watch " + path.string() + ": " + std::strerror(errno);
        if (watch < 0 && folder.empty())
            break;
        std::error_code code;
        for (std::filesystem::directory_iterator it(path, code), end; !code && it != end;
             it.increment(code)) {
            std::error_code ignored;
            const std::filesystem::path entry = folder / it->path().filename();
            if (it->is_directory(ignored) && !it->is_symlink(ignored))
                folders.push_back(entry);
            else
                tree.files.push_back(entry);
        }
    }
    return tree;
}

/// False where there is no such folder, or no watch for it.
bool MediaWatcher::take(const Tree& tree, bool announce)
{
    if (tree.trouble != std::exchange(m_trouble, tree.trouble) && !tree.trouble.empty())
        Log::write(LogLevel::Warning, "vantrel.show", tree.trouble);
    for (const auto& [watch, folder] : tree.watches)
        m_watches[watch] = folder;
    for (const auto& file : tree.files) {
        if (m_known.insert(file).second && announce)
            note(Event::Added, file);
    }
    return !tree.watches.empty();
}

/// Unless it is read already, or the disk is being looked at.
void MediaWatcher::read()
{
    if (m_looks > 0 || !m_stream.is_open() || std::exchange(m_reads, true))
        return;
    // What was read before the folder was another one means nothing any more.
    const auto done = [this, alive = std::weak_ptr(m_alive), round = m_round](boost::system::error_code code,
                                                                              std::size_t size) {
        if (code == boost::asio::error::operation_aborted || alive.expired() || round != m_round)
            return;
        if (code) {
            Log::write(LogLevel::Warning, "vantrel.show",
                       "the watch of the media folder ended: " + code.message());
            return;
        }
        m_reads = false;
        handle(m_buffer.data(), size);
        if (!m_new.empty())
            lookAtNew(std::exchange(m_new, {}));
        read();
    };
    m_stream.async_read_some(boost::asio::buffer(m_buffer), done);
}

void MediaWatcher::handle(const char* bytes, std::size_t size)
{
    while (size >= sizeof(inotify_event)) {
        inotify_event event;
        std::memcpy(&event, bytes, sizeof event);
        const std::size_t whole = sizeof event + event.len;
        if (whole > size)
            return;
        handle(event.wd, event.mask, event.len ? std::string(bytes + sizeof event) : std::string());
        bytes += whole;
        size -= whole;
    }
}

void MediaWatcher::handle(int watch, std::uint32_t mask, const std::string& name)
{
    if (mask & IN_Q_OVERFLOW) {
        look({}); // events were lost: look at everything again
        return;
    }
    if (mask & IN_IGNORED) {
        const auto gone = m_watches.find(watch);
        if (gone != m_watches.end() && gone->second.empty())
            m_identity.clear(); // the folder itself: another one of its name may look the same
        m_watches.erase(watch);
        return;
    }
    const auto folder = m_watches.find(watch);
    if (folder == m_watches.end() || name.empty())
        return;
    const std::filesystem::path path = folder->second / name;
    if (mask & IN_ISDIR) {
        if (mask & (IN_CREATE | IN_MOVED_TO))
            look(path);
        else if (mask & (IN_DELETE | IN_MOVED_FROM))
            forgetTree(path);
    } else if (mask & (IN_DELETE | IN_MOVED_FROM)) {
        m_known.erase(path);
        note(Event::Removed, path);
    } else if (mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) {
        note(m_known.insert(path).second ? Event::Added : Event::Changed, path);
    } else if (mask & IN_CREATE) {
        m_new.push_back(path);
    }
}

void MediaWatcher::forgetTree(const std::filesystem::path& relative)
{
    const auto below = [&](const std::filesystem::path& path) {
        return std::mismatch(relative.begin(), relative.end(), path.begin(), path.end()).first ==
               relative.end();
    };
    for (auto it = m_known.begin(); it != m_known.end();) {
        if (below(*it)) {
            note(Event::Removed, *it);
            it = m_known.erase(it);
        } else {
            ++it;
        }
    }
    for (auto it = m_watches.begin(); it != m_watches.end();) {
        if (below(it->second)) {
            ::inotify_rm_watch(m_stream.native_handle(), it->first);
            it = m_watches.erase(it);
        } else {
            ++it;
        }
    }
}

void MediaWatcher::note(Event event, const std::filesystem::path& relative)
{
    if (isUnderWay(relative))
        return;
    noteUrl(event, contentUrl(relative));
    for (const std::string& pattern : sequencePatterns(relative.filename().string()))
        noteUrl(Event::Changed, contentUrl(relative.parent_path() / pattern));
    scheduleFlush();
}

void MediaWatcher::scheduleFlush()
{
    if (m_timerRuns)
        return;
    m_timerRuns = true;
    m_timer.expires_after(settleTime);
    m_timer.async_wait([this, alive = std::weak_ptr(m_alive)](boost::system::error_code code) {
        if (!code && !alive.expired())
            flush();
    });
}

void MediaWatcher::noteUrl(Event event, const std::string& url)
{
    const auto [pending, fresh] = m_pending.emplace(url, event);
    if (fresh)
        return;
    if (pending->second == Event::Removed && event == Event::Added)
        pending->second = Event::Changed; // replaced by another file
    else if (!(pending->second == Event::Added && event == Event::Changed))
        pending->second = event;
}

void MediaWatcher::flush()
{
    m_timerRuns = false;
    const std::map<std::string, Event> events = std::exchange(m_pending, {});
    for (const auto& [url, event] : events)
        m_listener(event, url);
    tellFolder();
}

} // namespace vantrel::ombra
