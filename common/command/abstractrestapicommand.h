#pragma once

#include "common/command/abstractsessioncommand.h"
#include "tarn/scene/variant.h"

#include <QJsonObject>
#include <QNetworkReply>
#include <QObject>
#include <QUrl>

#include <memory>

namespace vantrel {

class AbstractNetworkReply;

/// A command that writes by one REST request each way. Without undo data it leaves the stack after its first
/// run.
class AbstractRestApiCommand : public QObject, public AbstractSessionCommand
{
    Q_OBJECT

public:
    explicit AbstractRestApiCommand(QUndoCommand* parent = nullptr);

    /// verb is "GET", "POST" or "PATCH"; the request goes to baseUrl + path with the object as compact JSON.
    void init(const QString& baseUrl, const QString& verb, const QString& path, const QJsonObject& body);
    /// The same with an object of strings as body.
    void initVarMap(const QString& baseUrl, const QString& verb, const QString& path, const VariantMap& body);
    void setUndo(const QString& verb, const QString& path, const QJsonObject& body);
    void setUndoVarMap(const QString& verb, const QString& path, const VariantMap& body);

    virtual bool isUndoSupported() const { return m_undo.supported; }
    bool leavesNoTrace() const override { return !isUndoSupported(); }
    void redo() override;
    virtual void redoResult(const QJsonObject& object);
    void undo() override;
    virtual void undoResult(const QJsonObject& object);
    virtual void redoNetworkError(QNetworkReply::NetworkError code, const QString& text);
    virtual void undoNetworkError(QNetworkReply::NetworkError code, const QString& text);

protected:
    struct ParsedError
    {
        bool hasError = false; // the answer has the shape {"result": {"success": bool, ...}}
        bool success = false;
        QString code;
        QString text;
    };
    static ParsedError parseError(const QJsonObject& object);

private:
    struct Request
    {
        bool supported = false;
        QString verb;
        QUrl url;
        QByteArray body;
    };
    using Result = void (AbstractRestApiCommand::*)(const QJsonObject&);
    using NetworkError = void (AbstractRestApiCommand::*)(QNetworkReply::NetworkError, const QString&);
    void send(const Request& request, Result result, NetworkError error);

    QString m_baseUrl;
    Request m_redo;
    Request m_undo;
};

} // namespace vantrel
