#!/usr/bin/python3
"""What becomes of the Layers dialog and of the database while somebody else holds the file, and when the server dies."""

import os
import subprocess
import sys
import tempfile
import threading
import time

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

# The export waits for the test.
WAITS = """
(defun util-exportLayerSystem-noName (system path) (note '(ready)) (while (not (findfile "go.txt"))) nil)
"""


# Runs the answers; meanwhile() is called during the export, which they have to ask for.
def run_with(scene, meanwhile, *answers, **options):
    go = scene.folder / "go.txt"
    for file in (go, scene.folder / "calls.txt"):
        file.unlink(missing_ok=True)
    over = threading.Event()

    def wait():
        calls = scene.folder / "calls.txt"
        while not over.is_set() and not (calls.exists() and "(READY)" in calls.read_text(errors="replace")):
            time.sleep(0.05)
        try:
            if not over.is_set():
                meanwhile()
        finally:
            go.write_text("")

    waiting = threading.Thread(target=wait)
    waiting.start()
    try:
        return scene.run(*answers, before=WAITS, clean=False, **options)
    finally:
        over.set()
        waiting.join()


def everything(run):
    return run.layers(), run.keys(), run.systems()


# ---- Somebody else holds the file

scene = Scene("layers_dialog_faults")
before = everything(scene.run(f"press #{CANCEL}"))
holder = []


def hold():
    holder.append(sqlite3.connect(scene.folder / "db.qn", check_same_thread=False))
    holder[-1].execute("begin immediate")


def released(run):
    if holder:
        holder.pop().close()
    else:
        scene.fail("the file was not held", run.out + run.errors)
    return everything(run)


for answers in ((f"press #{NEW_LAYER}", "key Escape", f"press #{CANCEL}"), (f"cell #{LAYERS} 1 1 A-NEW", f"press #{CANCEL}"),
                (f"press #{NEW_SYSTEM}", "type #2006 More", f"press #{OK}", f"press #{CANCEL}"), (f"press #{OK}",)):
    run = run_with(scene, hold, f"press #{EXPORT}", *answers)
    scene.equal(f"nothing is written while the file is held: {answers[0]}", released(run), before)
    scene.contains("and the dialog ends as always", run.out, "result (nil)")
    scene.equal("without warnings", run.errors.strip(), "")

# ---- The server dies. Where processes are killed no one else's may be.

with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
    prefix = os.environ["TESSARY_WINEPREFIX"] = os.path.join(folder, "wine")

    def wine(*arguments):
        subprocess.run([WINE, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def end_all():
        wine("--server", "-k")
        wine("--server", "-w")

    def kill_server():
        killed = 0
        for process in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{process}/cmdline", "rb") as command, open(f"/proc/{process}/environ", "rb") as variables:
                    if b"TessaryServer" in command.read() and f"WINEPREFIX={prefix}".encode() in variables.read().split(b"\0"):
                        os.kill(int(process), 9)
                        killed += 1
            except OSError:
                pass
        if not killed:
            scene.fail("no server was killed")

    try:
        wine(str(BIN / "TessaryServer.exe"), "/RegServer")
        wine("--server", "-w")
        # The drawing can be changed afterwards, so its lock is gone.
        call = ('(setq result (vl-catch-all-apply (function qn_qn-customizeLayers) (list "db.qn")))'
                '(princ (if (vl-catch-all-error-p result) "\\nfailed" "\\nno error"))'
                '(setq result (list (null (entmake (quote ((0 . "LINE") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))))))')
        for action in (f"press #{NEW_LAYER}", f"press #{NEW_SYSTEM}\ntype #2006 More\npress #{OK}",
                       f"cell #{LAYERS} 1 1 A-NEW", f"press #{UNDO_LAYERS}", f"row #{LAYERS} 2\npress #{DELETE_LAYER}", f"press #{OK}"):
            run = run_with(scene, kill_server, f"press #{EXPORT}", *action.split("\n"), call=call)
            scene.equal(f"{action}: the run ends well", (run.status, run.errors.strip()), (0, ""))
            scene.contains(f"{action}: the drafter is told", run.out, "\nError\nfailed")
            scene.contains(f"{action}: the document is unlocked", run.out, "result (nil)")
            scene.equal(f"{action}: the database is as it was", everything(run), before)
            scene.equal(f"{action}: and whole", run.column("pragma integrity_check"), ["ok"])
            end_all()
    finally:
        end_all()

scene.finish()
