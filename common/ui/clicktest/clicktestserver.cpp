#include "common/ui/clicktest/clicktestserver.h"

#include "common/ui/clicktest/clicktestevents.h"
#include "common/ui/clicktest/clicktestreport.h"
#include "common/ui/clicktest/clickteststate.h"
#include "common/ui/clicktest/uifigures.h"

#include <QApplication>
#include <QBuffer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLoggingCategory>
#include <QMenu>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace vantrel {

namespace {

Q_LOGGING_CATEGORY(log, "vantrel.uitest")

void traverseQQuickItem(QQuickItem* item, const ClickTestRequest& request, QList<QPointer<QQuickItem>>& found)
{
    if (!item || found.size() >= request.maxResults)
        return;
    if (request.matches(item))
        found.append(item);
    for (QQuickItem* child : item->childItems())
        traverseQQuickItem(child, request, found);
}

} // namespace

ClickTestServer::ClickTestServer(QObject* parent, quint16 port)
    : QObject(parent)
    , m_server(new QTcpServer(this))
    , m_figures(new UiFigures(this))
{
    connect(m_server, &QTcpServer::newConnection, this, &ClickTestServer::onConnection);
    if (!m_server->listen(QHostAddress::LocalHost, port))
        qCWarning(log) << "The UI test server cannot listen on port" << port << m_server->errorString();
}

ClickTestServer::~ClickTestServer() = default;

quint16 ClickTestServer::port() const
{
    return m_server->serverPort();
}

void ClickTestServer::onConnection()
{
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, this, &ClickTestServer::onClientData);
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void ClickTestServer::onClientData()
{
    auto* socket = qobject_cast<QTcpSocket*>(sender());
    if (!socket)
        return;
    const QByteArray bytes = socket->readAll();
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    qCDebug(log) << "Received: " << document;
    if (!document.isObject()) {
        qCInfo(log) << "Invalid request: " << bytes.left(200);
        socket->write("{}");
        return;
    }
    // Later, since what the event opens may run an event loop of its own: a menu, a drag, a file dialog. The
    // next request is then read in there.
    QTimer::singleShot(0, socket, [this, socket, request = document.object()] { answer(socket, request); });
}

void ClickTestServer::answer(QTcpSocket* socket, const QJsonObject& request)
{
    processRequestJson(request);
    // The event loop runs before the reply, so that a robot that reads it sees what its events did.
    const auto reply = [socket](const QJsonArray& results) {
        qCDebug(log) << "replied";
        socket->write(QJsonDocument(results).toJson(QJsonDocument::Compact));
        socket->flush();
    };
    if (!m_request.isEvent()) {
        processRequest();
        qCDebug(log) << "Reply: " << m_results;
        QTimer::singleShot(m_request.replyDelay(), socket, [reply, results = m_results] { reply(results); });
        return;
    }
    QTimer::singleShot(m_request.replyDelay(), socket, [reply] { reply({}); });
    qCDebug(log) << "Reply: " << QJsonArray();
    processRequest();
}

void ClickTestServer::processRequestJson(const QJsonObject& json)
{
    m_widgets.clear();
    m_items.clear();
    m_results = {};
    m_request = ClickTestRequest::fromJson(json);
}

void ClickTestServer::processRequest()
{
    findWidgets();
    findQmlItems();
    const QString& operation = m_request.operation;
    if (operation == QLatin1String("info"))
        buildReply();
    else if (operation == QLatin1String("key_press"))
        clicktest::handleKeyPress(QString(m_request.keyName));
    else if (operation == QLatin1String("focus") || operation == QLatin1String("raise") ||
             operation == QLatin1String("close"))
        handleFirstWidget();
    else if (operation == QLatin1String("grab"))
        grabFirstWidget();
    else if (operation.startsWith(QLatin1String("figures")))
        handleFigures();
    else if (operation == QLatin1String("state"))
        m_results.append(clicktest::stateJson());
    else if (operation == QLatin1String("resize"))
        resizeFirstWindow();
    else
        handleMouse();
}

void ClickTestServer::findWidgets()
{
    const QWidgetList all = QApplication::allWidgets();
    for (QWidget* widget : all) {
        if (m_widgets.size() >= m_request.maxResults)
            return;
        if (qobject_cast<QMenu*>(widget) || !m_request.matches(widget))
            continue;
        qCInfo(log) << "Found " << widget->objectName();
        m_widgets.append(widget);
    }
}

void ClickTestServer::findQmlItems()
{
    if (m_request.isOpen())
        return; // an open request is about widgets
    const QWidgetList all = QApplication::allWidgets();
    for (QWidget* widget : all) {
        auto* view = qobject_cast<QQuickWidget*>(widget);
        // From above the root object: beside it lies what it opens, its menus among it.
        if (view && view->rootObject() &&
            (m_request.rootItem.isEmpty() || view->objectName() == m_request.rootItem))
            traverseQQuickItem(view->quickWindow()->contentItem(), m_request, m_items);
    }
}

void ClickTestServer::buildReply()
{
    for (const QPointer<QWidget>& widget : std::as_const(m_widgets))
        m_results.append(clicktest::widgetJson(widget));
    clicktest::appendMenus(m_request, m_results);
    for (const QPointer<QWidget>& widget : std::as_const(m_widgets))
        clicktest::appendDelegates(widget, m_results);
    for (const QPointer<QQuickItem>& item : std::as_const(m_items))
        m_results.append(clicktest::quickItemJson(item));
}

void ClickTestServer::handleMouse()
{
    const ClickTestRequest request = m_request; // outlives the requests that an event loop in there takes
    if (const std::optional<QPoint> global = request.globalPosition())
        clicktest::handleMouse(request, *global);
}

/// The first found widget as the operator sees it: its pixels as a PNG in base64, and the texts of the named
/// labels in it, of the same moment.
void ClickTestServer::grabFirstWidget()
{
    if (m_widgets.isEmpty() || !m_widgets.first())
        return;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    m_widgets.first()->grab().save(&buffer, "PNG");
    QJsonObject texts;
    for (const QLabel* label : m_widgets.first()->findChildren<QLabel*>()) {
        if (!label->objectName().isEmpty())
            texts.insert(label->objectName(), label->text());
    }
    m_results.append(QJsonObject{{"objectName", m_widgets.first()->objectName()},
                                 {"texts", texts},
                                 {"png", QString::fromLatin1(png.toBase64())}});
}

/// The window of the first found widget, as its frame would let an operator size it, in pixels.
void ClickTestServer::resizeFirstWindow()
{
    if (!m_widgets.isEmpty() && m_widgets.first() && m_request.width > 0 && m_request.height > 0)
        m_widgets.first()->window()->resize(m_request.width, m_request.height);
}

void ClickTestServer::handleFigures()
{
    m_results.append(m_figures->toJson());
    if (m_request.operation == QLatin1String("figures_reset"))
        m_figures->reset();
    else if (m_request.operation == QLatin1String("figures_rest"))
        m_figures->rest();
}

void ClickTestServer::handleFirstWidget()
{
    if (m_widgets.isEmpty() || !m_widgets.first())
        return;
    QWidget* widget = m_widgets.first();
    if (m_request.operation == QLatin1String("focus")) {
        widget->setFocus(Qt::OtherFocusReason);
    } else if (m_request.operation == QLatin1String("close")) {
        widget->window()->close();
    } else {
        widget->activateWindow();
        widget->raise();
    }
}

} // namespace vantrel
