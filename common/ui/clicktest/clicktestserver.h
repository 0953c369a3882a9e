#pragma once

#include "common/ui/clicktest/clicktestrequest.h"

#include <QJsonArray>
#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

class QQuickItem;
class QTcpServer;
class QTcpSocket;
class QWidget;

namespace vantrel {

class UiFigures;

/// Lets a robot on this machine drive the running interface: one JSON object a request, on plain TCP,
/// loopback only. It lists widgets, menus, cells and declarative items with their geometry and synthesises
/// mouse and key events; beyond that it gives the pixels of a widget, the figures of the run and what stands
/// behind the interface, and sizes and closes windows. A request that makes no sense never closes the
/// connection. Owned by the main window; main thread.
class ClickTestServer : public QObject
{
    Q_OBJECT

public:
    /// port 0 picks a free one.
    ClickTestServer(QObject* parent, quint16 port);
    ~ClickTestServer() override;

    /// The port in use; 0 when it could not listen (which is logged).
    quint16 port() const;

public Q_SLOTS:
    void onConnection();
    void onClientData();

private:
    void answer(QTcpSocket* socket, const QJsonObject& request);
    void processRequestJson(const QJsonObject& json);
    void processRequest();
    void findWidgets();
    void findQmlItems();
    void buildReply();
    void handleMouse();
    void handleFirstWidget();
    void grabFirstWidget();
    void resizeFirstWindow();
    void handleFigures();

    QTcpServer* m_server;
    UiFigures* m_figures;
    ClickTestRequest m_request;
    QList<QPointer<QWidget>> m_widgets;
    QList<QPointer<QQuickItem>> m_items;
    QJsonArray m_results;
};

} // namespace vantrel
