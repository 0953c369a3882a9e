#pragma once

#include "common/media/library/libraryedit.h"
#include "tarn/media/medialibrary.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <deque>
#include <optional>

class QNetworkReply;

namespace vantrel {

class MediaLibraryApi;

/// Sends the edits of one connection in the operator's order, one at a time: the next one leaves when the
/// library shows the last one. Each is held against the library as it is by then, is sent with its revision,
/// and made anew when somebody else was faster; what would overwrite another's work is refused, with a
/// sentence. Belongs to MediaLibraryApi; main thread.
class EditQueue : public QObject
{
    Q_OBJECT

public:
    explicit EditQueue(MediaLibraryApi* api);
    ~EditQueue() override;

    void submit(const std::shared_ptr<LibraryEdit>& edit, EditDirection direction, EditAnswered answered);
    /// Told beside its sender of what becomes of the edit that was submitted last; of none where none waits.
    void followLast(const EditAnswered& answered);
    bool isEmpty() const { return m_edits.empty(); }
    /// Whether one of them is still worked out: who asks for expected() now waits for it, and submitted()
    /// comes.
    bool isMaking() const;
    /// The library with what is under way: what the next edit is made on. Worked out once for each change.
    Ref<const MediaLibrary> expected() const;
    /// Whether one of them may give collections other numbers: most change what is in one of them.
    bool movesCollections() const { return beforeMoves() < m_edits.size(); }
    /// The library with those only that are under way before the first of these.
    Ref<const MediaLibrary> expectedBeforeMoves() const { return with(beforeMoves()); }

    /// The library has changed, or was read: what waits for that goes on.
    void proceed();
    /// Nothing that waits can be sent any more.
    void refuseAll(const QString& why);

Q_SIGNALS:
    /// expected() is another library.
    void submitted();
    /// An edit is not under way any more: the library shows it, or it was refused.
    void dropped();

private:
    struct Entry
    {
        std::shared_ptr<LibraryEdit> edit;
        EditDirection direction = EditDirection::Redo;
        EditAnswered answered; // empty when told
        int tries = 0;

        const Patch& patch() const { return edit->patch(direction); }
        const PatchBase& base() const { return edit->base(direction); }
    };
    enum class State {
        Idle,      // the first one may be sent
        InFlight,  // the server has it
        Settling,  // it is answered, and the library does not show it yet
        Overtaken, // the server refused it for a change that the library does not show yet
    };

    std::size_t beforeMoves() const;
    Ref<MediaLibrary> with(std::size_t count) const;
    void await(const std::shared_ptr<LibraryEdit>& edit);
    void outdateExpected();
    bool prepare(Entry& entry);
    bool isDone(const Entry& entry, const Json& library) const;
    void sendFirst();
    void onAnswer(QNetworkReply* reply);
    bool hasSettled() const;
    void settleBy(State state);
    static void tell(Entry& entry, const DiffApiError& answer);
    void refuseFirst(const QString& why);
    void finishFirst(const DiffApiError& answer);
    void dropFirst();
    Entry takeFirst();

    MediaLibraryApi* const m_api;
    std::deque<Entry> m_edits;
    State m_state = State::Idle;
    QPointer<QNetworkReply> m_reply; // of InFlight
    std::optional<qint64> m_sentFor; // the revision that it named
    std::optional<qint64> m_awaited; // the library's revision that ends Settling or Overtaken
    QTimer m_patience;
    mutable Ref<const MediaLibrary> m_expected; // null when it is to be worked out
    mutable Json m_expectedOf;                  // the library that it was made of
};

} // namespace vantrel
