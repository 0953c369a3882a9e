#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>

class QNetworkReply;

namespace vantrel {

class OnAirQuestions;
class Session;
class ShowProgress;
class ShowService;
class ShowTableDialog;

/// The shows that the server keeps, and the earlier states of the one that is on: lists them, goes on with
/// one, removes one. Owned by the ShowManager.
class ShowShelf : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this. window: the dialogs open over it.
    ShowShelf(Session* session, ShowService* service, OnAirQuestions* questions, ShowProgress* progress,
              QWidget* window);

    void openShows();
    void openEarlier();
    /// Asks for the names of the shows that are kept, for one more to be saved. Where they cannot be had
    /// failed is called with the reason instead; for a second call meanwhile neither is.
    void fetchNames(std::function<void(const QStringList& names)> then,
                    std::function<void(const QString& why)> failed);
    /// Nobody wants them any more.
    void stopNames();

private:
    /// What a dialog lists, and what has become of it.
    struct List
    {
        ShowTableDialog* dialog;
        QString path;
        void (ShowShelf::*show)(const QByteArray& body);
        QPointer<QNetworkReply> reply = {};
        bool isWaiting = false; // it stands empty until the server tells
    };

    void open(List& list);
    void fill(List& list);
    void followServer();
    bool isAnswered() const;
    QString silence() const;
    void showShows(const QByteArray& body);
    void showEarlier(const QByteArray& body);
    void askToLoad(const QString& name);
    void load(const QString& name, bool force);
    void askToBringBack(const QString& id);
    void bringBack(const QString& id, bool force);
    void askToRemove(const QString& name);
    void change(const QString& command, const QString& path, const QString& key, const QString& value,
                bool force, const QString& done);

    Session* m_session;
    ShowService* m_service;
    OnAirQuestions* m_questions;
    ShowProgress* m_progress;
    ShowTableDialog* m_shows;
    ShowTableDialog* m_earlier;
    List m_showList;
    List m_earlierList;
    QPointer<QNetworkReply> m_names;
};

} // namespace vantrel
