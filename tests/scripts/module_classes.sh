#!/bin/bash
# Entities of a module's class while the module is loaded, unloaded, replaced by an older one and away (tests/fixtures).
set -u
. "$TESSARY_ROOT/tests/host_session.sh"
export CCACHE_DISABLE=1

for version in 1 2; do
    x86_64-w64-mingw32-g++-posix -std=c++20 -O1 -I"$TESSARY_ROOT" -DUNICODE -D_UNICODE -DTAG_VERSION=$version -shared \
        "$TESSARY_ROOT/tests/fixtures/tag_module.cpp" "$TESSARY_BIN/../lib/libdrafthost.dll.a" -o "tags$version.arx" || exit 1
done

x86_64-w64-mingw32-g++-posix -std=c++20 -O1 -I"$TESSARY_ROOT" -DUNICODE -D_UNICODE -DTAG_VERSION=2 -DTAG_FORGETFUL -shared \
    "$TESSARY_ROOT/tests/fixtures/tag_module.cpp" "$TESSARY_BIN/../lib/libdrafthost.dll.a" -o forgetful.arx || exit 1

# repl FILE OPTION...: types the file at the prompt.
repl() {
    local input=$1
    shift
    "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" repl "$@" <"$input" >out.txt 2>err.txt
}

# What only the exact filing holds (the count, 7) survives the module's absence and an older one; members that were
# changed before are taken back behind it; a set of selected entities stays usable.
cat >life.txt <<'LISP'
(setq e (tag_make "first" 7) set (ssadd e) h (cdr (assoc 5 (entget e))))
(list 'made (tag_get e))
(command "_.MOVE" e "" "0,0" "10,0")
(list 'moved (tag_get e))
(tag_set e "changed" 8)
(arxunload "tags2.arx")
(list 'away (cdr (assoc 0 (entget e))) (cdr (assoc 1 (entget e))))
(command "_.U")
(arxload "tags1.arx")
(list 'older (tag_get e))
(arxunload "tags1.arx")
(arxload "tags2.arx")
(list 'back (tag_get e) (eq e (handent h)) (eq e (ssname set 0)) (sslength set))
LISP
repl life.txt --module tags2.arx
check 'the life of an entity' 0 $? out '(MADE ("first" 7 0.0))' out '(MOVED ("first" 7 10.0))' \
    out '(AWAY "SAMPLETAG" "changed")' out '(OLDER nil)' out '(BACK ("first" 7 10.0) T T 1)'

# A module that goes without taking its class back.
cat >forgetful.txt <<'LISP'
(setq e (tag_make "first" 7))
(arxunload "forgetful.arx")
(list 'away (cdr (assoc 1 (entget e))))
(arxload "tags2.arx")
(list 'back (tag_get e))
LISP
repl forgetful.txt --module forgetful.arx
check 'a forgetful module' 0 $? out '(AWAY "first")' out '(BACK ("first" 7 0.0))'

# The class allows a proxy to be erased and nothing else.
cat >away.txt <<'LISP'
(setq e (tag_make "first" 7) f (tag_make "second" 8))
(arxunload "tags2.arx")
(list 'layer (entmod (subst '(8 . "Defpoints") (assoc 8 (entget e)) (entget e))))
(list 'color (entmod (append (entget e) '((62 . 1)))))
(list 'same (= (cdr (assoc 5 (entmod (entget e)))) (cdr (assoc 5 (entget e)))))
(command "_.MOVE" e "" "0,0" "10,0")
(command "_.COPY" e "" "0,0" "10,0" "")
(list 'entities (sslength (ssget "_X")))
(command "_.ERASE" f "")
(list 'erased (entget f))
(list 'deleted (eq e (entdel e)) (entget e))
(entdel e)
(arxload "tags2.arx")
(list 'back (tag_get e))
LISP
repl away.txt --module tags2.arx
check 'what proxies allow' 0 $? out '(LAYER nil)' out '(COLOR nil)' out '(SAME T)' out '1 could not be changed.' \
    out '(ENTITIES 2)' out '(ERASED nil)' out '(DELETED T nil)' out '(BACK ("first" 7 0.0))'

# Through a file: saved with the module, saved again without it, read with it.
cat >make.lsp <<'LISP'
(tag_make "kept" 7)
LISP
cat >nothing.lsp <<'LISP'
(princ)
LISP
cat >look.lsp <<'LISP'
(print (list 'read (tag_get (entlast))))
LISP
host run --module tags2.arx --save one.dxf make.lsp
check 'saving with the module' 0 $?
host run --open one.dxf --save two.dxf nothing.lsp
check 'saving without the module' 0 $?
# One line: that the class was away.
if [ "$(diff one.dxf two.dxf | grep -c '^[<>]')" != 2 ]; then
    echo 'saving without the module: more than the mark of the class changed:'
    diff one.dxf two.dxf
    failures=$((failures + 1))
fi
for mark in one:0 two:1; do
    record=$(tr -d '\r' <"${mark%:*}.dxf" | grep -x -A 10 -m 1 'SAMPLETAG' | tr '\n' ' ')
    wanted="SAMPLETAG   2 SampleTag   3 \"Tags|Example Company|www.example.com\"  90 1 280 ${mark#*:} 281 1 "
    if [ "$record" != "$wanted" ]; then
        echo "the class record of ${mark%:*}.dxf: $record"
        failures=$((failures + 1))
    fi
done
host run --open two.dxf --module tags2.arx look.lsp
check 'reading with the module' 0 $? out '(READ ("kept" 0 0.0))'

# The end of the host: at once, nothing saved, a status of its own.
cat >abort.lsp <<'LISP'
(princ "begin ")
(tag_abort "Größe" 12)
(princ "not reached")
LISP
host run --module tags2.arx --save never.dxf abort.lsp
check 'an abort' 3 $? out 'before the end' err 'drafthost: FATAL ERROR: Class Größe is broken (12)' not 'not reached'
if [ -e never.dxf ]; then
    echo 'an abort: the drawing was saved'
    failures=$((failures + 1))
fi

exit "$((failures > 0))"
