#include "common/ui/gallery/pictureof.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QTimer>

namespace vantrel::gallery {

PictureOf::PictureOf(std::unique_ptr<QWidget> window, QWidget* parent)
    : QLabel(parent)
    , m_window(std::move(window))
{
    // Later: the style sheet follows the text size too, and must be in force by then.
    followFontSize(this, [this](FontSize) { QTimer::singleShot(0, this, &PictureOf::redraw); });
    redraw();
}

PictureOf::~PictureOf() = default;

void PictureOf::redraw()
{
    m_window->ensurePolished();
    if (auto* dialog = qobject_cast<ZTDialog*>(m_window.get()))
        dialog->fitToContent();
    else
        m_window->adjustSize();
    setPixmap(m_window->grab());
}

} // namespace vantrel::gallery
