#include "common/qml/dialogfactory.h"

#include "common/session/window/mainwindowhandle.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/errordialog.h"
#include "common/ui/toolkit/textinputdialog.h"

namespace vantrel {

ZTDialog* DialogFactory::open(ZTDialog* dialog, const QString& title, const QString& description)
{
    m_dialogs.append(dialog);
    dialog->setTitle(title);
    if (!description.isEmpty())
        dialog->setDescription(description);
    connect(dialog, &QDialog::finished, this, &DialogFactory::onDialogClosed);
    dialog->open();
    return dialog;
}

ZTDialog* DialogFactory::openTextInputDialog(const QString& title, const QString& description,
                                             const QString& confirmText)
{
    return open(new TextInputDialog(title, description, confirmText, mainWindowWidget()), title, {});
}

ZTDialog* DialogFactory::openTextInputDialog(const QString& title, const QString& description)
{
    return openTextInputDialog(title, description, tr("CREATE"));
}

ZTDialog* DialogFactory::openRenameDialog(const QString& title, const QString& description,
                                          const QString& confirmText, const QString& text)
{
    auto* dialog = new TextInputDialog(title, description, confirmText, mainWindowWidget());
    dialog->setValue(0, text);
    return open(dialog, title, {});
}

ZTDialog* DialogFactory::openConfirmationDialog(const QString& title, const QString& description,
                                                const QString& confirmText)
{
    return open(new ConfirmationDialog(title, description, confirmText, mainWindowWidget()), title,
                description);
}

ZTDialog* DialogFactory::openConfirmationDialog(const QString& title, const QString& description)
{
    return open(new ConfirmationDialog(mainWindowWidget()), title, description);
}

ZTDialog* DialogFactory::openErrorDialog(const QString& title, const QString& description)
{
    return open(new ErrorDialog(title, description, mainWindowWidget()), title, description);
}

void DialogFactory::onDialogClosed(int)
{
    auto* dialog = qobject_cast<ZTDialog*>(sender());
    m_dialogs.removeOne(dialog);
    if (dialog)
        dialog->deleteLater();
}

} // namespace vantrel
