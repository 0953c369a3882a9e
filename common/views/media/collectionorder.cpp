#include "common/views/media/collectionorder.h"

#include "common/command/execute.h"
#include "common/command/refusal.h"
#include "common/media/address/mediautils.h"
#include "common/media/address/showntext.h"
#include "common/media/edit/slot/movecollectioncommand.h"
#include "common/media/library/medialibraryapi.h"
#include "common/session/mirror/guiplayback.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/session.h"
#include "tarn/media/medialibrary.h"

#include <QPointer>

#include <iterator>

namespace vantrel {

namespace {

/// The library with the edits that are under way: who presses a key twice means the order after the first.
Ref<const MediaLibrary> expectedOf(const Session* session)
{
    const MediaLibraryApi* api = session ? session->getMediaLibraryApi() : nullptr;
    return api ? Ref<const MediaLibrary>(api->expectedLibrary()) : nullptr;
}

} // namespace

CollectionOrder::CollectionOrder(Session* session, QObject* parent)
    : QObject(parent)
    , m_session(session)
{
}

CollectionOrder::Numbers CollectionOrder::numbersFor(int collection, int before) const
{
    const Ref<const MediaLibrary> library = expectedOf(m_session);
    return library ? MoveCollectionCommand::numbersFor(*library, collection, before) : Numbers();
}

/// What plays is known by the number of its collection.
QString CollectionOrder::obstacleOf(const Numbers& numbers) const
{
    const QPointer<GUIPlayback> program = m_session->sceneObjectProvider()->programPlayback();
    const QString media = program ? program->media() : QString();
    const int onAir =
        media::MediaUtils::isSlotAddress(media) ? media::MediaUtils::parseSlotAddress(media).collection : -1;
    return numbers.contains(onAir)
               ? tr("Collection %1 is on program and keeps its number until it is off.").arg(onAir)
               : QString();
}

QVariantMap CollectionOrder::aim(int collection, int before) const
{
    const Numbers numbers = numbersFor(collection, before);
    if (numbers.empty())
        return {{QStringLiteral("isPossible"), false}, {QStringLiteral("text"), QString()}};
    if (const QString why = obstacleOf(numbers); !why.isEmpty())
        return {{QStringLiteral("isPossible"), false}, {QStringLiteral("text"), why}};
    const Ref<const MediaLibrary> library = expectedOf(m_session);
    const auto named = [&library](int number) {
        const MediaCollection* each = library->findCollection(number);
        return QString::number(number) + u' ' + shownText(QString::fromStdString(each->getName()));
    };
    QString text = tr("%1 becomes collection %2.").arg(named(collection)).arg(numbers.at(collection));
    Numbers aside = numbers;
    aside.erase(collection);
    if (aside.size() == 1)
        text += u' ' + tr("%1 becomes %2.").arg(named(aside.begin()->first)).arg(aside.begin()->second);
    else if (!aside.empty())
        text +=
            u' ' + (aside.size() == 2 ? tr("%1 and %2 become %3 and %4.") : tr("%1 to %2 become %3 to %4."))
                       .arg(aside.begin()->first)
                       .arg(aside.rbegin()->first)
                       .arg(aside.begin()->second)
                       .arg(aside.rbegin()->second);
    return {{QStringLiteral("isPossible"), true}, {QStringLiteral("text"), text}};
}

void CollectionOrder::move(int collection, int before)
{
    const Numbers numbers = numbersFor(collection, before);
    if (numbers.empty())
        return;
    if (const QString why = obstacleOf(numbers); !why.isEmpty())
        return tellNotDone(tr("Order of the collections"), why);
    auto command = std::make_unique<MoveCollectionCommand>();
    if (command->init(m_session->mediaLibrary(), collection, before))
        submit(m_session->getQUndoStack(), std::move(command));
}

void CollectionOrder::step(int collection, int direction)
{
    const Ref<const MediaLibrary> library = expectedOf(m_session);
    if (!library || !library->getCollections().contains(collection))
        return;
    const MediaCollectionMap& all = library->getCollections();
    const auto at = all.find(collection);
    if (direction < 0) {
        if (at != all.begin())
            move(collection, std::prev(at)->first);
        return;
    }
    const auto passed = std::next(at);
    if (passed == all.end())
        return;
    const auto behind = std::next(passed);
    move(collection, behind == all.end() ? -1 : behind->first);
}

} // namespace vantrel
