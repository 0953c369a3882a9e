#pragma once

#include <QString>

namespace vantrel::test {

/// The platform that needs no display, with a screen that holds the whole window: on its own small one a
/// window that fits itself to the screen would be cut. Writes the description into the folder.
QString offscreenDesk(const QString& folder);

} // namespace vantrel::test
