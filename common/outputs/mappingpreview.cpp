#include "common/outputs/mappingpreview.h"

#include "common/outputs/outputcanvas.h"
#include "common/outputs/outputcolumn.h"
#include "common/outputs/outputpicture.h"
#include "common/session/link/linkhealth.h"
#include "common/session/link/previewthread.h"
#include "common/session/session.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

MappingPreview::MappingPreview(Session* session, const std::array<OutputModel*, 2>& models, QWidget* parent)
    : ZTFrame(parent)
    , m_session(session)
{
    setObjectName(QStringLiteral("PlayerTab-mapping-widget"));
    setProperty("class", QStringLiteral("panel"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(spacing::wide);
    layout->addWidget(makeColumnTitle(tr("Mapping"), this));
    for (std::size_t i = 0; i < models.size(); ++i) {
        auto* picture = new OutputPicture(static_cast<int>(i), session, models[i], this);
        m_pictures[i] = picture;
        layout->addWidget(picture, 1);
        connect(session->preview(), &PreviewThread::previewFrame, picture, &OutputPicture::onFrame);
        connect(picture->canvas(), &OutputCanvas::fittingScaleChanged, this, &MappingPreview::shareScale);
    }
    connect(session, &Session::connected, this, &MappingPreview::updateUsable);
    connect(session, &Session::disconnected, this, &MappingPreview::updateUsable);
    connect(session->linkHealth(), &LinkHealth::changed, this, &MappingPreview::updateUsable);
    updateUsable();
}

void MappingPreview::shareScale()
{
    const double scale = std::min(m_pictures[0]->canvas()->fittingScale(),
                                  m_pictures[1] ? m_pictures[1]->canvas()->fittingScale() : 1.0);
    for (const OutputPicture* picture : m_pictures) {
        if (picture)
            picture->canvas()->setPixelScale(scale);
    }
}

void MappingPreview::updateUsable()
{
    for (OutputPicture* picture : m_pictures)
        picture->setEnabled(m_session->isReachable());
}

} // namespace vantrel
