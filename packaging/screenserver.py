"""Servers of their own, beside the one that all pictures share."""
import pathlib
import subprocess

from screenwindow import grab, virtual_screen, wait


class Server:
    """A server of its own on the demo's media, with its show in the given folder."""

    def __init__(self, options, state):
        self.options, self.state = options, state

    def __enter__(self):
        output = self.state.with_suffix(".out")
        command = [pathlib.Path(self.options.bin).with_name("ombra"), "--media", self.options.media,
                   "--state", self.state]
        for port in ("http", "link", "preview", "ftp"):
            command += [f"--{port}-port", "0"]
        with open(output, "w", encoding="utf-8") as file:
            self.process = subprocess.Popen(self.wrapped([str(word) for word in command]), stdout=file,
                                            stderr=subprocess.DEVNULL)
        wait(lambda: output.read_text(encoding="utf-8").startswith("ombra ready"), "the server")
        self.server = ["--connect", "127.0.0.1"]
        for word in output.read_text(encoding="utf-8").split()[2:]:
            name, port = word.split("=")
            self.server += [f"--{name}-port", port]
        return self

    def wrapped(self, command):
        return command

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(20)


class OnScreen(Server):
    """The same, and program is full screen on an Xvfb of its own, in silence."""

    def __enter__(self):
        self.screen, self.display = virtual_screen(1280, 720)
        return super().__enter__()

    def wrapped(self, command):
        return ["env", f"DISPLAY={self.display}", "SDL_VIDEODRIVER=x11", *command, "--display", "--no-sound"]

    def shoot(self, path):
        grab(self.display, path)

    def __exit__(self, *_):
        super().__exit__(*_)
        self.screen.terminate()
        self.screen.wait(20)


class SmallDisk(Server):
    """The same, and the folder is a disk of a megabyte, in memory, that no other process sees."""

    def wrapped(self, command):
        return ["unshare", "--map-root-user", "--mount", "sh", "-c",
                f"mount -t tmpfs -o size=1m tmpfs '{self.state}' && exec \"$@\"", "sh", *command]

    def fill(self):
        disk = pathlib.Path(f"/proc/{self.process.pid}/root{self.state}")
        try:
            with open(disk / "recordings", "ab", buffering=0) as file:
                while True:
                    file.write(bytes(4096))
        except OSError:
            pass


class ReadOnlyDisk(Server):
    """The same, and nothing can be written to the folder."""

    def wrapped(self, command):
        return ["unshare", "--map-root-user", "--mount", "sh", "-c",
                f"mount --bind '{self.state}' '{self.state}' && mount -o remount,bind,ro '{self.state}' && exec \"$@\"",
                "sh", *command]
