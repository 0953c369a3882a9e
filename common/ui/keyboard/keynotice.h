#pragma once

#include "common/ui/toolkit/ztframe.h"

#include <QKeySequence>

namespace vantrel {

class PushButton;
class ZTLabel;

/// The line below the keys: what to do, why a key was refused, or who holds it already and what to do about
/// that. The choice is "swap", where the other can have the old key, or "take over". Owned by its dialog.
class KeyNotice : public ZTFrame
{
    Q_OBJECT

public:
    explicit KeyNotice(QWidget* parent = nullptr);

    void showHint();
    void showRefusal(const QString& text);
    void showDone(const QString& text);
    /// Asks, and takes the focus.
    void ask(const QString& text, bool canSwap);
    bool isAsking() const { return m_asking; }
    QString text() const;
    void setObjectNames(const QString& base) override;

Q_SIGNALS:
    void swapChosen();
    void takeOverChosen();
    void keepChosen();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void show(const QString& text, const QString& styleClass, bool asks);

    ZTLabel* m_text;
    PushButton* m_swap;
    PushButton* m_takeOver;
    PushButton* m_keep;
    bool m_asking = false;
};

} // namespace vantrel
