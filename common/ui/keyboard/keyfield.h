#pragma once

#include "common/ui/toolkit/pushbutton.h"

#include <QKeySequence>

namespace vantrel {

/// A key, drawn as the caps that are pressed for it, and the way to choose another: a click or Enter, and the
/// next key is told. Until then no shortcut hears a key. Escape, a second click and the loss of the focus
/// leave the key as it is; Backspace and Delete choose none.
class KeyField : public PushButton
{
    Q_OBJECT

public:
    explicit KeyField(QWidget* parent = nullptr);

    const QKeySequence& key() const { return m_key; }
    void setKey(const QKeySequence& key);
    bool isRecording() const { return m_recording; }
    void setRecording(bool recording);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Empty for no key. The recording goes on until the listener ends it.
    void keyPressed(const QKeySequence& key);
    void recordingChanged(bool recording);
    /// The operator asks for the field above (-1) or below (1).
    void moveRequested(int step);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void record(const QKeyEvent& event);
    void paintCaps(QPainter& painter) const;
    QString hint() const;

    QKeySequence m_key;
    bool m_recording = false;
};

} // namespace vantrel
