#!/bin/bash
# A host finds the add-in by its file name and its two entry points; anything else it exported would clash with other
# add-ins. Only the host and Windows may be needed to load it.
set -u
exports=$(x86_64-w64-mingw32-objdump -p "$TESSARY_BIN/Tessary2010x64.arx") || exit 1
failures=0

# same WHAT EXPECTED ACTUAL
same() {
    if [ "$2" != "$3" ]; then
        printf '%s: expected\n%s\nfound\n%s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

names=$(sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/^[[:space:]]*\[ *[0-9]*\] //p' <<<"$exports")
same 'exported names' $'acrxEntryPoint\nacrxGetApiVersion' "$names"
same 'name of the library' 'Tessary2010x64.arx' "$(sed -n 's/^Name[[:space:]]*[0-9a-f]* //p' <<<"$exports")"
own=$(sed -n 's/^[[:space:]]*DLL Name: //p' <<<"$exports" | grep -ixE 'drafthost.*|.*tests.*|.*\.arx')
same 'libraries of this project' 'drafthost.dll' "$own"
exit "$((failures > 0))"
