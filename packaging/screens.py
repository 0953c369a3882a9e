#!/usr/bin/env python3
"""Takes the pictures of docs/screens, each of a window of its own on an Xvfb of its own. See make-screens.sh."""
import argparse
import pathlib
import sys

from filescreens import beside, files, media_tab, pictures, shows, slots
from linkscreens import (
    connect, damaged, file_gone, full_disk, half, library, no_picture, notice, on_screen, overtaken, program_waits,
    read_only, reading, reconnect, refused, silent, switch)
from playerscreens import (
    countdown, cue_list, cut_off, drop, drop_list, gallery, held, holding, inspector, keyboard, media_panel, menu, modes,
    outputs, player, preview_countdown, questions, rename, repeat, scaling, still, take, waiting)
from screenwindow import HUGE

SCREENS = {
    "player-small": lambda options: player(options, "player-small", text="small"),
    "player-medium": lambda options: player(options, "player-medium"),
    "player-large": lambda options: player(options, "player-large", text="large"),
    "player-huge": lambda options: player(options, "player-huge", text="huge"),
    "player-medium-1280x720": lambda options: player(options, "player-medium-1280x720", size=(1280, 720)),
    "player-huge-1280x720": lambda options: player(options, "player-huge-1280x720", **HUGE),
    "player-scale-200": lambda options: player(options, "player-scale-200", size=(960, 540), scale=2),
    "media-panel": media_panel,
    "still": still,
    "take": take,
    "menu-huge-1280x720": menu,
    "inspector": inspector,
    "gallery": gallery,
    "connect": lambda options: connect(options, "connect"),
    "connect-huge-1280x720": lambda options: connect(options, "connect-huge-1280x720", **HUGE),
    "keyboard": lambda options: keyboard(options, "keyboard"),
    "keyboard-huge-1280x720": lambda options: keyboard(options, "keyboard-huge-1280x720", **HUGE),
    "cue-list-small": lambda options: cue_list(options, "cue-list-small", text="small"),
    "cue-list-medium": lambda options: cue_list(options, "cue-list-medium"),
    "cue-list-large": lambda options: cue_list(options, "cue-list-large", text="large"),
    "cue-list-huge": lambda options: cue_list(options, "cue-list-huge", text="huge"),
    "cue-list-medium-1280x720": lambda options: cue_list(options, "cue-list-medium-1280x720", size=(1280, 720)),
    "sound-alone": lambda options: waiting(options, 5, "sound-alone"),
    "unplayable": lambda options: waiting(options, 6, "unplayable"),
    "disconnect": questions,
    "disconnect-holding": holding,
    "shows": shows,
    "time-left-amber": countdown,
    "preview-time-left": preview_countdown,
    "no-longer-in-the-library": held,
    "library-loading": lambda options: library(options, "library-loading", None),
    "library-not-read": lambda options: library(options, "library-not-read", 500),
    "library-lost": lambda options: half(options, "--http-port", "library does not", "library-lost"),
    "picture-old": lambda options: half(options, "--preview-port", "", "picture-old"),
    "players-silent": lambda options: half(options, "--link-port", "Its library answers", "players-silent"),
    "connected-again": reading,
    "no-picture": no_picture,
    "switch-refused": switch,
    "file-gone": file_gone,
    "repeat": repeat,
    "rename": rename,
    "media-folder-gone": notice,
    "disk-full": full_disk,
    "show-damaged": damaged,
    "server-read-only": read_only,
    "program-waits": program_waits,
    "edit-overtaken": overtaken,
    "drop-on-program": drop,
    "list-on-program": drop_list,
    "drop-on-slots": slots,
    "drop-dialog": lambda options: pictures(options, "drop-dialog"),
    "drop-dialog-huge-1280x720": lambda options: pictures(options, "drop-dialog-huge-1280x720", **HUGE),
    "media-tab": lambda options: media_tab(options, "media-tab"),
    "media-tab-huge-1280x720": lambda options: media_tab(options, "media-tab-huge-1280x720", **HUGE),
    "cut-off": cut_off,
    "media-beside": beside,
    "files": lambda options: files(options, "files"),
    "files-huge-1280x720": lambda options: files(options, "files-huge-1280x720", **HUGE),
    "outputs": lambda options: outputs(options, "outputs"),
    "outputs-medium-1280x720": lambda options: outputs(options, "outputs-medium-1280x720", size=(1280, 720)),
    "outputs-huge-1280x720": lambda options: outputs(options, "outputs-huge-1280x720", **HUGE),
    "outputs-scaling": scaling,
    "outputs-mode": modes,
    "outputs-identify": on_screen,
    "silent": silent,
    "reconnect": reconnect,  # ends the server: what follows finds none
    "refused": refused,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", required=True, help="the application")
    parser.add_argument("--out", required=True, type=pathlib.Path, help="folder of the pictures")
    parser.add_argument("--ombra", required=True, type=int, help="process id of the server")
    parser.add_argument("--media", required=True, type=pathlib.Path, help="media folder of the server")
    parser.add_argument("--only", choices=SCREENS, action="append", help="one picture; may be given again")
    parser.add_argument("server", nargs="+", help="arguments that connect the application to the server")
    options = parser.parse_args()
    options.out.mkdir(parents=True, exist_ok=True)
    for name, shoot in SCREENS.items():
        if not options.only or name in options.only:
            print(f"==> {name}", file=sys.stderr)
            shoot(options)


main()
