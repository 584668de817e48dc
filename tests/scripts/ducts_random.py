#!/usr/bin/python3
"""Random duct runs through the host's prompt: whatever comes out is a valid solid, what is refused leaves nothing in the
drawing, and straight ducts that are cut back by what a fitting takes end in the fitting's own faces.

    ducts_random.py [COUNT [SEED [FOLDER]]]

With FOLDER what was run and written is kept there."""

import csv
import math
import os
import random
import re
import subprocess
import sys
import tempfile

SUPPORT = r"""
(setq before (entlast))
(defun handle (e) (cdr (assoc 5 (entget e))))
(defun number-text (x) (rtos x 2 12))
;; What a call gave: solids by their handles, lengths by their names; and whether the drawing got anything.
(defun note (index result / new)
  (setq new (entlast))
  (princ (strcat "\n#" (itoa index) " " (if (equal before new) "same" "new")))
  (setq before new)
  (foreach pair (cond ((null result) nil) ((listp result) result) (T (list (cons "en" result))))
    (princ (strcat " " (car pair) "=" (cond ((null (cdr pair)) "nil") ((numberp (cdr pair)) (number-text (cdr pair)))
                                            (T (handle (cdr pair))))))))
(defun length-of (name result) (if result (cdr (assoc name result)) 0.0))
;; A run cut back at one end.
(defun cut (run where length / i)
  (setq i -1)
  (mapcar '(lambda (value) (setq i (1+ i)) (if (= i where) (+ value length) value)) run))
"""


def vector(values):
    return tuple(float(value) for value in values)


def plus(p, d, t=1.0):
    return tuple(a + b * t for a, b in zip(p, d))


def dot(p, q):
    return sum(a * b for a, b in zip(p, q))


def direction(r):
    kind = r.randrange(8)
    if kind == 0:
        return (0.0, 0.0, r.choice([1.0, -1.0]))
    angle = r.choice([0, 45, 90, 135, 180, 225, 270, 315, r.uniform(0, 360)]) * math.pi / 180
    slope = 0.0 if kind < 6 else r.uniform(-1.2, 1.2)
    return (math.cos(angle) * math.cos(slope), math.sin(angle) * math.cos(slope), math.sin(slope))


def size(r):
    shape = r.choice(["RC", "RC", "RC", "", "RD", "RD", "OO", "OX", "Rd", "dx"])
    width, height = r.choice([(12.0, 8.0), (8.0, 12.0), (14.0, 14.0), (24.0, 10.0), (r.uniform(1, 40), r.uniform(1, 40))])
    if shape.upper() == "RD":
        height = width
    return width, height, shape


def run(start, end, section, r, plain):
    thickness = (0.0, 0.0) if plain or r.random() < 0.8 else (r.uniform(0, 1), r.uniform(0, 1))
    justification = ("", "", 0, 0.0) if plain or r.random() < 0.6 else (
        r.choice(["l", "r", "x"]), r.choice(["t", "b", "h", "T"]), r.randrange(2), r.uniform(0, 6))
    numbers = ["%r" % value for value in (*start, *end)]
    return '(list %s 0 0.0 0.0 %r %r "%s" %r %r "%s" "%s" %d %r)' % (
        (" ".join(numbers), section[0], section[1], section[2]) + thickness + justification)


def is_round_family(section):
    return section[2].upper() in ("RD", "OO", "OX", "DX")


def keeps_its_turn(first, second, ways):
    is_round = first[0] == first[1] and is_round_family(first)
    return first == second and (is_round or all(abs(way[2]) < 1e-12 for way in ways))


def fitting(r, index):
    """A LISP expression that draws a random fitting and notes it, and the directions of the two runs whose ducts must meet
    it. None stands for a duct that need not: its section stands off the line or has another size or shape, or one that is
    not round arrives turned about its own axis, as it does behind a bend that is neither level nor upright."""
    joint = tuple(r.uniform(-500, 500) for _ in range(3))
    plain = r.random() < 0.5
    first, second, third = size(r), size(r), size(r)
    if r.random() < 0.5:
        second = first
    if r.random() < 0.5:
        third = first

    def leaving(section, way=None):
        way = way or direction(r)
        ways.append(way)
        return run(joint, plus(joint, way, r.uniform(20, 300)), section, r, plain)

    along = direction(r)
    ways = [along]
    arriving = run(plus(joint, along, -r.uniform(20, 300)), joint, first, r, plain)
    kind = r.choice(["transition", "elbow", "elbow", "square", "tray", "wye", "takeoff", "hanger", "skin"])
    flags = r.choice([0, 0, 0, 1, 2, 3, 4, 7])
    if kind == "transition":
        call = "(qn_qn-drawTripleTransition nil %d %s %s)" % (flags, arriving, leaving(second, along if r.random() < 0.8 else None))
    elif kind in ("elbow", "square", "tray"):
        how = {"elbow": "nil", "square": "T", "tray": '"CABLETRAY"'}[kind]
        if kind == "tray" and is_round_family(first):
            plain = False  # a flat tray is rectangular whatever the duct is
        radius = r.choice([0.0, first[0] / 2, first[0] * r.uniform(0.3, 3)])
        return """(setq a %s b %s made (qn_qn-drawTripleElbow nil %d %s %r a b)) (note %d made)
(note %d (if made (qn_qn-drawTripleCenter nil 0 (cut a 8 (length-of "dHeadLength" made)) b)))
(note %d (if (and made (null (cdr (assoc "en2" made)))) (qn_qn-drawTripleCenter nil 0 (cut b 7 (length-of "dTailLength" made)) a)))""" % (
            arriving, leaving(second), flags, how, radius, index, index + 1, index + 2), [along if plain else None, ways[1] if plain and keeps_its_turn(first, second, ways) else None]
    elif kind == "wye":
        call = "(qn_qn-drawTripleWye nil %d nil 0.0 %s %s %s)" % (flags, arriving, leaving(second), leaving(third))
    elif kind == "takeoff":
        onward = leaving(second, along)
        branches = " ".join(leaving(size(r)) for _ in range(r.randint(1, 2)))
        call = "(qn_qn-drawTripleTakeoff nil %d nil 0.0 %s %s %s)" % (flags, arriving, onward, branches)
    elif kind == "hanger":
        call = "(qn_qn-drawHanger %s '(%r %r %r) %r %r %r %s %r %r %r %d)" % (
            r.choice(["T", "nil"]), *joint, r.uniform(-4, 4), r.uniform(4, 40), r.uniform(4, 30), r.choice(["T", "nil"]),
            r.uniform(0.25, 1), r.uniform(0.1, 2), joint[2] + r.uniform(-80, 80), flags)
    else:
        corners = [plus(joint, (math.cos(a) * r.uniform(3, 9), math.sin(a) * r.uniform(3, 9), r.choice([0, 0, r.uniform(0, 2)])))
                   for a in sorted(r.uniform(0, 2 * math.pi) for _ in range(r.randint(0, 7)))]
        call = "(qn_qn-drawTripleSkin %r (list %s))" % (
            r.choice([0.1, -0.1, 0.5, 0.0]), " ".join("(list %r %r %r)" % corner for corner in corners))
    return "(note %d %s)" % (index, call), [None, None]


def read_objects(path):
    """{name: (points, faces)}: the file's objects by the first word of their names."""
    points, objects, current = [], {}, None
    with open(path, encoding="utf-8") as file:
        for line in file:
            words = line.split()
            if not words:
                continue
            if words[0] == "v":
                points.append(vector(words[1:4]))
            elif words[0] == "o":
                current = objects.setdefault(words[1].split("_")[0], [])
            elif words[0] == "f":
                current.append([int(word.split("/")[0]) for word in words[1:]])
    count = len(points)
    return {name: (points, [[i - 1 if i > 0 else count + i for i in face] for face in faces])
            for name, faces in objects.items()}


def volume(points, faces):
    total, origin = 0.0, points[faces[0][0]]
    for face in faces:
        a = plus(points[face[0]], origin, -1)
        for i, j in zip(face[1:], face[2:]):
            b, c = plus(points[i], origin, -1), plus(points[j], origin, -1)
            total += (a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) + a[2] * (b[0] * c[1] - b[1] * c[0]))
    return total / 6


def is_closed(faces):
    edges = [edge for face in faces for edge in zip(face, face[1:] + face[:1])]
    there = set(edges)
    return len(there) == len(edges) and all((b, a) in there for a, b in there)


class Points:
    """Points by place, found within a tolerance."""

    def __init__(self, points, tolerance):
        self.tolerance, self.cells = tolerance, {}
        for point in points:
            self.cells.setdefault(self.cell(point), []).append(point)

    def cell(self, point):
        return tuple(math.floor(value / (4 * self.tolerance)) for value in point)

    def has(self, point):
        x, y, z = self.cell(point)
        return any(math.dist(point, other) <= self.tolerance
                   for i in (-1, 0, 1) for j in (-1, 0, 1) for k in (-1, 0, 1) for other in self.cells.get((x + i, y + j, z + k), ()))


def meets(straight, fitting_object, way):
    """Whether one end of a straight duct along the direction consists of points of the fitting, or, round ones being
    polygons that may be turned against each other, lies on a circle of its points."""
    points, faces = straight
    own = [points[i] for i in {i for face in faces for i in face}]
    theirs = [fitting_object[0][i] for face in fitting_object[1] for i in face]
    found = Points(theirs, 1e-6)
    places = [dot(point, way) for point in own]
    for place in (min(places), max(places)):
        end = [point for point, at in zip(own, places) if abs(at - place) < 1e-6]
        if all(found.has(point) for point in end):
            return True
        center = tuple(sum(values) / len(end) for values in zip(*end))
        radius = math.dist(center, end[0])
        if all(abs(math.dist(center, point) - radius) < 1e-6 for point in end):
            on_circle = {point for point in theirs
                         if abs(dot(point, way) - place) < 1e-6 and abs(math.dist(point, center) - radius) < 1e-6}
            if len(end) <= len(on_circle):
                return True
    return False


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 and sys.argv[1].isdigit() else 1000
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else 20261121
    folder = sys.argv[3] if len(sys.argv) > 3 else None
    with tempfile.TemporaryDirectory() as temporary:
        work = folder or temporary
        os.makedirs(work, exist_ok=True)
        return check(count, seed, work)


def check(count, seed, work):
    r = random.Random(seed)
    lines, ways = [SUPPORT], {}
    for i in range(count):
        text, ways[3 * i] = fitting(r, 3 * i)
        lines.append(text)
    with open(os.path.join(work, "random.lsp"), "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n(princ)\n")
    binaries = os.environ["TESSARY_BIN"]
    done = subprocess.run(
        [os.environ["TESSARY_WINE"], os.path.join(binaries, "drafthost.exe"), "run", "--module",
         "Z:" + os.path.join(binaries, "Tessary2010x64.arx"), "--export", "all.obj", "--export", "all.csv", "random.lsp"],
        cwd=work, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, encoding="utf-8", timeout=500,
        check=False)
    if done.returncode != 0:
        print(f"status {done.returncode}\n{done.stdout[-2000:]}\n{done.stderr[-2000:]}")
        return 1
    return judge(done.stdout, work, ways)


def judge(output, work, ways):
    objects = read_objects(os.path.join(work, "all.obj"))
    with open(os.path.join(work, "all.csv"), encoding="utf-8", newline="") as file:
        rows = {row["handle"]: row for row in csv.DictReader(file)}
    problems, solids, refused, met, elbow, own_ways = [], 0, 0, 0, None, [None, None]
    for line in re.findall(r"^#(\d+) (same|new)(.*?)\r?$", output, re.MULTILINE):
        index, change, result = int(line[0]), line[1], dict(pair.split("=") for pair in line[2].split())
        names = [value for name, value in result.items() if name.startswith(("en", "hanger")) and value != "nil"]
        if not names:
            refused += 1
            if change != "same":
                problems.append(f"{index}: refused, but the drawing has something new")
        for name in names:
            solids += 1
            # A transition that the fitting itself could not make stays in the drawing as a solid without a body.
            if name not in objects and name not in rows and index % 3 == 0:
                continue
            points, faces = objects[name]
            enclosed = volume(points, faces)
            if not is_closed(faces) or not enclosed > 0:
                problems.append(f"{index}: {name} is no closed solid, volume {enclosed}")
            elif abs(enclosed - float(rows[name]["volume"])) > 1e-6 * enclosed:
                problems.append(f"{index}: {name} has volume {enclosed}, the list says {rows[name]['volume']}")
        if index % 3 == 0:
            elbow, own_ways = result.get("en1"), ways[index]
        elif names and elbow in objects and own_ways[index % 3 - 1]:
            met += 1
            if not meets(objects[names[0]], objects[elbow], own_ways[index % 3 - 1]):
                problems.append(f"{index}: the straight duct {names[0]} does not meet the fitting {elbow}")
    print(f"{solids} solids, {refused} refused, {met} ducts that meet their fitting; {len(problems)} problems")
    print("\n".join(problems[:20]))
    return 1 if problems or solids == 0 or met == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
