#!/bin/bash
# Ten seconds of damaged DXF files: the reader refuses or reads each, and never crashes.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
files=()
for file in plan/vegetation/v3 sheets/A4H; do
    file="/usr/share/librecad/library/$file.dxf"
    files+=("Z:${file//\//\\}")
done
cat >leaders.lsp <<'LISP'
(entmake '((0 . "BLOCK") (2 . "TAG") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "QNLEADER") (100 . "AcDbEntity") (8 . "0") (100 . "QNLeader") (10 0.0 0.0 0.0) (11 2.0 3.0 0.0) (12 9.0 3.0 0.0) (40 . 0.5)))
(entmake '((0 . "ENDBLK")))
(regapp "MAKER")
(setq e (qn_qn-leader-insert '((0.0 0.0) (3.0 4.0) (9.0 4.0)) "0" "TAG" 2))
(entmod (append (entget e) '((-3 ("MAKER" (1000 . "text") (1040 . 2.5))))))
(entmake '((0 . "INSERT") (66 . 1) (2 . "TAG") (10 0.0 0.0 0.0) (70 . 2) (71 . 3)))
(entmake '((0 . "ATTRIB") (10 0.0 1.0 0.0) (40 . 1.0) (1 . "7") (2 . "FLOW") (70 . 0)))
(entmake '((0 . "SEQEND")))
(entmake '((0 . "3DFACE") (10 0.0 0.0 0.0) (11 4.0 0.0 0.5) (12 4.0 3.0 0.0) (13 0.0 3.0 0.0) (70 . 5)))
LISP
"$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --module "$TESSARY_BIN/Tessary2010x64.arx" --save leaders.dxf leaders.lsp
files+=(leaders.dxf)
"$TESSARY_WINE" "$TESSARY_BIN/dxf_fuzz.exe" 10 "${FUZZ_SEED:-1}" "${files[@]}"
