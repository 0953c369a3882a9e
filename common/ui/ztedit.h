#pragma once

#include <QLineEdit>

namespace vantrel {

/// A line edit of the application. Escape takes back what was typed since it got the focus.
class ZTEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit ZTEdit(QWidget* parent = nullptr);
    explicit ZTEdit(const QString& text, QWidget* parent = nullptr);

    virtual void setObjectNames(const QString& base);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString m_before;
};

} // namespace vantrel
