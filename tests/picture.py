#!/usr/bin/python3
"""Runs a program that draws something and compares the picture with the one that is kept beside it.

    picture.py [--update] NAME.lsp...

The host runs NAME.lsp with the add-in loaded, in an empty folder of its own, and writes a picture of the drawing, 400
pixels at its longest side; NAME.png must look like it. A program whose first line is `;;; shaded from X,Y,Z` has a shaded
picture from that side instead of a plan. A picture that does not is left in the folder `picture-failures`
of the current one, with NAME-difference.png, where the pixels that differ are white on the faded one that was expected.
--update keeps the new picture instead: look at it first.

Two pictures look alike when at most one pixel in 5000 differs. A pixel differs when its colour lies farther than the
tolerance outside of what its neighbours and itself show in the other picture: antialiased edges may lie a pixel
beside each other, but a line that is missing, of another colour or farther off counts.

Exit status: 0 when all look alike, 1 when one does not or a program failed, 2 for unusable arguments.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

from PIL import Image, ImageChops, ImageFilter

SIZE = 400  # pixels
TOLERANCE = 40  # of 255, in each channel
ALLOWED = 1 / 5000  # share of the pixels
TIMEOUT_SECONDS = 120


def windows_path(path):
    return "Z:" + str(pathlib.Path(path).resolve()).replace("/", "\\")


def beyond(picture, other):
    """Where a channel of the picture lies outside of what the other one shows there and beside it, by how much."""
    below = ImageChops.subtract(other.filter(ImageFilter.MinFilter(3)), picture)
    above = ImageChops.subtract(picture, other.filter(ImageFilter.MaxFilter(3)))
    return ImageChops.lighter(below, above)


def differing(first, second):
    """A mask of the pixels that differ, or None when the sizes do."""
    if first.size != second.size:
        return None
    excess = ImageChops.lighter(beyond(first, second), beyond(second, first))
    red, green, blue = excess.split()
    worst = ImageChops.lighter(ImageChops.lighter(red, green), blue)
    return worst.point(lambda value: 255 if value > TOLERANCE else 0)


def compare(wanted, got):
    """What is wrong with the picture got, empty when nothing is; and the mask of differing pixels."""
    mask = differing(wanted, got)
    if mask is None:
        return f"{got.size[0]} by {got.size[1]} pixels instead of {wanted.size[0]} by {wanted.size[1]}", None
    count = mask.histogram()[255]
    if count <= ALLOWED * wanted.size[0] * wanted.size[1]:
        return "", mask
    return f"{count} pixels differ, in the box {mask.getbbox()}", mask


def picture_options(program, target):
    first = program.read_text(encoding="utf-8").partition("\n")[0]
    view = re.fullmatch(r";;; shaded from (\S+)", first)
    return ["--view-from", view[1], "--shaded", target] if view else ["--picture", target]


def draw(program):
    """The picture that the program draws, as a file's bytes."""
    binaries = pathlib.Path(os.environ["TESSARY_BIN"])
    with tempfile.TemporaryDirectory(prefix="picture-", ignore_cleanup_errors=True) as folder:
        target = pathlib.Path(folder, "drawn.png")
        command = [os.environ["TESSARY_WINE"], str(binaries / "drafthost.exe"), "run",
                   "--module", windows_path(binaries / "Tessary2010x64.arx"), "--support", windows_path(program.parent),
                   *picture_options(program, windows_path(target)), "--picture-size", str(SIZE), windows_path(program)]
        # Files, not pipes: services that Wine starts would hold a pipe open after the host has ended.
        with tempfile.TemporaryFile() as output:
            status = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                    timeout=TIMEOUT_SECONDS, check=False).returncode
            output.seek(0)
            text = output.read().decode("utf-8", errors="replace").replace("\r\n", "\n")
        if status != 0 or not target.is_file():
            raise RuntimeError(f"the host ended with status {status}:\n{text}")
        return target.read_bytes()


def keep_difference(name, drawn, wanted, mask):
    folder = pathlib.Path("picture-failures")
    folder.mkdir(exist_ok=True)
    (folder / f"{name}.png").write_bytes(drawn)
    if mask is not None:
        faded = wanted.point(lambda value: value // 3)
        faded.paste((255, 255, 255), mask=mask)
        faded.save(folder / f"{name}-difference.png")
    return folder.resolve()


def check(program, update):
    """What is wrong, empty when nothing is."""
    golden = program.with_suffix(".png")
    drawn = draw(program)
    if update:
        golden.write_bytes(drawn)
        return ""
    if not golden.is_file():
        folder = keep_difference(program.stem, drawn, None, None)
        return f"there is no picture {golden.name} to compare with; the new one is in {folder}"
    with tempfile.TemporaryFile() as file:
        file.write(drawn)
        got = Image.open(file).convert("RGB")
    wanted = Image.open(golden).convert("RGB")
    problem, mask = compare(wanted, got)
    if problem:
        problem += f"; see {program.stem}.png in {keep_difference(program.stem, drawn, wanted, mask)}"
    return problem


def main():
    parser = argparse.ArgumentParser(description="compares pictures of drawings")
    parser.add_argument("--update", action="store_true", help="keep what is drawn as what is expected")
    parser.add_argument("programs", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    root = pathlib.Path(__file__).resolve().parent.parent
    os.environ.setdefault("TESSARY_BIN", str(root / "build/debug/bin"))
    os.environ.setdefault("TESSARY_WINE", str(root / "scripts/wine.sh"))
    failed = False
    for program in options.programs:
        if not program.is_file():
            print(f"there is no program {program}", file=sys.stderr)
            return 2
        try:
            problem = check(program, options.update)
        except (RuntimeError, subprocess.TimeoutExpired) as error:
            problem = str(error)
        if problem:
            print(f"{program.name}: {problem}")
            failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
