#include "common/filesystem/models/operationtexts.h"

#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/models/operationsmodel.h"
#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/operations/transferoperation.h"
#include "common/media/address/showntext.h"

#include <QTextDocumentFragment>

namespace vantrel {

QString operationTypeText(const BaseOperation* operation)
{
    if (const auto* transfer = qobject_cast<const TransferOperation*>(operation))
        return transfer->transferType() == TransferOperation::Copy ? OperationsModel::tr("Copy")
                                                                   : OperationsModel::tr("Move");
    if (const auto* change = qobject_cast<const ModifyOperation*>(operation)) {
        switch (change->modifyType()) {
        case ModifyOperation::Remove:
            return OperationsModel::tr("Remove");
        case ModifyOperation::Create:
            return OperationsModel::tr("Create");
        case ModifyOperation::Rename:
            return OperationsModel::tr("Rename");
        }
    }
    qCWarning(lcFileSystem) << "Unimplemented code.";
    return {};
}

QString etaText(int seconds)
{
    const QString h = OperationsModel::tr("h");
    const QString m = OperationsModel::tr("m");
    const QString s = OperationsModel::tr("s");
    if (seconds >= 3600)
        return QStringLiteral("%1 %2 %3 %4").arg(seconds / 3600).arg(h).arg(seconds / 60 % 60).arg(m);
    if (seconds >= 60)
        return QStringLiteral("%1 %2 %3 %4").arg(seconds / 60).arg(m).arg(seconds % 60).arg(s);
    return QStringLiteral("%1 %2").arg(seconds).arg(s);
}

QString outcomeText(bool isFile, bool isVerified, int skipped, int others)
{
    if (skipped > 0 && isFile)
        return OperationsModel::tr("Skipped: the name is taken there");
    QString text =
        skipped == 0   ? isVerified ? OperationsModel::tr("Done, verified") : OperationsModel::tr("Done")
          : skipped == 1 ? OperationsModel::tr("Done, 1 skipped: its name is taken there")
                       : OperationsModel::tr("Done, %1 skipped: their names are taken there").arg(skipped);
    if (others > 0)
        text += others == 1 ? OperationsModel::tr("; 1 file is no media and stays")
                            : OperationsModel::tr("; %1 files are no media and stay").arg(others);
    return text;
}

QString errorsText(const BaseOperation* operation)
{
    const auto* runnable = qobject_cast<const RunnableOperation*>(operation);
    if (!runnable)
        return {};
    QStringList lines;
    for (const OperationError& error : runnable->errors())
        lines.append(shownText(QTextDocumentFragment::fromHtml(error.message).toPlainText()));
    return lines.isEmpty() ? OperationsModel::tr("Did not succeed") : lines.join(QStringLiteral("; "));
}

} // namespace vantrel
