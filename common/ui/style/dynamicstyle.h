#pragma once

class QVariant;
class QWidget;

namespace vantrel {

/// Sets a dynamic property that the style sheet selects on ("hover", "pressed", "hasfocus", "keyboardfocus",
/// "mode", "fontsize", "class", "title", "propertyValue", ...) and repolishes the widget. An unchanged value
/// costs nothing.
void setDynamicStyle(QWidget* widget, const char* property, const QVariant& value);

} // namespace vantrel
