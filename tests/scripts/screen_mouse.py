"""The Layers dialog on a display, worked with a real mouse and a real keyboard, and what the database holds afterwards.

Needs Xvfb and xdotool. The display and the Wine prefix are the test's own, so that nothing here meets other tests."""

import contextlib
import fcntl
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time

ROOT = pathlib.Path(os.environ["TESSARY_ROOT"])
BIN = pathlib.Path(os.environ["TESSARY_BIN"])
PREFIX = ROOT / "build" / "wine-screen-test"
os.environ.update(TESSARY_SCREEN="yes", TESSARY_WINEPREFIX=str(PREFIX))

sys.path.insert(0, str(ROOT / "tests"))
import standards_dialog as standards  # noqa: E402

PATIENCE = 30  # seconds
EDITOR, YES = 8, 6  # control ids: of a grid's editor, of a message box


@contextlib.contextmanager
def display():
    """A display of its own, as DISPLAY."""
    reading, writing = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"],
                              pass_fds=[writing], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as number:
        os.environ["DISPLAY"] = ":" + number.readline().strip()
    try:
        yield
    finally:
        server.terminate()
        server.wait()


@contextlib.contextmanager
def prefix():
    """The Wine prefix, with the database server; nobody else uses it meanwhile."""
    with open(f"{PREFIX}.in-use", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        subprocess.run([ROOT / "scripts/wine-prefix.sh"], check=True, stdin=subprocess.DEVNULL)
        register = 'for part in common wine-session server; do . "$TESSARY_ROOT/scripts/$part.sh"; done; register_server "$@"'
        subprocess.run(["bash", "-c", register, "-", PREFIX, BIN, "local"], check=True)
        try:
            yield
        finally:
            # Wine keeps its desktop on the display that is about to go.
            subprocess.run([ROOT / "scripts/wine.sh", "--server", "-k"], stdin=subprocess.DEVNULL)


def output(*command):
    done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, timeout=PATIENCE)
    return done.stdout.replace("\r", "") if done.returncode == 0 else ""


def xdotool(*words):
    subprocess.run(["xdotool", *map(str, words)], check=True, timeout=PATIENCE)


class Area:
    def __init__(self, words):
        self.left, self.top, self.right, self.bottom = map(int, words[:4])
        self.rest = words[4] if len(words) > 4 else ""

    def middle(self):
        return (self.left + self.right) // 2, (self.top + self.bottom) // 2


class Map:
    """Where a dialog and what is in it are on the screen just now."""

    def __init__(self, caption):
        self.dialog, self.controls, self.cells, self.entries = None, {}, {}, {}
        for line in output(standards.WINE, str(BIN / "dialog_map.exe"), caption).splitlines():
            kind, rest = line.split(" ", 1)
            if kind == "dialog":
                self.dialog = Area(rest.split(" ", 4))
            elif kind == "control":
                number, *area = rest.split(" ", 5)
                self.controls[int(number)] = Area(area)
            elif kind == "cell":
                grid, row, column, *area = rest.split(" ", 7)
                self.cells[int(grid), int(row), int(column)] = Area(area)
            elif kind == "entry":
                number, *area = rest.split(" ", 5)
                self.entries[area[4]] = Area(area)

    def texts(self, grid, column):
        return [cell.rest for (of, row, at), cell in sorted(self.cells.items()) if of == grid and at == column and row > 0]

    def row(self, grid, column, text):
        return 1 + self.texts(grid, column).index(text)


class Drafter:
    def __init__(self, scene):
        self.scene = scene

    def wait(self, what, caption, holds):
        """The map of the dialog as soon as the condition holds."""
        end = time.monotonic() + PATIENCE
        while True:
            seen = Map(caption)
            if seen.dialog and holds(seen):
                return seen
            if time.monotonic() > end:
                self.scene.fail(what, f"did not come about; controls {list(seen.controls)}, "
                                      f"layers {seen.texts(standards.LAYERS, 1)[:6]}, entries {list(seen.entries)[:6]}")
                raise TimeoutError(what)

    def layers(self, what, holds):
        return self.wait(what, "Layers", holds)

    def click(self, area, times=1):
        xdotool("mousemove", *area.middle(), "click", "--repeat", times, "--delay", 50, 1)

    def keys(self, *names):
        xdotool("key", *names)

    def take_keyboard(self, caption):
        # What a window manager would do.
        window = output("xdotool", "search", "--sync", "--onlyvisible", "--name", f"^{caption}$").split()[0]
        xdotool("windowfocus", "--sync", window)


def start(scene, program, *options):
    (scene.folder / "program.lsp").write_text(program, encoding="utf-8")
    command = [standards.WINE, str(BIN / "drafthost.exe"), "run", "--screen", "--module", str(BIN / "Tessary2010x64.arx"),
               "--support", str(ROOT / "lisp"), *options, "program.lsp"]
    with open(scene.folder / "out.txt", "wb") as out, open(scene.folder / "err.txt", "wb") as errors:
        # A shell may have started the tests with Ctrl-C ignored, which programs inherit.
        return subprocess.Popen(command, cwd=scene.folder, stdin=subprocess.DEVNULL, stdout=out, stderr=errors,
                                preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))


def work_in_layers_dialog(scene, drafter):
    LAYERS, KEYS, SYSTEMS = standards.LAYERS, standards.KEYS, standards.SYSTEMS
    seen = drafter.layers("the dialog", lambda now: now.texts(LAYERS, 1))
    scene.equal("the dialog is in front", seen.dialog.rest, "foreground")
    drafter.take_keyboard("Layers")

    drafter.click(seen.cells[SYSTEMS, seen.row(SYSTEMS, 2, "Supply"), 2])
    seen = drafter.layers("a click on a system shows its keys", lambda now: "The Center" in now.texts(KEYS, 0))

    row = seen.row(LAYERS, 1, "A-WALL")
    drafter.click(seen.cells[LAYERS, row, 1], times=2)
    seen = drafter.layers("a double click opens an editor", lambda now: EDITOR in now.controls)
    drafter.keys("Home", "shift+End")
    xdotool("type", "A-Wall (new)")
    drafter.keys("Return")
    seen = drafter.layers("typed text", lambda now: "A-Wall (new)" in now.texts(LAYERS, 1))

    row = seen.row(KEYS, 0, "The Duct")
    drafter.click(seen.cells[KEYS, row, 4], times=2)
    seen = drafter.layers("a drop-down", lambda now: "P-PIPE" in now.entries)
    drafter.click(seen.entries["P-PIPE"])
    drafter.layers("the list closes", lambda now: not now.entries)
    drafter.keys("Return")
    seen = drafter.layers("an entry of the drop-down", lambda now: now.cells[KEYS, row, 4].rest == "P-PIPE")

    row = seen.row(LAYERS, 1, "B-GRID")
    scene.equal("the check box at first", seen.cells[LAYERS, row, 4].rest, "1")
    drafter.click(seen.cells[LAYERS, row, 4])
    seen = drafter.layers("the check box after a click", lambda now: now.cells[LAYERS, row, 4].rest == "0")

    header = seen.cells[LAYERS, 0, 1]
    edge, middle = header.right, header.middle()[1]
    xdotool("mousemove", edge - 1, middle, "mousedown", 1, "mousemove", edge + 20, middle, "mousemove", edge + 39, middle,
            "mouseup", 1)
    drafter.layers("dragging the edge of a header by 40 pixels",
                   lambda now: abs(now.cells[LAYERS, 0, 1].right - edge - 40) <= 1)

    top = seen.cells[LAYERS, row, 1].top
    xdotool("mousemove", *seen.controls[LAYERS].middle(), "click", 5)
    drafter.layers("the wheel scrolls down", lambda now: now.cells[LAYERS, row, 1].top < top)
    xdotool("click", 4)
    seen = drafter.layers("the wheel scrolls up", lambda now: now.cells[LAYERS, row, 1].top == top)

    # A message box belongs to the drafter's mouse as well.
    drafter.click(seen.cells[LAYERS, seen.row(LAYERS, 1, "Z-1"), 1])
    drafter.click(seen.controls[standards.DELETE_LAYER])
    drafter.click(drafter.wait("the question", "Quarnel", lambda now: YES in now.controls).controls[YES])
    seen = drafter.layers("the layer is gone", lambda now: "Z-1" not in now.texts(LAYERS, 1))
    drafter.click(seen.controls[standards.OK])


def layers_dialog(scene):
    shutil.copy(scene.folder / "kept.qn", scene.folder / "db.qn")
    database = standards.open_database(scene.folder / "db.qn")
    database.executemany("insert into tblLayer (sName, sLinetype, bPlot) values (?, 'Continuous', -1)",
                         [(f"Z-{number}",) for number in range(1, 41)])
    database.commit()
    database.close()
    host = start(scene, standards.CALLBACKS + standards.WITH_PATH + '(princ "closed")')
    try:
        work_in_layers_dialog(scene, Drafter(scene))
        scene.equal("the host's status", host.wait(PATIENCE), 0)
    except (TimeoutError, subprocess.TimeoutExpired) as problem:
        host.terminate()
        scene.fail("the dialog", problem)
        return
    scene.equal("standard error", (scene.folder / "err.txt").read_text(), "")
    run = standards.Run(scene.folder, 0, "", "", [])
    names = run.column("select sName from tblLayer")
    scene.equal("the layer that was renamed", ("A-WALL" in names, "A-Wall (new)" in names), (False, True))
    scene.equal("the layer that was deleted", ("Z-1" in names, "Z-2" in names), (False, True))
    scene.equal("the key's layer", run.keys()[30], 4)
    scene.equal("the plot flag", run.rows("select bPlot from tblLayer where sName = 'B-GRID'"), [(0,)])


def answers_on_a_display(scene):
    """Answers drive a dialog that can be seen, too; nobody touches the mouse."""
    (scene.folder / "answers.txt").write_text("press Yes\n", encoding="utf-8")
    host = start(scene, '(alert "Shown") (princ "closed")', "--answers", "answers.txt")
    scene.equal("an answer that does not fit", host.wait(PATIENCE), 1)
    (scene.folder / "answers.txt").write_text("press OK\n", encoding="utf-8")
    host = start(scene, '(alert "Shown") (princ "closed")', "--answers", "answers.txt")
    scene.equal("answers on a display", host.wait(PATIENCE), 0)
    scene.contains("answers on a display", (scene.folder / "out.txt").read_text(), "closed")


def interrupted(scene):
    """Ctrl-C in the terminal cancels the dialog that is open, and the program."""
    host = start(scene, "(acad_colordlg 5) (princ 'afterwards)")
    Drafter(scene).wait("the color dialog", "Select Color", lambda now: now.controls)
    host.send_signal(signal.SIGINT)
    scene.equal("Ctrl-C: status", host.wait(PATIENCE), 1)
    said = (scene.folder / "out.txt").read_text()
    scene.contains("Ctrl-C", said, "; error: Function cancelled")
    scene.equal("Ctrl-C: the program goes on", "AFTERWARDS" in said, False)


def no_display(scene):
    os.environ["DISPLAY"] = ":4999"
    host = start(scene, '(alert "Nobody sees this")')
    scene.equal("a display that is not there", host.wait(PATIENCE), 1)
    scene.contains("a display that is not there", (scene.folder / "err.txt").read_text(), "the display cannot be opened")


with display(), prefix():
    scene = standards.Scene("screen_mouse")
    layers_dialog(scene)
    answers_on_a_display(scene)
    interrupted(scene)
    no_display(scene)
scene.finish()
