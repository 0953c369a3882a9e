#!/usr/bin/env python3
"""Fails when an include runs against the directions of the house (ARCHITECTURE.md, "The house").

usage: directions.py ROOT
"""
import pathlib
import re
import sys

# What a room may include; longest match of a room's name counts.
MAY_KNOW = {
    "util": ["util"],
    "tarn": ["tarn"],
    "tarn/qt": ["tarn"],
    "ombra": ["ombra", "tarn", "util"],
    "launcher": ["launcher", "common", "util", "tarn"],
    "common": ["common", "tarn", "util"],
}
# Inside common, these rooms know nothing of those above them.
LOWER = ["common/command", "common/media", "common/filesystem", "common/notification"]
HIGHER = ["common/ui", "common/views", "common/playback", "common/outputs", "common/qml"]
# What is on the screen stands in storeys: none of them knows one above it.
STOREYS = [
    ["common/ui/style"],
    ["common/ui/toolkit"],
    ["common/ui/keyboard", "common/ui/inspect", "common/ui/diagnostics", "common/ui/clicktest"],
    ["common/views", "common/playback", "common/outputs"],
    ["common/ui/shell"],
    ["common/ui/gallery"],
]
# Qt stays out of these rooms.
NO_QT = ["util", "tarn", "ombra"]
NO_QT_EXCEPT = ["tarn/qt"]
# The knots: includes that stand by name, each with its reason. (file, included header): why
KNOTS = {}

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)')


def in_room(path, room):
    return path == room or path.startswith(room + "/")


def storey_of(path):
    return next((i for i, rooms in enumerate(STOREYS) if any(in_room(path, room) for room in rooms)), None)


def faults_of(root, path):
    name = path.relative_to(root).as_posix()
    room = max((r for r in MAY_KNOW if in_room(name, r)), key=len)
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        ours, system = match.groups()
        where = f"{name}:{number}"
        if system:
            is_qt = re.match(r"Q[A-Z]|Qt[A-Z]", system)
            if is_qt and any(in_room(name, r) for r in NO_QT) and not any(in_room(name, r) for r in NO_QT_EXCEPT):
                yield f"{where}: includes <{system}>, and Qt stays out of {room}"
            continue
        if ours.endswith(".moc"):
            continue
        if "/" not in ours:
            yield f"{where}: \"{ours}\" is not written from the project's root"
            continue
        if (name, ours) in KNOTS:
            continue
        if not any(in_room(ours, allowed) for allowed in MAY_KNOW[room]):
            yield f"{where}: {room} must not know {ours}"
        if any(in_room(name, r) for r in LOWER) and any(in_room(ours, r) for r in HIGHER):
            yield f"{where}: a lower room includes {ours}"
        here, there = storey_of(name), storey_of(ours)
        if here is not None and there is not None and there > here:
            yield f"{where}: includes {ours} of a storey above it"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    files = [p for room in ("util", "tarn", "ombra", "launcher", "common")
             for suffix in ("*.h", "*.cpp") for p in sorted((root / room).rglob(suffix))]
    faults = [fault for path in files for fault in faults_of(root, path)]
    unused = [knot for knot in KNOTS if not (root / knot[0]).exists() or knot[1] not in (root / knot[0]).read_text()]
    faults += [f"the knot {knot} is gone from the code: take its line out" for knot in unused]
    for fault in faults:
        print(fault)
    print(f"{len(files)} files, {len(faults)} faults")
    return 1 if faults or not files else 0


sys.exit(main())
