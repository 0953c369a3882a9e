// What was found in what a drop has read.
#include "common/filesystem/model/nameorder.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/operations/filesystemreader.h"
#include "common/import/imagesequencecreator.h"
#include "common/import/mediadrop.h"
#include "common/import/mediadrop_p.h"
#include "common/media/address/medialogging.h"
#include "common/media/address/showntext.h"
#include "tarn/media/imagesequenceformat.h"
#include "tarn/media/mediaenums.h"

#include <algorithm>

namespace vantrel {

using images::ImageResultType;
using images::ImagesResult;
using images::StillImage;

namespace {

QString withSeparator(const QString& directory)
{
    return directory.endsWith(u'/') ? directory : directory + u'/';
}

void logLeftOut(const MediaQuestions::Answer& answer)
{
    if (answer.type != FileSystem::File)
        qCWarning(lcMedia) << "Unexpectedly got invalid path type"
                           << (answer.type == FileSystem::Unknown ? QStringLiteral("UNKNOWN")
                                                                  : QString::number(answer.type))
                           << "for a media file" << answer.path;
    else if (!answer.metadata)
        qCWarning(lcMedia) << "Unable to read metadata for a media file" << answer.path;
    else
        qCInfo(lcMedia) << "Skipping media file" << answer.path << "since it's not playable";
}

} // namespace

MediaDropPrivate::Results MediaDropPrivate::createResults(const QList<images::RequestPath>& requestPaths,
                                                          FileSystem* fileSystem, FileSystemReader& reader)
{
    Results results;
    PathTypes remaining;
    QStringList asked;
    QStringList found; // files as they were dropped, those of a directory as a reader sorts them
    for (const images::RequestPath& requestPath : requestPaths) {
        const bool isDirectory = requestPath.type == FileSystem::Directory;
        asked.append(isDirectory ? withSeparator(requestPath.path) : requestPath.path);
        const QStringList paths = inNameOrder(extractAllPaths(requestPath, reader));
        for (const QString& path : paths)
            remaining.emplace(path, FileSystem::File);
        found += paths;
    }
    const std::size_t total = remaining.size();
    ImageSequenceCreator creator(nullptr, nullptr);
    creator.setFileSystemReader(&reader);
    const QList<ImageSequenceCandidate> candidates = creator.fromPaths(asked);
    qCDebug(lcMedia) << "Found" << candidates.size() << "image sequence candidate(s) from paths" << asked;
    for (const ImageSequenceCandidate& candidate : candidates) {
        ImagesResult result;
        result.setType(ImageResultType::ImageSequence);
        result.setImageSequence(candidate);
        result.setStillImages(takePictures(candidate, remaining));
        result.setFileSystem(fileSystem);
        if (!result.stillImages().isEmpty())
            results.images.append(result);
    }
    qsizetype stills = 0;
    for (const QString& path : std::as_const(found)) {
        if (remaining.erase(path) == 0)
            continue; // a picture of a sequence
        if (isImageFile(path)) {
            ImagesResult result;
            result.setStillImages({StillImage{path}});
            result.setFileSystem(fileSystem);
            results.images.append(result);
            ++stills;
        } else if (isMediaFile(path)) {
            results.otherMedias.append(path);
        } else {
            qCWarning(lcMedia) << "Found unknown file path from input list:" << path;
            results.unknown.append(path);
        }
    }
    qCDebug(lcMedia) << "Found" << stills << "still image candidate(s) from the rest of the" << total
                     << "path(s)";
    qCDebug(lcMedia) << "Found total" << results.images.size() << "image result(s) and"
                     << results.otherMedias.size() << "other media(s)";
    return results;
}

/// Those of the remaining paths that are pictures of the sequence, in their order, taken out. Only what is
/// there is looked at: a sequence may name a number of pictures that nobody has.
QList<StillImage> MediaDropPrivate::takePictures(const ImageSequenceCandidate& candidate,
                                                 PathTypes& remaining)
{
    QList<StillImage> pictures;
    const std::string pattern = candidate.id.toLocalFile().toStdString();
    const auto format = ImageSequenceFormat::parse(pattern);
    if (!format) {
        qCWarning(lcMedia) << "Unable to detect files from sequence name:"
                           << getNameInPath(candidate.id.toLocalFile());
        return pictures;
    }
    const QString prefix = QString::fromStdString(format->prefix());
    const QString suffix = QString::fromStdString(format->suffix());
    for (auto at = remaining.lower_bound(prefix); at != remaining.end() && at->first.startsWith(prefix);) {
        const QString& path = at->first;
        const qsizetype digits = path.size() - prefix.size() - suffix.size();
        bool isNumber = false;
        const qulonglong number = digits > 0 ? path.mid(prefix.size(), digits).toULongLong(&isNumber) : 0;
        if (!isNumber || !path.endsWith(suffix) || number < candidate.startFrame ||
            number > candidate.endFrame || QString::fromStdString(format->file(number)) != path) {
            ++at;
            continue;
        }
        pictures.append(StillImage{path});
        at = remaining.erase(at);
    }
    return pictures;
}

QStringList MediaDropPrivate::extractAllPaths(const images::RequestPath& requestPath,
                                              FileSystemReader& reader)
{
    if (requestPath.type == FileSystem::File)
        return {requestPath.path};
    QStringList files;
    if (requestPath.type != FileSystem::Directory)
        return files;
    for (const std::filesystem::path& path : reader.getFileSystemPaths(requestPath.path)) {
        const QString text = QString::fromStdString(path.generic_string());
        if (text.isEmpty())
            qCWarning(lcMedia) << "Received unknown type for path" << text << "in sub-dir"
                               << requestPath.path;
        else if (!text.endsWith(u'/') && !getNameInPath(text).startsWith(u'.')) // nothing of sub-directories
            files.append(text);
    }
    return files;
}

void MediaDropPrivate::addMediaPaths(const QStringList& paths, FileSystem* fileSystem)
{
    m_questions.add(paths, fileSystem);
    Q_EMIT m_owner->mediasAsked(paths);
    m_questions.goOn();
    addKnownMedias();
}

MediaCandidate MediaDropPrivate::candidateOf(const MediaQuestions::Answer& answer)
{
    MediaCandidate candidate{answer.path, true};
    if (answer.type != FileSystem::File) {
        candidate.fault = tr("it is not there any more.");
    } else if (!answer.metadata) {
        candidate.fault = tr("nothing was told of it in time.");
    } else if (!answer.metadata->isPlayable) {
        const auto& told = answer.metadata->mediaCaveats;
        const QStringList caveats(told.cbegin(), told.cend());
        candidate.fault =
            caveats.isEmpty() ? tr("the server cannot play it.") : caveats.join(QStringLiteral(" "));
    } else {
        candidate.seconds = static_cast<double>(answer.metadata->durationMs) / 1000.0;
    }
    return candidate;
}

/// Turns what is known by now into media, of many some. False while something is left.
bool MediaDropPrivate::addKnownMedias()
{
    constexpr qsizetype mostAtOnce = 500;
    QList<GuiMediaSlot> added;
    QList<MediaCandidate> told;
    for (qsizetype i = 0; i < mostAtOnce; ++i) {
        const std::optional<MediaQuestions::Answer> next = m_questions.take();
        if (!next)
            break;
        const MediaCandidate candidate = candidateOf(*next);
        told.append(candidate);
        if (!candidate.fault.isEmpty()) {
            logLeftOut(*next);
            leaveOut(candidate.path, candidate.fault);
            continue;
        }
        GuiMediaSlot slot;
        slot.setScaleMode(ScaleMode::Default);
        slot.setName(getNameInPath(candidate.path));
        slot.setContentUrl(QUrl::fromLocalFile(candidate.path));
        slot.setDuration(candidate.seconds);
        slot.setIsPlayable(true);
        added.append(slot);
    }
    if (!told.isEmpty()) {
        m_told += told;
        Q_EMIT m_owner->mediasTold(told);
    }
    if (!added.isEmpty()) {
        qCDebug(lcMedia) << "Added" << added.size() << "new media(s) to a drop";
        m_medias += added;
        Q_EMIT m_owner->mediasChanged();
        Q_EMIT m_owner->lastSlotChanged();
    }
    return m_questions.isEmpty();
}

/// What was known when it was dropped comes first.
QList<MediaCandidate> MediaDropPrivate::mediaCandidates() const
{
    const auto asked = std::ranges::count_if(m_told, [](const auto& one) { return one.fault.isEmpty(); });
    QList<MediaCandidate> all;
    all.reserve(m_medias.size() + m_told.size() + m_questions.size());
    const auto known = m_medias.first(std::max<qsizetype>(m_medias.size() - asked, 0));
    for (const GuiMediaSlot& slot : known)
        all.append({slot.contentUrl().toLocalFile(), true, slot.duration()});
    all += m_told;
    for (qsizetype i = 0; i < m_questions.size(); ++i)
        all.append({m_questions.pathAt(i)});
    return all;
}

void MediaDropPrivate::leaveOutMedias(const QList<qsizetype>& medias, const QList<qsizetype>& asked)
{
    QList<GuiMediaSlot> kept;
    auto next = medias.cbegin();
    for (qsizetype i = 0; i < m_medias.size(); ++i) {
        if (next == medias.cend() || *next != i)
            kept.append(m_medias[i]);
        else
            ++next;
    }
    m_medias = kept;
    m_questions.remove(asked);
    Q_EMIT m_owner->mediasChanged();
    Q_EMIT m_owner->lastSlotChanged();
}

int MediaDropPrivate::askedCount() const
{
    return m_queue.isEmpty() && !m_current ? static_cast<int>(m_questions.size()) : 0;
}

void MediaDropPrivate::leaveOut(const QString& path, const QString& why)
{
    addFault(tr("\"%1\" is left out: %2").arg(shownText(getNameInPath(path)), shownText(why)));
}

} // namespace vantrel
