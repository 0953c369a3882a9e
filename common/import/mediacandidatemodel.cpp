#include "common/import/mediacandidatemodel.h"

#include "common/filesystem/model/pathhelpers.h"
#include "common/import/imagesequencecandidatemodel.h"
#include "common/import/mediadrop.h"
#include "common/media/address/mediautils.h"
#include "tarn/media/mediaenums.h"

#include <algorithm>
#include <functional>

namespace vantrel {

namespace {

/// Pictures are among them where slots are copied.
MediaType kindOf(const QString& path)
{
    if (isSoundFile(path))
        return MediaType::AudioFile;
    return isImageFile(path) ? media::MediaUtils::getMediaType(path) : MediaType::VideoFile;
}

} // namespace

MediaCandidateModel::MediaCandidateModel(MediaDrop* drop, QObject* parent)
    : QAbstractListModel(parent)
    , m_drop(drop)
    , m_rows(drop->mediaCandidates())
    , m_told(static_cast<int>(std::ranges::count_if(m_rows, &MediaCandidate::isTold)))
{
    connect(drop, &MediaDrop::mediasAsked, this, &MediaCandidateModel::addAsked);
    connect(drop, &MediaDrop::mediasTold, this, &MediaCandidateModel::takeTold);
    connect(drop, &MediaDrop::mediasAnswered, this, [this] {
        if (m_told < rowCount())
            Q_EMIT dataChanged(index(m_told), index(rowCount() - 1));
    });
}

int MediaCandidateModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

/// What is told out of turn is known as well.
MediaCandidate MediaCandidateModel::candidateAt(int row) const
{
    return row < m_told || !m_drop ? m_rows[row] : m_drop->askedMedia(row - m_told).value_or(m_rows[row]);
}

QVariant MediaCandidateModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const MediaCandidate candidate = candidateAt(index.row());
    switch (role) {
    case PathRole:
        return candidate.path;
    case NameRole:
    case Qt::DisplayRole:
        return getNameInPath(candidate.path);
    case KindRole:
        return static_cast<int>(kindOf(candidate.path));
    case IsToldRole:
        return candidate.isTold;
    case FaultRole:
        return candidate.fault;
    case DurationStringRole:
        return candidate.seconds > 0 ? durationToString(candidate.seconds) : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> MediaCandidateModel::roleNames() const
{
    return {{PathRole, "path"},     {NameRole, "name"},   {KindRole, "kind"},
            {IsToldRole, "isTold"}, {FaultRole, "fault"}, {DurationStringRole, "durationString"}};
}

void MediaCandidateModel::addAsked(const QStringList& paths)
{
    if (paths.isEmpty())
        return;
    beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(paths.size()) - 1);
    for (const QString& path : paths)
        m_rows.append({path});
    endInsertRows();
}

void MediaCandidateModel::takeTold(const QList<MediaCandidate>& told)
{
    const int first = m_told;
    for (const MediaCandidate& candidate : told) {
        if (m_told < rowCount())
            m_rows[m_told++] = candidate;
    }
    if (m_told > first)
        Q_EMIT dataChanged(index(first), index(m_told - 1));
}

void MediaCandidateModel::lookAt(int row)
{
    if (m_drop && row >= m_told && row < rowCount())
        m_drop->askFirst(row - m_told);
}

void MediaCandidateModel::leaveOut(const QList<int>& rows)
{
    QList<int> descending = rows;
    std::ranges::sort(descending, std::greater());
    if (!m_drop || descending.isEmpty() || descending.first() >= rowCount() || descending.last() < 0)
        return;
    QList<qsizetype> medias; // that is, of those told that play
    QList<qsizetype> asked;
    qsizetype media = 0;
    auto left = descending.crbegin();
    for (int row = 0; row < rowCount() && left != descending.crend(); ++row) {
        const bool isLeft = *left == row;
        const bool plays = row < m_told && m_rows[row].fault.isEmpty();
        if (isLeft && row >= m_told)
            asked.append(row - m_told);
        else if (isLeft && plays)
            medias.append(media);
        media += plays;
        left += isLeft;
    }
    for (auto run = descending.cbegin(); run != descending.cend();) {
        const int last = *run;
        int first = last;
        for (++run; run != descending.cend() && *run == first - 1; ++run)
            --first;
        beginRemoveRows({}, first, last);
        m_rows.remove(first, last - first + 1);
        m_told -= std::clamp(m_told - first, 0, last - first + 1);
        endRemoveRows();
    }
    m_drop->leaveOut(medias, asked);
}

} // namespace vantrel
