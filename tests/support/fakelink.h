#pragma once

#include "tarn/json/patch.h"

#include <QByteArray>
#include <QTcpServer>

namespace vantrel::test {

/// A server's end of the scene link that answers the first bytes of each client with prepared bytes, and
/// nothing else.
class FakeLink : public QTcpServer
{
public:
    explicit FakeLink(QByteArray answer, QObject* parent = nullptr);
    int answered() const { return m_answered; }

private:
    QByteArray m_answer;
    int m_answered = 0;
};

/// A patch of so many operations that builds a scene: surfaces, and their names changed one by one.
Patch largeScene(int operations);

} // namespace vantrel::test
