#include "common/views/playlist/playlistimportdialog.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QFileInfo>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr int sliceMs = 8; // of the main thread, between two turns of the window
constexpr int listHeight = 160;

} // namespace

PlaylistImportDialog::PlaylistImportDialog(const QString& file, const QString& list, int count,
                                           const MediaLibrary& library, QWidget* parent)
    : ZTDialog(tr("Import playlist"), parent)
    , m_list(list)
    , m_count(count)
    , m_file(file)
    , m_import(library)
    , m_faults(new QPlainTextEdit(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setDescription(tr("Reading %1 ...").arg(QFileInfo(file).fileName()));
    setAcceptText(tr("IMPORT"));
    setAcceptEnabled(false);
    m_faults->setReadOnly(true);
    m_faults->setAccessibleName(tr("Lines that cannot be taken"));
    m_faults->setToolTip(tr("Lines that cannot be taken, and why"));
    m_faults->setFixedHeight(scaled(listHeight, currentFontSize()));
    m_faults->hide();
    contentLayout()->addWidget(m_faults);
    setObjectNames(QStringLiteral("PlaylistEditor-import"));
    m_faults->setObjectName(QStringLiteral("PlaylistEditor-import-faults"));
    connect(this, &ZTDialog::confirmed, this, [this] { Q_EMIT importConfirmed(m_import.entries()); });
    connect(&m_reading, &QTimer::timeout, this, &PlaylistImportDialog::readSome);
    if (m_file.open(QIODevice::ReadOnly))
        m_reading.start(0);
    else
        refuse(tr("The file cannot be read: %1.").arg(m_file.errorString()));
}

void PlaylistImportDialog::readSome()
{
    if (m_import.readSome(m_file, sliceMs))
        return;
    m_reading.stop();
    m_file.close();
    if (m_import.refusal().isEmpty())
        showResult();
    else
        refuse(m_import.refusal());
}

void PlaylistImportDialog::showResult()
{
    const int entries = int(m_import.entries().size());
    QString text = entries == 0  ? tr("The file holds no entry that can be taken. Nothing would change.")
                   : m_count > 0 ? tr("%n entries can be taken. They replace the %1 entries of \"%2\".",
                                      nullptr, entries)
                                       .arg(m_count)
                                       .arg(m_list)
                                 : tr("%n entries can be taken into \"%1\".", nullptr, entries).arg(m_list);
    if (entries > 0)
        text += m_warning;
    QStringList lines;
    for (const PlaylistCsvImport::Problem& problem : m_import.problems())
        lines.append(tr("Line %1: %2").arg(problem.line).arg(problem.text));
    if (m_import.unlistedCount() > 0)
        lines.append(tr("... and %n more", nullptr, m_import.unlistedCount()));
    if (!lines.isEmpty())
        text += u'\n' + tr("%n lines cannot be taken:", nullptr, m_import.problemCount());
    setDescription(text);
    m_faults->setPlainText(lines.join(u'\n'));
    m_faults->setVisible(!lines.isEmpty());
    setAcceptEnabled(entries > 0);
    fitToContent();
}

void PlaylistImportDialog::refuse(const QString& reason)
{
    setDescription(reason);
    fitToContent();
}

} // namespace vantrel
