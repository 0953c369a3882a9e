#include "common/ui/shell/importshowdialog.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/iconcache.h"
#include "common/ui/toolkit/pushbutton.h"
#include "common/ui/toolkit/ztcheckbox.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace vantrel {

ImportShowDialog::ImportShowDialog(QWidget* parent)
    : ZTDialog(tr("Import show"), parent)
    , m_path(new ZTEdit(this))
    , m_browse(new PushButton(tr("BROWSE"), this))
{
    setDescription(tr("Select show file"));
    setAcceptText(tr("IMPORT"));
    setCancelText(tr("CANCEL"));
    setClosesOnAccept(false);
    auto* label = new ZTLabel(tr("Show file:"), this);
    label->setStyleClass(QStringLiteral("dim"));
    label->setBuddy(m_path);
    m_path->setAccessibleName(label->text());
    m_browse->setToolTip(tr("Browse Show files"));
    followFontSize(m_browse,
                   [this](FontSize) { m_browse->setIcon(tintedIcon(QStringLiteral("folder_open"))); });
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(label);
    row->addWidget(m_path, 1);
    row->addWidget(m_browse);
    contentLayout()->addLayout(row);

    auto* section = new ZTLabel(tr("Include from import"), this);
    section->setObjectName(QStringLiteral("SectionLabel"));
    section->setStyleClass(QStringLiteral("section"));
    contentLayout()->addWidget(section);
    m_audio = addSection(tr("Audio configuration"), tr("Import audio device configuration."));
    m_mediaLibrary = addSection(tr("Media library"), tr("Import collections and playlists."));
    m_playback =
        addSection(tr("Playback configuration"), tr("Import active media or playlist for PGM/PRW, volume "
                                                    "controls and PGM autostart."));
    m_output =
        addSection(tr("Video configuration"), tr("Import display settings, including output targets, output "
                                                 "modes, used video formats and background color."));
    setObjectNames(QStringLiteral("ImportShowDialog"));
    followFontSize(this, [this](FontSize size) { setMinimumWidth(scaled(560, size)); });
    connect(m_browse, &PushButton::clicked, this, &ImportShowDialog::handleBrowse);
    connect(m_path, &ZTEdit::textChanged, this, &ImportShowDialog::importsChanged);
    connect(this, &ZTDialog::confirmed, this, &ImportShowDialog::handleConfirm);
    importsChanged();
}

ZTCheckBox* ImportShowDialog::addSection(const QString& label, const QString& description)
{
    auto* box = new ZTCheckBox(label, this);
    auto* text = new ZTLabel(description, this);
    text->setStyleClass(QStringLiteral("caption"));
    text->setWordWrap(true);
    text->setIndent(28);
    auto* pair = new QVBoxLayout;
    pair->setSpacing(0);
    pair->addWidget(box);
    pair->addWidget(text);
    contentLayout()->addLayout(pair);
    connect(box, &ZTCheckBox::toggled, this, &ImportShowDialog::importsChanged);
    return box;
}

void ImportShowDialog::handleBrowse()
{
    auto* dialog = new QFileDialog(this, tr("Import Show file"), {}, tr("Show Files (*.show)"));
    dialog->setObjectName(QStringLiteral("ImportShowDialog-file-dialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& chosen) {
        m_path->setText(chosen);
        importsChanged();
    });
    dialog->open();
}

void ImportShowDialog::handleConfirm()
{
    Q_EMIT importShow(m_path->text(), m_imports);
    close();
}

void ImportShowDialog::importsChanged()
{
    m_imports.clear();
    for (const auto& [box, name] :
         {std::pair(m_output, "output"), std::pair(m_audio, "audio"), std::pair(m_playback, "playback"),
          std::pair(m_mediaLibrary, "medialibrary")}) {
        if (box->isChecked())
            m_imports.append(QString::fromLatin1(name));
    }
    setAcceptEnabled(!m_imports.isEmpty() && !m_path->text().isEmpty());
}

void ImportShowDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    m_path->setObjectName(base + QStringLiteral("-path"));
    m_browse->setObjectName(base + QStringLiteral("-browse-button"));
    m_audio->setObjectName(base + QStringLiteral("-audio"));
    m_mediaLibrary->setObjectName(base + QStringLiteral("-medialibrary"));
    m_playback->setObjectName(base + QStringLiteral("-playback"));
    m_output->setObjectName(base + QStringLiteral("-output"));
}

void ImportShowDialog::showEvent(QShowEvent* event)
{
    if (!event->spontaneous()) { // not where its window comes back
        m_path->clear();
        for (ZTCheckBox* box : {m_audio, m_mediaLibrary, m_playback, m_output})
            box->setChecked(true);
        importsChanged();
    }
    ZTDialog::showEvent(event);
}

void ImportShowDialog::keyPressEvent(QKeyEvent* event)
{
    // Return ends the typing of a path; an import needs the button itself.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        return;
    }
    ZTDialog::keyPressEvent(event);
}

} // namespace vantrel
