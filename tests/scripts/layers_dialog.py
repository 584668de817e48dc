#!/usr/bin/python3
"""The Layers dialog as a whole: what OK and Cancel write, cells of layers, the callbacks it lists keys by, databases that
cannot be used, and a server that dies."""

import os
import pathlib
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

scene = Scene("layers_dialog")

KEYS_AT_FIRST = {10: 2, 11: 3, 20: 2, 21: 99, 30: 1, 31: 3, 32: 1, 33: 4}
LAYERS_AT_FIRST = [
    (1, "M-DUCT", 3, "Continuous", -1, "25", "Style 1"),
    (2, "A-WALL", None, "hidden", 0, None, None),
    (3, "E-TRAY", 30, "CENTER", -1, "50", None),
    (4, "P-PIPE", 5, "Continuous", -1, "100", None),
    (5, "B-GRID", 1, "Continuous", -1, "", None),
]
SYSTEMS_AT_FIRST = [("Supply", 5), ("Return", 7), ("Exhaust", 9)]


def unchanged(what, run):
    scene.equal(what, (run.layers(), run.keys(), run.systems()), (LAYERS_AT_FIRST, KEYS_AT_FIRST, SYSTEMS_AT_FIRST))


# ---- OK and Cancel

run = scene.run(f"press #{OK}")
scene.equal("OK numbers the systems from 2 in the order that they had", run.systems(),
            [("Supply", 2), ("Return", 3), ("Exhaust", 4)])
scene.equal("a color that was missing is 1 after OK, an empty lineweight null, the rest as it was", run.layers(),
            [LAYERS_AT_FIRST[0], (2, "A-WALL", 1, "hidden", 0, None, None), *LAYERS_AT_FIRST[2:4],
             (5, "B-GRID", 1, "Continuous", -1, None, None)])
scene.equal("OK keeps the layers of keys, those not shown and those whose layer is gone too", run.keys(), KEYS_AT_FIRST)
scene.equal("the callbacks for the general system's keys, in the order of the keys' names",
            [call for call in run.calls if "GLOBALS" not in call],
            ['(SHOW "Grid")', '(SORT "Grid")', '(RENAME "Grid")', '(SHOW "Hidden")', '(SHOW "Lost")', '(SORT "Lost")',
             '(RENAME "Lost")', '(SHOW "Text")', '(SORT "Text")', '(RENAME "Text")'])
paths = run.calls_of("globals")
scene.equal("the path goes to each key's first callback", (len(paths), len(set(paths)), paths[0].endswith('db.qn")')),
            (4, 1, True))

changes = [f"cell #{LAYERS} 1 2 77", f"cell #{KEYS} 1 4 P-PIPE", f"row #{SYSTEMS} 3", f"press #{MOVE_UP}"]
run = scene.run(*changes, f"press #{CANCEL}")
scene.equal("Cancel drops cells and the order of systems; a selected system has written the keys before",
            (run.layers(), run.systems(), run.keys()), (LAYERS_AT_FIRST, SYSTEMS_AT_FIRST, {**KEYS_AT_FIRST, 11: 4}))
run = scene.run(*changes, f"press #{OK}")
scene.equal("the same with OK", (run.layer("A-WALL")[0], run.systems()[0], run.keys()[11]), (77, ("Return", 2), 4))
unchanged("Escape in the dialog", scene.run(f"cell #{LAYERS} 1 2 77", "key Escape"))

# ---- How it looks: pictures in the current folder, to look at

pictures = [pathlib.Path.cwd() / f"layers_dialog_{name}.png" for name in ("opened", "system", "choices", "larger", "new_system")]
for picture in pictures:
    picture.unlink(missing_ok=True)
opened, system, choices, larger, new_system = pictures
scene.run("resize 1 1", f"screenshot {opened}", f"row #{SYSTEMS} 2", f"screenshot {system}", f"double #{KEYS} 1 4",
          f"screenshot {choices}", "key Escape", "resize 900 740", f"screenshot {larger}", "resize 1 1",
          f"press #{NEW_SYSTEM}", f"screenshot {new_system}", f"press #{CANCEL}", f"press #{CANCEL}")
sizes = [tuple(int.from_bytes(picture.read_bytes()[place:place + 4]) for place in (16, 20)) for picture in pictures]
scene.equal("the dialog keeps its size until it is made larger", (sizes[1], sizes[2], sizes[3]), (sizes[0], sizes[0], (900, 740)))
if len({picture.read_bytes() for picture in pictures}) < len(pictures) or min(map(lambda p: p.stat().st_size, pictures)) < 1000:
    scene.fail("the pictures show the same, or nothing")

# ---- Cells of layers. Rows are A-WALL, B-GRID, E-TRAY, M-DUCT, P-PIPE.

run = scene.run(f"cell #{LAYERS} 1 2 0", f"cell #{LAYERS} 2 2 300", f"cell #{LAYERS} 3 2", f"cell #{LAYERS} 4 2 12 or so",
                f"cell #{LAYERS} 5 2 -7", f"press #{OK}")
scene.equal("colors are brought to 1 to 255", dict(run.rows("select sName, iColor from tblLayer")),
            {"A-WALL": 1, "B-GRID": 255, "E-TRAY": 1, "M-DUCT": 12, "P-PIPE": 1})
run = scene.run(f"cell #{LAYERS} 1 4 1", f"cell #{LAYERS} 2 4 0", f"cell #{LAYERS} 1 3 DASHDOT", f"cell #{LAYERS} 4 6",
                f"cell #{LAYERS} 5 6 50% of 'it'", f"press #{OK}")
scene.equal("check boxes, linetypes and plot styles",
            dict((name, rest) for name, *rest in run.rows("select sName, bPlot, sLinetype, sPlotstyle from tblLayer")),
            {"A-WALL": [-1, "DASHDOT", None], "B-GRID": [0, "Continuous", None], "E-TRAY": [-1, "CENTER", None],
             "M-DUCT": [-1, "Continuous", None], "P-PIPE": [-1, "Continuous", "50% of 'it'"]})
run = scene.run(f"cell #{LAYERS} 1 5 2.11 mm", f"cell #{LAYERS} 2 5 0.00 mm", f"cell #{LAYERS} 3 5 0.09 mm",
                f"cell #{LAYERS} 4 5 Default", f"press #{OK}")
scene.equal("lineweights are stored in hundredths; one that is in no list stays",
            dict(run.rows("select sName, sLineweight from tblLayer")),
            {"A-WALL": "211", "B-GRID": "0", "E-TRAY": "9", "M-DUCT": None, "P-PIPE": "100"})

WEIGHTS = [0, 5, 9, 13, 15, 18, 20, 25, 30, 35, 40, 50, 53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211]
run = scene.run(f"press #{OK}", change=[f"insert into tblLayer (sName, sLinetype, bPlot, sLineweight) values "
                                        f"('W{weight}', 'Continuous', -1, '{weight}')" for weight in WEIGHTS])
scene.equal("every lineweight goes through the grid as it was",
            [run.layer(f"W{weight}")[3] for weight in WEIGHTS], [str(weight) for weight in WEIGHTS])

run = scene.run(f"cell #{LAYERS} 1 2 77", f"press #{UNDO_LAYERS}", f"press #{OK}")
scene.equal("Undo Layer Changes drops what waited", run.layer("A-WALL")[0], 1)

# ---- Callbacks that are not there, fail, or answer with something else

LAYER_CALLS = ("util-layerKeySetElecGlobals", "util-showLayerKey", "util-createLayerKeySortText", "util-LayerkeyRename",
               "util-createPipeLabels", "util-deletePipeLabels", "util-layersystemoptions",
               "util-exportLayerSystem-noName", "util-importLayerSystem-noName", "util-checkObjectsforLayersystem")
USE_ALL = (f"row #{SYSTEMS} 2", f"press #{EDIT_SYSTEM}", f"press #{EXPORT}", f"press #{IMPORT}", f"press #{NEW_SYSTEM}",
           "type #2006 More", f"press #{OK}", f"press #{DELETE_SYSTEM}", "press Yes", f"press #{OK}")
for how, body in (("not there", None), ("failing", "(car 5)"), ("answering nil", "nil")):
    before = "\n".join(f"(setq {name} nil)" if body is None else f"(defun {name} (a / ) {body})" for name in LAYER_CALLS)
    run = scene.run(*USE_ALL, before=before)
    scene.equal(f"callbacks {how}: nothing is listed, so nothing is assigned", run.keys(), KEYS_AT_FIRST)
    scene.equal(f"callbacks {how}: the system that was made is gone again", [row[0] for row in run.systems()],
                ["Supply", "Return", "Exhaust"])
run = scene.run(f"cell #{KEYS} 3 4 P-PIPE", f"press #{OK}",
                before='(defun util-createLayerKeySortText (key) 5) (defun util-LayerkeyRename (key) (list key))')
scene.equal("a sort text of another type keeps the statement's order", run.keys()[10], 4)
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}",
                before='(defun util-createLayerKeySortText (key) (cond ((= key "Text") "") ((= key "Grid") "b") (T "B")))')
scene.equal("keys are sorted by character codes, the empty text first", run.keys()[10], 4)

# ---- Databases that cannot be used

run = scene.run(call='(setq result (list (qn_qn-customizeLayers "nowhere.qn")))', clean=False)
scene.contains("a missing database", run.out, "Database Error: ")
scene.contains("a missing database: the result", run.out, "result (nil)")
(scene.folder / "text.qn").write_text("no database")
run = scene.run(call='(setq result (list (qn_qn-customizeLayers "text.qn")))', clean=False)
scene.contains("a file that is no database", run.out, "Database Error: ")
os.unlink(scene.folder / "text.qn")
run = scene.run(call="(setq result (list (qn_qn-customizeLayers)))", clean=False)
scene.contains("no path and no connection", run.out, "result (nil)")
unchanged("databases that cannot be used", run)

for table in ("tblLayer", "tblLayerKey", "tblLayerSystem"):
    run = scene.run(f"press #{CANCEL}", again=False,
                    before=f'(ts_connect "db.qn") (ts_delete_table "{table}" T) (ts_close_db)')
    run = scene.run(f"press #{UNDO_LAYERS}", f"press #{NEW_LAYER}", "key Escape", f"row #{SYSTEMS} 1", f"press #{NEW_SYSTEM}",
                    "type #2006 More", f"press #{OK}", f"press #{OK}", again=True)

# ---- A database that can only be read. Needs root for the mount, otherwise that is left out.

sealed = scene.folder / "sealed"
sealed.mkdir()
if subprocess.run(["mount", "-t", "tmpfs", "tmpfs", str(sealed)], stderr=subprocess.DEVNULL).returncode == 0:
    try:
        shutil.copy(scene.folder / "kept.qn", sealed / "db.qn")
        subprocess.run(["mount", "-o", "remount,ro", str(sealed)], check=True)
        scene.says("a database that can only be read: a message, and no dialog",
                   "Database is read-only. Cannot be viewed at this time.", "press OK",
                   call='(setq result (list (qn_qn-customizeLayers "sealed/db.qn")))')
    finally:
        subprocess.run(["umount", str(sealed)], check=True)
else:
    print("left out, no mounts here: a database that can only be read")

# ---- A program's own connection to the same database

run = scene.run(f"cell #{LAYERS} 1 1 A-NEW", f"press #{OK}", call=CONNECTED +
                '(ts_table "tblLayer" "sName") (setq result (cons nil (if (= "A-NEW" (cdr (assoc "sName" (ts_top)))) nil 1)))')
scene.equal("the drawing's connection sees what the dialog wrote", run.layer("A-NEW"), (1, "hidden", 0, None, None))

scene.finish()
