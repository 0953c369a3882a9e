#pragma once

class QColor;
class QPainter;
class QPixmap;
class QRect;
class QRectF;

namespace vantrel {

/// Draws a part of a picture into the target, smoothly and on this thread alone. What Qt's painter scales in
/// one go it shares out among the threads of the global pool and waits for them: where other work keeps the
/// processors, the window would stand still for as long as those threads wait for one.
void drawSmoothly(QPainter& painter, const QRectF& target, const QPixmap& picture, const QRectF& part);
void drawSmoothly(QPainter& painter, const QRectF& target, const QPixmap& picture);
/// The same of a box with round corners and softened edges, by the painter's pen and brush.
void drawRounded(QPainter& painter, const QRectF& box, double radius);
/// The same of a box in a colour that lets what lies below through.
void fillThrough(QPainter& painter, const QRect& box, const QColor& colour);

} // namespace vantrel
