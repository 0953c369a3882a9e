#pragma once

#include "common/filesystem/operations/conflictpolicy.h"
#include "common/filesystem/operations/transferoperation.h"

#include <QAbstractTableModel>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

#include <vector>

namespace vantrel {

class FileSystemOperations;

/// All file work of the session, in the order in which it was asked for: a row for each operation. What
/// changes while one runs is told twice a second. The session owns it; main thread only.
class OperationsModel : public QAbstractTableModel
{
    Q_OBJECT
    /// From 0 to 1, the mean of all that was asked for since nothing was left to do; 1 while there is
    /// nothing.
    Q_PROPERTY(double totalProgress READ totalProgress NOTIFY totalProgressChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// How many are not over.
    Q_PROPERTY(int openCount READ openCount NOTIFY countChanged)
    /// How many failed or were stopped and still stand in the list.
    Q_PROPERTY(int failedCount READ failedCount NOTIFY countChanged)
    /// Grows with every change of a row, for who asks progressAt().
    Q_PROPERTY(int revision READ revision NOTIFY revisionChanged)

public:
    enum Roles {
        OperationTypeRole = 257,
        OperationStateRole = 258,
        ProgressRole = 259,
        SourceFileSystemRole = 260,
        TargetFileSystemRole = 261,
        SourcePathRole = 262,
        TargetPathRole = 263,
        EtaRole = 264,           // text, empty while there is no estimate
        TransferSpeedRole = 265, // text
        NameRole = 266,          // of the item
        StageRole = 267,         // Stage
        ErrorRole = 268,         // plain text, why it failed
        SizeTextRole = 269,      // how much of how much
        IsTransferRole = 270,
        WhereRole = 271,       // the directories, for a line below the name
        WaitsForRole = 272,    // Wait
        VerifiedRole = 273,    // a transfer that is done, and both sides were compared
        OutcomeTextRole = 274, // of one that is done
    };
    Q_ENUM(Roles)

    /// What an operator wants to know of the state.
    enum class Stage : int { Waiting, Running, Asking, Stopping, Done, Failed };
    Q_ENUM(Stage)

    /// What an operation that is not over waits for, beside its turn.
    enum class Wait : int { Nothing, Server, Disk };
    Q_ENUM(Wait)

    explicit OperationsModel(FileSystemOperations* operations, QObject* parent = nullptr);
    ~OperationsModel() override;

    double totalProgress() const { return m_totalProgress; }
    int count() const { return static_cast<int>(m_rows.size()); }
    int openCount() const { return m_counts.open; }
    int failedCount() const { return m_counts.failed; }
    int revision() const { return m_revision; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Ends what runs, and what waits before it has begun.
    Q_INVOKABLE void cancel(int row);
    Q_INVOKABLE void cancelAll();
    /// Asks for the same once more, and takes the failed row away.
    Q_INVOKABLE void retry(int row);
    /// Takes what is over out of the list.
    Q_INVOKABLE void clearFinished();
    Q_INVOKABLE void dismiss(int row);
    /// The progress of what is on its way from or to the path, 0 to 1; -1 when nothing is.
    Q_INVOKABLE double progressAt(vantrel::FileSystem* fileSystem, const QString& path) const;
    /// The first row that runs, else the first that waits; -1 for none.
    Q_INVOKABLE int activeRow() const;

public Q_SLOTS:
    void reload();

Q_SIGNALS:
    void totalProgressChanged();
    void countChanged();
    void revisionChanged();

private:
    struct Row
    {
        QWeakPointer<BaseOperation> operation;
        const void* id = nullptr; // the operation's address
        QString type;
        QString name;
        QString where;
        FileSystemTarget source;
        FileSystemTarget target; // of transfers
        Stage stage = Stage::Waiting;
        double progress = 0;
        quint64 bytes = 0;
        quint64 totalBytes = 0;
        double speed = 0; // bytes a second
        int eta = 0;      // seconds
        Wait wait = Wait::Nothing;
        bool isTransfer = false;
        bool isFile = false;
        bool isVerified = false;
        int skipped = 0;
        int others = 0;
        bool isInRound = true; // counts for the total
    };

    /// Of the rows: an operation that begins or ends must not cost a walk over thousands that wait.
    struct Counts
    {
        int open = 0;
        int failed = 0;
        int active = 0; // run, ask, or are being stopped
        int round = 0;  // count for the total
        int roundOver = 0;

        void add(const Row& row, int by);
    };

    Row rowOf(const OperationPtr& operation) const;
    void follow(const OperationPtr& operation);
    void storeRefreshedValues(Row& row) const;
    void refreshRow(const void* id);
    void onOperationProgressed();
    void refreshAll();
    void updateTotal();
    void takeOut(int first, int last);
    int firstOpen() const;
    template <typename Use>
    void forActive(const Use& use) const;
    void refresh(Row& row);
    static bool isAt(const Row& row, const FileSystem* fileSystem, const QString& path);
    OperationPtr operationAt(int row) const;
    QVariant cell(const Row& row, int role) const;

    QPointer<FileSystemOperations> m_operations;
    std::vector<Row> m_rows;
    Counts m_counts;
    mutable int m_firstOpen = 0; // what is before it is over
    qsizetype m_takenCount = 0;  // of all operations
    QTimer m_refresh;            // at most one in 500 ms
    QElapsedTimer m_sinceRefresh;
    double m_totalProgress = 1;
    int m_revision = 0;
};

} // namespace vantrel
