#include "common/ui/shell/showshelf.h"

#include "common/command/refusal.h"
#include "common/filesystem/model/filesize.h"
#include "common/media/address/showntext.h"
#include "common/session/link/linkhealth.h"
#include "common/session/mirror/guishowconfiguration.h"
#include "common/session/mirror/sceneobjectprovider.h"
#include "common/session/mirror/serverconfigurationmodel.h"
#include "common/session/session.h"
#include "common/ui/shell/missinglist.h"
#include "common/ui/shell/onairquestions.h"
#include "common/ui/shell/showoutcome.h"
#include "common/ui/shell/showprogress.h"
#include "common/ui/shell/showservice.h"
#include "common/ui/shell/showtabledialog.h"
#include "common/ui/toolkit/confirmationdialog.h"
#include "common/ui/toolkit/pushbutton.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QNetworkReply>

#include <utility>

namespace vantrel {

namespace {

QString timeText(const QJsonObject& entry)
{
    const auto time = QDateTime::fromSecsSinceEpoch(entry.value(QStringLiteral("modified")).toInteger());
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString counted(const QJsonObject& contents, const char* what, const QString& one, const QString& many)
{
    const int count = contents.value(QLatin1String(what)).toInt();
    return count == 1 ? one : many.arg(QLocale().toString(count));
}

/// "14 slots in 2 collections, 9 entries in 1 playlist", without what there is none of.
QString contentsText(const QJsonObject& entry)
{
    const QJsonObject contents = entry.value(QStringLiteral("contents")).toObject();
    const auto tr = [](const char* text) { return ShowShelf::tr(text); };
    QStringList parts;
    if (contents.value(QStringLiteral("collections")).toInt() > 0)
        parts << tr("%1 in %2")
                     .arg(counted(contents, "slots", tr("1 slot"), tr("%1 slots")),
                          counted(contents, "collections", tr("1 collection"), tr("%1 collections")));
    if (contents.value(QStringLiteral("playlists")).toInt() > 0)
        parts << tr("%1 in %2")
                     .arg(counted(contents, "entries", tr("1 entry"), tr("%1 entries")),
                          counted(contents, "playlists", tr("1 playlist"), tr("%1 playlists")));
    return parts.isEmpty() ? tr("nothing") : parts.join(QStringLiteral(", "));
}

/// What came after a state was kept.
QString beforeText(const QString& before)
{
    const QMap<QString, QString> texts{
        {QStringLiteral("clear"), ShowShelf::tr("Clear show")},
        {QStringLiteral("revert"), ShowShelf::tr("another show")},
        {QStringLiteral("import"), ShowShelf::tr("Import show")},
        {QStringLiteral("save"), ShowShelf::tr("another show saved under its name")},
        {QStringLiteral("earlier"), ShowShelf::tr("an earlier state")},
        {QStringLiteral("hour"), ShowShelf::tr("nothing (each hour)")},
    };
    return texts.value(before, shownText(before));
}

/// "slots: 3 more, 1 fewer, 2 others; 1 setting" of what comes back, against the present show.
QString differenceText(const QJsonObject& difference)
{
    QStringList parts;
    const auto add = [&](const char* what, const QString& name) {
        const QJsonObject count = difference.value(QLatin1String(what)).toObject();
        QStringList counts;
        const auto one = [&](const char* key, const QString& text) {
            if (const int number = count.value(QLatin1String(key)).toInt(); number > 0)
                counts << text.arg(QLocale().toString(number));
        };
        one("added", ShowShelf::tr("%1 more"));
        one("removed", ShowShelf::tr("%1 fewer"));
        one("changed", ShowShelf::tr("%1 changed"));
        if (!counts.isEmpty())
            parts << name + u' ' + counts.join(QStringLiteral(", "));
    };
    add("collections", ShowShelf::tr("collections:"));
    add("slots", ShowShelf::tr("slots:"));
    add("playlists", ShowShelf::tr("playlists:"));
    add("entries", ShowShelf::tr("entries:"));
    if (const int settings = difference.value(QStringLiteral("settings")).toInt(); settings > 0)
        parts << ShowShelf::tr("settings: %1 changed").arg(settings);
    return parts.isEmpty() ? ShowShelf::tr("as it is now") : parts.join(QStringLiteral("; "));
}

QString holdsText(const QJsonObject& entry)
{
    const QString fault = shownText(entry.value(QStringLiteral("error")).toString());
    return fault.isEmpty() ? contentsText(entry) : ShowShelf::tr("cannot be read: %1").arg(fault);
}

ShowTableModel::Row rowOf(const QJsonObject& entry, const QString& id, const QStringList& cells)
{
    return {id, cells, shownText(entry.value(QStringLiteral("error")).toString())};
}

QJsonArray listIn(const QByteArray& body, const char* name)
{
    return QJsonDocument::fromJson(body).object().value(QLatin1String(name)).toArray();
}

} // namespace

ShowShelf::ShowShelf(Session* session, ShowService* service, OnAirQuestions* questions,
                     ShowProgress* progress, QWidget* window)
    : QObject(window)
    , m_session(session)
    , m_service(service)
    , m_questions(questions)
    , m_progress(progress)
    , m_shows(new ShowTableDialog(tr("Shows on the server"),
                                  {tr("Name"), tr("Saved"), tr("Size"), tr("Holds")}, tr("LOAD"), window))
    , m_earlier(new ShowTableDialog(tr("Bring back an earlier state"),
                                    {tr("Kept"), tr("Before"), tr("Holds"), tr("Against now")},
                                    tr("BRING BACK"), window))
    , m_showList{m_shows, QStringLiteral("/shows"), &ShowShelf::showShows}
    , m_earlierList{m_earlier, QStringLiteral("/shows/earlier"), &ShowShelf::showEarlier}
{
    m_shows->setObjectNames(QStringLiteral("ShowsDialog"));
    m_earlier->setObjectNames(QStringLiteral("EarlierStatesDialog"));
    auto* remove = new PushButton(tr("DELETE"), m_shows);
    remove->setObjectName(QStringLiteral("ShowsDialog-delete-button"));
    remove->setStyleClass(QStringLiteral("cancel"));
    m_shows->addChoice(remove);
    connect(remove, &PushButton::clicked, this, [this] { askToRemove(m_shows->selected()); });
    // Once the dialog is closed, over which no other opens.
    connect(m_shows, &ShowTableDialog::accepted, this, &ShowShelf::askToLoad, Qt::QueuedConnection);
    connect(m_earlier, &ShowTableDialog::accepted, this, &ShowShelf::askToBringBack, Qt::QueuedConnection);
    connect(session->linkHealth(), &LinkHealth::changed, this, &ShowShelf::followServer);
    connect(session, &Session::connected, this, &ShowShelf::followServer);
    connect(session, &Session::disconnected, this, &ShowShelf::followServer);
}

void ShowShelf::openShows()
{
    open(m_showList);
}

void ShowShelf::openEarlier()
{
    open(m_earlierList);
}

void ShowShelf::open(List& list)
{
    list.dialog->openWaiting({});
    fill(list);
}

/// Now, or once the server answers: nobody need ask twice.
void ShowShelf::fill(List& list)
{
    list.isWaiting = true;
    if (QNetworkReply* before = std::exchange(list.reply, nullptr))
        ShowService::stop(before);
    if (!isAnswered())
        return list.dialog->setText(silence());
    if (list.dialog->model()->rows().isEmpty())
        list.dialog->setText(tr("Asking the server..."));
    const auto then = [this, &list](const ShowService::Answer& answer) {
        if (answer.isStopped)
            return;
        list.reply = nullptr;
        if (!answer.isDone() && !isAnswered())
            return list.dialog->setText(silence());
        list.isWaiting = false;
        if (answer.isDone())
            (this->*list.show)(answer.body());
        else
            list.dialog->setText(answer.error);
    };
    list.reply = m_service->ask(list.dialog->title(), "GET", list.path, {}, {}, then);
}

void ShowShelf::followServer()
{
    for (List* list : {&m_showList, &m_earlierList}) {
        const bool isAsked = list->reply != nullptr;
        if (list->isWaiting && list->dialog->isVisible() && isAsked != isAnswered())
            fill(*list);
    }
}

/// What is asked otherwise is refused aloud.
bool ShowShelf::isAnswered() const
{
    return m_session->isConnected() && m_session->linkHealth()->state() == LinkHealth::State::Current;
}

QString ShowShelf::silence() const
{
    return m_session->isConnected()
               ? tr("The server does not answer just now. The list comes as soon as it does.")
               : tr("No server is connected. The list comes as soon as one is.");
}

void ShowShelf::showShows(const QByteArray& body)
{
    QList<ShowTableModel::Row> rows;
    for (const QJsonValue& value : listIn(body, "shows")) {
        const QJsonObject entry = value.toObject();
        const QString name = entry.value(QStringLiteral("name")).toString();
        rows << rowOf(entry, name,
                      {shownText(name), timeText(entry),
                       fileSizeText(entry.value(QStringLiteral("bytes")).toInteger()), holdsText(entry)});
    }
    m_shows->setRows(rows, tr("No show has been saved on this server yet: choose \"Save show as...\" in the "
                              "main menu."));
}

void ShowShelf::showEarlier(const QByteArray& body)
{
    QList<ShowTableModel::Row> rows;
    for (const QJsonValue& value : listIn(body, "states")) {
        const QJsonObject entry = value.toObject();
        const QJsonObject difference = entry.value(QStringLiteral("difference")).toObject();
        rows << rowOf(entry, entry.value(QStringLiteral("id")).toString(),
                      {timeText(entry), beforeText(entry.value(QStringLiteral("before")).toString()),
                       holdsText(entry), difference.isEmpty() ? QString() : differenceText(difference)});
    }
    m_earlier->setRows(rows,
                       tr("Nothing has been kept yet. The server keeps a copy before a show is cleared, "
                          "reverted, imported or saved over, and every hour."));
}

void ShowShelf::stopNames()
{
    if (QNetworkReply* names = std::exchange(m_names, nullptr))
        ShowService::stop(names);
}

void ShowShelf::fetchNames(std::function<void(const QStringList& names)> then,
                           std::function<void(const QString& why)> failed)
{
    stopNames();
    if (!isAnswered())
        return failed(m_session->isConnected() ? tr("The server does not answer: try again once it does.")
                                               : tr("No server is connected."));
    const auto read = [then = std::move(then),
                       failed = std::move(failed)](const ShowService::Answer& answer) {
        if (answer.isStopped)
            return;
        if (!answer.isDone())
            return failed(answer.error);
        QStringList names;
        for (const QJsonValue& value : listIn(answer.body(), "shows"))
            names << value.toObject().value(QStringLiteral("name")).toString();
        then(names);
    };
    m_names = m_service->ask(tr("Save show as"), "GET", QStringLiteral("/shows"), {}, {}, read);
}

void ShowShelf::askToLoad(const QString& name)
{
    const auto present = m_session->sceneObjectProvider()->showConfiguration();
    QString text = m_questions->beforeAnotherShow();
    if (present->showModified())
        text += tr("\"%1\" has changes that are not saved. They stay among the earlier states.")
                    .arg(shownText(present->showName()));
    if (text.isEmpty())
        return load(name, false);
    m_questions->ask(tr("Load \"%1\"?").arg(shownText(name)), text, tr("LOAD"),
                     QStringLiteral("LoadShowDialog"), [this, name] { load(name, false); });
}

void ShowShelf::load(const QString& name, bool force)
{
    change(tr("Load show"), QStringLiteral("/shows/load"), QStringLiteral("show"), name, force,
           tr("\"%1\" is on now").arg(name));
}

void ShowShelf::askToBringBack(const QString& id)
{
    m_questions->ask(
        tr("Bring back this state?"),
        m_questions->beforeAnotherShow() + tr("The present state is kept among the earlier ones first."),
        tr("BRING BACK"), QStringLiteral("BringBackDialog"), [this, id] { bringBack(id, false); });
}

void ShowShelf::bringBack(const QString& id, bool force)
{
    change(m_earlier->title(), QStringLiteral("/shows/earlier"), QStringLiteral("state"), id, force,
           tr("The earlier state is back"));
}

void ShowShelf::change(const QString& command, const QString& path, const QString& key, const QString& value,
                       bool force, const QString& done)
{
    QUrlQuery query;
    query.addQueryItem(key, QString::fromLatin1(QUrl::toPercentEncoding(value)));
    if (force)
        query.addQueryItem(QStringLiteral("force"), QString());
    const auto then = [this, command, path, key, value, force, done](const ShowService::Answer& answer) {
        if (answer.isDone())
            return tellDone(done, answer.missing);
        if (!answer.isConflict() || force)
            return tellNotDone(command, answer.error);
        auto* question = m_questions->ask(
            tr("Load it all the same?"), answer.error, tr("LOAD"), QStringLiteral("ForceLoadDialog"),
            [this, command, path, key, value, done] { change(command, path, key, value, true, done); });
        auto* missing = new MissingList(question);
        missing->setObjectName(QStringLiteral("ForceLoadDialog-missing-view"));
        missing->setMedia(answer.missing);
    };
    m_progress->follow(m_service->ask(command, "POST", path, query, {}, then), command,
                       tr("The server takes the show over. It plays on meanwhile."));
}

void ShowShelf::askToRemove(const QString& name)
{
    const auto remove = [this, name] {
        QUrlQuery query;
        query.addQueryItem(QStringLiteral("show"), QString::fromLatin1(QUrl::toPercentEncoding(name)));
        m_service->ask(tr("Delete show"), "DELETE", QStringLiteral("/shows"), query, {},
                       [this, name](const ShowService::Answer& answer) {
                           if (answer.isDone())
                               m_session->serverConfigurationModel()->deleteShow(name);
                           else
                               tellNotDone(tr("Delete show"), answer.error);
                           fill(m_showList);
                       });
    };
    m_questions->ask(tr("Delete \"%1\"?").arg(shownText(name)),
                     tr("What was saved under this name is gone for good. What is on now stays as it is."),
                     tr("DELETE"), QStringLiteral("DeleteShowDialog"), remove, m_shows);
}

} // namespace vantrel
