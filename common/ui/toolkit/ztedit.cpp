#include "common/ui/toolkit/ztedit.h"

#include "common/ui/style/colors.h"

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

bool ZTEdit::event(QEvent* event)
{
    const bool handled = QLineEdit::event(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::Polish)
        colourPlaceholder();
    return handled;
}

/// A style sheet gives it half of the text's colour, which is too little to be read.
void ZTEdit::colourPlaceholder()
{
    const QColor wanted = colors::getColor(colors::Zt_white_70);
    if (palette().color(QPalette::PlaceholderText) == wanted)
        return;
    QPalette readable = palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        readable.setColor(group, QPalette::PlaceholderText, wanted);
    setPalette(readable);
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
