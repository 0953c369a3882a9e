#pragma once

#include <QString>

namespace vantrel {

/// A text of others as it may stand on the screen: without control characters, and without those that turn
/// the direction of what follows, which could make one name look like another.
QString shownText(QString text);

} // namespace vantrel
