#!/usr/bin/env python3
"""Fails when an include runs against the directions of the house (ARCHITECTURE.md, "The house").

usage: directions.py ROOT
"""
import pathlib
import re
import sys

# What a room may include; longest match of a room's name counts.
MAY_KNOW = {
    "util": ["util", "tarn/log"],
    "tarn": ["tarn"],
    "tarn/qt": ["tarn"],
    "ombra": ["ombra", "tarn", "util"],
    "ombra/display": ["ombra/display", "ombra/decode", "ombra/base", "ombra/engine/shownmoment.h", "ombra/outputs/connector.h",
                      "tarn"],
    "ombra/sound": ["ombra/sound", "ombra/decode", "ombra/base", "ombra/engine/heardmoment.h", "tarn"],
    "launcher": ["launcher", "common"],
    "common": ["common", "tarn", "util"],
}
# The rooms of common stand on floors, from the ground up: cmake/floors.txt, from which they are built as well. A room
# knows every room below its floor, and none beside it or above.
FLOORS = "cmake/floors.txt"
# The rooms of the library and of the server stand on floors as well, below those of common. What lies in "tarn", "ombra"
# or "util" itself is that folder's own; a folder below them is a room, and has its line here.
GROUND = [
    ["tarn", "tarn/json", "tarn/log", "tarn/edid", "tarn/ftp"],
    ["tarn/media", "tarn/net", "tarn/discovery", "util"],
    ["tarn/scene", "tarn/preview"],
    ["tarn/qt"],
    ["ombra/base"],
    ["ombra/decode", "ombra/link", "ombra/outputs", "ombra/preview"],
    ["ombra/engine", "ombra/show"],
    ["ombra/rest", "ombra/ftp", "ombra/display", "ombra/sound"],
    ["ombra"],
]
HANDLE = "common/session/session.h"
# Who reaches for the session through its handle although the session stands above: file, and why.
REACHES = {
    "common/command/abstractdiffapicommand.cpp": "a command lives on the undo stack longer than the api of one connection",
    "common/command/abstractrestapicommand.cpp": "the same, for the network access",
    "common/command/abstractscenecommand.cpp": "commands are made by whoever edits and find the one scene by themselves",
    "common/command/invokemethodcommand.cpp": "sends on the link of the moment",
    "common/command/libraryeditcommand.cpp": "finds the one library by itself",
    "common/command/playback/playmediacommand.cpp": "finds the channel in the one tree of objects",
    "common/filesystem/schedule/defaultfilesystemprovider.cpp": "a server's file system follows the one connection",
    "common/filesystem/server/serverfilesystemprivate.cpp": "asks the one aggregator about its files",
    "common/import/imagesequencecreator.cpp": "tells the aggregator of the session that it is given",
    "common/media/edit/implmediacollectionmanager.cpp": "executes on the one undo stack",
    "common/media/edit/mediasloteditfunctional.cpp": "executes on the one undo stack",
    "common/session/link/connectionhandler.cpp": "tells the preview thread of the session where to connect",
    "common/session/link/connectionprovider.cpp": "follows the one connection",
    "common/session/link/metadataclient.cpp": "tells the one aggregator",
    "common/session/link/systemproxy.cpp": "follows the connection of the session that it is given",
}
# Who asks for the one session above it, where everybody else is handed what he works with: file, and why.
ASKS = {
    "common/qml/qmlmanager.cpp": "what QML may see of the application",
    "common/qml/qmlthumbnailprovider.cpp": "the engine of QML makes it and hands it nothing",
    "common/ui/clicktest/clickteststate.cpp": "tells from outside what the whole application holds",
    "common/ui/clicktest/uifigures.cpp": "measures the whole application from outside",
    "common/ui/inspect/inspectorwidget.cpp": "looks at the session itself",
    "common/ui/keyboard/hotkeys.cpp": "keys undo and redo on the one undo stack, wherever the focus is",
    "common/ui/keyboard/hotkeytip.cpp": "shows the keys in force in tooltips of any room",
}
# Who asks for another object of which there is one: class, file, and why. Its own file and tests are free.
SINGLETONS = {
    "NotificationManagerImpl": {
        "common/command/abstractdiffapicommand.cpp": "an edit that the server refuses has no view left that could tell",
        "common/command/refusal.cpp": "the one place that tells of a command that was not taken",
        "common/filesystem/models/filesystemdrophandler.cpp": "a drop that cannot be done has no view of its own",
        "common/filesystem/schedule/filesystemoperationsrunnerprivate.cpp": "a transfer fails long after who asked for it is gone",
        "common/media/models/playlist/playlisteditormodel.cpp": "refuses an edit to whichever view asked",
        "common/qml/qmlmanager.cpp": "what QML may see of the application",
        "common/ui/shell/mainwindow.cpp": "hands it to what shows the messages",
        "common/ui/shell/notificationpresenter.cpp": "shows the messages",
        "common/ui/shell/showoutcome.cpp": "tells how a work of the server's ended",
        "common/views/playlist/playlistfiles.cpp": "tells how a file was read or written",
    },
    "QMLManager": {
        "common/qml/quickview.cpp": "the one engine of all declarative views",
        "common/ui/shell/mainwindow.cpp": "ends the engine before the session",
        "common/ui/shell/notificationdialogwrapper.cpp": "the one engine of all declarative views",
        "common/ui/shell/notificationhost.cpp": "the one engine of all declarative views",
        "common/views/dropreview.cpp": "opens the one declared dialog of a drop",
    },
    "DefaultFileSystemProvider": {
        "common/filesystem/schedule/operationfactory.cpp": "knows the local disks from a server by it",
        "common/session/session.cpp": "gives it out as a part of the session",
        "common/session/sessionfiles.cpp": "builds the models of files on it",
    },
    "LocalHomeLocations": {
        "common/filesystem/model/localhomelocationswrapper.cpp": "is its declarative face",
        "common/qml/qmlmanager.cpp": "what QML may see of the application",
        "common/session/sessionfiles.cpp": "builds the model of local files on it",
    },
    "MainWindow": {
        "common/qml/dialogfactory.cpp": "a dialog of QML stands over the window",
        "common/qml/quickdialog.cpp": "a dialog of QML stands over the window",
        "common/session/sessionscene.cpp": "nothing is painted while a whole scene is applied",
        "common/ui/clicktest/clicktestevents.cpp": "events from outside reach the whole window",
        "common/ui/diagnostics/diagnosticsmanager.cpp": "its picture belongs to what is packed",
        "common/views/files/filesview.cpp": "its declarative half asks over the window",
    },
    "LogManager": {
        "common/ui/diagnostics/diagnosticsmanager.cpp": "packs the folder of the log",
        "launcher/main.cpp": "puts it in place of Qt's own, before anything else stands",
    },
}
ASKED = "Session::instance()"
INSTANCE = re.compile(r"\b((?!Q[A-Z]\w*Application\b)[A-Z]\w*)::instance\(\)")
WINDOW = re.compile(r"\b(?:mainWindowWidget|setMainWindowUpdatesEnabled)\(")
# Modules that core rooms know nothing of, also where an include names the module itself.
WIDGETS = re.compile(r"Qt\w*Widgets/")
# What reaches the screens and the sound devices of a machine, and the only rooms that know how.
DEVICES = {"ombra/display": re.compile(r"SDL|X11/|libplacebo/|cairo"), "ombra/sound": re.compile(r"SDL")}
# Qt stays out of these rooms.
NO_QT = ["util", "tarn", "ombra"]
NO_QT_EXCEPT = ["tarn/qt"]

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)')


def in_room(path, room):
    return path == room or path.startswith(room + "/")


def read_table(root):
    """The floors of common: what each may have, and its rooms."""
    return [line.split() for line in (root / FLOORS).read_text(encoding="utf-8").splitlines()
            if line and not line.startswith("#")]


def numbered(table):
    """Each room with the number of its floor."""
    rows = GROUND + [rooms for _, *rooms in table]
    return {room: number for number, rooms in enumerate(rows) for room in rooms}


def room_of(path, floors):
    room = max((room for room in floors if in_room(path, room)), key=len, default=None)
    is_unlisted = room in ("tarn", "ombra", "util") and path.count("/") > 1
    return None if is_unlisted else room


def floor_fault(name, ours, floors):
    """What is wrong with an include from one room into another; None when it leads down."""
    here, there = room_of(name, floors), room_of(ours, floors)
    if here is None or there is None:
        return None if here or in_room(name, "launcher") else f"stands in no room of {FLOORS} or of GROUND"
    if here == there or floors[there] < floors[here]:
        return None
    if ours == HANDLE:
        return None if name in REACHES else "reaches for the session without a reason in REACHES"
    return f"includes {ours}, which is not below {here}"


def faults_of(root, path, floors, core):
    name = path.relative_to(root).as_posix()
    room = max((r for r in MAY_KNOW if in_room(name, r)), key=len)
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        ours, system = match.groups()
        where = f"{name}:{number}"
        knowing = [r for r, headers in DEVICES.items() if system and headers.match(system)]
        if knowing and not any(in_room(name, r) for r in knowing):
            yield f"{where}: includes <{system}>, which only {' and '.join(knowing)} know"
        if system:
            is_qt = re.match(r"Q[A-Z]|Qt[A-Z]", system)
            if is_qt and any(in_room(name, r) for r in NO_QT) and not any(in_room(name, r) for r in NO_QT_EXCEPT):
                yield f"{where}: includes <{system}>, and Qt stays out of {room}"
            if room_of(name, floors) in core and WIDGETS.match(system):
                yield f"{where}: includes <{system}>, and {room_of(name, floors)} is built without widgets"
            continue
        if ours.endswith(".moc"):
            continue
        if "/" not in ours:
            yield f"{where}: \"{ours}\" is not written from the project's root"
            continue
        if room in NO_QT and any(in_room(ours, other) for other in NO_QT_EXCEPT):
            yield f"{where}: includes {ours}, and Qt stays out of {room}"
        if not any(in_room(ours, allowed) for allowed in MAY_KNOW[room]):
            yield f"{where}: {room} must not know {ours}"
        fault = floor_fault(name, ours, floors)
        if fault:
            yield f"{where}: {fault}"


def drawn_faults(root, table):
    """ARCHITECTURE.md shows the floors as they are built."""
    drawn = (root / "ARCHITECTURE.md").read_text(encoding="utf-8")
    for first, rows, where in (("common/", [rooms for _, *rooms in table], FLOORS), ("(?:tarn|ombra)", GROUND, "GROUND")):
        shown = re.findall(rf"^ *\d+ +({first}.*)$", drawn, re.MULTILINE)
        if [line.split() for line in reversed(shown)] != rows:
            yield f"ARCHITECTURE.md does not show the floors of {where}"


def asking_faults(root, files, floors):
    """Above the session nobody asks for it but those named in ASKS."""
    asking = set()
    for path in files:
        name = path.relative_to(root).as_posix()
        room = room_of(name, floors)
        if room and floors[room] > floors["common/session"] and ASKED in path.read_text(encoding="utf-8"):
            asking.add(name)
    yield from (f"{name} asks for the one session: hand it what it needs" for name in sorted(asking - ASKS.keys()))
    yield from (f"{name} asks for the session no longer: take its line out of ASKS" for name in ASKS if name not in asking)


def singleton_faults(root, files):
    """Who asks for an object of which there is one stands in SINGLETONS, and nobody else does there."""
    asking = set()
    for path in files:
        name = path.relative_to(root).as_posix()
        text = path.read_text(encoding="utf-8")
        asking |= {(asked, name) for asked in INSTANCE.findall(text)
                   if asked != "Session" and path.stem != asked.lower()}
        if WINDOW.search(text) and path.stem != "mainwindowhandle":
            asking.add(("MainWindow", name))
    named = {(asked, name) for asked, askers in SINGLETONS.items() for name in askers}
    yield from (f"{name} asks for the one {asked} without a reason in SINGLETONS" for asked, name in sorted(asking - named))
    yield from (f"{name} asks for the one {asked} no longer: take its line out of SINGLETONS"
                for asked, name in sorted(named - asking))


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    files = [p for room in ("util", "tarn", "ombra", "launcher", "common")
             for suffix in ("*.h", "*.cpp", "*.c") for p in sorted((root / room).rglob(suffix))]
    table = read_table(root)
    floors = numbered(table)
    core = {room for may_have, *rooms in table if may_have == "core" for room in rooms}
    faults = list(drawn_faults(root, table))
    faults += [fault for path in files for fault in faults_of(root, path, floors, core)]
    faults += asking_faults(root, files, floors)
    faults += singleton_faults(root, files)
    faults += [f"{name} reaches for the session no longer: take its line out of REACHES" for name in REACHES
               if not (root / name).exists() or HANDLE not in (root / name).read_text(encoding="utf-8")]
    for fault in faults:
        print(fault)
    print(f"{len(files)} files, {len(faults)} faults")
    return 1 if faults or not files else 0


sys.exit(main())
