#pragma once

#include <QQuickItem>

namespace vantrel {

class QuickView;
class ZTDialog;

/// A dialog whose content is declared ("ZTQMLDialog"): the frame, the buttons, the keys and the place are
/// those of every dialog of the application. It opens over the main window, and goes with its widget, which
/// goes when it is closed. Main thread only.
class QuickDialog : public QObject
{
    Q_OBJECT
    /// Of the dialog; its buttons' names begin with it.
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(QString title READ title WRITE setTitle)
    Q_PROPERTY(QString acceptText READ acceptText WRITE setAcceptText)
    Q_PROPERTY(QString cancelText READ cancelText WRITE setCancelText)
    Q_PROPERTY(bool acceptEnabled READ isAcceptEnabled WRITE setAcceptEnabled)
    /// The dialog is never smaller than its implicit size asks for.
    Q_PROPERTY(QQuickItem* content READ content WRITE setContent)
    Q_CLASSINFO("DefaultProperty", "content")

public:
    explicit QuickDialog(QObject* parent = nullptr);

    ZTDialog* widget() const { return m_dialog; }
    QString name() const;
    void setName(const QString& name);
    QString title() const;
    void setTitle(const QString& title);
    QString acceptText() const;
    void setAcceptText(const QString& text);
    QString cancelText() const;
    void setCancelText(const QString& text);
    bool isAcceptEnabled() const;
    void setAcceptEnabled(bool enabled);
    QQuickItem* content() const;
    void setContent(QQuickItem* item);

    Q_INVOKABLE void show();

Q_SIGNALS:
    void accepted();
    void rejected();
    void closed();

private:
    void fit();

    ZTDialog* m_dialog;
    QuickView* m_view;
};

} // namespace vantrel
