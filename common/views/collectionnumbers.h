#pragma once

#include "tarn/ref.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

namespace vantrel {

class MediaLibrary;
class MediaLibraryApi;
class Session;

/// The number of a collection, in step with it, for declarative views.
class FollowedCollection : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int number READ number NOTIFY numberChanged)

public:
    using Number = std::shared_ptr<const int>;

    explicit FollowedCollection(Number number)
        : m_number(std::move(number))
    {
    }
    int number() const { return *m_number; }

Q_SIGNALS:
    void numberChanged();

private:
    Number m_number;
};

/// Collections are known by numbers, which others may change at any time: what waits for one of them, a drop
/// or a question, follows it here, through edits of this window from the moment in which they leave, and
/// through those of others. Its owner's; main thread.
class CollectionNumbers : public QObject
{
    Q_OBJECT

public:
    using Number = FollowedCollection::Number;

    /// session: null has nothing to follow; else it must outlive this.
    explicit CollectionNumbers(Session* session, QObject* parent = nullptr);
    ~CollectionNumbers() override;

    /// Stays in step as long as somebody holds it. Of a collection that goes it is the last number.
    Number follow(int collection);

Q_SIGNALS:
    /// Some of those that are followed have other numbers.
    void changed();

private:
    void followLibrary();
    void look();
    Ref<const MediaLibrary> expected() const;

    Session* m_session;
    QPointer<const MediaLibraryApi> m_api;
    std::vector<std::weak_ptr<int>> m_followed; // one for each collection
    Ref<const MediaLibrary> m_known;            // null while nobody follows anything
};

} // namespace vantrel
