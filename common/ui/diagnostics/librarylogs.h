#pragma once

namespace vantrel {

/// Leads the log lines of the rooms that know no Qt into Qt's message logger, and so into the log file.
/// Called once at start, before other threads run; the lines may come from any thread.
void routeLibraryLogs();

} // namespace vantrel
