#!/usr/bin/python3
"""Ducts and block references of them, exported in all formats: another program finds the STL file whole, and all formats
agree with each other and with the formulas about the volumes.

    solid_exports.py"""

import collections
import csv
import math
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile

PART = r"""
(defun run (from to size) (append from to (list 0 0.0 0.0) size '(0.0 0.0 "" "" 0 0.0)))
(qn_qn-drawTripleCenter nil 0 (run '(0.0 0.0 0.0) '(50.0 0.0 0.0) '(20.0 10.0 "RC")))
(qn_qn-drawTripleElbow nil 0 nil 36.0 (run '(0.0 60.0 0.0) '(100.0 60.0 0.0) '(24.0 24.0 "RD"))
                                     (run '(100.0 60.0 0.0) '(100.0 160.0 0.0) '(24.0 24.0 "RD")))
(entmake '((0 . "3DFACE") (10 0.0 0.0 30.0) (11 50.0 0.0 30.0) (12 50.0 20.0 30.0) (13 0.0 20.0 30.0)))
"""

# One reference turned, one mirrored, one stretched in height.
PLAN = r"""
(command "_INSERT" "DUCTS=part.dxf" '(300 0 0) 2 2 30)
(setq data (entget (entlast)))
(entmod (subst '(43 . 2.0) (assoc 43 data) data))
(command "_INSERT" "DUCTS" '(0 300 0) -1 1 0)
(command "_INSERT" "DUCTS" '(300 300 0) 1 1 0)
(setq data (entget (entlast)))
(entmod (subst '(43 . 3.0) (assoc 43 data) data))
"""
SCALES = [8, 1, 3]  # of their volumes

failures = []


def check(what, good, *details):
    if not good:
        failures.append(what)
        print(what, *details, sep="\n  ")


def close(a, b, tolerance):
    return math.isclose(a, b, rel_tol=tolerance)


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def host(folder, name, program, *options):
    pathlib.Path(folder, name).write_text(program, encoding="utf-8")
    binaries = pathlib.Path(os.environ["TESSARY_BIN"])
    with open(pathlib.Path(folder, "output.txt"), "w+b") as output:
        command = [os.environ["TESSARY_WINE"], str(binaries / "drafthost.exe"), "run", "--module",
                   windows_path(binaries / "Tessary2010x64.arx"), *options, name]
        status = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=output, stderr=output, timeout=300,
                                check=False).returncode
        output.seek(0)
        check(f"{name}: the host ended with status {status}", status == 0, output.read().decode("utf-8", "replace"))


def volume(points, faces):
    total = 0.0
    origin = points[faces[0][0]]
    at = lambda i: tuple(c - o for c, o in zip(points[i], origin))
    for face in faces:
        a = at(face[0])
        for i in range(1, len(face) - 1):
            b, c = at(face[i]), at(face[i + 1])
            total += (a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2])
                      + a[2] * (b[0] * c[1] - b[1] * c[0])) / 6
    return total


def is_closed(faces):
    edges = collections.Counter()
    for face in faces:
        for i, corner in enumerate(face):
            edges[corner, face[(i + 1) % len(face)]] += 1
    return all(edges[b, a] == count for (a, b), count in edges.items())


def read_stl(path):
    data = path.read_bytes()
    (count,) = struct.unpack_from("<I", data, 80)
    check("the STL file is as long as its number of facets says", len(data) == 84 + 50 * count)
    numbers, points, faces = {}, [], []
    for i in range(count):
        values = struct.unpack_from("<9f", data, 84 + 50 * i + 12)
        face = []
        for corner in (values[0:3], values[3:6], values[6:9]):
            if corner not in numbers:
                numbers[corner] = len(points)
                points.append(corner)
            face.append(numbers[corner])
        faces.append(face)
    return points, faces


def read_obj(path):
    points, objects = [], []
    for line in path.read_text(encoding="utf-8").splitlines():
        words = line.split()
        if words[0] == "v":
            points.append(tuple(map(float, words[1:])))
        elif words[0] == "o":
            check("an object's name is one word", len(words) == 2, line)
            objects.append((words[1], []))
        elif words[0] == "f":
            objects[-1][1].append([int(word) - 1 for word in words[1:]])
        else:
            check("an OBJ line is known", words[0] == "#", line)
    return points, objects


def admesh(path):
    """What the mesh checker says: how many facets with open edges and mended things, and the volume."""
    said = subprocess.run(["admesh", str(path)], capture_output=True, text=True, timeout=300, check=True).stdout
    number = lambda name: float(re.search(re.escape(name) + r"\s*:\s*([-0-9.]+)", said).group(1))
    wrong = [name for name in ("Total disconnected facets", "Degenerate facets", "Edges fixed", "Facets removed",
                               "Facets added", "Facets reversed", "Backwards edges", "Normals fixed") if number(name)]
    return wrong, number("Volume")


def main():
    with tempfile.TemporaryDirectory(prefix="solids-", ignore_cleanup_errors=True) as name:
        folder = pathlib.Path(name)
        host(folder, "part.lsp", PART, "--save", "part.dxf", "--export", "part.csv")
        host(folder, "plan.lsp", PLAN, "--export", "plan.stl", "--export", "plan.obj", "--export", "plan.csv")
        if failures:
            return
        with open(folder / "part.csv", newline="", encoding="utf-8") as file:
            part = list(csv.DictReader(file))
        with open(folder / "plan.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.DictReader(file))
        check("the part's solids", [row["kind"] for row in part] == ["straight duct", "radius elbow"], part)
        check("a box's measures", [float(part[0][column]) for column in ("volume", "surface area", "sheet area")]
              == [10000, 2 * (1000 + 500 + 200), 2 * (1000 + 500)], part[0])
        check("one row for each place", [row["kind"] for row in rows] == [row["kind"] for row in part] * 3, rows)
        check("handles are different", len({row["handle"] for row in rows}) == 6, rows)
        for i, row in enumerate(rows):
            wanted = float(part[i % 2]["volume"]) * SCALES[i // 2]
            check(f"volume in row {i}", close(float(row["volume"]), wanted, 1e-9), row, wanted)
        # The box three times as high: its sides are, its lids are not.
        check("areas at an uneven scale", close(float(rows[4]["surface area"]), 2 * (1000 + 1500 + 600), 1e-9), rows[4])
        total = sum(float(row["volume"]) for row in rows)

        points, objects = read_obj(folder / "plan.obj")
        check("objects are the rows", [name for name, _ in objects]
              == [f"{row['handle']}_{row['kind']}".replace(" ", "_") for row in rows])
        for (name, faces), row in zip(objects, rows):
            check(f"{name} is closed", is_closed(faces))
            check(f"{name} encloses its volume", close(volume(points, faces), float(row["volume"]), 1e-9))

        points, faces = read_stl(folder / "plan.stl")
        check("the STL file is closed", is_closed(faces))
        check("the STL file encloses the volumes", close(volume(points, faces), total, 1e-5), volume(points, faces), total)
        wrong, said = admesh(folder / "plan.stl")
        check("a mesh checker finds nothing to mend", not wrong, wrong)
        check("a mesh checker finds the volumes", close(said, total, 1e-4), said, total)


if __name__ == "__main__":
    main()
    sys.exit(1 if failures else 0)
