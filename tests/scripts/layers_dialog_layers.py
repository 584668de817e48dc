#!/usr/bin/python3
"""The list of layers in the Layers dialog: names and what they may be, new and deleted layers, colors from the host's dialog."""

import os
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

scene = Scene("layers_dialog_layers")
NAMES = ["A-WALL", "B-GRID", "E-TRAY", "M-DUCT", "P-PIPE"]
TAKEN = "Layer name already exists in the database."
INVALID = ("Invalid characters in layer name.\n\nThe following characters are not valid in layer names:\n"
           "    < > / \\ ' \" : ; ? * | , = '")
REFERENCED = "Layer is currently referenced by a layer key and cannot be deleted."


def names(run):
    return run.column("select sName from tblLayer order by ixLayer")


def named(*order):
    first = ["M-DUCT", "A-WALL", "E-TRAY", "P-PIPE", "B-GRID"]
    return [dict(order).get(name, name) for name in first]


# ---- Names are written when their editing ends, whatever becomes of the dialog

run = scene.run(f"cell #{LAYERS} 1 1 \t A-NEW  ", f"press #{CANCEL}")
scene.equal("a new name, without white space at its ends", names(run), named(("A-WALL", "A-NEW")))
scene.equal("is written with the row's other cells", run.layer("A-NEW"), (1, "hidden", 0, None, None))
run = scene.run(f"cell #{LAYERS} 1 2 99", f"cell #{LAYERS} 1 5 0.13 mm", f"cell #{LAYERS} 1 1 A-NEW", f"press #{CANCEL}")
scene.equal("also those that were waiting for OK", run.layer("A-NEW"), (99, "hidden", 0, "13", None))
run = scene.run(f"cell #{LAYERS} 1 1 A-WALL", f"press #{CANCEL}")
scene.equal("a name that stays as it is", (names(run), run.layer("A-WALL")[0]), (named(), 1))
run = scene.run(f"cell #{LAYERS} 1 1 a-wall", f"press #{CANCEL}")
scene.equal("a name in other letters, which is not another layer's", names(run), named(("A-WALL", "a-wall")))
run = scene.run(f"double #{LAYERS} 1 1", "key X", "key Escape", f"press #{CANCEL}")
scene.equal("Escape in the editor keeps the name, and the dialog", names(run), named())

for name in ("100% [A]{B}", "Grün-Ü", "L" * 255, "(a)", "A&B", "DROP TABLE"):
    run = scene.run(f"cell #{LAYERS} 1 1 {name}", f"press #{CANCEL}")
    scene.equal(f"a name like {name[:12]}", names(run), named(("A-WALL", name)))
run = scene.run(f"cell #{LAYERS} 1 1 {'L' * 256}", f"press #{OK}")
scene.equal("a name that the database declines is lost, and nothing else", (names(run), run.layer("P-PIPE")[0]), (named(), 5))
for action in (f"cell #{LAYERS} 1 1 {'L' * 256}", f"cell #{LAYERS} 1 6 {'L' * 256}"):
    run = scene.run(action, f"press #{OK}", call=WITH_PATH + ' (princ (strcat "last error: " (ts_lastError)))')
    scene.contains("why a row was declined can be asked for", run.out, "last error: (")

# ---- Names that are refused

for name in ("M-DUCT", "m-duct", " M-Duct "):
    scene.says("a name that another layer has", TAKEN, f"cell #{LAYERS} 1 1 {name}")
    run = scene.run(f"cell #{LAYERS} 1 2 99", f"cell #{LAYERS} 1 1 {name}", "press OK", "key Return", f"press #{CANCEL}")
    scene.equal("the old name comes back, and the row is written under it", (names(run), run.layer("A-WALL")[0]), (named(), 99))
run = scene.run(f"cell #{LAYERS} 1 1 M-DUCT", "press OK", "key Control+A", "key Z", "key Return", f"press #{CANCEL}")
scene.equal("after the message the cell is being edited again", names(run), named(("A-WALL", "z")))
for character in "<>/\\'\":;?*|,=":
    run = scene.run(f"cell #{LAYERS} 1 2 99", f"cell #{LAYERS} 1 1 A{character}B", "press OK", "key Escape", f"press #{CANCEL}")
    scene.equal(f"a name with {character}: the old name is written again when the editing ends, the name with it never",
                names(run), named())
scene.says("the message about characters", INVALID, f"cell #{LAYERS} 1 1 A/B")
run = scene.run(f"cell #{LAYERS} 1 1 A/B", "press OK", "key Control+A", "key Z", "key Return", f"press #{CANCEL}")
scene.equal("the name can be corrected at once", names(run), named(("A-WALL", "z")))
run = scene.run(f"cell #{LAYERS} 2 1 A/B", "press OK", "key Escape", "press OK", "key Control+A", "key Z", "key Return",
                f"press #{CANCEL}", change=["update tblLayer set sName = 'C/D' where ixLayer = 2"])
scene.equal("a name that was invalid before is refused when it comes back, until it is corrected", (run.messages, names(run)),
            ([INVALID] * 2, named(("A-WALL", "z"))))

# ---- New layers

run = scene.run(f"press #{NEW_LAYER}", "key Escape", f"press #{NEW_LAYER}", "key Return", f"press #{CANCEL}")
scene.equal("two new layers", names(run), named() + ["New Layer", "New Layer (1)"])
scene.equal("are copies of the last one", (run.layer("New Layer"), run.layer("New Layer (1)")),
            ((5, "Continuous", -1, "100", None),) * 2)
run = scene.run(f"press #{NEW_LAYER}", "key Z", "key Return", f"press #{CANCEL}")
scene.equal("a new layer's name is being edited", names(run)[-1].lower(), "z")
scene.says("a new layer with a taken name", TAKEN, f"press #{NEW_LAYER}", "key Escape", f"cell #{LAYERS} 6 1 a-wall")
run = scene.run(f"press #{NEW_LAYER}", "key Escape", f"cell #{LAYERS} 6 2 88", f"cell #{KEYS} 1 4 New Layer", f"press #{OK}")
scene.equal("a new layer's cells are written by OK, and keys can have it", (run.layer("New Layer")[0], run.keys()[11]), (88, 6))
run = scene.run(f"press #{NEW_LAYER}", "key Escape", "screenshot new.png", f"press #{UNDO_LAYERS}", f"row #{LAYERS} 1",
                "screenshot read.png", f"press #{CANCEL}", change=["delete from tblLayer"])
scene.equal("the first layer of all", run.layers(), [(6, "New Layer", 7, "Continuous", -1, None, None)])
scene.equal("the columns, as wide as their headers, are fitted to it",
            (run.folder / "new.png").read_bytes() == (run.folder / "read.png").read_bytes(), True)
run = scene.run(f"press #{NEW_LAYER}", "key Escape", f"press #{CANCEL}",
                change=["update tblLayer set sPlotstyle = 'To Scale', sLinetype = 'Can Rotate' where ixLayer = 4"])
scene.equal("the product's marks are not copied", run.layer("New Layer"), (5, "0", -1, "100", "0"))

# ---- Deleted layers

for row in (1, 3, 4, 5):
    scene.says(f"row {row} has keys", REFERENCED, f"row #{LAYERS} {row}", f"press #{DELETE_LAYER}")
scene.says("the question", "Are you sure you want to delete layer B-GRID?", f"row #{LAYERS} 2", f"press #{DELETE_LAYER}")
run = scene.run(f"row #{LAYERS} 2", f"press #{DELETE_LAYER}", "press No", f"press #{OK}")
scene.equal("No deletes nothing", names(run), named())
run = scene.run(f"row #{LAYERS} 2", f"press #{DELETE_LAYER}", "press Yes", f"cell #{LAYERS} 2 2 99", f"press #{CANCEL}")
scene.equal("Yes deletes at once", names(run), named()[:4])
run = scene.run(f"row #{LAYERS} 2", f"press #{DELETE_LAYER}", "press Yes", f"cell #{LAYERS} 2 2 99", f"press #{OK}")
scene.equal("the row goes too, and the next is E-TRAY", run.layer("E-TRAY")[0], 99)
scene.says("a question with a name of signs", "Are you sure you want to delete layer 100%d 'x'?", f"row #{LAYERS} 1",
           f"press #{DELETE_LAYER}", change=["update tblLayer set sName = '100%d ''x''' where ixLayer = 5"])

scene.says("the question for all", "Are you sure you want to delete all unused layers?", f"press #{DELETE_UNUSED}")
run = scene.run(f"press #{DELETE_UNUSED}", "press No", f"press #{CANCEL}")
scene.equal("No to all", names(run), named())
run = scene.run(f"press #{DELETE_UNUSED}", "press Yes", f"cell #{LAYERS} 2 2 99", f"press #{OK}")
scene.equal("Yes deletes the layers without keys, also keys that are not shown count", (names(run), run.layer("E-TRAY")[0]),
            (named()[:4], 99))
run = scene.run(f"press #{DELETE_UNUSED}", "press Yes", f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}",
                change=["delete from tblLayerKey where ixLayerKey not in (11, 21)", "update tblLayerKey set ixLayer = 99"])
scene.equal("without any layer left the keys keep their list", (names(run), run.keys()), ([], {11: 4, 21: 99}))

# ---- Colors from the host's dialog

CHOOSES = "(defun acad_colordlg (color flag) (note (list 'color color flag)) {})"
PICK = f"cell #{LAYERS} {{}} 2 Select color. . ."
for row, typed, asked in ((1, None, 1), (3, None, 30), (3, "0", 1), (3, "300", 255), (3, "x", 1)):
    change = [f"cell #{LAYERS} {row} 2 {typed}"] if typed else []
    run = scene.run(*change, PICK.format(row), f"press #{OK}", before=CHOOSES.format(42))
    scene.equal("the dialog begins with the cell's color", run.calls_of("color"), [f"(COLOR {asked} nil)"])
    scene.equal("and its choice goes into the cell", run.layer(NAMES[row - 1])[0], 42)
for answer in ("nil", '"red"', "(car 5)", "1.5", "'(3)"):
    run = scene.run(f"cell #{LAYERS} 3 2 77", PICK.format(3), f"press #{OK}", before=CHOOSES.format(answer))
    scene.equal(f"{answer} puts the color back that was there", run.layer("E-TRAY")[0], 77)
run = scene.run(PICK.format(3), f"press #{CANCEL}", f"press #{OK}")
scene.equal("the host's own dialog, cancelled", run.layer("E-TRAY")[0], 30)
run = scene.run(PICK.format(3), f"press #{OK}", f"press #{OK}")
scene.equal("and with OK", run.layer("E-TRAY")[0], 30)
scene.finish()
