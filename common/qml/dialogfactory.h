#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QList>
#include <QObject>

namespace vantrel {

class DropDialog;
class MediaDrop;

/// Opens the dialogs of the application for declarative views ("dialogs"), over the main window. A dialog
/// goes once it is closed; its confirmed() and valuesConfirmed() are the caller's. Main thread only.
class DialogFactory : public QObject
{
    Q_OBJECT
    Q_MOC_INCLUDE("common/import/mediadrop.h")
    Q_MOC_INCLUDE("common/qml/dropdialog.h")

public:
    using QObject::QObject;

    Q_INVOKABLE vantrel::ZTDialog* openTextInputDialog(const QString& title, const QString& description,
                                                       const QString& confirmText);
    Q_INVOKABLE vantrel::ZTDialog* openTextInputDialog(const QString& title, const QString& description);
    Q_INVOKABLE vantrel::ZTDialog* openConfirmationDialog(const QString& title, const QString& description,
                                                          const QString& confirmText);
    Q_INVOKABLE vantrel::ZTDialog* openConfirmationDialog(const QString& title, const QString& description);
    Q_INVOKABLE vantrel::ZTDialog* openErrorDialog(const QString& title, const QString& description);
    /// As openTextInputDialog, with a text to begin with.
    Q_INVOKABLE vantrel::ZTDialog* openRenameDialog(const QString& title, const QString& description,
                                                    const QString& confirmText, const QString& text);

    /// For a drop of sequences and stills that has been read. It stands beside the window, which can be used
    /// meanwhile. isAwaited: the operator has just let go and looks for it, so that it takes the keyboard.
    Q_INVOKABLE vantrel::DropDialog* openDropDialog(vantrel::MediaDrop* drop, bool isAwaited);

    void closeAll();

private:
    void keep(ZTDialog* dialog);
    ZTDialog* open(ZTDialog* dialog, const QString& title, const QString& description);
    void onDialogClosed(int result);

    QList<ZTDialog*> m_dialogs;
};

} // namespace vantrel
