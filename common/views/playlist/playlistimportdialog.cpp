#include "common/views/playlist/playlistimportdialog.h"

#include "common/session/settings/configuration.h"
#include "common/ui/style/fontsizefollower.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QFileInfo>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace vantrel {

namespace {

constexpr qsizetype mostShown = 500; // lines with faults; nobody reads more
constexpr int listHeight = 160;

} // namespace

PlaylistImportDialog::PlaylistImportDialog(const QString& file, const QString& list, int count,
                                           QWidget* parent)
    : ZTDialog(tr("Import playlist"), parent)
    , m_list(list)
    , m_count(count)
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
    connect(this, &ZTDialog::confirmed, this, [this] { Q_EMIT importConfirmed(m_reading.entries); });
}

void PlaylistImportDialog::setReading(const PlaylistCsv::Reading& reading)
{
    m_reading = reading;
    const int entries = int(reading.entries.size());
    QString text = entries == 0  ? tr("The file holds no entry that can be taken. Nothing would change.")
                   : m_count > 0 ? tr("%n entries can be taken. They replace the %1 entries of \"%2\".",
                                      nullptr, entries)
                                       .arg(m_count)
                                       .arg(m_list)
                                 : tr("%n entries can be taken into \"%1\".", nullptr, entries).arg(m_list);
    QStringList lines;
    for (const PlaylistCsv::Fault& fault : reading.faults.first(std::min(mostShown, reading.faults.size())))
        lines.append(tr("Line %1: %2").arg(fault.line).arg(fault.reason));
    if (reading.faults.size() > mostShown)
        lines.append(tr("... and %n more", nullptr, int(reading.faults.size() - mostShown)));
    if (!lines.isEmpty())
        text += u'\n' + tr("%n lines cannot be taken:", nullptr, int(reading.faults.size()));
    setDescription(text);
    m_faults->setPlainText(lines.join(u'\n'));
    m_faults->setVisible(!lines.isEmpty());
    setAcceptEnabled(entries > 0);
    fitToContent();
}

void PlaylistImportDialog::setFault(const QString& reason)
{
    setDescription(reason);
    fitToContent();
}

} // namespace vantrel
