#include "common/ui/shell/statusbar.h"

#include "common/media/address/showntext.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/link/systemproxy.h"
#include "common/ui/shell/reconnectdialog.h"
#include "common/ui/shell/statusbarmenu.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/clickablelayoutwidget.h"
#include "common/ui/toolkit/contextmenubutton.h"
#include "common/ui/toolkit/elidedlabel.h"

#include <QHBoxLayout>

namespace vantrel {

StatusBar::StatusBar(const SystemProxy* system, const ConnectionProvider* connection, QWidget* parent)
    : QWidget(parent)
    , m_system(system)
    , m_connection(connection)
    , m_layout(new QHBoxLayout(this))
    , m_area(new ClickableLayoutWidget(this))
    , m_toggle(new IconButton(m_area))
    , m_label(new ZTLabel(tr("Server Connection"), m_area))
    , m_name(new ElidedLabel(m_area))
    , m_address(new ElidedLabel(m_area))
    , m_disconnected(new ZTLabel(tr("Disconnected"), m_area))
    , m_show(new ElidedLabel(this))
    , m_screen(new ElidedLabel(this))
    , m_menu(new StatusBarMenu(this))
{
    setObjectName(QStringLiteral("StatusBar"));
    setAttribute(Qt::WA_StyledBackground);
    m_area->setObjectName(QStringLiteral("StatusBar-area"));
    m_area->setToolTip(tr("Manage the server connection"));
    m_area->setAccessibleName(tr("Server connection"));
    m_label->setObjectName(QStringLiteral("StatusBar-ServerLabel"));
    m_name->setObjectName(QStringLiteral("StatusBar-ServerName"));
    m_address->setObjectName(QStringLiteral("StatusBar-ServerIP"));
    m_disconnected->setObjectName(QStringLiteral("StatusBar-Disconnected"));
    m_label->setStyleClass(QStringLiteral("dim"));
    m_address->setStyleClass(QStringLiteral("dim"));
    m_disconnected->setStyleClass(QStringLiteral("dim"));
    makeLamp();

    auto* area = new QHBoxLayout(m_area);
    area->setContentsMargins(4, 2, 8, 2);
    area->setSpacing(8);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{m_toggle, m_label, m_name, m_address, m_disconnected})
        area->addWidget(widget);

    m_layout->setContentsMargins(spacing::tight, 0, spacing::tight, 0);
    m_layout->setSpacing(4);
    m_layout->addWidget(m_area);
    m_show->setObjectName(QStringLiteral("StatusBar-Show"));
    m_show->setStyleClass(QStringLiteral("dim"));
    m_layout->addWidget(makeMenuButton());
    m_layout->addSpacing(spacing::normal);
    m_layout->addWidget(m_show);
    m_layout->addSpacing(spacing::normal);
    m_screen->setObjectName(QStringLiteral("StatusBar-Screen"));
    m_screen->setStyleClass(QStringLiteral("dim"));
    m_screen->hide();
    m_layout->addWidget(m_screen);
    m_layout->addStretch(1);

    connect(m_area, &ClickableLayoutWidget::clicked, this, &StatusBar::connectClicked);
    connect(m_menu, &StatusBarMenu::displayDialog, this, &StatusBar::connectClicked);
    connect(m_menu, &StatusBarMenu::disconnect, this, &StatusBar::disconnectClicked);
    if (m_system) {
        connect(m_system, &SystemProxy::hostnameChanged, this, &StatusBar::updateData);
        connect(m_system, &SystemProxy::versionChanged, this, &StatusBar::updateData);
    }
    if (m_connection)
        connect(m_connection, &ConnectionProvider::hostAddressChanged, this, &StatusBar::onAddressChanged);
    showConnected(false);
}

void StatusBar::makeLamp()
{
    m_toggle->setObjectName(QStringLiteral("StatusBar-toggle"));
    m_toggle->setToggleIcons(QStringLiteral(":/icons/circle_on.svg"),
                             QStringLiteral(":/icons/circle_off.svg"));
    m_toggle->setCheckedColor(colors::getColor(colors::Green_green));
    m_toggle->setIconColor(colors::getColor(colors::Zt_white_50));
    m_toggle->setSizes({{FontSize::Small, {20, 20}},
                        {FontSize::Medium, {24, 24}},
                        {FontSize::Large, {32, 32}},
                        {FontSize::Huge, {40, 40}}});
    m_toggle->setIconShare(0.75);
    // The lamp shows the state; the click is the area's.
    m_toggle->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_toggle->setFocusPolicy(Qt::NoFocus);
}

QWidget* StatusBar::makeMenuButton()
{
    auto* more = new ContextMenuButton(this);
    more->setObjectName(QStringLiteral("StatusBar-menu-button"));
    more->setToolTip(tr("Connection menu"));
    more->setAccessibleName(tr("Connection menu"));
    more->setContextMenu(m_menu);
    more->setSizes({{FontSize::Small, {22, 22}},
                    {FontSize::Medium, {26, 26}},
                    {FontSize::Large, {34, 34}},
                    {FontSize::Huge, {44, 44}}});
    return more;
}

/// Without an address nothing is tried any more, whoever stopped it.
void StatusBar::onAddressChanged()
{
    if (m_reconnectDialog && m_connection->hostAddress().isEmpty())
        m_reconnectDialog->hide();
}

void StatusBar::addWidget(QWidget* widget)
{
    m_layout->addWidget(widget);
}

void StatusBar::updateData()
{
    const QString version = m_system ? shownText(m_system->version()) : QString();
    const QString address = m_connection ? m_connection->hostAddress() : QString();
    m_name->setText(m_system ? shownText(m_system->hostname()) : QString());
    m_address->setText(version.isEmpty() ? address : QStringLiteral("(%1) %2").arg(version, address));
}

void StatusBar::setSilence(const QString& text)
{
    m_label->setText(text.isEmpty() ? tr("Server Connection") : text);
    m_toggle->setCheckedColor(colors::getColor(text.isEmpty() ? colors::Green_green : colors::Zt_spot_color));
}

void StatusBar::setShow(const QString& name, bool isModified)
{
    const QString shown = shownText(name);
    m_show->setVisible(!name.isEmpty());
    m_show->setText(isModified ? tr("Show: %1, not saved").arg(shown) : tr("Show: %1").arg(shown));
    m_show->setToolTip(isModified ? tr("The show differs from what was saved as \"%1\".").arg(shown)
                                  : tr("The show is as it was saved."));
}

void StatusBar::setScreen(const QString& text, const QString& details, bool isWell)
{
    m_screen->setVisible(!text.isEmpty());
    m_screen->setText(text);
    m_screen->setToolTip(details);
    setDynamicStyle(m_screen, "urgency", isWell ? QString() : QStringLiteral("soon"));
}

void StatusBar::onConnected()
{
    updateData();
    showConnected(true);
    m_menu->onConnected();
    if (m_reconnectDialog)
        m_reconnectDialog->hide();
}

void StatusBar::onDisconnected(const QString&)
{
    m_menu->onDisconnected();
    if (m_reconnectDialog)
        m_reconnectDialog->hide(); // it comes again with the next attempt
    showConnected(false);
}

void StatusBar::onReconnecting(int)
{
    if (!m_reconnectDialog) {
        m_reconnectDialog = new ReconnectDialog(this);
        connect(m_reconnectDialog, &ReconnectDialog::stop, this, &StatusBar::disconnectClicked);
    }
    if (!m_reconnectDialog->isVisible())
        m_reconnectDialog->displayDialog();
    showConnected(false);
}

void StatusBar::showConnected(bool connected)
{
    m_label->setVisible(connected);
    m_name->setVisible(connected);
    m_address->setVisible(connected);
    m_disconnected->setVisible(!connected);
    m_toggle->setChecked(connected);
}

} // namespace vantrel
