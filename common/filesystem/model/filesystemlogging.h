#pragma once

#include <QLoggingCategory>

namespace vantrel {

Q_DECLARE_LOGGING_CATEGORY(lcFileSystem)

} // namespace vantrel
