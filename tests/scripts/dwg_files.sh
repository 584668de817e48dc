#!/bin/bash
# DWG files: what the host takes from them, opened and inserted, and what it says of those that it cannot read.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

make_dwg() {
    "$PYTHON" -B "$TESSARY_ROOT/tests/fixtures/make_dwg.py" "$@" || exit 1
}

fail() {
    echo "$1"
    failures=$((failures + 1))
}

make_dwg plan.dwg

# --- a drawing is opened ---
cat >show.lsp <<'LISP'
(defun value (code data) (cdr (assoc code data)))
(defun show (what) (terpri) (prin1 what))
(setq entity (entnext) kinds nil)
(while entity
  (setq data (entget entity '("QN_TEST")) kinds (cons (value 0 data) kinds))
  (cond
    ((= (value 0 data) "LINE") (show (list (value 5 data) (value 8 data) (value 6 data) (value 62 data) (value 370 data)))
     (show (value -3 data)))
    ((= (value 0 data) "CIRCLE") (show (list (value 39 data) (value 10 data) (value 40 data))))
    ((= (value 0 data) "ARC") (show (list (angtos (value 50 data) 0 4) (angtos (value 51 data) 0 4))))
    ((= (value 0 data) "TEXT") (show (list (value 1 data) (value 7 data) (angtos (value 50 data) 0 4))))
    ((= (value 0 data) "MTEXT") (show (list (strlen (value 3 data)) (value 71 data) (value 44 data))))
    ((= (value 0 data) "LWPOLYLINE") (show (list (value 70 data) (vl-remove-if-not '(lambda (g) (member (car g) '(41 42))) data))))
    ((= (value 0 data) "INSERT") (show (list (value 2 data) (value 10 data) (value 41 data) (angtos (value 50 data) 0 4))))
    ((= (value 0 data) "ATTRIB") (show (list (value 2 data) (value 1 data))))
    ((= (value 0 data) "3DFACE") (show (mapcar '(lambda (c) (value c data)) '(10 11 12 13 70))))
    ((= (value 0 data) "POLYLINE") (show (list (value 70 data) (value 8 data))))
    ((= (value 0 data) "VERTEX") (show (list (value 10 data) (value 42 data)))))
  (setq entity (entnext entity)))
(show (reverse kinds))
(foreach name '("WALLS" "NOTES")
  (setq data (tblsearch "LAYER" name))
  (show (list name (logand 5 (value 70 data)) (value 62 data) (value 6 data))))
(show (value 40 (tblsearch "LTYPE" "DASHED")))
(setq data (tblsearch "STYLE" "ROMANS"))
(show (list (value 3 data) (value 41 data) (angtos (value 50 data) 0 4)))
(setq data (tblsearch "BLOCK" "DOOR") entity (value -2 data) kinds nil)
(while entity (setq kinds (cons (value 0 (entget entity)) kinds) entity (entnext entity)))
(show (list (value 10 data) (reverse kinds)))
(show (mapcar 'getvar '("LTSCALE" "DIMSCALE" "CLAYER" "TEXTSTYLE" "INSBASE" "DWGNAME")))
LISP
host run --open plan.dwg --save plan.dxf show.lsp
check 'a drawing' 0 $? out '1 REGION cannot be read from DWG files: left out' \
    out '("1F" "WALLS" "DASHED" 5 60)' \
    out '(("QN_TEST" (1000 . "QN") (1002 . "{") (1040 . 2.5) (1070 . -7) (1010 1.0 2.0 3.0) (1002 . "}")))' \
    out '(4.0 (5.0 5.0 1.0) 2.5)' out '("30.0000" "120.0000")' out '("Café ^2" "ROMANS" "45.0000")' out '(250 5 1.5)' \
    out '(1 ((41 . 1.0) (42 . 0.5) (41 . 2.0) (42 . 0.0) (41 . 0.0) (42 . 0.0)))' \
    out '("DOOR" (20.0 10.0 0.0) 2.0 "90.0000")' out '("NUMBER" "D-17")' \
    out '("LINE" "CIRCLE" "ARC" "TEXT" "MTEXT" "LWPOLYLINE" "INSERT" "ATTRIB" "SEQEND" "POLYLINE" "VERTEX" "VERTEX" "SEQEND" "ELLIPSE" "POINT" "SOLID" "3DFACE" "3DFACE" "SPLINE" "HATCH" "LINE")' \
    out '((0.0 0.0 1.0) (4.0 0.0 1.0) (4.0 3.0 2.0) (0.0 3.0 2.5) 5)' \
    out '((0.0 0.0 1.0) (4.0 0.0 1.0) (4.0 3.0 2.0) (4.0 3.0 2.0) 0)' \
    out '(4 "0")' out '((1.0 2.0 5.0) 0.25)' \
    out '("WALLS" 4 1 "DASHED")' out '("NOTES" 1 -3 "Continuous")' out '("romans.shx" 0.8 "15.0000")' \
    out '((1.0 2.0 0.0) ("LINE" "ARC" "ATTDEF"))' out '(2.5 4.0 "WALLS" "ROMANS" (5.0 6.0 0.0) "plan.dwg")'
grep -qx 'AC1021.*' plan.dxf || fail 'a drawing: not saved as DXF'
cp out.txt opened.txt
host run --open plan.dxf show.lsp
check 'the drawing saved as DXF' 0 $?
diff <(sed 's/plan.dxf/plan.dwg/' out.txt | grep '^(') <(grep '^(' opened.txt) >difference.txt ||
    fail "the drawing saved as DXF: $(cat difference.txt)"

# Texts of before 2007 are in the file's code page: the same byte is another letter.
make_dwg greek.dwg code_page=32
host run --open greek.dwg show.lsp
check 'another code page' 0 $? out '("Cafι ^2" "ROMANS" "45.0000")'

# --- names decide nothing ---
mkdir 'Zeichnungen ÄÖ'
cp plan.dwg 'Zeichnungen ÄÖ/Grundriß 平面.dwg'
cp plan.dwg really-dwg.dxf
cp plan.dxf really-dxf.dwg
for file in 'Zeichnungen ÄÖ/Grundriß 平面.dwg' really-dwg.dxf really-dxf.dwg; do
    host run --open "$file" show.lsp
    check "$file" 0 $? out '("NUMBER" "D-17")'
done

# --- DWG files are not written ---
cp plan.dwg kept.dwg
echo '(command "_QSAVE" "saved.dxf") (princ (getvar "DWGNAME"))' >save.lsp
host run --open kept.dwg save.lsp
check 'QSAVE asks for a name' 0 $? out 'saved.dxf'
[ -s saved.dxf ] || fail 'QSAVE asks for a name: nothing was saved'
echo '(command "_SAVEAS" "kept.dwg") (command "_SAVEAS" "new.dwg")' >overwrite.lsp
host run --open plan.dxf overwrite.lsp
check 'SAVEAS under a DWG name' 0 $? out 'drawings are saved as DXF, under a name of their own'
cmp -s kept.dwg plan.dwg || fail 'SAVEAS under a DWG name: the file was overwritten'
[ -e new.dwg ] && fail 'SAVEAS under a DWG name: a DXF file is called .dwg'

# --- a drawing is inserted ---
cat >insert.lsp <<'LISP'
(command "_INSERT" "plan" '(100 100) 1 1 0)
(setq data (tblsearch "BLOCK" "plan") entity (cdr (assoc -2 data)) count 0)
(while entity (setq count (1+ count) entity (entnext entity)))
(prin1 (list (cdr (assoc 10 data)) count (cdr (assoc 2 (entget (entlast)))) (if (tblsearch "BLOCK" "DOOR") 'DOOR)
  (cdr (assoc 70 (tblsearch "LAYER" "WALLS")))))
LISP
host run insert.lsp
check 'a drawing as a block' 0 $? out '((5.0 6.0 0.0) 20 "plan" DOOR 68)' out '1 REGION cannot be read from DWG files: left out'

# --- what cannot be read ---
: >empty.dwg
mkdir folder.dwg
for version in AC1009 AC1032 AC1099; do { printf %s "$version"; tail -c +7 plan.dwg; } >"$version.dwg"; done
head -c 3000 plan.dwg >damaged.dwg
printf 'not a drawing at all\n' >text.dwg
cat >failing.lsp <<'LISP'
(foreach name '("empty" "AC1009" "AC1032" "damaged" "text")
  (vl-catch-all-apply '(lambda () (command "_INSERT" name '(0 0) 1 1 0) (command))))
(prin1 (list (entlast) (tblsearch "BLOCK" "damaged")))
LISP
# FILE TEXT...
refused() {
    host run --open "$1" --save never.dxf save.lsp
    check "$1" 1 $? err "$1" err "$2"
    [ -e never.dxf ] && fail "$1: something was saved"
}
refused empty.dwg 'holds no drawing'
refused folder.dwg 'cannot be read'
refused AC1009.dwg 'version AC1009 (R11 or R12) cannot be read, only R13'
refused AC1032.dwg 'version AC1032 (2018) cannot be read, only R13'
refused AC1099.dwg 'version AC1099 cannot be read, only R13'
refused damaged.dwg 'damaged'
refused text.dwg 'line 1'
host run failing.lsp
check 'blocks that cannot be read' 0 $? out '(nil nil)'
# --- the reader fails ---
mkdir alone && cp "$TESSARY_BIN"/{drafthost.exe,drafthost.dll,libstdc++-6.dll,libgcc_s_seh-1.dll,libwinpthread-1.dll} alone/
alone() {
    "$TESSARY_WINE" alone/drafthost.exe run --open "$1" --save never.dxf save.lsp >out.txt 2>err.txt </dev/null
}
alone plan.dwg
check 'without the reader' 1 $? err 'dwgreader.exe, which reads DWG files, cannot be started'
x86_64-w64-mingw32-g++-posix -static -municode "$TESSARY_ROOT/tests/fixtures/failing_reader.cpp" -o alone/dwgreader.exe || exit 1
for name in crash half endless; do cp plan.dwg "$name.dwg"; done
alone crash.dwg
check 'a reader that crashes' 1 $? err 'crash.dwg: the file is damaged'
alone half.dwg
check 'a reader that stops halfway' 1 $? err 'half.dwg: the drawing in it is damaged: the file ends inside section'
alone endless.dwg
check 'a reader without an end' 1 $? err 'endless.dwg: the file is damaged: reading it does not end'
[ -e never.dxf ] && fail 'the reader fails: something was saved'

# --- damage at every place ---
"$TESSARY_WINE" "$TESSARY_BIN/dwg_fuzz.exe" plan.dwg 150 "${FUZZ_SEED:-1}" || failures=$((failures + 1))

exit "$((failures > 0))"
