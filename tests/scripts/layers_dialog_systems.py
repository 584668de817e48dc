#!/usr/bin/python3
"""The layer systems in the Layers dialog: new, edited, deleted and moved ones, export and import, and what is handed to the
product's functions."""

import os
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

scene = Scene("layers_dialog_systems")
ORDER = ["Supply", "Return", "Exhaust"]
EXISTS = "A layer system with that name already exists."
INVALID = "Invalid layer system name."
MORE = (f"press #{NEW_SYSTEM}", "type #2006  More \t", "choose #1013 Supply", f"press #{OK}")


def order(run):
    return [name for name, position in run.systems()]


def keys_of(run, system):
    return run.rows(f"select sKey, ixLayer from tblLayerKey where ixLayerSystem = {system} order by sKey")


# ---- New systems

run = scene.run(*MORE, f"press #{CANCEL}")
scene.equal("a new system is stored at once, behind the others", run.systems()[-1], ("More", 10))
scene.equal("with the keys of the one chosen", keys_of(run, 4), [("Center", 3), ("Duct", 1)])
scene.equal("the labels are made for the new one from the other", run.calls_of("create-labels"), ["(CREATE-LABELS 4 2)"])
run = scene.run(f"press #{NEW_SYSTEM}", "type #2006 More", f"press #{OK}", f"press #{NEW_SYSTEM}", "type #2006 Again",
                "choose #1013 Exhaust", f"press #{OK}", f"press #{CANCEL}")
scene.equal("the first system is chosen at first; two new ones share a place until OK", (run.systems()[-2:], keys_of(run, 5)),
            ([("More", 10), ("Again", 10)], [("Duct", 4)]))
run = scene.run(*MORE, f"press #{NEW_SYSTEM}", "type #2006 Again", "choose #1013 More", f"press #{OK}", f"press #{OK}")
scene.equal("OK numbers them; a new one can be copied", (run.systems(), keys_of(run, 5)),
            ([("Supply", 2), ("Return", 3), ("Exhaust", 4), ("More", 5), ("Again", 6)], [("Center", 3), ("Duct", 1)]))
run = scene.run(*MORE, f"cell #{KEYS} 2 4 P-PIPE", f"press #{OK}")
scene.equal("the new system's keys are shown", keys_of(run, 4), [("Center", 3), ("Duct", 4)])
run = scene.run(f"cell #{KEYS} 1 4 P-PIPE", *MORE, f"press #{CANCEL}")
scene.equal("the layers of the keys that were shown are written", run.keys()[11], 4)
for name, message in (("", INVALID), ("   ", INVALID), ("General", INVALID), (" gEnErAl ", INVALID), ("Supply", EXISTS),
                      ("rEtUrN ", EXISTS)):
    run = scene.run(f"press #{NEW_SYSTEM}", f"type #2006 {name}", f"press #{OK}", "press OK", "type #2006 Other", f"press #{OK}",
                    f"press #{CANCEL}")
    scene.equal(f"the name '{name}' is refused and can be corrected", (run.messages, order(run)[-1]), ([message], "Other"))
run = scene.run(f"press #{NEW_SYSTEM}", "type #2006 More", f"press #{CANCEL}", f"press #{CANCEL}")
scene.equal("Cancel makes none", order(run), ORDER)
for name in ("100% [s]", "O'Neill \"x\"", "S" * 255):
    run = scene.run(f"press #{NEW_SYSTEM}", f"type #2006 {name}", f"press #{OK}", f"press #{OK}")
    scene.equal("a name of signs", order(run)[-1], name)
run = scene.run(f"press #{NEW_SYSTEM}", "type #2006 First", f"press #{OK}", f"press #{CANCEL}", change=["delete from tblLayerSystem"])
scene.equal("without a system to copy from", (run.systems(), run.calls_of("create-labels")), ([("First", 1)], ["(CREATE-LABELS 4 -1)"]))

# What the database has when the product's functions are called between the statements.
COUNTS = """(defun counts (system) (ts_connect "db.qn")
  (note (mapcar '(lambda (table) (cdaar (ts_sql (strcat "select count(*) as n from " table " where ixLayerSystem = " (itoa system)))))
                '("tblLayerSystem" "tblLayerKey"))) (ts_close_db))
(defun util-createPipeLabels (new source) (counts new))
(defun util-deletePipeLabels (system) (counts system))
"""
run = scene.run(*MORE, f"press #{DELETE_SYSTEM}", "press Yes", f"press #{CANCEL}", before=COUNTS)
scene.equal("labels are made when system and keys are there, and deleted between the keys and the system",
            [call for call in run.calls if call[1].isdigit()], ["(1 2)", "(1 0)"])

# ---- Edited systems

RENAMES = r"""
(defun util-layersystemoptions (system path)
  (note (list 'options system)) (ts_connect path)
  (ts_command (strcat "update tblLayerSystem set sDescription = 'Air' where ixLayerSystem = " (itoa system))) (ts_close_db))
"""
run = scene.run(f"row #{SYSTEMS} 3", f"press #{EDIT_SYSTEM}", f"press #{OK}")
scene.equal("the product's function gets the key and the path", (run.calls_of("options")[0].split(" ")[:2],
            run.calls_of("options")[0].endswith('db.qn")')), (["(OPTIONS", "1"], True))
for way in ((f"row #{SYSTEMS} 3", f"press #{EDIT_SYSTEM}"), (f"double #{SYSTEMS} 3 2",), (f"row #{SYSTEMS} 3", "key X"),
            (f"cell #{SYSTEMS} 3 2 Typed",)):
    run = scene.run(*way, f"press #{OK}", before=RENAMES)
    scene.equal(f"a system is edited by {way[-1]} and nothing is typed", (order(run), run.calls_of("options")),
                (["Supply", "Air", "Exhaust"], ["(OPTIONS 1)"]))
run = scene.run(f"row #{SYSTEMS} 3", f"press #{EDIT_SYSTEM}", f"press #{DELETE_SYSTEM}", "press No", f"press #{OK}", before=RENAMES)
scene.equal("the new name stands in the list", run.messages, ["Are you sure you want to delete layer system Air?"])
GONE = '(defun util-layersystemoptions (system path) (ts_connect path) (ts_command "delete from tblLayerSystem where ixLayerSystem = 1") (ts_close_db))'
run = scene.run(f"row #{SYSTEMS} 3", f"press #{EDIT_SYSTEM}", f"press #{DELETE_SYSTEM}", "press No", f"press #{OK}", before=GONE)
scene.equal("a system that the function deletes keeps its row", (run.messages, order(run)),
            (["Are you sure you want to delete layer system Return?"], ["Supply", "Exhaust"]))
for way in ((f"press #{EDIT_SYSTEM}",), (f"double #{SYSTEMS} 1 2",), (f"row #{SYSTEMS} 1", "key X")):
    run = scene.run(*way, "press OK", f"press #{OK}")
    scene.equal("the general system is not edited", (run.messages, run.calls_of("options"), order(run)),
                (["The general layer system cannot be edited."], [], ORDER))

# ---- Deleted systems

DELETE = (f"row #{SYSTEMS} 3", f"press #{DELETE_SYSTEM}")
for row, count, message in ((1, 3, "The general layer system cannot be deleted."), (1, 1, "You cannot delete the last layer system."),
                            (2, 1, "You cannot delete the last layer system.")):
    run = scene.run(f"row #{SYSTEMS} {row}", f"press #{DELETE_SYSTEM}", "press OK", f"press #{CANCEL}",
                    change=[] if count == 3 else ["delete from tblLayerSystem where ixLayerSystem > 1"])
    scene.equal(f"row {row} of {count} systems", (run.messages, len(run.systems())), ([message], count))
run = scene.run(*DELETE, "press No", f"press #{CANCEL}")
scene.equal("the question, and No", (run.messages, order(run)), (["Are you sure you want to delete layer system Return?"], ORDER))
run = scene.run(*DELETE, "press Yes", f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}")
scene.equal("Yes deletes system and keys; the next system is shown", (order(run), keys_of(run, 1), keys_of(run, 3)),
            (["Supply", "Exhaust"], [], [("Duct", 4)]))
scene.equal("its labels go, and nobody asks for objects with a path given", (run.calls_of("delete-labels"), run.calls_of("check-objects")),
            (["(DELETE-LABELS 1)"], []))
run = scene.run(*DELETE, "press Yes", f"press #{CANCEL}")
scene.equal("at once", order(run), ["Supply", "Exhaust"])
run = scene.run(f"row #{SYSTEMS} 4", f"press #{DELETE_SYSTEM}", "press Yes", f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}")
scene.equal("behind the last one the one before is shown", (order(run), keys_of(run, 1)), (["Supply", "Return"], [("Duct", 4)]))
run = scene.run(*DELETE, "press Yes", f"press #{CANCEL}", call=CONNECTED)
scene.equal("on the drawing's own database objects are asked for", (run.calls_of("check-objects"), order(run)),
            (["(CHECK-OBJECTS 1)"], ["Supply", "Exhaust"]))
USED = '(defun util-checkObjectsforLayersystem (system) "100% used")'
run = scene.run(*DELETE, "press OK", f"press #{CANCEL}", call=CONNECTED, before=USED)
scene.equal("a text refuses and is shown", (run.messages, order(run)), (["100% used"], ORDER))
for answer in ("T", "5", "(car 5)"):
    run = scene.run(*DELETE, "press No", f"press #{CANCEL}", call=CONNECTED,
                    before=f"(defun util-checkObjectsforLayersystem (system) {answer})")
    scene.equal("anything but a text does not", run.messages, ["Are you sure you want to delete layer system Return?"])

# ---- The order of systems

UP, DOWN = f"press #{MOVE_UP}", f"press #{MOVE_DOWN}"
for row, moves, expected in ((3, (UP,), ["Return", "Supply", "Exhaust"]), (2, (UP,), ORDER), (2, (DOWN, DOWN, DOWN), ["Return", "Exhaust", "Supply"]),
                             (4, (DOWN,), ORDER), (4, (UP, UP, UP), ["Exhaust", "Supply", "Return"]), (2, (DOWN, UP), ORDER)):
    run = scene.run(f"row #{SYSTEMS} {row}", *moves, f"press #{OK}")
    scene.equal(f"row {row} {moves}", run.systems(), list(zip(expected, (2, 3, 4))))
run = scene.run(f"row #{SYSTEMS} 3", UP, f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}")
scene.equal("the focus moves with the row, and the keys stay", keys_of(run, 1), [("Duct", 4)])
run = scene.run(*MORE, UP, f"press #{OK}")
scene.equal("a new system can be moved at once", [name for name, place in run.systems()], ["Supply", "Return", "More", "Exhaust"])
for answers in ((UP,), (f"row #{SYSTEMS} 3", f"row #{SYSTEMS} 1", DOWN)):
    run = scene.run(*answers, clean=False)
    scene.contains("the general system is not moved, and nothing before a system is selected", run.errors, "is disabled")

# ---- Export and import

run = scene.run(f"row #{SYSTEMS} 3", f"press #{EXPORT}", f"press #{IMPORT}", f"row #{SYSTEMS} 1", f"press #{EXPORT}", f"press #{CANCEL}")
scene.equal("the functions get the key and the path", [(call.split(" ")[:2], call.endswith('db.qn")')) for call in run.calls_of("export", "import")],
            [(["(EXPORT", "1"], True), (["(IMPORT", "1"], True), (["(EXPORT", "-1"], True)])
run = scene.run(f"row #{SYSTEMS} 3", f"press #{EXPORT}", f"press #{EDIT_SYSTEM}", f"press #{CANCEL}",
                change=["update tblLayerSystem set ixLayerSystem = 70000 where ixLayerSystem = 1"])
scene.equal("a key of more than 16 bits is cut off for one function and not for the other",
            [call.split(" ")[1] for call in run.calls_of("export", "options")], ["4464", "70000"])
IMPORTS = r"""
(defun util-importLayerSystem-noName (system path)
  (ts_connect path) (ts_command "insert into tblLayer (sName, sLinetype, bPlot) values ('A-0', 'Continuous', True)")
  (ts_command "insert into tblLayerKey (ixLayerSystem, ixLayer, sKey) values (Null, 6, 'A')")
  (ts_command "insert into tblLayerKey (ixLayerSystem, ixLayer, sKey) values (2, 6, 'A')") (ts_close_db) {})
"""
run = scene.run(f"row #{SYSTEMS} 2", f"press #{IMPORT}", f"cell #{KEYS} 1 4 P-PIPE", f"cell #{KEYS} 2 4 A-0", f"cell #{LAYERS} 1 2 9",
                f"press #{OK}", before=IMPORTS.format("T"))
scene.equal("what was imported is listed", (keys_of(run, 2), run.layer("A-0")[0]), ([("A", 4), ("Center", 6), ("Duct", 1)], 9))
run = scene.run(f"row #{SYSTEMS} 2", f"press #{IMPORT}", f"cell #{KEYS} 1 4 P-PIPE", f"cell #{LAYERS} 1 2 9", f"press #{OK}",
                before=IMPORTS.format("nil"))
scene.equal("nil says that nothing was: the lists stay", (keys_of(run, 2), run.layer("A-WALL")[0]), ([("A", 6), ("Center", 4), ("Duct", 1)], 9))
run = scene.run(f"press #{IMPORT}", f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}", before=IMPORTS.format("T"))
scene.equal("the general system's keys stay as they are listed", run.keys()[11], 4)
run = scene.run(f"press #{IMPORT}", f"row #{SYSTEMS} 2", f"row #{SYSTEMS} 1", f"cell #{KEYS} 1 4 P-PIPE", f"press #{OK}", before=IMPORTS.format("T"))
scene.equal("until it is selected again", run.rows("select ixLayer from tblLayerKey where ixLayerSystem is null and sKey = 'A'"), [(4,)])
scene.finish()
