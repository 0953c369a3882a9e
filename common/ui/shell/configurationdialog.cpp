#include "common/ui/shell/configurationdialog.h"

#include "common/media/address/showntext.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/session/settings/configuration.h"
#include "common/session/settings/timecodeviewmode.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/navbutton.h"
#include "common/ui/toolkit/navigationbar.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztcombobox.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QFormLayout>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int localTab = 0;
constexpr int serverTab = 1;
constexpr int adjustDelay = 300; // milliseconds, for the new sizes to settle

QFormLayout* makeForm(QWidget* page)
{
    auto* form = new QFormLayout(page);
    form->setContentsMargins(0, 8, 0, 0);
    form->setHorizontalSpacing(24);
    form->setVerticalSpacing(12);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    form->setFormAlignment(Qt::AlignLeft | Qt::AlignTop);
    return form;
}

void addRow(QFormLayout* form, const QString& text, QWidget* field)
{
    auto* label = new ZTLabel(text, form->parentWidget());
    label->setBuddy(field);
    field->setAccessibleName(text);
    form->addRow(label, field);
}

} // namespace

ConfigurationDialog::ConfigurationDialog(QWidget* parent)
    : ZTDialog(tr("Configuration"), parent)
    , m_bar(new NavigationBar(this))
    , m_pages(new QStackedWidget(this))
{
    m_bar->addTab(localTab, new NavButton(tr("Local"), {}, m_bar));
    m_bar->addTab(serverTab, new NavButton(tr("Server"), {}, m_bar));
    m_bar->addSpacer();
    m_pages->addWidget(makeLocalPage());
    m_pages->addWidget(makeServerPage());
    connect(m_bar, &NavigationBar::tabSelected, m_pages, &QStackedWidget::setCurrentIndex);
    contentLayout()->addWidget(m_bar);
    contentLayout()->addWidget(m_pages, 1);
    setAcceptText(tr("CLOSE"));
    setAcceptClass(QStringLiteral("cancel"));
    setCancelText(QString());
    setObjectNames(QStringLiteral("ConfigurationDialog"));
    followFontSize(this, [this](FontSize size) { setMinimumWidth(scaled(480, size)); });
    m_bar->setActiveTab(localTab);
    onDisconnected();
    loadConfiguration();
}

QWidget* ConfigurationDialog::makeLocalPage()
{
    auto* page = new QWidget(m_pages);
    QFormLayout* form = makeForm(page);
    m_textSize = new SwitchSelect(page);
    m_textSize->addItem(tr("Small"), static_cast<int>(FontSize::Small));
    m_textSize->addItem(tr("Medium"), static_cast<int>(FontSize::Medium));
    connect(m_textSize, &SwitchSelect::clicked, this, &ConfigurationDialog::onTextSizeSelected);
    addRow(form, tr("Text size:"), m_textSize);

    m_rounding = new ZTCheckBox(tr("Round to steps"), page);
    connect(m_rounding, &ZTCheckBox::clicked, this, &ConfigurationDialog::saveConfiguration);
    addRow(form, tr("Drag edit rounding:"), m_rounding);

    m_timeFormat = new SwitchSelect(page);
    m_timeFormat->addItem(tr("Time"), static_cast<int>(TimecodeViewMode::Time),
                          tr("Hours, minutes, seconds and milliseconds"));
    m_timeFormat->addItem(tr("NDF"), static_cast<int>(TimecodeViewMode::NDF), tr("Timecode, non-drop frame"));
    m_timeFormat->addItem(tr("DF"), static_cast<int>(TimecodeViewMode::DF), tr("Timecode, drop frame"));
    connect(m_timeFormat, &SwitchSelect::clicked, this, &ConfigurationDialog::saveConfiguration);
    addRow(form, tr("Time display format:"), m_timeFormat);
    return page;
}

QWidget* ConfigurationDialog::makeServerPage()
{
    auto* page = new QWidget(m_pages);
    QFormLayout* form = makeForm(page);
    m_playState = new SwitchSelect(page);
    m_playState->addItem(tr("Play"), QStringLiteral("play"), tr("Start Program in Play state"));
    m_playState->addItem(tr("Pause"), QStringLiteral("pause"), tr("Start Program in Pause state"));
    m_playState->addItem(tr("Stop"), QStringLiteral("stop"), tr("Start Program in Stop state"));
    connect(m_playState, &SwitchSelect::clicked, this, [this](const QVariant& value) {
        setServerData(ServerConfigurationModel::AutoStartPlayStateColumn, value);
    });
    addRow(form, tr("Autostart playstate:"), m_playState);

    m_startShow = new ZTComboBox(page);
    m_startShow->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(m_startShow, &QComboBox::activated, this, [this] {
        setServerData(ServerConfigurationModel::AutoStartShowColumn, m_startShow->currentData());
    });
    addRow(form, tr("Autostart show:"), m_startShow);

    m_autoSave = new ZTCheckBox(tr("Save the show on every change"), page);
    connect(m_autoSave, &ZTCheckBox::clicked, this,
            [this](bool checked) { setServerData(ServerConfigurationModel::AutoSaveColumn, checked); });
    addRow(form, tr("Auto save:"), m_autoSave);
    initAutoStartShow({}, QString());
    return page;
}

void ConfigurationDialog::setModel(std::shared_ptr<ServerConfigurationModel> model)
{
    if (m_model)
        m_model->disconnect(this);
    m_model = std::move(model);
    if (!m_model)
        return;
    connect(m_model.get(), &QAbstractItemModel::dataChanged, this,
            &ConfigurationDialog::updateServerConfigurationData);
    connect(m_model.get(), &QAbstractItemModel::modelReset, this,
            &ConfigurationDialog::updateServerConfigurationData);
    updateServerConfigurationData();
}

void ConfigurationDialog::loadConfiguration()
{
    const FontSize size = currentFontSize();
    // A size set by hand in the file is shown too, else nothing would be chosen.
    if (!m_textSize->button(static_cast<int>(size)))
        m_textSize->addItem(size == FontSize::Large ? tr("Large") : tr("Huge"), static_cast<int>(size));
    m_textSize->setValue(static_cast<int>(size));
    m_rounding->setChecked(configurationValue(DRAGGER_ROUND_TO_STEP_SIZE).toBool());
    m_timeFormat->setValue(configurationValue(TIMECODE_DISPLAY_MODE).toInt());
}

void ConfigurationDialog::saveConfiguration()
{
    Configuration* settings = configuration();
    if (!settings)
        return;
    // A text size written anew dresses the whole application again, so only a change is.
    if (const FontSize size = fontSizeFrom(m_textSize->value()); size != currentFontSize())
        settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
    settings->setValue(TIMECODE_DISPLAY_MODE, m_timeFormat->value().toInt());
    settings->setValue(DRAGGER_ROUND_TO_STEP_SIZE, m_rounding->isChecked());
}

void ConfigurationDialog::onTextSizeSelected(const QVariant&)
{
    saveConfiguration();
    QTimer::singleShot(adjustDelay, this, &ConfigurationDialog::adjustApp);
}

/// The dialog alone: the window keeps the size that the operator gave it.
void ConfigurationDialog::adjustApp()
{
    adjustSize();
}

void ConfigurationDialog::onConnected()
{
    m_bar->setEnabled(serverTab);
}

void ConfigurationDialog::onDisconnected()
{
    m_bar->setActiveTab(localTab);
    m_bar->setDisabled(serverTab);
    m_bar->button(serverTab)->setToolTip(tr("Needs a server connection"));
}

void ConfigurationDialog::updateServerConfigurationData()
{
    if (!m_model || m_model->rowCount() == 0)
        return;
    const auto read = [this](int column) { return m_model->index(0, column).data(); };
    m_autoSave->setChecked(read(ServerConfigurationModel::AutoSaveColumn).toBool());
    m_playState->setValue(read(ServerConfigurationModel::AutoStartPlayStateColumn));
    initAutoStartShow(read(ServerConfigurationModel::AutoStartShowListColumn).toStringList(),
                      read(ServerConfigurationModel::AutoStartShowColumn).toString());
}

void ConfigurationDialog::initAutoStartShow(const QStringList& shows, const QString& current)
{
    const QSignalBlocker blocker(m_startShow);
    m_startShow->clear();
    m_startShow->addItem(tr("None"), QString());
    m_startShow->addItem(tr("Default"), QStringLiteral("default"));
    for (const QString& show : shows + QStringList{current}) { // which may be gone, and stands for itself
        if (!show.isEmpty() && m_startShow->findData(show) < 0)
            m_startShow->addItem(shownText(show), show);
    }
    m_startShow->setCurrentIndex(m_startShow->findData(current));
}

void ConfigurationDialog::setServerData(int column, const QVariant& value)
{
    if (m_model)
        m_model->setData(m_model->index(0, column), value);
}

void ConfigurationDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    m_bar->setObjectNames(base + QStringLiteral("-bar"));
    m_textSize->setObjectNames(base + QStringLiteral("-TextSize"));
    m_rounding->setObjectName(base + QStringLiteral("-DragRounding"));
    m_timeFormat->setObjectNames(base + QStringLiteral("-TimeFormat"));
    m_playState->setObjectNames(base + QStringLiteral("-PlayState"));
    m_startShow->setObjectName(base + QStringLiteral("-AutoStartShow"));
    m_autoSave->setObjectName(base + QStringLiteral("-AutoSave"));
}

void ConfigurationDialog::showEvent(QShowEvent* event)
{
    loadConfiguration();
    updateServerConfigurationData();
    ZTDialog::showEvent(event);
}

} // namespace vantrel
