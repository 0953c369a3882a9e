#pragma once

#include "common/ui/toolkit/ztdialog.h"

namespace vantrel {

/// Tells of a failure that the operator's own action ran into; one button, and nothing else to decide.
class ErrorDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit ErrorDialog(QWidget* parent = nullptr);
    ErrorDialog(const QString& title, const QString& text, QWidget* parent = nullptr);
};

} // namespace vantrel
