#!/usr/bin/env python3
"""Plays the same media full screen by ombra and by mpv, one after the other on one virtual screen of 1920 x 1080, and
counts the pictures that were never seen there, and the processor time.

usage: mpv.py [SECONDS OF EACH [NAME...]]

Each picture carries its number as light and dark fields, which are read off the screen all the time. mpv decodes what
it shows; ombra has the same medium on preview as well, so that a second mpv decodes it beside, for nobody.
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

from stage import PREVIEW, PROGRAM, Link, Screen, number_on, numbered, start_ombra, stop

BITS, FIELD, SCREEN = 10, 64, (1920, 1080)  # a field is so many pixels of a medium of full HD wide
SETTLE = 4  # seconds
H264, HEVC = ["-c:v", "libx264", "-preset", "veryfast"], ["-c:v", "libx265", "-preset", "ultrafast"]
PRORES = ["-c:v", "prores_ks", "-profile:v", "2"]
MEDIA = {"1080p25-h264": (1080, 25, H264), "1080p25-hevc": (1080, 25, HEVC), "1080p25-prores": (1080, 25, PRORES),
         "1080p50-h264": (1080, 50, H264), "1080p50-hevc": (1080, 50, HEVC),
         "2160p25-h264": (2160, 25, H264), "2160p25-hevc": (2160, 25, HEVC)}


def make_medium(path, height, rate, codec):
    scale = height // 1080
    source = f"testsrc2=s={1920 * scale}x{height}:r={rate}:d=8,format=yuv420p"
    subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", f"{source},{numbered(BITS, FIELD, scale=scale)}",
                    *codec, "-x265-params", "log-level=error", path], check=True)


def watch(screen, seconds, count):
    """How many pictures were due, and how many of them were never seen."""
    seen, last, missing, due = None, None, 0, 0
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        seen = number_on(screen, BITS, FIELD)
        if last is not None and seen != last:
            step = (seen - last) % count
            due += step
            missing += step - 1
        last = seen
        time.sleep(0.003)
    return due, missing


def processor_time(processes):
    ticks = 0
    for process in processes:
        fields = pathlib.Path(f"/proc/{process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        ticks += int(fields[11]) + int(fields[12])
    return ticks / os.sysconf("SC_CLK_TCK")


def measure(screen, processes, seconds, count):
    time.sleep(SETTLE)
    before = processor_time(processes)
    due, missing = watch(screen, seconds, count)
    return due, missing, (processor_time(processes) - before) / seconds


def play_mpv(screen, medium, options):
    base = ["mpv", "--no-config", "--no-terminal", "--no-audio", "--hwdec=no", "--loop=inf", medium]
    environment = dict(os.environ, DISPLAY=screen.name)
    return [subprocess.Popen([*base, "--fullscreen", *options], env=environment),
            subprocess.Popen([*base, "--vo=null"], env=environment)]


def play_ombra(screen, folder):
    server, ports = start_ombra(screen, folder, "--no-sound")
    time.sleep(2)
    link = Link(ports)
    for side in (PROGRAM, PREVIEW):
        link.replace(side + "/properties/endAction", "repeat")
        link.play(side, 1)
    return server, link


def compare(name, seconds):
    height, rate, codec = MEDIA[name]
    with tempfile.TemporaryDirectory() as folder:
        medium = pathlib.Path(folder) / "media" / (name + ".mov")
        medium.parent.mkdir()
        make_medium(medium, height, rate, codec)
        screen = Screen(*SCREEN)
        rows = []
        server, link = play_ombra(screen, pathlib.Path(folder))
        rows.append(("ombra", *measure(screen, [server], seconds, 8 * rate)))
        stop(server)
        for label, options in (("mpv --vo=gpu", ["--vo=gpu", "--gpu-sw"]), ("mpv --vo=x11", ["--vo=x11"])):
            players = play_mpv(screen, medium, options)
            rows.append((label, *measure(screen, players, seconds, 8 * rate)))
            stop(*players)
        screen.stop()
    for label, due, missing, processor in rows:
        print(f"| {name} | {label} | {due} | {missing} | {processor * 100:.0f} % |", flush=True)


def main():
    seconds = float(sys.argv[1]) if len(sys.argv) > 1 else 20
    print("| Medium | Player | Pictures due | Not seen | Processor, of one core |\n|---|---|---:|---:|---:|")
    for name in sys.argv[2:] or MEDIA:
        compare(name, seconds)


if __name__ == "__main__":
    main()
