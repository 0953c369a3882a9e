#include "common/ui/toolkit/ztedit.h"

#include <QKeyEvent>

namespace vantrel {

ZTEdit::ZTEdit(QWidget* parent)
    : ZTEdit(QString(), parent)
{
}

ZTEdit::ZTEdit(const QString& text, QWidget* parent)
    : QLineEdit(text, parent)
{
}

void ZTEdit::setObjectNames(const QString& base)
{
    setObjectName(base);
}

void ZTEdit::focusInEvent(QFocusEvent* event)
{
    m_before = text();
    QLineEdit::focusInEvent(event);
}

void ZTEdit::keyPressEvent(QKeyEvent* event)
{
    // Unchanged text lets Escape through, to close the dialog around it.
    const QString before = m_escapeClears ? QString() : m_before;
    if (event->key() == Qt::Key_Escape && !isReadOnly() && text() != before) {
        setText(before);
        return;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace vantrel
