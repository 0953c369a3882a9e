#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <functional>

class QWidget;

namespace vantrel {

class ConfirmationDialog;
class OutputModel;

/// Asks, after this window has changed what the audience sees, whether the new mode is to stay; the server
/// brings the one before back where nobody answers. The question stands for as long as the server waits, also
/// behind a link that was lost meanwhile, and goes with an answer that the server hears. Owned by its
/// OutputItem; main thread.
class ModeKeeper : public QObject
{
    Q_OBJECT

public:
    /// outputNumber: from 1. isHeard: whether the server hears an answer now. model and parent outlive this.
    ModeKeeper(int outputNumber, OutputModel* model, std::function<bool()> isHeard, QWidget* parent);

    /// Whether the server hears an answer is another matter now.
    void follow();

private:
    void ask();
    void close();
    void answer(bool isSent);
    QString question() const;

    const int m_outputNumber;
    OutputModel* m_model;
    QWidget* m_parent;
    std::function<bool()> m_isHeard;
    QElapsedTimer m_sinceAsked;    // since this window has asked for another mode
    QElapsedTimer m_sinceAnswered; // and since somebody here has answered
    bool m_wasOpen = false;        // the server waited for an answer
    QPointer<ConfirmationDialog> m_dialog;
};

} // namespace vantrel
