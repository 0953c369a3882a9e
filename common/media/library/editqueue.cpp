#include "common/media/library/editqueue.h"

#include "common/media/address/medialogging.h"
#include "common/media/library/medialibraryapi.h"
#include "tarn/media/medialibrary.h"

#include <QFutureWatcher>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>

#include <utility>

namespace vantrel {

namespace {

constexpr int maxTries = 20;
// How long the library may take to show what the server has done before it is read anew, in milliseconds.
constexpr int patience = 2000;
constexpr int preconditionFailed = 412;

int statusOf(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

DiffApiError answerOf(QNetworkReply& reply)
{
    DiffApiError answer;
    answer.statusCode = statusOf(reply);
    // An error status is the server's answer, not a failure of the network.
    if (reply.error() != QNetworkReply::NoError && answer.statusCode < 400) {
        answer.networkFailed = true;
        answer.networkErrorCode = reply.error();
        answer.networkMessage = reply.errorString();
        return answer;
    }
    answer.success = answer.statusCode == 200 || answer.statusCode == 204;
    if (!answer.success)
        answer.message =
            QJsonDocument::fromJson(reply.readAll()).object().value(QStringLiteral("error")).toString();
    return answer;
}

const Json* nodeAt(const Json& document, const Path& path, std::size_t depth)
{
    const Json* node = &document;
    for (std::size_t i = 0; node && i < depth; ++i)
        node = node->isObject() ? node->find(path[i].text()) : nullptr;
    return node;
}

/// Whether the record that stands at a place is still in its list or collection afterwards, be it elsewhere.
bool isRecordKept(const Json& before, const Json& after, const Path& place)
{
    constexpr std::size_t recordDepth = 4;
    const Json* const record = place.size() == recordDepth ? nodeAt(before, place, recordDepth) : nullptr;
    const Json* const from = record ? nodeAt(before, place, recordDepth - 1) : nullptr;
    const Json* const to = record ? nodeAt(after, place, recordDepth - 1) : nullptr;
    const auto count = [record](const Json& container) {
        int found = 0;
        container.forEachMember([&](std::string_view, const Json& value) {
            found += value == *record;
            return true;
        });
        return found;
    };
    return from && to && count(*to) >= count(*from);
}

/// Others change lists, or what is in one collection: a move changes what is in several.
bool mayMoveCollections(const Patch& patch)
{
    const Path* first = nullptr;
    const auto staysInside = [&first](const Path& path) {
        if (path.size() < 2 || path[0].text() != "collections")
            return path.size() >= 2 && path[0].text() == "playlists";
        first = first ? first : &path;
        return path.size() > 2 && path[1].text() == (*first)[1].text();
    };
    return !std::ranges::all_of(patch, [&](const PatchOp& op) {
        return staysInside(op.path) && (op.from.empty() || staysInside(op.from));
    });
}

} // namespace

EditQueue::EditQueue(MediaLibraryApi* api)
    : QObject(api)
    , m_api(api)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    // The stream owes us the change: the library itself tells what became of it.
    connect(&m_patience, &QTimer::timeout, m_api, &MediaLibraryApi::requestMediaLibrary);
}

EditQueue::~EditQueue()
{
    refuseAll(tr("The connection to the server has ended."));
}

void EditQueue::submit(const std::shared_ptr<LibraryEdit>& edit, EditDirection direction,
                       EditAnswered answered)
{
    m_edits.push_back({edit, direction, std::move(answered)});
    outdateExpected();
    if (edit->isMade())
        Q_EMIT submitted();
    else
        await(edit);
    proceed();
}

bool EditQueue::isMaking() const
{
    return !std::ranges::all_of(m_edits, [](const Entry& entry) { return entry.edit->isMade(); });
}

/// Whoever asks for the library meanwhile waits for it.
void EditQueue::await(const std::shared_ptr<LibraryEdit>& edit)
{
    auto* const watcher = new QFutureWatcher<MadeEdit>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        Q_EMIT submitted();
        proceed();
    });
    watcher->setFuture(edit->making);
}

void EditQueue::followLast(const EditAnswered& answered)
{
    if (m_edits.empty())
        return;
    EditAnswered& last = m_edits.back().answered;
    last = [sender = std::exchange(last, nullptr), answered](const DiffApiError& answer) {
        if (sender)
            sender(answer);
        answered(answer);
    };
}

/// Holds on to no library of before either.
void EditQueue::outdateExpected()
{
    m_expected = {};
    m_expectedOf = {};
}

Ref<const MediaLibrary> EditQueue::expected() const
{
    const Json present = m_api->libraryJson();
    if (!m_expected || !m_expectedOf.sameNode(present)) {
        m_expected = with(m_edits.size());
        m_expectedOf = present;
    }
    return m_expected;
}

/// The library with the first so many.
Ref<MediaLibrary> EditQueue::with(std::size_t count) const
{
    auto library = makeRef<MediaLibrary>(m_api->library());
    for (std::size_t i = 0; i < count; ++i) {
        const Entry& entry = m_edits[i];
        entry.edit->settle();
        // What the library shows already, or what somebody else has overtaken, holds no more.
        const Json shown = library->toJson();
        const bool isMadeOnIt =
            entry.direction == EditDirection::Redo && entry.edit->document.sameNode(shown);
        if (isMadeOnIt && entry.edit->made)
            library = makeRef<MediaLibrary>(*entry.edit->made);
        else if (isMadeOnIt || entry.base().holds(shown))
            library->applyDiff(entry.patch());
    }
    return library;
}

/// How many are under way before the first that may give collections other numbers.
std::size_t EditQueue::beforeMoves() const
{
    const auto found = std::ranges::find_if(m_edits, [](const Entry& entry) {
        entry.edit->settle();
        return mayMoveCollections(entry.patch());
    });
    return static_cast<std::size_t>(found - m_edits.begin());
}

void EditQueue::proceed()
{
    if (!m_api->isCurrent())
        return;
    if (m_state == State::Settling && hasSettled()) {
        dropFirst();
    } else if (m_state == State::Overtaken && hasSettled()) {
        m_patience.stop();
        m_state = State::Idle;
    }
    while (m_state == State::Idle && !m_edits.empty() && m_edits.front().edit->isMade())
        sendFirst();
}

/// A library that was read anew has settled whatever was awaited: it is what the server has.
bool EditQueue::hasSettled() const
{
    if (!m_patience.isActive())
        return true;
    if (m_awaited)
        return m_api->revision() && *m_api->revision() >= *m_awaited;
    if (m_state != State::Settling)
        return false;
    // A server that numbers nothing: what the patch was made on must have gone.
    const PatchBase& base = m_edits.front().base();
    return base.empty() || !base.holds(m_api->libraryJson());
}

/// Makes the edit fit the library as it is now; false, and it is refused, when it cannot.
bool EditQueue::prepare(Entry& entry)
{
    LibraryEdit& edit = *entry.edit;
    edit.settle();
    if (entry.direction == EditDirection::Undo && edit.refused) {
        dropFirst(); // there is nothing to undo, and that was said
        return false;
    }
    const Json now = m_api->libraryJson();
    const Json madeOn = std::exchange(edit.document, Json());
    edit.made = {};
    if ((entry.direction == EditDirection::Redo && madeOn.sameNode(now)) || entry.base().holds(now))
        return true;
    if (isDone(entry, now)) {
        // Both patches stay what they are: a later undo is the undo of this.
        if (entry.direction == EditDirection::Redo)
            edit.refused = false;
        DiffApiError answer;
        answer.success = true;
        answer.statusCode = 200;
        finishFirst(answer);
        return false;
    }
    const QString overtaken = tr("Somebody else has changed the same thing meanwhile.");
    if (entry.direction == EditDirection::Undo || !edit.rehearse) {
        refuseFirst(overtaken);
        return false;
    }
    MadeEdit anew;
    if (!edit.rehearse(anew, m_api->library())) {
        refuseFirst(tr("The library has changed meanwhile, and it does not fit any more."));
        return false;
    }
    MediaLibrary after(m_api->library());
    after.applyDiff(anew.redo);
    const Json then = after.toJson();
    if (edit.base(EditDirection::Redo).conflicts(now, anew.redo, [&](const Path& place) {
            return isRecordKept(now, then, place);
        })) {
        refuseFirst(overtaken);
        return false;
    }
    outdateExpected();
    anew.document = {};
    anew.made = {};
    static_cast<MadeEdit&>(edit) = std::move(anew);
    return true;
}

/// Whether the library shows already what the edit makes: an undo that failed leaves its redo standing, and
/// an answer that was lost may have been a yes.
bool EditQueue::isDone(const Entry& entry, const Json& library) const
{
    const bool isRedo = entry.direction == EditDirection::Redo;
    const PatchBase& goal = entry.edit->base(isRedo ? EditDirection::Undo : EditDirection::Redo);
    return !goal.empty() && goal.holds(library);
}

void EditQueue::sendFirst()
{
    Entry& entry = m_edits.front();
    if (!prepare(entry))
        return;
    if (entry.direction == EditDirection::Redo)
        entry.edit->refused = false;
    m_sentFor = m_api->revision();
    QNetworkReply* reply = m_api->patchMediaLibrary(entry.patch(), m_sentFor);
    if (!reply) {
        refuseFirst(tr("It has no form that the server reads."));
        return;
    }
    ++entry.tries;
    m_state = State::InFlight;
    m_reply = reply;
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { onAnswer(reply); });
}

void EditQueue::onAnswer(QNetworkReply* reply)
{
    if (m_state != State::InFlight || reply != m_reply)
        return; // given up on
    m_edits.front().edit->lookUpBases();
    const DiffApiError answer = answerOf(*reply);
    if (answer.statusCode == preconditionFailed && m_edits.front().tries < maxTries) {
        // Something that this window has not heard of came first.
        m_awaited = m_sentFor ? std::optional(*m_sentFor + 1) : std::nullopt;
        settleBy(State::Overtaken);
        return;
    }
    if (answer.success) {
        tell(m_edits.front(), answer);
        m_awaited = MediaLibraryApi::revisionOf(reply->rawHeader("ETag"));
        settleBy(State::Settling);
        return;
    }
    if (m_edits.front().direction == EditDirection::Redo)
        m_edits.front().edit->refused = !answer.networkFailed;
    if (answer.networkFailed)
        m_api->requestMediaLibrary(); // nobody knows whether it was made
    finishFirst(answer);
    proceed();
}

void EditQueue::settleBy(State state)
{
    m_state = state;
    m_patience.start();
    proceed();
}

void EditQueue::refuseAll(const QString& why)
{
    if (m_state == State::InFlight) {
        DiffApiError answer;
        answer.networkFailed = true;
        answer.networkMessage = why;
        finishFirst(answer);
    } else if (m_state == State::Settling) {
        dropFirst(); // the server has it
    }
    // Whoever hears of one may edit anew, and that is another matter.
    for (std::size_t left = m_edits.size(); left > 0 && !m_edits.empty(); --left)
        refuseFirst(why);
}

void EditQueue::refuseFirst(const QString& why)
{
    if (m_edits.front().direction == EditDirection::Redo)
        m_edits.front().edit->refused = true;
    DiffApiError answer;
    answer.message = why;
    finishFirst(answer);
}

/// The edit has left the queue when its sender hears of it: who edits anew then finds the queue in order.
void EditQueue::finishFirst(const DiffApiError& answer)
{
    Entry entry = takeFirst();
    tell(entry, answer);
    Q_EMIT dropped();
}

void EditQueue::tell(Entry& entry, const DiffApiError& answer)
{
    if (const EditAnswered answered = std::exchange(entry.answered, nullptr))
        answered(answer);
}

void EditQueue::dropFirst()
{
    takeFirst();
    Q_EMIT dropped();
}

EditQueue::Entry EditQueue::takeFirst()
{
    Entry entry = std::move(m_edits.front());
    m_edits.pop_front();
    if (entry.edit->isMade()) {
        entry.edit->settle();
        entry.edit->lookUpBases();
        entry.edit->document = {};
        entry.edit->made = {};
    }
    outdateExpected();
    m_patience.stop();
    m_awaited.reset();
    m_state = State::Idle;
    return entry;
}

} // namespace vantrel
