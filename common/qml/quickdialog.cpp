#include "common/qml/quickdialog.h"

#include "common/qml/quickview.h"
#include "common/session/window/mainwindowhandle.h"
#include "common/ui/style/colors.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QVBoxLayout>

namespace vantrel {

QuickDialog::QuickDialog(QObject* parent)
    : QObject(parent)
    , m_dialog(new ZTDialog(mainWindowWidget()))
    , m_view(new QuickView(m_dialog))
{
    setParent(m_dialog);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_view->setClearColor(colors::getColor(colors::Slate_grey_800));
    m_dialog->contentLayout()->addWidget(m_view, 1);
    connect(m_dialog, &QDialog::accepted, this, &QuickDialog::accepted);
    connect(m_dialog, &QDialog::rejected, this, &QuickDialog::rejected);
    connect(m_dialog, &QDialog::finished, this, &QuickDialog::closed);
}

QString QuickDialog::name() const
{
    return m_dialog->objectName();
}

void QuickDialog::setName(const QString& name)
{
    m_dialog->setObjectNames(name);
    m_view->setObjectName(name + QStringLiteral("-view"));
}

QString QuickDialog::title() const
{
    return m_dialog->title();
}

void QuickDialog::setTitle(const QString& title)
{
    m_dialog->setTitle(title);
    m_view->setAccessibleName(title);
}

QString QuickDialog::acceptText() const
{
    return m_dialog->acceptButton()->text();
}

void QuickDialog::setAcceptText(const QString& text)
{
    m_dialog->setAcceptText(text);
}

QString QuickDialog::cancelText() const
{
    return m_dialog->cancelButton()->text();
}

void QuickDialog::setCancelText(const QString& text)
{
    m_dialog->setCancelText(text);
}

bool QuickDialog::isAcceptEnabled() const
{
    return m_dialog->acceptButton()->isEnabled();
}

void QuickDialog::setAcceptEnabled(bool enabled)
{
    m_dialog->setAcceptEnabled(enabled);
}

QQuickItem* QuickDialog::content() const
{
    return m_view->rootObject();
}

void QuickDialog::setContent(QQuickItem* item)
{
    m_view->setContent({}, nullptr, item); // it is the view's own from now on
    connect(item, &QQuickItem::implicitWidthChanged, this, &QuickDialog::fit);
    connect(item, &QQuickItem::implicitHeightChanged, this, &QuickDialog::fit);
    fit();
}

void QuickDialog::fit()
{
    m_view->setMinimumSize(QSizeF(content()->implicitWidth(), content()->implicitHeight()).toSize());
}

void QuickDialog::show()
{
    m_dialog->show();
    m_dialog->activateWindow();
    m_view->setFocus();
}

} // namespace vantrel
