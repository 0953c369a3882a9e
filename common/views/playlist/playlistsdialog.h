#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QList>

class QTableView;

namespace vantrel {

class ListClock;
class PlaylistLibraryModel;
class PlaylistsTable;
class PushButton;

/// All playlists of the library at a glance: to go to one, and to put them in order. What is to be done with
/// one is asked for by signals; the editor, which owns it, does it. Main thread.
class PlaylistsDialog : public ZTDialog
{
    Q_OBJECT

public:
    /// shown: the playlist that is looked at. What is given outlives the dialog.
    PlaylistsDialog(PlaylistLibraryModel* library, const ListClock* clock, uint shown, QWidget* parent);

    /// Without a server to send edits to, only what changes nothing is offered.
    void setEditable(bool editable);
    /// The list of the current row; ~0U without one.
    uint current() const;
    void setCurrent(uint playlist);

Q_SIGNALS:
    void chosen(uint playlist);
    void renameRequested(uint playlist, QString name);
    void numberRequested(uint playlist, QString to);
    /// With the list beside it, which may be ~0U.
    void swapRequested(uint playlist, uint other);
    void duplicateRequested(uint playlist);
    void removeRequested(uint playlist);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildTable();
    void buildButtons();
    PushButton* makeButton(const QString& text, const QString& tip, const char* name);
    void arrangeColumns();
    void updateOffers();
    bool handleKey(const QKeyEvent& event);
    void edit(int column);
    void swap(int step);

    PlaylistsTable* m_table;
    QTableView* m_view;
    QList<PushButton*> m_actions; // that need a list and a server
    bool m_isEditable = true;
};

} // namespace vantrel
