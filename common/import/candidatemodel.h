#pragma once

#include "common/import/imagesresult.h"

#include <QAbstractListModel>
#include <QList>

#include <vector>

namespace vantrel {

/// What was found in a drop, in rows that the operator looks at and corrects, one or many at a time. Main
/// thread only.
class CandidateModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QList<vantrel::images::ImagesResult> imageResults READ imageResults WRITE setImageResults
                   NOTIFY imageResultsChanged)

public:
    using QAbstractListModel::QAbstractListModel;

    const QList<images::ImagesResult>& imageResults() const { return m_results; }
    /// Results of the same rows change these; others begin the model anew.
    void setImageResults(const QList<images::ImagesResult>& results);

    /// Writes the value into all of the rows. False, and nothing written, where one of them would become what
    /// cannot be stored.
    Q_INVOKABLE bool writeRows(const QList<int>& rows, const QVariant& value, int role);
    /// What the rows have in common; nothing where they differ, or where there are none.
    Q_INVOKABLE QVariant valueOf(const QList<int>& rows, int role) const;
    /// Leaves them out of the drop.
    Q_INVOKABLE void leaveOut(const QList<int>& rows);

    int rowCount(const QModelIndex& parent = {}) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;

Q_SIGNALS:
    void imageResultsChanged();
    void imageResultTypeChanged(vantrel::images::ImagesResult result);

protected:
    struct Place
    {
        qsizetype result = 0;
        qsizetype still = -1; // of the result, where the row is not all of it

        friend bool operator==(const Place&, const Place&) = default;
    };
    /// Those of the results that have a row, in order.
    virtual QList<Place> placesOf(const QList<images::ImagesResult>& results) const = 0;
    virtual bool write(images::ImagesResult& result, qsizetype still, const QVariant& value, int role) = 0;

    const images::ImagesResult& resultAt(int row) const { return m_results[m_places[row].result]; }
    const Place& placeAt(int row) const { return m_places[row]; }

private:
    QList<images::ImagesResult> without(const std::vector<bool>& rows) const;

    QList<images::ImagesResult> m_results;
    QList<Place> m_places; // of each row
};

} // namespace vantrel
