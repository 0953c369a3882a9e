#pragma once

#include <QMetaType>
#include <QVariant>

namespace vantrel {

/// The four text sizes an operator chooses from; the numbers stand in the settings file.
enum class FontSize : int { Small = 0, Medium = 1, Large = 2, Huge = 3 };

/// The size a stored value means; the default, Medium, for anything that is no size.
FontSize fontSizeFrom(const QVariant& value);

/// "small", "medium", "large", "huge": what the style sheet selects on.
QString toString(FontSize size);

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::FontSize)
