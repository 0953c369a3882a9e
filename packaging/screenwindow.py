"""A window of its own on an Xvfb of its own, the hand of its screen, and what goes past it to the server."""
import base64
import ctypes
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import urllib.request

from robot import Robot, port_of

HUGE = {"text": "huge", "size": (1280, 720)}
SIZES = {"small": 0, "medium": 1, "large": 2, "huge": 3}


def virtual_screen(width, height):
    """An Xvfb of so many pixels, and the name of its display."""
    number, say = os.pipe()
    xvfb = subprocess.Popen(
        ["Xvfb", "-displayfd", str(say), "-screen", "0", f"{width}x{height}x24", "-dpi", "96", "-nolisten", "tcp"],
        pass_fds=[say], stderr=subprocess.DEVNULL)
    os.close(say)
    with os.fdopen(number) as display:
        return xvfb, ":" + display.readline().strip()


def grab(display, file):
    """The whole of a display as a picture."""
    subprocess.run(
        ["ffmpeg", "-v", "error", "-nostdin", "-y", "-f", "x11grab", "-draw_mouse", "0", "-i", display, "-frames:v", "1",
         "-pix_fmt", "rgb24", "-pred", "mixed", "-compression_level", "100", str(file)], check=True)


class Window:
    """A halcyra that fills a screen of so many pixels, with settings of its own."""

    def __init__(self, options, text="medium", size=(1600, 1000), scale=1, connect=True, server=None):
        self.size = [pixels * scale for pixels in size]
        self.home = tempfile.TemporaryDirectory()
        settings = pathlib.Path(self.home.name, "Halcyra", "halcyra.ini")
        settings.parent.mkdir()
        settings.write_text(f"[General]\nTEXT_SIZE={SIZES[text]}\n", encoding="utf-8")
        self.xvfb, self.display = virtual_screen(*self.size)
        output = pathlib.Path(self.home.name, "output")
        environment = dict(os.environ, DISPLAY=self.display, XDG_CONFIG_HOME=self.home.name,
                           QT_QPA_PLATFORM="xcb", QT_SCALE_FACTOR=str(scale))
        with open(output, "w", encoding="utf-8") as file:
            self.app = subprocess.Popen(
                [options.bin, "--ui-test", "--ui-test-port", "0"] + (server or options.server if connect else []),
                env=environment, stdout=file, stderr=subprocess.DEVNULL)
        self.robot = Robot(port_of(output))
        self.robot.ask(operation="raise", objectName="MainWindow")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in (self.app, self.xvfb):
            process.terminate()
            process.wait(20)
        self.home.cleanup()

    def click(self, name):
        self.robot.mouse("click", self.robot.find(name))

    def cue(self, row):
        self.robot.mouse("double_click", self.robot.slot(row))
        location = "Preview-PlaybackWidget-Header-MediaLocation"
        wait(lambda: self.robot.find(location)["text"] == f"1-{row + 1}:", "the cued slot")

    def type_into(self, name, text):
        self.robot.mouse("double_click", self.robot.find(name))
        for key in ["CtrlA", *text, "Enter"]:
            self.robot.ask(operation="key_press", keyName=key)

    def run_show(self):
        """Walk-in loop on program, the clock on preview."""
        self.click("TakeControls-DirectCut-Button")
        self.cue(0)
        self.click("TakeControls-Copy-Button")
        self.click("TakeControls-Take-Button")
        wait(lambda: self.robot.find("Program-PlaybackWidget-Header-MediaLocation")["text"] == "1-1:", "the take")
        self.cue(3)
        self.click("TakeControls-Crossfade-Button")
        self.click("TakeControls-Swap-Button")
        time.sleep(2)
        self.rest()

    def build_list(self):
        """All slots of the panel as a playlist; the server keeps it for the pictures after this one."""
        self.robot.find("Preview-PlaylistContainer-playlist")
        self.robot.slot(0)
        if self.cell("Preview-PlaylistContainer-playlist", 0) is None:
            self.robot.ask(operation="focus", objectName="MediaPanel-slots-view")
            for key in ("Up", "CtrlA", "Insert"):
                self.robot.ask(operation="key_press", keyName=key)
        wait(lambda: self.cell("Preview-PlaylistContainer-playlist", 0), "the playlist")

    def cell(self, view, row, column=6):
        name = f"{view}-row{row}-col{column}"
        return next((item for item in self.robot.ask(objectName=view, maxResults=1)
                     if item.get("objectName") == name), None)

    def choose(self, entry):
        """Of the main menu."""
        self.click("MainNavigationBar-mainmenu-button")
        time.sleep(0.5)
        self.robot.mouse("click", self.robot.find(f"MainNavigationBar-mainmenu-{entry}-action"))

    def run_list(self):
        """The first entry on program, the third on preview, with its row selected."""
        self.build_list()
        if not self.robot.find("Preview-PlaylistEditor-pin-button").get("checked"):
            self.click("Preview-PlaylistEditor-pin-button")
        self.click("TakeControls-DirectCut-Button")
        self.click("TakeControls-Copy-Button")
        for row in (0, 2):
            self.robot.mouse("double_click", self.cell("Preview-PlaylistContainer-playlist", row))
            place = "Preview-PlaybackWidget-Header-MediaLocation"
            wait(lambda number=row + 1: self.robot.find(place)["text"] == f"{number}:", "the cued entry")
            if row == 0:
                self.click("TakeControls-Take-Button")
                wait(lambda: self.robot.find("Program-PlaybackWidget-Header-MediaLocation")["text"] == "1:", "the take")
        time.sleep(2)
        self.rest()

    def keys(self, *names):
        for name in names:
            self.robot.ask(operation="key_press", keyName=name)

    def rest(self):
        """Nothing under the mouse, and no tooltip."""
        bar = self.robot.find("StatusBar")
        for at in ("global_x", "local_x"):  # beyond what it says
            bar[at] += bar["width"] * 3 // 10
        self.robot.mouse("move_to", bar)
        time.sleep(0.7)

    def shoot(self, file):
        grab(self.display, file)

    def shoot_widget(self, name, file):
        png = self.robot.ask(operation="grab", objectName=name, maxResults=1)[0]["png"]
        file.write_bytes(base64.b64decode(png))


class Pointer:
    """The mouse of a screen, moved as a hand moves it."""

    def __init__(self, display):
        self.x11, self.xtest = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(display.encode()))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.x11.XCloseDisplay(self.display)

    def press(self, down):
        self.xtest.XTestFakeButtonEvent(self.display, 1, int(down), ctypes.c_ulong(0))
        self.x11.XFlush(self.display)

    def move(self, x, y):
        self.xtest.XTestFakeMotionEvent(self.display, -1, int(x), int(y), ctypes.c_ulong(0))
        self.x11.XFlush(self.display)
        time.sleep(0.05)

    def drag(self, start, end):
        self.move(start["global_x"], start["global_y"])
        self.press(True)
        for step in range(1, 21):
            self.move(*(start[axis] + (end[axis] - start[axis]) * step / 20 for axis in ("global_x", "global_y")))

    def drop(self, item):
        self.move(item["global_x"], item["global_y"])
        self.press(False)


def wait(condition, what):
    deadline = time.monotonic() + 20
    while not condition():
        if time.monotonic() > deadline:
            sys.exit(f"waited in vain for {what}")
        time.sleep(0.1)


def rest(options, method, body=None):
    port = options.server[options.server.index("--http-port") + 1]
    request = urllib.request.Request(f"http://127.0.0.1:{port}/api/brume/v1/medialibrary", method=method,
                                     data=json.dumps(body).encode() if body else None,
                                     headers={"Content-Type": "application/json"})
    return urllib.request.urlopen(request, timeout=10)


def fill(path, size):
    with open(path, "wb") as file:
        file.truncate(size)
