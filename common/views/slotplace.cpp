#include "common/views/slotplace.h"

#include "common/media/address/showntext.h"
#include "common/media/models/medialibrarymodel.h"
#include "tarn/media/medialibrary.h"

#include <QCoreApplication>
#include <QUrl>

namespace vantrel {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("SlotPlace", text);
}

} // namespace

SlotPlace SlotPlace::from(const MediaLibraryModel& library, int collection, int number)
{
    if (library.holdsMedia({collection, number}))
        return {};
    const int next = library.nextSlot(collection, number);
    if (next != number)
        return {.first = number, .last = (next < 0 ? MediaCollection::slotIndexMax + 1 : next) - 1};
    return {.first = number,
            .last = number,
            .isSlot = true,
            .name = shownText(
                library.slotIndex({collection, number}).data(MediaLibraryModel::NameRole).toString())};
}

QString SlotPlace::numbers() const
{
    return first == last ? QString::number(first) : QStringLiteral("%1 – %2").arg(first).arg(last);
}

QString SlotPlace::state() const
{
    if (!isSlot)
        return translated("free");
    return name.isEmpty() ? translated("empty") : translated("%1 · empty").arg(name);
}

QString SlotPlace::text() const
{
    return (isSlot ? QStringLiteral("%1 · %2") : QStringLiteral("%1 %2")).arg(numbers(), state());
}

QString SlotPlace::spoken() const
{
    return first == last ? translated("Slot %1, %2").arg(first).arg(state())
                         : translated("Slots %1 to %2, %3").arg(first).arg(last).arg(state());
}

QString SlotPlace::hint()
{
    return translated("Drop files, folders or slots here.");
}

bool isSlotFound(const QString& searched, int number, const QString& name, const QUrl& file)
{
    if (searched.isEmpty() || QString::number(number).startsWith(searched) ||
        name.contains(searched, Qt::CaseInsensitive))
        return true;
    // A lone "4" means no ".mp4": the extension counts only in a text that asks for one.
    const QString whole = file.fileName();
    const QString shown = searched.contains(u'.') ? whole : whole.section(u'.', 0, -2);
    return shown.contains(searched, Qt::CaseInsensitive);
}

} // namespace vantrel
