#pragma once

namespace vantrel {

/// The columns of the one row that holds the server's start-up settings.
enum ServerConfigurationColumn : int {
    AutoSaveColumn = 0,
    AutoStartShowColumn = 1,
    AutoStartPlayStateColumn = 2,
    AutoStartShowListColumn = 3,
};

} // namespace vantrel
