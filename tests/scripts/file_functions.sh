#!/bin/bash
# File functions on read-only files, files of odd times, and folders with long names.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

program() {
    host run --module "$TESSARY_BIN/Tessary2010x64.arx" "$@"
}

printf old >locked.txt
chmod 444 locked.txt
echo '(prin1 (list (ts_fdelete "locked.txt") (ts_fcopy "locked.txt" "copied.txt") (ts_fmove "locked.txt" "moved.txt")))' >locked.lsp
program locked.lsp
check 'a read-only file' 0 $? out '(nil T T)'
[ "$(cat moved.txt)" = old ] || { echo 'a read-only file: changed'; failures=$((failures + 1)); }

# Times after 2038, and within the same second.
for name in late first second; do printf '%s' $name >$name.txt; done
touch -d '2050-05-05' late.txt
touch -d '2020-05-05 10:00:00.1' first.txt
touch -d '2020-05-05 10:00:00.9' second.txt
cat >times.lsp <<'LISP'
(prin1 (list (ts_fcopyIfChanged "second.txt" "first.txt") (ts_fcopyIfChanged "second.txt" "late.txt")
             (ts_fcopyIfChanged "late.txt" "second.txt")))
LISP
program times.lsp
check 'file times' 0 $? out '(nil nil T)'
if [ "$(cat first.txt second.txt late.txt)" != firstlatelate ]; then
    echo 'file times: wrong copies'
    failures=$((failures + 1))
fi

name=$(printf 'n%.0s' $(seq 200))
cat >long.lsp <<LISP
(prin1 (list (ts_mkdir "$name") (ts_fcopy "late.txt" "$name/late.txt") (ts_fdir "$name/l*") (ts_rmdir "$name")
             (ts_fdelete "$name/late.txt") (ts_rmdir "$name")))
LISP
program long.lsp
check 'long paths' 0 $? out '(T T ("late.txt") nil T T)'

exit $failures
