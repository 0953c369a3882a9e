#include "common/session/mirror/serverconfigurationmodel.h"

#include "common/session/mirror/guishowconfiguration.h"

namespace vantrel {

namespace {

constexpr int columns = 4;

} // namespace

ServerConfigurationModel::ServerConfigurationModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

ServerConfigurationModel::~ServerConfigurationModel() = default;

void ServerConfigurationModel::setShowConfiguration(std::shared_ptr<GUIShowConfiguration> configuration)
{
    if (m_configuration)
        m_configuration->disconnect(this);
    beginResetModel();
    m_configuration = std::move(configuration);
    endResetModel();
    if (!m_configuration)
        return;
    const GUIShowConfiguration* source = m_configuration.get();
    connect(source, &GUIShowConfiguration::autoSaveChanged, this, &ServerConfigurationModel::onReset);
    connect(source, &GUIShowConfiguration::autoStartShowChanged, this, &ServerConfigurationModel::onReset);
    connect(source, &GUIShowConfiguration::autoStartPlayStateChanged, this,
            &ServerConfigurationModel::onReset);
    connect(source, &GUIShowConfiguration::autoStartShowListChanged, this,
            &ServerConfigurationModel::onReset);
    connect(source, &GUIShowConfiguration::reset, this, &ServerConfigurationModel::onReset);
}

int ServerConfigurationModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() || !m_configuration ? 0 : 1;
}

int ServerConfigurationModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columns;
}

Qt::ItemFlags ServerConfigurationModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags base = QAbstractTableModel::flags(index);
    return index.isValid() ? base | Qt::ItemIsEditable : base;
}

QVariant ServerConfigurationModel::data(const QModelIndex& index, int role) const
{
    if ((role != Qt::DisplayRole && role != Qt::EditRole) ||
        !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    switch (index.column()) {
    case AutoSaveColumn:
        return m_configuration->autoSave();
    case AutoStartShowColumn:
        return m_configuration->autoStartShow();
    case AutoStartPlayStateColumn:
        return m_configuration->autoStartPlayState();
    case AutoStartShowListColumn:
        return shows();
    }
    return {};
}

bool ServerConfigurationModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    switch (index.column()) {
    case AutoSaveColumn:
        m_configuration->setAutoSave(value.toBool());
        return true;
    case AutoStartShowColumn:
        m_configuration->setAutoStartShow(value.toString());
        return true;
    case AutoStartPlayStateColumn:
        m_configuration->setAutoStartPlayState(value.toString());
        return true;
    case AutoStartShowListColumn:
        m_configuration->setAutoStartShowList(value.toStringList().join(u','));
        return true;
    }
    return false;
}

QVariant ServerConfigurationModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const headers[columns] = {QT_TR_NOOP("Auto save"), QT_TR_NOOP("Auto start show"),
                                                 QT_TR_NOOP("Auto start playstate"),
                                                 QT_TR_NOOP("Auto start show list")};
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal || section < 0 || section >= columns)
        return {};
    return tr(headers[section]);
}

void ServerConfigurationModel::addShow(const QString& name)
{
    QStringList names = shows();
    if (!m_configuration || names.contains(name))
        return;
    names.append(name);
    m_configuration->setAutoStartShowList(names.join(u','));
}

void ServerConfigurationModel::deleteShow(const QString& name)
{
    QStringList names = shows();
    if (m_configuration && names.removeAll(name) > 0)
        m_configuration->setAutoStartShowList(names.join(u','));
}

void ServerConfigurationModel::onReset()
{
    beginResetModel();
    endResetModel();
    if (m_configuration)
        Q_EMIT dataChanged(index(0, 0), index(0, columns - 1));
}

QStringList ServerConfigurationModel::shows() const
{
    return m_configuration ? m_configuration->autoStartShowList().split(u',', Qt::SkipEmptyParts)
                           : QStringList();
}

} // namespace vantrel
