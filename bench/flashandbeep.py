#!/usr/bin/env python3
"""Measures how far program's sound is from its picture: a medium that flashes and beeps once a second, on a virtual
screen whose pixels are watched and a sound device that is a pipe.

usage: flashandbeep.py [SECONDS [ERROR OF THE DEVICE'S CLOCK, MILLIONTHS [OPTION OF OMBRA...]]]

The medium flashes and beeps in the same moment. Below 0 its sound is early.
"""
import array
import fcntl
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import threading
import time

from stage import PROGRAM, Link, Screen, start_ombra, stop

CHANNELS, RATE = 8, 48000  # so many that what the driver's file holds back is little of a block
FRAME = 4 * CHANNELS
PATIENCE = 0.1  # seconds, with threads of a machine that has much to do


def make_medium(folder):
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                    "color=black:s=640x360:r=30:d=60,drawbox=enable='lt(mod(t,1),0.06)':c=white:t=fill", "-f", "lavfi",
                    "-i", "aevalsrc=0.8*sin(2*PI*1000*t)*lt(mod(t\\,1)\\,0.05):s=48000:d=60", "-c:v", "libx264",
                    "-preset", "ultrafast", "-g", "30", "-c:a", "pcm_s16le", folder / "flash.mov"], check=True)


def watch(screen, end, flashes):
    was_white = True
    while time.monotonic() < end:
        white = screen.pixels(320, 180, 1)[0] & 0xff > 128
        if white and not was_white:
            flashes.append(time.monotonic())
        was_white = white
        time.sleep(0.0005)


class Device:
    """A sound device: takes frames from the pipe by its own clock, however late its thread comes, and knows when each is
    heard. The pipe has room for what it is written at once, as a device has one block in hand."""

    def __init__(self, path, error):
        os.mkfifo(path)
        self.rate = RATE * (1 + error)
        self.pipe = os.open(path, os.O_RDWR | os.O_NONBLOCK)
        fcntl.fcntl(self.pipe, fcntl.F_SETPIPE_SZ, 16384)
        self.data = bytearray()
        self.starts = []  # (byte, moment): where it began to play, and began again after it had nothing

    def run(self, end):
        while time.monotonic() < end:
            at, moment = self.starts[-1] if self.starts else (0, time.monotonic())
            due = at + int((time.monotonic() - moment) * self.rate) * FRAME
            try:
                while len(self.data) < due or not self.starts:
                    part = os.read(self.pipe, max(FRAME, min(4096, due - len(self.data))))
                    if not self.starts:
                        self.starts.append((0, time.monotonic()))
                        due = 0
                    self.data += part
            except BlockingIOError:  # the writer comes in a moment, or has nothing
                if self.starts and due - len(self.data) > PATIENCE * self.rate * FRAME:
                    self.starts.append((len(self.data), time.monotonic()))
            time.sleep(0.001)

    def heard(self, frame):
        at, moment = [start for start in self.starts if start[0] <= frame * FRAME][-1]
        return moment + (frame - at / FRAME) / self.rate

    def beeps(self):
        """The moments at which one begins to be heard."""
        samples = array.array("f")
        samples.frombytes(self.data[:len(self.data) // FRAME * FRAME])
        moments, quiet = [], 0
        for frame, value in enumerate(samples[::CHANNELS]):
            if abs(value) > 0.05 and quiet > RATE / 4:
                moments.append(self.heard(frame))
            quiet = 0 if abs(value) > 0.05 else quiet + 1
        return moments


def tell(flashes, heard, error, gaps):
    pairs = [(flash, min((beep - flash for beep in heard), key=abs) * 1000) for flash in flashes if heard]
    pairs = [(flash, offset) for flash, offset in pairs if abs(offset) < 400]
    offsets = [offset for _, offset in pairs]
    if len(pairs) < 2:
        sys.exit(f"{len(flashes)} flashes and {len(heard)} beeps: nothing to compare")
    slope = statistics.linear_regression(*zip(*pairs)).slope
    print("| Device's clock | Flashes | Sound after picture, middle | Least | Most | Drift | Device ran dry |")
    print("|---:|---:|---:|---:|---:|---:|---:|")
    print(f"| {error:+.0f} ppm | {len(pairs)} | {statistics.median(offsets):+.1f} ms | {min(offsets):+.1f} ms "
          f"| {max(offsets):+.1f} ms | {slope * 60:+.2f} ms a minute | {gaps} times |")


def main():
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 60
    error = float(sys.argv[2]) if len(sys.argv) > 2 else 100
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "media").mkdir()
        make_medium(folder / "media")
        device = Device(folder / "pipe", error / 1e6)
        screen = Screen(640, 360)
        server, ports = start_ombra(screen, folder, *sys.argv[3:], SDL_AUDIODRIVER="disk",
                                    SDL_DISKAUDIOFILE=str(folder / "pipe"), SDL_DISKAUDIODELAY="0",
                                    SDL_AUDIO_CHANNELS=str(CHANNELS))
        try:
            end = time.monotonic() + 8 + seconds
            flashes = []
            ears = threading.Thread(target=device.run, args=(end,))
            ears.start()
            time.sleep(4)  # the device's clock is known by then, and the screen's beat
            link = Link(ports)
            link.replace(PROGRAM + "/properties/endAction", "repeat")
            link.play(PROGRAM, 1)
            time.sleep(2)
            watch(screen, end - 2, flashes)
            ears.join()
        finally:
            stop(server, screen.process)
        tell(flashes, device.beeps(), error, len(device.starts) - 1)


if __name__ == "__main__":
    main()
