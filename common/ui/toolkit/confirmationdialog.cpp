#include "common/ui/toolkit/confirmationdialog.h"

namespace vantrel {

ConfirmationDialog::ConfirmationDialog(QWidget* parent)
    : ConfirmationDialog(QString(), QString(), tr("OK"), parent)
{
}

ConfirmationDialog::ConfirmationDialog(const QString& title, const QString& text, const QString& confirmText,
                                       QWidget* parent)
    : ZTDialog(title, parent)
{
    setDescription(text);
    setAcceptText(confirmText);
    setObjectNames(QStringLiteral("ConfirmationDialog"));
}

} // namespace vantrel
