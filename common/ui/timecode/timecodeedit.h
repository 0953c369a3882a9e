#pragma once

#include <QFrame>
#include <QMap>

#include <cstddef>
#include <optional>

class QIntValidator;
class QStackedWidget;

namespace vantrel {

class ZTEdit;
class ZTLabel;

/// Milliseconds, signed.
using ClockTime = qint64;

/// A time the operator edits field by field: a double click (or Return on the focused widget) opens a field,
/// Return takes it, anything else drops it. Owned by its parent widget; main thread.
class TimecodeEdit : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(qint64 timecode READ timecode WRITE setTimecode NOTIFY timecodeChanged USER true)
    Q_PROPERTY(qint64 minTimecode READ minTimecode WRITE setMinTimecode NOTIFY minTimecodeChanged)
    Q_PROPERTY(qint64 maxTimecode READ maxTimecode WRITE setMaxTimecode NOTIFY maxTimecodeChanged)
    Q_PROPERTY(size_t decimals READ decimals WRITE setDecimals NOTIFY decimalsChanged)

public:
    enum ValueType { Hours = 0, Minutes = 1, Seconds = 2, Fraction = 3 };
    Q_ENUM(ValueType)

    /// The digits of one field: shown by the label, edited in the edit.
    struct ValueWidgets
    {
        QStackedWidget* stack = nullptr;
        ZTLabel* label = nullptr;
        ZTEdit* edit = nullptr;
    };

    explicit TimecodeEdit(QWidget* parent = nullptr);
    ~TimecodeEdit() override;

    ClockTime timecode() const { return m_timecode; }
    ClockTime minTimecode() const { return m_minTimecode; }
    ClockTime maxTimecode() const { return m_maxTimecode; }
    std::size_t decimals() const { return m_decimals; }
    void setTimecode(const ClockTime& timecode);
    /// Digits of the fraction, 0 to 3; 0 hides it.
    void setDecimals(std::size_t decimals);
    void setMinTimecode(ClockTime timecode);
    /// At most 99:59:59.999.
    void setMaxTimecode(ClockTime timecode);
    /// base for this widget, base + "-Hours", "-Minutes", "-Seconds" and "-Fraction" for the edits.
    void setObjectNames(const QString& base);

public Q_SLOTS:
    /// Limits the time to the range; force tells of the values also when they stay.
    void resetTime(vantrel::ClockTime timecode, std::size_t decimals, bool force = false);
    void startEditing(vantrel::TimecodeEdit::ValueType type);
    void stopEditing(bool accept);
    /// From the label of the field to edit.
    void handleEditingRequest();

Q_SIGNALS:
    void timecodeChanged();
    void minTimecodeChanged();
    void maxTimecodeChanged();
    void decimalsChanged();
    /// The operator's edit was accepted, whether or not it changed the time.
    void timecodeEdited();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void addField(ValueType type, int maximum);
    void setEditMode(ValueType type, bool editing);
    void updateLabels();
    ClockTime withField(ValueType type, ClockTime value) const;
    ClockTime fractionUnit() const;
    bool moveEditing(ValueType from, bool forward);

    ClockTime m_timecode = 0;
    std::size_t m_decimals = 3;
    ClockTime m_minTimecode = 1;
    ClockTime m_maxTimecode = 359999999;
    QMap<ValueType, ValueWidgets> m_fields;
    QIntValidator* m_fractionValidator = nullptr;
    ZTLabel* m_fractionSeparator = nullptr;
    std::optional<ValueType> m_editing;
};

} // namespace vantrel
