#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class QNetworkAccessManager;
class QNetworkReply;

namespace vantrel {

/// Asks a server's web side every two seconds whether it is there, while its link does not answer: so that
/// the operator learns which half is gone. Owned by the session; main thread.
class WebProbe : public QObject
{
    Q_OBJECT

public:
    /// manager: must outlive this. port: of the server's REST resources.
    WebProbe(QNetworkAccessManager* manager, quint16 port, QObject* parent = nullptr);
    ~WebProbe() override;

    /// Empty stops.
    void setHost(const QString& host);

Q_SIGNALS:
    /// After each question.
    void answered(bool answers);

private:
    void ask();

    QNetworkAccessManager* m_manager;
    QPointer<QNetworkReply> m_reply;
    QTimer m_timer;
    QString m_host;
    const quint16 m_port;
};

} // namespace vantrel
