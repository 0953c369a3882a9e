"""What the measurements of program as an audience sees it share: a screen that nobody sees, and a server that plays there."""
import ctypes
import json
import os
import pathlib
import socket
import struct
import subprocess

BIN = pathlib.Path(__file__).resolve().parent.parent / "build/release/bin"
PROGRAM, PREVIEW = "/device/channels/0/program", "/device/channels/0/preview"


class Screen:
    """An X server without a screen, and the pixels of its picture."""

    def __init__(self, width, height):
        read, write = os.pipe()
        self.process = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24",
                                         "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
        self.name = ":" + os.read(read, 20).decode().strip()
        self.x = ctypes.CDLL("libX11.so.6")
        for name in ("XOpenDisplay", "XGetImage"):
            getattr(self.x, name).restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = self.x.XGetPixel.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(self.name.encode()))
        self.root = ctypes.c_ulong(self.x.XDefaultRootWindow(self.display))

    def pixels(self, x, y, width, step=1):
        """Of a line, each so many pixels, as 0xrrggbb."""
        image = ctypes.c_void_p(self.x.XGetImage(self.display, self.root, x, y, width, 1, ctypes.c_ulong(0xffffff), 2))
        line = [self.x.XGetPixel(image, at, 0) for at in range(0, width, step)]
        self.x.XDestroyImage(image)
        return line

    def stop(self):
        stop(self.process)


def stop(*processes):
    for process in processes:
        process.kill()
        process.wait()


def start_ombra(screen, folder, *options, **environment):
    """The server, with its media in a folder of that folder, and what it says once it is ready."""
    server = subprocess.Popen([BIN / "ombra", "--media", folder / "media", "--state", folder / "state", "--http-port", "0",
                               "--link-port", "0", "--preview-port", "0", "--ftp-port", "0", "--no-discovery", "--display",
                               *options], stdout=subprocess.PIPE, text=True,
                              env=dict(os.environ, DISPLAY=screen.name, SDL_VIDEODRIVER="x11", **environment))
    return server, dict(word.split("=") for word in server.stdout.readline().split() if "=" in word)


def numbered(bits, field, first=0, scale=1):
    """A filter of ffmpeg that writes the number of each picture as light and dark fields, so many pixels each."""
    size = field * scale
    black = f"drawbox=x=0:y=0:w={bits * size}:h={size}:t=fill:c=black"
    return ",".join([black, *(f"drawbox=x={bit * size}:y=0:w={size}:h={size}:t=fill:c=white:"
                              f"enable='gt(mod(floor((n+{first})/{2 ** bit}),2),0)'" for bit in range(bits))])


def number_on(screen, bits, field):
    line = screen.pixels(field // 2, field // 2, (bits - 1) * field + 1, field)
    return sum(1 << bit for bit, pixel in enumerate(line) if pixel & 0xff > 128)


class Link:
    """A client that only tells the server what to do."""

    def __init__(self, ports):
        self.socket = socket.create_connection(("127.0.0.1", int(ports["link"])))

    def send(self, operation):
        body = json.dumps([operation]).encode()
        self.socket.sendall(struct.pack(">I", len(body)) + body)

    def replace(self, path, value):
        self.send({"op": "replace", "path": path, "value": value})

    def invoke(self, path, **value):
        self.send({"op": "invoke", "path": path, "value": value})

    def play(self, playback, slot):
        self.invoke(playback + "/methods/playMedia", mediaUrl=f"brume://collections/1/slots/{slot}")
