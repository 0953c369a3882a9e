#pragma once

#include "common/media/net/abstractnetworkreply.h"

#include <QPointer>

namespace vantrel {

/// Wraps a reply of Qt and owns it.
class NetworkReply final : public AbstractNetworkReply
{
    Q_OBJECT

public:
    explicit NetworkReply(QPointer<QNetworkReply> reply, QObject* parent = nullptr);
    ~NetworkReply() override;

    QByteArray readAll() override;
    bool isRunning() const override;
    void abort() override;
    QNetworkReply::NetworkError error() const override;
    QString errorString() const override;
    QNetworkRequest request() const override;
    QVariant attribute(QNetworkRequest::Attribute code) const override;

private:
    QPointer<QNetworkReply> m_reply;
};

} // namespace vantrel
