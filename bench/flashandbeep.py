#!/usr/bin/env python3
"""Measures how far program's sound is from its picture: a medium that flashes and beeps once a second, on a virtual
screen whose pixels are watched and a sound device that is a pipe.

usage: flashandbeep.py [SECONDS] [OPTION OF OMBRA]...

Sound counts as heard when a device plays it that is asked for a block while it plays the one before. Below 0 it is early.
"""
import array
import ctypes
import json
import os
import pathlib
import socket
import statistics
import struct
import subprocess
import sys
import tempfile
import threading
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
OMBRA = ROOT / "build/release/bin/ombra"
CHANNELS, BLOCK, RATE = 8, 485, 48000  # a block is larger than what the driver's file holds back
FRAME = 4 * CHANNELS


def make_medium(folder):
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                    "color=black:s=640x360:r=30:d=60,drawbox=enable='lt(mod(t,1),0.06)':c=white:t=fill", "-f", "lavfi",
                    "-i", "aevalsrc=0.8*sin(2*PI*1000*t)*lt(mod(t\\,1)\\,0.05):s=48000:d=60", "-c:v", "libx264",
                    "-preset", "ultrafast", "-g", "30", "-c:a", "pcm_s16le", folder / "flash.mov"], check=True)


class Screen:
    """An X server without a screen, and one of its pixels."""

    def __init__(self):
        read, write = os.pipe()
        self.process = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "640x360x24"],
                                        pass_fds=[write], stderr=subprocess.DEVNULL)
        self.name = ":" + os.read(read, 20).decode().strip()
        self.x = ctypes.CDLL("libX11.so.6")
        for name in ("XOpenDisplay", "XGetImage"):
            getattr(self.x, name).restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = self.x.XGetPixel.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(self.name.encode()))
        self.root = ctypes.c_ulong(self.x.XDefaultRootWindow(self.display))

    def is_white(self):
        image = ctypes.c_void_p(self.x.XGetImage(self.display, self.root, 320, 180, 1, 1, ctypes.c_ulong(0xffffff), 2))
        white = self.x.XGetPixel(image, 0, 0) & 0xff > 128
        self.x.XDestroyImage(image)
        return white


def watch(screen, end, flashes):
    was_white = True
    while time.monotonic() < end:
        white = screen.is_white()
        if white and not was_white:
            flashes.append(time.monotonic())
        was_white = white
        time.sleep(0.0005)


def listen(pipe, end, chunks):
    while time.monotonic() < end:
        data = os.read(pipe, 65536)
        chunks.append((time.monotonic(), data))
        if not data:
            return


def beeps(chunks):
    """The moments at which a beep begins to be heard."""
    samples = array.array("f")
    data = b"".join(data for _, data in chunks)
    samples.frombytes(data[:len(data) // FRAME * FRAME])
    arrivals, at = [], 0  # of the first byte of each block
    for moment, part in chunks:
        at += len(part)
        while len(arrivals) * BLOCK * FRAME < at:
            arrivals.append(moment)
    period = (arrivals[-1] - arrivals[0]) / (len(arrivals) - 1)
    heard, quiet = [], 0
    for frame, value in enumerate(samples[::CHANNELS]):
        if abs(value) > 0.05 and quiet > RATE / 4:
            block, inside = divmod(frame, BLOCK)
            heard.append(arrivals[block] + period * (1 + inside / BLOCK))
        quiet = 0 if abs(value) > 0.05 else quiet + 1
    return heard, BLOCK / period / RATE


def play(port):
    link = socket.create_connection(("127.0.0.1", port))
    program = "/device/channels/0/program"
    for operation in ({"op": "replace", "path": program + "/properties/endAction", "value": "repeat"},
                      {"op": "invoke", "path": program + "/methods/playMedia",
                       "value": {"mediaUrl": "brume://collections/1/slots/1"}}):
        body = json.dumps([operation]).encode()
        link.sendall(struct.pack(">I", len(body)) + body)
    return link


def tell(flashes, heard, clock):
    pairs = [(flash, min((beep - flash for beep in heard), key=abs)) for flash in flashes]
    pairs = [(flash, offset * 1000) for flash, offset in pairs if abs(offset) < 0.4]
    offsets = [offset for _, offset in pairs]
    if len(pairs) < 2:
        sys.exit(f"{len(flashes)} flashes and {len(heard)} beeps: nothing to compare")
    slope = statistics.linear_regression(*zip(*pairs)).slope
    print("| flashes | device's clock | offset, middle | least | most | drift |")
    print("|---:|---:|---:|---:|---:|---:|")
    print(f"| {len(pairs)} | {(clock - 1) * 100:+.2f} % | {statistics.median(offsets):+.1f} ms | {min(offsets):+.1f} ms "
          f"| {max(offsets):+.1f} ms | {slope * 60:+.2f} ms a minute |")


def main():
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 60
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "media").mkdir()
        make_medium(folder / "media")
        os.mkfifo(folder / "pipe")
        pipe = os.open(folder / "pipe", os.O_RDONLY | os.O_NONBLOCK)
        os.set_blocking(pipe, True)
        screen = Screen()
        environment = dict(os.environ, DISPLAY=screen.name, SDL_VIDEODRIVER="x11", SDL_AUDIODRIVER="disk",
                           SDL_DISKAUDIOFILE=str(folder / "pipe"), SDL_AUDIO_CHANNELS=str(CHANNELS),
                           SDL_AUDIO_SAMPLES=str(BLOCK))
        server = subprocess.Popen([OMBRA, "--media", folder / "media", "--state", folder / "state", "--http-port", "0",
                                   "--link-port", "0", "--preview-port", "0", "--ftp-port", "0", "--no-discovery",
                                   "--display", *sys.argv[2:]], env=environment, stdout=subprocess.PIPE, text=True)
        try:
            ready = dict(word.split("=") for word in server.stdout.readline().split() if "=" in word)
            end = time.monotonic() + 5 + seconds  # the servo and the window have settled by then
            chunks, flashes = [], []
            ears = threading.Thread(target=listen, args=(pipe, end, chunks))
            ears.start()
            time.sleep(2)
            link = play(int(ready["link"]))
            time.sleep(3)
            watch(screen, end, flashes)
            ears.join()
            link.close()
        finally:
            server.terminate()
            server.wait()
            screen.process.terminate()
            screen.process.wait()
        tell(flashes, *beeps(chunks))


if __name__ == "__main__":
    main()
