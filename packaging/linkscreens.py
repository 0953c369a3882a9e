"""Pictures of how a server is found, and of what is wrong with one."""
import contextlib
import http.server
import json
import os
import signal
import socket
import threading
import time
import urllib.error

from screenserver import OnScreen, ReadOnlyDisk, Server, SmallDisk
from screenwindow import HUGE, Window, rest, wait


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
        self.port, self.held, self.near = port, threading.Event(), []
        self.listener = socket.create_server(("127.0.0.1", 0))
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            near = self.listener.accept()[0]
            self.near.append(near)
            if self.held.is_set():
                threading.Thread(target=self.mumble, args=(near,), daemon=True).start()
                continue
            far = socket.create_connection(("127.0.0.1", self.port))
            for source, target in ((near, far), (far, near)):
                threading.Thread(target=self.copy, args=(source, target), daemon=True).start()

    def mumble(self, near):
        """On a link: that somebody is there, and nothing of the scene."""
        with near, contextlib.suppress(OSError):
            while True:
                near.sendall(b"\0\0\0\2[]")
                time.sleep(0.2)

    def lose(self):
        """Ends the connections there are; those that come hear no more than that."""
        self.held.set()
        for near in self.near:
            near.shutdown(socket.SHUT_RDWR)

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


def reading(options):
    """The link is there again, the scene is not yet."""
    server = list(options.server)
    at = server.index("--link-port") + 1
    relay = Relay(int(server[at]))
    server[at] = str(relay.listener.getsockname()[1])
    with Window(options, server=server) as window:
        window.run_show()
        relay.lose()
        banner = "MainNavigationBar-link-banner"
        wait(lambda: window.robot.find(banner)["text"].startswith("Connected again"), "the link")
        time.sleep(1)
        window.shoot(options.out / "connected-again.png")


def no_picture(options):
    """Nobody listens where the pictures should come from."""
    with socket.create_server(("127.0.0.1", 0)) as listener:
        port = listener.getsockname()[1]
    server = list(options.server)
    server[server.index("--preview-port") + 1] = str(port)
    with Window(options, server=server) as window:
        window.run_show()
        window.shoot(options.out / "no-picture.png")


def choose_in_vain(window, host):
    """Another server is chosen, and cannot be had."""
    window.click("StatusBar-area")
    window.robot.find("ConnectDialog-input-AddressBar")
    for key in ["CtrlA", *host, "Enter"]:
        window.robot.ask(operation="key_press", keyName=key)
    wait(lambda: "server before" in window.robot.find("ConnectDialog-text")["text"], "the failure")


def switch(options):
    """Another server was chosen that does not answer, and how the one before is come back to."""
    with Window(options) as window:
        window.run_show()
        choose_in_vain(window, "127.0.0.9")
        window.shoot(options.out / "switch-refused.png")


def file_gone(options):
    """What is on air plays on although its own file has gone."""
    file = options.media / "01 Walk-in loop.mp4"
    away = options.media.with_name(file.name)
    with Window(options) as window:
        window.run_show()
        file.rename(away)
        try:
            time.sleep(4)
            window.shoot(options.out / "file-gone.png")
        finally:
            away.rename(file)
        time.sleep(3)


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


def read_only(options):
    """The server was started on a disk that it may not write to."""
    state = options.media.with_name("locked")
    state.mkdir(exist_ok=True)
    with Server(options, state):
        pass
    with ReadOnlyDisk(options, state) as server, Window(options, server=server.server) as window:
        window.run_show()
        window.click("NotificationPresenter-details-button")
        time.sleep(1)
        window.shoot(options.out / "server-read-only.png")


def on_screen(options):
    """An output that shows which one it is on its screen: there, and in the window."""
    state = options.media.with_name("on-screen")
    state.mkdir(exist_ok=True)
    with OnScreen(options, state) as server, Window(options, server=server.server) as window:
        window.click("MainNavigationBar-outputs-button")
        time.sleep(65)  # what was lost while all started is forgotten after a minute
        window.click("VideoOutput-2-identify")
        time.sleep(2)
        window.rest()
        window.shoot(options.out / "outputs-identify.png")
        server.shoot(options.out / "test-card.png")


def program_waits(options):
    """The server was started again, and what was on program is missing."""
    state = options.media.with_name("kept")
    state.mkdir(exist_ok=True)
    with Server(options, state) as server, Window(options, server=server.server) as window:
        window.run_show()
    file = options.media / "01 Walk-in loop.mp4"
    away = options.media.with_name(file.name)
    file.rename(away)
    try:
        with Server(options, state) as server, Window(options, server=server.server) as window:
            wait(lambda: window.robot.find("Program-PlaybackWidget-Header-MediaLocation")["text"] == "1-1:", "program")
            time.sleep(3)
            window.shoot(options.out / "program-waits.png")
    finally:
        away.rename(file)


def overtaken(options):
    """An edit is taken back whose place somebody else has changed meanwhile."""
    def name():
        return json.load(rest(options, "GET"))["collections"]["1"]["slots"]["2"]["name"]

    place, before = "/collections/1/slots/2/name", name()
    with Window(options) as window:
        window.run_show()
        window.robot.mouse("click", window.robot.slot(1))
        window.keys("F2", "CtrlA", *"Doors open", "Enter")
        wait(lambda: name() == "Doors open", "the name")
        rest(options, "PATCH", [{"op": "replace", "path": place, "value": "Doors"}])
        time.sleep(1)
        window.keys("CtrlZ")
        wait(lambda: "Not done" in window.robot.find("NotificationPresenter-title")["text"], "the refusal")
        window.click("NotificationPresenter-details-button")
        time.sleep(1)
        window.shoot(options.out / "edit-overtaken.png")
        rest(options, "PATCH", [{"op": "replace", "path": place, "value": before}])


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
        choose_in_vain(window, "stage-rigth.invalid")
        window.shoot(options.out / "wrong-host.png")
