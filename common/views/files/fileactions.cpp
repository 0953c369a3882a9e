#include "common/views/files/fileactions.h"

#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/models/conflictdesk.h"
#include "common/filesystem/models/filesystemdrophandler.h"
#include "common/session/settings/configuration.h"
#include "common/ui/toolkit/ztdrag.h"

#include <QEvent>
#include <QMimeData>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace vantrel {

FileActions::FileActions(QWidget* view, FileSystemDropHandler* drops, ConflictDesk* desk, QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_drops(drops)
    , m_desk(desk)
    , m_popup(view->window()->findChild<QWidget*>(QStringLiteral("NotificationPresenter")))
{
    m_view->installEventFilter(this);
    if (m_popup)
        m_popup->installEventFilter(this);
    measureCover();
    if (Configuration* settings = configuration())
        connect(settings, &Configuration::optionChanged, this, [this](ConfigurationOption option) {
            if (option == TRANSFER_LIMIT_WHILE_PLAYING)
                Q_EMIT transferLimitChanged();
        });
}

bool FileActions::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::Move:
    case QEvent::Resize:
        // Once it is so.
        QMetaObject::invokeMethod(this, &FileActions::measureCover, Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// What has just failed is read in the list below, which the pop-up that tells of it must leave in sight.
void FileActions::measureCover()
{
    const bool covers = m_popup && m_popup->isVisible() && m_view->isVisible();
    const int top = covers ? m_view->mapFromGlobal(m_popup->mapToGlobal(QPoint())).y() : 0;
    const int height = covers ? std::clamp(m_view->height() - top, 0, m_view->height()) : 0;
    if (std::exchange(m_coveredHeight, height) != height)
        Q_EMIT coveredHeightChanged();
}

double FileActions::transferLimit() const
{
    return configurationValue(TRANSFER_LIMIT_WHILE_PLAYING).toDouble();
}

void FileActions::setTransferLimit(double megabytes)
{
    if (Configuration* settings = configuration())
        settings->setValue(TRANSFER_LIMIT_WHILE_PLAYING, megabytes);
}

void FileActions::startDrag(FilesModel* model, const QList<int>& rows)
{
    if (!model || rows.isEmpty())
        return;
    // Once the view is done with the mouse's move: while a drag runs it gets no other.
    const auto begin = [this, from = QPointer<FilesModel>(model), rows] {
        if (from)
            runDrag(from, rows);
    };
    QMetaObject::invokeMethod(this, begin, Qt::QueuedConnection);
}

void FileActions::runDrag(FilesModel* model, const QList<int>& rows)
{
    const QVariantMap mime = model->mimeOf(rows);
    if (mime.isEmpty())
        return;
    auto data = std::make_unique<QMimeData>();
    for (auto format = mime.cbegin(); format != mime.cend(); ++format)
        data->setData(format.key(), format.value().toString().toUtf8());
    if (model->isLocal()) {
        QList<QUrl> urls;
        for (const int row : rows)
            urls.append(
                QUrl::fromLocalFile(model->get(row).value(QStringLiteral("absolutePath")).toString()));
        data->setUrls(urls);
    }
    const QString label = rows.size() == 1
                              ? model->get(rows.first()).value(QStringLiteral("shownName")).toString()
                              : tr("%n items", nullptr, static_cast<int>(rows.size()));
    ZTDrag::startDrag(m_view, data.release(), Qt::CopyAction | Qt::MoveAction, label);
}

bool FileActions::drop(const QVariantMap& mime, const QList<QUrl>& urls, FilesModel* model,
                       const QString& directory)
{
    if (!model)
        return false;
    const QVariant target = QVariant::fromValue(model->fileSystem());
    return mime.isEmpty() ? m_drops->dropUrls(urls, target, directory)
                          : m_drops->dropMimeData(mime, target, directory);
}

void FileActions::answerConflict(int choice, bool forAll)
{
    m_desk->answer(static_cast<ConflictDesk::Answer>(choice), forAll);
}

QString FileActions::iconOf(const QString& name) const
{
    if (isImageFile(name))
        return QStringLiteral("image");
    if (isSoundFile(name))
        return QStringLiteral("audio");
    return isMediaFile(name) ? QStringLiteral("video") : QStringLiteral("file");
}

QString FileActions::sizeText(qint64 bytes) const
{
    return fileSizeText(bytes);
}

} // namespace vantrel
