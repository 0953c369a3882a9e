#pragma once

#include "common/ui/gallery/frozen.h"

#include <QStringList>
#include <QWidget>

class QAbstractButton;
class QGridLayout;

namespace vantrel::gallery {

/// What a widget of the gallery is frozen in.
enum class State { Normal, Hover, Pressed, Focus, Checked, Disabled };

/// A table of widgets: names of kinds on the left, names of states on top.
class StateGrid : public QWidget
{
    Q_OBJECT

public:
    explicit StateGrid(const QStringList& states, QWidget* parent = nullptr);

    /// Adds a row; a null widget leaves its place empty.
    void addRow(const QString& kind, const QList<QWidget*>& widgets);
    /// A row for one widget that may be wider than a column.
    void addWide(const QString& kind, QWidget* widget);

private:
    void addTitle(const QString& kind);

    QGridLayout* m_layout;
    int m_columns;
    int m_rows = 1;
};

/// What a button can be put in by its own means; hover is left to its style option.
void freezeButton(QAbstractButton* button, State state);

/// For widgets whose style option can be told the state.
template <typename Widget>
void freezeField(Widget* field, State state)
{
    if (state == State::Hover)
        field->freeze(QStyle::State_MouseOver);
    else if (state == State::Focus)
        field->freeze(QStyle::State_HasFocus);
    else if (state == State::Disabled)
        field->setEnabled(false);
}

} // namespace vantrel::gallery
