#pragma once

#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

class TimecodeDisplay;

/// The in and out point of the media on a channel. Owned by its parent widget; main thread.
class EndpointTimecodes : public ZTFrame
{
    Q_OBJECT

public:
    explicit EndpointTimecodes(QWidget* parent = nullptr);

    TimecodeDisplay* inpoint() const { return m_inpoint; }
    TimecodeDisplay* outpoint() const { return m_outpoint; }
    /// Of media whose points nobody has read yet.
    void setUnknown(bool unknown);
    /// base for this widget, base + "-Inpoint" and base + "-Outpoint" for its displays.
    void setObjectNames(const QString& base) override;

private:
    TimecodeDisplay* m_inpoint;
    TimecodeDisplay* m_outpoint;
};

} // namespace vantrel
