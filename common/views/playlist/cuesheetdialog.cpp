#include "common/views/playlist/cuesheetdialog.h"

#include "common/media/library/aside.h"
#include "common/media/models/playlist/playlistmodel.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QFileInfo>
#include <QtConcurrentRun>

namespace vantrel {

namespace {

constexpr int patienceMs = 300; // before it shows itself
constexpr int fetchMs = 100;
constexpr int pictureMs = 1000; // after which a picture that does not come is left out

} // namespace

CueSheetDialog::CueSheetDialog(const CueSheet& sheet, const PlaylistModel* model, const QString& fileName,
                               QWidget* parent)
    : ZTDialog(tr("Cue sheet"), parent)
    , m_sheet(sheet)
    , m_model(model)
    , m_fileName(fileName)
{
    setModal(false);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setDescription(tr("Making %1 ...").arg(QFileInfo(fileName).fileName()));
    acceptButton()->hide();
    setObjectNames(QStringLiteral("PlaylistEditor-cue-sheet"));
    QTimer::singleShot(patienceMs, this, &QWidget::show);
    connect(this, &QDialog::rejected, this, &QObject::deleteLater);
    connect(&m_fetching, &QTimer::timeout, this, &CueSheetDialog::fetchPictures);
    m_missing = m_sheet.takePictures(*model, true);
    m_sinceLast.start();
    m_fetching.start(m_missing > 0 ? fetchMs : 0);
}

CueSheetDialog::~CueSheetDialog()
{
    m_printing.cancel();
}

void CueSheetDialog::fetchPictures()
{
    const qsizetype missing = m_model ? m_sheet.takePictures(*m_model, false) : 0;
    if (std::exchange(m_missing, missing) != missing)
        m_sinceLast.start();
    setDescription(
        tr("Fetching pictures: %1 of %2").arg(m_sheet.pictureCount() - missing).arg(m_sheet.pictureCount()));
    if (missing > 0 && m_sinceLast.elapsed() < pictureMs)
        return;
    m_fetching.stop();
    print();
}

void CueSheetDialog::print()
{
    connect(&m_printing, &QFutureWatcherBase::progressValueChanged, this, [this](int page) {
        setDescription(tr("Drawing page %1 of %2").arg(page).arg(m_printing.progressMaximum()));
    });
    connect(&m_printing, &QFutureWatcherBase::finished, this, [this] {
        Q_EMIT ended(m_printing.result());
        close();
        deleteLater();
    });
    m_printing.setFuture(QtConcurrent::run(
        &aside::files(), [sheet = m_sheet, fileName = m_fileName](QPromise<QString>& promise) {
            promise.addResult(sheet.savePdf(fileName, [&promise](int page, int pages) {
                promise.setProgressRange(0, pages);
                promise.setProgressValue(page);
                return !promise.isCanceled();
            }));
        }));
}

} // namespace vantrel
