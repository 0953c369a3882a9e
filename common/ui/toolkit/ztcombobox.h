#pragma once

#include <QComboBox>

namespace vantrel {

/// A drop-down of the application. The wheel scrolls the panel around it unless the drop-down has the focus,
/// so that nothing changes by passing over it.
class ZTComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ZTComboBox(QWidget* parent = nullptr);
    void setObjectNames(const QString& base);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantrel
