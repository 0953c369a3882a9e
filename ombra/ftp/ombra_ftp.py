#!/usr/bin/python3
"""Serves the media folder over FTP, as a child process of ombra.

What it needs to know comes as one line of JSON on standard input: {"folder", "username", "password"}. Descriptor 3 is
the listening socket, which stays ombra's, so that the port outlives this process. It ends when standard input does,
which is when ombra is gone.
"""
import ctypes
import json
import logging
import os
import signal
import socket
import sys
import threading

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.servers import FTPServer

LISTENING = 3
BLOCK = 1024 * 1024
PR_SET_PDEATHSIG = 1


class Data(DTPHandler):
    ac_in_buffer_size = BLOCK
    ac_out_buffer_size = BLOCK


class Handler(FTPHandler):
    banner = "ombra's media folder."
    dtp_handler = Data
    auth_failed_timeout = 1
    max_login_attempts = 3
    use_gmt_times = False

    def pre_process_command(self, line, cmd, arg):
        if cmd == "LIST":
            if arg == "-a" or arg.startswith("-a "):
                arg = arg[3:]
            line = ("LIST " + arg).rstrip(" ")
        super().pre_process_command(line, cmd, arg)

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
    # What is written here is a text for people; the server reads paths as UTF-8 whatever the machine's language is.
    server = FTPServer(socket.socket(fileno=LISTENING), Handler)
    server.serve_forever(handle_exit=False)


main()
