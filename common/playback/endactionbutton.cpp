#include "common/playback/endactionbutton.h"

#include "common/ui/style/spacing.h"

#include <utility>

namespace vantrel {

EndActionButton::EndActionButton(const QString& offIcon, const QString& onIcon, const QString& word,
                                 const QString& tip, QWidget* parent)
    : IconButton(parent)
    , m_tip(tip)
{
    setToggleIcons(onIcon, offIcon);
    setText(word);
    setToolTip(tip);
    setAccessibleName(tip);
}

void EndActionButton::setReason(const QString& reason)
{
    setToolTip(reason.isEmpty() ? m_tip : m_tip + u'\n' + reason);
}

void EndActionButton::setShowsWord(bool shows)
{
    if (std::exchange(m_showsWord, shows) == shows)
        return;
    setStyleClass(shows ? QStringLiteral("segment") : QString());
    updateGeometry();
    update();
}

int EndActionButton::wordWidth() const
{
    ensurePolished();
    return fontMetrics().horizontalAdvance(text()) + 3 * spacing::tight;
}

QSize EndActionButton::sizeHint() const
{
    const QSize icon = IconButton::sizeHint();
    return m_showsWord ? QSize(wordWidth(), icon.height() - 4) : icon; // the frame around them takes the rest
}

void EndActionButton::paintEvent(QPaintEvent* event)
{
    if (m_showsWord)
        QPushButton::paintEvent(event);
    else
        IconButton::paintEvent(event);
}

} // namespace vantrel
