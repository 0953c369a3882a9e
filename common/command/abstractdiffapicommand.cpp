#include "common/command/abstractdiffapicommand.h"

#include "common/command/commandlogging.h"
#include "common/command/refusal.h"
#include "common/media/library/aside.h"
#include "common/media/library/editqueue.h"
#include "common/media/library/medialibraryapi.h"
#include "common/notification/notificationmanagerimpl.h"
#include "common/session/session.h"

#include <QPointer>

namespace vantrel {

namespace {

/// An operator must not take for done what is not.
void tellRefusal(const QString& text, const DiffApiError& answer)
{
    if (!answer.networkFailed)
        return tellNotDone(text, answer.message.isEmpty()
                                     ? QObject::tr("The server refused it (%1).").arg(answer.statusCode)
                                     : answer.message);
    NotificationManagerImpl::instance()->createNotification(
        Notification::WarningMessage,
        QObject::tr("Nobody knows whether it was done: %1").arg(text.toHtmlEscaped()),
        QObject::tr("The server did not answer (%1). Look at the library before you go on.")
            .arg(answer.networkMessage.toHtmlEscaped()));
}

} // namespace

AbstractDiffApiCommand::AbstractDiffApiCommand(QUndoCommand* parent)
    : AbstractSessionCommand(parent)
{
}

/// The edits that can be done again are given up by the next one: to free long ones would be at that one's
/// cost.
AbstractDiffApiCommand::~AbstractDiffApiCommand()
{
    constexpr std::size_t few = 500; // operations
    if (m_edit->making.isValid() || m_edit->redo.size() + m_edit->undo.size() > few)
        aside::letGo(std::move(m_edit));
}

void AbstractDiffApiCommand::setUndoPatch(const Patch& patch)
{
    m_edit->undo = patch;
    m_undoSupported = true;
}

void AbstractDiffApiCommand::setEdit(LibraryEdit edit)
{
    *m_edit = std::move(edit);
    m_undoSupported = true;
}

void AbstractDiffApiCommand::redo()
{
    m_edit->refused = false;
    send(EditDirection::Redo);
}

void AbstractDiffApiCommand::undo()
{
    if (m_edit->refused)
        setObsolete(true); // it was never done
    else
        send(EditDirection::Undo);
}

void AbstractDiffApiCommand::send(EditDirection direction)
{
    MediaLibraryApi* api = Session::instance() ? Session::instance()->getMediaLibraryApi() : nullptr;
    if (!api) {
        qCWarning(lcCommand) << "No api available, check connection?";
        tellNotDone(text(), QObject::tr("There is no connection to the server."));
        return;
    }
    m_edit->text = text();
    // The command may be gone by then: the edit goes its way all the same.
    const auto answered = [command = QPointer(this), edit = m_edit, direction](const DiffApiError& answer) {
        if (!answer.success)
            tellRefusal(edit->text, answer);
        if (command)
            command->handleAnswer(direction, answer);
    };
    api->edits()->submit(m_edit, direction, answered);
}

void AbstractDiffApiCommand::handleAnswer(EditDirection direction, const DiffApiError& answer)
{
    if (answer.networkFailed)
        qCWarning(lcCommand).noquote()
            << QStringLiteral("Failed due network error: ") + answer.networkMessage;
    else if (answer.statusCode != 0)
        QUndoCommand::redo(); // children run after a confirmed undo too; the diff commands have none
    direction == EditDirection::Redo ? redoResult(answer) : undoResult(answer);
    Q_EMIT answered(direction, answer.success);
}

void AbstractDiffApiCommand::redoResult(DiffApiError result)
{
    if (result.networkFailed)
        qCDebug(lcCommand).noquote() << QStringLiteral("Redo failed due network error ") +
                                            result.networkMessage;
    else if (!result.success)
        qCWarning(lcCommand).noquote() << QStringLiteral("Redo failed! ") + result.message;
}

void AbstractDiffApiCommand::undoResult(DiffApiError result)
{
    if (result.networkFailed)
        qCDebug(lcCommand).noquote() << QStringLiteral("Undo failed due network error ") +
                                            result.networkMessage;
    else if (!result.success)
        qCWarning(lcCommand).noquote() << QStringLiteral("Undo failed! ") + result.message;
}

} // namespace vantrel
