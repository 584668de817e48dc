#!/bin/bash
# Keyed lists written by one session, saved as DXF and read by the next one, which changes one list and saves again.
set -u
. "$TESSARY_ROOT/tests/host_session.sh"

program() {
    host run --module "$TESSARY_BIN/Tessary2010x64.arx" "$@"
}

cat >write.lsp <<'LISP'
(setq line (entmakex '((0 . "LINE") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))
      circle (entmakex '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 2.0))))
(setq long "") (repeat 255 (setq long (strcat long "é")))
(ts_xdput-list line (list "system" "Zuluft \"Süd\" 日本" "flow" 1234567 "width" 2.0625 " two\nlines " "a\\Pb^J\tc" "long" long "" "hidden"))
(ts_xdput-list circle '("gone" 1))
(ts_xdput-list circle)
LISP
cat >read.lsp <<'LISP'
(setq line (entnext) circle (entnext line))
(foreach pair (ts_xdget-all line)
  (prin1 (if (and (= (type (cdr pair)) 'STR) (> (strlen (cdr pair)) 200)) (list (car pair) (strlen (cdr pair))) pair)) (terpri))
(prin1 (list (ts_xdget line "flow") (ts_xdget line "") (ts_xdget-all circle)))
(ts_xdput-list line '("system" "Abluft"))
LISP
cat >again.lsp <<'LISP'
(prin1 (list 'now (ts_xdget-all (entnext)) (length (entget (entnext) '("*")))))
LISP

program --save written.dxf write.lsp
check 'writing' 0 $? not error
program --open written.dxf --save changed.dxf read.lsp
check 'reading' 0 $? out '("system" . "Zuluft \"Süd\" 日本")' out '("flow" . 1234567)' out '("width" . 2.0625)' \
    out '(" two\nlines " . "a\\Pb^J\tc")' out '("long" 255)' out '(1234567 "hidden" nil)'
program --open changed.dxf again.lsp
check 'reading again' 0 $? out '(NOW (("system" . "Abluft"))'

# What other programs make of the file.
"$PYTHON" - changed.dxf >out.txt 2>err.txt <<'PYTHON'
import sys
import ezdxf
drawing = ezdxf.readfile(sys.argv[1])
line = drawing.modelspace().query("LINE").first
print(drawing.appids.has_entry("QUARNEL"), [(tag.code, tag.value) for tag in line.get_xdata("QUARNEL")])
print(drawing.modelspace().query("CIRCLE").first.has_xdata("QUARNEL"))
PYTHON
check 'the file' 0 $? out "True [(1000, 'system'), (1000, 'Abluft')]" out 'False'

exit $failures
