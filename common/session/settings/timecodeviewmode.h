#pragma once

#include <QMetaType>

namespace vantrel {

/// How times are shown; the numbers stand in the settings file.
enum class TimecodeViewMode : int { Time = 0, Frames = 1, NDF = 2, DF = 3 };

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::TimecodeViewMode)
