#pragma once

#include "common/session/settings/configuration.h"
#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

class Session;

/// The column of the OUTPUTS tab in which the server's outputs are set: so far those of the sound. Owned by
/// the main window; main thread.
class OutputView : public ZTFrame
{
    Q_OBJECT

public:
    /// session: must outlive this.
    explicit OutputView(Session* session, QWidget* parent = nullptr);

public Q_SLOTS:
    void onStyleChange(vantrel::ConfigurationOption option, const QVariant& value);

private:
    void setTextSize(FontSize size);
};

} // namespace vantrel
