#pragma once

#include <QList>
#include <QString>

namespace vantrel {

class MediaLibraryModel;
class SlotDrops;

/// Slots to the clipboard, from where they are copied or, when they are cut, move to where they are pasted.
/// What has been done, a sentence; empty where the library has none of them.
QString copySlots(const MediaLibraryModel& library, int collection, const QList<int>& slotNumbers,
                  bool isCut);

/// What is on the clipboard, to the first room from the number on.
void pasteSlots(SlotDrops* drops, int number);

} // namespace vantrel
