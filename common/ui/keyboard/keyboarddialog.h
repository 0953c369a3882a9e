#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QKeySequence>
#include <QPointer>

class QScrollArea;

namespace vantrel {

class Hotkeys;
class IconButton;
class KeyField;
class KeyNotice;
class ZTEdit;
class ZTLabel;

/// All actions that answer to a key, and their keys, each changed in place. A change counts at once and is
/// kept in the settings. Owned by the main window; the hotkeys outlive it.
class KeyboardDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit KeyboardDialog(Hotkeys* hotkeys, QWidget* parent = nullptr);

    void setObjectNames(const QString& base) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Row
    {
        QString action;
        QWidget* line;
        KeyField* field;
        IconButton* reset;
    };
    struct Group
    {
        QWidget* title;
        int first; // of its rows
        int count;
    };
    /// A key that another action holds, until the operator has chosen.
    struct Conflict
    {
        QString action;
        QString holder;
        QKeySequence key;
    };

    void makeSearch();
    void makeList();
    void addRow(QWidget* page, const QString& action, const QString& text);
    void showFitting(QShowEvent* event);
    void refresh();
    void filter(const QString& text);
    void onKey(const QString& action, const QKeySequence& key);
    void assign(const QString& action, const QKeySequence& key);
    void askAbout(const QString& action, const QString& holder, const QKeySequence& key);
    void resolve(bool swap);
    void keep();
    void endQuestion();
    void resetRow(const QString& action);
    void confirmResetAll();
    void moveFocus(KeyField* from, int step);
    Row* row(const QString& action);

    Hotkeys* m_hotkeys;
    ZTEdit* m_search = nullptr;
    QScrollArea* m_area = nullptr;
    ZTLabel* m_nothing = nullptr;
    KeyNotice* m_notice = nullptr;
    PushButton* m_resetAll = nullptr;
    QList<Row> m_rows;
    QList<Group> m_groups;
    Conflict m_conflict;
};

} // namespace vantrel
