#pragma once

#include "common/filesystem/operations/runnableoperation.h"

#include <QTest>

namespace vantrel::test {

/// Runs it, and waits until both its ends are reached: a local disk is asked first.
inline bool begin(RunnableOperation& operation)
{
    operation.run();
    return QTest::qWaitFor([&operation] { return !operation.isReaching(); });
}

} // namespace vantrel::test
