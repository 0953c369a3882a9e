#pragma once

#include <QLabel>

#include <memory>

namespace vantrel::gallery {

/// A picture of a window, such as a dialog or a menu, as part of a page. It is drawn anew at each text size.
class PictureOf : public QLabel
{
    Q_OBJECT

public:
    explicit PictureOf(std::unique_ptr<QWidget> window, QWidget* parent = nullptr);
    ~PictureOf() override;

private:
    void redraw();

    std::unique_ptr<QWidget> m_window;
};

} // namespace vantrel::gallery
