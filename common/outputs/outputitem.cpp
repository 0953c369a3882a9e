#include "common/outputs/outputitem.h"

#include "common/outputs/modekeeper.h"
#include "common/outputs/outputmodel.h"
#include "common/outputs/outputslogging.h"
#include "common/outputs/videooutputconfiguration.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/link/linkhealth.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/blockedreason.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/seenupdate.h"
#include "common/ui/toolkit/ztmenu.h"

#include <QContextMenuEvent>
#include <QCursor>

namespace vantrel {

OutputItem::OutputItem(int index, Session* session, QWidget* parent)
    : Collapse(tr("Output %1").arg(index + 1), parent)
    , m_index(index)
    , m_session(session)
    , m_update(new SeenUpdate(this, [this] { updateData(); }))
    , m_address(new ElidedLabel(titleRow()))
    , m_identify(new IconButton(QStringLiteral(":/icons/info.svg"), {}, titleRow()))
    , m_notConnected(new IconButton(QStringLiteral(":/icons/displayport_not_connected.svg"), {}, titleRow()))
    , m_configuration(new VideoOutputConfiguration(index + 1, this))
{
    titleRow()->setObjectName(QStringLiteral("titleRow"));
    m_address->setStyleClass(QStringLiteral("dim"));
    m_address->setObjectNames(QStringLiteral("VideoOutput-%1-address").arg(index + 1));
    m_notConnected->setObjectName(QStringLiteral("VideoOutput-%1-notConnected").arg(index + 1));
    m_notConnected->setEnabled(false);
    m_notConnected->setDisabledColor(Qt::white);
    m_notConnected->setToolTip(tr("No display is connected"));
    m_address->setContentsMargins(0, 0, spacing::normal, 0);
    followFontSize(titleRow(), [this](FontSize) { // nothing moves when the sign comes
        titleRow()->setMinimumHeight(m_notConnected->sizeHint().height());
    });
    addTitleWidget(m_address);
    addTitleWidget(m_identify);
    addTitleWidget(m_notConnected);
    setContent(m_configuration);
    setOpen(true);
    connect(session->connectionProvider(), &ConnectionProvider::hostAddressChanged, this,
            &OutputItem::onAddressChange);
    makeIdentify();
    setModel(makeModel());
    auto* keeper = new ModeKeeper(
        index + 1, m_model, [session] { return session->isReachable(); }, this);
    connect(session->linkHealth(), &LinkHealth::changed, keeper, &ModeKeeper::follow);
    connect(session, &Session::disconnected, keeper, &ModeKeeper::follow);
    onAddressChange();
}

void OutputItem::makeIdentify()
{
    m_identify->setObjectName(QStringLiteral("VideoOutput-%1-identify").arg(m_index + 1));
    m_identify->setToolTip(tr("Identify: the number, the name and the mode of this output on its screen"));
    m_identify->setAccessibleName(tr("Identify output %1").arg(m_index + 1));
    m_identify->setCheckable(true);
    connect(m_identify, &QAbstractButton::clicked, this, [this](bool on) {
        m_identify->setChecked(!on); // until the server has done it
        if (m_model)
            m_model->identify(on);
    });
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    for (const GUIPlayback* playback : {scene->previewPlayback().data(), scene->programPlayback().data()}) {
        connect(playback, &GUIPlayback::mediaChanged, this, &OutputItem::updateIdentify);
        connect(playback, &GUIPlayback::heldMediaChanged, this, &OutputItem::updateIdentify);
        connect(playback, &GUIPlayback::reset, this, &OutputItem::updateIdentify);
    }
}

/// An audience sees no test card: what is shown there comes first.
void OutputItem::updateIdentify()
{
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    const bool isPreview =
        m_model && m_model->index(0, OutputModel::TargetColumn).data() == QStringLiteral("preview");
    const GUIPlayback* shown = isPreview ? scene->previewPlayback() : scene->programPlayback();
    QString reason;
    if (!m_model || !m_model->screen().isThere())
        reason =
            tr("No screen of the server shows this output. Start the server with --display and, for preview, "
               "with --display-preview.");
    else if (!shown->media().isEmpty() || !shown->heldMedia().isEmpty())
        reason = isPreview ? tr("Something is on preview, and the test card would stand in its place. Clear "
                                "preview first.")
                           : tr("Something is on program, and the test card would stand in its place. Clear "
                                "program first.");
    m_identify->setEnabled(reason.isEmpty());
    setBlockedReason(m_identify, reason);
    m_identify->setChecked(m_model && m_model->isIdentified());
}

OutputModel* OutputItem::makeModel()
{
    const SceneObjectProvider* scene = m_session->sceneObjectProvider();
    qCInfo(lcOutputs) << "Creating OutputModel with mappings: " << scene->previewMapping()->target()
                      << scene->programMapping()->target();
    auto* model = new OutputModel(m_session->getQUndoStack(), this);
    model->setOutput(m_index == 0 ? scene->output1() : scene->output2());
    model->setChannel(scene->channel());
    model->setPreviewMapping(scene->previewMapping());
    model->setProgramMapping(scene->programMapping());
    model->setModelines(scene->modelines(m_index));
    m_modesChanged.setSingleShot(true);
    connect(&m_modesChanged, &QTimer::timeout, model, &OutputModel::onReset);
    connect(scene, &SceneObjectProvider::modelinesChanged, this, [this](int output) {
        if (output == m_index)
            m_modesChanged.start(0);
    });
    return model;
}

void OutputItem::setModel(OutputModel* model)
{
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    if (m_model) {
        connect(m_model, &OutputModel::dataChanged, this, &OutputItem::onDataChanged);
        connect(m_model, &OutputModel::modelReset, this, &OutputItem::onDataChanged);
        connect(m_model, &OutputModel::screenChanged, this, &OutputItem::updateIdentify);
    }
    m_configuration->setModel(model);
    updateData();
    updateIdentify();
}

void OutputItem::onDataChanged()
{
    m_update->ask();
}

void OutputItem::updateData()
{
    m_notConnected->setVisible(!m_model || !m_model->index(0, OutputModel::ConnectedColumn).data().toBool());
    updateIdentify();
}

void OutputItem::onAddressChange()
{
    const QString address = m_session->connectionProvider()->hostAddress();
    m_address->setText(address);
    m_configuration->setServerName(address);
}

/// Copying between outputs is kept for a server that can do it.
void OutputItem::showContextMenu()
{
    auto* menu = new ZTMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectNames(QStringLiteral("VideoOutput-%1-menu").arg(m_index + 1));
    menu->addAction(tr("Copy settings to Output %1").arg(2 - m_index))->setEnabled(false);
    menu->popup(QCursor::pos());
}

void OutputItem::contextMenuEvent(QContextMenuEvent* event)
{
    event->accept();
    showContextMenu();
}

} // namespace vantrel
