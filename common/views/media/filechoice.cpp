#include "common/views/media/filechoice.h"

#include "common/filesystem/model/filesystemprovider.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/models/filesmodel.h"
#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/mediasloteditfunctional.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/models/medialibrarymodel.h"
#include "tarn/media/imagesequenceformat.h"
#include "tarn/media/mediaenums.h"

namespace vantrel {

namespace {

GuiMediaSlot ofSequence(const ImageSequenceInfo& sequence)
{
    GuiMediaSlot media;
    media.setContentUrl(QUrl::fromLocalFile(QString::fromStdString(sequence.format.toString())));
    media.setMediaType(MediaType::ImageSequence);
    media.setFirstFrame(static_cast<int>(sequence.firstFrame));
    media.setLastFrame(static_cast<int>(sequence.lastFrame));
    return media;
}

} // namespace

FileChoice::FileChoice(MediaLibraryModel* library, FileSystemProvider* files, QObject* parent)
    : QObject(parent)
    , m_library(library)
    , m_provider(files)
{
}

FileChoice::~FileChoice() = default;

QString FileChoice::lost() const
{
    return shownText(m_lost.fileName());
}

int FileChoice::slotCount() const
{
    return m_lost.isEmpty() ? 0 : static_cast<int>(m_library->slotsWith(m_lost).size());
}

bool FileChoice::begin(const QUrl& file)
{
    m_fileSystem = m_provider ? m_provider->getFileSystem(QStringLiteral("server")) : nullptr;
    if (!m_fileSystem || file.isEmpty())
        return false;
    m_lost = file;
    m_files = std::make_unique<FilesModel>(m_fileSystem);
    connect(m_files.get(), &FilesModel::pathRefused, this, [this] {
        if (m_files && m_fileSystem)
            m_files->setDirectoryPath(m_fileSystem->defaultRootPath());
    });
    m_files->setDirectoryPath(getParentPath(file.toLocalFile()));
    Q_EMIT changed();
    return true;
}

QString FileChoice::faultOf(int row) const
{
    const QModelIndex index = m_files ? m_files->index(row) : QModelIndex();
    if (!index.isValid() || index.data(FilesModel::IsDirectoryRole).toBool())
        return {};
    const QUrl file = QUrl::fromLocalFile(index.data(FilesModel::AbsolutePathRole).toString());
    if (file == m_lost)
        return tr("This is the file that the slots play now.");
    const auto state = static_cast<MediaState>(index.data(FilesModel::MediaStateRole).toInt());
    if (index.data(FilesModel::IsPlayableRole).toBool() || state == MediaState::UnknownState)
        return {};
    const QStringList faults = index.data(FilesModel::MediaCaveatsRole).toStringList();
    return faults.isEmpty() ? tr("The server cannot play it.") : shownText(faults.join(u' '));
}

void FileChoice::choose(int row)
{
    if (!m_files || isBusy() || row < 0 || row >= m_files->count() || !faultOf(row).isEmpty())
        return;
    const QModelIndex index = m_files->index(row);
    const QString path = index.data(FilesModel::AbsolutePathRole).toString();
    const auto told = static_cast<MediaType>(index.data(FilesModel::MediaTypeRole).toInt());
    GuiMediaSlot media;
    media.setContentUrl(QUrl::fromLocalFile(path));
    media.setMediaType(told != MediaType::Unknown ? told : media::MediaUtils::getMediaType(path));
    media.setDuration(index.data(FilesModel::DurationValueSecRole).toDouble());
    media.setIsPlayable(index.data(FilesModel::IsPlayableRole).toBool());
    // A sequence gives way to a sequence: of the picture that was chosen the whole one.
    if (media.mediaType() != MediaType::ImageFile ||
        !ImageSequenceFormat::parse(m_lost.toLocalFile().toStdString()))
        return point(media);
    m_search.begin(m_files.get(), path, [this, media](const std::optional<ImageSequenceInfo>& sequence) {
        point(sequence ? ofSequence(*sequence) : media);
    });
    Q_EMIT changed();
}

void FileChoice::point(const GuiMediaSlot& media)
{
    if (MediaSlotEditFunctional::pointAtFile(m_library->slotsWith(m_lost), media))
        Q_EMIT chosen();
    Q_EMIT changed();
}

void FileChoice::end()
{
    m_search.stop();
    m_lost.clear();
    if (FilesModel* files = m_files.release())
        files->deleteLater(); // the view shows it until it has heard
    Q_EMIT changed();
}

} // namespace vantrel
