#include "common/views/slotclipboard.h"

#include "common/command/refusal.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/views/slotdrops.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>

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
    static int cuts = 0;
    if (isCut)
        data->setData(cutFormat, QByteArray::number(++cuts));
    QGuiApplication::clipboard()->setMimeData(data);
    const int count = static_cast<int>(slotNumbers.size());
    return isCut ? translated("%n slots are cut: they move where they are pasted.", count)
                 : translated("%n slots are copied.", count);
}

void pasteSlots(SlotDrops* drops, int number)
{
    static std::weak_ptr<const QByteArray> pasted; // the cut that the server has yet to take
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    const auto cut = std::make_shared<const QByteArray>(data ? data->data(cutFormat) : QByteArray());
    const bool isCut = !cut->isEmpty();
    if (const auto other = pasted.lock(); isCut && other && *other == *cut)
        return tellNotDone(translated("Paste slots"), translated("They are on their way already."));
    // Where they were they are no more; what is refused can be pasted again.
    const auto letGo = [cut] {
        QClipboard* const clipboard = QGuiApplication::clipboard();
        if (!cut->isEmpty() && clipboard->mimeData() && clipboard->mimeData()->data(cutFormat) == *cut)
            clipboard->clear();
    };
    if (isCut)
        pasted = cut;
    if (!data || !drops->paste(data, isCut, number, letGo))
        tellNotDone(translated("Paste slots"),
                    translated("There are no slots on the clipboard. Copy some first."));
}

} // namespace vantrel
