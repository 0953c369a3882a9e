#!/usr/bin/env python3
"""Measures how long it takes from TAKE, pressed in the window, to the first changed picture on program's screen: two
media of one colour each, by turns, with a direct cut.

usage: taketime.py [TAKES]
"""
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time

from stage import BIN, PREVIEW, PROGRAM, Link, Screen, start_ombra, stop

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "packaging"))
from robot import Robot, port_of  # noqa: E402

RATE = 60  # of the screen
COLORS = {"blue": 0x0000ff, "red": 0xff0000}  # in the order of their slots
PATIENCE = 5  # seconds


def make_media(folder):
    folder.mkdir()
    for color in COLORS:
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                        f"color={color}:s=1920x1080:r=25:d=8,noise=alls=4:allf=t", "-c:v", "libx264", "-preset",
                        "veryfast", folder / (color + ".mov")], check=True)


def is_of(pixel, color):
    return all(abs((pixel >> shift & 0xff) - (color >> shift & 0xff)) < 60 for shift in (0, 8, 16))


def until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            sys.exit(f"nothing came of {what}")
        time.sleep(0.0005)
    return time.monotonic()


def start_halcyra(folder, ports):
    output = folder / "halcyra.out"
    options = [word for name in ("http", "link", "preview", "ftp") if name in ports
               for word in (f"--{name}-port", ports[name])]
    window = subprocess.Popen([BIN / "halcyra", "--connect", "127.0.0.1", *options, "--ui-test", "--ui-test-port", "0"],
                              stdout=output.open("w"), stderr=subprocess.DEVNULL,
                              env=dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=str(folder)))
    return window, Robot(port_of(output))


def cut_directly(robot):
    """Pressed until it stands: the button is there before the window knows its channel."""
    button = "TakeControls-DirectCut-Button"
    end = time.monotonic() + PATIENCE
    while not robot.find(button).get("checked") and time.monotonic() < end:
        robot.mouse("click", robot.find(button))
        time.sleep(0.3)


def take(robot, screen, row):
    """Seconds from the click to the other colour."""
    color = list(COLORS.values())[row]
    robot.mouse("double_click", robot.slot(row))
    time.sleep(0.8)  # until its first picture stands on preview, and then some
    button = robot.find("TakeControls-Take-Button")
    begin = time.monotonic()
    robot.begin_mouse("click", button)
    seen = until(lambda: is_of(screen.pixels(960, 540, 1)[0], color), "a take")
    robot.answer()
    return seen - begin


def main():
    takes = int(sys.argv[1]) if len(sys.argv) > 1 else 100
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_media(folder / "media")
        screen = Screen(1920, 1080)
        server, ports = start_ombra(screen, folder, "--no-sound")
        window, robot = start_halcyra(folder, ports)
        try:
            link = Link(ports)
            for side in (PROGRAM, PREVIEW):
                link.replace(side + "/properties/endAction", "repeat")
            link.play(PROGRAM, 1)
            until(lambda: is_of(screen.pixels(960, 540, 1)[0], COLORS["blue"]), "program's first medium")
            cut_directly(robot)
            times = sorted(RATE * take(robot, screen, 1 - i % 2) for i in range(takes))
        finally:
            stop(window, server, screen.process)
    print("| Takes | Display pictures until the first changed one, middle | Least | 95 of 100 | Most |")
    print("|---:|---:|---:|---:|---:|")
    print(f"| {takes} | {statistics.median(times):.2f} | {times[0]:.2f} | {times[int(takes * 0.95) - 1]:.2f} "
          f"| {times[-1]:.2f} |")


if __name__ == "__main__":
    main()
