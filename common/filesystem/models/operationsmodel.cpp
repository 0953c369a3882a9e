#include "common/filesystem/models/operationsmodel.h"

#include "common/filesystem/model/filesize.h"
#include "common/filesystem/model/filesystemlogging.h"
#include "common/filesystem/model/pathhelpers.h"
#include "common/filesystem/models/operationtexts.h"
#include "common/filesystem/operations/directorytransferoperation.h"
#include "common/filesystem/operations/filetransferoperation.h"
#include "common/filesystem/operations/modifyoperation.h"
#include "common/filesystem/schedule/filesystemoperations.h"
#include "common/media/address/showntext.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantrel {

namespace {

constexpr int refreshMs = 500;

constexpr std::array columns = {
    OperationsModel::OperationTypeRole,    OperationsModel::OperationStateRole,
    OperationsModel::ProgressRole,         OperationsModel::SourceFileSystemRole,
    OperationsModel::TargetFileSystemRole, OperationsModel::SourcePathRole,
    OperationsModel::TargetPathRole,       OperationsModel::EtaRole,
    OperationsModel::TransferSpeedRole,
};

QString sideName(const FileSystemTarget& target)
{
    return target.fileSystem ? target.fileSystem->fileSystemName() : QString();
}

OperationsModel::Stage stageOf(const BaseOperation* operation)
{
    using Stage = OperationsModel::Stage;
    const auto* runnable = qobject_cast<const RunnableOperation*>(operation);
    if (!runnable)
        return operation->isRunning()     ? Stage::Running
               : operation->hasFinished() ? Stage::Done
                                          : Stage::Waiting;
    const auto* transfer = qobject_cast<const TransferOperation*>(operation);
    const bool isAsking = transfer && transfer->conflict();
    switch (runnable->state()) {
    case RunnableOperation::NotStarted: // some ask before they start
        return isAsking ? Stage::Asking : Stage::Waiting;
    case RunnableOperation::Running:
        return isAsking ? Stage::Asking : Stage::Running;
    case RunnableOperation::Stopping:
        return Stage::Stopping;
    case RunnableOperation::Failed:
        return Stage::Failed;
    case RunnableOperation::Passed:
        return Stage::Done;
    }
    return Stage::Waiting;
}

OperationsModel::Wait waitOf(const BaseOperation& operation)
{
    const auto* runnable = qobject_cast<const RunnableOperation*>(&operation);
    if (operation.hasFinished())
        return OperationsModel::Wait::Nothing;
    const auto isAway = [](const FileSystemTarget& target) {
        return target.fileSystem && !target.fileSystem->isReady();
    };
    if (std::ranges::any_of(operation.targets(), isAway))
        return OperationsModel::Wait::Server;
    return runnable && runnable->isHeldUp() ? OperationsModel::Wait::Disk : OperationsModel::Wait::Nothing;
}

bool isOver(OperationsModel::Stage stage)
{
    return stage == OperationsModel::Stage::Done || stage == OperationsModel::Stage::Failed;
}

bool isActive(OperationsModel::Stage stage)
{
    return !isOver(stage) && stage != OperationsModel::Stage::Waiting;
}

/// As the column of the table names it.
QString stateText(OperationsModel::Stage stage)
{
    if (isOver(stage))
        return OperationsModel::tr("Finished");
    return stage == OperationsModel::Stage::Waiting ? OperationsModel::tr("Idle")
                                                    : OperationsModel::tr("Running");
}

} // namespace

OperationsModel::OperationsModel(FileSystemOperations* operations, QObject* parent)
    : QAbstractTableModel(parent)
    , m_operations(operations)
{
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &OperationsModel::refreshAll);
    if (m_operations)
        connect(m_operations, &FileSystemOperations::allOperationsChanged, this, &OperationsModel::reload);
    reload();
}

OperationsModel::~OperationsModel() = default;

void OperationsModel::Counts::add(const Row& row, int by)
{
    const bool isRowOver = isOver(row.stage);
    open += isRowOver ? 0 : by;
    failed += row.stage == Stage::Failed ? by : 0;
    active += isActive(row.stage) ? by : 0;
    round += row.isInRound ? by : 0;
    roundOver += row.isInRound && isRowOver ? by : 0;
}

/// As in the queue, whose operations end in their order; count() when all are over.
int OperationsModel::firstOpen() const
{
    while (m_firstOpen < count() && isOver(m_rows[static_cast<std::size_t>(m_firstOpen)].stage))
        ++m_firstOpen;
    return m_firstOpen;
}

/// From the first on, until use gives true.
template <typename Use>
void OperationsModel::forActive(const Use& use) const
{
    int left = m_counts.active;
    for (int row = firstOpen(); left > 0 && row < count(); ++row) {
        if (!isActive(m_rows[static_cast<std::size_t>(row)].stage))
            continue;
        --left;
        if (use(row))
            return;
    }
}

int OperationsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

int OperationsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

QVariant OperationsModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    if (row.operation.isNull())
        qCInfo(lcFileSystem) << "Operation on row" << index.row() << "and role" << role << "is null";
    if (role == Qt::DisplayRole)
        return cell(row, columns[static_cast<std::size_t>(index.column())]);
    return cell(row, role);
}

QVariant OperationsModel::cell(const Row& row, int role) const
{
    switch (role) {
    case OperationTypeRole:
        return row.type;
    case OperationStateRole:
        return stateText(row.stage);
    case ProgressRole:
        return row.progress;
    case SourceFileSystemRole:
        return sideName(row.source);
    case TargetFileSystemRole:
        return sideName(row.target);
    case SourcePathRole:
        return row.source.fullPath;
    case TargetPathRole:
        return row.target.fullPath;
    case EtaRole:
        return row.stage == Stage::Running && row.eta > 0 ? etaText(row.eta) : QString();
    case TransferSpeedRole:
        return row.stage == Stage::Running && row.speed > 0
                   ? tr("%1/s").arg(fileSizeText(static_cast<qint64>(row.speed)))
                   : QString();
    case NameRole:
        return row.name;
    case StageRole:
        return static_cast<int>(row.stage);
    case ErrorRole:
        return row.stage == Stage::Failed ? errorsText(row.operation.toStrongRef().data()) : QString();
    case SizeTextRole:
        if (row.totalBytes == 0)
            return QString();
        return isOver(row.stage) && row.bytes >= row.totalBytes
                   ? fileSizeText(static_cast<qint64>(row.totalBytes))
                   : tr("%1 of %2")
                         .arg(fileSizeText(static_cast<qint64>(row.bytes)),
                              fileSizeText(static_cast<qint64>(row.totalBytes)));
    case IsTransferRole:
        return row.isTransfer;
    case WhereRole:
        return row.where;
    case WaitsForRole:
        return static_cast<int>(row.wait);
    case VerifiedRole:
        return row.isVerified;
    case OutcomeTextRole:
        return outcomeText(row.isFile, row.isVerified, row.skipped, row.others);
    default:
        return {};
    }
}

QVariant OperationsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount())
        return QAbstractTableModel::headerData(section, orientation, role);
    static const QStringList labels = {tr("Type"),
                                       tr("State"),
                                       tr("Progress"),
                                       tr("Source file system"),
                                       tr("Target file system"),
                                       tr("Source path"),
                                       tr("Target path"),
                                       tr("Time left"),
                                       tr("Speed")};
    return labels.value(section);
}

QHash<int, QByteArray> OperationsModel::roleNames() const
{
    return {
        {OperationTypeRole, "operationType"},
        {OperationStateRole, "operationState"},
        {ProgressRole, "progress"},
        {SourceFileSystemRole, "sourceFileSystem"},
        {TargetFileSystemRole, "targetFileSystem"},
        {SourcePathRole, "sourcePath"},
        {TargetPathRole, "targetPath"},
        {EtaRole, "eta"},
        {TransferSpeedRole, "transferSpeed"},
        {NameRole, "name"},
        {StageRole, "stage"},
        {ErrorRole, "errorText"},
        {SizeTextRole, "sizeText"},
        {IsTransferRole, "isTransfer"},
        {WhereRole, "where"},
        {WaitsForRole, "waitsFor"},
        {VerifiedRole, "isVerified"},
        {OutcomeTextRole, "outcomeText"},
    };
}

/// The queue only grows: what is new comes behind, and what was taken out of the list stays out.
void OperationsModel::reload()
{
    const OperationPtrList all = m_operations ? m_operations->allOperations() : OperationPtrList();
    std::vector<Row> fresh;
    for (; m_takenCount < all.size(); ++m_takenCount) {
        if (const OperationPtr& operation = all.at(m_takenCount)) {
            follow(operation);
            fresh.push_back(rowOf(operation));
        }
    }
    if (!fresh.empty()) {
        for (const Row& row : fresh)
            m_counts.add(row, 1);
        beginInsertRows({}, count(), count() + static_cast<int>(fresh.size()) - 1);
        m_rows.insert(m_rows.end(), std::make_move_iterator(fresh.begin()),
                      std::make_move_iterator(fresh.end()));
        endInsertRows();
        Q_EMIT countChanged();
    }
    onOperationProgressed(); // many come at once
}

OperationsModel::Row OperationsModel::rowOf(const OperationPtr& operation) const
{
    Row row;
    row.operation = operation;
    row.id = operation.data();
    row.type = operationTypeText(operation.data());
    const QList<FileSystemTarget> targets = operation->targets();
    row.source = targets.value(0);
    row.name = shownText(getNameInPath(row.source.fullPath));
    row.where = shownText(getParentPath(row.source.fullPath));
    if (qobject_cast<const TransferOperation*>(operation.data())) {
        row.isTransfer = true;
        row.isFile = qobject_cast<const FileTransferOperation*>(operation.data());
        row.target = targets.value(1);
        row.where = shownText(row.target.fullPath);
    }
    storeRefreshedValues(row);
    return row;
}

void OperationsModel::follow(const OperationPtr& operation)
{
    const void* id = operation.data();
    const auto refresh = [this, id] { refreshRow(id); };
    connect(operation.data(), &BaseOperation::operationStarted, this, refresh);
    connect(operation.data(), &BaseOperation::operationStopped, this, refresh);
    connect(operation.data(), &BaseOperation::progressChanged, this, &OperationsModel::onOperationProgressed);
    for (const FileSystemTarget& target : operation->targets())
        if (target.fileSystem)
            connect(target.fileSystem, &FileSystem::isReadyChanged, this,
                    &OperationsModel::onOperationProgressed, Qt::UniqueConnection);
    if (const auto* runnable = qobject_cast<const RunnableOperation*>(operation.data())) {
        connect(runnable, &RunnableOperation::errorsChanged, this, refresh);
        connect(runnable, &RunnableOperation::heldUpChanged, this, refresh);
    }
    if (const auto* transfer = qobject_cast<const TransferOperation*>(operation.data())) {
        connect(transfer, &TransferOperation::conflictFound, this, refresh);
        connect(transfer, &TransferOperation::conflictAnswered, this, refresh);
        connect(transfer, &TransferOperation::transferredBytesChanged, this,
                &OperationsModel::onOperationProgressed);
    }
}

void OperationsModel::storeRefreshedValues(Row& row) const
{
    const auto operation = row.operation.toStrongRef();
    if (!operation)
        return;
    row.stage = stageOf(operation.data());
    row.wait = waitOf(*operation);
    row.progress = row.stage == Stage::Done ? 1.0 : operation->progress();
    if (const auto* transfer = qobject_cast<const TransferOperation*>(operation.data())) {
        row.bytes = transfer->transferredBytes();
        row.totalBytes = transfer->totalSizeBytes();
        row.speed = transfer->transferSpeed();
        row.eta = transfer->etaSeconds();
        row.isVerified = row.stage == Stage::Done && transfer->isVerified();
        row.skipped = transfer->skippedCount();
        row.others = transfer->otherFiles();
        // The parts of a folder tell their bytes at once, and its progress less often: one row says one
        // thing.
        const bool isFolder = qobject_cast<const DirectoryTransferOperation*>(transfer);
        if (isFolder && row.stage != Stage::Done && row.totalBytes > 0)
            row.progress =
                std::min(1.0, static_cast<double>(row.bytes) / static_cast<double>(row.totalBytes));
    }
}

void OperationsModel::refresh(Row& row)
{
    m_counts.add(row, -1);
    storeRefreshedValues(row);
    m_counts.add(row, 1);
}

void OperationsModel::refreshRow(const void* id)
{
    auto found = std::find_if(m_rows.begin() + firstOpen(), m_rows.end(),
                              [id](const Row& row) { return row.id == id; });
    if (found == m_rows.end())
        found = std::ranges::find(m_rows, id, &Row::id);
    if (found == m_rows.end())
        return;
    refresh(*found);
    const int row = static_cast<int>(found - m_rows.begin());
    Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
    ++m_revision;
    Q_EMIT revisionChanged();
    Q_EMIT countChanged();
    updateTotal();
}

/// A running transfer reports hundreds of times a second: the table takes part twice, and the last one
/// counts.
void OperationsModel::onOperationProgressed()
{
    if (m_refresh.isActive())
        return;
    if (!m_sinceRefresh.isValid() || m_sinceRefresh.hasExpired(refreshMs))
        refreshAll();
    else
        m_refresh.start(static_cast<int>(refreshMs - m_sinceRefresh.elapsed()));
}

void OperationsModel::refreshAll()
{
    m_sinceRefresh.restart();
    const int first = firstOpen();
    for (int row = first; row < count(); ++row) {
        if (Row& open = m_rows[static_cast<std::size_t>(row)]; !isOver(open.stage))
            refresh(open);
    }
    if (first < count())
        Q_EMIT dataChanged(index(first, 0), index(count() - 1, columnCount() - 1));
    ++m_revision;
    Q_EMIT revisionChanged();
    Q_EMIT countChanged();
    updateTotal();
}

/// Over all that was asked for since the last time that nothing was left to do.
void OperationsModel::updateTotal()
{
    if (m_counts.open == 0) {
        for (Row& row : m_rows)
            row.isInRound = false;
        m_counts.round = m_counts.roundOver = 0;
    }
    double sum = m_counts.roundOver;
    forActive([&](int row) {
        sum += m_rows[static_cast<std::size_t>(row)].progress;
        return false;
    });
    const double total = m_counts.round > 0 ? sum / m_counts.round : 1.0;
    if (qFuzzyCompare(1.0 + total, 1.0 + m_totalProgress))
        return;
    m_totalProgress = total;
    Q_EMIT totalProgressChanged();
}

OperationPtr OperationsModel::operationAt(int row) const
{
    if (row < 0 || row >= count() || !m_operations)
        return {};
    return m_rows[static_cast<std::size_t>(row)].operation.toStrongRef();
}

void OperationsModel::cancel(int row)
{
    const OperationPtr operation = operationAt(row);
    if (auto* runnable = qobject_cast<RunnableOperation*>(operation.data()))
        runnable->abort();
}

void OperationsModel::cancelAll()
{
    // What waits goes first: else the next one would begin each time.
    OperationPtrList open;
    for (const Row& row : m_rows) {
        if (!isOver(row.stage))
            open.prepend(row.operation.toStrongRef());
    }
    std::ranges::stable_partition(
        open, [](const OperationPtr& operation) { return operation && !operation->isRunning(); });
    for (const OperationPtr& operation : std::as_const(open)) {
        if (auto* runnable = qobject_cast<RunnableOperation*>(operation.data()))
            runnable->abort();
    }
}

void OperationsModel::retry(int row)
{
    const OperationPtr operation = operationAt(row);
    if (!operation || !m_operations || !operation->hasFinished())
        return;
    OperationPtr again;
    if (const auto* transfer = qobject_cast<const TransferOperation*>(operation.data())) {
        const FileSystemTarget from = transfer->from();
        const FileSystemTarget to = transfer->to();
        again = m_operations->retryOperation(operation); // leaves out what has come over whole
        if (!again)
            again = transfer->transferType() == TransferOperation::Move
                        ? m_operations->move(from.fileSystem, from.fullPath, to.fileSystem, to.fullPath)
                        : m_operations->copy(from.fileSystem, from.fullPath, to.fileSystem, to.fullPath);
        if (auto* next = qobject_cast<TransferOperation*>(again.data()))
            next->setConflictPolicy(ConflictPolicy::Ask);
    } else if (const auto* change = qobject_cast<const ModifyOperation*>(operation.data())) {
        const FileSystemTarget target = change->target();
        if (change->modifyType() == ModifyOperation::Remove)
            again = m_operations->remove(target.fileSystem, target.fullPath);
        else if (change->modifyType() == ModifyOperation::Rename)
            again = m_operations->rename(target.fileSystem, target.fullPath, change->newName());
        else if (change->modifiedTargetType() == ModifyOperation::Directory)
            again = m_operations->createDirectory(target.fileSystem, target.fullPath);
    }
    if (again)
        dismiss(row);
    else if (auto* runnable = qobject_cast<RunnableOperation*>(operation.data()))
        runnable->addErrorText(tr("It cannot be tried again: what it was about is not there any more."));
}

void OperationsModel::clearFinished()
{
    const auto isRowOver = [this](int row) { return isOver(m_rows[static_cast<std::size_t>(row)].stage); };
    for (int last = count() - 1; last >= 0; --last) {
        if (!isRowOver(last))
            continue;
        int first = last;
        while (first > 0 && isRowOver(first - 1))
            --first;
        takeOut(first, last);
        last = first;
    }
    Q_EMIT countChanged();
}

void OperationsModel::dismiss(int row)
{
    if (row < 0 || row >= count() || !isOver(m_rows[static_cast<std::size_t>(row)].stage))
        return;
    takeOut(row, row);
    Q_EMIT countChanged();
}

void OperationsModel::takeOut(int first, int last)
{
    beginRemoveRows({}, first, last);
    const auto begin = m_rows.begin() + first, end = m_rows.begin() + last + 1;
    for (auto row = begin; row != end; ++row) {
        m_counts.add(*row, -1);
        if (const OperationPtr gone = row->operation.toStrongRef())
            gone->disconnect(this);
    }
    m_rows.erase(begin, end);
    m_firstOpen = std::min(m_firstOpen, first);
    endRemoveRows();
}

double OperationsModel::progressAt(FileSystem* fileSystem, const QString& path) const
{
    double progress = -1;
    forActive([&](int at) {
        const Row& row = m_rows[static_cast<std::size_t>(at)];
        if (row.isTransfer && isAt(row, fileSystem, path))
            progress = row.progress;
        return progress >= 0;
    });
    return progress;
}

/// Whether it leads from or to there.
bool OperationsModel::isAt(const Row& row, const FileSystem* fileSystem, const QString& path)
{
    if (row.source.fileSystem == fileSystem && isSamePath(row.source.fullPath, path))
        return true;
    if (row.target.fileSystem != fileSystem)
        return false;
    const QString name = getNameInPath(row.source.fullPath);
    return isSamePath(row.target.fullPath, path) ||
           isSamePath(createJoinedPath(row.target.fullPath, name, false), path);
}

int OperationsModel::activeRow() const
{
    int active = m_counts.open > 0 ? firstOpen() : -1; // waits, where none is active
    forActive([&](int row) {
        active = row;
        return true;
    });
    return active;
}

} // namespace vantrel
