#pragma once

#include <QPushButton>

namespace vantrel {

/// A button of the application. The dynamic style "class" chooses "green", "red", "cancel", "accent", "flat"
/// or "segment"; "keyboardfocus" is set while it holds a focus that came by Tab, for the focus ring.
class PushButton : public QPushButton
{
    Q_OBJECT

public:
    explicit PushButton(QWidget* parent = nullptr);
    explicit PushButton(const QString& text, QWidget* parent = nullptr);

    virtual void setObjectNames(const QString& base);
    void setStyleClass(const QString& name);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace vantrel
