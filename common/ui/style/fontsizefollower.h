#pragma once

#include "common/session/settings/fontsize.h"

#include <functional>

class QObject;

namespace vantrel {

/// Calls apply with the text size in force, now and after each change of it, for as long as context lives.
void followFontSize(QObject* context, std::function<void(FontSize)> apply);

/// The side of the square icon, in pixels, that goes with a line of text of this size.
int iconExtent(FontSize size);

/// A length of the Medium layout, in pixels, scaled to the size: Small 0.85, Medium 1, Large 1.3, Huge 1.65.
int scaled(int pixels, FontSize size);

} // namespace vantrel
