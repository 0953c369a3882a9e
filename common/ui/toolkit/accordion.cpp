#include "common/ui/toolkit/accordion.h"

#include "common/ui/toolkit/collapse.h"

#include <QVBoxLayout>

namespace vantrel {

Accordion::Accordion(QWidget* parent)
    : ZTFrame(parent)
    , m_layout(new QVBoxLayout(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(4);
    m_layout->addStretch(1);
}

Collapse* Accordion::addSection(const QString& title, QWidget* content)
{
    auto* section = new Collapse(title, this);
    section->setContent(content);
    section->setOpen(m_sections.isEmpty());
    m_layout->insertWidget(count(), section);
    m_sections.append(section);
    connect(section, &Collapse::openChanged, this, [this, section](bool open) { onToggled(section, open); });
    return section;
}

void Accordion::addPanel(Collapse* panel)
{
    m_layout->insertWidget(m_layout->count() - 1, panel);
}

Collapse* Accordion::section(int index) const
{
    return m_sections.value(index);
}

int Accordion::openIndex() const
{
    for (int i = 0; i < count(); ++i) {
        if (m_sections[i]->isOpen())
            return i;
    }
    return -1;
}

void Accordion::setOpenIndex(int index)
{
    if (Collapse* chosen = section(index))
        chosen->setOpen(true);
    else if (Collapse* open = section(openIndex()))
        open->setOpen(false);
}

void Accordion::setObjectNames(const QString& base)
{
    setObjectName(base);
    for (int i = 0; i < count(); ++i)
        m_sections[i]->setObjectNames(QStringLiteral("%1-%2").arg(base).arg(i));
}

void Accordion::onToggled(Collapse* section, bool open)
{
    if (m_folding)
        return;
    m_folding = true; // one change is told once
    for (Collapse* other : std::as_const(m_sections)) {
        if (open && other != section)
            other->setOpen(false);
    }
    m_folding = false;
    Q_EMIT openIndexChanged(openIndex());
}

} // namespace vantrel
