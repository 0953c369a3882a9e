#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QTimer>

namespace vantrel {

/// Says that the link is gone and being retried. It stands above its parent, the status bar, and takes
/// neither the focus nor the clicks beside it: what the operator sees below is the last known state, and
/// stays in use.
class ReconnectDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ReconnectDialog(QWidget* parent = nullptr);

    void displayDialog();
    /// The next step of the dots.
    void updateText();

Q_SIGNALS:
    void stop();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    ZTLabel* m_label;
    QTimer m_dotTimer;
    int m_dots = 0;
};

} // namespace vantrel
