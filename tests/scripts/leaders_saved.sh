#!/bin/bash
# Leaders in files and through an unloaded add-in: what another program and a host without the add-in make of them, and
# what is there again afterwards.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

program() {
    host run --module "$TESSARY_BIN/Tessary2010x64.arx" "$@"
}

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# same NAME FILE FILE: two listings.
same() {
    cmp -s "$2" "$3" && return
    fail "$1: $(diff "$2" "$3" | head -n 10)"
}

# Prints every leader with its handle, without the names that change from session to session.
cat >show.lsp <<'LISP'
(defun steady (data) (vl-remove-if (function (lambda (group) (member (car group) '(-1 330)))) data))
(setq leaders (ssget "X" '((0 . "QNLEADER"))) i -1)
(repeat (if leaders (sslength leaders) 0)
  (print (steady (entget (ssname leaders (setq i (1+ i))) '("*")))))
(princ)
LISP
cat >make.lsp <<'LISP'
(entmake '((0 . "BLOCK") (2 . "ROUND") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "ENDBLK")))
(entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLayerTableRecord") (2 . "LEADERS") (70 . 0) (62 . 2) (6 . "Continuous")))
(regapp "MAKER")
(defun leader (x y)
  (qn_qn-leader-insert (list (list x y 0.0) (list (+ x 0.1) (/ y 3.0) 1.5) (list (+ x 4.0) (+ y 1e-7) -2.5)) "LEADERS" "ROUND" (/ (+ 1.0 x) 7.0)))
LISP

# --- another program reads and writes them ---
cat >few.lsp <<'LISP'
(load "make")
(leader 0.0 0.0)
(setq e (leader 1e6 -0.333333333333333333))
(entmod (append (entget e) '((62 . 1) (48 . 0.5) (370 . 50) (-3 ("MAKER" (1000 . "text") (1040 . 2.5))))))
LISP
program --save few.dxf few.lsp
check 'drawing leaders' 0 $?
program --open few.dxf show.lsp
check 'reading them' 0 $? out '(0 . "QNLEADER")' out '(8 . "LEADERS")' out '(1000 . "text")'
cp out.txt few.txt
[ "$(grep -c QNLEADER few.txt)" = 2 ] || fail "reading them: not two leaders: $(cat few.txt)"

# The groups of the first leader in another order, the second without the marker of its class.
"$PYTHON" - few.dxf >out.txt 2>err.txt <<'PYTHON'
import sys
import ezdxf

document = ezdxf.readfile(sys.argv[1])
audit = document.audit()
print("errors:", len(audit.errors), "fixes:", len(audit.fixes))
print("classes:", [(c.dxf.name, c.dxf.cpp_class_name, c.dxf.flags, c.dxf.was_a_proxy, c.dxf.is_an_entity)
                   for c in document.classes])
document.saveas("through.dxf")

lines = open(sys.argv[1], encoding="utf-8").read().split("\n")
groups = list(zip(lines[0::2], lines[1::2]))
starts = [i for i, (_, value) in enumerate(groups) if value.strip() == "QNLeader" and groups[i][0].strip() == "100"]


def written(name, new):
    with open(name, "w", encoding="utf-8", newline="") as file:
        file.write("".join(code + "\n" + value + "\n" for code, value in new))


first = starts[0] + 1
points = {groups[i][0].strip(): [groups[i + k] for k in range(3)] for i in range(first, first + 9, 3)}
reordered = [groups[first + 9]] + points["12"] + points["11"] + points["10"]
written("reordered.dxf", groups[:first] + reordered + groups[first + 10:])
written("unmarked.dxf", groups[:starts[1]] + groups[starts[1] + 1:])
PYTHON
check 'another program' 0 $? out 'errors: 0 fixes: 0' \
    out "('QNLEADER', 'QNLeader', 1, 0, 1)"
program --open through.dxf --save through-again.dxf show.lsp
check 'written by another program' 0 $?
same 'written by another program' few.txt out.txt
program --open reordered.dxf show.lsp
check 'groups in another order' 0 $?
same 'groups in another order' few.txt out.txt

# A record that does not say whose data it holds is no leader to the class. Nothing of it is lost.
program --open unmarked.dxf --save kept.dxf show.lsp
check 'a record without the marker' 0 $?
[ "$(grep -c QNLEADER out.txt)" = 2 ] || fail 'a record without the marker: it is gone'
"$PYTHON" - unmarked.dxf kept.dxf >out.txt 2>err.txt <<'PYTHON'
import sys


def groups(name):
    lines = open(name, encoding="utf-8").read().split("\n")
    all_groups = list(zip((line.strip() for line in lines[0::2]), (line.strip() for line in lines[1::2])))
    begin = [i for i, group in enumerate(all_groups) if group == ("0", "QNLEADER")][1]
    end = next(i for i in range(begin + 1, len(all_groups)) if all_groups[i][0] == "0")
    return all_groups[begin:end]


print("same" if groups(sys.argv[1]) == groups(sys.argv[2]) else (groups(sys.argv[1]), groups(sys.argv[2])))
PYTHON
check 'a record without the marker, saved' 0 $? out 'same'

# --- many, through a host that has no add-in ---
cat >many.lsp <<'LISP'
(load "make")
(setq i -1)
(repeat 10000 (setq i (1+ i)) (leader (* 8.25 (rem i 100)) (* 3.1 (/ i 100))))
(princ)
LISP
program --save many.dxf many.lsp
check 'many leaders' 0 $?
program --open many.dxf show.lsp
check 'many leaders, read' 0 $?
mv out.txt many.txt
[ "$(grep -c QNLEADER many.txt)" = 10000 ] || fail "many leaders: $(grep -c QNLEADER many.txt) of 10000"
echo '(princ (list (quote proxies) (sslength (ssget "X" (quote ((0 . "QNLEADER")))))))' >count.lsp
host run --open many.dxf --save without.dxf count.lsp
check 'many leaders without the add-in' 0 $? out '(PROXIES 10000)'
program --open without.dxf --save with.dxf show.lsp
check 'many leaders with the add-in again' 0 $?
same 'many leaders with the add-in again' many.txt out.txt
# The extents are those of what the host can measure: of leaders with their symbols, of nothing, of leaders without.
for name in many without with; do
    tr -d '\r' <"$name.dxf" | sed -n '/^CLASSES/,/^ENDSEC/p' | grep -A 11 '^QNLEADER' | paste -sd ' ' >"$name.class"
    tr -d '\r' <"$name.dxf" | awk '/^CLASSES/ {skip = 1} /^\$EXTM/ {skip = 2} skip == 2 && /^  9/ {skip = 0}
        !skip {print} /^ENDSEC/ {skip = 0}' >"$name.rest"
done
same 'the drawing saved without the add-in' many.rest without.rest
same 'the drawing saved with it again' many.rest with.rest
same 'the class record' many.class with.class
# Group 280: the class was away.
grep -qF ' 280 0 281 1' many.class || fail "the class record: $(cat many.class)"
sed 's/ 280 1 281/ 280 0 281/' without.class >without.mended
same 'the class record without the add-in' many.class without.mended
grep -qF ' 280 1 281 1' without.class || fail "the class record without the add-in: $(cat without.class)"

# --- the add-in goes and comes back within a session ---
cat >away.lsp <<'LISP'
(load "make")
(setq e (leader 3.0 4.0))
(entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord") (100 . "AcDbLayerTableRecord") (2 . "OTHER") (70 . 0) (62 . 3) (6 . "Continuous")))
(defun shown (/ file text line)
  (setq text (entget e))
  (list (cdr (assoc 0 text)) (cdr (assoc 8 text)) (cdr (assoc 40 text)) (cdr (assoc 12 text))))
(setq before (shown) data (entget e))
(print (list 'unloaded (arxunload "Tessary2010x64.arx")))
(print (list 'function (type qn_qn-leader-insert)))
(print (list 'kept (equal data (entget e))))
(print (list 'erased-without (null (entget (progn (entdel e) e)))))
(entdel e)
(print (list 'picked (eq e (ssname (ssget "C" '(2.0 3.0) '(8.0 5.0)) 0))))
(print (list 'loaded (not (null (arxload "Tessary2010x64.arx")))))
(print (list 'same (equal data (entget e))))
;; The symbol is there again: the host's explosion gives two lines and the circle of the block.
(command "_EXPLODE" e "")
(setq parts nil part (entnext))
(while part (setq parts (cons (cdr (assoc 0 (entget part))) parts) part (entnext part)))
(print (cons 'parts parts))
(princ)
LISP
program --support "$TESSARY_BIN" away.lsp
check 'the add-in goes and comes back' 0 $? out '(UNLOADED "Tessary2010x64.arx")' out '(FUNCTION nil)' out '(KEPT T)' out '(ERASED-WITHOUT T)' \
    out '(PICKED T)' out '(LOADED T)' out '(SAME T)' out '(PARTS "CIRCLE" "LINE" "LINE")'

# A block that is being made is not in the drawing yet: it is dropped with the class, and so is no danger to the host.
cat >unfinished.lsp <<'LISP'
(entmake '((0 . "BLOCK") (2 . "UNFINISHED") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "QNLEADER") (100 . "AcDbEntity") (100 . "QNLeader") (10 0.0 0.0 0.0) (11 1.0 1.0 0.0) (12 3.0 1.0 0.0) (40 . 1.0)))
(arxunload "Tessary2010x64.arx")
(print (list 'finished (entmake '((0 . "ENDBLK"))) (tblsearch "BLOCK" "UNFINISHED")))
(print (list 'drawn (null (entmakex '((0 . "POINT") (10 1.0 1.0 0.0))))))
LISP
program --support "$TESSARY_BIN" unfinished.lsp
check 'the add-in goes while a block is being made' 0 $? out '(FINISHED nil nil)' out '(DRAWN nil)'

# Their pictures must not hold one another's, over and over.
cat >mutual.lsp <<'LISP'
(defun part (x) (list '(0 . "QNLEADER") '(100 . "AcDbEntity") '(8 . "0") '(100 . "QNLeader") (list 10 x 0.0 0.0) (list 11 x 3.0 0.0) (list 12 x 5.0 0.0) '(40 . 0.5)))
(entmake '((0 . "BLOCK") (2 . "MUTUAL") (70 . 0) (10 0.0 0.0 0.0)))
(setq x 0.0)
(repeat 40 (entmake (part (setq x (1+ x)))))
(entmake '((0 . "ENDBLK")))
(setq e (cdr (assoc -2 (tblsearch "BLOCK" "MUTUAL"))))
(while e (qn_qn-leader-setBlock e "MUTUAL") (setq e (entnext e)))
(print (list 'unloaded (arxunload "Tessary2010x64.arx")))
(print (list 'loaded (not (null (arxload "Tessary2010x64.arx")))))
(princ)
LISP
program --support "$TESSARY_BIN" mutual.lsp
check 'leaders in a block that is their symbol' 0 $? out '(UNLOADED "Tessary2010x64.arx")' out '(LOADED T)'

exit "$((failures > 0))"
