#pragma once

#include <QSplitter>

namespace vantrel {

/// A splitter with the application's handles, which show themselves under the mouse.
class ZTSplitter : public QSplitter
{
    Q_OBJECT

public:
    explicit ZTSplitter(QWidget* parent = nullptr);
    explicit ZTSplitter(Qt::Orientation orientation, QWidget* parent = nullptr);

    void setObjectNames(const QString& base);

    /// The position in pixels that the handle can take closest to the fraction (0 to 1) of the splitter's
    /// length. Handle 1 stands between the first two widgets; 0 for a handle that does not exist.
    int getClosestPixelPosition(int handle, double fraction);
    /// Moves the handle to the pixel position, as far as the widgets' minimum sizes allow.
    void moveHandle(int handle, int pixels);

protected:
    bool event(QEvent* event) override;
};

} // namespace vantrel
