#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

class QWidget;

namespace vantrel {

class ConfirmationDialog;
class OutputModel;

/// Asks, after this window has changed what the audience sees, whether the new mode is to stay; the server
/// brings the one before back where nobody answers. Owned by its OutputItem; main thread.
class ModeKeeper : public QObject
{
    Q_OBJECT

public:
    /// outputNumber: from 1. model and parent outlive this.
    ModeKeeper(int outputNumber, OutputModel* model, QWidget* parent);

    /// Asks no more: it is decided, or nobody hears the answer.
    void giveUp();

private:
    void follow();
    void ask();
    QString question() const;

    const int m_outputNumber;
    OutputModel* m_model;
    QWidget* m_parent;
    QElapsedTimer m_sinceAsked; // since this window has asked for another mode
    QPointer<ConfirmationDialog> m_dialog;
};

} // namespace vantrel
