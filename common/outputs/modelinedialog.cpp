#include "common/outputs/modelinedialog.h"

#include "common/outputs/ediddetails.h"
#include "common/outputs/edidtext.h"
#include "common/outputs/outputmodel.h"
#include "common/outputs/outputslogging.h"
#include "common/outputs/outputtexts.h"
#include "common/session/mirror/guimodeline.h"
#include "common/ui/style/spacing.h"
#include "common/ui/toolkit/elidedlabel.h"
#include "common/ui/toolkit/errordialog.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztdropdownmenu.h"
#include "tarn/edid/edid.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QSaveFile>
#include <QStandardItemModel>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr qint64 largestFile = 1 << 20; // bytes; the longest EDID has 98 KB as text with blanks

QFormLayout* makeForm(QWidget* panel)
{
    auto* form = new QFormLayout(panel);
    form->setContentsMargins(0, 0, 0, 0);
    form->setHorizontalSpacing(spacing::loose);
    form->setVerticalSpacing(spacing::normal);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return form;
}

QByteArray readFile(const QString& path, QIODevice::OpenMode mode)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | mode)) {
        qCDebug(lcOutputs) << "Cannot open file for reading: " << file.errorString();
        return {};
    }
    const QByteArray bytes = file.read(largestFile + 1);
    if (bytes.size() <= largestFile)
        return bytes;
    qCWarning(lcOutputs) << "The file is larger than any EDID:" << path;
    return {};
}

} // namespace

ModelineDialog::ModelineDialog(QWidget* parent)
    : ZTDialog(parent)
    , m_mode(new SwitchSelect(this))
{
    setModal(true);
    setBeside();
    m_mode->addItem(tr("Auto"), QStringLiteral("auto"), tr("Automatic properties from display"));
    m_mode->addItem(tr("Manual"), QStringLiteral("custom"), tr("Set manual display properties"));
    m_mode->setAccessibleName(tr("Display properties"));
    connect(m_mode, &SwitchSelect::clicked, this, &ModelineDialog::toggleCustom);
    m_autoPanel = makeAutoPanel();
    m_customPanel = makeCustomPanel();
    m_details = new EdidDetails(this);
    m_error = new ZTLabel(this);
    m_error->setStyleClass(QStringLiteral("error"));
    m_error->setWordWrap(true);
    contentLayout()->setSpacing(spacing::loose);
    contentLayout()->addWidget(m_mode, 0, Qt::AlignLeft);
    contentLayout()->addWidget(m_autoPanel);
    contentLayout()->addWidget(m_customPanel);
    contentLayout()->addWidget(m_error);
    contentLayout()->addWidget(m_details);

    m_apply = makeButton(tr("APPLY"), tr("Set this on the output, and stay here"));
    m_apply->setStyleClass(QStringLiteral("green"));
    addButton(m_apply);
    connect(m_apply, &PushButton::clicked, this, &ModelineDialog::handleApply);
    setClosesOnAccept(false);
    acceptButton()->setToolTip(tr("Set this on the output, and close"));
    cancelButton()->setToolTip(tr("Close, and set nothing more"));
    connect(this, &ZTDialog::confirmed, this, &ModelineDialog::handleConfirm);
    setTabOrder(m_format, m_linkRate);
    setTabOrder(m_linkRate, cancelButton());
    setTabOrder(cancelButton(), m_apply);
    setTabOrder(m_apply, acceptButton());
    setObjectNames(QStringLiteral("ModelineDialog"));
    showMode(true);
}

QWidget* ModelineDialog::makeAutoPanel()
{
    auto* panel = new QWidget(this);
    m_preferred = new ElidedLabel(unknownText, panel);
    makeForm(panel)->addRow(new ZTLabel(tr("Format:"), panel), m_preferred);
    return panel;
}

QWidget* ModelineDialog::makeCustomPanel()
{
    auto* panel = new QWidget(this);
    m_format = new ZTDropdownMenu(panel);
    m_format->setToolTip(tr("The video mode of the output"));
    m_format->setAccessibleName(tr("Format"));
    connect(m_format, &ZTDropdownMenu::activated, this, [this] {
        m_chosenFormat = m_format->currentData().toString();
        enableButtons();
    });
    m_linkRate = new ZTDropdownMenu(panel);
    m_linkRate->addItem(tr("Automatic"), false);
    m_linkRate->addItem(tr("Maximum speed"), true);
    m_linkRate->setToolTip(tr("How fast the link to the display runs"));
    m_linkRate->setAccessibleName(tr("Link rate"));
    connect(m_linkRate, &ZTDropdownMenu::activated, this, [this] { m_isLinkRateChosen = true; });
    m_edidFile = new ElidedLabel(unknownText, panel);
    m_export = makeButton(tr("EXPORT"), tr("Export EDID file"));
    m_import = makeButton(tr("IMPORT"), tr("Import EDID file"));
    m_read = makeButton(tr("READ FROM DISPLAY"),
                        tr("Read EDID file from display. Current file will be discarded."));
    connect(m_export, &PushButton::clicked, this, &ModelineDialog::handleExport);
    connect(m_import, &PushButton::clicked, this, &ModelineDialog::handleImport);
    connect(m_read, &PushButton::clicked, this, &ModelineDialog::handleReadDisplay);

    auto* buttons = new QWidget(panel);
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::normal);
    for (PushButton* button : {m_export, m_import, m_read})
        row->addWidget(button);
    row->addStretch(1);
    QFormLayout* form = makeForm(panel);
    form->addRow(new ZTLabel(tr("Format:"), panel), m_format);
    form->addRow(new ZTLabel(tr("Link rate:"), panel), m_linkRate);
    form->addRow(new ZTLabel(tr("EDID file:"), panel), m_edidFile);
    form->addRow(buttons);
    return panel;
}

PushButton* ModelineDialog::makeButton(const QString& text, const QString& tooltip)
{
    auto* button = new PushButton(text, this);
    button->setToolTip(tooltip);
    button->setAutoDefault(false);
    return button;
}

void ModelineDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    if (!m_error) // while the base class is made
        return;
    m_mode->setObjectNames(base + QStringLiteral("-mode"));
    m_format->setObjectNames(base + QStringLiteral("-format"));
    m_linkRate->setObjectNames(base + QStringLiteral("-linkRate"));
    m_preferred->setObjectNames(base + QStringLiteral("-preferred"));
    m_edidFile->setObjectNames(base + QStringLiteral("-edidFile"));
    m_details->setObjectNames(base + QStringLiteral("-details"));
    m_error->setObjectNames(base + QStringLiteral("-error"));
    m_export->setObjectName(base + QStringLiteral("-export-button"));
    m_import->setObjectName(base + QStringLiteral("-import-button"));
    m_read->setObjectName(base + QStringLiteral("-read-button"));
    m_apply->setObjectName(base + QStringLiteral("-apply-button"));
}

void ModelineDialog::setModel(OutputModel* model)
{
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    if (m_model) {
        connect(m_model, &OutputModel::dataChanged, this, &ModelineDialog::onDataChanged);
        connect(m_model, &OutputModel::modelReset, this, &ModelineDialog::onDataChanged);
        connect(m_model, &OutputModel::refused, this, [this] { m_isRefused = true; });
    }
    updateData();
}

QVariant ModelineDialog::value(int column) const
{
    return m_model ? m_model->index(0, column).data() : QVariant();
}

/// Nobody sees it while it is closed, and it reads everything when it opens.
void ModelineDialog::onDataChanged()
{
    if (isVisible())
        updateData();
}

void ModelineDialog::updateData()
{
    updateFormats();
    const QString file = edidOverrideFileName();
    m_edidFile->setText(textOrUnknown(file.isEmpty() ? value(OutputModel::ProductColumn).toString() : file));
    const bool isConnected = value(OutputModel::ConnectedColumn).toBool();
    m_import->setEnabled(isConnected);
    m_read->setEnabled(isConnected);
    if (!m_isLinkRateChosen)
        m_linkRate->setCurrentIndex(value(OutputModel::MaxLinkRateColumn).toBool() ? 1 : 0);
    const QString instead = value(OutputModel::OverrideEdidColumn).toString();
    m_details->setEdid(instead.isEmpty() ? value(OutputModel::EdidColumn).toString() : instead,
                       !file.isEmpty());
    const QString error = value(OutputModel::ErrorTextColumn).toString();
    m_error->setText(error);
    m_error->setVisible(value(OutputModel::ErrorColumn).toBool() && !error.isEmpty());
    enableButtons();
    if (isVisible())
        fitToContent();
}

void ModelineDialog::updateFormats()
{
    m_format->clear();
    m_preferred->setText(textOrUnknown(preferredOfDisplay()));
    addFormats(tr("EDID formats"), false);
    addFormats(tr("Standard formats"), true);
    const QString present = value(OutputModel::ModelineIdColumn).toString();
    int index = m_chosenFormat.isEmpty() ? -1 : m_format->findData(m_chosenFormat);
    if (index < 0) {
        m_chosenFormat.clear();
        index = present.isEmpty() ? -1 : m_format->findData(present);
    }
    m_format->setCurrentIndex(index);
}

void ModelineDialog::addFormats(const QString& heading, bool standard)
{
    const auto modelines = value(OutputModel::ModelinesColumn).value<OutputModel::Modelines>();
    if (!modelines || modelines->isEmpty())
        return;
    m_format->addItem(heading);
    auto* items = qobject_cast<QStandardItemModel*>(m_format->model());
    if (QStandardItem* item = items ? items->item(m_format->count() - 1) : nullptr)
        item->setFlags(Qt::NoItemFlags);
    for (const std::shared_ptr<GUIModeline>& modeline : std::as_const(*modelines)) {
        if (modeline->standard() != standard)
            continue;
        m_format->addItem(modeline->label(), modeline->id());
        if (!standard && !isOverridden() && modeline->id() == getPreferredModelineId())
            m_preferred->setText(modeline->label());
    }
}

/// What "Auto" sets where an EDID stands in the place of the display's own, which goes then; empty otherwise.
QString ModelineDialog::preferredOfDisplay() const
{
    const auto bytes = bytesOfHex(value(OutputModel::EdidColumn).toString().toStdString());
    Edid edid;
    if (!isOverridden() || !bytes || !readEdid(*bytes, edid, nullptr) || !edid.preferred)
        return {};
    return QString::fromStdString(edid.preferred->label());
}

bool ModelineDialog::isOverridden() const
{
    return !value(OutputModel::OverrideEdidColumn).toString().isEmpty();
}

void ModelineDialog::resetView()
{
    m_chosenFormat.clear();
    m_isLinkRateChosen = false;
    updateData();
    showMode(!isOverridden() && value(OutputModel::ModelineIdColumn).toString() == getPreferredModelineId());
}

void ModelineDialog::showMode(bool automatic)
{
    m_mode->setValue(automatic ? QStringLiteral("auto") : QStringLiteral("custom"));
    toggleCustom();
}

void ModelineDialog::toggleCustom()
{
    m_autoPanel->setVisible(isAuto());
    m_customPanel->setVisible(!isAuto());
    enableButtons();
    if (isVisible())
        fitToContent();
}

bool ModelineDialog::isAuto() const
{
    return m_mode->value().toString() == QStringLiteral("auto");
}

QString ModelineDialog::getCurrentModelineId() const
{
    return isAuto() ? getPreferredModelineId() : m_format->currentData().toString();
}

QString ModelineDialog::getPreferredModelineId() const
{
    return value(OutputModel::PreferredModelineIdColumn).toString();
}

QString ModelineDialog::edidOverrideFileName() const
{
    return value(OutputModel::FileNameColumn).toString();
}

void ModelineDialog::enableButtons()
{
    const bool hasEdid = !value(OutputModel::EdidColumn).toString().isEmpty();
    m_export->setEnabled(hasEdid);
    const bool isWhole = isAuto() || (hasEdid && !getCurrentModelineId().isEmpty());
    m_apply->setEnabled(isWhole);
    setAcceptEnabled(isWhole);
}

void ModelineDialog::handleApply()
{
    m_isRefused = false;
    Q_EMIT applied(isAuto(), getCurrentModelineId(), m_linkRate->currentData().toBool());
    if (m_isRefused)
        return;             // what was chosen stays, to be tried again
    m_chosenFormat.clear(); // from here on what the output takes is shown
    m_isLinkRateChosen = false;
}

void ModelineDialog::handleConfirm()
{
    handleApply();
    if (!m_isRefused)
        accept();
}

void ModelineDialog::handleReadDisplay()
{
    if (m_model)
        m_model->resetEdid();
}

void ModelineDialog::handleImport()
{
    auto* dialog = new QFileDialog(this, tr("Import EDID file"), {},
                                   tr("EDID Files (*.txt *.TXT *.bin *.BIN *.edid *.EDID)"));
    dialog->setObjectName(objectName() + QStringLiteral("-import-dialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &ModelineDialog::importFile);
    dialog->open();
}

void ModelineDialog::importFile(const QString& path)
{
    QString content = readTextFile(path);
    if (isEdidBinary(content))
        content = QString::fromLatin1(readBinaryFile(path).toHex());
    if (!isValidEdid(content)) {
        displayErrorDialog(tr("Error importing EDID file"), tr("Cannot interpret file content."));
        return;
    }
    const OutputModel::EdidFile file(QFileInfo(path).fileName(), cleanEdid(content).toLower());
    if (m_model)
        m_model->setData(m_model->index(0, OutputModel::FileNameColumn), QVariant::fromValue(file));
}

void ModelineDialog::handleExport()
{
    auto* dialog = new QFileDialog(this, tr("Export EDID file"));
    dialog->setObjectName(objectName() + QStringLiteral("-export-dialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("Binary EDID files (*.bin)"), tr("Text EDID files (*.txt)")});
    dialog->setDefaultSuffix(QStringLiteral("bin"));
    // A product's name may hold what no file name does.
    QString proposal = value(OutputModel::ProductColumn).toString();
    if (!proposal.isEmpty())
        dialog->selectFile(proposal.replace(u'/', u'-').replace(u'\\', u'-'));
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString& filter) {
        if (filter.contains(QStringLiteral("*.bin")))
            dialog->setDefaultSuffix(QStringLiteral("bin"));
        else if (filter.contains(QStringLiteral("*.txt")))
            dialog->setDefaultSuffix(QStringLiteral("txt"));
    });
    connect(dialog, &QFileDialog::accepted, this, [this, dialog] {
        const QStringList files = dialog->selectedFiles();
        if (!files.isEmpty())
            exportFile(files.first(), dialog->defaultSuffix());
    });
    dialog->open();
}

void ModelineDialog::exportFile(const QString& path, const QString& defaultSuffix)
{
    const QString edid = value(OutputModel::EdidColumn).toString();
    const QString suffix = QFileInfo(path).suffix();
    const QString format = suffix.isEmpty() ? defaultSuffix : suffix;
    if (format == QStringLiteral("bin") || format == QStringLiteral("BIN"))
        writeBinaryFile(path, edid);
    else
        writeTextFile(path, edid);
}

QString ModelineDialog::readTextFile(const QString& path) const
{
    return QString::fromUtf8(readFile(path, QIODevice::Text));
}

QByteArray ModelineDialog::readBinaryFile(const QString& path) const
{
    return readFile(path, {});
}

bool ModelineDialog::writeTextFile(const QString& path, const QString& text)
{
    return write(path, spacedEdid(text).toLatin1(), true, tr("Could not open text file for writing."));
}

bool ModelineDialog::writeBinaryFile(const QString& path, const QString& text)
{
    return write(path, QByteArray::fromHex(text.toLatin1()), false,
                 tr("Could not open binary file for writing."));
}

/// An earlier export stays until this one is whole.
bool ModelineDialog::write(const QString& path, const QByteArray& bytes, bool text, const QString& failure)
{
    QSaveFile file(path);
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | (text ? QIODevice::Text : QIODevice::NotOpen);
    if (file.open(mode) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    qCWarning(lcOutputs) << "Cannot write" << path << file.errorString();
    displayErrorDialog(tr("Error exporting EDID file"), failure);
    return false;
}

void ModelineDialog::displayErrorDialog(const QString& title, const QString& text)
{
    auto* dialog = new ErrorDialog(title, text, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptText(tr("CLOSE"));
    dialog->open();
}

} // namespace vantrel
