#pragma once

#include <QPixmap>
#include <QWidget>

namespace vantrel {

/// A thumbnail in a frame of 16 to 9, whole and centred on black; its size follows the text size.
class ThumbnailLabel : public QWidget
{
    Q_OBJECT

public:
    explicit ThumbnailLabel(QWidget* parent = nullptr);

    void setPixmap(const QPixmap& pixmap);
    const QPixmap& pixmap() const { return m_pixmap; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_pixmap;
};

} // namespace vantrel
