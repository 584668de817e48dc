#!/usr/bin/python3
"""Drawings inserted into others as blocks: an independent reader finds the results sound, and in the blocks what stood in
the files, whatever the two drawings have under the same names."""

import os
import re
import subprocess
import sys
import tempfile

import ezdxf

from dxf_audit import VERSIONS, convert, dxf_compare, made_drawing, windows_path

# What belongs to the place of an entity, and names and handles that another drawing gives anew.
PLACE = {"handle", "owner", "paperspace", "geometry", "style_handle", "image_def_handle", "image_def_reactor_handle",
         "annotation_handle", "block_record_handle", "layout"}


def insert(drawing, folder, names, target):
    program = os.path.join(folder, "insert.lsp")
    with open(program, "w", encoding="utf-8") as file:
        for name in names:
            file.write('(command "_INSERT" "%s" \'(100 50) 1 1 0)\n' % name)
            file.write('(if (not (tblsearch "BLOCK" "%s")) (exit))\n' % name)
    command = [os.environ["TESSARY_WINE"], "drafthost.exe", "run", "--open", windows_path(drawing), "--support",
               windows_path(folder), "--save", windows_path(target), windows_path(program)]
    done = subprocess.run(command, cwd=os.environ["TESSARY_BIN"], capture_output=True, timeout=120)
    if done.returncode != 0 or not os.path.exists(target):
        return ["the host failed with status %d: %s" % (done.returncode, (done.stdout + done.stderr).decode("utf-8", "replace"))]
    return []


def described(entity):
    attributes = {key: value for key, value in entity.dxfattribs().items() if key not in PLACE}
    if "text" in attributes:  # old versions name characters that their code page lacks
        attributes["text"] = re.sub(r"\\U\+([0-9A-F]{4})", lambda match: chr(int(match[1], 16)), attributes["text"])
    if str(attributes.get("name", "")).startswith("*"):
        attributes["name"] = "*"
    owned = {"INSERT": "attribs", "POLYLINE": "vertices"}.get(entity.dxftype())
    parts = [described(part) for part in getattr(entity, owned)] if owned else []
    return entity.dxftype(), attributes, parts


def differences(source, target, name):
    wanted = [described(entity) for entity in ezdxf.readfile(source).modelspace()]
    document = ezdxf.readfile(target)
    found = [described(entity) for entity in document.blocks.get(name)]
    problems = ["%s: %s instead of %s" % (name, b, a) for a, b in zip(wanted, found) if a != b]
    if len(wanted) != len(found):
        problems.append("%s: %d entities instead of %d" % (name, len(found), len(wanted)))
    for entity in document.blocks.get(name):
        if entity.dxftype() == "DIMENSION" and len(document.blocks.get(entity.dxf.geometry)) == 0:
            problems.append("%s: the picture of a dimension is empty" % name)
        if entity.dxftype() == "IMAGE" and entity.image_def is None:
            problems.append("%s: an image without its definition" % name)
    return problems


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        # Bare names: the files are found on the support path.
        # What the host itself writes of them is compared, so that values that the file leaves out are there.
        nothing = os.path.join(folder, "nothing.lsp")
        open(nothing, "w").write("(princ)\n")
        for version in VERSIONS:
            file = os.path.join(folder, "unit" + version + ".dxf")
            made_drawing(version, file)
            for problem in convert(file, file.replace("unit", "saved"), nothing):
                print(problem)
                return 1
        ezdxf.new("R2018").saveas(os.path.join(folder, "bare.dxf"))
        for drawing in ("bare", "unitR2000", "unitR12"):
            names = ["unit" + version for version in VERSIONS]
            target = os.path.join(folder, "into_" + drawing + ".dxf")
            problems = insert(os.path.join(folder, drawing + ".dxf"), folder, names, target)
            if not problems:
                problems = dxf_compare.complaints(target)
                for name in names:
                    problems += differences(os.path.join(folder, name.replace("unit", "saved") + ".dxf"), target, name)
            failures += bool(problems)
            print("%s %s%s" % ("FAILED" if problems else "ok", drawing,
                               "".join("\n    " + problem for problem in problems[:10])))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
