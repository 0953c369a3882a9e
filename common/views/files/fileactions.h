#pragma once

#include "common/filesystem/models/filesmodel.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QVariantMap>

class QWidget;

namespace vantrel {

class ConflictDesk;
class FileSystemDropHandler;

/// What the file browsers cannot do by themselves ("fileActions"): drags that leave the view, drops that may
/// come from anywhere, texts and drawings of files. The view owns it; main thread only.
class FileActions : public QObject
{
    Q_OBJECT
    /// How much of the view's lower end a pop-up over the window covers, in pixels.
    Q_PROPERTY(int coveredHeight READ coveredHeight NOTIFY coveredHeightChanged)
    /// The most that transfers may take while program plays, in MB/s; 0 for all. Kept in the settings.
    Q_PROPERTY(double transferLimit READ transferLimit WRITE setTransferLimit NOTIFY transferLimitChanged)

public:
    /// All must outlive this.
    FileActions(QWidget* view, FileSystemDropHandler* drops, ConflictDesk* desk, QObject* parent = nullptr);

    /// Drags the rows until they are dropped. Of this computer's files other programs get their addresses.
    Q_INVOKABLE void startDrag(vantrel::FilesModel* model, const QList<int>& rows);
    /// A drop on a browser: of our own items (mime) or else of files of this computer (urls).
    Q_INVOKABLE bool drop(const QVariantMap& mime, const QList<QUrl>& urls, vantrel::FilesModel* model,
                          const QString& directory);
    /// choice: a ConflictDesk::Answer.
    Q_INVOKABLE void answerConflict(int choice, bool forAll);
    /// The name of the drawing for a file of that name.
    Q_INVOKABLE QString iconOf(const QString& name) const;
    Q_INVOKABLE QString sizeText(qint64 bytes) const;

    double transferLimit() const;
    void setTransferLimit(double megabytes);
    int coveredHeight() const { return m_coveredHeight; }

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void coveredHeightChanged();
    void transferLimitChanged();

private:
    void runDrag(FilesModel* model, const QList<int>& rows);
    void measureCover();

    QWidget* m_view;
    FileSystemDropHandler* m_drops;
    ConflictDesk* m_desk;
    QPointer<QWidget> m_popup; // of the window
    int m_coveredHeight = 0;
};

} // namespace vantrel
