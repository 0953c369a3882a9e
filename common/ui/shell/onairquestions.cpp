#include "common/ui/shell/onairquestions.h"

#include "common/media/address/showntext.h"
#include "common/media/items/guimediaslot.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "common/ui/toolkit/confirmationdialog.h"

#include <utility>

namespace vantrel {

OnAirQuestions::OnAirQuestions(Session* session, QWidget* window)
    : QObject(window)
    , m_session(session)
    , m_window(window)
{
}

bool OnAirQuestions::isProgramOnAir() const
{
    const GUIPlayback* program = m_session->sceneObjectProvider()->programPlayback();
    const bool hasMedia = !program->media().isEmpty() || !program->heldMedia().isEmpty();
    return m_session->isConnected() && hasMedia && program->state() != SourcePlayState::Stop;
}

bool OnAirQuestions::isPlaying() const
{
    return m_session->sceneObjectProvider()->programPlayback()->state() == SourcePlayState::Play;
}

QString OnAirQuestions::programName() const
{
    const auto slot = m_session->sceneObjectProvider()->programPlayback()->playingSlot();
    return slot && !slot->name().isEmpty() ? QStringLiteral("\"%1\"").arg(shownText(slot->name()))
                                           : QString();
}

/// "Program is playing "Walk-in". ", or what it holds, or nothing.
QString OnAirQuestions::onAir() const
{
    if (!isProgramOnAir())
        return {};
    const QString name = programName();
    if (isPlaying())
        return (name.isEmpty() ? tr("Program is playing.") : tr("Program is playing %1.").arg(name)) + u' ';
    return (name.isEmpty() ? tr("Program is holding a picture.") : tr("Program is holding %1.").arg(name)) +
           u' ';
}

void OnAirQuestions::beforeDisconnect(std::function<void()> act)
{
    if (!isProgramOnAir())
        return act();
    const QString goesOn = isPlaying() ? tr("The server plays on without this window:")
                                       : tr("It stays on air without this window:");
    ask(tr("Disconnect from the server?"),
        onAir() + goesOn + u' ' +
            tr("nothing can be taken, stopped or muted from here until you connect again."),
        tr("DISCONNECT"), QStringLiteral("DisconnectDialog"), std::move(act));
}

void OnAirQuestions::beforeReboot(std::function<void()> act)
{
    const QString black = isProgramOnAir() ? tr("It goes black at once.") + u' ' : QString();
    ask(tr("Reboot the server?"),
        onAir() + black + tr("Its outputs stay black until it is up again, which takes a minute or more."),
        tr("REBOOT"), QStringLiteral("RebootDialog"), std::move(act));
}

QString OnAirQuestions::beforeAnotherShow() const
{
    return isProgramOnAir() ? onAir() + tr("It changes at once to what the show has there.") + u' '
                            : QString();
}

QString OnAirQuestions::beforeImport() const
{
    if (!isProgramOnAir())
        return {};
    return onAir() +
           (isPlaying() ? tr("It plays on, and what is imported changes under it at once.")
                        : tr("It stays on air, and what is imported changes under it at once.")) +
           u' ';
}

QString OnAirQuestions::beforeClear() const
{
    return isProgramOnAir() ? onAir() + tr("It goes black at once.") + u' ' : QString();
}

ConfirmationDialog* OnAirQuestions::ask(const QString& title, const QString& text, const QString& yes,
                                        const QString& name, std::function<void()> act, QWidget* over)
{
    auto* dialog = new ConfirmationDialog(title, text, yes, over ? over : m_window);
    dialog->setObjectNames(name);
    dialog->setAcceptClass(QStringLiteral("red"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ZTDialog::confirmed, this, std::move(act), Qt::QueuedConnection);
    dialog->open();
    return dialog;
}

} // namespace vantrel
