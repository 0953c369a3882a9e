#!/usr/bin/env python3
"""Takes the pictures of docs/screens, each of a window of its own on an Xvfb of its own. See make-screens.sh."""
import argparse
import base64
import ctypes
import http.server
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import urllib.error
import urllib.request

from robot import Robot, port_of

HUGE = {"text": "huge", "size": (1280, 720)}
SIZES = {"small": 0, "medium": 1, "large": 2, "huge": 3}


class Window:
    """A halcyra that fills a screen of so many pixels, with settings of its own."""

    def __init__(self, options, text="medium", size=(1600, 1000), scale=1, connect=True, server=None):
        self.size = [pixels * scale for pixels in size]
        self.home = tempfile.TemporaryDirectory()
        settings = pathlib.Path(self.home.name, "Halcyra", "halcyra.ini")
        settings.parent.mkdir()
        settings.write_text(f"[General]\nTEXT_SIZE={SIZES[text]}\n", encoding="utf-8")
        number, say = os.pipe()
        screen = f"{self.size[0]}x{self.size[1]}x24"
        self.xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(say), "-screen", "0", screen, "-dpi", "96", "-nolisten", "tcp"],
            pass_fds=[say], stderr=subprocess.DEVNULL)
        os.close(say)
        with os.fdopen(number) as display:
            self.display = ":" + display.readline().strip()
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
        self.robot.mouse("move_to", self.robot.find("StatusBar"))
        time.sleep(0.7)

    def shoot(self, file):
        size = f"{self.size[0]}x{self.size[1]}"
        subprocess.run(
            ["ffmpeg", "-v", "error", "-nostdin", "-y", "-f", "x11grab", "-draw_mouse", "0", "-video_size", size,
             "-i", self.display, "-frames:v", "1", "-pix_fmt", "rgb24", "-pred", "mixed",
             "-compression_level", "100", str(file)], check=True)

    def shoot_widget(self, name, file):
        png = self.robot.ask(operation="grab", objectName=name, maxResults=1)[0]["png"]
        file.write_bytes(base64.b64decode(png))


class Server:
    """A server of its own on the demo's media, with its show in the given folder."""

    def __init__(self, options, state):
        self.options, self.state = options, state

    def __enter__(self):
        output = self.state.with_suffix(".out")
        command = [pathlib.Path(self.options.bin).with_name("ombra"), "--media", self.options.media,
                   "--state", self.state]
        for port in ("http", "link", "preview", "ftp"):
            command += [f"--{port}-port", "0"]
        with open(output, "w", encoding="utf-8") as file:
            self.process = subprocess.Popen(self.wrapped([str(word) for word in command]), stdout=file,
                                            stderr=subprocess.DEVNULL)
        wait(lambda: output.read_text(encoding="utf-8").startswith("ombra ready"), "the server")
        self.server = ["--connect", "127.0.0.1"]
        for word in output.read_text(encoding="utf-8").split()[2:]:
            name, port = word.split("=")
            self.server += [f"--{name}-port", port]
        return self

    def wrapped(self, command):
        return command

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(20)


class SmallDisk(Server):
    """The same, and the folder is a disk of a megabyte, in memory, that no other process sees."""

    def wrapped(self, command):
        return ["unshare", "--map-root-user", "--mount", "sh", "-c",
                f"mount -t tmpfs -o size=1m tmpfs '{self.state}' && exec \"$@\"", "sh", *command]

    def fill(self):
        disk = pathlib.Path(f"/proc/{self.process.pid}/root{self.state}")
        try:
            with open(disk / "recordings", "ab", buffering=0) as file:
                while True:
                    file.write(bytes(4096))
        except OSError:
            pass


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


def player(options, name, **how):
    with Window(options, **how) as window:
        window.run_show()
        window.shoot(options.out / f"{name}.png")


def cue_list(options, name, **how):
    with Window(options, **how) as window:
        window.run_list()
        window.shoot(options.out / f"{name}.png")


def media_panel(options):
    with Window(options, scale=2) as window:
        window.run_show()
        window.shoot_widget("PlayerTab-mediapanel-widget", options.out / "media-panel.png")


def still(options):
    with Window(options) as window:
        window.run_show()
        window.cue(4)
        window.click("Preview-PlaybackWidget-DurationEdit-Input-manual-duration-button")
        window.robot.ask(operation="focus", objectName="Preview-PlaybackWidget-DurationEdit-Time")
        for key in ("Enter", "1", "2", "Enter"):
            window.robot.ask(operation="key_press", keyName=key)
        window.click("Preview-PlaybackControls-Play")
        time.sleep(2)
        window.rest()
        window.shoot(options.out / "still.png")


def take(options):
    with Window(options) as window:
        window.run_show()
        window.type_into("TakeControls-Duration", "8")
        window.click("TakeControls-Take-Button")
        window.robot.find("TakeProgressBar")
        window.rest()
        time.sleep(3)
        window.shoot(options.out / "take.png")


def menu(options):
    with Window(options, **HUGE) as window:
        window.run_show()
        window.click("MainNavigationBar-mainmenu-button")
        time.sleep(1)
        window.shoot(options.out / "menu-huge-1280x720.png")


def shows(options):
    """Saved under a name, changed, in the list; and what an import that lacks media asks. The show stays."""
    with Window(options) as window:
        window.run_show()
        window.choose("SaveShowAs")
        window.robot.find("SaveShowAsDialog-input-0")
        window.keys("CtrlA", *"Gala evening")
        window.shoot(options.out / "save-show-as.png")
        window.keys("Enter")
        wait(lambda: window.robot.find("StatusBar-Show")["text"] == "Show: Gala evening", "the saved show")
        window.choose("ClearShow")
        window.robot.find("ClearShowDialog")
        time.sleep(0.5)
        window.click("ClearShowDialog-accept-button")
        wait(lambda: "not saved" in window.robot.find("StatusBar-Show")["text"], "the cleared show")
        window.choose("Shows")
        wait(lambda: window.cell("ShowsDialog-view", 0, 0), "the list of shows")
        time.sleep(0.5)
        window.shoot(options.out / "shows.png")
        window.click("ShowsDialog-accept-button")
        window.robot.find("LoadShowDialog")
        time.sleep(0.5)
        window.shoot(options.out / "load-show.png")
        window.click("LoadShowDialog-accept-button")
        window.robot.slot(0)
        window.choose("EarlierStates")
        wait(lambda: window.cell("EarlierStatesDialog-view", 1, 0), "the earlier states")
        time.sleep(0.5)
        window.shoot(options.out / "earlier-states.png")
    with Window(options, **HUGE) as window:
        window.choose("EarlierStates")
        wait(lambda: window.cell("EarlierStatesDialog-view", 1, 0), "the earlier states")
        time.sleep(0.5)
        window.shoot(options.out / "earlier-states-huge-1280x720.png")


def inspector(options):
    with Window(options, text="large", size=(1280, 720)) as window:
        window.run_show()
        window.robot.ask(operation="key_press", keyName="F11")
        window.robot.find("InspectorWidget")
        window.robot.mouse("move_to", window.robot.find("Program-PlaybackControls-Play"))
        window.rest()
        window.shoot_widget("InspectorWidget", options.out / "inspector.png")
        window.robot.ask(operation="raise", objectName="MainWindow")
        window.robot.ask(operation="key_press", keyName="F10")
        window.robot.find("NotificationInspector")
        window.shoot_widget("NotificationInspector", options.out / "inspector-notifications.png")


def gallery(options):
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, XDG_CONFIG_HOME=home, QT_QPA_PLATFORM="offscreen")
        whole = pathlib.Path(home, "gallery.png")
        subprocess.run([options.bin, "--gallery", "--screenshot", str(whole), "--seconds", "1"],
                       env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        subprocess.run(
            ["ffmpeg", "-v", "error", "-nostdin", "-y", "-i", str(whole), "-vf", "scale=iw/2:-1:flags=lanczos",
             "-pix_fmt", "rgb24", "-pred", "mixed", "-compression_level", "100", str(options.out / "gallery.png")],
            check=True)


class Neighbours:
    """Servers that are found and do nothing else, on addresses of the loopback interface."""

    GROUP = "239.255.110.60"

    def __init__(self, peers):
        self.ear = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.ear.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.ear.bind((self.GROUP, 11062))
        self.ear.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
                            socket.inet_aton(self.GROUP) + socket.inet_aton("127.0.0.1"))
        self.mouths = []
        for number, peer in enumerate(peers):
            mouth = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
            mouth.bind((f"127.0.0.{number + 2}", 0))
            self.mouths.append((mouth, json.dumps({"peer": {"id": str(number), **peer}}).encode()))
        threading.Thread(target=self.answer, daemon=True).start()

    def answer(self):
        while True:
            asker = self.ear.recvfrom(1400)[1]
            for mouth, text in self.mouths:
                mouth.sendto(text, asker)


def connect(options, name, **how):
    ports = options.server[options.server.index("--connect") + 2:]
    link = ports[ports.index("--link-port") + 1]
    Neighbours([{"name": "foyer", "version": "0.1.0", "link": link, "program": "Walk-in loop", "state": "play"},
                {"name": "rehearsal", "version": "0.1.0", "link": link},
                {"name": "stage-left", "version": "0.1.0", "link": link, "program": "Opening", "state": "pause"}])
    with Window(options, server=ports, **how) as window:
        wait(lambda: window.cell("ConnectDialog-servers-view", 2, 0), "the servers")
        window.robot.mouse("click", window.cell("ConnectDialog-servers-view", 1, 0))
        window.rest()
        window.shoot(options.out / f"{name}.png")


def keyboard(options, name, **how):
    with Window(options, connect=False, **how) as window:
        window.click("ConnectDialog-cancel-button")
        window.robot.ask(operation="key_press", keyName="F1")
        window.robot.find("KeyboardDialog")
        window.click("KeyboardDialog-set_inpoint-key")
        window.robot.ask(operation="key_press", keyName="M")
        window.robot.find("KeyboardDialog-notice-swap-button")
        time.sleep(1)
        window.shoot(options.out / f"{name}.png")


def waiting(options, row, name):
    """What cannot be played, and what is sound alone, on preview."""
    with Window(options) as window:
        window.run_show()
        window.cue(row)
        time.sleep(2)
        window.rest()
        window.shoot(options.out / f"{name}.png")


def questions(options):
    """What is asked before program would go dark."""
    with Window(options) as window:
        window.run_show()
        for entry, dialog, name in (("DisconnectFromServer", "DisconnectDialog", "disconnect"),
                                    ("DeviceReboot", "RebootDialog", "reboot"),
                                    ("ClearShow", "ClearShowDialog", "clear")):
            window.choose(entry)
            window.robot.find(dialog)
            window.rest()
            window.shoot(options.out / f"{name}.png")
            window.robot.ask(operation="key_press", keyName="Escape")


def countdown(options):
    """Program's last seconds: amber, red, and its last picture that holds; muted and unlocked."""
    with Window(options) as window:
        window.click("TakeControls-DirectCut-Button")
        window.cue(2)
        window.click("TakeControls-Take-Button")
        left = "Program-PlaybackWidget-PlaybackTimecodes-Remaining"
        for seconds, name in (("00:00:08", "time-left-amber"), ("00:00:04", "time-left-red")):
            wait(lambda: "00:00:00" < window.robot.find(left)["text"] < seconds, "the last seconds")
            window.shoot(options.out / f"{name}.png")
        window.click("Program-PlaybackWidget-Header-Mute")
        window.click("Program-PlaybackWidget-Header-Lock")
        window.robot.find("Program-PlaybackWidget-PlaybackTimecodes-Ended")
        window.rest()
        window.shoot(options.out / "ended-muted-unlocked.png")
        window.click("Program-PlaybackWidget-Header-Mute")


def held(options):
    """What is on air while its slot is cleared, and put back."""
    with Window(options) as window:
        window.run_show()
        slot = json.load(rest(options, "GET"))["collections"]["1"]["slots"]["1"]
        rest(options, "PATCH", [{"op": "remove", "path": "/collections/1/slots/1"}])
        name = "Program-PlaybackWidget-Header-MediaName"
        wait(lambda: "No longer" in window.robot.find(name)["text"], "the word on what is on air")
        window.shoot(options.out / "no-longer-in-the-library.png")
        rest(options, "PATCH", [{"op": "add", "path": "/collections/1/slots/1", "value": slot}])


def rest(options, method, body=None):
    port = options.server[options.server.index("--http-port") + 1]
    request = urllib.request.Request(f"http://127.0.0.1:{port}/api/brume/v1/medialibrary", method=method,
                                     data=json.dumps(body).encode() if body else None,
                                     headers={"Content-Type": "application/json"})
    return urllib.request.urlopen(request, timeout=10)


class Unwell(http.server.BaseHTTPRequestHandler):
    """The server's web side as it must not be: it says nothing, or that it cannot."""
    status = None

    def do_GET(self):
        if not self.status:
            time.sleep(60)
            return
        self.send_response(self.status)
        self.send_header("Content-Length", "0")
        self.end_headers()

    def log_message(self, *_):
        pass


def library(options, name, status):
    """The link stands and the library does not come."""
    Unwell.status = status
    web = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Unwell)
    web.daemon_threads = True
    threading.Thread(target=web.serve_forever, daemon=True).start()
    server = list(options.server)
    server[server.index("--http-port") + 1] = str(web.server_port)
    with Window(options, server=server) as window:
        window.robot.find("MediaPanel-slots-view")
        time.sleep(6)
        window.shoot(options.out / f"{name}.png")
    web.shutdown()


class Relay:
    """A port before one of the server's, over which nothing comes any more once it is held."""

    def __init__(self, port):
        self.port, self.held = port, threading.Event()
        self.listener = socket.create_server(("127.0.0.1", 0))
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            near = self.listener.accept()[0]
            far = socket.create_connection(("127.0.0.1", self.port))
            for source, target in ((near, far), (far, near)):
                threading.Thread(target=self.copy, args=(source, target), daemon=True).start()

    def copy(self, source, target):
        with source, target:
            while piece := source.recv(65536):
                while self.held.is_set():
                    time.sleep(0.1)
                target.sendall(piece)


def half(options, port, text, name):
    """One of the server's ports says nothing any more, the others do."""
    server = list(options.server)
    at = server.index(port) + 1
    relay = Relay(int(server[at]))
    server[at] = str(relay.listener.getsockname()[1])
    with Window(options, server=server) as window:
        window.run_show()
        relay.held.set()
        wait(lambda: text in window.robot.find("MainNavigationBar-link-banner")["text"], "the silence")
        time.sleep(4)
        window.shoot(options.out / f"{name}.png")


def repeat(options):
    """What repeats says so beside its name."""
    with Window(options) as window:
        window.run_show()
        window.click("Preview-PlaybackWidget-Footer-EndAction-repeat-button")
        window.rest()
        window.shoot(options.out / "repeat.png")
        window.click("Preview-PlaybackWidget-Footer-EndAction-pause-button")
        time.sleep(1)


def rename(options):
    """A name being edited in the panel."""
    with Window(options, scale=2) as window:
        window.run_show()
        window.robot.mouse("click", window.robot.slot(1))
        window.keys("F2")
        time.sleep(0.5)
        window.shoot_widget("PlayerTab-mediapanel-widget", options.out / "rename.png")
        window.keys("Escape")


def notice(options):
    """The media folder goes, and comes back."""
    away = options.media.with_name("away")
    with Window(options) as window:
        window.run_show()
        options.media.rename(away)
        try:
            time.sleep(3)
            window.shoot(options.out / "media-folder-gone.png")
        finally:
            away.rename(options.media)
        time.sleep(3)


def full_disk(options):
    """The server's disk is full: an edit is refused, and the show plays on."""
    state = options.media.with_name("full")
    state.mkdir(exist_ok=True)
    with SmallDisk(options, state) as disk, Window(options, server=disk.server) as window:
        window.run_show()
        disk.fill()
        try:  # there is room in the journal's last page still
            for name in ("Opening", "02 Opening") * 50:
                rest(disk, "PATCH", [{"op": "replace", "path": "/collections/1/slots/2/name", "value": name}])
        except urllib.error.HTTPError:
            disk.fill()
        window.robot.mouse("click", window.robot.slot(1))
        window.keys("F2", "CtrlA", *"Doors open", "Enter")
        wait(lambda: "Not done" in window.robot.find("NotificationPresenter-title")["text"], "the refusal")
        window.click("NotificationPresenter-details-button")
        time.sleep(1)
        window.shoot(options.out / "disk-full.png")


def damaged(options):
    """The server was started on a show that its disk has spoilt."""
    state = options.media.with_name("spoilt")
    state.mkdir(exist_ok=True)
    for _ in range(2):  # so that there is a generation before
        with Server(options, state):
            pass
    newest = max(state.glob("show*.json"), key=lambda file: file.stat().st_mtime)
    newest.write_bytes(newest.read_bytes().replace(b"Walk-in", b"Walk-on"))
    with Server(options, state) as server, Window(options, server=server.server) as window:
        window.run_show()
        window.click("NotificationPresenter-details-button")
        time.sleep(1)
        window.shoot(options.out / "show-damaged.png")


def drop(options):
    """A slot held over program, by the hand of the screen itself: the robot's own drags drop nothing."""
    with Window(options) as window, Pointer(window.display) as pointer:
        window.run_show()
        pointer.drag(window.robot.slot(1), window.robot.find("Program-PlaybackWidget-PreviewWidget"))
        time.sleep(0.5)
        window.shoot(options.out / "drop-on-program.png")
        pointer.drop(window.robot.find("StatusBar"))


def silent(options):
    """A server that hangs, at both sizes."""
    with Window(options) as window, Window(options, **HUGE) as small:
        window.run_show()
        os.kill(options.ombra, signal.SIGSTOP)
        try:
            for each, name in ((window, "silent"), (small, "silent-huge-1280x720")):
                wait(lambda: each.robot.find("MainNavigationBar-link-banner")["text"] >= "No answer for 3", "the silence")
                each.shoot(options.out / f"{name}.png")
        finally:
            os.kill(options.ombra, signal.SIGCONT)


def files(options, name, **how):
    """The FILES tab at work, half a gigabyte on its way up while program plays; the limit keeps it there."""
    shows = options.media.parent / "Shows"
    for folder, names in {"Act 1": ("Overture.mov", "Storm.mov"), "Act 2": ("Night.mov",), "Rehearsal": ()}.items():
        (shows / folder).mkdir(parents=True, exist_ok=True)
        for file in names:
            fill(shows / folder / file, 60_000_000)
    for file, size in {"Applause.wav": 9_400_000, "Curtain.mov": 212_000_000, "Doors open.mp4": 31_000_000,
                       "Sponsor plate.png": 812_000}.items():
        fill(shows / file, size)
    for sent in ("Act 1", "Act 2"):
        shutil.rmtree(options.media / sent, ignore_errors=True)
    (options.media / "Sponsor plate.png").unlink(missing_ok=True)
    with Window(options, **how) as window:
        window.run_show()
        window.click("MainNavigationBar-files-button")
        window.click("local-files-list")
        window.keys("Ctrl+L", *str(shows), "Enter")
        wait(lambda: window.robot.find("local-files-row0")["text"] == "Act 1", "the folder")
        window.click("transfers-limit-button")
        window.click("transfers-limit-20")
        window.click("local-files-list")
        window.keys("End", "Ctrl+Right")
        wait(lambda: ": Done" in window.robot.find("transfers-row0")["text"], "the small file")
        window.keys("Home", "Shift+Down", "Ctrl+Right")
        time.sleep(4)
        window.rest()
        window.shoot(options.out / f"{name}.png")
        window.click("transfers-stop-button")
        time.sleep(1)


def slots(options):
    """A file from the FILES tab over the PLAYER tab's button onto a slot, and on its way there, a folder behind it."""
    shows = options.media.parent / "Arriving"
    shows.mkdir(exist_ok=True)
    fill(shows / "Sponsor film.mp4", 6_000_000_000)
    (shows / "Act 4").mkdir()
    fill(shows / "Act 4" / "Finale.mp4", 1_000_000_000)
    with Window(options) as window, Pointer(window.display) as pointer:
        window.click("MainNavigationBar-files-button")
        window.click("local-files-list")
        window.keys("Ctrl+L", *str(shows), "Enter")
        wait(lambda: window.robot.find("local-files-row1")["text"] == "Sponsor film.mp4", "the file")
        window.click("transfers-limit-button")
        window.click("transfers-limit-20")
        row, tab = window.robot.find("local-files-row1"), window.robot.find("MainNavigationBar-player-button")
        pointer.drag(row, tab)
        time.sleep(1)
        slot = window.robot.slot(1)
        pointer.move(slot["global_x"], slot["global_y"] - 4)
        pointer.move(slot["global_x"], slot["global_y"])
        time.sleep(0.5)
        window.shoot(options.out / "drop-on-slots.png")
        pointer.press(False)
        window.click("MainNavigationBar-files-button")
        pointer.drag(window.robot.find("local-files-row0"), tab)
        time.sleep(1)
        pointer.move(slot["global_x"], slot["global_y"] - 4)
        pointer.move(slot["global_x"], slot["global_y"])
        pointer.press(False)
        window.robot.find("MediaPanel-pending-text")
        time.sleep(1)
        window.rest()
        window.shoot(options.out / "arriving.png")
        window.click("MainNavigationBar-files-button")
        window.click("transfers-stop-button")
        time.sleep(1)
        window.keys("Ctrl+Z")


def pictures(options, name, **how):
    """A folder of sequences and stills that was dropped from the FILES tab, while a show runs."""
    act = options.media.parent / "Pictures" / "Act 3"
    act.mkdir(parents=True, exist_ok=True)
    frame = next(options.media.glob("*.png"))
    for start, frames in {"sky_v012.": range(1001, 1049), "rain.": [n for n in range(1, 25) if n not in (7, 8)]}.items():
        for number in frames:
            shutil.copy(frame, act / f"{start}{number:04}.png")
    for plate in ("Sponsor plate.png", "House rules.png", "Curtain.jpg"):
        shutil.copy(frame, act / plate)
    with Window(options, **how) as window, Pointer(window.display) as pointer:
        window.run_show()
        window.click("MainNavigationBar-files-button")
        window.click("local-files-list")
        window.keys("Ctrl+L", *str(act.parent), "Enter")
        wait(lambda: window.robot.find("local-files-row0")["text"] == "Act 3", "the folder")
        pointer.drag(window.robot.find("local-files-row0"), window.robot.find("MainNavigationBar-player-button"))
        time.sleep(1)
        slot = window.robot.slot(2)
        pointer.move(slot["global_x"], slot["global_y"] - 4)
        pointer.move(slot["global_x"], slot["global_y"])
        pointer.press(False)
        window.robot.find("DropDialog-sequences-row1")
        window.robot.ask(operation="raise", objectName="DropDialog")  # nobody else gives it the keyboard here
        window.click("DropDialog-rate-field-input")
        window.keys("CtrlA", "2", "5")
        window.rest()
        window.shoot(options.out / f"{name}.png")
        window.keys("Escape")
    shutil.rmtree(options.media / "Act 3")


def media_tab(options, name, **how):
    """The MEDIA tab: what is on the channels, a slot that cannot be played and why."""
    with Window(options, **how) as window:
        window.run_show()
        window.click("MainNavigationBar-media-button")
        window.robot.find("media-slot1")
        window.click("media-slot1" if how else "media-slot7")
        time.sleep(2)
        window.robot.mouse("move_to", window.robot.find("media-collections-panel"))
        time.sleep(0.7)
        window.shoot(options.out / f"{name}.png")


def beside(options):
    """Two collections, slots on their way from the one to the other, and a collection on its way up the list."""
    with Window(options) as window, Pointer(window.display) as pointer:
        window.click("MainNavigationBar-media-button")
        window.robot.find("media-slot4")
        for number, title in enumerate(("act one", "act two", "encore"), 1):
            window.click("MediaView-add-collection-button")
            window.robot.find("MediaView-new-collection-input-0")
            window.robot.ask(operation="raise", objectName="MediaView-new-collection")
            window.click("MediaView-new-collection-input-0")
            window.keys("CtrlA", *title)
            window.click("MediaView-new-collection-accept-button")
            wait(lambda number=number, title=title: any(item["text"] == title for item in window.robot.ask(
                objectName=f"media-collection-row{number}", maxResults=1)), title)
        window.click("media-collection-row0")
        window.click("media-slots-beside-button")
        window.robot.find("media-slots2")
        window.click("media-slot2")
        window.robot.ask(operation="focus", objectName="media-slots-grid")
        window.keys("Shift+Right", "Shift+Right")
        pointer.drag(window.robot.find("media-slot2"), window.robot.find("media-slots2"))
        time.sleep(0.5)
        window.shoot(options.out / "media-beside.png")
        pointer.press(False)
        window.robot.find("media-slots2-slot3")
        pointer.drag(window.robot.find("media-collection-row3"), window.robot.find("media-collection-row1"))
        time.sleep(0.5)
        window.shoot(options.out / "media-order.png")
        window.keys("Escape")
        pointer.press(False)
        window.click("media-slots2-close-button")
        for _ in range(4):
            window.keys("CtrlZ")
            time.sleep(0.3)


def fill(path, size):
    with open(path, "wb") as file:
        file.truncate(size)


def outputs(options, name, **how):
    """The OUTPUTS tab, a medium of another shape on program."""
    with Window(options, **how) as window:
        window.run_show()
        window.click("MainNavigationBar-outputs-button")
        window.robot.find("Mapping-output2-picture")
        time.sleep(1)
        window.rest()
        window.shoot(options.out / f"{name}.png")


def scaling(options):
    """What another scaling would do, before it is chosen."""
    with Window(options) as window:
        window.run_show()
        window.click("MainNavigationBar-outputs-button")
        window.robot.mouse("move_to", window.robot.find("Mapping-output2-scaling-bottomRight"))
        time.sleep(1)
        window.shoot(options.out / "outputs-scaling.png")


def modes(options):
    """The mode of an output, with what its display says; then the question whether a mode on air stays."""
    with Window(options) as window:
        window.run_show()
        window.click("MainNavigationBar-outputs-button")
        window.robot.find("editButton")
        pencils = window.robot.ask(objectName="editButton", maxResults=2)  # one of each output
        window.robot.mouse("click", max(pencils, key=lambda item: item["global_y"]))
        window.click("VideoOutput-2-ModelineDialog-mode-manual")
        window.rest()
        window.shoot(options.out / "outputs-mode.png")
        window.robot.ask(operation="focus", objectName="VideoOutput-2-ModelineDialog-format")
        while window.robot.find("VideoOutput-2-ModelineDialog-format")["text"] != "3840 x 2160p 50 Hz":
            window.keys("Down")
        window.click("VideoOutput-2-ModelineDialog-apply-button")
        window.robot.find("KeepModeDialog")
        time.sleep(3)
        window.shoot(options.out / "outputs-keep.png")
        window.click("KeepModeDialog-cancel-button")
        window.keys("Escape")


def refused(options):
    with Window(options) as window:
        window.robot.find("ConnectDialog-text")
        window.robot.ask(operation="raise", objectName="ConnectDialog")  # above the window, which was raised
        time.sleep(1)
        window.shoot(options.out / "refused.png")


def reconnect(options):
    """At both sizes, since a server dies but once."""
    with Window(options) as window, Window(options, **HUGE) as small:
        window.run_show()
        os.kill(options.ombra, signal.SIGKILL)
        for each, name in ((window, "reconnect"), (small, "reconnect-huge-1280x720")):
            each.robot.find("ReconnectDialog")
            time.sleep(1)
            each.shoot(options.out / f"{name}.png")
        window.click("StatusBar-area")
        window.robot.find("ConnectDialog-input-AddressBar")
        for key in ["CtrlA", *"stage-rigth.invalid", "Enter"]:
            window.robot.ask(operation="key_press", keyName=key)
        wait(lambda: "server before" in window.robot.find("ConnectDialog-text")["text"], "the failure")
        window.shoot(options.out / "wrong-host.png")


SCREENS = {
    "player-small": lambda options: player(options, "player-small", text="small"),
    "player-medium": lambda options: player(options, "player-medium"),
    "player-large": lambda options: player(options, "player-large", text="large"),
    "player-huge": lambda options: player(options, "player-huge", text="huge"),
    "player-medium-1280x720": lambda options: player(options, "player-medium-1280x720", size=(1280, 720)),
    "player-huge-1280x720": lambda options: player(options, "player-huge-1280x720", **HUGE),
    "player-scale-200": lambda options: player(options, "player-scale-200", size=(960, 540), scale=2),
    "media-panel": media_panel,
    "still": still,
    "take": take,
    "menu-huge-1280x720": menu,
    "inspector": inspector,
    "gallery": gallery,
    "connect": lambda options: connect(options, "connect"),
    "connect-huge-1280x720": lambda options: connect(options, "connect-huge-1280x720", **HUGE),
    "keyboard": lambda options: keyboard(options, "keyboard"),
    "keyboard-huge-1280x720": lambda options: keyboard(options, "keyboard-huge-1280x720", **HUGE),
    "cue-list-small": lambda options: cue_list(options, "cue-list-small", text="small"),
    "cue-list-medium": lambda options: cue_list(options, "cue-list-medium"),
    "cue-list-large": lambda options: cue_list(options, "cue-list-large", text="large"),
    "cue-list-huge": lambda options: cue_list(options, "cue-list-huge", text="huge"),
    "cue-list-medium-1280x720": lambda options: cue_list(options, "cue-list-medium-1280x720", size=(1280, 720)),
    "sound-alone": lambda options: waiting(options, 5, "sound-alone"),
    "unplayable": lambda options: waiting(options, 6, "unplayable"),
    "disconnect": questions,
    "shows": shows,
    "time-left-amber": countdown,
    "no-longer-in-the-library": held,
    "library-loading": lambda options: library(options, "library-loading", None),
    "library-not-read": lambda options: library(options, "library-not-read", 500),
    "picture-old": lambda options: half(options, "--preview-port", "", "picture-old"),
    "players-silent": lambda options: half(options, "--link-port", "Its library answers", "players-silent"),
    "repeat": repeat,
    "rename": rename,
    "media-folder-gone": notice,
    "disk-full": full_disk,
    "show-damaged": damaged,
    "drop-on-program": drop,
    "drop-on-slots": slots,
    "drop-dialog": lambda options: pictures(options, "drop-dialog"),
    "drop-dialog-huge-1280x720": lambda options: pictures(options, "drop-dialog-huge-1280x720", **HUGE),
    "media-tab": lambda options: media_tab(options, "media-tab"),
    "media-tab-huge-1280x720": lambda options: media_tab(options, "media-tab-huge-1280x720", **HUGE),
    "media-beside": beside,
    "files": lambda options: files(options, "files"),
    "files-huge-1280x720": lambda options: files(options, "files-huge-1280x720", **HUGE),
    "outputs": lambda options: outputs(options, "outputs"),
    "outputs-medium-1280x720": lambda options: outputs(options, "outputs-medium-1280x720", size=(1280, 720)),
    "outputs-huge-1280x720": lambda options: outputs(options, "outputs-huge-1280x720", **HUGE),
    "outputs-scaling": scaling,
    "outputs-mode": modes,
    "silent": silent,
    "reconnect": reconnect,  # ends the server: what follows finds none
    "refused": refused,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", required=True, help="the application")
    parser.add_argument("--out", required=True, type=pathlib.Path, help="folder of the pictures")
    parser.add_argument("--ombra", required=True, type=int, help="process id of the server")
    parser.add_argument("--media", required=True, type=pathlib.Path, help="media folder of the server")
    parser.add_argument("--only", choices=SCREENS, action="append", help="one picture; may be given again")
    parser.add_argument("server", nargs="+", help="arguments that connect the application to the server")
    options = parser.parse_args()
    options.out.mkdir(parents=True, exist_ok=True)
    for name, shoot in SCREENS.items():
        if not options.only or name in options.only:
            print(f"==> {name}", file=sys.stderr)
            shoot(options)


main()
