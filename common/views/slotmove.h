#pragma once

#include <QList>

class QWidget;

namespace vantrel {

class TextInputDialog;

class MediaLibraryModel;
class SlotDrops;

/// Asks to which number of their collection the slots are to move, says what goes for them, and moves them
/// there, one behind the other, as a drop on that number does. drops has that collection, and is used by
/// nothing else while the question stands; all must outlive it.
TextInputDialog* askWhereToMove(SlotDrops* drops, const MediaLibraryModel* library, int collection,
                                const QList<int>& slotNumbers, QWidget* window);

} // namespace vantrel
