"""Pictures of the PLAYER and the OUTPUTS tab."""
import json
import os
import pathlib
import subprocess
import tempfile
import time

from screenwindow import HUGE, Pointer, Window, rest, wait


def player(options, name, **how):
    with Window(options, **how) as window:
        window.run_show()
        window.shoot(options.out / f"{name}.png")


def cue_list(options, name, **how):
    with Window(options, **how) as window:
        window.run_list()
        window.shoot(options.out / f"{name}.png")


def media_panel(options):
    with Window(options, scale=2) as window:
        window.run_show()
        window.shoot_widget("PlayerTab-mediapanel-widget", options.out / "media-panel.png")


def still(options):
    with Window(options) as window:
        window.run_show()
        window.cue(4)
        window.click("Preview-PlaybackWidget-DurationEdit-Input-manual-duration-button")
        window.robot.ask(operation="focus", objectName="Preview-PlaybackWidget-DurationEdit-Time")
        for key in ("Enter", "1", "2", "Enter"):
            window.robot.ask(operation="key_press", keyName=key)
        window.click("Preview-PlaybackControls-Play")
        time.sleep(2)
        window.rest()
        window.shoot(options.out / "still.png")


def take(options):
    with Window(options) as window:
        window.run_show()
        window.type_into("TakeControls-Duration", "8")
        window.click("TakeControls-Take-Button")
        window.robot.find("TakeProgressBar")
        window.rest()
        time.sleep(3)
        window.shoot(options.out / "take.png")


def menu(options):
    with Window(options, **HUGE) as window:
        window.run_show()
        window.click("MainNavigationBar-mainmenu-button")
        time.sleep(1)
        window.shoot(options.out / "menu-huge-1280x720.png")


def inspector(options):
    with Window(options, text="large", size=(1280, 720)) as window:
        window.run_show()
        window.robot.ask(operation="key_press", keyName="F11")
        window.robot.find("InspectorWidget")
        window.robot.mouse("move_to", window.robot.find("Program-PlaybackControls-Play"))
        window.rest()
        window.shoot_widget("InspectorWidget", options.out / "inspector.png")
        window.robot.ask(operation="raise", objectName="MainWindow")
        window.robot.ask(operation="key_press", keyName="F10")
        window.robot.find("NotificationInspector")
        window.shoot_widget("NotificationInspector", options.out / "inspector-notifications.png")


def gallery(options):
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, XDG_CONFIG_HOME=home, QT_QPA_PLATFORM="offscreen")
        whole = pathlib.Path(home, "gallery.png")
        subprocess.run([options.bin, "--gallery", "--screenshot", str(whole), "--seconds", "1"],
                       env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        subprocess.run(
            ["ffmpeg", "-v", "error", "-nostdin", "-y", "-i", str(whole), "-vf", "scale=iw/2:-1:flags=lanczos",
             "-pix_fmt", "rgb24", "-pred", "mixed", "-compression_level", "100", str(options.out / "gallery.png")],
            check=True)


def keyboard(options, name, **how):
    with Window(options, connect=False, **how) as window:
        window.click("ConnectDialog-cancel-button")
        window.robot.ask(operation="key_press", keyName="F1")
        window.robot.find("KeyboardDialog")
        window.click("KeyboardDialog-set_inpoint-key")
        window.robot.ask(operation="key_press", keyName="M")
        window.robot.find("KeyboardDialog-notice-swap-button")
        time.sleep(1)
        window.shoot(options.out / f"{name}.png")


def waiting(options, row, name):
    """What cannot be played, and what is sound alone, on preview."""
    with Window(options) as window:
        window.run_show()
        window.cue(row)
        time.sleep(2)
        window.rest()
        window.shoot(options.out / f"{name}.png")


def questions(options):
    """What is asked before program would go dark."""
    with Window(options) as window:
        window.run_show()
        for entry, dialog, name in (("DisconnectFromServer", "DisconnectDialog", "disconnect"),
                                    ("DeviceReboot", "RebootDialog", "reboot"),
                                    ("ClearShow", "ClearShowDialog", "clear")):
            window.choose(entry)
            window.robot.find(dialog)
            window.rest()
            window.shoot(options.out / f"{name}.png")
            window.robot.ask(operation="key_press", keyName="Escape")


def holding(options):
    """The same of a picture that program holds; and a number that is no slot's."""
    with Window(options) as window:
        window.run_show()
        window.click("Program-PlaybackWidget-Header-Lock")
        window.click("Program-PlaybackControls-Pause")
        window.choose("DisconnectFromServer")
        window.robot.find("DisconnectDialog")
        window.rest()
        window.shoot(options.out / "disconnect-holding.png")
        window.keys("Escape")
        window.click("Program-PlaybackControls-Play")
        window.click("MediaPanel-search")
        window.keys("1", "2", "Enter")
        wait(lambda: "Not done" in window.robot.find("NotificationPresenter-title")["text"], "the refusal")
        time.sleep(1)
        window.shoot(options.out / "cue-not-done.png")


def cut_off(options):
    """A file that was not copied to its end, in the MEDIA tab."""
    whole, part = options.media / "03 Bars and tone.mp4", options.media / "Trailer.mp4"
    subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-y", "-i", str(whole), "-c", "copy", "-movflags",
                    "+faststart", str(part)], check=True)
    os.truncate(part, part.stat().st_size * 2 // 3)
    slot = json.load(rest(options, "GET"))["collections"]["1"]["slots"]["3"]
    slot |= {"name": "Trailer", "contentUrl": slot["contentUrl"].rsplit("/", 1)[0] + "/Trailer.mp4"}
    rest(options, "PATCH", [{"op": "add", "path": "/collections/1/slots/8", "value": slot}])
    with Window(options) as window:
        window.run_show()
        window.click("MainNavigationBar-media-button")
        window.click("media-slot8")
        wait(lambda: "cut off" in window.robot.find("media-details-faults")["text"], "the caveat")
        window.rest()
        window.shoot(options.out / "cut-off.png")
    rest(options, "PATCH", [{"op": "remove", "path": "/collections/1/slots/8"}])
    part.unlink()


def preview_countdown(options):
    """The last seconds of what is tried on preview, and its last picture that holds."""
    with Window(options) as window:
        window.run_show()
        window.cue(2)
        window.click("Preview-PlaybackControls-Play")
        left = "Preview-PlaybackWidget-PlaybackTimecodes-Remaining"
        for seconds, name in (("00:00:08", "preview-time-left"), ("00:00:04", "preview-time-left-red")):
            wait(lambda: "00:00:00" < window.robot.find(left)["text"] < seconds, "the last seconds")
            window.rest()
            window.shoot(options.out / f"{name}.png")
        window.robot.find("Preview-PlaybackWidget-PlaybackTimecodes-Ended")
        window.shoot(options.out / "preview-ended.png")


def countdown(options):
    """Program's last seconds: amber, red, and its last picture that holds; muted and unlocked."""
    with Window(options) as window:
        window.click("TakeControls-DirectCut-Button")
        window.cue(2)
        window.click("TakeControls-Take-Button")
        left = "Program-PlaybackWidget-PlaybackTimecodes-Remaining"
        for seconds, name in (("00:00:08", "time-left-amber"), ("00:00:04", "time-left-red")):
            wait(lambda: "00:00:00" < window.robot.find(left)["text"] < seconds, "the last seconds")
            window.shoot(options.out / f"{name}.png")
        window.click("Program-PlaybackWidget-Header-Mute")
        window.click("Program-PlaybackWidget-Header-Lock")
        window.robot.find("Program-PlaybackWidget-PlaybackTimecodes-Ended")
        window.rest()
        window.shoot(options.out / "ended-muted-unlocked.png")
        window.click("Program-PlaybackWidget-Header-Mute")


def held(options):
    """What is on air while its slot is cleared, and put back."""
    with Window(options) as window:
        window.run_show()
        slot = json.load(rest(options, "GET"))["collections"]["1"]["slots"]["1"]
        rest(options, "PATCH", [{"op": "remove", "path": "/collections/1/slots/1"}])
        name = "Program-PlaybackWidget-Header-MediaName"
        wait(lambda: "No longer" in window.robot.find(name)["text"], "the word on what is on air")
        window.shoot(options.out / "no-longer-in-the-library.png")
        rest(options, "PATCH", [{"op": "add", "path": "/collections/1/slots/1", "value": slot}])


def repeat(options):
    """What repeats says so beside its name."""
    with Window(options) as window:
        window.run_show()
        window.click("Preview-PlaybackWidget-Footer-EndAction-repeat-button")
        window.rest()
        window.shoot(options.out / "repeat.png")
        window.click("Preview-PlaybackWidget-Footer-EndAction-pause-button")
        time.sleep(1)


def rename(options):
    """A name being edited in the panel."""
    with Window(options, scale=2) as window:
        window.run_show()
        window.robot.mouse("click", window.robot.slot(1))
        window.keys("F2")
        time.sleep(0.5)
        window.shoot_widget("PlayerTab-mediapanel-widget", options.out / "rename.png")
        window.keys("Escape")


def drop(options):
    """A slot held over program, by the hand of the screen itself: the robot's own drags drop nothing."""
    with Window(options) as window, Pointer(window.display) as pointer:
        window.run_show()
        pointer.drag(window.robot.slot(1), window.robot.find("Program-PlaybackWidget-PreviewWidget"))
        time.sleep(0.5)
        window.shoot(options.out / "drop-on-program.png")
        pointer.drop(window.robot.find("StatusBar"))


def drop_list(options):
    """A whole playlist held over program's list."""
    with Window(options) as window, Pointer(window.display) as pointer:
        window.run_list()
        pointer.drag(window.robot.find("Preview-PlaylistEditor-grip"), window.robot.find("PlaylistEditor-program"))
        time.sleep(0.5)
        window.shoot(options.out / "list-on-program.png")
        pointer.drop(window.robot.find("StatusBar"))


def outputs(options, name, **how):
    """The OUTPUTS tab, a medium of another shape on program."""
    with Window(options, **how) as window:
        window.run_show()
        window.click("MainNavigationBar-outputs-button")
        window.robot.find("Mapping-output2-picture")
        time.sleep(1)
        window.rest()
        window.shoot(options.out / f"{name}.png")


def scaling(options):
    """What another scaling would do, before it is chosen."""
    with Window(options) as window:
        window.run_show()
        window.click("MainNavigationBar-outputs-button")
        window.robot.mouse("move_to", window.robot.find("Mapping-output2-scaling-bottomRight"))
        time.sleep(1)
        window.shoot(options.out / "outputs-scaling.png")


def modes(options):
    """The mode of an output, with what its display says; then the question whether a mode on air stays."""
    with Window(options) as window:
        window.run_show()
        window.click("MainNavigationBar-outputs-button")
        window.robot.find("editButton")
        pencils = window.robot.ask(objectName="editButton", maxResults=2)  # one of each output
        window.robot.mouse("click", max(pencils, key=lambda item: item["global_y"]))
        window.click("VideoOutput-2-ModelineDialog-mode-manual")
        window.rest()
        window.shoot(options.out / "outputs-mode.png")
        window.robot.ask(operation="focus", objectName="VideoOutput-2-ModelineDialog-format")
        while window.robot.find("VideoOutput-2-ModelineDialog-format")["text"] != "3840 x 2160p 50 Hz":
            window.keys("Down")
        window.click("VideoOutput-2-ModelineDialog-apply-button")
        window.robot.find("KeepModeDialog")
        time.sleep(3)
        window.shoot(options.out / "outputs-keep.png")
        window.click("KeepModeDialog-cancel-button")
        window.keys("Escape")
