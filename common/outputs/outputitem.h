#pragma once

#include "common/ui/toolkit/collapse.h"

#include <QTimer>

namespace vantrel {

class IconButton;
class OutputModel;
class SeenUpdate;
class Session;
class VideoOutputConfiguration;
class ZTLabel;

/// One video output of the server in the Properties column: its model, its state and its settings. Owned by
/// the OutputView; main thread.
class OutputItem : public Collapse
{
    Q_OBJECT

public:
    /// index: 0 or 1. session: must outlive this.
    OutputItem(int index, Session* session, QWidget* parent = nullptr);

    void setModel(OutputModel* model);
    OutputModel* model() const { return m_model; }
    void updateData();

public Q_SLOTS:
    void onDataChanged();
    void onAddressChange();
    void showContextMenu();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    OutputModel* makeModel();
    void makeIdentify();
    void updateIdentify();

    const int m_index;
    Session* m_session;
    OutputModel* m_model = nullptr;
    SeenUpdate* m_update;
    ZTLabel* m_address;
    IconButton* m_identify;
    IconButton* m_notConnected;
    VideoOutputConfiguration* m_configuration;
    QTimer m_modesChanged; // modes come and go by the dozen
};

} // namespace vantrel
