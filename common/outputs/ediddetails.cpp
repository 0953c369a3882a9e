#include "common/outputs/ediddetails.h"

#include "common/outputs/edidsummary.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/elidedlabel.h"

#include <QGridLayout>
#include <QVBoxLayout>

namespace vantrel {

EdidDetails::EdidDetails(QWidget* parent)
    : ZTFrame(parent)
    , m_heading(new ZTLabel(this))
    , m_facts(new QGridLayout)
{
    m_heading->setStyleClass(QStringLiteral("section"));
    m_facts->setHorizontalSpacing(spacing::loose);
    m_facts->setVerticalSpacing(spacing::tight);
    m_facts->setColumnStretch(3, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::normal);
    layout->addWidget(m_heading);
    layout->addLayout(m_facts);
    hide();
}

void EdidDetails::setObjectNames(const QString& base)
{
    m_base = base;
    setObjectName(base);
}

void EdidDetails::setEdid(const QString& edid, bool isFromFile)
{
    m_heading->setText(isFromFile ? tr("What the EDID file says") : tr("What the display says"));
    setVisible(!edid.isEmpty());
    if (edid == m_edid)
        return;
    m_edid = edid;
    showFacts();
}

void EdidDetails::showFacts()
{
    while (QLayoutItem* item = m_facts->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    const QList<EdidFact> facts = edidSummary(m_edid);
    const int rows = static_cast<int>((facts.size() + 1) / 2);
    for (int i = 0; i < facts.size(); ++i) {
        auto* value = new ElidedLabel(facts[i].text, this);
        value->setProperty("propertyValue", QStringLiteral("true"));
        value->setObjectName(m_base + QStringLiteral("-fact%1").arg(i));
        value->setAccessibleName(facts[i].title + u' ' + facts[i].text);
        if (!facts[i].details.isEmpty())
            value->setToolTip(facts[i].details.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>")));
        m_facts->addWidget(new ZTLabel(facts[i].title, this), i % rows, i / rows * 2);
        m_facts->addWidget(value, i % rows, i / rows * 2 + 1);
    }
}

} // namespace vantrel
