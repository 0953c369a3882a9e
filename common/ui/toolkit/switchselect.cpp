#include "common/ui/toolkit/switchselect.h"

#include "common/ui/toolkit/pushbutton.h"

#include <QButtonGroup>
#include <QHBoxLayout>

namespace vantrel {

SwitchSelect::SwitchSelect(QWidget* parent)
    : ZTFrame(parent)
    , m_group(new QButtonGroup(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(m_group, &QButtonGroup::idToggled, this, [this](int, bool checked) {
        if (checked)
            Q_EMIT valueChanged(value());
    });
    connect(m_group, &QButtonGroup::idClicked, this, [this] { Q_EMIT clicked(value()); });
}

void SwitchSelect::addItem(const QString& text, const QVariant& value, const QString& tooltip)
{
    auto* button = new PushButton(text, this);
    button->setStyleClass(QStringLiteral("segment"));
    button->setCheckable(true);
    button->setToolTip(tooltip);
    m_items.append({button, value});
    m_group->addButton(button);
    layout()->addWidget(button);
    setObjectNames(objectName());
}

void SwitchSelect::clear()
{
    for (const Item& item : std::as_const(m_items))
        delete item.button;
    m_items.clear();
}

QVariant SwitchSelect::value() const
{
    for (const Item& item : m_items) {
        if (item.button->isChecked())
            return item.value;
    }
    return {};
}

void SwitchSelect::setValue(const QVariant& value)
{
    if (PushButton* chosen = button(value))
        chosen->setChecked(true);
}

void SwitchSelect::chooseNone()
{
    m_group->setExclusive(false);
    for (const Item& item : std::as_const(m_items))
        item.button->setChecked(false);
    m_group->setExclusive(true);
}

PushButton* SwitchSelect::button(const QVariant& value) const
{
    for (const Item& item : m_items) {
        if (item.value == value)
            return item.button;
    }
    return nullptr;
}

void SwitchSelect::setObjectNames(const QString& base)
{
    setObjectName(base);
    if (base.isEmpty())
        return;
    for (const Item& item : std::as_const(m_items))
        item.button->setObjectName(base + u'-' + item.button->text().toLower().replace(u' ', u'_'));
}

} // namespace vantrel
