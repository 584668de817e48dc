#!/bin/bash
# Leaders of other versions in drawings with a scale, and classes of other makers that have the leader's name.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"
export CCACHE_DISABLE=1

# build FILE SOURCE LIBRARY...
build() {
    local file=$1
    shift
    x86_64-w64-mingw32-g++-posix -std=c++20 -O1 -I"$TESSARY_ROOT" -I"$TESSARY_BIN/../server/generated" -DUNICODE \
        -D_UNICODE -shared "$@" "$TESSARY_BIN/../lib/libdrafthost.dll.a" \
        -lole32 -loleaut32 -loleacc -luuid -lshell32 -lcomctl32 -lgdi32 -luser32 -o "$file" || exit 1
}
build leaders.arx "$TESSARY_ROOT/tests/fixtures/leader_module.cpp" "$TESSARY_ROOT/tests/module/value_filer.cpp" \
    "$TESSARY_BIN/../lib/libtessary_module.a" "$TESSARY_BIN/../lib/libserver_interface.a" \
    "$TESSARY_BIN/../lib/libframework.a"
build rival.arx "$TESSARY_ROOT/tests/fixtures/rival_module.cpp"

cat >versions.lsp <<'LISP'
(entmake '((0 . "BLOCK") (2 . "Tag") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "ENDBLK")))
(setq e (qn_qn-leader-insert '((0.0 0.0 0.0) (5.0 5.0 0.0) (12.0 5.0 0.0)) "0" "Tag" 2))
(defun show (title version)
  (princ (strcat "\n" title))
  (foreach pair (ldr_read e version) (princ (strcat " " (car pair) " " (rtos (cdr pair) 2 0)))))
(setvar "DIMSCALE" 48)
(show "new at 48:" 2)
(show "old at 48:" 1)
(show "future at 48:" 3)
(show "unknown at 48:" 0)
(setvar "DIMSCALE" 0)
(show "old at 0:" 1)
(princ "\n")
(princ (ldr_again))
LISP
host run --module leaders.arx versions.lsp
check 'versions and scales' 0 $? \
    out 'new at 48: status 0 offset 2 scale 2 layer 1' \
    out 'old at 48: status 0 offset 96 scale 96 layer 0' \
    out 'future at 48: status 301 offset 1 scale 1 layer 0' \
    out 'unknown at 48: status 0 offset 1 scale 1 layer 0' \
    out 'old at 0: status 0 offset 2 scale 2 layer 0' \
    out 'T'

echo '(princ "before") (ldr_rival) (princ "behind")' >rival.lsp
host run --module leaders.arx rival.lsp
check 'a class of the name comes between' 3 $? out before err 'Class mismatch' not behind

echo '(princ "behind")' >alone.lsp
host run --module rival.arx --module "$(printf 'Z:%s' "$TESSARY_BIN/Tessary2010x64.arx" | tr / '\\')" alone.lsp
check 'a class of the name is there already' 3 $? err 'Class mismatch' not behind

exit "$((failures > 0))"
