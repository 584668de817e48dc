#!/bin/bash
# Solids in files and through an unloaded add-in: what another program and a host without the add-in make of them, and
# what is there again afterwards. Files are compared whole, so that every coordinate is.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

module="$TESSARY_BIN/Tessary2010x64.arx"
program() {
    host run --module "$module" "$@"
}

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# same NAME FILE FILE: drawings or lists, but for the next free handle, the extents that are shown, and whether the class
# was there (280).
same() {
    diff <(steady "$2") <(steady "$3") >difference.txt || fail "$1: $(head -n 10 difference.txt)"
}
steady() {
    tr -d '\r' <"$1" | awk '
        $1 == "$HANDSEED" { skip = 3 }
        $1 ~ /^\$EXTM/ { skip = 7 }
        $1 == "280" { skip = 2 }
        skip-- > 0 { next }
        { print }'
}

cat >make.lsp <<'LISP'
(defun run (from to w h shape) (append from to (list 0 0 0 w h shape 0 0 "" "" 0 1)))
(setq flags 7)
(qn_qn-drawTripleCenter nil flags (run '(0 0 0) '(40 0 0) 20 10 "RC"))
(qn_qn-drawTripleElbow nil flags nil 30.0 (run '(0 60 0) '(100 60 0) 20 20 "RD") (run '(100 60 0) '(100 160 50) 20 20 "RD"))
(qn_qn-drawTripleTransition nil flags (run '(60 0 0) '(100 0 0) 20 10 "RC") (run '(100 0 0) '(160 0 0) 12 12 "RD"))
(qn_qn-drawTripleTakeoff nil flags nil 0.0 (run '(0 -60 0) '(100 -60 0) 24 24 "RD")
  (run '(100 -60 0) '(200 -60 0) 24 24 "RD") (run '(90 -60 0) '(90 0 40) 12 12 "RD"))
(qn_qn-drawTripleWye nil 0 nil 0.0 (run '(200 0 0) '(260 0 0) 20 10 "RC") (run '(260 0 0) '(300 40 0) 20 10 "RC")
  (run '(260 0 0) '(300 -40 0) 20 10 "RC"))
(qn_qn-drawHanger T '(30.0 0.0 0.0) 0.3 20 10 T 0.5 1.0 20.0 0)
; A transition to nothing is an entity without a body.
(qn_qn-drawTripleTransition nil 0 (run '(0 0 0) '(1 0 0) 20 10 "RC") (run '(1 0 0) '(9 0 0) 0 0 "RC"))
LISP
echo '(princ (list (quote solids) (sslength (ssget "X" (quote ((0 . "QN_HVACSOLID")))))))' >count.lsp
echo '(command "_LIST" "_ALL" "")' >list.lsp

program --save made.dxf --export made.csv make.lsp
check 'drawing solids' 0 $?
[ "$(wc -l <made.csv)" = 7 ] || fail "drawing solids: not six that are measured: $(cat made.csv)"

# --- with the add-in, without it, and through another program ---
program --open made.dxf --save again.dxf --export again.csv count.lsp
check 'opening solids' 0 $? out '(SOLIDS 7)'
same 'opening solids' made.dxf again.dxf
same 'opening solids: what they amount to' made.csv again.csv

host run --open made.dxf --save plain.dxf count.lsp
check 'opening them without the add-in' 0 $? out '(SOLIDS 7)'
same 'opening them without the add-in' made.dxf plain.dxf
host run --open made.dxf list.lsp
check 'listing them without the add-in' 0 $? out 'Proxy: its class is not loaded (Solid|' not 'Kind ='

"$PYTHON" - >out.txt 2>err.txt <<'PYTHON'
import ezdxf

document = ezdxf.readfile("made.dxf")
print("errors:", len(document.audit().errors))
document.saveas("through.dxf")
PYTHON
check 'another program' 0 $? out 'errors: 0'
program --open through.dxf --export through.csv count.lsp
check 'solids from another program' 0 $? out '(SOLIDS 7)'
cut -d, -f3- made.csv >made.txt
cut -d, -f3- through.csv >through.txt
same 'solids from another program' made.txt through.txt

# --- while the add-in is away ---
# What was done before is taken back meanwhile; what was done meanwhile stays.
cat >away.lsp <<'LISP'
(setq all (ssget "X" '((0 . "QN_HVACSOLID"))))
(command "_MOVE" all "" '(0 0) '(5 7))
(command "_ERASE" (ssname all 3) "")
(qn_qn-tripleUnion (ssname all 0) (ssname all 5))
(princ (list 'away (arxunload "Tessary2010x64.arx")))
(command "_MOVE" all "" '(0 0) '(1 1))
(command "_U")
(command "_U")
(command "_U")
LISP
{
    cat away.lsp
    echo "(princ (arxload \"${module//\\/\\\\}\"))"
} >there.lsp
program --open made.dxf --save there.dxf --export there.csv there.lsp
check 'unloading and loading' 0 $? out '(AWAY Tessary2010x64.arx)' out 'could not be changed'
same 'unloading and loading' made.dxf there.dxf
same 'unloading and loading: what they amount to' made.csv there.csv

program --open made.dxf --save away.dxf away.lsp
check 'saving while it is away' 0 $?
same 'saving while it is away' made.dxf away.dxf

# --- damage ---
# Solids that do not fit together are kept with all their groups, and the others are there.
"$PYTHON" - >out.txt 2>err.txt <<'PYTHON'
lines = open("made.dxf", encoding="utf-8", newline="").read().split("\r\n")
marks = [i for i, line in enumerate(lines) if line == "qn_hvacSolid" and lines[i - 1].strip() == "100"]
for damaged, (mark, code) in enumerate(zip(marks, ["94", "97", "95"])):
    group = next(i for i in range(mark + 1, len(lines), 2) if lines[i].strip() == code)
    lines[group + 1] = "2000000000"
open("damaged.dxf", "w", encoding="utf-8", newline="").write("\r\n".join(lines))
PYTHON
check 'damaging solids' 0 $?
program --open damaged.dxf --save kept.dxf --export kept.csv count.lsp
check 'damaged solids' 0 $? out '(SOLIDS 7)'
same 'damaged solids' damaged.dxf kept.dxf
program --open damaged.dxf list.lsp
check 'listing damaged solids' 0 $? out 'Proxy: its class cannot read it' out 'Kind = wye'
[ $(($(wc -l <made.csv) - $(wc -l <kept.csv))) = 3 ] || fail "damaged solids: $(cat kept.csv)"

exit "$failures"
