#pragma once

#include "common/filesystem/model/filesystem.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QStringList>

namespace vantrel {

/// The preset paths of a browser, the one where it starts first: on the local side the home folder and the
/// standard folders that are there, on a server its root. The session owns it; main thread only.
class PathModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Roles {
        PathRole = 257,
        NameRole = 258, // as a menu shows it
        IconRole = 259, // the name of its drawing
    };
    Q_ENUM(Roles)

    /// fileSystem: null makes an empty model.
    explicit PathModel(FileSystem* fileSystem, QObject* parent = nullptr);

    int count() const { return static_cast<int>(m_paths.size()); }
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// A path that is empty or there already is passed over.
    Q_INVOKABLE void append(QString path);
    /// The home folder and the standard folders of this computer, as far as they are there.
    void appendStandardPlaces();

Q_SIGNALS:
    void countChanged();

private:
    QString nameOf(const QString& path) const;

    QPointer<FileSystem> m_fileSystem;
    QStringList m_paths;
};

} // namespace vantrel
