#!/bin/bash
# Loading of modules and calls of their functions, with modules made for it (tests/fixtures).
set -u
. "$TESSARY_ROOT/tests/host_session.sh"
export CCACHE_DISABLE=1

for name in sample refusing wrong_version; do
    x86_64-w64-mingw32-g++-posix -std=c++20 -O1 -I"$TESSARY_ROOT" -DUNICODE -D_UNICODE -shared \
        "$TESSARY_ROOT/tests/fixtures/${name}_module.cpp" "$TESSARY_BIN/../lib/libdrafthost.dll.a" \
        -o "${name}_module.arx" || exit 1
done
# The fixtures find the host and the runtime through the program that loads them.

# repl FILE OPTION...: types the file at the prompt.
repl() {
    local input=$1
    shift
    "$TESSARY_WINE" "$TESSARY_BIN/drafthost.exe" repl "$@" <"$input" >out.txt 2>err.txt
}

cat >calls.txt <<'LISP'
(smp_types 1 40000 2.5 "a" nil T 'foo '(1.0 2.0) '(1.0 2.0 3.0) '(1 2) '(a . 2))
(list 'echo (smp_echo 1 '(1.0 2.0) '(1 (2 3) nil) '(1 . 2)))
(list 'whole (smp_echo '(1 2 3)))
(list 'none (smp_echo))
(smp_keep 1 2 3)
(smp_error)
(list 'caught (vl-catch-all-error-message (vl-catch-all-apply 'smp_throw nil)))
(smp_throw_number)
(smp_wild)
(smp_divide)
(list 'alive (smp_invoke "+" 1 2 3) (smp_invoke "car" 5) (smp_invoke "nothere"))
(list 'point (smp_invoke "list" 1.0 2.0 3.0))
(list 'nested (smp_invoke "smp_invoke" "+" 20 3))
(list 'asked (smp_ask))
No
(arxunload "sample_module.arx")
(smp_echo)
LISP
repl calls.txt --module sample_module.arx
check 'calls' 0 $? \
    out 'sample: document Drawing1.dxf' \
    out '5003 5010 5001 5005 5019 5021 5005 5002 5009 5016 5003 5003 5017 5016 5005 5018 5003 5017' \
    out '(ECHO (1 (1.0 2.0) (1 (2 3) nil) (1 . 2)))' out '(WHOLE (1 2 3))' out '(NONE nil)' \
    out '; error: ADS request error' \
    out '(CAUGHT "external function smp_throw failed: out of pipes")' \
    out 'smp_throw_number failed: unknown exception' \
    out 'smp_wild failed: access violation' out 'smp_divide failed: integer division by zero' \
    out '(ALIVE 6 T T)' out '(POINT (1.0 2.0 3.0))' out '(NESTED 23)' out '(ASKED "no")' \
    out 'sample: document closes' out 'sample: unloaded' out 'no function definition: SMP_ECHO'

# What a function leaves behind is reported, and only once.
printf '(smp_leak)\n(smp_echo)\n(smp_open)\n(smp_lock)\n(smp_echo)\n' >leaks.txt
repl leaks.txt --module sample_module.arx
check 'leaks' 70 $? err '2 value list nodes left by (smp_leak)' err '1 object left open by (smp_open)' \
    err '1 document lock left by (smp_lock)'
if [ "$(grep -c internal: err.txt)" != 3 ]; then
    echo 'leaks: not three reports'
    failures=$((failures + 1))
fi

echo '(arxload "missing.arx" "not there")' >load.txt
repl load.txt
check 'a missing module' 0 $? out '"not there"'
echo 'no program' >text.arx
: >nothing.txt
repl nothing.txt --module text.arx
check 'a file that is no library' 1 $? err 'text.arx cannot be loaded'
repl nothing.txt --module missing.arx
check 'a module that is not there' 1 $? err 'missing.arx was not found.'
repl nothing.txt --module "Z:${TESSARY_BIN//\//\\}\\libwinpthread-1.dll"
check 'a library that is no module' 1 $? err 'does not export acrxEntryPoint'
repl nothing.txt --module wrong_version_module.arx
check 'a module for another interface' 1 $? \
    err 'wrong_version_module.arx was built for interface version 0x00110000; this host offers 0x00120000.'
if grep -q 'was called' out.txt; then
    echo 'a module for another interface: it was called'
    failures=$((failures + 1))
fi
repl nothing.txt --module refusing_module.arx
check 'a module that refuses' 1 $? err 'refused to be loaded'

exit "$((failures > 0))"
