#!/usr/bin/python3
"""The layer keys in the Layers dialog: which layer they get, when that is written, and what renaming layers does to them."""

import os
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

scene = Scene("layers_dialog_keys")
KEYS_AT_FIRST = {10: 2, 11: 3, 20: 2, 21: 99, 30: 1, 31: 3, 32: 1, 33: 4}


def keys(run, what, **changed):
    scene.equal(what, run.keys(), {**KEYS_AT_FIRST, **{int(key[1:]): layer for key, layer in changed.items()}})


# The general system's rows are Grid (11), Lost (21), Text (10); those of Supply are Center (31), Duct (30).

# ---- When the layers of keys are written

run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"press #{CANCEL}")
keys(run, "Cancel drops an assignment")
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"cell #{KEYS} 3 4 B-GRID", f"press #{OK}")
keys(run, "OK writes it", k11=4, k10=5)
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"row #{SYSTEMS} 2", f"cell #{KEYS} 2 4 B-GRID", f"press #{CANCEL}")
keys(run, "selecting another system writes those of the one before", k11=4)
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"press #{EXPORT}", f"press #{CANCEL}")
keys(run, "an export writes them first", k11=4)
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"press #{IMPORT}", f"press #{CANCEL}")
keys(run, "an import does not")
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"press #{UNDO_KEYS}", f"press #{OK}")
keys(run, "Undo Layer Key Changes leaves them as they are", k11=4)
run = scene.run(f"row #{SYSTEMS} 2", f"cell #{KEYS} 1 4 P-PIPE", f"row #{SYSTEMS} 2", f"press #{CANCEL}")
keys(run, "a click on the system that is selected writes nothing")
run = scene.run(f"cell #{KEYS} 2 4 B-GRID", f"press #{OK}")
keys(run, "a key whose layer is gone gets another", k21=5)

# ---- Editing

run = scene.run(f"cell #{KEYS} 1 0 Other", f"double #{KEYS} 1 0", "key X", f"press #{OK}")
keys(run, "the names of keys are not edited")
run = scene.run(f"row #{KEYS} 1", "key Right", "key F2", "key Down", "key Return", f"press #{OK}", clean=False)
if run.status != 0:
    scene.fail("arrows in a drop-down", run.errors)
run = scene.run(f"cell #{KEYS} 1 4 Nowhere", clean=False)
scene.contains("only layers can be chosen", run.errors, 'no entry "Nowhere"')

# ---- The layer of a key is shown among the layers: its row takes what is typed into the list

run = scene.run(f"row #{KEYS} 1", f"press #{DELETE_LAYER}", "press OK", f"press #{CANCEL}")
scene.equal("the selected key's layer has the focus", run.messages,
            ["Layer is currently referenced by a layer key and cannot be deleted."])
# Return ends the editing and goes to the next key: the last one stays, and key 2 has no layer.
for row, layer in ((3, "B-GRID"), (1, "X-FREE")):
    scene.says("a picked layer is shown at once", f"Are you sure you want to delete layer {layer}?",
               f"cell #{KEYS} {row} 4 {layer}", f"press #{DELETE_LAYER}",
               change=["insert into tblLayer (sName, sLinetype, bPlot) values ('X-FREE', 'Continuous', -1)"])
run = scene.says("a key without a layer shows none: the focus stays", "Are you sure you want to delete layer B-GRID?",
                 f"row #{LAYERS} 2", f"row #{KEYS} 2", f"press #{DELETE_LAYER}")

# The row of the key that was selected last is selected again in each system, or else the last row. Which one that is, shows
# by the layer that can be deleted: a key that is shown keeps its layer in the list while the database has forgotten the key.
FORGETS = ["update tblLayerKey set ixLayer = 1", "update tblLayerKey set ixLayer = 2 where ixLayerKey = 31",
           "update tblLayerKey set ixLayer = 3 where ixLayerKey = 30", "update tblLayerKey set ixLayer = 4 where ixLayerKey = 33"]
FORGET = """(defun util-exportLayerSystem-noName (system path)
  (ts_connect path) (ts_command "delete from tblLayerKey") (ts_close_db))"""
for start, system, layer in (((), 2, "A-WALL"), ((2,), 2, "E-TRAY"), ((3,), 2, "E-TRAY"), ((2, 1), 2, "A-WALL"), ((3,), 4, "P-PIPE")):
    scene.says(f"after the keys {start}, in the system of row {system}", f"Are you sure you want to delete layer {layer}?",
               *(f"row #{KEYS} {row}" for row in start), f"row #{SYSTEMS} {system}", f"press #{EXPORT}", f"press #{DELETE_LAYER}",
               before=FORGET, change=FORGETS)

# ---- Renaming layers

run = scene.run(f"cell #{LAYERS} 3 1 E-NEW", f"press #{OK}")
keys(run, "a key stays with its layer when that is renamed")
run = scene.run(f"cell #{LAYERS} 3 1 E-NEW", f"cell #{KEYS} 3 4 E-NEW", f"press #{OK}")
keys(run, "the new name can be chosen", k10=3)
run = scene.run(f"cell #{LAYERS} 3 1 E-NEW", f"cell #{KEYS} 3 4 E-TRAY", clean=False)
scene.contains("the old name no more", run.errors, 'no entry "E-TRAY"')
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"cell #{LAYERS} 3 1 E-NEW", f"press #{OK}")
keys(run, "a key goes back to the layer that it was loaded with when that is renamed")
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", f"cell #{LAYERS} 5 1 P-NEW", f"press #{OK}")
keys(run, "a key that shows a name that is gone is not written")
run = scene.run(f"row #{LAYERS} 2", f"press #{DELETE_LAYER}", "press Yes", f"cell #{KEYS} 1 4 B-GRID", clean=False)
scene.contains("a deleted layer cannot be chosen", run.errors, 'no entry "B-GRID"')

# ---- The columns of a system without keys are those of an empty list, not those of the system before

change = ["update tblLayerKey set sKey = 'A key with a long name', ixLayer = 99 where ixLayerSystem = 2",
          "delete from tblLayerKey where ixLayerSystem = 3 or ixLayerSystem is null"]
run = scene.run(f"row #{SYSTEMS} 4", "screenshot first.png", f"row #{SYSTEMS} 2", f"row #{SYSTEMS} 4", "screenshot later.png",
                f"press #{CANCEL}", change=change)
pictures = [(run.folder / file).read_bytes() for file in ("first.png", "later.png")]
scene.equal("an empty system looks the same after one with long keys", pictures[0] == pictures[1], True)
scene.finish()
