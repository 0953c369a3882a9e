#pragma once

#include "common/playback/columnstep.h"
#include "common/session/settings/configuration.h"

#include <QMap>
#include <QPushButton>

class QGraphicsDropShadowEffect;
class QLabel;

namespace vantrel {

/// The button that takes preview to program. While the server carries out a transition, the bar with
/// its text uncovers from the left. Owned by TakeControls; main thread.
class TakeButton : public QPushButton
{
    Q_OBJECT
    Q_PROPERTY(double takeProgress READ takeProgress WRITE setTakeProgress NOTIFY takeProgressChanged)

public:
    explicit TakeButton(QWidget* parent = nullptr);

    QSize sizeHint() const override { return m_size; }
    QSize minimumSizeHint() const override { return m_size; }
    double takeProgress() const { return m_takeProgress; }
    /// In a narrow window the largest button, that of huge text, takes the size below.
    void setColumnStep(ColumnStep step);
    /// 0.0 to 1.0, anything else counts as the nearer end. Emits nothing: progress only ever comes from the
    /// server.
    void setTakeProgress(double progress);

Q_SIGNALS:
    void takeProgressChanged(double progress);

public Q_SLOTS:
    void onPressed();
    void onReleased();
    void onStyleChange(vantrel::ConfigurationOption option, const QVariant& value);
    void updateSizes(vantrel::FontSize size);
    void updateProgressBar();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    FontSize stepped(FontSize size) const;
    void setParts(const char* property, bool value);

    const QMap<FontSize, QSize> m_sizes;
    QSize m_size;
    ColumnStep m_step = ColumnStep::Wide;
    QWidget* m_bar;
    QLabel* m_label;
    QLabel* m_takenLabel;
    QGraphicsDropShadowEffect* m_shadow;
    double m_takeProgress = 0.0;
    quint64 m_pressedAt = 0; // milliseconds, of the last press; 0: no event told its time
};

} // namespace vantrel
