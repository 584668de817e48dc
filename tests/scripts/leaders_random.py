#!/usr/bin/python3
"""Random editing of a drawing with leaders, through the host's prompt: whatever the order of inserting, changing, exploding,
undoing, and unloading and loading the add-in, every entity stays whole, taking back everything gives the first drawing,
redoing it the last one, and the saved drawing is read and written without a change.

    leaders_random.py [ROUNDS [SEED [FOLDER]]]

With FOLDER what was run and written is kept there."""

import os
import random
import re
import subprocess
import sys
import tempfile

import ezdxf

SUPPORT = r"""
(setvar "CMDECHO" 0)
(defun block (name parts) (entmake (list '(0 . "BLOCK") (cons 2 name) '(70 . 0) '(10 0.0 0.0 0.0))) (foreach part parts (entmake part)) (entmake '((0 . "ENDBLK"))))
(defun leader-data (x) (list '(0 . "QNLEADER") '(100 . "AcDbEntity") '(8 . "0") '(100 . "QNLeader") (list 10 x 0.0 0.0) (list 11 (+ x 2.0) 3.0 0.0) (list 12 (+ x 9.0) 3.0 0.0) '(40 . 0.5)))
(defun layer (name) (entmake (list '(0 . "LAYER") '(100 . "AcDbSymbolTableRecord") '(100 . "AcDbLayerTableRecord") (cons 2 name) '(70 . 0) '(62 . 3) '(6 . "Continuous"))))
(defun mark (name x value)
  (entmake (list '(0 . "INSERT") '(66 . 1) '(8 . "A") (cons 2 name) (list 10 x 0.0 0.0) '(41 . 2.0) '(42 . 2.0)))
  (entmake (list '(0 . "ATTRIB") '(8 . "A") (list 10 x 1.0 0.0) '(40 . 1.0) (cons 1 value) '(2 . "FLOW") '(70 . 0)))
  (entmake '((0 . "SEQEND"))))
(defun all (/ set found)
  (if (setq set (ssget "X")) (repeat (setq i (sslength set)) (setq found (cons (ssname set (setq i (1- i))) found))))
  found)
;; The number-th entity of the drawing, counted round, of a kind or of any.
(defun pick (number kind / found)
  (setq found (if kind (vl-remove-if-not '(lambda (e) (= (cdr (assoc 0 (entget e))) kind)) (all)) (all)))
  (if found (nth (rem number (length found)) found)))
(defun changed (e group / data)
  (setq data (entget e))
  (entmod (if (assoc (car group) data) (subst group (assoc (car group) data) data) (append data (list group)))))
(defun try (action / result)
  (setq result (vl-catch-all-apply action))
  (if (vl-catch-all-error-p result) (progn (princ (strcat "\n~" (vl-catch-all-error-message result))) (command))))
(defun saved (name) (command "_SAVEAS" name))
(defun wrong (what e) (princ (strcat "\nWRONG " what " ")) (prin1 e) (prin1 (entget e)))
(defun check (/ data codes)
  (foreach e (all)
    (setq data (entget e '("*")))
    (cond
      ((not (and data (eq e (cdr (assoc -1 data))))) (wrong "entity name" e))
      ((not (eq e (handent (cdr (assoc 5 data))))) (wrong "handle" e))
      ((not (tblsearch "LAYER" (cdr (assoc 8 data)))) (wrong "layer" e))
      ((and (= (cdr (assoc 0 data)) "INSERT") (assoc 2 data) (not (tblsearch "BLOCK" (cdr (assoc 2 data))))) (wrong "block" e))
      ((= (cdr (assoc 0 data)) "QNLEADER")
        (setq codes (mapcar 'car data))
        (cond
          ((not (and (assoc 10 data) (assoc 11 data) (assoc 12 data) (assoc 40 data))) (wrong "leader groups" e))
          ((/= 1 (length (vl-remove-if-not '(lambda (code) (= code 40)) codes))) (wrong "leader groups" e))
          ((and AcDbCurve::getLength
                (not (equal (AcDbCurve::getLength e) (distance (cdr (assoc 10 data)) (cdr (assoc 12 data))) 1e-6)))
            (wrong "leader length" e)))))
    (if (assoc 66 data)
      (if (/= "ATTRIB" (cdr (assoc 0 (entget (entnext e))))) (wrong "attributes" e)))))
"""

SETUP = r"""
(foreach name '("A" "B" "LOCKED") (layer name))
(block "ROUND" '(((0 . "CIRCLE") (8 . "0") (10 0.0 0.0 0.0) (40 . 1.0))))
(block "BOX" '(((0 . "LWPOLYLINE") (100 . "AcDbEntity") (8 . "B") (100 . "AcDbPolyline") (90 . 3) (70 . 1) (10 -1.0 -0.3) (10 0.0 0.0) (10 -1.0 0.3))))
(block "MARK" '(((0 . "LINE") (8 . "0") (10 0.0 0.0 0.0) (11 2.0 0.0 0.0)) ((0 . "ATTDEF") (8 . "0") (10 0.0 1.0 0.0) (40 . 1.0) (1 . "0") (2 . "FLOW") (3 . "Flow?") (70 . 0))))
(block "NEST" (list (leader-data 0.0) '((0 . "INSERT") (8 . "A") (2 . "ROUND") (10 3.0 3.0 0.0)) '((0 . "TEXT") (8 . "B") (10 0.0 0.0 0.0) (40 . 1.0) (1 . "n"))))
(regapp "MAKER")
"""

BLOCKS = ["ROUND", "BOX", "MARK", "NEST", "part", "NOBLOCK"]


def number(r):
    return repr(r.choice([0.0, 1.0, -1.0, r.uniform(-50, 50), r.uniform(-50, 50), r.uniform(-50, 50), r.uniform(-50, 50)]))


def point(r):
    return "'(%s %s %s)" % (number(r), number(r), r.choice(["0.0", "0.0", number(r)]))


def points(r):
    return "(list %s %s %s)" % (point(r), point(r), point(r))


def name(r, names):
    return '"%s"' % r.choice(names)


def insert(r):
    return "(qn_qn-leader-insert %s %s %s %s)" % (points(r), name(r, ["0", "A", "B", "LOCKED", "NOLAYER"]), name(r, BLOCKS),
                                                number(r))


def function(r):
    e = '(pick %d "QNLEADER")' % r.randrange(1000)
    return r.choice([
        "(qn_qn-leader-setPoints %s %s)" % (e, points(r)),
        "(qn_qn-leader-setBlock %s %s)" % (e, name(r, BLOCKS)),
        "(qn_qn-leader-setOffset %s %s)" % (e, number(r)),
        "(qn_qn-leader-explode %s)" % e,
        '(ts_xdput-list %s (list "symbol" "%d"))' % (e, r.randrange(9)),
        "(progn (qn_qn-leader-explode %s) (entdel %s))" % (e, e)])


def command(r):
    picked = " ".join("(pick %d %s)" % (r.randrange(1000), r.choice(["nil", '"QNLEADER"', '"INSERT"']))
                      for _ in range(r.randint(1, 3)))
    return "(command %s)" % r.choice([
        '"_MOVE" %s "" %s %s' % (picked, point(r), point(r)),
        '"_COPY" %s "" %s %s ""' % (picked, point(r), point(r)),
        '"_ROTATE" %s "" %s %s' % (picked, point(r), number(r)),
        '"_SCALE" %s "" %s %s' % (picked, point(r), r.choice(["0.5", "2", "1e-3", "1.7"])),
        '"_MIRROR" %s "" %s %s "%s"' % (picked, point(r), point(r), r.choice(["_Y", "_N"])),
        '"_STRETCH" "_C" %s %s "" %s %s' % (point(r), point(r), point(r), point(r)),
        '"_EXPLODE" %s ""' % picked,
        '"_ERASE" %s ""' % picked])


def making(r):
    x = number(r)
    layer = r.choice(["0", "A", "B"])
    return r.choice([
        "(entmake (leader-data %s))" % x,
        '(mark "MARK" %s "v%d")' % (x, r.randrange(99)),
        "(entmake (list '(0 . \"LINE\") '(8 . \"%s\") (cons 10 %s) (cons 11 %s)))" % (layer, point(r), point(r)),
        "(entmake (list '(0 . \"TEXT\") '(8 . \"%s\") (cons 10 %s) '(40 . 2.0) '(1 . \"t\")))" % (layer, point(r)),
        "(entmake (list '(0 . \"INSERT\") '(8 . \"%s\") '(2 . \"%s\") (cons 10 %s) '(50 . 0.3)))" % (
            layer, r.choice(BLOCKS[:4]), point(r)),
        '(block "NEW%d" (list (leader-data %s) \'((0 . "INSERT") (8 . "A") (2 . "NEST") (10 0.0 0.0 0.0))))' % (
            r.randrange(4), x),
        '(if (tblsearch "BLOCK" "NEW%d") (entmake (list \'(0 . "INSERT") \'(2 . "NEW%d") (cons 10 %s))))' % (
            (lambda n: (n, n))(r.randrange(4)) + (point(r),))])


def changing(r):
    e = "(pick %d %s)" % (r.randrange(1000), r.choice(["nil", '"QNLEADER"', '"INSERT"']))
    return r.choice([
        "(changed %s '(8 . \"%s\"))" % (e, r.choice(["A", "B", "0"])),
        "(changed %s '(62 . %d))" % (e, r.randrange(256)),
        "(changed %s (cons 10 %s))" % (e, point(r)),
        "(changed %s (cons 11 %s))" % (e, point(r)),
        "(changed %s (cons 12 %s))" % (e, point(r)),
        "(changed %s (cons 40 %s))" % (e, number(r)),
        "(changed %s '(-3 (\"MAKER\" (1000 . \"x%d\") (1040 . 2.5))))" % (e, r.randrange(9)),
        "(entdel %s)" % e,
        "(progn (setq last-erased %s) (entdel last-erased))" % e,
        "(if last-erased (entdel last-erased))"])


def file(r):
    return r.choice([
        '(command "_INSERT" "part" %s %s 1 %s)' % (point(r), r.choice(["1", "2"]), number(r)),
        '(command "_INSERT" "part=" %s 1 1 0)' % point(r),
        '(command "_INSERT" "other=part" %s 1 1 0)' % point(r),
        '(command "_INSERT" "torn" %s 1 1 0)' % point(r)])


def history(r, marks):
    simple = ['(command "_U")', '(command "_U")', '(command "_REDO")', '(command "_UNDO" "%d")' % r.randint(1, 5),
              '(progn (command "_U") (command "_REDO"))']
    grouped = ['(command "_UNDO" "_BE")', '(command "_UNDO" "_E")', '(command "_UNDO" "_M")']
    return r.choice(simple + (grouped if marks else []))


def module(r):
    return r.choice(['(arxunload "Tessary2010x64.arx")', '(arxload "Tessary2010x64.arx")'])


def operations(r, marks):
    kinds = [(insert, 4), (function, 5), (command, 7), (making, 4), (changing, 4), (file, 1), (module, 1),
             (lambda r: history(r, marks), 2)]
    for kind in r.choices([k for k, _ in kinds], [w for _, w in kinds], k=r.randint(10, 60)):
        text = kind(r)
        yield "(try '(lambda () %s))" % text if r.random() < 0.8 else \
            "(try '(lambda () %s %s))" % (text, r.choice([insert, making, changing, function])(r))


def program(r, rounds):
    lines = [SUPPORT, '(try \'(lambda () (arxload "Tessary2010x64.arx")))', '(command "_UNDO" "_C" "_N")', '(command "_UNDO" "_C" "_A")', '(saved "first.dxf")']
    for i in range(rounds):
        marks = r.random() < 0.4
        lines.append('(princ "\\nround %d")' % i)
        lines += operations(r, marks)
        lines.append('(try \'(lambda () (if (not qn_qn-leader-insert) (arxload "Tessary2010x64.arx"))))')
        # Something to take back: REDO goes back to an earlier UNDO otherwise.
        lines += ["(check)", "(entmake (leader-data 77.0))"]
        if marks:
            lines.append('(command "_UNDO" "_E")')
        lines.append('(saved "last%d.dxf")' % i)
        lines += ['(command "_UNDO" "30000")'] * (1 if not marks else 20)
        lines.append('(saved "undone%d.dxf")' % i)
        if not marks:
            lines += ['(command "_REDO")', '(saved "redone%d.dxf")' % i, "(check)", '(command "_UNDO" "30000")',
                      '(saved "undone%d-2.dxf")' % i]
    return "\n".join(lines) + "\n(princ)\n"


def comparable(path):
    """The drawing without its class records and what tells of the session."""
    text = open(path, "rb").read().decode("utf-8", "replace").replace("\r\n", "\n")
    text = re.sub(r"CLASSES\n.*?ENDSEC", "", text, count=1, flags=re.S)
    return re.sub(r"\$(HANDSEED|EXTMIN|EXTMAX)\n.*?(?=  9\n|  0\n)", "", text, flags=re.S)


def same(a, b):
    """Angles are kept in radians and written in degrees: the last digit may go."""
    try:
        return a == b or ("." in a and abs(float(a) - float(b)) < 1e-12 * abs(float(a)))
    except ValueError:
        return False


def difference(a, b):
    a, b = comparable(a).split("\n"), comparable(b).split("\n")
    for i, (x, y) in enumerate(zip(a, b)):
        if not same(x, y):
            return "line %d: %s instead of %s" % (i, b[max(0, i - 6):i + 4], a[max(0, i - 6):i + 4])
    return None if len(a) == len(b) else "%d lines instead of %d" % (len(b), len(a))


class Host:
    def __init__(self, folder):
        self.folder = folder

    def run(self, *arguments, module=True):
        bin = os.environ["TESSARY_BIN"]
        command = [os.environ["TESSARY_WINE"], os.path.join(bin, "drafthost.exe"), "run"]
        command += ["--support", bin] + (["--module", os.path.join(bin, "Tessary2010x64.arx")] if module else [])
        # Into a file: a pipe would stay open until the database server has gone, too.
        with open(os.path.join(self.folder, "output.txt"), "w+b") as output:
            done = subprocess.run(command + list(arguments), cwd=self.folder, stdout=output, stderr=subprocess.STDOUT,
                                  stdin=subprocess.DEVNULL, timeout=120)
            output.seek(0)
            return done.returncode, output.read().decode("utf-8", "replace").replace("\r", "")

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as stream:
            stream.write(text)
        return name


def make_files(host):
    status, output = host.run("--save", "start.dxf", host.write("start.lsp", SUPPORT + SETUP))
    part = host.write("part.lsp", SUPPORT + SETUP + '(layer "P")(entmake (leader-data 5.0))(mark "MARK" 3.0 "7")'
                      '(entmake \'((0 . "INSERT") (8 . "P") (2 . "NEST") (10 5.0 5.0 0.0)))(princ)')
    status2, output2 = host.run("--save", "part.dxf", part)
    data = open(os.path.join(host.folder, "part.dxf"), "rb").read()
    open(os.path.join(host.folder, "part.dwg"), "wb").write(data)
    open(os.path.join(host.folder, "torn.dwg"), "wb").write(data[:len(data) * 2 // 3])
    return ["making the files: %d %s" % (status or status2, output + output2)] if status or status2 else []


def audited(path):
    """What an independent reader finds; exploding a leader without a block gives an insertion of none."""
    audit = ezdxf.readfile(path).audit()
    return ["%s: %s" % (os.path.basename(path), entry.message) for entry in list(audit.errors) + list(audit.fixes)
            if "without a BLOCK name" not in entry.message]


def check_round(host, i):
    path = lambda name: os.path.join(host.folder, name)
    problems = []
    pairs = [("first.dxf", "undone%d.dxf"), ("last%d.dxf", "redone%d.dxf"), ("first.dxf", "undone%d-2.dxf"),
             ("last%d.dxf", "again%d.dxf")]
    for a, b in pairs:
        a, b = a.replace("%d", str(i)), b.replace("%d", str(i))
        if not os.path.exists(path(b)):
            if "redone" in b or "-2" in b:
                continue
            problems.append(b + " is missing")
            continue
        found = difference(path(a), path(b))
        if found:
            problems.append("%s and %s: %s" % (a, b, found))
    return problems + audited(path("last%d.dxf" % i))


def session(folder, rounds, seed):
    """Problems of one session of the host."""
    host = Host(folder)
    problems = make_files(host)
    if problems:
        return problems
    status, output = host.run("--open", "start.dxf", host.write("program.lsp", program(random.Random(seed), rounds)))
    host.write("session.txt", output)
    if status:
        problems.append("status %d: %s" % (status, output[-1500:]))
    problems += [line for line in output.split("\n") if line.startswith("WRONG") or "failed:" in line]
    for i in range(rounds):
        if not os.path.exists(os.path.join(folder, "last%d.dxf" % i)):
            continue
        again, text = host.run("--open", "last%d.dxf" % i, "--save", "again%d.dxf" % i, host.write("empty.lsp", "(princ)"))
        if again:
            problems.append("reading last%d.dxf: %s" % (i, text[-500:]))
        problems += ["round %d: %s" % (i, problem) for problem in check_round(host, i)]
    return problems


def main():
    rounds, seed = (int(text) for text in (sys.argv[1:3] + ["12", "1"][len(sys.argv[1:3]):]))
    with tempfile.TemporaryDirectory() as scratch:
        folder = sys.argv[3] if len(sys.argv) > 3 else scratch
        problems = session(folder, rounds, seed)
    for problem in problems[:20]:
        print(problem[:3000])
    print("%d rounds, seed %d: %d problems" % (rounds, seed, len(problems)))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
