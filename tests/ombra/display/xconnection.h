#pragma once

#include <QImage>
#include <QRect>
#include <QString>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace vantrel::test {

/// A client of an X server. The thread that made it.
struct XConnection
{
    explicit XConnection(const QString& name)
        : display(XOpenDisplay(qPrintable(name)))
    {
    }
    ~XConnection()
    {
        if (display)
            XCloseDisplay(display);
    }
    XConnection(const XConnection&) = delete;

    ::Window root() const { return DefaultRootWindow(display); }
    /// What stands there; null beyond its edges.
    QImage grab(const QRect& area) const
    {
        XImage* seen = XGetImage(display, root(), area.x(), area.y(), unsigned(area.width()),
                                 unsigned(area.height()), AllPlanes, ZPixmap);
        if (!seen)
            return {};
        const QImage picture = QImage(reinterpret_cast<const uchar*>(seen->data), seen->width, seen->height,
                                      seen->bytes_per_line, QImage::Format_RGB32)
                                   .copy();
        XDestroyImage(seen);
        return picture;
    }

    ::Display* display; // null where there is none of that name
};

} // namespace vantrel::test
