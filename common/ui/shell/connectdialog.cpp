#include "common/ui/shell/connectdialog.h"

#include "common/session/link/locatormodel.h"
#include "common/session/settings/configuration.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QProgressBar>
#include <QScreen>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

namespace {

constexpr auto tabClickWheel = static_cast<Qt::FocusPolicy>(11);

} // namespace

ConnectDialog::ConnectDialog(QWidget* parent)
    : ZTDialog(parent)
    , m_pages(new QStackedWidget(this))
    , m_locator(new LocatorModel(this))
    , m_disconnect(new PushButton(tr("DISCONNECT"), this))
{
    m_pages->addWidget(makeForm());
    m_pages->addWidget(makeMessage());
    contentLayout()->addWidget(m_pages, 1);
    setClosesOnAccept(false);
    m_disconnect->setStyleClass(QStringLiteral("cancel"));
    m_disconnect->hide();
    addButton(m_disconnect);
    connect(m_disconnect, &PushButton::clicked, this, [this] {
        m_attemptInProgress = false;
        Q_EMIT disconnectRequested();
    });
    setObjectNames(QStringLiteral("ConnectDialog"));
    followFontSize(this, [this](FontSize size) {
        const QSize room = screen()->availableSize();
        setMinimumWidth(std::min(scaled(680, size), room.width() * 9 / 10));
        m_servers->verticalHeader()->setDefaultSectionSize(scaled(28, size));
        m_servers->horizontalHeader()->setMaximumSectionSize(scaled(200, size));
        m_found->setMinimumHeight(std::min(scaled(264, size), room.height() / 3));
    });
    m_address->setText(configurationValue(CONNECTION_HOST).toString());
    setConnectDialog();
}

ConnectDialog::~ConnectDialog() = default;

QWidget* ConnectDialog::makeForm()
{
    auto* form = new QWidget(m_pages);
    auto* layout = new QVBoxLayout(form);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    auto* section = new ZTLabel(tr("Add new connection"), form);
    section->setObjectName(QStringLiteral("SectionLabel"));
    section->setStyleClass(QStringLiteral("section"));
    auto* label = new ZTLabel(tr("Hostname or IP address:"), form);
    label->setStyleClass(QStringLiteral("dim"));
    m_address = new ZTEdit(form);
    m_address->setAccessibleName(label->text());
    label->setBuddy(m_address);
    connect(m_address, &ZTEdit::textChanged, this, &ConnectDialog::validateAddress);

    auto* found = new ZTLabel(tr("Servers on this network"), form);
    found->setStyleClass(QStringLiteral("section"));
    makeServers(form);
    m_servers->setAccessibleName(found->text());

    m_noServers = new ZTLabel(tr("Searching. None has answered yet: type the address above."), form);
    m_noServers->setStyleClass(QStringLiteral("dim"));
    m_noServers->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_noServers->setWordWrap(true);

    layout->addWidget(section);
    layout->addWidget(label);
    layout->addWidget(m_address);
    layout->addSpacing(8);
    layout->addWidget(found);
    m_found = new QStackedWidget(form); // as high with servers as without
    m_found->addWidget(m_servers);
    m_found->addWidget(m_noServers);
    layout->addWidget(m_found, 1);
    connect(m_locator, &LocatorModel::modelAboutToBeReset, this,
            [this] { m_scrolled = m_servers->verticalScrollBar()->value(); });
    connect(m_locator, &LocatorModel::modelReset, this, &ConnectDialog::showServers);
    showServers();
    return form;
}

void ConnectDialog::makeServers(QWidget* form)
{
    m_servers = new QTableView(form);
    m_servers->setModel(m_locator);
    m_servers->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_servers->setSelectionMode(QAbstractItemView::SingleSelection);
    m_servers->setShowGrid(false);
    m_servers->setWordWrap(false);
    m_servers->setTabKeyNavigation(false);
    m_servers->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_servers->verticalHeader()->hide();
    QHeaderView* header = m_servers->horizontalHeader();
    header->moveSection(LocatorModel::NameColumn, 0); // what an operator looks for comes first
    header->moveSection(header->visualIndex(LocatorModel::VersionColumn), LocatorModel::ProgramColumn);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(LocatorModel::NameColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(LocatorModel::ProgramColumn, QHeaderView::Stretch);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
    connect(m_servers->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &ConnectDialog::chooseServer);
    m_servers->viewport()->installEventFilter(this);
}

/// By mouse or by keyboard; the row is chosen again when the list has become another one.
void ConnectDialog::chooseServer(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    m_chosen = index.siblingAtColumn(LocatorModel::AddressColumn).data().toString();
    m_address->setText(m_chosen);
}

/// A double click whose clicks lie on two sides of a change of the list is none to the view. It is one here
/// if the same server is still below the mouse.
bool ConnectDialog::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick && watched == m_servers->viewport()) {
        const QPoint place = static_cast<QMouseEvent*>(event)->position().toPoint();
        const QModelIndex index = m_servers->indexAt(place).siblingAtColumn(LocatorModel::AddressColumn);
        if (index.isValid() && index.data().toString() == m_chosen)
            doConnect();
    }
    return ZTDialog::eventFilter(watched, event);
}

void ConnectDialog::showServers()
{
    const bool found = m_locator->rowCount() > 0;
    m_found->setCurrentWidget(found ? static_cast<QWidget*>(m_servers) : m_noServers);
    for (int row = 0; row < m_locator->rowCount() && !m_chosen.isEmpty(); ++row) {
        const QModelIndex index = m_locator->index(row, LocatorModel::AddressColumn);
        if (index.data().toString() == m_chosen && index.flags().testFlag(Qt::ItemIsEnabled)) {
            m_servers->setCurrentIndex(index);
            break;
        }
    }
    m_servers->verticalScrollBar()->setValue(m_scrolled);
}

QWidget* ConnectDialog::makeMessage()
{
    auto* page = new QWidget(m_pages);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(16);
    m_message = new ZTLabel(page);
    m_message->setWordWrap(true);
    m_progress = new QProgressBar(page);
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    layout->addWidget(m_message);
    layout->addWidget(m_progress);
    layout->addStretch(1);
    return page;
}

void ConnectDialog::setLinkPort(quint16 port)
{
    m_locator->setLinkPort(port);
}

void ConnectDialog::setFace(const QString& title, const QString& accept, const QString& styleClass,
                            const std::function<void()>& action)
{
    setTitle(title);
    setAcceptText(accept);
    setAcceptClass(styleClass);
    QObject::disconnect(m_acceptAction);
    m_acceptAction = connect(this, &ZTDialog::confirmed, this, action);
}

void ConnectDialog::setConnectDialog()
{
    m_attemptInProgress = false;
    setFace(tr("Connect to server"), tr("CONNECT"), QStringLiteral("green"), [this] { doConnect(); });
    setCancelText(tr("CANCEL"));
    m_pages->setCurrentIndex(0);
    validateAddress(m_address->text());
}

void ConnectDialog::setConnectingDialog(const QString& host)
{
    m_attemptInProgress = true;
    setFace(tr("Connecting..."), tr("CANCEL"), QStringLiteral("cancel"), [this] { reject(); });
    setCancelText(QString());
    showMessage(tr("Connecting to ") + host, true);
}

void ConnectDialog::setDisconnectionDialog(const QString& host)
{
    m_attemptInProgress = false;
    setFace(tr("Connection failed"), tr("OK"), QStringLiteral("accent"), [this] { setConnectDialog(); });
    setCancelText(QString());
    showMessage(tr("Could not establish connection to ") + host, false);
}

void ConnectDialog::showMessage(const QString& text, bool busy)
{
    m_message->setText(text);
    m_progress->setVisible(busy);
    m_pages->setCurrentIndex(1);
    setAcceptEnabled(true);
    acceptButton()->setFocus();
}

void ConnectDialog::showConnectDialog()
{
    setConnectDialog();
    show();
    m_address->setFocus();
    m_address->selectAll();
}

void ConnectDialog::showConnectingDialog(const QString& host)
{
    setConnectingDialog(host);
    show();
}

void ConnectDialog::showFailure(const QString& host, const QString& reason, const QString& next)
{
    if (next == host) {
        setConnectingDialog(host);
        showMessage(tr("Connecting to ") + host + QStringLiteral("\n\n") + reason + u' ' +
                        tr("It is tried again until you cancel."),
                    true);
    } else {
        setDisconnectionDialog(host);
        QString text = tr("Could not establish connection to ") + host + QStringLiteral("\n\n") + reason;
        if (!next.isEmpty()) {
            text += QStringLiteral("\n\n") + tr("The server before, %1, is tried again.").arg(next);
            setAddress(next);
        }
        showMessage(text, false);
    }
    show();
    fitToContent();
}

/// The address to begin with, here and after the next start.
void ConnectDialog::setAddress(const QString& host)
{
    m_address->setText(host);
    if (Configuration* settings = configuration())
        settings->setValue(CONNECTION_HOST, host);
}

void ConnectDialog::doConnect()
{
    if (!m_addressValid)
        return;
    m_attemptInProgress = true;
    const QString host = m_address->text().trimmed();
    setAddress(host);
    Q_EMIT connectRequested(host);
}

void ConnectDialog::validateAddress(const QString& text)
{
    m_addressValid = isValidAddress(text);
    if (text != m_chosen) { // what is typed is none of the list
        m_chosen.clear();
        m_servers->selectionModel()->clear();
    }
    if (m_pages->currentIndex() == 0)
        setAcceptEnabled(m_addressValid);
}

bool ConnectDialog::isValidAddress(const QString& text) const
{
    return !text.trimmed().isEmpty();
}

void ConnectDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    m_address->setObjectName(QStringLiteral("%1-input-%2").arg(base, QStringLiteral("AddressBar")));
    m_servers->setObjectName(base + QStringLiteral("-servers-view"));
    m_message->setObjectName(base + QStringLiteral("-text"));
    m_disconnect->setObjectName(base + QStringLiteral("-disconnect-button"));
}

void ConnectDialog::onConnected()
{
    m_attemptInProgress = false;
    m_disconnect->show();
    cancelButton()->setEnabled(false);
    cancelButton()->setFocusPolicy(Qt::NoFocus);
}

void ConnectDialog::onDisconnected(const QString& host)
{
    m_disconnect->hide();
    cancelButton()->setEnabled(true);
    cancelButton()->setFocusPolicy(tabClickWheel);
    if (!isVisible())
        return;
    if (host.isEmpty())
        setConnectDialog();
    else
        setDisconnectionDialog(host);
}

void ConnectDialog::reject()
{
    if (m_attemptInProgress) {
        m_attemptInProgress = false;
        Q_EMIT stop();
    }
    ZTDialog::reject();
}

} // namespace vantrel
