#!/usr/bin/python3
"""Random fittings merged in pairs: straight ducts with the elbows that they were cut back for, fittings that overlap, that
stand far apart, and the same one twice. The one that stays encloses no less than the larger and no more than both, end
faces that met are gone, and the other one has left the drawing. Some are exploded into faces, which leaves the solid.

    ducts_unions.py [COUNT [SEED [FOLDER]]]

With FOLDER what was run and written is kept there."""

import csv
import os
import random
import re
import subprocess
import sys
import tempfile

import ducts_random as ducts

SUPPORT = ducts.SUPPORT + r"""
(setvar "CMDECHO" 0)
(defun solid-of (result) (if (listp result) (cdr (assoc "en1" result)) result))
(defun list-solid (name solid)
  (princ (strcat "\n<" name " " (handle solid)))
  (command "_.LIST" solid "")
  (princ "\n>"))
;; Merges what both gave, when both gave something that has a body.
(defun merge (index one other / start)
  (setq one (solid-of one) other (solid-of other))
  (if (and one other)
    (progn
      (princ (strcat "\n#" (itoa index)))
      (list-solid "one" one)
      (list-solid "other" other)
      (setq start (getvar "MILLISECS"))
      (qn_qn-tripleUnion one other)
      (list-solid "both" one)
      (princ (strcat "\n!" (itoa (- (getvar "MILLISECS") start)) (if (entget other) " stays" " gone")))
      (if (= 0 (rem index 25)) (explode-solid one)))))
(defun explode-solid (solid / faces)
  (setq faces (qn_qn-explodeSolid solid))
  (princ (strcat "\n=" (itoa (length faces)) (if (entget solid) " kept" " lost")))
  (foreach face faces
    (if (/= (cdr (assoc 0 (entget (cdr face)))) "3DFACE") (princ " alien"))
    (entdel (cdr face))))
"""

# Millimetres as well as inches, and places as surveyors give them.
PLACES = [(1.0, (0, 0, 0)), (1.0, (0, 0, 0)), (50.0, (0, 0, 0)), (1.0, (3e5, 7e5, 120)), (50.0, (4.2e5, 9.1e5, 3000))]


def joint_of(r, scale, origin):
    return tuple(at + scale * r.uniform(-500, 500) for at in origin)


def scaled(r, scale):
    width, height, shape = ducts.size(r)
    return width * scale, height * scale, shape


def end_to_end(r, index, scale, joint):
    """A straight duct and the elbow that it was cut back for; what the surface must lose, for rectangular ones."""
    section = scaled(r, scale)
    along, onward = ducts.direction(r), ducts.direction(r)
    arriving = ducts.run(ducts.plus(joint, along, -300 * scale), joint, section, r, True)
    leaving = ducts.run(joint, ducts.plus(joint, onward, 300 * scale), section, r, True)
    radius = r.choice([0.0, section[0] / 2, section[0] * 1.5])
    how = r.choice(["nil", "nil", "T"])
    text = (f"(setq a {arriving} b {leaving} made (qn_qn-drawTripleElbow nil 0 {how} {radius!r} a b))\n"
            f"(if made (merge {index} made (qn_qn-drawTripleCenter nil 0 (cut a 8 (length-of \"dHeadLength\" made)) b)))")
    return text, 0.0 if ducts.is_round_family(section) else 2 * section[0] * section[1]


def body(r, scale, joint):
    """A call that draws something at the joint."""
    first, second = scaled(r, scale), scaled(r, scale)
    along = ducts.direction(r)
    arriving = ducts.run(ducts.plus(joint, along, -100 * scale), joint, first, r, False)
    kind = r.choice(["straight", "straight", "transition", "elbow", "wye", "takeoff"])

    def leaving(section, way=None):
        return ducts.run(joint, ducts.plus(joint, way or ducts.direction(r), 100 * scale), section, r, False)

    if kind == "straight":
        return f"(qn_qn-drawTripleCenter nil 0 {arriving} {leaving(first, along)})"
    if kind == "transition":
        return f"(qn_qn-drawTripleTransition nil 0 {arriving} {leaving(second, along)})"
    if kind == "elbow":
        return f"(qn_qn-drawTripleElbow nil 0 nil {first[0]!r} {arriving} {leaving(first)})"
    if kind == "wye":
        return f"(qn_qn-drawTripleWye nil 0 nil 0.0 {arriving} {leaving(first)} {leaving(first)})"
    return f"(qn_qn-drawTripleTakeoff nil 0 nil 0.0 {arriving} {leaving(first, along)} {leaving(second)})"


def case(r, index):
    """LISP that merges two solids, the way they lie to each other, and what the surface must lose."""
    scale, origin = r.choice(PLACES)
    joint = joint_of(r, scale, origin)
    way = r.choice(["ends", "ends", "overlap", "overlap", "same", "apart"])
    if way == "ends":
        text, lost = end_to_end(r, index, scale, joint)
        return text, way, lost
    one = body(r, scale, joint)
    if way == "same":
        other = one
    elif way == "apart":
        other = body(r, scale, ducts.plus(joint, (3000 * scale, 0, 0)))
    else:
        other = body(r, scale, ducts.plus(joint, ducts.direction(r), r.choice([0, 0, 4, 12, r.uniform(0, 50)]) * scale))
    return f"(merge {index} {one} {other})", way, 0.0


def measures(listing):
    """(handle, volume, surface area) of each solid listed; volume None for one that has none."""
    result = []
    for name, text in re.findall(r"^<\w+ (\w+)$(.*?)^>", listing, re.MULTILINE | re.DOTALL):
        numbers = dict(re.findall(r"(Volume|Surface area) = (\S+)", text))
        result.append((name, float(numbers["Volume"]) if "Volume" in numbers else None, float(numbers.get("Surface area", 0))))
    return result


def problem(way, lost, listing, objects, rows):
    """What is wrong with one union; None for two that are not to be judged."""
    one, other, both = measures(listing)
    if one[1] is None or other[1] is None:
        # A transition that could not be made stays in the drawing without a body; it merges with nothing.
        return None if " stays" in listing else "merged with a solid without a body"
    if " stays" in listing or other[0] in objects or other[0] in rows:
        return "was not merged"
    if both[1] is None:
        return "has no measures"
    # Three places beyond the decimals that are listed.
    tolerance = 1e-5 * max(one[1], other[1]) + 1e-5
    if not max(one[1], other[1]) - tolerance <= both[1] <= one[1] + other[1] + tolerance:
        return f"encloses {both[1]}, the parts {one[1]} and {other[1]}"
    expected = {"same": one[1], "apart": one[1] + other[1], "ends": one[1] + other[1]}.get(way, both[1])
    if abs(both[1] - expected) > tolerance:
        return f"{way}: encloses {both[1]} instead of {expected}"
    surface = {"same": one[2], "apart": one[2] + other[2]}.get(way, one[2] + other[2] - lost if lost else both[2])
    if abs(both[2] - surface) > 1e-5 * surface + 1e-5:
        return f"{way}: has a surface of {both[2]} instead of {surface}"
    points, faces = objects[one[0]]
    if not ducts.is_closed(faces) or abs(ducts.volume(points, faces) - both[1]) > tolerance:
        return "is written as another solid than it is listed"
    exploded = re.search(r"^=(\d+) (.*)$", listing, re.MULTILINE)
    if exploded and (int(exploded[1]) < 4 or exploded[2] != "kept"):
        return f"explodes into {exploded[0]}"
    return ""


def judge(output, work, cases):
    objects = ducts.read_objects(os.path.join(work, "unions.obj"))
    with open(os.path.join(work, "unions.csv"), encoding="utf-8", newline="") as file:
        rows = {row["handle"] for row in csv.DictReader(file)}
    counts, problems, slowest = {}, [], (0, 0)
    for part in re.split(r"^#", output.replace("\r", ""), flags=re.MULTILINE)[1:]:
        index = int(part.split()[0])
        way, lost = cases[index]
        found = problem(way, lost, part, objects, rows)
        if found is not None:
            counts[way] = counts.get(way, 0) + 1
            slowest = max(slowest, (int(re.search(r"^!(\d+)", part, re.MULTILINE)[1]), index))
        if found:
            problems.append(f"{index}: {found}")
    print(f"merged: {counts}; slowest {slowest[0]} ms ({slowest[1]}); {len(problems)} problems")
    print("\n".join(problems[:40]))
    return 1 if problems or len(counts) < 4 else 0


def check(count, seed, work):
    r = random.Random(seed)
    made = [case(r, i) for i in range(count)]
    with open(os.path.join(work, "unions.lsp"), "w", encoding="utf-8") as file:
        file.write("\n".join([SUPPORT] + [text for text, _, _ in made] + ["(princ)\n"]))
    binaries = os.environ["TESSARY_BIN"]
    done = subprocess.run(
        [os.environ["TESSARY_WINE"], os.path.join(binaries, "drafthost.exe"), "run", "--module",
         "Z:" + os.path.join(binaries, "Tessary2010x64.arx"), "--export", "unions.obj", "--export", "unions.csv", "unions.lsp"],
        cwd=work, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, encoding="utf-8",
        timeout=500, check=False)
    if done.returncode != 0:
        print(f"status {done.returncode}\n{done.stdout[-2000:]}\n{done.stderr[-2000:]}")
        return 1
    return judge(done.stdout, work, [(way, lost) for _, way, lost in made])


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 and sys.argv[1].isdigit() else 150
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else 20261121
    with tempfile.TemporaryDirectory() as temporary:
        work = sys.argv[3] if len(sys.argv) > 3 else temporary
        os.makedirs(work, exist_ok=True)
        return check(count, seed, work)


if __name__ == "__main__":
    sys.exit(main())
