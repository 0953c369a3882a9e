#pragma once

#include <QObject>

#include <memory>

namespace vantrel {

class FilesModel;
class MediaArrivals;
class OperationsModel;
class PathModel;
class ServerFileSystem;

/// What the session holds for the views of files: models of the operator's own disks and of the work in hand,
/// and what is on its way into slots, made when somebody first asks, and models of the server as long as
/// there is a link. The session owns it; main thread only.
class SessionFiles : public QObject
{
    Q_OBJECT

public:
    SessionFiles();
    ~SessionFiles() override;

    FilesModel* localFilesModel();
    PathModel* localFilesPathModel();
    OperationsModel* operationsModel();
    MediaArrivals* mediaArrivals();
    /// Null without a link.
    FilesModel* serverFilesModel() const { return m_serverFiles.get(); }
    /// Without a link one of no file system.
    PathModel* serverFilesPathModel();

    /// Makes the server's models. Port 0: it serves no files.
    void connectTo(const QString& host, quint16 port, const QString& username, const QString& password);
    void disconnectServer();
    /// Of the models; null without a link.
    ServerFileSystem* serverFileSystem() const;

Q_SIGNALS:
    void serverFilesModelChanged();
    void serverFilesPathModelChanged();

private:
    /// A view may be in the midst of a model that is replaced.
    struct DeleteLater
    {
        void operator()(QObject* model) const { model->deleteLater(); }
    };
    template <typename Model>
    using Owned = std::unique_ptr<Model, DeleteLater>;

    Owned<FilesModel> m_localFiles;
    Owned<PathModel> m_localPaths;
    Owned<FilesModel> m_serverFiles;
    Owned<PathModel> m_serverPaths;
    Owned<OperationsModel> m_operations;
    std::unique_ptr<MediaArrivals> m_arrivals;
};

} // namespace vantrel
