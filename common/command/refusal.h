#pragma once

class QString;

namespace vantrel {

/// Tells the operator that a command was not done, and why. Both are plain text; why is a sentence. Main
/// thread.
void tellNotDone(const QString& command, const QString& why);

} // namespace vantrel
