#pragma once

#include "common/media/models/playbackmodel.h"
#include "common/playback/columnstep.h"
#include "common/ui/toolkit/ztframe.h"

#include <QHash>

class QAbstractButton;
class QButtonGroup;

namespace vantrel {

class EndActionButton;

/// What the channel does at the end of its media. Which of the five can be chosen depends on whether a
/// playlist entry or a single slot plays. Owned by PlaybackWidgetFooter; main thread.
class EndActionWidget : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(int endAction READ endAction WRITE setEndAction NOTIFY endActionChanged)
    Q_PROPERTY(int endActionMode READ endActionMode WRITE setEndActionMode NOTIFY endActionModeChanged)

public:
    explicit EndActionWidget(QWidget* parent = nullptr);

    /// A value of EndAction.
    int endAction() const { return m_endAction; }
    void setEndAction(int endAction);
    /// A value of PlaybackModel::EndActionMode.
    int endActionMode() const { return m_endActionMode; }
    void setEndActionMode(int mode);
    /// base for this widget, base + "-next-button" and so on for the buttons; the last one has no name.
    void setObjectNames(const QString& base) override;

    void setColumnStep(ColumnStep step);
    /// Words instead of icons, which look like those of the transport.
    void setShowsWords(bool shows);
    /// The width with words, in pixels.
    int wordsWidth() const;

public Q_SLOTS:
    void handleButtonPress(QAbstractButton* button);
    void updateButtonEnabledState();
    /// Of the buttons, as far as the widget itself is enabled.
    void setEnabled(bool enabled);
    /// Only what makes sense without a playlist: pause, stop and repeat.
    void setPartialEnabled();

Q_SIGNALS:
    void endActionChanged();
    void endActionModeChanged();

protected:
    void changeEvent(QEvent* event) override;

private:
    void populateButtonToEndActionMap();
    EndActionButton* button(int endAction) const;
    void updateReasons();

    QButtonGroup* m_group;
    QHash<QAbstractButton*, int> m_buttonToEndAction;
    int m_endAction = 0;
    int m_endActionMode = PlaybackModel::DISABLED;
};

} // namespace vantrel
