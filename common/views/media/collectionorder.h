#pragma once

#include <QObject>
#include <QVariantMap>

#include <map>

namespace vantrel {

class Session;

/// The order of the collections, which is that of their numbers ("collectionOrder"): what it means to put one
/// elsewhere, and has it done as one step of undo. The view owns it; main thread only.
class CollectionOrder : public QObject
{
    Q_OBJECT

public:
    /// The new numbers by the old ones, of all collections that get another.
    using Numbers = std::map<int, int>;

    /// session: null has no server; else it must outlive this.
    explicit CollectionOrder(Session* session, QObject* parent = nullptr);

    /// What it would do to put the collection in front of another, or with -1 behind all: "isPossible", and a
    /// sentence as "text". Neither where it stands there already.
    Q_INVOKABLE QVariantMap aim(int collection, int before) const;
    Q_INVOKABLE void move(int collection, int before);
    /// One place up (below 0) or down in the order.
    Q_INVOKABLE void step(int collection, int direction);

private:
    Numbers numbersFor(int collection, int before) const;
    QString obstacleOf(const Numbers& numbers) const;

    Session* m_session;
};

} // namespace vantrel
