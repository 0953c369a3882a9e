#include "common/session/mirror/guioutput.h"

namespace vantrel {

GUIOutput::GUIOutput(QObject* parent)
    : SceneObjectWrapper(QStringLiteral("Output"), parent)
{
    cacheProperties();
}

void GUIOutput::postSetObjectHook()
{
    cacheProperties();
}

void GUIOutput::cacheProperties()
{
    m_info = {
        .name = object()->findProperty("name"),
        .width = object()->findProperty("width"),
        .height = object()->findProperty("height"),
        .hTotal = object()->findProperty("hTotal"),
        .vTotal = object()->findProperty("vTotal"),
        .hSyncPolarity = object()->findProperty("hSyncPolarity"),
        .vSyncPolarity = object()->findProperty("vSyncPolarity"),
        .interlaced = object()->findProperty("interlaced"),
        .dotClock = object()->findProperty("dotClock"),
        .bpc = object()->findProperty("bpc"),
        .colorspace = object()->findProperty("colorspace"),
        .currentLaneCount = object()->findProperty("currentLaneCount"),
        .currentLinkRate = object()->findProperty("currentLinkRate"),
        .reportedLaneCount = object()->findProperty("reportedLaneCount"),
        .reportedLinkRate = object()->findProperty("reportedLinkRate"),
        .connected = object()->findProperty("connected"),
        .error = object()->findProperty("error"),
        .errorText = object()->findProperty("errorText"),
        .product = object()->findProperty("product"),
        .modelineId = object()->findProperty("modelineId"),
        .preferredModelineId = object()->findProperty("preferredModelineId"),
        .edid = object()->findProperty("edid"),
        .edidOverride = object()->findProperty("edidOverride"),
        .edidOverrideFilename = object()->findProperty("edidOverrideFilename"),
        .maxLinkRate = object()->findProperty("maxLinkRate"),
        .phyRepeaterCount = object()->findProperty("phyRepeaterCount"),
        .phyRepeaterMode = object()->findProperty("phyRepeaterMode"),
        .subconnector = object()->findProperty("subconnector"),
        .fec = object()->findProperty("fec"),
        .dsc = object()->findProperty("dsc"),
    };
}

} // namespace vantrel
