#pragma once

#include <QObject>

class QNetworkReply;
class QWidget;

namespace vantrel {

/// Says what a server is busy with for the operator once that takes longer than a moment, and offers to stop
/// it. Nothing else waits for it: the window is used beside it. Owned by who asks; main thread.
class ShowProgress : public QObject
{
    Q_OBJECT

public:
    /// window: what the dialogs stand over.
    explicit ShowProgress(QWidget* window);

    /// Until the reply has finished; null where nothing was asked.
    void follow(QNetworkReply* reply, const QString& title, const QString& text);

private:
    void open(QNetworkReply* reply, const QString& title, const QString& text);

    QWidget* m_window;
};

} // namespace vantrel
