#pragma once

#include <QLineEdit>

namespace vantrel {

/// A line edit of the application. Escape takes back what was typed since it got the focus, or empties a
/// search field; where there is nothing to take back it goes on to the dialog.
class ZTEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit ZTEdit(QWidget* parent = nullptr);
    explicit ZTEdit(const QString& text, QWidget* parent = nullptr);

    /// For a search field: what it held when it got the focus is of no worth.
    void setEscapeClears(bool clears) { m_escapeClears = clears; }
    virtual void setObjectNames(const QString& base);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void colourPlaceholder();

    QString m_before;
    bool m_escapeClears = false;
};

} // namespace vantrel
