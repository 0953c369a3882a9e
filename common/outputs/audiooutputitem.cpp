#include "common/outputs/audiooutputitem.h"

#include "common/command/execute.h"
#include "common/command/playback/selectaudiodevicecommand.h"
#include "common/command/setcommand.h"
#include "common/media/models/playbackmodel.h"
#include "common/session/link/connectionprovider.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/doubleedit.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztlabel.h"
#include "tarn/scene/scene.h"

#include <QFormLayout>
#include <QHBoxLayout>

namespace vantrel {

namespace {

constexpr double largestDelay = 250; // milliseconds
constexpr const char* delayPath = "/device/channels/0/program/properties/audioOffset";

} // namespace

AudioOutputItem::AudioOutputItem(Session* session, QWidget* parent)
    : Collapse(tr("Audio"), parent)
    , m_session(session)
{
    titleRow()->setObjectName(QStringLiteral("titleRow"));
    m_preview = createSwitch(QStringLiteral("previewAudioOutputSwitch"), tr("Audio output of preview"));
    m_program = createSwitch(QStringLiteral("programAudioOutputSwitch"), tr("Audio output of program"));
    createDelay();
    connect(m_preview, &SwitchSelect::clicked, this, [this] { onSelectionChanged(PlaybackType::Preview); });
    connect(m_program, &SwitchSelect::clicked, this, [this] { onSelectionChanged(PlaybackType::Program); });

    auto* content = new QWidget(this);
    auto* layout = new QFormLayout(content);
    layout->setRowWrapPolicy(
        QFormLayout::WrapLongRows); // in a narrow column the switch stands below its name
    layout->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    layout->addRow(new ZTLabel(tr("Preview output:"), content), m_preview);
    layout->addRow(new ZTLabel(tr("Program output:"), content), m_program);
    layout->addRow(createMessage());
    layout->addRow(new ZTLabel(tr("Program delay:"), content), m_delay);
    setContent(content);
    if (const Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, &AudioOutputItem::onStyleChange);
    setDynamicStyle(this, "container", toString(currentFontSize()));

    connect(session->connectionProvider(), &ConnectionProvider::hostAddressChanged, this,
            &AudioOutputItem::onAddressChanged);
    connect(session, &Session::connected, this, &AudioOutputItem::onConnected);
    connect(session, &Session::disconnected, this, &AudioOutputItem::onDisconnected);
    onAddressChanged();
    if (session->isConnected())
        onConnected();
}

SwitchSelect* AudioOutputItem::createSwitch(const QString& name, const QString& accessibleName)
{
    auto* target = new SwitchSelect(this);
    target->addItem(tr("Embedded"), static_cast<int>(AudioPlaybackDevice::Embedded),
                    tr("Sound goes out beside the picture, on the video output"));
    target->addItem(tr("XLR"), static_cast<int>(AudioPlaybackDevice::Xlr),
                    tr("Sound goes out on the XLR connectors"));
    target->addItem(tr("Dante"), static_cast<int>(AudioPlaybackDevice::Dante),
                    tr("Sound goes out on the audio network"));
    target->addItem(tr("Off"), static_cast<int>(AudioPlaybackDevice::Off), tr("No sound"));
    target->setObjectNames(name);
    target->setAccessibleName(accessibleName);
    target->setEnabled(false);
    return target;
}

void AudioOutputItem::createDelay()
{
    m_delay = new DoubleEdit(-largestDelay, largestDelay, tr("ms"), this);
    m_delay->setObjectNames(QStringLiteral("programAudioDelay"));
    m_delay->setAccessibleName(tr("Delay of program's sound against its picture"));
    m_delay->setToolTip(
        tr("Program's sound on the server's own device so much later than its picture, below 0 "
           "earlier: for what amplifiers and projectors take. Heard at once, and kept with "
           "the server."));
    m_delay->setDecimals(0);
    m_delay->setStep(1);
    m_delay->setEnabled(false);
    connect(m_delay, &DoubleEdit::valueEdited, this, &AudioOutputItem::onDelayEdited);
    const GUIPlayback* program = m_session->sceneObjectProvider()->programPlayback();
    connect(program, &GUIPlayback::audioOffsetChanged, this, &AudioOutputItem::showDelay);
    connect(program, &GUIPlayback::reset, this, &AudioOutputItem::showDelay);
    showDelay();
}

void AudioOutputItem::showDelay()
{
    m_delay->setValue(m_session->sceneObjectProvider()->programPlayback()->audioOffset() * 1000);
}

void AudioOutputItem::onDelayEdited(double milliseconds)
{
    auto command = std::make_unique<SetCommand>();
    command->setText(tr("Delay program's sound"));
    command->init(Path(delayPath), Variant::from(milliseconds / 1000));
    command->setMergeable(true); // from key to key
    if (!submit(m_session->getQUndoStack(), std::move(command)))
        showDelay(); // as it is
}

QWidget* AudioOutputItem::createMessage()
{
    m_message = new QWidget(this);
    m_message->setObjectName(QStringLiteral("danteEnabledMessage"));
    auto* icon = new ZTLabel(m_message);
    icon->setObjectName(QStringLiteral("danteEnabledMessageIcon"));
    followFontSize(icon, [icon](FontSize size) {
        const int side = iconExtent(size);
        icon->setPixmap(IconCache::pixmap(QStringLiteral("info"), colors::getColor(colors::Zt_white_70),
                                          {side, side}, icon->devicePixelRatioF()));
    });
    auto* text =
        new ZTLabel(tr("Make sure you have Dante enabled in WebConfig for at least one NIC."), m_message);
    text->setObjectName(QStringLiteral("danteEnabledMessageText"));
    text->setWordWrap(true);
    auto* layout = new QHBoxLayout(m_message);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(text, 1);
    m_message->hide();
    return m_message;
}

void AudioOutputItem::onConnected()
{
    for (const PlaybackModel* model : {m_session->previewPlaybackModel(), m_session->programPlaybackModel()})
        connect(model, &PlaybackModel::dataChanged, this, &AudioOutputItem::onPlaybackDataChanged,
                Qt::UniqueConnection);
    m_preview->setEnabled(true);
    m_program->setEnabled(true);
    m_delay->setEnabled(true);
    showDevices();
}

void AudioOutputItem::onDisconnected()
{
    m_preview->setEnabled(false);
    m_program->setEnabled(false);
    m_delay->setEnabled(false);
}

/// Not with each position of what plays.
void AudioOutputItem::onPlaybackDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (PlaybackModel::isColumnIn(PlaybackModel::AudioDeviceColumn, topLeft, bottomRight))
        showDevices();
}

void AudioOutputItem::showDevices()
{
    showDevice(m_preview, m_session->previewPlaybackModel());
    showDevice(m_program, m_session->programPlaybackModel());
    updateMessage();
}

void AudioOutputItem::showDevice(SwitchSelect* target, const PlaybackModel* model)
{
    target->setValue(model->index(0, PlaybackModel::AudioDeviceColumn).data());
}

void AudioOutputItem::updateMessage()
{
    const int dante = static_cast<int>(AudioPlaybackDevice::Dante);
    m_message->setVisible(m_preview->value().toInt() == dante || m_program->value().toInt() == dante);
}

void AudioOutputItem::onSelectionChanged(PlaybackType type)
{
    updateMessage();
    const SwitchSelect* chooser = type == PlaybackType::Preview ? m_preview : m_program;
    const auto device = static_cast<AudioPlaybackDevice>(chooser->value().toInt());
    Object* playback = m_session->getScene()->findObject(std::string("/device/channels/0/") + toStr(type));
    if (!execute<SelectAudioDeviceCommand>(m_session->getQUndoStack(), "SelectAudioDeviceCommand", playback,
                                           toStr(device)))
        showDevices(); // as they are
}

void AudioOutputItem::onStyleChange(ConfigurationOption option, const QVariant& value)
{
    if (option == TEXT_SIZE)
        setDynamicStyle(this, "container", toString(fontSizeFrom(value)));
}

void AudioOutputItem::onAddressChanged()
{
    const QString address = m_session->connectionProvider()->hostAddress();
    setTitle(address.isEmpty() ? tr("Audio") : tr("Audio  %1").arg(address));
}

} // namespace vantrel
