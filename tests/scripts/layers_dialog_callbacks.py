#!/usr/bin/python3
"""LISP functions of the product that do more than they should while the Layers dialog calls them, and many keys."""

import os
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

scene = Scene("layers_dialog_callbacks")
EDIT = (f"row #{SYSTEMS} 2", f"press #{EDIT_SYSTEM}")
# The drawing can be changed and the server used afterwards.
AFTER = WITH_PATH + """(if (not (entmake '((0 . "LINE") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))) (princ "locked"))
(ts_connect "db.qn") (princ (cdaar (ts_sql "select count(*) as n from tblLayer"))) (princ " layers") (ts_close_db)"""


def on_edit(body):
    return f"(setq depth 0) (defun util-layersystemoptions (system path) (setq depth (1+ depth)) {body})"


def run(what, body, *answers, layers=5, call=AFTER):
    done = scene.run(*EDIT, *answers, before=on_edit(body), call=call)
    scene.equal(f"{what}: the drawing is not locked", "locked" in done.out, False)
    scene.contains(f"{what}: the database answers", done.out, f"{layers} layers")
    scene.equal(f"{what}: it is whole", done.column("pragma integrity_check"), ["ok"])
    return done


# ---- Another Layers dialog, which the first one waits for

NESTED = "(if (< depth 4) (qn_qn-customizeLayers path))"
done = run("a dialog in a dialog", NESTED, f"row #{SYSTEMS} 3", f"press #{DELETE_SYSTEM}", "press Yes", f"press #{NEW_LAYER}",
           "key Escape", f"press #{OK}", f"cell #{LAYERS} 1 2 77", f"press #{OK}", layers=6)
scene.equal("its first action is its own, not the first dialog's", done.messages, ["Are you sure you want to delete layer system Return?"])
scene.equal("both have written", (done.layer("A-WALL")[0], done.column("select sName from tblLayer order by ixLayer")[-1],
            [name for name, _ in done.systems()]), (77, "New Layer", ["Supply", "Exhaust"]))
done = run("four dialogs", NESTED, *EDIT, *EDIT, *(f"press #{OK}",) * 4)
run("a dialog on the drawing's database", "(qn_qn-customizeLayers)", f"press #{CANCEL}", f"press #{OK}",
    call='(ts_connect "db.qn")' + AFTER)

# ---- Functions that end the program, change the database, or ask

for body, answers in (("(exit)", ()), ("(quit)", ()), ("(ts_close_db)", ()), ('(command "._LINE" "0,0" "1,1" "")', ()),
                      ('(getstring "what: ")', ("string x",)), ('(alert "x")', ("press OK",)), ("(defun f (a) (1+ (f a))) (f 1)", ())):
    done = run(body, body, *answers, f"press #{OK}", call='(ts_connect "db.qn")' + AFTER)
    scene.equal(f"{body}: OK has written", done.systems()[0], ("Supply", 2))
run("all rows deleted", '(ts_connect path) (foreach table (quote ("tblLayer" "tblLayerKey" "tblLayerSystem")) (ts_command (strcat '
    '"delete from " table))) (ts_close_db)', f"cell #{KEYS} 1 4 M-DUCT", f"cell #{LAYERS} 1 1 GONE", f"row #{SYSTEMS} 1",
    f"press #{DELETE_LAYER}", f"press #{OK}", layers=0)

# ---- Many keys: all of them are written back, and nothing but the one that was changed is another afterwards

QUIET = "(defun note (call) nil)"
MANY = ["with recursive n(i) as (select 1 union all select i + 1 from n where i < 300) insert into tblLayerKey "
        "(ixLayerSystem, ixLayer, sKey) select null, 3, 'S' || i from n"]
run = scene.run(f"row #{SYSTEMS} 2", f"row #{SYSTEMS} 1", f"cell #{KEYS} 250 4 P-PIPE", f"press #{OK}", before=QUIET, change=MANY)
layers_of_keys = [layer for (layer,) in run.rows("select ixLayer from tblLayerKey where sKey like 'S%' and ixLayerSystem is null")]
scene.equal("one key of 300 is changed", sorted(layers_of_keys).count(3), 299)
scene.finish()
