#include "common/ui/keyboard/keynotice.h"

#include "common/ui/style/dynamicstyle.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace vantrel {

KeyNotice::KeyNotice(QWidget* parent)
    : ZTFrame(parent)
    , m_text(new ZTLabel(this))
    , m_swap(new PushButton(tr("SWAP"), this))
    , m_takeOver(new PushButton(tr("TAKE OVER"), this))
    , m_keep(new PushButton(tr("KEEP"), this))
{
    setDynamicStyle(this, "class", QStringLiteral("panel2"));
    m_text->setWordWrap(true);
    m_swap->setToolTip(tr("The other action gets the key that this one had"));
    m_takeOver->setToolTip(tr("The other action is left without a key"));
    m_keep->setToolTip(tr("Leave both as they are"));
    m_keep->setStyleClass(QStringLiteral("cancel"));
    auto* choices = new QHBoxLayout;
    choices->setSpacing(8);
    choices->addStretch(1);
    for (PushButton* button : {m_keep, m_takeOver, m_swap}) {
        button->setAccessibleName(button->text());
        button->setAccessibleDescription(button->toolTip());
        choices->addWidget(button);
    }
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 8, 12, 8);
    column->setSpacing(8);
    column->addWidget(m_text);
    column->addLayout(choices);
    connect(m_swap, &QAbstractButton::clicked, this, &KeyNotice::swapChosen);
    connect(m_takeOver, &QAbstractButton::clicked, this, &KeyNotice::takeOverChosen);
    connect(m_keep, &QAbstractButton::clicked, this, &KeyNotice::keepChosen);
    showHint();
}

void KeyNotice::show(const QString& text, const QString& styleClass, bool asks)
{
    m_asking = asks;
    m_text->setText(text);
    m_text->setStyleClass(styleClass);
    for (PushButton* button : {m_swap, m_takeOver, m_keep})
        button->setVisible(asks);
}

void KeyNotice::showHint()
{
    show(tr("Click a key, or press Enter on it, then press the new one. Esc keeps the old one, Backspace "
            "leaves "
            "the action without a key."),
         QStringLiteral("dim"), false);
}

void KeyNotice::showRefusal(const QString& text)
{
    show(text, QStringLiteral("error"), false);
}

void KeyNotice::showDone(const QString& text)
{
    show(text, QStringLiteral("dim"), false);
}

void KeyNotice::ask(const QString& text, bool canSwap)
{
    show(text, QString(), true);
    m_swap->setVisible(canSwap);
    (canSwap ? m_swap : m_takeOver)->setFocus(Qt::TabFocusReason);
}

QString KeyNotice::text() const
{
    return m_text->text();
}

void KeyNotice::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_text->setObjectName(base + QStringLiteral("-text"));
    m_swap->setObjectName(base + QStringLiteral("-swap-button"));
    m_takeOver->setObjectName(base + QStringLiteral("-takeover-button"));
    m_keep->setObjectName(base + QStringLiteral("-keep-button"));
}

void KeyNotice::keyPressEvent(QKeyEvent* event)
{
    if (!m_asking) {
        ZTFrame::keyPressEvent(event);
        return;
    }
    // Enter presses the choice that has the focus, and never the dialog's own button.
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT keepChosen();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        for (PushButton* button : {m_swap, m_takeOver, m_keep}) {
            if (button->hasFocus()) {
                button->click();
                return;
            }
        }
    } else {
        ZTFrame::keyPressEvent(event);
    }
}

} // namespace vantrel
