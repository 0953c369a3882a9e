#pragma once

#include <QWidget>

class QQuickWidget;

namespace vantrel {

class ConflictDesk;
class FileActions;
class FileSystemDropHandler;
class FileSystemOperations;
class FileSystemProvider;
class HomeLocations;

/// The FILES tab: this computer's files and the server's side by side, and the transfers between them. Its
/// declarative part is made when the tab is shown first. The main window owns it; main thread only.
class FilesView : public QWidget
{
    Q_OBJECT

public:
    /// What the view works with; all of it must outlive the view.
    struct Sources
    {
        /// Has the models as properties: "localFilesModel", "serverFilesModel", "localFilesPathModel",
        /// "serverFilesPathModel", "operationsModel".
        QObject* session = nullptr;
        FileSystemProvider* provider = nullptr;
        FileSystemOperations* operations = nullptr;
        HomeLocations* homeLocations = nullptr;
    };

    explicit FilesView(const Sources& sources, QWidget* parent = nullptr);
    ~FilesView() override;

    /// Null before the view was shown.
    QQuickWidget* quickWidget() const { return m_view; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void load();

    Sources m_sources;
    ConflictDesk* m_desk;
    FileSystemDropHandler* m_drops;
    QQuickWidget* m_view = nullptr;
};

} // namespace vantrel
