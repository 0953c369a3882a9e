#include "common/views/slotmove.h"

#include "common/command/refusal.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/views/slotdrops.h"
#include "tarn/media/medialibrary.h"

#include <QCoreApplication>
#include <QMimeData>
#include <QUrl>

#include <memory>

namespace vantrel {

namespace {

QString translated(const char* text, int count = -1)
{
    return QCoreApplication::translate("SlotMove", text, nullptr, count);
}

QList<QUrl> mediaIn(const MediaLibraryModel& library, const QList<MediaAddress>& addresses)
{
    QList<QUrl> media;
    for (const MediaAddress& address : addresses)
        media.append(library.slotIndex(address).data(MediaLibraryModel::UrlRole).toUrl());
    return media;
}

} // namespace

TextInputDialog* askWhereToMove(SlotDrops* drops, const MediaLibraryModel* library, int collection,
                                const QList<int>& slotNumbers, QWidget* window)
{
    auto* dialog = new TextInputDialog(translated("Move %n slots", static_cast<int>(slotNumbers.size())),
                                       translated("Number of the first slot"), translated("MOVE"), window);
    dialog->setObjectNames(QStringLiteral("MoveSlots"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QList<MediaAddress> chosen;
    for (const int slot : slotNumbers)
        chosen.append(MediaAddress(collection, slot));
    const auto begin = [=, number = drops->numbers().follow(collection), media = mediaIn(*library, chosen)] {
        QList<MediaAddress> addresses;
        for (const int slot : slotNumbers)
            addresses.append(MediaAddress(*number, slot));
        const std::unique_ptr<QMimeData> data(library->mimeDataOf(addresses));
        drops->setCollection(*number);
        // What has come into their places meanwhile nobody has chosen.
        return data && mediaIn(*library, addresses) == media && drops->begin(data.get());
    };
    const auto forecastOf = [=](const QString& text) {
        bool isNumber = false;
        const int number = text.trimmed().toInt(&isNumber);
        DropForecast forecast;
        if (!isNumber || number < MediaCollection::slotIndexMin || number > MediaCollection::slotIndexMax)
            forecast.fault = translated("A number from %1 to %2.")
                                 .arg(MediaCollection::slotIndexMin)
                                 .arg(MediaCollection::slotIndexMax);
        else if (begin())
            forecast = drops->aim(number);
        else
            forecast.fault = translated("The slots hold something else by now. Select them again.");
        drops->end();
        return forecast;
    };
    // What is read there is what may go without another question.
    const auto told = std::make_shared<DropForecast>();
    const auto tell = [=](const QString& text) {
        *told = forecastOf(text);
        dialog->setHelp(0, told->isPossible() || text.isEmpty() ? told->text() : QString());
        dialog->setError(0, told->isPossible() || text.isEmpty() ? QString() : told->fault);
        dialog->setAcceptEnabled(told->isPossible());
    };
    QObject::connect(dialog->findChild<ZTEdit*>(), &ZTEdit::textChanged, dialog, tell);
    QObject::connect(drops, &SlotDrops::obstacleChanged, dialog, [=] { tell(dialog->values().value(0)); });
    QObject::connect(dialog, &TextInputDialog::valuesConfirmed, drops, [=](const QStringList& values) {
        const int number = values.value(0).toInt();
        const bool isAsTold = forecastOf(values.value(0)) == *told;
        if (!begin())
            return tellNotDone(translated("Move slots"), forecastOf(values.value(0)).fault);
        if (isAsTold)
            drops->aim(number);
        drops->drop(number);
        drops->end();
    });
    tell({});
    dialog->open();
    return dialog;
}

} // namespace vantrel
