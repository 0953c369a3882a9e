#pragma once

#include "tarn/media/mediacollection.h"
#include "tarn/ref.h"

#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>
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
    /// -1 while it is gone.
    int number() const { return *m_number; }
    /// False, and the operator is told that nothing comes of it, where it is gone.
    Q_INVOKABLE bool isThere(const QString& what) const { return isThere(m_number, what); }
    static bool isThere(const Number& number, const QString& what);

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

    /// Stays in step as long as somebody holds it: -1 while the collection is gone, since another one may get
    /// its number, and the new one when it comes back, as by an undo.
    Number follow(int collection);

Q_SIGNALS:
    /// Some of those that are followed have other numbers.
    void changed();

private:
    /// One for each collection.
    struct Followed
    {
        std::weak_ptr<int> number;
        std::optional<MediaCollection> gone; // what it held last
    };

    void followLibrary();
    /// isOther: the library was read anew, so that anything may have happened in between.
    void look(bool isOther);
    void step(const Ref<const MediaLibrary>& now, bool isOther);
    bool renumber(Followed& followed, const MediaLibrary& before, const MediaLibrary& now,
                  bool isOther) const;
    bool isAnyMoving() const;
    Ref<const MediaLibrary> expected() const;

    Session* m_session;
    QPointer<const MediaLibraryApi> m_api;
    std::vector<Followed> m_followed;
    Ref<const MediaLibrary> m_known; // null while nobody follows anything
    bool m_isAhead = false;          // with edits that are under way
};

} // namespace vantrel
