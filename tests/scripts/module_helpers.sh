#!/bin/bash
# The add-in's own helpers and its life with documents, from a module built around its code.
set -u
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0
export CCACHE_DISABLE=1

x86_64-w64-mingw32-g++-posix -std=c++20 -O1 -I"$TESSARY_ROOT" -I"$TESSARY_BIN/../server/generated" -DUNICODE -D_UNICODE -shared \
    -fsanitize=undefined -fsanitize-undefined-trap-on-error -fno-sanitize=vptr \
    "$TESSARY_ROOT/tests/fixtures/helpers_module.cpp" \
    "$TESSARY_BIN/../lib/libtessary_module.a" "$TESSARY_BIN/../lib/libserver_interface.a" \
    "$TESSARY_BIN/../lib/libframework.a" "$TESSARY_BIN/../lib/libdrafthost.dll.a" \
    -lole32 -loleaut32 -loleacc -luuid -lshell32 -lcomctl32 -lgdi32 -luser32 -o helpers.arx || exit 1

# session NAME OPTION...: types standard input at the prompt and shows what is printed behind each prompt.
session() {
    "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" repl --module "$@" 2>err.txt | tr -d '\r' | sed 's/ *$//'
}

# same NAME WANTED ACTUAL: also that nothing was left locked, open or allocated.
same() {
    if grep -F internal: err.txt; then
        failures=$((failures + 1))
    fi
    if [ "$2" != "$3" ]; then
        echo "$1:"
        diff <(printf '%s\n' "$2") <(printf '%s\n' "$3")
        cat err.txt
        failures=$((failures + 1))
    fi
}

printed=$(session helpers.arx <<'LISP'
(hlp_lock)
(hlp_lock_inside)
(hlp_catch "framework")
(hlp_catch "number")
(hlp_catch "standard")
(hlp_throw "framework")
(hlp_throw "number")
(hlp_throw "standard")
(hlp_lock)
(hlp_status 0)
(hlp_status 1)
(hlp_status 2)
(hlp_status 3)
(hlp_status 4)
(hlp_status 5)
(hlp_status -1)
(vl-catch-all-error-p (vl-catch-all-apply 'hlp_status '(2)))
(hlp_lock)
LISP
)
same 'the invoker' "$(cat <<'OUT'

Loading Quarnel Tessary (Jet64)
Command: 1
Command: 4
Command:
General Exception
caught framework1
Command:
Error
caught 421
Command:
Error
caught standard1
Command:
General Exception
; error: external function hlp_throw failed: unknown exception
Command:
Error
; error: external function hlp_throw failed: unknown exception
Command:
Error
; error: external function hlp_throw failed: broken
Command: 1
Command: T
Command:
Too few arguments passed.
; error: ADS request error
Command:
Wrong type of arguments passed.
; error: ADS request error
Command:
Bad data passed .
; error: ADS request error
Command: ; error: ADS request error
Command: T
Command: T
Command:
Wrong type of arguments passed.
T
Command: 1
Command:
OUT
)" "$printed"

printed=$(session helpers.arx <<'LISP'
(hlp_records)
(hlp_open)
(hlp_open)
(asin 0)
(hlp_close)
(hlp_records)
(hlp_close)
(hlp_open)
LISP
)
same 'documents' "$(cat <<'OUT'

Loading Quarnel Tessary (Jet64)
Command: 1
Command:
Loading Quarnel Tessary (Jet64)2
Command:
Loading Quarnel Tessary (Jet64)3
Command: 0.0
Command: 0
Command: 0
Command: 0
Command:
Loading Quarnel Tessary (Jet64)1
Command:
OUT
)" "$printed"

printed=$(session helpers.arx <<'LISP'
(equal (tblobjname "LAYER" "0") (hlp_layer "0"))
(hlp_layer "Ducts")
(hlp_layer "")
(progn (command "_-LAYER" "_M" "Ducts" "") (equal (tblobjname "LAYER" "Ducts") (hlp_layer "ducts")))
(setq told nil)
(defun qnBlock-alertMissing (name) (setq told (cons name told)) 7)
(hlp_block "Damper")
(list told)
(type (hlp_block "*model_space"))
(entmake '((0 . "BLOCK") (2 . "Damper") (70 . 0) (10 0.0 0.0 0.0)))
(entmake '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 1.0)))
(entmake '((0 . "ENDBLK")))
(type (hlp_block "damper"))
(list told)
(defun qnBlock-alertMissing (name) (car 5))
(hlp_block "Grille")
(setq qnBlock-alertMissing nil)
(hlp_block "Grille")
(hlp_block "")
(hlp_world '(1.0 2.0 3.0))
(command "_UCS" "_Z" 90)
(hlp_world '(1.0 2.0 3.0))
(hlp_world 1 2)
(command "_UCS" "_W")
(command "_UCS" "_3point" '(10.0 0.0 0.0) '(11.0 0.0 0.0) '(10.0 0.0 1.0))
(hlp_world '(1.0 2.0 3.0))
(command "_UCS" "_W")
(hlp_world '(1.0 2.0 3.0))
(hlp_append_nothing)
(hlp_append_refused)

(entlast)
(hlp_lock)
LISP
)
same 'helpers' "$(cat <<'OUT'

Loading Quarnel Tessary (Jet64)
Command: T
Command: "kept"
Command: "kept"
Command: Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/Freeze/Thaw/LOck/Unlock]: _M
Enter name for new layer (becomes the current layer): Ducts
Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/Freeze/Thaw/LOck/Unlock]:
T
Command: nil
Command: QNBLOCK-ALERTMISSING
Command: "kept"
Command: (("Damper"))
Command: ENAME
Command: ((0 . "BLOCK") (2 . "Damper") (70 . 0) (10 0.0 0.0 0.0))
Command: ((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 1.0))
Command: "Damper"
Command: ENAME
Command: (("Damper"))
Command: QNBLOCK-ALERTMISSING
Command: "kept"
Command: nil
Command: "kept"
Command: "kept"
Command: (1.0 2.0 3.0)
Command: Specify origin of UCS or [World/3point/Z] <World>: _Z
Specify rotation angle about Z axis <90>: 90
nil
Command: (-2.0 1.0 3.0)
Command: (-2.0 1.0 0.0)
Command: Specify origin of UCS or [World/3point/Z] <World>: _W
nil
Command: Specify origin of UCS or [World/3point/Z] <World>: _3point
Specify new origin point <0,0,0>: 10,0,0
Specify point on positive portion of X-axis: 11,0,0
Specify point on positive-Y portion of the UCS XY plane: 10,0,1
nil
Command: (11.0 -3.0 2.0)
Command: Specify origin of UCS or [World/3point/Z] <World>: _W
nil
Command: (1.0 2.0 3.0)
Command: nil
Command: Message: Failed to get block table record!

62nil
Command:
Command: nil
Command: 1
Command:
OUT
)" "$printed"

# --- block files ---
mkdir -p support/sub support/folder.dwg
cat >damper.lsp <<'LISP'
(command "_-LAYER" "_M" "Dampers" "")
(entmake '((0 . "CIRCLE") (8 . "Dampers") (10 1.0 0.0 0.0) (40 . 2.0)))
(setvar "INSBASE" '(1.0 0.0 0.0))
LISP
"$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" run --save damper.dxf damper.lsp >/dev/null 2>err.txt || cat err.txt
for name in Damper Damper.v2 'Lüfter 3' sub/Damper; do
    cp damper.dxf "support/$name.dwg"
done
head -c 3000 damper.dxf >support/torn.dwg
echo 'Dear all,' >support/letter.dwg
: >support/void.dwg

printed=$(session helpers.arx --support support <<'LISP'
(setq told nil)
(defun qnBlock-alertMissing (name) (setq told (cons name told)))
(defun first (name) (entget (cdr (assoc -2 (tblsearch "BLOCK" name)))))
(cdr (assoc 2 (entget (hlp_block "Damper"))))
(list (cdr (assoc 0 (first "damper"))) (cdr (assoc 8 (first "damper"))) (cdr (assoc 10 (tblsearch "BLOCK" "damper"))))
(list (eq (hlp_block "DAMPER") (hlp_block "Damper")) (tblsearch "LAYER" "nothing") (not (tblsearch "LAYER" "dampers")))
(list (type (hlp_block "Damper.v2")) (type (hlp_block "Lüfter 3")) (cdr (assoc 0 (first "Damper.v2"))))
(progn (command "_SAVEAS" "before.dxf") (list told))
(hlp_block "letter")
(hlp_block "torn")
(hlp_block "void")
(hlp_block "sub\\Damper")
(list told)
(hlp_block "folder")
(hlp_block "Damper?")
(list told)
(progn (command "_SAVEAS" "after.dxf") (hlp_lock))
LISP
)
same 'block files' "$(cat <<'OUT'

Loading Quarnel Tessary (Jet64)
Command: nil
Command: QNBLOCK-ALERTMISSING
Command: FIRST
Command: "Damper"
Command: ("CIRCLE" "Dampers" (1.0 0.0 0.0))
Command: (T nil nil)
Command: (ENAME ENAME "CIRCLE")
Command: Save drawing as: before.dxf
(nil)
Command: "kept"
Command: "kept"
Command: "kept"
Command: "kept"
Command: (nil)
Command: "kept"
Command: "kept"
Command: (("Damper?" "folder"))
Command: Save drawing as: after.dxf
1
Command:
OUT
)" "$printed"
cmp before.dxf after.dxf || failures=$((failures + 1))

exit "$((failures > 0))"
