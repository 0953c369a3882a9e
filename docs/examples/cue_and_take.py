#!/usr/bin/env python3
"""Cues the first playable slot on preview, takes it to program by a cut, and prints what is on program.

usage: cue_and_take.py [HOST [LINK-PORT [HTTP-PORT]]]
"""
import json
import socket
import struct
import sys
import time
import urllib.request

CHANNEL = "/device/channels/0"
PATIENCE = 10  # seconds


class Link:
    """The scene of a server: properties by path, kept up to date by what the server sends."""

    def __init__(self, host, port):
        self.socket = socket.create_connection((host, port), timeout=PATIENCE)
        self.stream = self.socket.makefile("rb")
        self.properties = {}
        self.send(op="get", path="")

    def send(self, **operation):
        text = json.dumps([operation]).encode()
        self.socket.sendall(struct.pack(">I", len(text)) + text)

    def receive(self):
        """Reads one frame; the server sends one at least every 250 ms."""
        header = self.stream.read(4)
        if len(header) < 4:
            sys.exit("the server has ended the link")
        for operation in json.loads(self.stream.read(struct.unpack(">I", header)[0])):
            if operation["op"] in ("add", "replace"):
                self.keep(operation["path"], operation["value"])

    def keep(self, path, value):
        if isinstance(value, dict):
            for name, child in value.items():
                self.keep(f"{path}/{name}", child)
        elif isinstance(value, list):
            for index, child in enumerate(value):
                self.keep(f"{path}/{index}", child)
        else:
            self.properties[path] = value

    def get(self, side, name):
        return self.properties.get(f"{CHANNEL}/{side}/properties/{name}")

    def wait(self, what, condition):
        until = time.monotonic() + PATIENCE
        while not condition():
            if time.monotonic() > until:
                sys.exit(f"the server did not {what} within {PATIENCE} seconds")
            self.receive()


def first_slot(host, port):
    with urllib.request.urlopen(f"http://{host}:{port}/api/brume/v1/medialibrary", timeout=PATIENCE) as reply:
        library = json.load(reply)
    for collection, content in library["collections"].items():
        for number, slot in content["slots"].items():
            if slot["isPlayable"]:
                return f"brume://collections/{collection}/slots/{number}", slot["name"]
    sys.exit("the library has no slot that can be played")


def main(host="127.0.0.1", link_port=11060, http_port=80):
    url, name = first_slot(host, int(http_port))
    link = Link(host, int(link_port))
    link.wait("send its scene", lambda: link.get("preview", "media") is not None)
    link.send(op="invoke", path=f"{CHANNEL}/preview/methods/playMedia", value={"mediaUrl": url})
    link.wait(f"cue {url} on preview", lambda: link.get("preview", "media") == url)
    link.send(op="invoke", path=f"{CHANNEL}/methods/take", value={"transitionType": "directCut"})
    link.wait(f"take {url} to program",
              lambda: link.get("program", "media") == url and link.get("program", "state") == "play")
    print(f"on program: {url} ({name})")


if __name__ == "__main__":
    try:
        main(*sys.argv[1:4])
    except (OSError, ValueError) as error:
        sys.exit(f"the server cannot be used: {error}")
