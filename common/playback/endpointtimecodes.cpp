#include "common/playback/endpointtimecodes.h"

#include "common/ui/style/spacing.h"
#include "common/ui/timecode/timecodedisplay.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHBoxLayout>

namespace vantrel {

EndpointTimecodes::EndpointTimecodes(QWidget* parent)
    : ZTFrame(parent)
    , m_inpoint(new TimecodeDisplay(this))
    , m_outpoint(new TimecodeDisplay(this))
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::tight);
    auto* inLabel = new ZTLabel(tr("In:"), this);
    auto* outLabel = new ZTLabel(tr("Out:"), this);
    inLabel->setStyleClass(QStringLiteral("dim"));
    outLabel->setStyleClass(QStringLiteral("dim"));
    layout->addWidget(inLabel);
    layout->addWidget(m_inpoint);
    layout->addStretch(1);
    layout->addWidget(outLabel);
    layout->addWidget(m_outpoint);
    m_inpoint->setAccessibleName(tr("In point"));
    m_outpoint->setAccessibleName(tr("Out point"));
}

void EndpointTimecodes::setUnknown(bool unknown)
{
    m_inpoint->setZeroUnknown(unknown);
    m_outpoint->setZeroUnknown(unknown);
}

void EndpointTimecodes::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_inpoint->setObjectName(base + QStringLiteral("-Inpoint"));
    m_outpoint->setObjectName(base + QStringLiteral("-Outpoint"));
}

} // namespace vantrel
