#!/bin/bash
# Databases that the Layers dialog is not shown on: what the drafter is told, and that nothing stays open or changes.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

fail() {
    echo "$1"
    failures=$((failures + 1))
}

# program FILE: with answers that must not be needed, so that a dialog that opens all the same is seen and cancelled.
program() {
    host run --verbose --module "$TESSARY_BIN/Tessary2010x64.arx" --support "$programs" --answers none.answers "$@"
}
programs=$(printf 'Z:%s' "$TESSARY_ROOT/lisp" | tr / '\\')
echo '# nothing' >none.answers

cat >make.lsp <<'LISP'
(load "standards_tables")
(setq file (strcat (getvar "DWGPREFIX") "größe 100%.qn"))
(if (and (ts_create_db file) (ts_connect file) (standardsTables:create)) (princ "made"))
(ts_close_db)
LISP
program make.lsp
check 'making the database' 0 $? out 'made'

mkdir folder.qn
echo 'Dear all,' >letter.qn
: >empty.qn
head -c 20000 'größe 100%.qn' >torn.qn
cp torn.qn torn.copy
cat >refused.lsp <<'LISP'
(defun customize (name arguments)
  (princ (strcat "\n--- " name))
  (princ (list (apply 'qn_qn-customizeLayers arguments))))
(customize "no database at all" nil)
(customize "no text" '(5))
(customize "an empty path" '(""))
(customize "a file that is not there" '("nowhere.qn"))
(customize "a folder that is not there" '("no folder/a.qn"))
(customize "a folder" '("folder.qn"))
(customize "a text" '("letter.qn"))
(customize "an empty file" '("empty.qn"))
(customize "half a database" '("torn.qn"))
(setq long "") (repeat 300 (setq long (strcat long "x")))
(customize "a name that is too long" (list (strcat long ".qn")))
(customize "characters that no file has" '("a<b>?.qn"))
(princ "\n--- ")
LISP
program refused.lsp
check 'databases that cannot be opened' 0 $? out 'Database Error: '
! grep -q 'dialog "Layers"' err.txt || fail 'databases that cannot be opened: the dialog was shown'
# What is printed of each: one error, then the result.
tr -d '\r' <out.txt |
    awk -v RS='\n--- ' 'NR > 1 && NF && (!/\nDatabase Error: [^\n]*\(nil\)/ || gsub("Error", "") != 1)' >wrong.txt
if [ "$(grep -c '^--- ' out.txt)" != 12 ] || [ -s wrong.txt ]; then
    cat out.txt wrong.txt
    fail 'databases that cannot be opened: what was printed'
fi
grep -q 'nowhere.qn' out.txt || fail 'a file that is not there: its name is not told'
[ ! -e nowhere.qn ] || fail 'a file that is not there: it was made'
[ ! -s empty.qn ] || fail 'an empty file: something was written'
cmp -s torn.qn torn.copy || fail 'half a database: it was changed'

# A file that can only be read, for users that this keeps from writing.
cp 'größe 100%.qn' locked.qn
chmod 444 locked.qn
if [ ! -w locked.qn ]; then
    echo '(princ (list "read-only" (qn_qn-customizeLayers "locked.qn")))' >locked.lsp
    program locked.lsp
    check 'a read-only database' 0 $? out '(read-only nil)' \
        err 'dialog "Quarnel": Database is read-only. Cannot be viewed at this time.'
    cmp -s 'größe 100%.qn' locked.qn || fail 'a read-only database: it was changed'
fi

# The database of the drawing, open for reading or writing, is found without a path; the drawing's own connection stays as
# it is. A relative path is meant from the drafter's folder, not from the server's; afterwards nobody has the file open.
cat >shown.lsp <<'LISP'
(foreach mode '("r" "w")
  (ts_connect (strcat (getvar "DWGPREFIX") "größe 100%.qn") mode)
  (ts_table "tblLayer" "sName")
  (qn_qn-customizeLayers)
  (princ (list mode (ts_current_table) (ts_current_index) (ts_readonly) (vl-filename-base (ts_mdb)))))
(ts_close_db)
(qn_qn-customizeLayers "größe 100%.qn")
(princ (list "moved" (vl-file-rename "größe 100%.qn" "renamed.qn")))
LISP
program shown.lsp
check 'databases that are shown' 0 $? out '(r tblLayer sName T größe 100%)(w tblLayer sName nil größe 100%)(moved T)'
[ "$(grep -c 'dialog "Layers"' err.txt)" -ge 3 ] || fail 'databases that are shown: a dialog is missing'
[ -e renamed.qn ] || fail 'databases that are shown: the file is still open'

exit "$failures"
