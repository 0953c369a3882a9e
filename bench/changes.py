#!/usr/bin/env python3
"""Plays a list of short clips, one after the other, on program's screen, clips and screen both of 60 pictures a second,
and counts the pictures that were never seen there and those that stood for longer than their time.

usage: changes.py [CHANGES]

Each picture carries its number as light and dark fields, which are read off the screen all the time.
"""
import json
import pathlib
import subprocess
import sys
import tempfile
import time
import urllib.request

from stage import PROGRAM, Link, Screen, number_on, numbered, start_ombra, stop

RATE = 60
PICTURES = 15  # of a clip
CLIPS = 40
BITS, FIELD = 10, 32
COUNT = CLIPS * PICTURES


def make_media(folder):
    folder.mkdir()
    for clip in range(CLIPS):
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                        f"testsrc2=s=640x360:r={RATE}:d=1,{numbered(BITS, FIELD, clip * PICTURES)}",
                        "-frames:v", str(PICTURES), "-c:v", "libx264", "-preset", "veryfast", folder / f"{clip:02}.mov"],
                       check=True)


def post_list(ports, changes):
    entries = {str(i + 1): {"slotUrl": f"brume://collections/1/slots/{i % CLIPS + 1}", "endAction": "next",
                            "transitionType": "directCut", "transitionDuration": 0} for i in range(changes + 1)}
    body = json.dumps([{"name": "Changes", "entries": entries}]).encode()
    request = urllib.request.Request(f"http://127.0.0.1:{ports['http']}/api/brume/v1/playlists", body,
                                     {"Content-Type": "application/json"})
    urllib.request.urlopen(request).read()


class Count:
    def __init__(self):
        self.last, self.since = None, 0.0
        self.due = self.missing = self.changes = 0
        self.long = []  # pictures that stood too long: how long, in pictures

    def see(self, seen, now):
        if seen == self.last:
            return
        if self.last is not None:
            step = (seen - self.last) % COUNT
            self.due += step
            self.missing += step - 1
            self.changes += self.last // PICTURES != seen // PICTURES
            stood = (now - self.since) * RATE
            if stood > 1.5:
                self.long.append((stood, self.last % PICTURES))
        self.last, self.since = seen, now


def main():
    changes = int(sys.argv[1]) if len(sys.argv) > 1 else 2000
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_media(folder / "media")
        screen = Screen(640, 360)
        server, ports = start_ombra(screen, folder, "--no-sound")
        try:
            post_list(ports, changes)
            time.sleep(3)
            link = Link(ports)
            link.replace(PROGRAM + "/properties/endAction", "next")
            link.invoke(PROGRAM + "/methods/playMedia", mediaUrl="brume://playlists/1/entries/1")
            time.sleep(0.1)
            count = Count()
            end = time.monotonic() + changes * PICTURES / RATE - 1
            while time.monotonic() < end:
                count.see(number_on(screen, BITS, FIELD), time.monotonic())
                time.sleep(0.001)
        finally:
            stop(server, screen.process)
    at_change = sum(1 for _, at in count.long if at == PICTURES - 1)
    print("| Changes | Pictures due | Never seen | Stood for more than one and a half | Of these last of a clip |")
    print("|---:|---:|---:|---:|---:|")
    print(f"| {count.changes} | {count.due} | {count.missing} | {len(count.long)} | {at_change} |")
    if count.long:
        print("longest:", ", ".join(f"{stood:.1f}" for stood, _ in sorted(count.long, reverse=True)[:10]), file=sys.stderr)


if __name__ == "__main__":
    main()
