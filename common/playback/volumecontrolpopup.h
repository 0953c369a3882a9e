#pragma once

#include "common/session/settings/configuration.h"
#include "common/ui/toolkit/ztframe.h"

namespace vantrel {

class VolumeSlider;
class ZTLabel;

/// The fader of a channel in a window that closes by a click beside it. The property "volume" is the scene's
/// amplitude, 0.0 to 1.0. Owned by PlaybackWidgetFooter; main thread.
class VolumeControlPopup : public ZTFrame
{
    Q_OBJECT
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY volumeChanged)

public:
    explicit VolumeControlPopup(QWidget* parent = nullptr);

    double volume() const { return m_volume; }
    void setVolume(double volume);
    VolumeSlider* slider() const { return m_slider; }
    void setSize(FontSize size);
    /// base for this widget, base + "-Slider" for the fader.
    void setObjectNames(const QString& base) override;

public Q_SLOTS:
    void onStyleChange(vantrel::ConfigurationOption option, const QVariant& value);

Q_SIGNALS:
    void volumeChanged();

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void onSliderMoved(int decibels);

    QWidget* m_tickColumn;
    VolumeSlider* m_slider;
    QList<ZTLabel*> m_ticks;
    FontSize m_fontSize = FontSize::Medium;
    double m_volume = 1.0;
};

} // namespace vantrel
