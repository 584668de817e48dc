#!/usr/bin/python3
"""The Layers dialog with 20,000 layers: everything that reads or lists them all, in less time than a LISP program takes to walk
through the table once, of which a tenth is measured."""

import os
import sys
import time

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

COUNT = 20000
scene = Scene("layers_dialog_many")
MANY = [f"with recursive n(i) as (select 0 union all select i + 1 from n where i < {COUNT - 1}) insert into tblLayer "
        f"(sName, iColor, sLinetype, bPlot) select printf('L-%05d', i * 7919 % {COUNT}), 3, 'Continuous', -1 from n",
        "insert into tblLayerKey (ixLayer, sKey) select ixLayer, sName from tblLayer where sName like 'L-%50'"]
WALK = f'(ts_connect "db.qn") (ts_table "tblLayer" "sName") (setq n 1) (ts_top) (while (and (< n {COUNT // 10}) (ts_skip)) (setq n (1+ n))) (ts_close_db) (princ n) (setq result (list nil))'


def timed(*answers, **options):
    begun = time.monotonic()
    run = scene.run(*answers, change=MANY, **options)
    return run, time.monotonic() - begun


def layer(run, name):
    return run.rows(f"select iColor, bPlot from tblLayer where sName = '{name}' collate binary")


empty = time.monotonic()
scene.run(call="(setq result (list nil))")
empty = time.monotonic() - empty
run, walk = timed(call=WALK)
scene.contains("the program has seen a tenth", run.out, str(COUNT // 10))
walk = empty + 10 * (walk - empty)

# New Layer adds to the end, behind the last one in the order of names.
run, dialog = timed(f"cell #{LAYERS} 5 1 RENAMED", f"press #{NEW_LAYER}", "key Escape", f"cell #{LAYERS} {COUNT + 6} 2 77",
                    f"cell #{KEYS} 1 4 L-19999", f"row #{SYSTEMS} 2", f"row #{SYSTEMS} 1", f"press #{OK}")
scene.equal("what was done is there", (layer(run, "RENAMED"), layer(run, "New Layer"), run.keys()[11]),
            ([(3, -1)], [(77, -1)], run.column("select ixLayer from tblLayer where sName = 'L-19999' collate binary")[0]))
scene.equal("nothing is lost", run.column("select count(*) from tblLayer"), [COUNT + 6])
ratio = (dialog - empty) / (walk - empty)
print(f"the dialog: {ratio:.2f} of the walk through the table")
if ratio > 1:
    scene.fail("the dialog takes longer than the walk", f"{dialog:.1f} s, {walk:.1f} s for all, a run alone {empty:.1f} s")
scene.finish()
