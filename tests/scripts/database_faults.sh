#!/bin/bash
# Databases in a hostile world: files that are none or are damaged, locks, disks that are full or cannot be written, a
# server or a host that dies. Nothing crashes or hangs, errors name the file, and what was reported done is there once.
# Needs root for what needs a mount, otherwise that is left out with a message.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"
server=${TESSARY_SERVER:-local}
mounts=()
release() {
    local place
    for place in "${mounts[@]}"; do umount "$place"; done
    [ -z "${prefix-}" ] || end_all
    rm -rf "$work"
}
trap release EXIT
trap 'exit 1' TERM INT

fail() {
    echo "$1"
    failures=$((failures + 1))
}

program() {
    host run --module "$TESSARY_BIN/Tessary2010x64.arx" shared.lsp "$@"
}

# --- what the programs share ---
cat >shared.lsp <<'LISP'
(defun log (line / file) (setq file (open "log.txt" "a")) (write-line line file) (close file))
(defun reason (/ text) (setq text (ts_lastError)) (if (> (strlen text) 5) (substr text 2 4) text))
; What opening it gave: the number of records, or the error.
(defun opened (path / count)
  (if (ts_connect path) (progn (setq count (if (ts_table "T") (ts_count))) (ts_close_db) count) (reason)))
LISP
cat >make.lsp <<'LISP'
(if (and (ts_create_db "whole.qn") (ts_connect "whole.qn")
         (ts_create_table "T" '(("ix" . "COUNTER PRIMARY KEY") ("n" . "LONG") ("s" . "TEXT(255)")))
         (ts_create_index "T" "n" T nil)
         (ts_create_table "P" '(("k" . "LONG PRIMARY KEY") ("a" . "LONG") ("t" . "TEXT(255)")))
         (ts_command "INSERT INTO P (k, a) VALUES (1, 0)"))
  (progn
    (repeat 6 (ts_command "INSERT INTO P (k, a) SELECT k + (SELECT max(k) FROM P), 0 FROM P"))
    (ts_command "UPDATE P SET t = String(200, 'x')")
    (ts_command "INSERT INTO T (n, s) SELECT -k, t FROM P")
    (ts_table "T")
    (prin1 (list 'made (ts_count)))))
(ts_close_db)
LISP
program make.lsp
check 'making the database' 0 $? out '(MADE 64)'

# --- files that are no databases, or damaged ones ---
mkdir folder.qn
: >zero.qn
printf 'a text\n' >text.qn
head -c $(($(stat -c %s whole.qn) / 2)) whole.qn >half.qn
pages=$(($(stat -c %s whole.qn) / 4096))
expected='("folder" "3051")("zero" "3343")("text" "3343")("half" "3049")("page1" "3343")'
echo '(foreach name (list "folder" "zero" "text" "half" "page1"' >damaged.lsp
for ((page = 1; page <= pages; ++page)); do
    cp whole.qn page$page.qn
    dd if=/dev/zero of=page$page.qn bs=4096 seek=$((page - 1)) count=1 conv=notrunc status=none
    [ $page = 1 ] || { echo "\"page$page\"" >>damaged.lsp; expected+="(\"page$page\" \"3049\")"; }
done
cat >>damaged.lsp <<'LISP'
) (prin1 (list name (opened (strcat name ".qn")))))
(print (list (ts_compact "half.qn" "copy.qn" nil) (opened "copy.qn") (ts_lastError)))
; The page of the definitions of all tables, and the top of the large table.
(print (list (ts_compact "page2.qn" "copy2.qn" nil) (opened "copy2.qn") (ts_lastError)))
LISP
root=$("$PYTHON" - <<'PYTHON'
import sqlite3
print(*sqlite3.connect("whole.qn").execute("SELECT rootpage FROM sqlite_schema WHERE name = 'T'").fetchone())
PYTHON
)
echo "(print (list (ts_compact \"page$root.qn\" \"copy3.qn\" nil) (opened \"copy3.qn\") (ts_lastError)))" >>damaged.lsp
cp half.qn half.saved
program damaged.lsp
check 'files that are damaged or no databases' 0 $? out "(3049 0 \"(3049) The database '" out "half.qn' was damaged" out "'P': " out '(3049 64 ' \
    out 'Not all definitions could be read' out "64 records were found whose table is not known" \
    out "'T': 0 records of 64 could be read"
grep -qF -- "$expected" <(grep -ao '("[a-z0-9]*" "[0-9]*")' out.txt | tr -d '\r\n') || {
    fail 'files that are damaged or no databases: not the errors that were expected'
    cat out.txt
}
cmp -s half.qn half.saved || fail 'opening or compacting changed a damaged file'

# --- a database that another program has locked ---
"$PYTHON" - <<'PYTHON' &
import os, sqlite3, time
database = sqlite3.connect("whole.qn", isolation_level=None)
database.execute("BEGIN EXCLUSIVE")
open("locked", "w").close()
for _ in range(600):
    if os.path.exists("unlock"):
        break
    time.sleep(0.05)
database.execute("ROLLBACK")
os.remove("locked")
PYTHON
locker=$!
until [ -e locked ]; do sleep 0.05; done
cat >locked.lsp <<'LISP'
(setq begun (getvar "DATE") first (opened "whole.qn") waited (* 86400 (- (getvar "DATE") begun)))
(close (open "unlock" "w"))
(while (findfile "locked"))
(print (list first (< 4 waited 8) (ts_lastError) (opened "whole.qn")))
LISP
program locked.lsp
check 'a locked database' 0 $? out '("3218" T "(3218) ' out "whole.qn' is locked by another user.\" 64)"
wait $locker

# --- a database that is taken away while it is open ---
cat >taken.lsp <<'LISP'
(ts_connect "taken.qn")
(ts_table "T")
(ts_count)
(log "open")
(while (not (findfile "gone")))
(print (list (ts_count) (reason) (ts_append '("n" . 1)) (ts_close_db)))
LISP
for way in cut empty; do
    cp whole.qn taken.qn
    rm -f gone log.txt
    program taken.lsp &
    until [ -s log.txt ]; do sleep 0.05; done
    if [ $way = cut ]; then truncate -s 10000 taken.qn; else truncate -s 0 taken.qn; fi
    : >gone
    wait $!
    check "an open database that became $way" 0 $? out '(nil "3049" nil nil)' out "taken.qn'"
done

# --- disks that cannot be written or are full ---
if mkdir full sealed && mount -t tmpfs -o size=256k tmpfs full 2>/dev/null; then
    mounts+=("$work/full")
    mount -t tmpfs tmpfs sealed && mounts+=("$work/sealed")
    cp whole.qn sealed
    mount -o remount,ro sealed
    cat >disks.lsp <<'LISP'
(print (list (ts_connect "sealed\\whole.qn") (ts_readonly) (ts_table "T") (ts_count) (ts_append '("n" . 1)) (reason)
             (ts_command "DELETE FROM T") (ts_create_db "sealed\\new.qn") (ts_close_db)))
(print (list (ts_compact "whole.qn" "sealed\\copy.qn" nil) (ts_lastError)))
(ts_create_db "full\\plan.qn")
(ts_connect "full\\plan.qn")
(ts_create_table "T" '(("ix" . "COUNTER PRIMARY KEY") ("s" . "MEMO")))
(ts_table "T")
(setq text "0123456789" done 0)
(repeat 6 (setq text (strcat text text)))
(while (ts_append (cons "s" text)) (setq done (1+ done)))
(print (list (> done 10) (- (ts_count) done) (ts_lastError)))
(print (list (ts_command "UPDATE T SET s = s & s") (reason) (ts_sql "SELECT DISTINCT len(s) AS l FROM T")
             (ts_create_table "U" '(("a" . "LONG"))) (ts_compact "full\\plan.qn" "full\\copy.qn" nil) (ts_lastError)))
LISP
    program disks.lsp
    check 'disks that cannot be written or are full' 0 $? out '(T T "T" 64 nil "3027" nil nil nil)' \
        out "(3051 \"(3051) The file '" out "copy.qn' cannot be written.\")" \
        out "(T 0 \"(3026) The disk is full; the change of the database '" out '(nil "3026" ((("l" . 640))) nil 3026' \
        out "copy.qn' was not made.\")"
    [ "$(ls full)" = plan.qn ] || fail "a full disk: files are left: $(ls full)"
else
    echo 'left out, no mounts here: disks that cannot be written or are full'
fi

# --- two programs that write at once ---
cp whole.qn shared.qn
cat >write.lsp <<'LISP'
(setq failed 0 n base)
(ts_connect "shared.qn")
(ts_table "T")
(repeat 150 (if (not (ts_append (cons "n" (setq n (1+ n))))) (setq failed (1+ failed))))
(repeat 50 (if (/= 1 (ts_command "UPDATE P SET a = a + 1 WHERE k = 1")) (setq failed (1+ failed))))
(print (list 'failed failed))
LISP
echo '(setq base 1000)' >first.lsp
echo '(setq base 2000)' >second.lsp
(program first.lsp write.lsp && cp out.txt first.txt) &
(host() { "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" "$@" >second.txt 2>&1 </dev/null; } && program second.lsp write.lsp)
wait $!
[ "$(cat first.txt second.txt | grep -c 'FAILED 0')" = 2 ] || fail "two writers: $(cat first.txt second.txt)"
cat >read.lsp <<'LISP'
(ts_connect "shared.qn")
(print (list (ts_sql "SELECT count(*) AS c, sum(n) AS s FROM T WHERE n > 0") (ts_sql "SELECT sum(a) AS a FROM P")))
LISP
program read.lsp
check 'two writers' 0 $? out '(((("c" . 300) ("s" . 472650.0))) ((("a" . 100.0))))'

# --- a server or a host that dies ---
# Where clients are killed no one else's may be, and Wine offers the classes of a dead server until its own services end.
prefix=$work/wine
export TESSARY_WINEPREFIX=$prefix

# The processes of that prefix whose command has the text, one a line.
processes() {
    local process
    for process in /proc/[0-9]*; do
        if tr '\0' ' ' <"$process/cmdline" | grep -qF -- "$1" &&
            tr '\0' '\n' <"$process/environ" | grep -qx "WINEPREFIX=$prefix"; then
            echo "${process#/proc/}"
        fi
    done 2>/dev/null
}

# Whatever still runs in that prefix.
end_all() {
    "$TESSARY_WINE" --server -k
    "$TESSARY_WINE" --server -w
}

kind=()
[ "$server" = local ] || kind=(inproc)
"$TESSARY_WINE" "$TESSARY_BIN/TessaryServer.exe" /RegServer "${kind[@]}"
# The registration reaches the disk when Wine's server ends by itself; killed, it would forget it.
"$TESSARY_WINE" --server -w

cp whole.qn killed.qn
cat >work.lsp <<'LISP'
(ts_connect "killed.qn")
(setq n (max 0 (cdr (assoc "n" (car (ts_sql "SELECT max(n) AS n FROM T")))))
      a (cdr (assoc "a" (car (ts_sql "SELECT max(a) AS a FROM P")))))
(ts_table "T")
(log "begun")
(while (< n 5000)
  (setq n (1+ n))
  (if (ts_append (cons "n" n) '("s" . "a record")) (log (strcat "n " (itoa n))))
  (if (and (= 0 (rem n 5)) (= 64 (ts_command "UPDATE P SET a = a + 1, t = String(100 + a Mod 100, 'y')")))
    (log (strcat "a " (itoa (setq a (1+ a)))))))
LISP
# What was reported done is there exactly once, at most one change more, and no half one.
cat >verify.py <<'PYTHON'
import sqlite3
done = [line.split() for line in open("done.txt") if line[0] in "na"]
appended = {int(number) for kind, number in done if kind == "n"}
updates = max([int(number) for kind, number in done if kind == "a"], default=0)
database = sqlite3.connect("killed.qn")
database.create_collation("TESSARY_TEXT", lambda a, b: (a.lower() > b.lower()) - (a.lower() < b.lower()))
assert database.execute("PRAGMA integrity_check").fetchall() == [("ok",)]
there = [number for (number,) in database.execute("SELECT n FROM T WHERE n > 0")]
assert len(there) == len(set(there)), "doubled"
assert appended <= set(there), f"lost {appended - set(there)}"
states = set(database.execute("SELECT a FROM P"))
assert len(states) == 1, f"half an update: {states}"
extra = (len(set(there) - appended), states.pop()[0] - updates)
assert extra in [(0, 0), (1, 0), (0, 1)], f"not reported {extra}"
with open("done.txt", "a") as file:
    file.writelines(f"n {number}\n" for number in set(there) - appended)
    file.write(f"a {updates + extra[1]}\n")
PYTHON
: >done.txt
victims=(TessaryServer drafthost)
[ "$server" = local ] || victims=(drafthost)
for ((round = 0; round < 4; ++round)); do
    : >log.txt
    program work.lsp 2>/dev/null &
    client=$!
    for ((tries = 0; tries < 400; ++tries)); do
        [ -s log.txt ] && break
        sleep 0.05
    done
    [ -s log.txt ] || fail "round $round: the program does not begin: $(cat out.txt err.txt)"
    sleep "0.$((RANDOM % 9))$((RANDOM % 10))"
    # shellcheck disable=SC2046 # One word a process.
    kill -9 $(processes "${victims[round % ${#victims[@]}]}")
    for ((tries = 0; tries < 100; ++tries)); do
        kill -0 $client 2>/dev/null || break
        sleep 0.1
    done
    kill -0 $client 2>/dev/null && fail "round $round: the program hangs after its server died"
    end_all
    wait $client 2>/dev/null
    cat log.txt >>done.txt
    "$PYTHON" verify.py || fail "round $round: the database is not what was reported"
done

# --- a host that dies in the middle of a statement without end ---
if [ "$server" = local ]; then
    cat >endless.lsp <<'LISP'
(ts_connect "killed.qn")
(log "begun")
(ts_command "INSERT INTO P (k) SELECT a.k FROM P AS a, P AS b, P AS c, P AS d, P AS e, P AS f")
LISP
    rm -f log.txt
    program endless.lsp 2>/dev/null &
    client=$!
    until [ -s log.txt ]; do sleep 0.05; done
    sleep 2
    # shellcheck disable=SC2046 # One word a process.
    kill -9 $(processes drafthost)
    wait $client 2>/dev/null
    echo "(print (list (ts_connect \"killed.qn\") (ts_command \"UPDATE P SET a = 0 WHERE k = 1\") (ts_lastError)))" >after.lsp
    program after.lsp
    check 'a dead client with a long statement' 0 $? out '(T 1 "")'
fi
exit $failures
