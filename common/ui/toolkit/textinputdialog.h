#pragma once

#include "common/ui/toolkit/ztdialog.h"

#include <QStringList>

namespace vantrel {

class ZTEdit;
class ZTLabel;

/// Asks for one or more texts; the accept button needs all of them to hold more than blanks.
class TextInputDialog : public ZTDialog
{
    Q_OBJECT

public:
    explicit TextInputDialog(QWidget* parent = nullptr);
    TextInputDialog(const QString& title, const QString& label, const QString& confirmText,
                    QWidget* parent = nullptr);

    /// Adds a field under its label and gives it back.
    ZTEdit* addField(const QString& label, const QString& text = {});
    /// The fields' texts in order, without blanks at their ends.
    QStringList values() const;
    void setValue(int field, const QString& text);
    /// A line under the field that says what goes into it, and one that says what is wrong with it. An empty
    /// text takes the line away.
    void setHelp(int field, const QString& text);
    void setError(int field, const QString& text);
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    void valuesConfirmed(const QStringList& values);

protected:
    void showEvent(QShowEvent* event) override;

private:
    struct Notes
    {
        ZTLabel* help;
        ZTLabel* error;
    };
    void updateAccept();

    QList<ZTEdit*> m_fields;
    QList<Notes> m_notes; // of each field
};

} // namespace vantrel
