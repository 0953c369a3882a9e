"""Drives a halcyra that was started with --ui-test, by object name, as an operator would."""
import json
import re
import socket
import sys
import time


def port_of(path):
    deadline = time.monotonic() + 30
    while time.monotonic() < deadline:
        match = re.search(r"ui-test ready port=(\d+)", open(path, encoding="utf-8").read())
        if match:
            return int(match.group(1))
        time.sleep(0.1)
    sys.exit("halcyra named no port for its UI test server")


class Robot:
    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), timeout=10)

    def ask(self, **request):
        self.send(request)
        return self.answer()

    def send(self, request):
        self.socket.sendall(json.dumps(request).encode())

    def answer(self):
        text = b""
        while True:
            text += self.socket.recv(1 << 20)
            try:
                return json.loads(text)
            except ValueError:
                continue

    def find(self, name, **more):
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            for item in self.ask(objectName=name, maxResults=1, **more):
                if item.get("visible"):
                    return item
            time.sleep(0.1)
        sys.exit(f"the window has no {name}")

    def mouse(self, operation, item):
        self.begin_mouse(operation, item)
        self.answer()

    def begin_mouse(self, operation, item):
        at = {key: item[key] for key in ("objectName", "global_x", "global_y", "local_x", "local_y")}
        self.send({"operation": operation, **at})

    def slot(self, row):
        deadline = time.monotonic() + 20
        cell = f"MediaPanel-slots-view-row{row}-col0"
        while time.monotonic() < deadline:
            for item in self.ask(objectName="MediaPanel-slots-view", maxResults=1):
                if item.get("objectName") == cell:
                    return item
            time.sleep(0.1)
        sys.exit(f"the media panel has no row {row}")
