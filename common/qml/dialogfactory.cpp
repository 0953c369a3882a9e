#include "common/qml/dialogfactory.h"

#include "common/qml/dropdialog.h"
#include "common/session/window/mainwindowhandle.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/errordialog.h"
#include "common/ui/toolkit/textinputdialog.h"

#include <utility>

namespace vantrel {

void DialogFactory::keep(ZTDialog* dialog)
{
    m_dialogs.append(dialog);
    connect(dialog, &QDialog::finished, this, &DialogFactory::onDialogClosed);
}

ZTDialog* DialogFactory::open(ZTDialog* dialog, const QString& title, const QString& description)
{
    keep(dialog);
    dialog->setTitle(title);
    if (!description.isEmpty())
        dialog->setDescription(description);
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

DropDialog* DialogFactory::openDropDialog(MediaDrop* drop, bool isAwaited)
{
    auto* dialog = new DropDialog(drop, mainWindowWidget());
    keep(dialog);
    dialog->setAttribute(Qt::WA_ShowWithoutActivating, !isAwaited);
    dialog->showOnceLoaded();
    return dialog;
}

void DialogFactory::closeAll()
{
    qDeleteAll(std::exchange(m_dialogs, {}));
}

void DialogFactory::onDialogClosed(int)
{
    auto* dialog = qobject_cast<ZTDialog*>(sender());
    m_dialogs.removeOne(dialog);
    if (dialog)
        dialog->deleteLater();
}

} // namespace vantrel
