#include "common/outputs/outputmodel.h"

#include "common/command/execute.h"
#include "common/command/invokemethodcommand.h"
#include "common/outputs/outputslogging.h"
#include "common/session/mirror/guichannel.h"
#include "common/session/mirror/guimapping.h"
#include "common/session/mirror/guimodeline.h"
#include "common/session/mirror/guioutput.h"
#include "tarn/qt/variantqt.h"

#include <QRegularExpression>

namespace vantrel {

namespace {

const QString previewTarget = QStringLiteral("preview");
const QString programTarget = QStringLiteral("program_rgb");
constexpr int serverTakes = 2000; // milliseconds at most from a wish to what the server makes of it

/// Without the zeros at the end, and the point that they leave.
QString trimmed(QString number)
{
    static const QRegularExpression zeros(QStringLiteral("0+$"));
    static const QRegularExpression point(QStringLiteral("\\.$"));
    return number.remove(zeros).remove(point);
}

QString targetOf(const std::shared_ptr<GUIMapping>& mapping)
{
    return mapping ? mapping->target() : QString();
}

} // namespace

OutputModel::OutputModel(QUndoStack* stack, QObject* parent)
    : QAbstractTableModel(parent)
    , m_stack(stack)
{
    m_lookAgain.setSingleShot(true);
    connect(&m_lookAgain, &QTimer::timeout, this, &OutputModel::onReset);
}

OutputModel::~OutputModel() = default;

void OutputModel::setChannel(std::shared_ptr<GUIChannel> channel)
{
    m_channel = std::move(channel);
}

void OutputModel::setProgramMapping(std::shared_ptr<GUIMapping> mapping)
{
    followMapping(m_programMapping.get(), mapping.get());
    m_programMapping = std::move(mapping);
    onReset();
}

void OutputModel::setPreviewMapping(std::shared_ptr<GUIMapping> mapping)
{
    followMapping(m_previewMapping.get(), mapping.get());
    m_previewMapping = std::move(mapping);
    onReset();
}

void OutputModel::followMapping(GUIMapping* before, GUIMapping* mapping)
{
    if (before)
        disconnect(before, nullptr, this, nullptr);
    if (!mapping)
        return;
    connect(mapping, &GUIMapping::reset, this, &OutputModel::onReset);
    connect(mapping, &GUIMapping::scalingChanged, this, &OutputModel::onReset);
    connect(mapping, &GUIMapping::defaultScaleModeChanged, this, &OutputModel::onReset);
    connect(mapping, &GUIMapping::targetChanged, this, &OutputModel::onReset);
    connect(mapping, &GUIMapping::backgroundColorChanged, this, &OutputModel::onReset);
    connect(mapping, &GUIMapping::linearTransitionsChanged, this, &OutputModel::onReset);
}

void OutputModel::setOutput(std::shared_ptr<GUIOutput> output)
{
    if (m_output)
        disconnect(m_output.get(), nullptr, this, nullptr);
    m_output = std::move(output);
    if (m_output) {
        connect(m_output.get(), &GUIOutput::reset, this, &OutputModel::onReset);
#define VANTREL_FOLLOW(type, name, setter)                                                                   \
    connect(m_output.get(), &GUIOutput::name##Changed, this, &OutputModel::onReset);
        VANTREL_OUTPUT_PROPERTIES(VANTREL_FOLLOW)
#undef VANTREL_FOLLOW
        connect(m_output.get(), &GUIOutput::screenChanged, this, &OutputModel::screenChanged);
    }
    onReset();
    Q_EMIT screenChanged();
}

void OutputModel::setModelines(Modelines modelines)
{
    m_modelines = std::move(modelines);
    updateModelines();
}

void OutputModel::updateModelines()
{
    if (!m_modelines || *m_modelines == m_followed)
        return;
    m_followed = *m_modelines;
    for (const std::shared_ptr<GUIModeline>& modeline : std::as_const(*m_modelines))
        connect(modeline.get(), &GUIModeline::changed, this, &OutputModel::onReset, Qt::UniqueConnection);
}

void OutputModel::onReset()
{
    m_lookAgain.stop();
    updateModelines();
    beginResetModel();
    endResetModel();
    Q_EMIT dataChanged(index(0, 0), index(0, ColumnCount - 1));
}

std::shared_ptr<GUIMapping> OutputModel::getMapping() const
{
    const QString name = m_output ? m_output->name() : QString();
    if (name.isEmpty())
        return nullptr;
    for (const auto& mapping : {m_previewMapping, m_programMapping}) {
        if (mapping && mapping->target() == name)
            return mapping;
    }
    return nullptr;
}

bool OutputModel::sendCommand(Object* object, const QString& method, const QString& text,
                              const VariantMap& args)
{
    const bool isSent = execute<InvokeMethodCommand>(m_stack, qPrintable(method + QLatin1String(" command")),
                                                     object, method, args, text);
    m_lookAgain.start(isSent ? serverTakes : 0);
    if (!isSent)
        Q_EMIT refused();
    return isSent;
}

void OutputModel::sendScaling(const QString& mode)
{
    sendToMapping(QStringLiteral("selectDefaultScaleMode"), tr("Set default scale mode"),
                  {{"mode", Variant::from(mode)}});
}

void OutputModel::sendBackgroundColor(const QColor& color)
{
    sendToMapping(QStringLiteral("selectBackgroundColor"), tr("Set background color"),
                  {{"color", Variant::from(color.name())}});
}

bool OutputModel::mixesLight() const
{
    const auto mapping = getMapping();
    return mapping && mapping->linearTransitions();
}

void OutputModel::sendMixesLight(bool on)
{
    sendToMapping(QStringLiteral("selectLinearTransitions"), tr("Set transitions in linear light"),
                  {{"on", Variant::from(on)}});
}

void OutputModel::sendToMapping(const QString& method, const QString& text, const VariantMap& args)
{
    if (const auto mapping = getMapping())
        sendCommand(mapping->object(), method, text, args);
    else
        qCWarning(lcOutputs, "No mapping for output (preview = %s, program = %s)",
                  qPrintable(targetOf(m_previewMapping)), qPrintable(targetOf(m_programMapping)));
}

/// The settings of a signal stay with its output: the target alone goes over to the other mapping.
void OutputModel::sendTarget(const QString& target)
{
    if (!m_channel) {
        qCWarning(lcOutputs, "Missing channel");
        return;
    }
    if (target != previewTarget && target != programTarget) {
        qCWarning(lcOutputs, "No such target: '%s'", qPrintable(target));
        return;
    }
    const QString preview = targetOf(m_previewMapping);
    const QString program = targetOf(m_programMapping);
    const QString name = m_output ? m_output->name() : QString();
    if ((target == previewTarget && preview == name) || (target == programTarget && program == name)) {
        qCWarning(lcOutputs, "Nothing to do in sendTarget");
        return;
    }
    if (!m_previewMapping || !m_programMapping)
        return;
    qCInfo(lcOutputs, "Swapping targets (preview = %s, program = %s)", qPrintable(preview),
           qPrintable(program));
    sendCommand(m_channel->object(), QStringLiteral("configure"), tr("Configure targets"),
                {{"target1", Variant::from(program)},
                 {"mode1", Variant::from(m_programMapping->scaling())},
                 {"bg1", Variant::from(m_programMapping->backgroundColor().name())},
                 {"target2", Variant::from(preview)},
                 {"mode2", Variant::from(m_previewMapping->scaling())},
                 {"bg2", Variant::from(m_previewMapping->backgroundColor().name())}});
}

bool OutputModel::sendToOutput(const QString& method, const QString& text, const VariantMap& args)
{
    return sendCommand(m_output ? m_output->object() : nullptr, method, text, args);
}

void OutputModel::sendModelineId(QString id, bool maxLinkRate)
{
    sendToOutput(QStringLiteral("selectModeline"), tr("Set modeline"),
                 {{"modelineId", Variant::from(id)}, {"maxLinkRate", Variant::from(maxLinkRate)}});
    Q_EMIT modeAsked();
}

void OutputModel::sendEdidOverride(const QString& filename, const QString& edid, const QString& modelineId,
                                   bool maxLinkRate)
{
    sendToOutput(QStringLiteral("setEdidOverride"), tr("Set edid override"),
                 {{"edid", Variant::from(edid)},
                  {"filename", Variant::from(filename)},
                  {"modelineId", Variant::from(modelineId)},
                  {"maxLinkRate", Variant::from(maxLinkRate)}});
    Q_EMIT modeAsked();
}

void OutputModel::resetEdid()
{
    sendToOutput(QStringLiteral("resetEdid"), tr("Reset edid override"), {});
    Q_EMIT modeAsked();
}

int OutputModel::confirmSeconds() const
{
    return m_output ? m_output->confirmSeconds() : 0;
}

ScreenHealth OutputModel::screen() const
{
    return m_output ? m_output->screen() : ScreenHealth();
}

bool OutputModel::isIdentified() const
{
    return m_output && m_output->identified();
}

void OutputModel::identify(bool on)
{
    sendToOutput(QStringLiteral("identify"), tr("Identify output"), {{"on", Variant::from(on)}});
}

bool OutputModel::keepMode()
{
    return sendToOutput(QStringLiteral("keepMode"), tr("Keep mode"), {});
}

bool OutputModel::revertMode()
{
    return sendToOutput(QStringLiteral("revertMode"), tr("Take mode back"), {});
}

QString OutputModel::formatFieldFreq(double frequency)
{
    return trimmed(QString::number(frequency, 'f', 3)) + QStringLiteral(" Hz");
}

QString OutputModel::formatLineFreq(double frequency)
{
    return trimmed(QString::number(frequency / 1000.0, 'f', 1)) + QStringLiteral(" kHz");
}

int OutputModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 1;
}

int OutputModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

Qt::ItemFlags OutputModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsEditable : flags;
}

QVariant OutputModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QMap<int, const char*> headers{
        {NameColumn, QT_TR_NOOP("Name")},
        {WidthColumn, QT_TR_NOOP("Width")},
        {HeightColumn, QT_TR_NOOP("Height")},
        {FieldFrequencyColumn, QT_TR_NOOP("Field Frequency")},
        {LineFrequencyColumn, QT_TR_NOOP("Line Frequency")},
        {ScalingColumn, QT_TR_NOOP("Default Scaling")},
        {TargetColumn, QT_TR_NOOP("Target")},
        {ConnectedColumn, QT_TR_NOOP("Connected")},
        {ErrorColumn, QT_TR_NOOP("Error")},
        {ErrorTextColumn, QT_TR_NOOP("Error Text")},
        {ProductColumn, QT_TR_NOOP("Product")},
        {ModelinesColumn, QT_TR_NOOP("Modelines")},
        {ModelineIdColumn, QT_TR_NOOP("Modeline Id")},
        {PreferredModelineIdColumn, QT_TR_NOOP("Preferred Modeline Id")},
        {EdidColumn, QT_TR_NOOP("Edid")},
        {OverrideEdidColumn, QT_TR_NOOP("Override Edid")},
        {FileNameColumn, QT_TR_NOOP("File name")},
        {BackgroundColorColumn, QT_TR_NOOP("Background color")},
        {MaxLinkRateColumn, QT_TR_NOOP("Max link rate")},
        {PhyRepeaterCountColumn, QT_TR_NOOP("PHY repeater count")},
        {PhyRepeaterModeColumn, QT_TR_NOOP("PHY repeater mode")},
        {SubconnectorColumn, QT_TR_NOOP("Subconnector")},
        {FecColumn, QT_TR_NOOP("FEC Sink")},
        {DscColumn, QT_TR_NOOP("DSC Sink")}};
    const char* header = headers.value(section);
    return header ? tr(header) : QVariant();
}

QVariant OutputModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole) || !m_output)
        return {};
    if (index.column() <= LineFrequencyColumn)
        return timing(index.column());
    const QVariant value = status(index.column());
    return value.isValid() ? value : settings(index.column());
}

QVariant OutputModel::timing(int column) const
{
    const double frame = double(m_output->hTotal()) * m_output->vTotal();
    const QString unknown = QStringLiteral("--");
    switch (column) {
    case NameColumn:
        return m_output->name();
    case WidthColumn:
        return m_output->width();
    case HeightColumn:
        return m_output->height();
    case HTotalColumn:
        return m_output->hTotal();
    case VTotalColumn:
        return m_output->vTotal();
    case HSyncPolarityColumn:
        return m_output->hSyncPolarity();
    case VSyncPolarityColumn:
        return m_output->vSyncPolarity();
    case InterlacedColumn:
        return m_output->interlaced();
    case FieldFrequencyColumn: // the totals are of a whole picture, which interlaced modes send as two fields
        return m_output->dotClock() == 0 || frame == 0
                   ? unknown
                   : formatFieldFreq(m_output->dotClock() / frame * (m_output->interlaced() ? 2 : 1));
    case LineFrequencyColumn:
        return m_output->dotClock() == 0 || m_output->hTotal() == 0
                   ? unknown
                   : formatLineFreq(double(m_output->dotClock()) / m_output->hTotal());
    default:
        return {};
    }
}

/// What the output and its display report; invalid for a column that is something else.
QVariant OutputModel::status(int column) const
{
    switch (column) {
    case BpcColumn:
        return m_output->bpc();
    case ColorspaceColumn:
        return m_output->colorspace();
    case CurrentLaneCountColumn:
        return m_output->currentLaneCount();
    case CurrentLinkRateColumn:
        return m_output->currentLinkRate();
    case ReportedLaneCountColumn:
        return m_output->reportedLaneCount();
    case ReportedLinkRateColumn:
        return m_output->reportedLinkRate();
    case ConnectedColumn:
        return m_output->connected();
    case ErrorColumn:
        return m_output->error();
    case ErrorTextColumn:
        return m_output->errorText();
    case ProductColumn:
        return m_output->product();
    case PhyRepeaterCountColumn:
        return m_output->phyRepeaterCount();
    case PhyRepeaterModeColumn:
        return m_output->phyRepeaterMode();
    case SubconnectorColumn:
        return m_output->subconnector();
    case FecColumn:
        return m_output->fec();
    case DscColumn:
        return m_output->dsc();
    default:
        return {};
    }
}

QVariant OutputModel::settings(int column) const
{
    switch (column) {
    case ScalingColumn: {
        const auto mapping = getMapping();
        return mapping ? mapping->scaling() : QStringLiteral("fit");
    }
    case TargetColumn:
        return target();
    case ModelinesColumn:
        return QVariant::fromValue(m_modelines);
    case ModelineIdColumn:
        return m_output->modelineId();
    case PreferredModelineIdColumn:
        return m_output->preferredModelineId();
    case EdidColumn:
        return m_output->edid();
    case OverrideEdidColumn:
        return m_output->edidOverride();
    case FileNameColumn:
        return m_output->edidOverrideFilename();
    case BackgroundColorColumn: {
        const auto mapping = getMapping();
        return mapping ? mapping->backgroundColor() : QColor(Qt::black);
    }
    case MaxLinkRateColumn:
        return m_output->maxLinkRate();
    default:
        return {};
    }
}

QString OutputModel::target() const
{
    const auto mapping = getMapping();
    if (!mapping)
        return {};
    return mapping == m_previewMapping ? previewTarget : programTarget;
}

bool OutputModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    m_lookAgain.start(0);
    switch (index.column()) {
    case ScalingColumn:
        sendScaling(value.toString());
        return true;
    case TargetColumn:
        sendTarget(value.toString());
        return true;
    case FileNameColumn: {
        const auto [name, edid] = value.value<EdidFile>();
        sendEdidOverride(name, edid, QString(), false);
        return true;
    }
    case BackgroundColorColumn:
        sendBackgroundColor(value.value<QColor>());
        return true;
    default:
        return false;
    }
}

} // namespace vantrel
