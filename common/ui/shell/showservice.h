#pragma once

#include <QByteArrayList>
#include <QObject>
#include <QString>
#include <QUrlQuery>

#include <functional>

class QNetworkReply;

namespace vantrel {

class Session;

/// Asks the server that the session is connected to for what it keeps of shows. Owned by who uses it; main
/// thread.
class ShowService : public QObject
{
    Q_OBJECT

public:
    /// session: must outlive this.
    ShowService(Session* session, QObject* parent);

    struct Answer
    {
        int status = 0; // of HTTP; 0 when none came
        QString error;  // a sentence, in the server's own words where it has any; empty where it was done
        QByteArrayList pieces; // of the body, which is large: a show
        QString netError;      // as the network tells it
        QStringList missing;   // media: what it was refused for, or what is done lacks
        bool isStopped = false;

        bool isDone() const { return error.isEmpty(); }
        /// The server has looked at it and would rather not; it can be told to all the same.
        bool isConflict() const { return status == 409; }
        QByteArray body() const { return pieces.join(); }
    };
    using Then = std::function<void(const Answer&)>;

    /// path: below "/api/brume/v1". method: "GET", "POST" or "DELETE". command: what the operator asked for,
    /// which is refused aloud while the server does not answer; then is not called then, and null returned.
    QNetworkReply* ask(const QString& command, const QByteArray& method, const QString& path,
                       const QUrlQuery& query, const QByteArray& body, Then then);
    /// The answer is not waited for any longer.
    static void stop(QNetworkReply* reply);

private:
    static void finish(const QNetworkReply& reply, Answer& answer);

    Session* m_session;
};

} // namespace vantrel
