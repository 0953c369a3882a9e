#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>

namespace vantrel::ombra {

/// Who may log in; kept in "credentials.json" of the state folder, else as the machine leaves the factory.
struct FtpCredentials
{
    std::string username = "opsadmin";
    std::string password = "tnempius";

    /// False, with the reason, when the file is there and of no use.
    bool read(const std::filesystem::path& file, std::string* error);
};

/// The media folder over FTP: a server of its own process (ombra_ftp.py beside this program, run by Python),
/// which is started again when it ends, and ends with this one, however that goes. The listening socket is
/// ours: the port is known at once and stays. On the thread of its io_context.
class FtpService
{
public:
    /// trouble hears a sentence when the server cannot be kept running, and an empty one when it runs again.
    FtpService(boost::asio::io_context& io, std::filesystem::path folder, FtpCredentials credentials,
               std::function<void(const std::string&)> trouble);
    ~FtpService();
    FtpService(const FtpService&) = delete;
    FtpService& operator=(const FtpService&) = delete;

    /// Port 0 takes a free one. False, and a sentence in error, when the address cannot be had.
    bool listen(const boost::asio::ip::address& address, unsigned short port, std::string* error);
    unsigned short port() const;
    /// Of the server's process; 0 while there is none.
    pid_t processId() const { return m_pid; }

private:
    void start();
    bool spawn(int input, int output);
    void handOver(int input);
    void read();
    void logLines(std::string_view piece);
    void ended();
    void stop();

    boost::asio::io_context& m_io;
    std::filesystem::path m_folder;
    FtpCredentials m_credentials;
    std::function<void(const std::string&)> m_trouble;
    boost::asio::ip::tcp::acceptor m_acceptor;
    boost::asio::posix::stream_descriptor m_output; // of the process: what it says, and its end
    boost::asio::steady_timer m_timer;
    std::array<char, 4096> m_buffer{};
    std::string m_line;
    pid_t m_pid = 0;
    int m_input = -1;     // its standard input, open as long as it is to run
    int m_shortLives = 0; // in a row
    std::chrono::steady_clock::time_point m_started;
};

} // namespace vantrel::ombra
