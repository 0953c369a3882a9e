#pragma once

#include "common/session/settings/fontsize.h"

#include <QString>

class QApplication;

namespace vantrel {

/// The look of the application: one style sheet whose tokens are the names of the colour table
/// ("@Zt_orange@") and the lengths of a text size ("@body@", "@pad@"), replaced when it is loaded.
class StyleSheet
{
public:
    /// The text of the sheet for one text size. A token without a meaning is logged and becomes empty.
    static QString load(FontSize size);

    /// A length of the sheet ("body", "pad") at a text size, in pixels; 0 for a name without a meaning.
    static int length(const QString& token, FontSize size);

    /// Gives all that there is the sheet for a text size.
    static void renew(QApplication& application, FontSize size);

    /// Dresses the application: base style, palette, font and sheet, and follows the text size from then on.
    static void apply(QApplication& application);
};

} // namespace vantrel
