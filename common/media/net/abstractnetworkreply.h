#pragma once

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QSharedPointer>

namespace vantrel {

/// An answer that is on its way or here; see AbstractNetworkAccessManager.
class AbstractNetworkReply : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual QByteArray readAll() = 0;
    virtual bool isRunning() const = 0;
    virtual void abort() = 0;
    virtual QNetworkReply::NetworkError error() const = 0;
    virtual QString errorString() const = 0;
    virtual QNetworkRequest request() const = 0;
    virtual QVariant attribute(QNetworkRequest::Attribute code) const = 0;

Q_SIGNALS:
    void readyRead();
    void finished();
};

using NetworkReplyPtr = QSharedPointer<AbstractNetworkReply>;

} // namespace vantrel
