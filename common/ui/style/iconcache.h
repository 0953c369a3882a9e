#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

namespace vantrel {

/// The drawings of the application in any colour and size, rendered once each. Main thread only.
class IconCache
{
public:
    /// ":/icons/<name>.svg"; a text that is a path already stays as it is.
    static QString path(const QString& name);

    /// The drawing in one colour; size in logical pixels, rendered for the given device pixel ratio. Where
    /// the drawing is translucent it stays so. A null pixmap and a warning when there is no such drawing.
    static QPixmap pixmap(const QString& name, const QColor& colour, const QSize& size,
                          qreal devicePixelRatio = 1.0);

    /// As pixmap, in the drawing's own colours.
    static QPixmap original(const QString& name, const QSize& size, qreal devicePixelRatio = 1.0);
};

/// An icon in one colour, with its disabled form: the same drawing at 40 %. Size in logical pixels.
QIcon tintedIcon(const QString& name, const QColor& colour, const QSize& size);

/// As above, in the colour of text and the size of the text in force.
QIcon tintedIcon(const QString& name);

} // namespace vantrel
