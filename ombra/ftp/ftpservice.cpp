#include "ombra/ftp/ftpservice.h"

#include "ombra/base/atomicfile.h"
#include "ombra/base/takeport.h"
#include "tarn/json/json.h"
#include "tarn/log/log.h"

#include <boost/asio/buffer.hpp>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantrel::ombra {

using namespace std::chrono_literals;
using boost::asio::ip::tcp;

namespace {

constexpr const char* module = "vantrel.ftp";
constexpr const char* python = "/usr/bin/python3"; // the one that Debian's packages are for
constexpr int listeningFd = 3;
constexpr auto shortLife = 10s; // what ends earlier is waited for longer and longer
constexpr auto firstPause = 200ms;
constexpr int maxDoublings = 5;
constexpr int troubledLives = 3; // so many in a row are told
constexpr std::size_t maxCredentials = 64 * 1024;
constexpr std::size_t maxLine = 4096;

std::string scriptPath()
{
    std::error_code code;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", code);
    return (self.parent_path() / "ombra_ftp.py").string();
}

/// Nothing else that is open here is the child's.
void closeOthers()
{
    if (::close_range(listeningFd + 1, ~0u, 0) == 0)
        return;
    for (int fd = listeningFd + 1; fd < 4096; ++fd) // an old kernel
        ::close(fd);
}

} // namespace

bool FtpCredentials::read(const std::filesystem::path& file, std::string* error)
{
    std::string why;
    const auto text = readWholeFile(file, maxCredentials, &why);
    if (!text) {
        *error = why;
        return why.empty();
    }
    Json json;
    const Json* const name = Json::parseString(*text, json) ? json.find("username") : nullptr;
    const Json* const word = name ? json.find("password") : nullptr;
    if (!name || !word || !name->isString() || !word->isString()) {
        *error = file.string() + " must hold \"username\" and \"password\"";
        return false;
    }
    username = name->asString();
    password = word->asString();
    return true;
}

FtpService::FtpService(boost::asio::io_context& io, std::filesystem::path folder, FtpCredentials credentials,
                       std::function<void(const std::string&)> trouble)
    : m_io(io)
    , m_folder(std::move(folder))
    , m_credentials(std::move(credentials))
    , m_trouble(std::move(trouble))
    , m_acceptor(io)
    , m_output(io)
    , m_timer(io)
{
}

FtpService::~FtpService()
{
    stop();
}

bool FtpService::listen(const boost::asio::ip::address& address, unsigned short port, std::string* error)
{
    boost::system::error_code code;
    if (!takePort(m_acceptor, {address, port}, code)) {
        *error = "cannot serve files on " + address.to_string() + " port " + std::to_string(port) + ": " +
                 code.message();
        return false;
    }
    start();
    return true;
}

unsigned short FtpService::port() const
{
    boost::system::error_code code;
    return m_acceptor.is_open() ? m_acceptor.local_endpoint(code).port() : 0;
}

void FtpService::start()
{
    int input[2], output[2];
    if (::pipe2(input, O_CLOEXEC) != 0)
        return ended();
    if (::pipe2(output, O_CLOEXEC) != 0) {
        ::close(input[0]);
        ::close(input[1]);
        return ended();
    }
    m_started = std::chrono::steady_clock::now();
    m_input = input[1];
    const bool isStarted = spawn(input[0], output[1]);
    ::close(input[0]);
    ::close(output[1]);
    m_output.assign(output[0]);
    if (!isStarted)
        return ended();
    handOver(m_input);
    read();
}

/// Between fork and exec only what a process of many threads may do there.
bool FtpService::spawn(int input, int output)
{
    const std::string script = scriptPath();
    const char* const arguments[] = {python, "-E", script.c_str(), nullptr};
    const char* const environment[] = {"LC_ALL=C.UTF-8", "PYTHONUTF8=1", nullptr};
    const int listening = m_acceptor.native_handle();
    const pid_t parent = ::getpid();
    m_pid = ::fork();
    if (m_pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const bool isReady = ::getppid() == parent && ::dup2(input, STDIN_FILENO) >= 0 &&
                             ::dup2(output, STDOUT_FILENO) >= 0 && ::dup2(output, STDERR_FILENO) >= 0 &&
                             ::dup2(listening, listeningFd) >= 0 && ::fcntl(listeningFd, F_SETFD, 0) == 0;
        if (isReady) {
            closeOthers();
            std::signal(SIGPIPE, SIG_DFL);
            ::execve(python, const_cast<char**>(arguments), const_cast<char**>(environment));
        }
        ::_exit(127);
    }
    if (m_pid < 0)
        m_pid = 0;
    return m_pid != 0;
}

/// The password goes through a pipe: neither the command line nor the environment of a process is secret.
void FtpService::handOver(int input)
{
    const Json settings = Json::object({{"folder", m_folder.string()},
                                        {"username", m_credentials.username},
                                        {"password", m_credentials.password}});
    if (!writeAll(input, settings.toString() + "\n"))
        Log::write(LogLevel::Warning, module, "the file server did not take its settings");
}

void FtpService::read()
{
    m_output.async_read_some(boost::asio::buffer(m_buffer),
                             [this](boost::system::error_code code, std::size_t count) {
                                 if (code == boost::asio::error::operation_aborted)
                                     return;
                                 if (code)
                                     return ended();
                                 logLines({m_buffer.data(), count});
                                 read();
                             });
}

void FtpService::logLines(std::string_view piece)
{
    for (const char c : piece) {
        if (c == '\n' || m_line.size() >= maxLine) {
            Log::write(LogLevel::Info, module, m_line);
            m_line.clear();
        }
        if (c != '\n')
            m_line += c;
    }
}

void FtpService::ended()
{
    stop();
    const bool isShort = std::chrono::steady_clock::now() - m_started < shortLife;
    m_shortLives = isShort ? m_shortLives + 1 : 1;
    Log::write(LogLevel::Warning, module, "the file server ended and is started again");
    if (m_shortLives == troubledLives)
        m_trouble("Files cannot be copied to this server or from it: its file server does not stay up.");
    m_timer.expires_after(firstPause * (1 << std::min(m_shortLives - 1, maxDoublings)));
    m_timer.async_wait([this](boost::system::error_code code) {
        if (code)
            return;
        start();
        m_timer.expires_after(shortLife);
        m_timer.async_wait([this](boost::system::error_code late) {
            if (!late && m_pid != 0)
                m_trouble({});
        });
    });
}

void FtpService::stop()
{
    m_timer.cancel();
    boost::system::error_code code;
    m_output.close(code);
    if (m_input >= 0)
        ::close(std::exchange(m_input, -1));
    if (m_pid == 0)
        return;
    ::kill(m_pid, SIGKILL);
    while (::waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_pid = 0;
}

} // namespace vantrel::ombra
