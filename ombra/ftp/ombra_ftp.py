#!/usr/bin/python3
"""Serves the media folder over FTP, as a child process of ombra.

What it needs to know comes as one line of JSON on standard input: {"folder", "username", "password"}. Descriptor 3 is
the listening socket, which stays ombra's, so that the port outlives this process. It ends when standard input does,
which is when ombra is gone.
"""
import ctypes
import errno
import json
import logging
import os
import re
import signal
import socket
import stat
import sys
import threading
import time
import zlib

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler, PassiveDTP
from pyftpdlib.servers import FTPServer

LISTENING = 3
BLOCK = 1024 * 1024
PR_SET_PDEATHSIG = 1
NO_ROOM = (errno.ENOSPC, errno.EDQUOT, errno.EFBIG)
SMALL = 4 * BLOCK  # a file that is checked sooner than a thread starts
LOOK = 0.002  # seconds until it is looked whether a check is done
LEAST = 19  # of priorities
MOST_HELD = 64  # lines
DAY = 24 * 60 * 60
# What a client of ours gives an upload until it is whole.
UNFINISHED = re.compile(r"\.halcyra-[0-9a-f]{16}\.part")


class Data(DTPHandler):
    ac_in_buffer_size = BLOCK
    ac_out_buffer_size = BLOCK

    def handle_error(self):
        """Says why a file could not be read or written, which the library loses on the way: its error holds ours."""
        error = sys.exc_info()[1]
        reason = error.args[0] if isinstance(error, OSError) and error.args else None
        if not isinstance(reason, OSError) or reason.errno is None:
            super().handle_error()
            return
        code = 552 if reason.errno in NO_ROOM else 426
        self._resp = (f"{code} {os.strerror(reason.errno)}; transfer aborted.", logging.warning)
        self.close()


class Passive(PassiveDTP):
    """Listens for data where the commands come in: an address that holds on one link alone is none without it."""

    def bind_af_unspecified(self, addr):
        link = self.cmd_channel.socket.getsockname()[3:]
        host = f"{addr[0]}%{link[0]}" if link and link[0] else addr[0]
        return super().bind_af_unspecified((host, *addr[1:]))

    def bind(self, addr):
        super().bind((*addr, *self.cmd_channel.socket.getsockname()[len(addr):]))


class Check(threading.Thread):
    """Makes the CRC-32 of a file, while others are served."""

    def __init__(self, file):
        super().__init__(daemon=True)
        self.file = file
        self.answer = None
        self.is_wanted = True

    def run(self):
        if threading.current_thread() is self:  # what is on air comes first, at the disk as well
            os.setpriority(os.PRIO_PROCESS, self.native_id, LEAST)
        checksum = 0
        try:
            with self.file:
                while self.is_wanted and (piece := self.file.read(4 * BLOCK)):
                    checksum = zlib.crc32(piece, checksum)
            self.answer = f"250 {checksum:08X}"
        except OSError as error:
            self.answer = f"451 {os.strerror(error.errno)}."


class Handler(FTPHandler):
    banner = "ombra's media folder."
    dtp_handler = Data
    passive_dtp = Passive
    auth_failed_timeout = 1
    max_login_attempts = 3
    use_gmt_times = False
    proto_cmds = dict(
        FTPHandler.proto_cmds,
        XCRC={"perm": "r", "auth": True, "arg": True, "help": "Syntax: XCRC <SP> file-name (its CRC-32)."},
    )

    def __init__(self, *arguments, **options):
        self.check = None  # that is being made
        self.held = []  # what came meanwhile: answers keep the order of the questions
        super().__init__(*arguments, **options)
        self._extra_feats = ["XCRC"]

    def get_repr_info(self, as_str=False, extra_info=()):
        """For the log. The library's own asks a file that may be closed by then, and so never ends a connection."""
        about = dict(extra_info, addr=f"{self.remote_ip}:{self.remote_port}")
        return str(about) if as_str else about

    def pre_process_command(self, line, cmd, arg):
        if self.check:
            self.hold(line, cmd, arg)
            return
        if cmd == "XCRC" and len(arg) > 1 and arg[0] == arg[-1] == '"':
            arg = arg[1:-1]
            line = "XCRC " + arg
        if cmd == "LIST":
            if arg == "-a" or arg.startswith("-a "):
                arg = arg[3:]
            line = ("LIST " + arg).rstrip(" ")
        super().pre_process_command(line, cmd, arg)

    def hold(self, line, cmd, arg):
        self.held.append((line, cmd, arg))
        if cmd.endswith("ABOR"):
            self.end_check("450 Aborted.")
        elif len(self.held) > MOST_HELD:
            self.close()

    def _shutdown_connecting_dtp(self):
        """What waits for its data connection goes with it, or the next one would be taken for it."""
        super()._shutdown_connecting_dtp()
        queued = [queue[-2] for queue in (self._out_dtp_queue, self._in_dtp_queue) if queue]
        self._out_dtp_queue = self._in_dtp_queue = None
        for file in filter(None, queued):
            file.close()

    def ftp_XCRC(self, path):
        """Tells the CRC-32 of a whole file as it is on the disk."""
        try:
            item = os.stat(path)
            if not stat.S_ISREG(item.st_mode):
                self.respond("550 This is no file.")
                return
            self.check = Check(open(path, "rb", buffering=0))
        except OSError as error:
            self.respond(f"550 {os.strerror(error.errno)}.")
            return
        if item.st_size > SMALL:
            self.check.start()
        else:
            self.check.run()
        self.look_at(self.check)

    def look_at(self, check):
        if check is not self.check:
            return  # it was given up
        if check.answer:
            self.end_check(check.answer)
        else:
            self.ioloop.call_later(LOOK, self.look_at, check, _errback=self.handle_error)

    def end_check(self, answer):
        self.check.is_wanted = False
        self.check = None
        self.respond(answer)
        held, self.held = self.held, []
        for one in held:
            self.pre_process_command(*one)

    def close(self):
        if self.check:
            self.check.is_wanted = False
            self.check = None
        super().close()

    def ftp_RNTO(self, path):
        """Puts nothing in the place of what is there: clients look first, but another may have been quicker."""
        if self.fs.lexists(path):
            self.respond("550 Something of that name is there already.")
            return None
        return super().ftp_RNTO(path)


def end_with_parent():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)

    def wait():
        while os.read(0, 4096):
            pass
        os._exit(0)

    threading.Thread(target=wait, daemon=True).start()


def sweep(folder):
    """Takes away what uploads left a day ago or longer, whose clients have not come back to go on with them."""
    for directory, _, names in os.walk(folder):
        for name in filter(UNFINISHED.fullmatch, names):
            path = os.path.join(directory, name)
            try:
                item = os.lstat(path)
                if stat.S_ISREG(item.st_mode) and time.time() - item.st_mtime > DAY:
                    os.unlink(path)
                    logging.warning("removed what an upload left: %s", path)
            except OSError as error:
                logging.warning("cannot remove what an upload left: %s", error)


def sweep_daily(folder):
    while True:
        sweep(folder)
        time.sleep(DAY)


def read_settings():
    line = b""
    while not line.endswith(b"\n"):
        byte = os.read(0, 1)
        if not byte:
            sys.exit("no settings on standard input")
        line += byte
    return json.loads(line)


def main():
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # of a terminal: ombra ends first, and this with it
    settings = read_settings()
    end_with_parent()
    logging.basicConfig(level=logging.WARNING, format="%(message)s")
    authorizer = DummyAuthorizer()
    authorizer.add_user(settings["username"], settings["password"], settings["folder"], perm="elradfmwMT")
    Handler.authorizer = authorizer
    threading.Thread(target=sweep_daily, args=(settings["folder"],), daemon=True).start()
    # What is written here is a text for people; the server reads paths as UTF-8 whatever the machine's language is.
    server = FTPServer(socket.socket(fileno=LISTENING), Handler)
    server.serve_forever(handle_exit=False)


main()
