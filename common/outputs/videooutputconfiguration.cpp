#include "common/outputs/videooutputconfiguration.h"

#include "common/outputs/modelinedialog.h"
#include "common/outputs/outputmodel.h"
#include "common/outputs/outputslogging.h"
#include "common/outputs/outputtexts.h"
#include "common/outputs/scalingmodes.h"
#include "common/ui/style/colors.h"
#include "common/ui/style/dynamicstyle.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/colorbox.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/seenupdate.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztdropdownmenu.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QTextDocument>

namespace vantrel {

namespace {

QWidget* inOneRow(QWidget* parent, std::initializer_list<QWidget*> widgets)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::normal);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return row;
}

} // namespace

VideoOutputConfiguration::VideoOutputConfiguration(int outputNumber, QWidget* parent)
    : ZTFrame(parent)
    , m_outputNumber(outputNumber)
    , m_dialog(new ModelineDialog(this))
    , m_update(new SeenUpdate(this, [this] { updateData(); }))
{
    auto* form = new QFormLayout(this);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    form->setHorizontalSpacing(spacing::loose);
    form->setVerticalSpacing(spacing::normal);
    addSettings(form);
    addStatus(form);
    setObjectNames(QStringLiteral("VideoOutput-%1").arg(outputNumber));
    connect(m_dialog, &ModelineDialog::applied, this, &VideoOutputConfiguration::handleModelineIdChange);
    updateData();
}

void VideoOutputConfiguration::addSettings(QFormLayout* form)
{
    m_target = new SwitchSelect(this);
    m_target->addItem(tr("Preview"), QStringLiteral("preview"),
                      tr("This output shows what is cued on preview"));
    m_target->addItem(tr("Program"), QStringLiteral("program_rgb"), tr("This output shows what is on air"));
    m_target->setAccessibleName(tr("Target of output %1").arg(m_outputNumber));
    connect(m_target, &SwitchSelect::clicked, this, &VideoOutputConfiguration::handleTargetChange);
    form->addRow(new ZTLabel(tr("Target:"), this), m_target);

    addValue(form, tr("Display:"), QStringLiteral("display"));
    addValue(form, tr("Resolution:"), QStringLiteral("resolution"));
    m_edit = new IconButton(QStringLiteral(":/icons/edit.svg"), {}, this);
    m_edit->setObjectName(QStringLiteral("editButton"));
    m_edit->setToolTip(tr("Edit output display properties"));
    m_edit->setAccessibleName(tr("Edit output %1 display properties").arg(m_outputNumber));
    connect(m_edit, &IconButton::clicked, this, &VideoOutputConfiguration::openEditDialog);
    addValue(form, tr("Refresh rate:"), QStringLiteral("refreshRate"));
    auto* errorIcon = new ZTLabel(this);
    errorIcon->setObjectName(QStringLiteral("errorIcon"));
    followFontSize(errorIcon, [errorIcon](FontSize size) {
        const int side = iconExtent(size);
        errorIcon->setPixmap(IconCache::pixmap(QStringLiteral(":/icons/error_small.svg"),
                                               colors::getColor(colors::Red_error), {side, side},
                                               errorIcon->devicePixelRatioF()));
    });
    m_errorIcon = errorIcon;
    QWidget* rate = form->itemAt(form->rowCount() - 1, QFormLayout::FieldRole)->widget();
    rate->layout()->addWidget(m_errorIcon);
    rate->layout()->addWidget(m_edit);

    m_scaling = new ZTDropdownMenu(this);
    for (const ScalingMode& mode : scalingModes())
        m_scaling->addItem(tintedIcon(mode.icon), mode.label, mode.value);
    m_scaling->setToolTip(tr("How media stand in this output's picture, unless their slot says otherwise"));
    m_scaling->setAccessibleName(tr("Default scaling of output %1").arg(m_outputNumber));
    connect(m_scaling, &ZTDropdownMenu::activated, this, &VideoOutputConfiguration::handleScalingChange);
    form->addRow(new ZTLabel(tr("Default scaling:"), this), m_scaling);

    m_background = new ColorBox(this);
    m_background->setOpaque(true);
    m_background->setToolTip(tr("What shows around media that do not fill the picture"));
    m_background->setAccessibleName(tr("Background of output %1").arg(m_outputNumber));
    connect(m_background, &ColorBox::colorEdited, this,
            &VideoOutputConfiguration::handleBackgroundColorChange);
    addValue(form, tr("Background:"), QStringLiteral("background"));
    QWidget* background = form->itemAt(form->rowCount() - 1, QFormLayout::FieldRole)->widget();
    static_cast<QHBoxLayout*>(background->layout())->insertWidget(0, m_background);
    m_mixesLight = new ZTCheckBox(tr("in linear light"), this);
    m_mixesLight->setToolTip(
        tr("Transitions on the real screen mix light as two projectors would, brighter in the "
           "middle; else the values of the pictures, as the previews always do"));
    m_mixesLight->setAccessibleName(tr("Transitions of output %1 in linear light").arg(m_outputNumber));
    connect(m_mixesLight, &ZTCheckBox::clicked, this, [this](bool on) {
        if (m_model)
            m_model->sendMixesLight(on);
        m_mixesLight->setChecked(m_model && m_model->mixesLight()); // until the server says otherwise
    });
    form->addRow(new ZTLabel(tr("Transitions:"), this), m_mixesLight);
    addQuestion(form); // below what is set, which stays where it is
}

/// In every window, whichever has changed the mode: who sees the picture says so.
void VideoOutputConfiguration::addQuestion(QFormLayout* form)
{
    const auto makeButton = [this](const QString& text, const QString& tip, bool (OutputModel::*send)()) {
        auto* button = new PushButton(text, this);
        button->setToolTip(tip);
        connect(button, &PushButton::clicked, this, [this, send] {
            if (m_model)
                (m_model->*send)();
        });
        return button;
    };
    m_keep = makeButton(tr("KEEP"), tr("The new video mode can be seen, and stays"), &OutputModel::keepMode);
    m_goBack =
        makeButton(tr("GO BACK"), tr("The video mode before comes back at once"), &OutputModel::revertMode);
    m_goBack->setStyleClass(QStringLiteral("cancel"));
    addValue(form, tr("New mode:"), QStringLiteral("newMode"));
    setDynamicStyle(m_values.value(QStringLiteral("newMode")), "urgency", QStringLiteral("soon"));
    m_question = inOneRow(this, {m_keep, m_goBack});
    static_cast<QHBoxLayout*>(m_question->layout())->addStretch(1);
    form->addRow(m_question);
}

void VideoOutputConfiguration::updateQuestion()
{
    const int seconds = m_model ? m_model->confirmSeconds() : 0;
    setValue(QStringLiteral("newMode"), tr("goes back in %1 s").arg(seconds));
    auto* form = static_cast<QFormLayout*>(layout());
    form->setRowVisible(m_values.value(QStringLiteral("newMode"))->parentWidget(), seconds > 0);
    form->setRowVisible(m_question, seconds > 0);
}

void VideoOutputConfiguration::addStatus(QFormLayout* form)
{
    auto* heading = new ZTLabel(tr("Status"), this);
    heading->setObjectName(QStringLiteral("StatusHeading"));
    heading->setStyleClass(QStringLiteral("section"));
    form->addItem(new QSpacerItem(0, spacing::tight));
    form->addRow(heading);
    addValue(form, tr("Screen:"), QStringLiteral("screen"));
    addValue(form, tr("Pictures lost:"), QStringLiteral("lostPictures"));
    addValue(form, tr("Decoding:"), QStringLiteral("decoding"));
    addValue(form, tr("Painting:"), QStringLiteral("painting"));
    addValue(form, tr("Format size:"), QStringLiteral("formatSize"));
    addValue(form, tr("Field frequency:"), QStringLiteral("fieldFrequency"));
    addValue(form, tr("Line frequency:"), QStringLiteral("lineFrequency"));
    addValue(form, tr("Signal size:"), QStringLiteral("signalSize"));
    addValue(form, tr("Polarity:"), QStringLiteral("polarity"));
    addValue(form, tr("Scan type:"), QStringLiteral("scanType"));
    addValue(form, tr("Color depth:"), QStringLiteral("colorDepth"));
    addValue(form, tr("Color space:"), QStringLiteral("colorSpace"));
    addValue(form, tr("Current link:"), QStringLiteral("currentLink"));
    addValue(form, tr("Maximum link:"), QStringLiteral("maximumLink"));
    addValue(form, tr("Subconnector:"), QStringLiteral("subconnector"));
    addValue(form, tr("FEC Sink:"), QStringLiteral("fec"));
    addValue(form, tr("DSC Sink:"), QStringLiteral("dsc"));
}

void VideoOutputConfiguration::addValue(QFormLayout* form, const QString& title, const QString& name)
{
    auto* label = new ElidedLabel(this);
    label->setProperty("propertyValue", QStringLiteral("true"));
    label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_values.insert(name, label);
    form->addRow(new ZTLabel(title, this), inOneRow(this, {label}));
}

void VideoOutputConfiguration::setObjectNames(const QString& base)
{
    setObjectName(base);
    m_target->setObjectNames(base + QStringLiteral("-target"));
    m_scaling->setObjectNames(base + QStringLiteral("-scaling"));
    m_background->setObjectNames(base + QStringLiteral("-background"));
    m_mixesLight->setObjectNames(base + QStringLiteral("-mixesLight"));
    m_keep->setObjectName(base + QStringLiteral("-keep-button"));
    m_goBack->setObjectName(base + QStringLiteral("-goBack-button"));
    for (auto label = m_values.cbegin(); label != m_values.cend(); ++label)
        label.value()->setObjectNames(base + u'-' + label.key() + QStringLiteral("-value"));
    m_dialog->setObjectNames(base + QStringLiteral("-ModelineDialog"));
}

void VideoOutputConfiguration::setModel(OutputModel* model)
{
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    if (m_model) {
        connect(m_model, &OutputModel::dataChanged, this, &VideoOutputConfiguration::onDataChanged);
        connect(m_model, &OutputModel::modelReset, this, &VideoOutputConfiguration::onDataChanged);
        connect(m_model, &OutputModel::screenChanged, this, &VideoOutputConfiguration::updateScreen);
    }
    m_dialog->setModel(model);
    updateData();
}

void VideoOutputConfiguration::setServerName(const QString& name)
{
    m_serverName = name;
}

/// What comes of one hand at a connector is dozens of changes.
void VideoOutputConfiguration::onDataChanged()
{
    m_update->ask();
}

QVariant VideoOutputConfiguration::value(int column) const
{
    return m_model ? m_model->index(0, column).data() : QVariant();
}

void VideoOutputConfiguration::setValue(const QString& name, const QString& text)
{
    m_values.value(name)->setText(text);
}

void VideoOutputConfiguration::updateData()
{
    updateSettings();
    updateQuestion();
    updateScreen();
    updateStatus();
}

void VideoOutputConfiguration::updateSettings()
{
    m_currentTarget = value(OutputModel::TargetColumn).toString();
    for (QWidget* ofTarget : {static_cast<QWidget*>(m_target), static_cast<QWidget*>(m_scaling),
                              static_cast<QWidget*>(m_background), static_cast<QWidget*>(m_mixesLight)})
        ofTarget->setEnabled(!m_currentTarget.isEmpty());
    if (m_currentTarget.isEmpty())
        m_target->chooseNone();
    else if (!m_targetDialog || !m_targetDialog->isVisible()) // it asks about what the switch shows
        m_target->setValue(m_currentTarget);
    setValue(QStringLiteral("display"), value(OutputModel::ConnectedColumn).toBool()
                                            ? textOrUnknown(value(OutputModel::ProductColumn).toString())
                                            : tr("disconnected"));
    m_edit->setEnabled(m_model);
    m_errorIcon->setVisible(value(OutputModel::ErrorColumn).toBool());
    const QString error = value(OutputModel::ErrorTextColumn).toString();
    m_errorIcon->setToolTip(Qt::mightBeRichText(error) ? error.toHtmlEscaped() : error);
    m_errorIcon->setAccessibleName(error);

    if (m_model) {
        const QString scaling = value(OutputModel::ScalingColumn).toString();
        if (const int index = m_scaling->findData(scaling); index >= 0)
            m_scaling->setCurrentIndex(index);
        else
            qCWarning(lcOutputs, "Output %d: Could not find index for scaling '%s'", m_outputNumber,
                      qPrintable(scaling));
        m_background->setColor(value(OutputModel::BackgroundColorColumn).value<QColor>());
    }
    setValue(QStringLiteral("background"), m_background->color().name());
    m_mixesLight->setChecked(m_model && m_model->mixesLight());
}

/// In amber where it is near its limit or beyond.
void VideoOutputConfiguration::updateScreen()
{
    const ScreenHealth screen = m_model ? m_model->screen() : ScreenHealth();
    const auto show = [this, &screen](const char* name, const QString& text, bool isWell) {
        ElidedLabel* label = m_values.value(QLatin1String(name));
        label->setText(textOrUnknown(text));
        label->setToolTip(screen.details());
        setDynamicStyle(label, "urgency", isWell ? QString() : QStringLiteral("soon"));
    };
    show("screen", screen.rateText(), true);
    show("lostPictures", screen.lostText(), screen.lost() == 0);
    show("decoding", screen.decodingText(), !screen.decodesAtItsLimit());
    show("painting", screen.paintingText(), !screen.paintsAtItsLimit());
}

void VideoOutputConfiguration::updateStatus()
{
    const bool isConnected = value(OutputModel::ConnectedColumn).toBool();
    const auto number = [this](int column) { return value(column).toInt(); };
    const auto yesOrNo = [this, isConnected](int column) {
        return !isConnected ? unknownText : value(column).toBool() ? tr("Yes") : tr("No");
    };
    const QString size = sizeText(number(OutputModel::WidthColumn), number(OutputModel::HeightColumn));
    const QString rate = textOrUnknown(value(OutputModel::FieldFrequencyColumn).toString());
    setValue(QStringLiteral("resolution"), size);
    setValue(QStringLiteral("formatSize"), size);
    setValue(QStringLiteral("refreshRate"), rate);
    setValue(QStringLiteral("fieldFrequency"), rate);
    setValue(QStringLiteral("lineFrequency"),
             textOrUnknown(value(OutputModel::LineFrequencyColumn).toString()));
    setValue(QStringLiteral("signalSize"),
             sizeText(number(OutputModel::HTotalColumn), number(OutputModel::VTotalColumn)));
    setValue(QStringLiteral("polarity"), polarityText(number(OutputModel::HSyncPolarityColumn),
                                                      number(OutputModel::VSyncPolarityColumn)));
    setValue(QStringLiteral("scanType"), !isConnected                                    ? unknownText
                                         : value(OutputModel::InterlacedColumn).toBool() ? tr("Interlaced")
                                                                                         : tr("Progressive"));
    setValue(QStringLiteral("colorDepth"), colorDepthText(number(OutputModel::BpcColumn)));
    setValue(QStringLiteral("colorSpace"), textOrUnknown(value(OutputModel::ColorspaceColumn).toString()));
    setValue(QStringLiteral("currentLink"), linkText(number(OutputModel::CurrentLaneCountColumn),
                                                     number(OutputModel::CurrentLinkRateColumn)));
    setValue(QStringLiteral("maximumLink"), linkText(number(OutputModel::ReportedLaneCountColumn),
                                                     number(OutputModel::ReportedLinkRateColumn)));
    setValue(QStringLiteral("subconnector"),
             textOrUnknown(value(OutputModel::SubconnectorColumn).toString()));
    setValue(QStringLiteral("fec"), yesOrNo(OutputModel::FecColumn));
    setValue(QStringLiteral("dsc"), yesOrNo(OutputModel::DscColumn));
}

void VideoOutputConfiguration::openEditDialog()
{
    m_dialog->setTitle(m_serverName + QStringLiteral(" - ") + tr("Output") + u' ' +
                       QString::number(m_outputNumber));
    m_dialog->resetView();
    m_dialog->show();
}

void VideoOutputConfiguration::handleTargetChange()
{
    // The button that is chosen already can be pressed, too.
    if (!m_model || m_target->value().toString() == m_currentTarget)
        return;
    m_askedTarget = m_target->value().toString();
    if (!m_targetDialog) {
        m_targetDialog = new ConfirmationDialog(
            tr("Change output targets?"),
            tr("Changing the output targets will immediately switch program and preview outputs. Do you "
               "want to continue?"),
            tr("OK"), window());
        m_targetDialog->setObjectNames(objectName() + QStringLiteral("-TargetDialog"));
        connect(m_targetDialog, &ZTDialog::confirmed, this, &VideoOutputConfiguration::performTargetChange);
        connect(m_targetDialog, &QDialog::finished, this, &VideoOutputConfiguration::cancelTargetChange);
    }
    m_targetDialog->open();
}

/// To what was asked about: a link that was lost meanwhile has left the switch without a choice.
void VideoOutputConfiguration::performTargetChange()
{
    m_currentTarget = m_askedTarget;
    m_model->setData(m_model->index(0, OutputModel::TargetColumn), m_currentTarget);
}

void VideoOutputConfiguration::cancelTargetChange()
{
    if (m_currentTarget.isEmpty())
        m_target->chooseNone();
    else
        m_target->setValue(m_currentTarget);
}

void VideoOutputConfiguration::handleScalingChange(int selectedIndex)
{
    if (m_model)
        m_model->setData(m_model->index(0, OutputModel::ScalingColumn), m_scaling->itemData(selectedIndex));
}

void VideoOutputConfiguration::handleBackgroundColorChange(QColor color)
{
    setValue(QStringLiteral("background"), color.name());
    if (m_model)
        m_model->setData(m_model->index(0, OutputModel::BackgroundColorColumn), color);
}

void VideoOutputConfiguration::handleModelineIdChange(bool is_auto, QString modelineId, bool maxLinkRate)
{
    if (!m_model)
        return;
    const bool isOverridden = !value(OutputModel::OverrideEdidColumn).toString().isEmpty();
    if (is_auto && isOverridden)
        m_model->resetEdid();
    else if (!is_auto && !isOverridden) // the display's own EDID, so that the format lasts
        m_model->sendEdidOverride(QString(), value(OutputModel::EdidColumn).toString(), modelineId,
                                  maxLinkRate);
    else if (!modelineId.isEmpty())
        m_model->sendModelineId(modelineId, !is_auto && maxLinkRate);
}

} // namespace vantrel
