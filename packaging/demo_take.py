#!/usr/bin/env python3
"""Runs a tiny show through the UI test server: cues a slot, takes it, cues the next and takes again, slowly.

usage: demo_take.py FILE     FILE gets the standard output of halcyra, which names the server's port
"""
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
        self.socket.sendall(json.dumps(request).encode())
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
        at = {key: item[key] for key in ("global_x", "global_y", "local_x", "local_y")}
        self.ask(operation=operation, **at)

    def slot(self, row):
        deadline = time.monotonic() + 20
        cell = f"MediaPanel-slots-view-row{row}-col0"
        while time.monotonic() < deadline:
            for item in self.ask(objectName="MediaPanel-slots-view", maxResults=1):
                if item.get("objectName") == cell:
                    return item
            time.sleep(0.1)
        sys.exit(f"the media panel has no row {row}")


def main():
    robot = Robot(port_of(sys.argv[1]))
    robot.ask(operation="raise", objectName="MainWindow")  # without a window manager nobody else gives it the keys
    take = robot.find("TakeControls-Take-Button")
    robot.mouse("double_click", robot.slot(0))
    time.sleep(1)
    robot.mouse("click", robot.find("TakeControls-Swap-Button"))
    robot.mouse("click", take)
    time.sleep(2)
    robot.mouse("double_click", robot.slot(1))
    duration = robot.find("TakeControls-Duration")
    robot.mouse("double_click", duration)
    robot.ask(operation="key_press", keyName="CtrlA")
    for key in "8":
        robot.ask(operation="key_press", keyName=key)
    robot.ask(operation="key_press", keyName="Enter")
    time.sleep(1.5)
    robot.mouse("click", take)


main()
