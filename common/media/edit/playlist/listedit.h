#pragma once

#include "tarn/media/entryaddress.h"

#include <QList>
#include <QString>

namespace vantrel {

class EntryNumberingPlan;
class MediaLibrary;
class Playlist;
class PlaylistEntry;

/// The list of that number; null, after the warning, when there is none.
Playlist* findListOrWarn(MediaLibrary& library, int playlist,
                         const char* warning = "Unable to find playlist");

/// Tells the operator why a command on entries does nothing.
void tellEntriesGone(const QString& command);

/// An entry as operators get it who add media: with a transition of a second.
PlaylistEntry newEntry(const QString& mediaUrl);

/// count addresses of a plan, in ascending order; empty when it has not as many.
QList<EntryAddress> addressesOf(const EntryNumberingPlan& plan, qsizetype count);

/// The addresses that entries get which are to stand together behind "after", in the order of the list as it
/// is without them: their own addresses are free for them. An invalid "after" is the start of the list; where
/// "after" is one of them, they stand behind the last entry before it that is not. Empty without room.
QList<EntryAddress> addressesAfter(const Playlist& list, const QList<EntryAddress>& moved,
                                   EntryAddress after);
/// The same in front of "before".
QList<EntryAddress> addressesBefore(const Playlist& list, const QList<EntryAddress>& moved,
                                    EntryAddress before);
/// In front of the target where it stands before the first of the moved ones, else behind it.
QList<EntryAddress> addressesPast(const Playlist& list, const QList<EntryAddress>& moved,
                                  const EntryAddress& target);

/// Gives each entry of "from" the address beside it in "to". False, after a warning, when an entry is absent
/// or an address is invalid or another entry's.
bool relocate(Playlist& list, const QList<EntryAddress>& from, const QList<EntryAddress>& to);

} // namespace vantrel
