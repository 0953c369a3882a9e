#pragma once

#include <QLabel>

namespace vantrel {

/// A label that shows its text as it is: a name from the server never becomes markup. The dynamic style
/// "class" chooses among "caption", "title", "display", "section", "dim" and
/// "error".
class ZTLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ZTLabel(QWidget* parent = nullptr);
    explicit ZTLabel(const QString& text, QWidget* parent = nullptr);

    void setObjectNames(const QString& base);
    void setStyleClass(const QString& name);

Q_SIGNALS:
    void mouseDoubleClicked();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
};

} // namespace vantrel
