#include "common/import/candidatemodel.h"

#include "common/media/address/medialogging.h"

#include <algorithm>

namespace vantrel {

using images::ImageResultType;
using images::ImagesResult;
using images::StillImage;

void CandidateModel::setImageResults(const QList<ImagesResult>& results)
{
    if (results == m_results)
        return;
    QList<Place> places = placesOf(results);
    if (places == m_places) {
        m_results = results;
        if (!places.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    } else {
        beginResetModel();
        m_results = results;
        m_places = std::move(places);
        endResetModel();
    }
    Q_EMIT imageResultsChanged();
}

int CandidateModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_places.size());
}

bool CandidateModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const Place place = m_places[index.row()];
    ImagesResult& result = m_results[place.result];
    const ImageResultType before = result.type();
    if (!write(result, place.still, value, role)) {
        qCWarning(lcMedia) << "Unable to write data" << value << "to role" << role << "for row" << index.row()
                           << "and column" << index.column();
        return false;
    }
    const ImagesResult written = result; // who hears of the change may set others
    Q_EMIT dataChanged(index, index);    // of one value others are made
    if (written.type() != before)
        Q_EMIT imageResultTypeChanged(written);
    return true;
}

bool CandidateModel::writeRows(const QList<int>& rows, const QVariant& value, int role)
{
    if (rows.isEmpty())
        return true;
    const QList<ImagesResult> before = m_results;
    const bool isWritten = std::ranges::all_of(rows, [&](int row) {
        const Place place = m_places.value(row, Place{-1});
        return place.result >= 0 && write(m_results[place.result], place.still, value, role);
    });
    if (!isWritten || !std::ranges::all_of(m_results, &ImagesResult::isStorable)) {
        m_results = before;
        return false;
    }
    const QList<ImagesResult> after = m_results; // who hears of the change may set others
    const auto [first, last] = std::ranges::minmax(rows);
    Q_EMIT dataChanged(index(first), index(last));
    for (qsizetype i = 0; i < after.size(); ++i) {
        if (after[i].type() != before[i].type())
            Q_EMIT imageResultTypeChanged(after[i]);
    }
    return true;
}

QVariant CandidateModel::valueOf(const QList<int>& rows, int role) const
{
    QVariant common;
    for (const int row : rows) {
        const QVariant value = row >= 0 && row < rowCount() ? data(index(row), role) : QVariant();
        if (common.isValid() && value != common)
            return {};
        common = value;
    }
    return common;
}

/// The results without the rows that are marked.
QList<ImagesResult> CandidateModel::without(const std::vector<bool>& rows) const
{
    QList<ImagesResult> kept;
    kept.reserve(m_results.size());
    qsizetype row = 0;
    for (qsizetype i = 0; i < m_results.size(); ++i) {
        ImagesResult result = m_results[i];
        QList<StillImage> stills;
        bool isTouched = false;
        for (; row < m_places.size() && m_places[row].result == i; ++row) {
            isTouched |= rows[static_cast<std::size_t>(row)];
            if (m_places[row].still >= 0 && !rows[static_cast<std::size_t>(row)])
                stills.append(result.stillImages()[m_places[row].still]);
        }
        if (isTouched && stills.isEmpty())
            continue;
        if (isTouched)
            result.setStillImages(stills);
        kept.append(result);
    }
    return kept;
}

bool CandidateModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row + count > rowCount())
        return false;
    std::vector<bool> marked(static_cast<std::size_t>(rowCount()));
    std::fill_n(marked.begin() + row, count, true);
    beginRemoveRows(parent, row, row + count - 1);
    m_results = without(marked);
    m_places = placesOf(m_results);
    endRemoveRows();
    Q_EMIT imageResultsChanged();
    return true;
}

void CandidateModel::leaveOut(const QList<int>& rows)
{
    if (rows.isEmpty())
        return;
    const auto [first, last] = std::ranges::minmax(rows);
    if (first < 0 || last >= rowCount())
        return;
    if (last - first + 1 == rows.size()) {
        removeRows(first, last - first + 1);
        return;
    }
    std::vector<bool> marked(static_cast<std::size_t>(rowCount()));
    for (const int row : rows)
        marked[static_cast<std::size_t>(row)] = true;
    setImageResults(without(marked));
}

} // namespace vantrel
