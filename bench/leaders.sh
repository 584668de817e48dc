#!/bin/bash
# Cost of leaders, as ratios: against two lines and a block reference each, in drawing, measuring and snapping (one
# process), in reading from a DXF file, and in a picture of 10,000. Environment as for every benchmark script:
# TESSARY_ROOT, TESSARY_BIN, TESSARY_WINE.
set -eu
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
module=$(windows_path "$TESSARY_BIN/Tessary2010x64.arx")
bare=$(windows_path "$TESSARY_BIN/BareWork.arx")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

cat >make.lsp <<'LISP'
(entmake '((0 . "BLOCK") (2 . "ROUND") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "LINE") (8 . "0") (10 -1.0 0.0 0.0) (11 1.0 0.0 0.0)))
(entmake '((0 . "ENDBLK")))
(setq i -1)
(repeat 10000
  (setq i (1+ i) x (* 9.0 (rem i 100)) y (* 7.0 (/ i 100))
        leader (qn_qn-leader-insert (list (list x y 0.0) (list (+ x 1.5) (+ y 3.25) 0.0) (list (+ x 7.0) (+ y 4.0) 0.0))
                                    "0" "ROUND" 1.25))
  (if parts (progn (qn_qn-leader-explode leader) (entdel leader))))
(princ)
LISP
printf '(setq parts T)\n(load "make")\n' >parts.lsp
run() { "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --module "$module" "$@" >out.txt 2>&1 || { cat out.txt; exit 1; }; }
run --save leaders.dxf make.lsp
run --save parts.dxf parts.lsp
"$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --module "$module" --module "$bare" \
    "$(windows_path "$TESSARY_ROOT/bench/leaders.lsp")" | tr -d '\r' | grep ratio

# One more picture each time costs what a picture costs; everything else is in both times.
seconds() {
    local start=$EPOCHREALTIME end
    run "$@"
    end=$EPOCHREALTIME
    echo "$(((${end/./} - ${start/./})))"
}
picture_time() {
    local program=$1 least='' one many pictures=() i
    for i in 1 2 3 4 5 6; do pictures+=(--picture "$i.svg"); done
    for i in 1 2 3; do
        one=$(seconds --picture 0.svg "$program")
        many=$(seconds --picture 0.svg "${pictures[@]}" "$program")
        if [ -z "$least" ] || [ $((many - one)) -lt "$least" ]; then least=$((many - one)); fi
    done
    echo "$least"
}
awk -v leaders="$(picture_time make.lsp)" -v parts="$(picture_time parts.lsp)" \
    'BEGIN { printf "a picture of 10,000 leaders over one of their parts: ratio %.2f (at most 2 wanted)\n", leaders / parts }'
