#!/usr/bin/python3
"""The Select Linetype dialog, opened from a layer's Linetype cell: what it lists, which one is selected, and what becomes of
the cell."""

import os
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

scene = Scene("linetype_dialog")

LINETYPES_OF_DRAWING = r"""
(foreach name '("HIDDEN" "Dash.Dot" "ZIGZAG")
  (entmake (list '(0 . "LTYPE") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLinetypeTableRecord") (cons 2 name) '(70 . 0)
                 (cons 3 (strcat "Description of " name)) '(72 . 65) '(73 . 2) '(40 . 0.75) '(49 . 0.5) '(49 . -0.25))))
(setq table nil record (tblnext "LTYPE" T))
(while record (setq table (cons (cdr (assoc 2 record)) table) record (tblnext "LTYPE")))
(princ "\nlinetypes ") (prin1 (reverse table))
"""
# By layer and by block are not listed; the rest is in the order of the drawing's table.
LISTED = ["Continuous", "HIDDEN", "Dash.Dot", "ZIGZAG"]
PICK = f"cell #{LAYERS} {{}} 3 Select linetype. . ."


def chosen(row, *answers, name):
    run = scene.run(PICK.format(row), *answers, f"press #{OK}", before=LINETYPES_OF_DRAWING)
    return run.layer(name)[1]


run = scene.run(f"press #{CANCEL}", before=LINETYPES_OF_DRAWING)
scene.contains("the drawing's table", run.out.replace("ByBlock", "").replace("ByLayer", ""), '"HIDDEN" "Dash.Dot" "ZIGZAG"')
for row, name in enumerate(LISTED, 1):
    scene.equal(f"row {row}", chosen(1, f"row #{LINETYPES} {row}", f"press #{OK}", name="A-WALL"), name)
scene.equal("OK at once: the cell's linetype is selected, whatever its letters", chosen(1, f"press #{OK}", name="A-WALL"), "HIDDEN")
scene.equal("a linetype that the drawing has not: the first is selected", chosen(3, f"press #{OK}", name="E-TRAY"), "Continuous")
scene.equal("Cancel keeps the cell's", chosen(1, f"row #{LINETYPES} 4", f"press #{CANCEL}", name="A-WALL"), "hidden")
scene.equal("Escape too", chosen(1, f"row #{LINETYPES} 4", "key Escape", name="A-WALL"), "hidden")
scene.equal("the arrow keys", chosen(1, "key Down", "key Down", f"press #{OK}", name="A-WALL"), "ZIGZAG")
scene.equal("a typed character edits nothing", chosen(1, "key X", f"press #{OK}", name="A-WALL"), "HIDDEN")
run = scene.run(f"cell #{LAYERS} 1 3 typed", PICK.format(1), f"press #{CANCEL}", f"press #{OK}", before=LINETYPES_OF_DRAWING)
scene.equal("a linetype that was typed before is what Cancel goes back to", run.layer("A-WALL")[1], "typed")
run = scene.run(PICK.format(1), f"row #{LINETYPES} 5", clean=False, before=LINETYPES_OF_DRAWING)
scene.contains("there is no fifth one", run.errors, "row 5")
# No size is smaller than the template's, which the next test is to find.
run = scene.run(PICK.format(1), "resize 700 600", f"row #{LINETYPES} 4", "resize 1 1", f"press #{OK}", f"press #{OK}",
                before=LINETYPES_OF_DRAWING)
scene.equal("in another size", run.layer("A-WALL")[1], "ZIGZAG")
scene.finish()
