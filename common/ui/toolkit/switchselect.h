#pragma once

#include "common/ui/toolkit/ztframe.h"

#include <QList>
#include <QVariant>

class QButtonGroup;

namespace vantrel {

class PushButton;

/// A choice of one among a few, as a row of joined buttons. Each item carries a value. Arrow keys move the
/// choice.
class SwitchSelect : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(QVariant value READ value WRITE setValue NOTIFY valueChanged USER true)

public:
    explicit SwitchSelect(QWidget* parent = nullptr);

    void addItem(const QString& text, const QVariant& value, const QString& tooltip = {});
    void clear();
    int count() const { return static_cast<int>(m_items.size()); }
    /// The chosen item's value; invalid when none is chosen.
    QVariant value() const;
    /// Chooses the item of that value; a value that no item has leaves the choice as it is.
    void setValue(const QVariant& value);
    void chooseNone();
    PushButton* button(const QVariant& value) const;
    /// Items are named base + "-" + the item's text in lower case, blanks as "_".
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    /// Any change of the choice.
    void valueChanged(const QVariant& value);
    /// A choice by the operator alone.
    void clicked(const QVariant& value);

private:
    struct Item
    {
        PushButton* button;
        QVariant value;
    };

    QList<Item> m_items;
    QButtonGroup* m_group;
};

} // namespace vantrel
