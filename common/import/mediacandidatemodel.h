#pragma once

#include "common/import/mediacandidate.h"

#include <QAbstractListModel>
#include <QList>
#include <QPointer>

namespace vantrel {

class MediaDrop;

/// The files of a drop that are no pictures, in the order of their slots, while the server tells one after
/// the other whether it plays. Those that it cannot play stay, with the reason. Main thread only.
class MediaCandidateModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Roles {
        PathRole = 257,
        NameRole = 258,
        KindRole = 259,
        IsToldRole = 260,
        FaultRole = 261,
        DurationStringRole = 264, // empty where there is none
    };
    Q_ENUM(Roles)

    explicit MediaCandidateModel(MediaDrop* drop, QObject* parent = nullptr);

    /// Somebody looks at it: the server is asked before the others.
    Q_INVOKABLE void lookAt(int row);
    /// Leaves them out of the drop.
    Q_INVOKABLE void leaveOut(const QList<int>& rows);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    void addAsked(const QStringList& paths);
    void takeTold(const QList<MediaCandidate>& told);
    MediaCandidate candidateAt(int row) const;

    QPointer<MediaDrop> m_drop;
    QList<MediaCandidate> m_rows; // those that are told come first
    int m_told = 0;
};

} // namespace vantrel
