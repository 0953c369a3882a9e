"""Pictures of the FILES and the MEDIA tab, and of shows."""
import shutil
import time

from screenwindow import HUGE, Pointer, Window, fill, wait


def shows(options):
    """Saved under a name, changed, in the list; and what an import that lacks media asks. The show stays."""
    with Window(options) as window:
        window.run_show()
        window.choose("SaveShowAs")
        window.robot.find("SaveShowAsDialog-input-0")
        window.keys("CtrlA", *"Gala evening")
        window.shoot(options.out / "save-show-as.png")
        window.keys("Enter")
        wait(lambda: window.robot.find("StatusBar-Show")["text"] == "Show: Gala evening", "the saved show")
        window.choose("ClearShow")
        window.robot.find("ClearShowDialog")
        time.sleep(0.5)
        window.click("ClearShowDialog-accept-button")
        wait(lambda: "not saved" in window.robot.find("StatusBar-Show")["text"], "the cleared show")
        window.choose("Shows")
        wait(lambda: window.cell("ShowsDialog-view", 0, 0), "the list of shows")
        time.sleep(0.5)
        window.shoot(options.out / "shows.png")
        window.click("ShowsDialog-accept-button")
        window.robot.find("LoadShowDialog")
        time.sleep(0.5)
        window.shoot(options.out / "load-show.png")
        window.click("LoadShowDialog-accept-button")
        window.robot.slot(0)
        window.choose("EarlierStates")
        wait(lambda: window.cell("EarlierStatesDialog-view", 1, 0), "the earlier states")
        time.sleep(0.5)
        window.shoot(options.out / "earlier-states.png")
    with Window(options, **HUGE) as window:
        window.choose("EarlierStates")
        wait(lambda: window.cell("EarlierStatesDialog-view", 1, 0), "the earlier states")
        time.sleep(0.5)
        window.shoot(options.out / "earlier-states-huge-1280x720.png")


def files(options, name, **how):
    """The FILES tab at work, half a gigabyte on its way up while program plays; the limit keeps it there."""
    shows = options.media.parent / "Shows"
    for folder, names in {"Act 1": ("Overture.mov", "Storm.mov"), "Act 2": ("Night.mov",), "Rehearsal": ()}.items():
        (shows / folder).mkdir(parents=True, exist_ok=True)
        for file in names:
            fill(shows / folder / file, 60_000_000)
    for file, size in {"Applause.wav": 9_400_000, "Curtain.mov": 212_000_000, "Doors open.mp4": 31_000_000,
                       "Sponsor plate.png": 812_000}.items():
        fill(shows / file, size)
    for sent in ("Act 1", "Act 2"):
        shutil.rmtree(options.media / sent, ignore_errors=True)
    (options.media / "Sponsor plate.png").unlink(missing_ok=True)
    with Window(options, **how) as window:
        window.run_show()
        window.click("MainNavigationBar-files-button")
        window.click("local-files-list")
        window.keys("Ctrl+L", *str(shows), "Enter")
        wait(lambda: window.robot.find("local-files-row0")["text"] == "Act 1", "the folder")
        window.click("transfers-limit-button")
        window.click("transfers-limit-20")
        window.click("local-files-list")
        window.keys("End", "Ctrl+Right")
        wait(lambda: ": Done" in window.robot.find("transfers-row0")["text"], "the small file")
        window.keys("Home", "Shift+Down", "Ctrl+Right")
        time.sleep(4)
        window.rest()
        window.shoot(options.out / f"{name}.png")
        window.click("transfers-stop-button")
        time.sleep(1)


def slots(options):
    """A file from the FILES tab over the PLAYER tab's button onto a slot, and on its way there, a folder behind it."""
    shows = options.media.parent / "Arriving"
    shows.mkdir(exist_ok=True)
    fill(shows / "Sponsor film.mp4", 6_000_000_000)
    (shows / "Act 4").mkdir()
    fill(shows / "Act 4" / "Finale.mp4", 1_000_000_000)
    with Window(options) as window, Pointer(window.display) as pointer:
        window.click("MainNavigationBar-files-button")
        window.click("local-files-list")
        window.keys("Ctrl+L", *str(shows), "Enter")
        wait(lambda: window.robot.find("local-files-row1")["text"] == "Sponsor film.mp4", "the file")
        window.click("transfers-limit-button")
        window.click("transfers-limit-20")
        row, tab = window.robot.find("local-files-row1"), window.robot.find("MainNavigationBar-player-button")
        pointer.drag(row, tab)
        time.sleep(1)
        slot = window.robot.slot(1)
        pointer.move(slot["global_x"], slot["global_y"] - 4)
        pointer.move(slot["global_x"], slot["global_y"])
        time.sleep(0.5)
        window.shoot(options.out / "drop-on-slots.png")
        pointer.press(False)
        window.click("MainNavigationBar-files-button")
        pointer.drag(window.robot.find("local-files-row0"), tab)
        time.sleep(1)
        pointer.move(slot["global_x"], slot["global_y"] - 4)
        pointer.move(slot["global_x"], slot["global_y"])
        pointer.press(False)
        window.robot.find("MediaPanel-pending-text")
        time.sleep(1)
        window.rest()
        window.shoot(options.out / "arriving.png")
        window.click("MainNavigationBar-files-button")
        window.click("transfers-stop-button")
        time.sleep(1)
        window.keys("Ctrl+Z")


def pictures(options, name, **how):
    """A folder of sequences and stills that was dropped from the FILES tab, while a show runs."""
    act = options.media.parent / "Pictures" / "Act 3"
    act.mkdir(parents=True, exist_ok=True)
    frame = next(options.media.glob("*.png"))
    for start, frames in {"sky_v012.": range(1001, 1049), "rain.": [n for n in range(1, 25) if n not in (7, 8)]}.items():
        for number in frames:
            shutil.copy(frame, act / f"{start}{number:04}.png")
    for plate in ("Sponsor plate.png", "House rules.png", "Curtain.jpg"):
        shutil.copy(frame, act / plate)
    with Window(options, **how) as window, Pointer(window.display) as pointer:
        window.run_show()
        window.click("MainNavigationBar-files-button")
        window.click("local-files-list")
        window.keys("Ctrl+L", *str(act.parent), "Enter")
        wait(lambda: window.robot.find("local-files-row0")["text"] == "Act 3", "the folder")
        pointer.drag(window.robot.find("local-files-row0"), window.robot.find("MainNavigationBar-player-button"))
        time.sleep(1)
        slot = window.robot.slot(2)
        pointer.move(slot["global_x"], slot["global_y"] - 4)
        pointer.move(slot["global_x"], slot["global_y"])
        pointer.press(False)
        window.robot.find("DropDialog-sequences-row1")
        window.robot.ask(operation="raise", objectName="DropDialog")  # nobody else gives it the keyboard here
        window.click("DropDialog-rate-field-input")
        window.keys("CtrlA", "2", "5")
        window.rest()
        window.shoot(options.out / f"{name}.png")
        window.keys("Escape")
    shutil.rmtree(options.media / "Act 3")


def media_tab(options, name, **how):
    """The MEDIA tab: what is on the channels, a slot that cannot be played and why."""
    with Window(options, **how) as window:
        window.run_show()
        window.click("MainNavigationBar-media-button")
        window.robot.find("media-slot1")
        window.click("media-slot1" if how else "media-slot7")
        time.sleep(2)
        window.robot.mouse("move_to", window.robot.find("media-collections-panel"))
        time.sleep(0.7)
        window.shoot(options.out / f"{name}.png")


def beside(options):
    """Two collections, slots on their way from the one to the other, and a collection on its way up the list."""
    with Window(options) as window, Pointer(window.display) as pointer:
        window.click("MainNavigationBar-media-button")
        window.robot.find("media-slot4")
        for number, title in enumerate(("act one", "act two", "encore"), 1):
            window.click("MediaView-add-collection-button")
            window.robot.find("MediaView-new-collection-input-0")
            window.robot.ask(operation="raise", objectName="MediaView-new-collection")
            window.click("MediaView-new-collection-input-0")
            window.keys("CtrlA", *title)
            window.click("MediaView-new-collection-accept-button")
            wait(lambda number=number, title=title: any(item["text"] == title for item in window.robot.ask(
                objectName=f"media-collection-row{number}", maxResults=1)), title)
        window.click("media-collection-row0")
        window.click("media-slots-beside-button")
        window.robot.find("media-slots2")
        window.click("media-slot2")
        window.robot.ask(operation="focus", objectName="media-slots-grid")
        window.keys("Shift+Right", "Shift+Right")
        pointer.drag(window.robot.find("media-slot2"), window.robot.find("media-slots2"))
        time.sleep(0.5)
        window.shoot(options.out / "media-beside.png")
        pointer.press(False)
        window.robot.find("media-slots2-slot3")
        pointer.drag(window.robot.find("media-collection-row3"), window.robot.find("media-collection-row1"))
        time.sleep(0.5)
        window.shoot(options.out / "media-order.png")
        window.keys("Escape")
        pointer.press(False)
        window.click("media-slots2-close-button")
        for _ in range(4):
            window.keys("CtrlZ")
            time.sleep(0.3)
