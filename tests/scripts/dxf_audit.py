#!/usr/bin/python3
"""Drawings go through the host and come out whole: opens drawings of a component library, and drawings of every version
made here, saves them again, and has the results examined by an independent reader. Faces that the host has drawn are
the same to that reader."""

import os
import subprocess
import sys
import tempfile

import ezdxf

ROOT = os.environ["TESSARY_ROOT"]
sys.path.insert(0, os.path.join(ROOT, "tests", "fuzz"))
import dxf_compare  # noqa: E402

LIBRARY = "/usr/share/librecad/library"
FROM_LIBRARY = ("sheets/A4_1_draw.dxf", "elektro/meter-iso/Tube-CRT-RGB.dxf", "elektro/audio/mg1.dxf", "misc/tux.dxf",
                "elektro/transistor/vt31.dxf", "kinetics/kin49.dxf")
VERSIONS = ("R12", "R2000", "R2007", "R2018")


def made_drawing(version, path):
    """Something of everything: known and unknown entities, attributes, nested blocks, extended data, dictionaries."""
    document = ezdxf.new(version, setup=True)
    document.appids.add("LABELS")
    document.layers.add("WÄNDE", color=3, linetype="DASHED")
    part = document.blocks.new("PART", base_point=(1, 2))
    part.add_line((0, 0), (1, 1))
    part.add_attdef("TAG", (0, 0), dxfattribs={"text": "default"})
    document.blocks.new("NEST").add_blockref("PART", (3, 4))
    space = document.modelspace()
    line = space.add_line((0, 0, 1), (10, 5, 2), dxfattribs={"layer": "WÄNDE", "linetype": "CENTER", "ltscale": 2.5})
    line.set_xdata("LABELS", [(1000, "text"), (1040, 1.5), (1071, 70000), (1002, "{"), (1005, "FF"), (1002, "}")])
    space.add_arc((1, 1), 3, 30, 200)
    space.add_text("Hällo ° ∅", dxfattribs={"height": 2})
    insert = space.add_blockref("PART", (20, 20), dxfattribs={"rotation": 30, "xscale": 2})
    insert.add_attrib("TAG", "value", (20, 21))
    space.add_blockref("NEST", (30, 3))
    space.add_polyline2d([(0, 0), (5, 0), (5, 5)])
    space.add_polyline3d([(0, 0, 0), (1, 2, 3), (4, 5, 6)])
    space.add_polymesh((3, 3))
    space.add_solid([(0, 0), (1, 0), (0, 1), (1, 1)])
    space.add_3dface([(0, 0, 1), (4, 0, 2), (4, 3, 2.5)], dxfattribs={"color": 3})
    face = space.add_3dface([(0.1, 0, 1), (1 / 3, 0, 2), (4, 3, 2), (0, 3, 1e-9)])
    face.set_edge_visibility(1, False)
    face.set_xdata("LABELS", [(1000, "face"), (1011, (1, 2, 3))])
    document.blocks.get("NEST").add_3dface([(0, 0), (0, 0), (0, 0), (0, 0)]).dxf.invisible = 15
    space.add_linear_dim(base=(3, 2), p1=(0, 0), p2=(3, 0)).render()
    if version != "R12":
        add_newer_entities(document, space, line)
    document.saveas(path)


def add_newer_entities(document, space, line):
    space.add_lwpolyline([(0, 0, .1, .2, .5), (3, 0, 0, 0, -1), (6, 6, 0, 0, 0)], close=True)
    space.add_mtext("A\\P{\\H2x;B} ^ caret " + "long " * 100, dxfattribs={"char_height": 3, "width": 20})
    space.add_spline([(0, 0), (1, 2), (4, 4), (5, 0)])
    space.add_hatch(color=2).paths.add_polyline_path([(0, 0), (10, 0), (10, 10)], is_closed=True)
    space.add_leader([(0, 0), (5, 5), (9, 5)])
    space.add_mline([(0, 0), (9, 9)])
    space.add_image(document.add_image_def("picture.png", (640, 480)), (1, 1), (6, 4))
    document.groups.new("GROUP").extend([line])
    record = line.new_extension_dict().add_xrecord("RECORD")
    record.reset([(1, "text"), (10, (1, 2, 3)), (90, 5), (330, line.dxf.handle), (40, 1.5)])
    document.layout("Layout1").add_viewport(center=(5, 5), size=(5, 5), view_center_point=(0, 0), view_height=10)
    document.new_layout("Second").add_text("second")


def windows_path(path):
    return "Z:" + path.replace("/", "\\")


def convert(source, target, program):
    command = [os.environ["TESSARY_WINE"], "drafthost.exe", "run", "--open", windows_path(source),
               "--save", windows_path(target), windows_path(program)]
    done = subprocess.run(command, cwd=os.environ["TESSARY_BIN"], capture_output=True, timeout=120)
    if done.returncode != 0 or not os.path.exists(target):
        return ["the host failed with status %d: %s" % (done.returncode, (done.stdout + done.stderr).decode("utf-8", "replace"))]
    return []


FACES = """
(setvar "CMDECHO" 0)
(command "_3DFACE" '(0 0 1) '(4 0 2) "_I" '(4 3 2) '(0 3 1) '(0 5 0.1) "" "")
(entmake '((0 . "3DFACE") (8 . "ROOF") (10 1.0 2.0 3.0) (11 4.0 5.0 6.0) (12 7.0 8.0 9.5) (70 . 9)))
(command "_ROTATE" (entlast) "" '(0 0) 90 "_SAVEAS" "FILE")
"""
# Corners and the visibility of edges, as the reader must find them.
EXPECTED_FACES = [
    ([(0, 0, 1), (4, 0, 2), (4, 3, 2), (0, 3, 1)], [True, True, False, True]),
    ([(4, 3, 2), (0, 3, 1), (0, 5, 0.1), (0, 5, 0.1)], [False, True, True, True]),
    ([(-2, 1, 3), (-5, 4, 6), (-8, 7, 9.5), (-8, 7, 9.5)], [False, True, True, False]),
]


def drawn_faces(folder):
    program, target = os.path.join(folder, "faces.lsp"), os.path.join(folder, "faces.dxf")
    open(program, "w").write(FACES.replace("FILE", windows_path(target).replace("\\", "/")))
    command = [os.environ["TESSARY_WINE"], "drafthost.exe", "run", windows_path(program)]
    done = subprocess.run(command, cwd=os.environ["TESSARY_BIN"], capture_output=True, timeout=120)
    if done.returncode != 0 or not os.path.exists(target):
        return ["the host failed with status %d: %s" % (done.returncode, (done.stdout + done.stderr).decode("utf-8", "replace"))]
    problems = dxf_compare.complaints(target)
    faces = list(ezdxf.readfile(target).modelspace().query("3DFACE"))
    if len(faces) != len(EXPECTED_FACES):
        return problems + ["%d faces instead of %d" % (len(faces), len(EXPECTED_FACES))]
    for face, (corners, visible) in zip(faces, EXPECTED_FACES):
        found = [face.dxf.get("vtx%d" % i) for i in range(4)]
        if not all(point.isclose(corner, abs_tol=1e-12) for point, corner in zip(found, corners)):
            problems.append("%s: corners %s instead of %s" % (face, found, corners))
        if face.get_edges_visibility() != visible:
            problems.append("%s: edges %s instead of %s" % (face, face.get_edges_visibility(), visible))
    return problems


def report(name, problems):
    print("%s %s%s" % ("FAILED" if problems else "ok", name, "".join("\n    " + problem for problem in problems[:10])))
    return bool(problems)


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        sources = [os.path.join(LIBRARY, name) for name in FROM_LIBRARY]
        for version in VERSIONS:
            sources.append(os.path.join(folder, version + ".dxf"))
            made_drawing(version, sources[-1])
        program = os.path.join(folder, "nothing.lsp")
        open(program, "w").write("(princ)\n")
        for source in sources:
            target = os.path.join(folder, "saved_" + os.path.basename(source))
            problems = convert(source, target, program)
            if not problems:
                problems = dxf_compare.complaints(target) + dxf_compare.losses(source, target, complete=True)
            failures += report(os.path.basename(source), problems)
        failures += report("faces drawn by the host", drawn_faces(folder))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
