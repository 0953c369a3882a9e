#pragma once

#include <QAbstractButton>
#include <QColor>

namespace vantrel {

/// A colour as a swatch; a click, or Space, opens a chooser. What is translucent shows a chequer beneath.
class ColorBox : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged USER true)

public:
    explicit ColorBox(QWidget* parent = nullptr);
    explicit ColorBox(const QColor& color, QWidget* parent = nullptr);

    const QColor& color() const { return m_color; }
    /// An invalid colour is ignored.
    void setColor(const QColor& color);
    /// Whether the chooser leaves the transparency out.
    void setOpaque(bool opaque) { m_opaque = opaque; }
    void setObjectNames(const QString& base);
    QSize sizeHint() const override;

Q_SIGNALS:
    void colorChanged(const QColor& color);
    /// A choice by the operator alone, after colorChanged.
    void colorEdited(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void openChooser();
    QColor borderColor() const;

    QColor m_color = Qt::black;
    bool m_opaque = false;
};

} // namespace vantrel
