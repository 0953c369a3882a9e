#!/usr/bin/env python3
"""Runs a show for a long time, as a restless operator would: takes, cuts, seeks, a list, mutes, in no order. Then tells
whether memory grew, and what was lost of pictures and sound; fails where it did.

usage: soak.py [MINUTES [OPTION OF OMBRA...]]
"""
import json
import pathlib
import random
import re
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.request

from stage import PREVIEW, PROGRAM, Screen, start_ombra, stop

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "docs/examples"))
from cue_and_take import Link  # noqa: E402

SIZE = (640, 360)  # the processor paints it
CLIPS = {"bars.mov": "smptehdbars", "numbers.mov": "testsrc2", "colours.mov": "rgbtestsrc"}
STILL = len(CLIPS) + 1  # its slot: "still.png" is the last by name
SAMPLE, SETTLE = 5, 60  # seconds between two looks at memory; until what is loaded once has been
GROWTH, NOISE = 20, 8  # MB an hour, and at least
SOUND = {"SDL_AUDIODRIVER": "dummy"}  # nobody hears it
OUTPUT = "/device/system/gpus/0/outputs/0/properties/"


def make_media(folder):
    folder.mkdir()
    source = "{}=s=%dx%d:r=30:d=20" % SIZE
    for name, pattern in CLIPS.items():
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", source.format(pattern), "-f", "lavfi", "-i",
                        "sine=440:d=20", "-pix_fmt", "yuv420p", "-c:v", "libx264", "-preset", "veryfast", "-c:a", "aac",
                        folder / name], check=True)
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", source.format("yuvtestsrc"), "-frames:v", "1",
                    folder / "still.png"], check=True)


def post_list(ports):
    entries = {str(i + 1): {"slotUrl": f"brume://collections/1/slots/{i % STILL + 1}", "endAction": "next",
                            "transitionType": "crossfade", "transitionDuration": 0.5} for i in range(20)}
    request = urllib.request.Request(f"http://127.0.0.1:{ports['http']}/api/brume/v1/playlists",
                                     json.dumps([{"name": "Soak", "entries": entries}]).encode(),
                                     {"Content-Type": "application/json"})
    urllib.request.urlopen(request).read()


def act(link, chance):
    """One thing that operators do."""
    side = chance.choice((PROGRAM, PREVIEW))
    kind = chance.choice(("play", "list", "seek", "seek", "take", "take", "take", "mute", "step"))
    invoke = lambda path, **value: link.send(op="invoke", path=path, value=value)  # noqa: E731
    if kind == "play":
        invoke(PREVIEW + "/methods/playMedia", mediaUrl=f"brume://collections/1/slots/{chance.randint(1, STILL)}")
    elif kind == "list":
        invoke(side + "/methods/playMedia", mediaUrl=f"brume://playlists/1/entries/{chance.randint(1, 20)}")
    elif kind == "seek":
        invoke(side + "/methods/seekMedia", mediaPosition=chance.uniform(0, 20))
    elif kind == "take":
        invoke("/device/channels/0/methods/take", transitionType=chance.choice(("directCut", "crossfade", "dipToColor")),
               transitionDuration=chance.choice((0.2, 1, 2)))
    elif kind == "mute":
        link.send(op="replace", path=PROGRAM + "/properties/muted", value=chance.random() < 0.3)
    else:
        invoke(PREVIEW + "/methods/step", frameCount=chance.randint(-5, 5))


def memory(server):
    """MB that the server has."""
    text = pathlib.Path(f"/proc/{server.pid}/status").read_text()
    return int(re.search(r"VmRSS:\s+(\d+)", text)[1]) / 1024


class Watch:
    """What is counted of the last minute, and memory."""

    def __init__(self, now):
        self.begin = self.minute = self.sampled = now
        self.dropped = self.late = 0
        self.samples = []

    def look(self, link, server, now):
        if now >= self.minute + 60:
            self.minute = now
            self.dropped += link.properties.get(OUTPUT + "droppedPictures", 0)
            self.late += link.properties.get(OUTPUT + "latePictures", 0)
        if now >= self.sampled + SAMPLE:
            self.sampled = now
            if now > self.begin + SETTLE:
                self.samples.append(((now - self.begin) / 3600, memory(server)))

    def growth(self):
        return statistics.linear_regression(*zip(*self.samples)).slope


def run(link, server, minutes):
    chance = random.Random(7)
    watch = Watch(time.monotonic())
    actions, next_action = 0, 0.0
    while (now := time.monotonic()) < watch.begin + SETTLE + minutes * 60:
        if server.poll() is not None:
            sys.exit(f"ombra has ended after {actions} actions")
        link.receive()
        if now >= next_action:
            act(link, chance)
            actions, next_action = actions + 1, now + chance.uniform(0.2, 3)
        watch.look(link, server, now)
    return watch, actions


def main():
    minutes = float(sys.argv[1]) if len(sys.argv) > 1 else 60
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_media(folder / "media")
        screen = Screen(*SIZE)
        log = folder / "log"
        server, ports = start_ombra(screen, folder, "--sound", "--log", log, *sys.argv[2:], **SOUND)
        try:
            post_list(ports)
            link = Link("127.0.0.1", int(ports["link"]))
            for side in (PROGRAM, PREVIEW):
                link.send(op="replace", path=side + "/properties/endAction", value="repeat")
            link.send(op="invoke", path=PROGRAM + "/methods/playMedia", value={"mediaUrl": "brume://collections/1/slots/1"})
            watch, actions = run(link, server, minutes)
        finally:
            stop(server, screen.process)
        told = log.read_text()
    if "sound goes to" not in told:
        sys.exit("no sound device was opened")
    gaps = sum(int(count) for count in re.findall(r"sound had (\d+) gaps", told))
    print("| Minutes | Actions | Memory | Growth | Dropped pictures | Late pictures | Gaps of sound |")
    print("|---:|---:|---:|---:|---:|---:|---:|")
    print(f"| {minutes:.0f} | {actions} | {watch.samples[-1][1]:.0f} MB | {watch.growth():+.1f} MB an hour | {watch.dropped} "
          f"| {watch.late} | {gaps} |")
    hours = minutes / 60
    if watch.growth() * hours > max(GROWTH * hours, NOISE) or watch.dropped or watch.late or gaps:
        sys.exit("something grew, or was lost")


if __name__ == "__main__":
    main()
