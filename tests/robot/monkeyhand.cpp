#include "tests/robot/monkeyhand.h"

#include "tests/support/robotclient.h"

#include <QElapsedTimer>

namespace vantrel::test {

namespace {

/// These would end the run, or write where the test must not.
const QStringList forbiddenEntries = {QStringLiteral("Exit"), QStringLiteral("Import show"),
                                      QStringLiteral("Export show"), QStringLiteral("Save diagnostics...")};

const QString mainMenu = QStringLiteral("MainNavigationBar-mainmenu");

const QStringList texts = {
    QStringLiteral("walk-in"), QStringLiteral("12"),           QStringLiteral("<b>%1</b>"),
    QStringLiteral("-0.5"),    QStringLiteral("a/b~1 \""),     QStringLiteral("99999"),
    QStringLiteral("  "),      QString(u'\u00e9') + u'\u6f22',
};

const QStringList plainKeys = {
    QStringLiteral("Enter"),  QStringLiteral("Esc"),   QStringLiteral("Tab"),
    QStringLiteral("Tab"),    QStringLiteral("Down"),  QStringLiteral("Up"),
    QStringLiteral("Left"),   QStringLiteral("Right"), QStringLiteral("End"),
    QStringLiteral("PageUp"), QStringLiteral("CtrlA"), QStringLiteral("ShiftRight"),
    QStringLiteral("F10"),    QStringLiteral("F11"),   QStringLiteral("Backspace"),
    QStringLiteral("7"),
};

QString nameOf(const QJsonObject& thing)
{
    const QString name = thing["objectName"].toString();
    return name.isEmpty() ? thing["className"].toString() + thing["text"].toString() : name;
}

bool isEntry(const QJsonObject& thing)
{
    return thing["className"] == QLatin1String("QAction");
}

/// That of a lost link stays until there is one, and takes nothing from the window.
bool isDialog(const QJsonObject& thing)
{
    const QString name = thing["className"].toString();
    return name.endsWith(QLatin1String("Dialog")) && name != QLatin1String("vantrel::ReconnectDialog");
}

/// A volume slider, the list of a combo box.
bool isPopup(const QJsonObject& thing)
{
    const QString name = thing["className"].toString();
    return name.endsWith(QLatin1String("Popup")) || name == QLatin1String("QComboBoxPrivateContainer");
}

/// Those of F10 and F11, and what they open: windows of their own that lie over everything here.
bool isServiceWindow(const QJsonObject& thing)
{
    return thing["parentClassName"].toString().isEmpty() &&
           thing["objectName"] != QLatin1String("MainWindow") && !isEntry(thing) &&
           thing["className"].toString() != QLatin1String("QTipLabel") &&
           !thing["objectName"].toString().contains(QLatin1String("-row"));
}

bool isInside(const QJsonObject& thing, const QJsonObject& frame)
{
    const auto isNear = [&](const char* axis, const char* extent) {
        return std::abs(thing[QLatin1String(axis)].toInt() - frame[QLatin1String(axis)].toInt()) * 2 <=
               frame[QLatin1String(extent)].toInt();
    };
    return isNear("global_x", "width") && isNear("global_y", "height");
}

} // namespace

MonkeyHand::MonkeyHand(RobotClient& robot, quint32 seed)
    : m_robot(robot)
    , m_random(seed)
{
}

QJsonArray MonkeyHand::ask(const QJsonObject& request)
{
    QElapsedTimer clock;
    clock.start();
    const QJsonArray reply = m_robot.ask(request);
    m_longestAnswer = std::max(m_longestAnswer, clock.elapsed());
    return reply;
}

void MonkeyHand::look()
{
    m_seen.clear();
    for (const QJsonValue& value : ask({{"maxResults", 100000}})) {
        const QJsonObject thing = value.toObject();
        const bool isOnScreen = thing["global_x"].toInt() >= 0 && thing["global_y"].toInt() >= 0 &&
                                thing["width"].toInt() > 0 && thing["height"].toInt() > 0;
        if (isOnScreen && thing["visible"].toBool() && thing["enabled"].toBool(true))
            m_seen.append(thing);
    }
    // What lies behind a dialog cannot be reached, most of the time.
    if (const QJsonObject dialog = pick(isDialog); !dialog.isEmpty() && random(5))
        m_seen.removeIf(
            [&](const QJsonObject& thing) { return !isEntry(thing) && !isInside(thing, dialog); });
}

bool MonkeyHand::isVisible(const QString& className) const
{
    return std::ranges::any_of(
        m_seen, [&](const QJsonObject& thing) { return thing["className"].toString().endsWith(className); });
}

template <typename Fits>
QJsonObject MonkeyHand::pick(Fits fits)
{
    QList<const QJsonObject*> fitting;
    for (const QJsonObject& thing : std::as_const(m_seen)) {
        if (fits(thing))
            fitting.append(&thing);
    }
    return fitting.isEmpty() ? QJsonObject() : *fitting[random(int(fitting.size()))];
}

/// Mostly what can be pressed or typed into, and now and then anything.
QJsonObject MonkeyHand::pickAny()
{
    static const QStringList active = {QStringLiteral("Button"),   QStringLiteral("Edit"),
                                       QStringLiteral("ComboBox"), QStringLiteral("CheckBox"),
                                       QStringLiteral("Slider"),   QStringLiteral("KeyField"),
                                       QStringLiteral("ListView")};
    const bool isActive = random(5) != 0;
    const QJsonObject thing = pick([&](const QJsonObject& seen) {
        const QString name = seen["className"].toString();
        return !isActive ||
               std::ranges::any_of(active, [&](const QString& end) { return name.endsWith(end); });
    });
    return thing;
}

QJsonObject MonkeyHand::pointIn(QJsonObject target)
{
    if (target.isEmpty())
        return target;
    const int dx = random(std::max(1, target["width"].toInt())) - target["width"].toInt() / 2;
    const int dy = random(std::max(1, target["height"].toInt())) - target["height"].toInt() / 2;
    for (const char* kind : {"global", "local"}) {
        for (const auto& [axis, off] : {std::pair("_x", dx), std::pair("_y", dy)}) {
            const QString member = QLatin1String(kind) + QLatin1String(axis);
            target[member] = target[member].toInt() + off;
        }
    }
    return target;
}

QString MonkeyHand::mouse(const QString& operation, const QJsonObject& target)
{
    if (target.isEmpty())
        return operation + QStringLiteral(" of nothing");
    QJsonObject request{{"operation", operation}, {"keyName", random(12) == 0 ? "Shift" : ""}};
    for (const char* member : {"global_x", "global_y", "local_x", "local_y"})
        request[QLatin1String(member)] = target[QLatin1String(member)];
    if (operation == QLatin1String("scroll_vertical"))
        request["scroll"] = (random(2) ? 120 : -120) * (1 + random(5));
    ask(request);
    return QStringLiteral("%1 %2 at %3,%4")
        .arg(operation, nameOf(target))
        .arg(target["global_x"].toInt())
        .arg(target["global_y"].toInt());
}

QString MonkeyHand::key(const QString& name)
{
    // In the open menu it may choose what would end the run.
    static const QStringList choosing{QStringLiteral("Return"), QStringLiteral("Enter"),
                                      QStringLiteral("Space")};
    const bool isChoice = choosing.contains(name);
    const bool isInMenu = isChoice && m_robot.find(mainMenu)["visible"].toBool();
    const QString pressed = isInMenu ? QStringLiteral("Esc") : name;
    ask({{"operation", "key_press"}, {"keyName", pressed}});
    return QStringLiteral("key ") + pressed;
}

QString MonkeyHand::click()
{
    return mouse(QStringLiteral("click"), pickAny());
}

QString MonkeyHand::doubleClick()
{
    // Mostly a slot, which cues it.
    const QJsonObject slot = pick([](const QJsonObject& seen) {
        return seen["objectName"].toString().startsWith(QLatin1String("MediaPanel-slots-view-row"));
    });
    return mouse(QStringLiteral("double_click"), slot.isEmpty() || random(4) == 0 ? pickAny() : slot);
}

QString MonkeyHand::contextMenu()
{
    return mouse(random(2) ? QStringLiteral("context_menu") : QStringLiteral("right_click"),
                 pointIn(pickAny()));
}

QString MonkeyHand::wheel()
{
    return mouse(QStringLiteral("scroll_vertical"), pointIn(pickAny()));
}

QString MonkeyHand::drag()
{
    const QJsonObject target = random(3) ? pick([](const QJsonObject& seen) {
        const QString name = seen["className"].toString();
        return name.endsWith(QLatin1String("Slider")) || name.endsWith(QLatin1String("ListView")) ||
               name.endsWith(QLatin1String("SplitterHandle"));
    })
                                         : pickAny();
    const QString told = mouse(QStringLiteral("drag_start"), pointIn(target));
    for (int i = random(6); i > 0; --i)
        mouse(QStringLiteral("drag_move"), pointIn(target));
    // Now and then the button is let go elsewhere.
    mouse(QStringLiteral("drag_end"), pointIn(random(8) ? target : pickAny()));
    return told;
}

QString MonkeyHand::hotkey()
{
    const QJsonObject keymap = ask({{"operation", "state"}}).first()["keymap"].toObject();
    const QStringList names = keymap.keys();
    if (names.isEmpty())
        return QStringLiteral("no keymap");
    const QString name = names[random(int(names.size()))];
    const QString sequence = keymap[name].toString();
    return sequence.isEmpty() ? QStringLiteral("no key for ") + name : key(sequence);
}

QString MonkeyHand::plainKey()
{
    return key(plainKeys[random(int(plainKeys.size()))]);
}

QString MonkeyHand::type()
{
    const QJsonObject field = pick([](const QJsonObject& seen) {
        const QString name = seen["className"].toString();
        return name.endsWith(QLatin1String("Edit")) || name == QLatin1String("QLineEdit");
    });
    const QString told = mouse(random(2) ? QStringLiteral("double_click") : QStringLiteral("click"), field);
    if (random(2))
        key(QStringLiteral("CtrlA"));
    const QString text = texts[random(int(texts.size()))];
    for (const QChar c : text)
        key(QString(c));
    if (random(3))
        key(random(3) ? QStringLiteral("Enter") : QStringLiteral("Esc"));
    return told + QStringLiteral(", typing ") + text;
}

QString MonkeyHand::openMenu()
{
    const QJsonObject button = pick([](const QJsonObject& seen) {
        const QString name = seen["objectName"].toString();
        return name == mainMenu + QLatin1String("-button") || name == QLatin1String("MediaPanel-menu-button");
    });
    return mouse(QStringLiteral("click"), button);
}

QString MonkeyHand::chooseEntry()
{
    const QJsonObject entry = pick([](const QJsonObject& seen) {
        return isEntry(seen) && !forbiddenEntries.contains(seen["text"].toString());
    });
    return entry.isEmpty() || random(4) == 0 ? key(QStringLiteral("Esc"))
                                             : mouse(QStringLiteral("click"), entry);
}

QString MonkeyHand::resize()
{
    const int width = 1280 + random(1920 - 1280 + 1);
    const int height = 720 + random(1200 - 720 + 1);
    ask({{"operation", "resize"}, {"objectName", "MainWindow"}, {"width", width}, {"height", height}});
    return QStringLiteral("resize to %1x%2").arg(width).arg(height);
}

/// No host but this machine is ever asked for.
QString MonkeyHand::inConnectDialog()
{
    if (random(3) == 0)
        return key(QStringLiteral("Esc"));
    return connectToServer();
}

QString MonkeyHand::connectToServer()
{
    const QString field = QStringLiteral("ConnectDialog-input-AddressBar");
    look();
    // Below another dialog its buttons may be out of the mouse's reach.
    if (!isVisible(QStringLiteral("ConnectDialog")) || std::ranges::count_if(m_seen, isDialog) > 1) {
        if (!calm())
            return QStringLiteral("no rest: ") + visibleDialogs();
        ask({{"operation", "raise"}, {"objectName", "MainWindow"}}); // above windows for service
        if (!m_robot.click(mainMenu + QStringLiteral("-button")) ||
            !m_robot.clickMenuEntry(mainMenu, QStringLiteral("Connect to server...")))
            return QStringLiteral("no connect in the menu");
    }
    if (!m_robot.find(field)["visible"].toBool())
        return key(QStringLiteral("Esc")); // connecting already, or failed
    ask({{"operation", "focus"}, {"objectName", field}});
    key(QStringLiteral("CtrlA"));
    for (const QChar c : QStringLiteral("127.0.0.1"))
        key(QString(c));
    const QString text = m_robot.text(field);
    if (text != QLatin1String("127.0.0.1"))
        return QStringLiteral("the address became ") + text;
    m_robot.click(QStringLiteral("ConnectDialog-accept-button"));
    return QStringLiteral("connect to this machine");
}

bool MonkeyHand::calm()
{
    for (int i = 0; i < 12; ++i) {
        look();
        const QJsonObject service = pick(isServiceWindow);
        const QJsonObject dialog = pick(isDialog);
        if (!std::ranges::any_of(m_seen, isEntry) && dialog.isEmpty() && service.isEmpty() &&
            pick(isPopup).isEmpty())
            return true;
        if (!service.isEmpty()) {
            const bool isNamed = !service["objectName"].toString().isEmpty();
            ask({{"operation", "close"},
                 {isNamed ? "objectName" : "className", service[isNamed ? "objectName" : "className"]}});
            continue;
        }
        // A platform without a window manager does not make the one active that it believes to be so: by way
        // of another one it does.
        if (!dialog.isEmpty()) {
            ask({{"operation", "raise"}, {"objectName", "MainWindow"}});
            ask({{"operation", "raise"}, {"objectName", dialog["objectName"]}});
        }
        key(QStringLiteral("Esc"));
    }
    return false;
}

QString MonkeyHand::visibleDialogs() const
{
    QStringList names;
    for (const QJsonObject& thing : m_seen) {
        if (isEntry(thing) || isPopup(thing) || isServiceWindow(thing) ||
            thing["className"].toString().endsWith(QLatin1String("Dialog")))
            names.append(nameOf(thing) + (thing["focus"].toBool() ? QStringLiteral(" (focus)") : QString()));
    }
    return names.join(QStringLiteral(", "));
}

QString MonkeyHand::act()
{
    struct Weighted
    {
        int weight;
        Act act;
    };
    static constexpr Weighted acts[] = {
        {30, &MonkeyHand::click},   {10, &MonkeyHand::doubleClick}, {6, &MonkeyHand::contextMenu},
        {8, &MonkeyHand::wheel},    {12, &MonkeyHand::drag},        {16, &MonkeyHand::hotkey},
        {8, &MonkeyHand::plainKey}, {7, &MonkeyHand::type},         {5, &MonkeyHand::openMenu},
        {3, &MonkeyHand::resize},
    };
    look();
    for (const QJsonObject& thing : std::as_const(m_seen)) {
        if (isServiceWindow(thing) && random(6) == 0) {
            calm(); // else they would cover the window for good
            return QStringLiteral("close service windows");
        }
    }
    if (isVisible(QStringLiteral("QFileDialog")))
        return key(QStringLiteral("Esc"));
    if (isVisible(QStringLiteral("ConnectDialog")))
        return inConnectDialog();
    if (std::ranges::any_of(m_seen, isEntry))
        return chooseEntry();
    int left = random(105);
    for (const Weighted& one : acts) {
        if ((left -= one.weight) < 0)
            return (this->*one.act)();
    }
    return QStringLiteral("rest");
}

} // namespace vantrel::test
