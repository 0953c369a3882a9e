#include "common/ui/toolkit/navigationbar.h"

#include "common/ui/toolkit/navbutton.h"

#include <QHBoxLayout>
#include <QKeyEvent>

namespace vantrel {

NavigationBar::NavigationBar(QWidget* parent)
    : QWidget(parent)
    , m_layout(new QHBoxLayout(this))
{
    setAttribute(Qt::WA_StyledBackground);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(4);
}

void NavigationBar::addTab(int index, NavButton* button)
{
    delete m_buttons.take(index);
    m_buttons.insert(index, button);
    m_layout->addWidget(button);
    connect(button, &NavButton::clicked, this, [this, index] { setActiveTab(index); });
    updateTabStyles();
}

void NavigationBar::addWidget(QWidget* widget)
{
    m_layout->addWidget(widget);
}

void NavigationBar::addSpacer()
{
    m_layout->addStretch(1);
}

void NavigationBar::setObjectNames(const QString& base)
{
    setObjectName(base);
    for (auto it = m_buttons.cbegin(); it != m_buttons.cend(); ++it)
        it.value()->setObjectName(QStringLiteral("%1-tab-%2").arg(base).arg(it.key()));
}

void NavigationBar::setActiveTab(int index)
{
    const NavButton* button = m_buttons.value(index);
    if (!button || !button->isEnabled() || index == m_active)
        return;
    m_active = index;
    updateTabStyles();
    Q_EMIT tabSelected(index);
}

void NavigationBar::setEnabled(int index)
{
    if (NavButton* button = m_buttons.value(index))
        button->setEnabled(true);
}

void NavigationBar::setDisabled(int index)
{
    if (NavButton* button = m_buttons.value(index))
        button->setEnabled(false);
}

void NavigationBar::updateTabStyles()
{
    for (auto it = m_buttons.cbegin(); it != m_buttons.cend(); ++it)
        it.value()->setActive(it.key() == m_active);
}

void NavigationBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Left)
        step(-1);
    else if (event->key() == Qt::Key_Right)
        step(1);
    else
        QWidget::keyPressEvent(event);
}

void NavigationBar::step(int direction)
{
    const QList<int> indexes = m_buttons.keys();
    for (qsizetype at = indexes.indexOf(m_active) + direction; at >= 0 && at < indexes.size();
         at += direction) {
        if (NavButton* button = m_buttons.value(indexes[at]); button->isEnabled()) {
            setActiveTab(indexes[at]);
            button->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

} // namespace vantrel
