#!/bin/bash
# The example of leaders: what it draws, and that a drawing that it saved looks the same again. Symbols from drawing files.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

fail() {
    echo "$1"
    failures=$((failures + 1))
}
module=$(printf 'Z:%s' "$TESSARY_BIN/Tessary2010x64.arx" | tr / '\\')
example=$TESSARY_ROOT/examples/leaders.lsp

host run --module "$module" --save plan.dxf --picture drawn.png "$example"
check 'the example' 0 $? out '4 leaders at a scale of 48' out '(LINE LINE INSERT)' \
    out 'DETAIL: from (420 24) to (486 66), symbol 12 in radius, 78.2 in from end to end' not failed
host run --module "$module" --open plan.dxf --save again.dxf --picture again.png "$example"
check 'its drawing again' 0 $? out '4 leaders have their symbols again' out '4 leaders at a scale of 48'
cmp drawn.png again.png || fail 'the leaders look different after saving and opening'
echo '(princ "opened")' >opened.lsp
host run --module "$module" --open plan.dxf --picture bare.png opened.lsp
check 'the drawing as it is saved' 0 $? out opened
cmp -s drawn.png bare.png && fail 'the saved drawing shows symbols'

# --- symbols that are drawings of their own ---
mkdir symbols
echo "(command \"_CIRCLE\" '(0.0 0.0) 1.0) (command \"_LINE\" '(0.0 0.0) '(1.0 0.0) \"\")" >damper.lsp
host run --save symbols/Damper.dxf damper.lsp
check 'the drawing of a symbol' 0 $?
mv symbols/Damper.dxf symbols/Damper.dwg
echo 'no drawing' >symbols/Broken.dwg
cat >place.lsp <<'LISP'
(load "alert_missing_block")
(defun place (name)
  (setq made (qn_qn-leader-insert '((0.0 0.0 0.0) (5.0 5.0 0.0) (12.0 5.0 0.0)) "0" name 1.0))
  (princ (strcat "\n" name (if made ": placed" ": not placed"))))
(place "Damper")
(place "damper")
(place "Broken")
(place "Missing")
(place "MISSING")
(setq leader (cdr (assoc -1 (entget (ssname (ssget "X" '((0 . "QNLEADER"))) 0)))))
(qn_qn-leader-setBlock leader "Missing too")
(command "_EXPLODE" leader "")
(princ (strcat "\nexploded: " (cdr (assoc 0 (entget (entlast)))) "\nblocks:"))
(setq block (tblnext "BLOCK" T))
(while block
  (if (/= "*" (substr (cdr (assoc 2 block)) 1 1)) (princ (strcat " " (cdr (assoc 2 block)))))
  (setq block (tblnext "BLOCK")))
(princ "\n")
LISP
host run --module "$module" --support symbols --support "$(printf 'Z:%s' "$TESSARY_ROOT/lisp" | tr / '\\')" place.lsp
check 'symbols from drawing files' 0 $? \
    out 'Damper: placed' out 'damper: placed' out 'Broken: not placed' out 'Missing: not placed' \
    out 'MISSING: not placed' out 'exploded: LINE' out 'blocks: Damper' not 'blocks: Damper ' \
    out 'The block "Missing" is missing' out 'The block "Missing too" is missing' \
    not 'The block "MISSING" is missing' not 'The block "Broken" is missing'

exit "$((failures > 0))"
