#pragma once

#include <QLoggingCategory>

namespace vantrel {

Q_DECLARE_LOGGING_CATEGORY(lcOutputs)

} // namespace vantrel
