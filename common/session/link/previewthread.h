#pragma once

#include "common/session/link/threadend.h"
#include "tarn/preview/audiolevels.h"
#include "tarn/preview/newestqueue.h"
#include "tarn/preview/previewclient.h"

#include <QElapsedTimer>
#include <QImage>
#include <QMetaType>
#include <QMutex>
#include <QPixmap>
#include <QThread>
#include <QTimer>
#include <boost/asio/ip/tcp.hpp>

#include <condition_variable>
#include <optional>
#include <string>

namespace vantrel {

/// Reads the server's live pictures and audio levels on a thread of its own and hands them to the main
/// thread, pictures as pixmaps. Only the newest waiting frame of each source, stream and format is kept, so
/// that a busy main thread never falls behind; frames of other formats are dropped. A stream that ends or
/// falls silent is opened again. The object lives on the main thread; the session owns it.
class PreviewThread : public QThread
{
    Q_OBJECT

public:
    /// previewPort: the TCP port of the server's preview stream.
    explicit PreviewThread(quint16 previewPort, QObject* parent = nullptr);
    ~PreviewThread() override;

    /// Reads from this server from now on, in place of an earlier one. Any thread; waits for the earlier run.
    void subscribe(const boost::asio::ip::address& address);
    /// Ends the stream. Any thread; does not wait.
    void unsubscribe();
    /// Whether the server answers elsewhere: only then its silence here is a fault of the stream.
    void setServerAnswers(bool answers);

Q_SIGNALS:
    void previewFrame(vantrel::PreviewFrame frame, QPixmap pixmap);
    /// source: the scene path of the playback that is heard.
    void levelsChanged(std::string source, vantrel::AudioLevels levels);
    void onPendingFrames();

protected:
    void run() override;

private:
    struct Pending
    {
        PreviewFrame frame;
        QImage image; // null for what cannot be shown
        std::optional<AudioLevels> levels;
        bool isOfOneKindWith(const Pending& other) const { return frame.isOfOneKindWith(other.frame); }
    };
    void onFrameAvailable();
    void processPending();
    void checkSilence();
    std::optional<boost::asio::ip::tcp::endpoint> endpoint() const;

    PreviewClient m_client;
    QElapsedTimer m_sinceFrame; // on the main thread, as the two below
    QTimer m_watch;
    bool m_serverAnswers = false;
    QMutex m_subscribing; // one at a time stops the thread and starts it anew
    ThreadEnd m_end;
    mutable QMutex m_mutex; // guards the fields below
    std::condition_variable_any
        m_wake; // out of the pause between two attempts; the thread sanitizer follows it
    NewestQueue<Pending> m_pending;
    bool m_posted = false; // a processPending() is on its way
    std::optional<boost::asio::ip::tcp::endpoint> m_endpoint;
    const quint16 m_previewPort;
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::PreviewFrame)
