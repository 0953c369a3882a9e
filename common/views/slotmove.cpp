#include "common/views/slotmove.h"

#include "common/command/refusal.h"
#include "common/media/models/medialibrarymodel.h"
#include "common/ui/toolkit/textinputdialog.h"
#include "common/ui/toolkit/ztedit.h"
#include "common/views/slotdrops.h"
#include "tarn/media/medialibrary.h"

#include <QCoreApplication>
#include <QMimeData>

#include <memory>

namespace vantrel {

namespace {

QString translated(const char* text, int count = -1)
{
    return QCoreApplication::translate("SlotMove", text, nullptr, count);
}

} // namespace

void askWhereToMove(SlotDrops* drops, const MediaLibraryModel* library, int collection,
                    const QList<int>& slotNumbers, QWidget* window)
{
    auto* dialog = new TextInputDialog(translated("Move %n slots", static_cast<int>(slotNumbers.size())),
                                       translated("Number of the first slot"), translated("MOVE"), window);
    dialog->setObjectNames(QStringLiteral("MoveSlots"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const auto begin = [=, number = drops->numbers().follow(collection)] {
        QList<MediaAddress> addresses;
        for (const int slot : slotNumbers)
            addresses.append(MediaAddress(*number, slot));
        const std::unique_ptr<QMimeData> data(library->mimeDataOf(addresses));
        drops->setCollection(*number);
        return data && drops->begin(data.get());
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
            forecast.fault = translated("The slots are not in the library any more.");
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
}

} // namespace vantrel
