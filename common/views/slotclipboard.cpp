#include "common/views/slotclipboard.h"

#include "common/command/refusal.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/views/slotdrops.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMimeData>

namespace vantrel {

namespace {

// Beside the slots that are on the clipboard: they move.
const QString cutFormat = QStringLiteral("application/x-halcyra-cut");

QString translated(const char* text, int count = -1)
{
    return QCoreApplication::translate("SlotClipboard", text, nullptr, count);
}

} // namespace

QString copySlots(const MediaLibraryModel& library, int collection, const QList<int>& slotNumbers, bool isCut)
{
    QList<MediaAddress> addresses;
    for (const int slot : slotNumbers)
        addresses.append(MediaAddress(collection, slot));
    QMimeData* const data = library.mimeDataOf(addresses);
    if (!data)
        return {};
    if (isCut)
        data->setData(cutFormat, "1");
    QGuiApplication::clipboard()->setMimeData(data);
    const int count = static_cast<int>(slotNumbers.size());
    return isCut ? translated("%n slots are cut: they move where they are pasted.", count)
                 : translated("%n slots are copied.", count);
}

void pasteSlots(SlotDrops* drops, int number)
{
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    const bool isCut = data && data->hasFormat(cutFormat);
    if (!data || !drops->paste(data, isCut, number))
        return tellNotDone(translated("Paste slots"),
                           translated("There are no slots on the clipboard. Copy some first."));
    if (isCut)
        QGuiApplication::clipboard()->clear(); // where they were they are no more
}

} // namespace vantrel
