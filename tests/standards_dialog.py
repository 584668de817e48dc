"""Dialogs on a standards database, driven through the host by answers files, and what they left in the database.

A test makes one Scene, which keeps a folder and a database, and runs the dialog as often as it likes:

    scene = Scene("layers_dialog_layers")
    run = scene.run("row #1050 2", "press #1057", "press Yes", "press #1")
    scene.equal("the layer is gone", run.column("select sName from tblLayer"), [...])
    scene.finish()

Every run begins with a copy of the same database, unless it is told to go on with the last one."""

import os
import pathlib
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(os.environ["TESSARY_ROOT"])
BIN = pathlib.Path(os.environ["TESSARY_BIN"])
WINE = os.environ["TESSARY_WINE"]

# The dialog's controls.
KEYS, LAYERS, SYSTEMS, LINETYPES = 1049, 1050, 1051, 1048
MOVE_UP, MOVE_DOWN = 1054, 1055
NEW_SYSTEM, EDIT_SYSTEM, DELETE_SYSTEM = 1058, 1062, 1059
IMPORT, EXPORT = 1064, 1053
UNDO_KEYS, UNDO_LAYERS = 1063, 1061
NEW_LAYER, DELETE_LAYER, DELETE_UNUSED = 1060, 1057, 1080
OK, CANCEL = 1, 2

# Names as the dialog lists them are in another order than keys: 2 A-WALL, 5 B-GRID, 3 E-TRAY, 1 M-DUCT, 4 P-PIPE.
# Key 20 is not shown, and the layer of key 21 does not exist.
DATABASE = """
(load "standards_tables")
(ts_create_db "first.qn")
(ts_connect "first.qn")
(if (standardsTables:create) (princ "made"))
(foreach statement
  '("INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle) VALUES ('M-DUCT', 3, 'Continuous', True, '25', 'Style 1')"
    "INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot) VALUES ('A-WALL', Null, 'hidden', False)"
    "INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('E-TRAY', 30, 'CENTER', True, '50')"
    "INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('P-PIPE', 5, 'Continuous', True, '100')"
    "INSERT INTO tblLayer (sName, iColor, sLinetype, bPlot, sLineweight) VALUES ('B-GRID', 1, 'Continuous', True, '')"
    "INSERT INTO tblLayerSystem (sDescription, iSortOrder) VALUES ('Return', 7)"
    "INSERT INTO tblLayerSystem (sDescription, iSortOrder) VALUES ('Supply', 5)"
    "INSERT INTO tblLayerSystem (sDescription, iSortOrder) VALUES ('Exhaust', 9)"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (10, Null, 2, 'Text')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (11, Null, 3, 'Grid')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (20, Null, 2, 'Hidden')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (21, Null, 99, 'Lost')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (30, 2, 1, 'Duct')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (31, 2, 3, 'Center')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (32, 1, 1, 'Duct')"
    "INSERT INTO tblLayerKey (ixLayerKey, ixLayerSystem, ixLayer, sKey) VALUES (33, 3, 4, 'Duct')")
  (if (not (ts_command statement)) (princ statement)))
(ts_close_db)
"""

# Keys are listed under their names, Hidden is not. Each call goes into a file as (NAME ARGUMENT...).
CALLBACKS = r"""
(defun note (call / file) (setq file (open "calls.txt" "a")) (prin1 call file) (princ "\n" file) (close file))
(defun util-layerKeySetElecGlobals (path) (note (list 'globals path)) T)
(defun util-showLayerKey (key) (note (list 'show key)) (/= key "Hidden"))
(defun util-createLayerKeySortText (key) (note (list 'sort key)) key)
(defun util-LayerkeyRename (key) (note (list 'rename key)) (strcat "The " key))
(defun util-createPipeLabels (new source) (note (list 'create-labels new source)))
(defun util-checkObjectsforLayersystem (system) (note (list 'check-objects system)) nil)
(defun util-deletePipeLabels (system) (note (list 'delete-labels system)))
(defun util-layersystemoptions (system path) (note (list 'options system path)))
(defun util-exportLayerSystem-noName (system path) (note (list 'export system path)))
(defun util-importLayerSystem-noName (system path) (note (list 'import system path)) nil)
"""

# Connects to the database as the drawing's own, opens the dialog without a path.
CONNECTED = '(ts_connect "db.qn") (setq result (list (qn_qn-customizeLayers)))'
WITH_PATH = '(setq result (list (qn_qn-customizeLayers "db.qn")))'


def open_database(path):
    database = sqlite3.connect(path)
    # The server's order of texts, near enough for names in plain letters.
    database.create_collation("TESSARY_TEXT", lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower()))
    return database


class Run:
    # log: what the host said about itself, with the dialogs that were shown.
    def __init__(self, folder, status, out, log, calls):
        self.folder, self.status, self.out, self.calls = folder, status, out, calls
        # The texts of the product's message boxes, in order.
        self.messages, self.errors = [], ""
        for entry in re.split(r"^drafthost: ", log, flags=re.MULTILINE):
            shown = re.match(r'dialog "(.*?)": (.*)', entry, flags=re.DOTALL)
            if not shown:
                self.errors += entry
            elif shown[1] == "Quarnel":
                self.messages.append(shown[2].rstrip("\n"))

    def rows(self, statement):
        database = open_database(self.folder / "db.qn")
        rows = database.execute(statement).fetchall()
        database.close()
        return rows

    def column(self, statement):
        return [row[0] for row in self.rows(statement)]

    def layers(self):
        return self.rows("select ixLayer, sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer order by ixLayer")

    def layer(self, name):
        found = [row[2:] for row in self.layers() if row[1] == name]
        return found[0] if len(found) == 1 else found

    def keys(self):
        return dict(self.rows("select ixLayerKey, ixLayer from tblLayerKey"))

    def systems(self):
        return self.rows("select sDescription, iSortOrder from tblLayerSystem order by iSortOrder, ixLayerSystem")

    # The calls of those functions, in order.
    def calls_of(self, *names):
        return [call for call in self.calls if call[1:].split(" ")[0].rstrip(")").lower() in names]


class Scene:
    def __init__(self, name):
        self.name = name
        self.failures = 0
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)
        made = self.host("(progn " + DATABASE + ")")
        if "made" not in made.out:
            self.fail("making the database", made.out + made.errors)
            self.finish()
        os.rename(self.folder / "first.qn", self.folder / "kept.qn")

    def host(self, program, answers=(), wait=120):
        (self.folder / "program.lsp").write_text(program, encoding="utf-8")
        (self.folder / "answers.txt").write_text("\n".join(answers) + "\n", encoding="utf-8")
        calls = self.folder / "calls.txt"
        calls.unlink(missing_ok=True)
        # Into files: the database server that a run starts would keep a pipe open.
        with open(self.folder / "out.txt", "wb") as out, open(self.folder / "err.txt", "wb") as errors:
            command = [WINE, str(BIN / "drafthost.exe"), "run", "--verbose", "--module", str(BIN / "Tessary2010x64.arx"), "--support",
                       str(ROOT / "lisp"), "--answers", "answers.txt", "program.lsp"]
            process = subprocess.Popen(command, cwd=self.folder, stdin=subprocess.DEVNULL, stdout=out, stderr=errors)
            try:
                status = process.wait(wait)
            except subprocess.TimeoutExpired:
                process.kill()
                status = "hangs"
        read = lambda path: path.read_text(encoding="utf-8", errors="replace").replace("\r", "") if path.exists() else ""
        if status == "hangs":
            self.fail("a run hangs", answers)
        return Run(self.folder, status, read(self.folder / "out.txt"), read(self.folder / "err.txt"),
                   read(calls).splitlines())

    # answers: the lines of the answers file. before: LISP that is evaluated before the dialog is opened. change: SQL that
    # the database is changed with first. again: with the database as the last run left it. clean: the run ends with
    # status 0, the dialog's result nil and no warning.
    def run(self, *answers, before="", change=(), call=WITH_PATH, again=False, clean=True):
        database = self.folder / "db.qn"
        if not again:
            for file in self.folder.glob("db.qn*"):
                file.unlink()
            shutil.copy(self.folder / "kept.qn", database)
        if change:
            connection = open_database(database)
            with connection:
                for statement in change:
                    connection.execute(statement)
            connection.close()
        run = self.host(CALLBACKS + before + "\n" + call + '\n(princ "\\nresult ") (prin1 result)', answers)
        if clean and (run.status != 0 or "result (nil)" not in run.out or run.errors.strip()):
            self.fail("a run", f"{answers}\nstatus {run.status}\n{run.out}\n{run.errors}")
        return run

    def fail(self, what, details=""):
        print(f"{what}: {details}")
        self.failures += 1

    def equal(self, what, found, expected):
        if found != expected:
            self.fail(what, f"\n  found    {found}\n  expected {expected}")

    # The answers lead to message boxes with these texts, the last of which nobody answers.
    def says(self, what, text, *answers, **options):
        run = self.run(*answers, clean=False, **options)
        texts = [text] if isinstance(text, str) else text
        self.equal(what, run.messages[:len(texts)], texts)
        self.contains(what + ": the run goes on", run.out, "result (nil)")
        return run

    def contains(self, what, text, part):
        if part not in text:
            self.fail(what, f"\n  found    {text}\n  expected {part}")

    def finish(self):
        self.temporary.cleanup()
        sys.exit(1 if self.failures else 0)
