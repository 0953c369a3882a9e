#pragma once

#include "common/session/settings/fontsize.h"

#include <QMap>
#include <QSize>

#include <functional>

class QObject;
class QWidget;

namespace vantrel {

/// Calls apply with the text size in force, now and after each change of it, for as long as context lives.
void followFontSize(QObject* context, std::function<void(FontSize)> apply);

/// Keeps the widget's fixed size at the one that the map holds for the text size in force, in pixels.
void followFixedSize(QWidget* widget, const QMap<FontSize, QSize>& sizes);

/// Keeps the dynamic style "fontsize" of the widget at "small", "medium", "large" or "huge".
void followFontSizeStyle(QWidget* widget);

/// The side of the square icon, in pixels, that goes with a line of text of this size.
int iconExtent(FontSize size);

/// A length of the Medium layout, in pixels, scaled to the size: Small 0.85, Medium 1, Large 1.3, Huge 1.65.
int scaled(int pixels, FontSize size);

} // namespace vantrel
