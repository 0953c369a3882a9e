#pragma once

#include <QRegularExpression>
#include <QTest>

namespace vantrel::test {

/// Announces one warning that holds the text; the running test function fails when it does not come.
inline void expectLoggedWarning(const QString& part)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QRegularExpression::escape(part)));
}

} // namespace vantrel::test
