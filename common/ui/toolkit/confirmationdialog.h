#pragma once

#include "common/ui/toolkit/ztdialog.h"

namespace vantrel {

/// Asks before something that cannot be taken back; confirmed() is the operator's yes.
class ConfirmationDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ConfirmationDialog(QWidget* parent = nullptr);
    ConfirmationDialog(const QString& title, const QString& text, const QString& confirmText,
                       QWidget* parent = nullptr);
};

} // namespace vantrel
