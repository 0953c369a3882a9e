#pragma once

#include "common/ui/toolkit/ztframe.h"

#include <array>

namespace vantrel {

class OutputModel;
class OutputPicture;
class Session;

/// Both outputs of the server with what they carry, live and drawn to one scale. Owned by the OUTPUTS tab;
/// main thread.
class MappingPreview : public ZTFrame
{
    Q_OBJECT

public:
    /// session and models must outlive this.
    MappingPreview(Session* session, const std::array<OutputModel*, 2>& models, QWidget* parent = nullptr);

private:
    void shareScale();
    void updateUsable();

    Session* m_session;
    std::array<OutputPicture*, 2> m_pictures{};
};

} // namespace vantrel
