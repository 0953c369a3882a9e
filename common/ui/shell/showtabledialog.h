#pragma once

#include "common/ui/shell/showtablemodel.h"
#include "common/ui/toolkit/ztdialog.h"

class QStackedWidget;
class QTableView;

namespace vantrel {

/// A list of what a server keeps of shows, of which the operator chooses one. It opens empty and says what it
/// waits for until it is filled. Owned by the window.
class ShowTableDialog : public ZTDialog
{
    Q_OBJECT

public:
    ShowTableDialog(const QString& title, const QStringList& headers, const QString& accept, QWidget* parent);

    /// Opens with this text in place of the list.
    void openWaiting(const QString& text);
    void setText(const QString& text);
    /// empty: the text for no rows.
    void setRows(const QList<ShowTableModel::Row>& rows, const QString& empty);
    /// A further button, for what is selected.
    void addChoice(PushButton* button);
    /// Empty while nothing is selected that can be used.
    QString chosen() const;
    /// Also what has a fault; empty for nothing.
    QString selected() const;
    ShowTableModel* model() const { return m_model; }
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    void accepted(const QString& id);

private:
    const ShowTableModel::Row* selectedRow() const;
    void updateChoice();

    ShowTableModel* m_model;
    QStackedWidget* m_pages;
    QTableView* m_table;
    ZTLabel* m_text;
    QList<PushButton*> m_choices;
};

} // namespace vantrel
