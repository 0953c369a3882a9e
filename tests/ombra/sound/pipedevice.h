#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

#include <atomic>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace vantrel::ombra::test {

/// A sound device that is a pipe: SDL's driver for files writes into it, and it takes 48,000 frames a second
/// by a clock of its own, which keeps to that however late its thread comes.
class PipeDevice
{
public:
    PipeDevice(const QString& path, int channels)
        : m_bytesASecond(48000.0 * channels * sizeof(float))
    {
        const QByteArray name = path.toLocal8Bit();
        ::mkfifo(name.constData(), 0600);
        m_pipe = ::open(name.constData(), O_RDWR | O_NONBLOCK); // for both: it never ends
        ::fcntl(m_pipe, F_SETPIPE_SZ, 4096);
        m_thread = std::thread([this] { run(); });
    }
    ~PipeDevice()
    {
        m_stop = true;
        m_thread.join();
        ::close(m_pipe);
    }
    /// Takes nothing any more, and lets whoever writes wait.
    void hang() { m_hangs = true; }

    QByteArray heard() const
    {
        const std::lock_guard lock(m_mutex);
        return m_heard;
    }
    double seconds() const { return double(heard().size()) / m_bytesASecond; }

private:
    void run()
    {
        QElapsedTimer clock;
        double taken = 0;
        for (char bytes[4096]; !m_stop; ::usleep(1000)) {
            if (!clock.isValid())
                clock.start();
            const double due = double(clock.nsecsElapsed()) / 1e9 * m_bytesASecond;
            while (!m_hangs && taken < due) {
                const ssize_t count = ::read(m_pipe, bytes, sizeof bytes);
                if (count <= 0 && due - taken > 0.1 * m_bytesASecond) { // it played nothing, and goes on now
                    clock.restart();
                    taken = 0;
                }
                if (count <= 0)
                    break;
                taken += double(count);
                const std::lock_guard lock(m_mutex);
                m_heard.append(bytes, count);
            }
        }
    }

    const double m_bytesASecond;
    int m_pipe = -1;
    mutable std::mutex m_mutex;
    QByteArray m_heard;
    std::atomic<bool> m_stop{false}, m_hangs{false};
    std::thread m_thread;
};

} // namespace vantrel::ombra::test
