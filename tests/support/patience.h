#pragma once

#include <QTest>

namespace vantrel::test {

/// For so long a test waits for what it does not time, in milliseconds: a machine that does much else may
/// take a while.
inline constexpr int longestWait = 20000;

} // namespace vantrel::test

// Qt's own have five seconds.
#undef QTRY_VERIFY
#undef QTRY_VERIFY2
#undef QTRY_COMPARE
#define QTRY_VERIFY(expr) QTRY_VERIFY_WITH_TIMEOUT(expr, vantrel::test::longestWait)
#define QTRY_VERIFY2(expr, message) QTRY_VERIFY2_WITH_TIMEOUT(expr, message, vantrel::test::longestWait)
#define QTRY_COMPARE(expr, expected) QTRY_COMPARE_WITH_TIMEOUT(expr, expected, vantrel::test::longestWait)
