#pragma once

#include <QObject>
#include <QPointer>

namespace vantrel {

class Configuration;
class GUIPlayback;
class ServerFileSystem;

/// Leaves the server's disk and line to what is on air: while program plays, transfers take no more than the
/// option says. The session owns it; main thread only.
class TransferLimit : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this.
    TransferLimit(Configuration* configuration, GUIPlayback* program, QObject* parent = nullptr);

    /// Holds for this one from now on; null for none.
    void setServer(ServerFileSystem* server);
    /// What transfers may take now; 0 for all.
    qint64 bytesPerSecond() const;

private:
    void apply();

    Configuration* m_configuration;
    GUIPlayback* m_program;
    QPointer<ServerFileSystem> m_server;
    qint64 m_applied = 0; // bytes per second
};

} // namespace vantrel
