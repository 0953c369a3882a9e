#pragma once

#include <QCheckBox>

namespace vantrel {

/// A check box of the application; its tick is drawn by code, so that it follows the text size.
class ZTCheckBox : public QCheckBox
{
    Q_OBJECT

public:
    explicit ZTCheckBox(QWidget* parent = nullptr);
    explicit ZTCheckBox(const QString& text, QWidget* parent = nullptr);
    void setObjectNames(const QString& base);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantrel
