#!/bin/bash
# Damaged databases that programs connect to, repaired by lisp/compact_database.lsp or not.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

cp "$TESSARY_ROOT/lisp/compact_database.lsp" .

program() {
    host run --module "$TESSARY_BIN/Tessary2010x64.arx" "$@"
}

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# Overwrites 4096 bytes in the middle of a file.
damage() {
    dd if=/dev/zero of="$1" bs=4096 count=1 seek=$(($(stat -c %s "$1") / 8192)) conv=notrunc status=none
}

cat >make.lsp <<'LISP'
(setq file (strcat (getvar "DWGPREFIX") "größe plan.qn") text "")
(repeat 20 (setq text (strcat text "0123456789")))
(if (and (ts_create_db file) (ts_connect file)
         (ts_create_table "tblNote" '(("ixNote" . "COUNTER PRIMARY KEY") ("sText" . "TEXT(255)")))
         (ts_create_table "tblSmall" '(("sName" . "TEXT(40)"))) (ts_table "tblSmall") (ts_append '("sName" . "kept")))
  (progn
    (ts_table "tblNote")
    (repeat 200 (ts_append (cons "sText" text)))
    (prin1 (list 'made (ts_count)))))
(ts_close_db)
LISP
# What is left: the other table, and how many of the notes.
cat >use.lsp <<'LISP'
(setq file (strcat (getvar "DWGPREFIX") "größe plan.qn")
      answer (ts_connect file))
(prin1 (list 'connected answer))
(if answer
  (progn
    (ts_table "tblSmall")
    (setq small (ts_top))
    (ts_table "tblNote")
    (setq notes (ts_count))
    (prin1 (cons 'tables (ts_list_tables)))
    (prin1 (list 'left small (< 0 notes 200) (ts_append '("sText" . "new"))))
    (ts_delete)))
(ts_close_db)
LISP

program make.lsp
check 'making the database' 0 $? out '(MADE 200)'
cp 'größe plan.qn' whole.qn
damage 'größe plan.qn'
cp 'größe plan.qn' damaged.qn

program use.lsp
check 'a damaged database without the repair program' 0 $? out '(CONNECTED nil)' out 'Tessary Error:'
cmp -s 'größe plan.qn' damaged.qn || fail 'without the repair program: the file was changed'

program compact_database.lsp use.lsp
check 'a damaged database' 0 $? out 'Repair: ' out 'größe plan.qn.damaged.' out '(CONNECTED T)' \
    out '(TABLES "tblNote" "tblSmall")' out '(LEFT (("sName" . "kept")) T (("ixNote" . '
cmp -s 'größe plan.qn.damaged' damaged.qn || fail 'a damaged database: what it was is not kept'
cp 'größe plan.qn' repaired.qn

program compact_database.lsp use.lsp
check 'the repaired database' 0 $? out '(CONNECTED T)' not 'Repair'

damage 'größe plan.qn'
program compact_database.lsp use.lsp
check 'damaged once more' 0 $? out 'größe plan.qn.damaged2.' out '(CONNECTED T)'
cmp -s 'größe plan.qn.damaged' damaged.qn || fail 'damaged once more: the first damaged file was overwritten'

# --- files that cannot be repaired stay ---
head -c 40 whole.qn >'größe plan.qn'
cp 'größe plan.qn' short.qn
program compact_database.lsp use.lsp
check 'a file with nothing in it' 0 $? out '(CONNECTED nil)' out 'cannot be repaired'
cmp -s 'größe plan.qn' short.qn || fail 'a file with nothing in it: it was changed'

printf 'not a database at all\n' >'größe plan.qn'
program compact_database.lsp use.lsp
check 'a file of another kind' 0 $? out '(CONNECTED nil)' out 'Tessary Error:' not 'Repair'
[ "$(cat 'größe plan.qn')" = 'not a database at all' ] || fail 'a file of another kind: it was changed'
ls -- *.compacted* >/dev/null 2>&1 && fail 'copies that were not used are left'

# --- a whole one, compacted by hand ---
cp whole.qn 'größe plan.qn'
rm -f ./*.damaged*
echo '(prin1 (list (compactDatabase (strcat (getvar "DWGPREFIX") "größe plan.qn") nil "Compact") (compactDatabase "nowhere.qn" nil "Compact")))' >compact.lsp
program compact_database.lsp compact.lsp use.lsp
check 'compacting by hand' 0 $? out '(T nil)' out 'Compact: nowhere.qn is not there.' out '(CONNECTED T)' \
    out '(LEFT (("sName" . "kept")) nil '
cmp -s 'größe plan.qn.damaged' whole.qn || fail 'compacting by hand: the old file is not kept'

# --- what a killed server left of a database that is gone must not reach the next one of its name ---
rm -f 'größe plan.qn'
"$PYTHON" - 'größe plan.qn-journal' <<'PYTHON'
import shutil
import sqlite3
import sys
other = sqlite3.connect("other.db", isolation_level=None)
other.execute("PRAGMA page_size = 4096")
other.execute("PRAGMA cache_size = 2")
other.execute("CREATE TABLE t (x)")
other.executemany("INSERT INTO t VALUES (?)", [("y" * 300,)] * 1000)
other.execute("BEGIN")
other.execute("UPDATE t SET x = 'z' || x")
shutil.copy("other.db-journal", sys.argv[1])
PYTHON
program make.lsp use.lsp
check 'a journal without its database' 0 $? out '(MADE 200)' out '(TABLES "tblNote" "tblSmall")' \
    out '(LEFT (("sName" . "kept")) nil ' not 'Error'

exit $failures
