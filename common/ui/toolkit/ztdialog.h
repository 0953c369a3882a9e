#pragma once

#include <QDialog>

#include <optional>

class QVBoxLayout;

namespace vantrel {

class PushButton;
class ZTLabel;

/// The frame of all dialogs: a title, a description, content, and the accept and cancel buttons. It is moved
/// by its title, opens at the foot of the window that it is over, so that the pictures stay in sight, or in
/// the middle of another dialog, and never spins an event loop of its own: use open() or show() and the
/// signals. Object names are base + "-title", "-accept-button" and "-cancel-button".
class ZTDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ZTDialog(QWidget* parent = nullptr);
    explicit ZTDialog(const QString& title, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const;
    /// Plain text under the title; an empty one hides it.
    void setDescription(const QString& text);
    QString description() const;
    void setAcceptText(const QString& text);
    /// An empty text hides the button.
    void setCancelText(const QString& text);
    void setAcceptEnabled(bool enabled);
    /// The accept button's dynamic style "class": "accent" at first; "green", "red", "cancel".
    void setAcceptClass(const QString& name);
    /// Whether the accept button also closes the dialog; it does at first.
    void setClosesOnAccept(bool closes) { m_closesOnAccept = closes; }

    /// Where the dialog's own widgets go.
    QVBoxLayout* contentLayout() const { return m_content; }
    PushButton* acceptButton() const { return m_accept; }
    PushButton* cancelButton() const { return m_cancel; }
    /// A further button left of the others.
    void addButton(PushButton* button);
    Q_INVOKABLE virtual void setObjectNames(const QString& base);
    /// As large as the content asks for, but nine tenths of the screen at most.
    void fitToContent();
    /// Where it opens, for its size now.
    void place();
    /// It opens beside what is kept uncovered of the window, where there is room for that: its question is
    /// about what is seen there.
    void setBeside() { m_isBeside = true; }

Q_SIGNALS:
    /// The accept button was pressed (before the dialog closes).
    void confirmed();

protected:
    ZTLabel* titleLabel() const { return m_title; }
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void onAccept();
    void moveOntoScreen(QPoint place);
    std::optional<int> lowestBottom() const;

    ZTLabel* m_title;
    ZTLabel* m_description;
    QVBoxLayout* m_content;
    QWidget* m_buttons;
    PushButton* m_accept;
    PushButton* m_cancel;
    QPoint m_grip;
    bool m_closesOnAccept = true;
    bool m_isBeside = false;
};

} // namespace vantrel
