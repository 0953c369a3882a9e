#include "common/ui/toolkit/errordialog.h"

namespace vantrel {

ErrorDialog::ErrorDialog(QWidget* parent)
    : ErrorDialog(QString(), QString(), parent)
{
}

ErrorDialog::ErrorDialog(const QString& title, const QString& text, QWidget* parent)
    : ZTDialog(title, parent)
{
    setDescription(text);
    setAcceptText(tr("CLOSE"));
    setAcceptClass(QStringLiteral("cancel"));
    setCancelText(QString());
    setObjectNames(QStringLiteral("ErrorDialog"));
}

} // namespace vantrel
