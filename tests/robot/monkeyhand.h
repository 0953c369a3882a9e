#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>

namespace vantrel::test {

class RobotClient;

/// A hand that does at random what an operator could do: clicks, drags, keys of the key map, typing, menus,
/// sizes. It leaves alone what would leave the machine or its files: file dialogs, hosts to connect to.
class MonkeyHand
{
public:
    MonkeyHand(RobotClient& robot, quint32 seed);

    /// One act; what it was, for the story of a failure.
    QString act();
    /// Closes menus and dialogs by Escape, so that the window itself has the keys; false when one stays.
    bool calm();
    /// The names of the dialogs and menus at the last look.
    QString visibleDialogs() const;
    /// Asks for the connection to this machine by the connect dialog; how far it came.
    QString connectToServer();
    /// The longest that the application took to answer since the last call, in milliseconds.
    qint64 takeLongestAnswer() { return std::exchange(m_longestAnswer, 0); }
    int random(int bound) { return m_random.bounded(bound); }

private:
    using Act = QString (MonkeyHand::*)();

    QJsonArray ask(const QJsonObject& request);
    QString mouse(const QString& operation, const QJsonObject& target);
    QString key(const QString& name);
    void look();
    bool isVisible(const QString& className) const;
    /// Of those that were seen at the last look; empty when none fits.
    template <typename Fits>
    QJsonObject pick(Fits fits);
    QJsonObject pickAny();
    QJsonObject pointIn(QJsonObject target);

    QString click();
    QString doubleClick();
    QString contextMenu();
    QString wheel();
    QString drag();
    QString hotkey();
    QString plainKey();
    QString type();
    QString openMenu();
    QString chooseEntry();
    QString resize();
    QString inConnectDialog();

    RobotClient& m_robot;
    QRandomGenerator m_random;
    QList<QJsonObject> m_seen; // visible and enabled
    qint64 m_longestAnswer = 0;
};

} // namespace vantrel::test
