"""What the grid looks like in each state, against the pictures kept in tests/pictures/grid.

    grid_pictures.py [--update]

Runs the tests that take the pictures; they come into the folder `grid-pictures` of the current one. A picture looks
like the kept one when its size is the same, it is not blank, and light and dark lie where they did: in blocks of a few
pixels, so that another version of a font or of the system's frames does not count, but a text, a colour or a column
that is missing does. --update keeps the new pictures instead: look at them first.
"""

import argparse
import os
import pathlib
import subprocess
import sys

from PIL import Image, ImageChops

BLOCK = 4  # pixels
TOLERANCE = 45  # of 255, in a block's mean
ALLOWED = 1 / 200  # share of the blocks
KEPT = pathlib.Path(__file__).resolve().parent.parent / "pictures" / "grid"


def blocks(image):
    return image.convert("RGB").reduce(BLOCK)


def problem(kept, taken):
    """What is wrong with the picture that was taken; empty when nothing is."""
    if kept.size != taken.size:
        return f"{taken.size} pixels instead of {kept.size}"
    if len(set(taken.convert("RGB").getdata())) < 4:
        return "it is blank"
    difference = ImageChops.difference(blocks(kept), blocks(taken))
    red, green, blue = difference.split()
    worst = ImageChops.lighter(ImageChops.lighter(red, green), blue)
    mask = worst.point(lambda value: 255 if value > TOLERANCE else 0)
    count = mask.histogram()[255]
    if count > ALLOWED * mask.size[0] * mask.size[1]:
        box = [BLOCK * edge for edge in mask.getbbox()]
        return f"{count} of {mask.size[0] * mask.size[1]} blocks differ, in {box}"
    return ""


def take(folder):
    folder.mkdir(exist_ok=True)
    for old in folder.glob("*.png"):
        old.unlink()
    program = pathlib.Path(os.environ["TESSARY_BIN"], "module_tests.exe")
    environment = dict(os.environ, TESSARY_PICTURES="Z:" + str(folder.resolve()).replace("/", "\\"))
    with open(folder / "output.txt", "w+", encoding="utf-8") as output:
        status = subprocess.run([os.environ["TESSARY_WINE"], str(program), "--gtest_filter=GridPictures.*"],
                                env=environment, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                timeout=300, check=False).returncode
    if status != 0:
        sys.exit(f"{program.name} ended with status {status}:\n{(folder / 'output.txt').read_text()}")


def faults_are_seen(image):
    """The comparison itself: a text that is gone, or moved by a row, is a difference."""
    width, height = image.size
    emptied = image.copy()
    emptied.paste(image.getpixel((width - 5, height - 5)), (2, 20, width // 4, 35))
    shifted = ImageChops.offset(image, 0, 9)
    return bool(problem(image, emptied)) and bool(problem(image, shifted)) and not problem(image, image)


def main():
    parser = argparse.ArgumentParser(description="compares pictures of the grid")
    parser.add_argument("--update", action="store_true", help="keep what is seen as what is expected")
    options = parser.parse_args()
    folder = pathlib.Path("grid-pictures")
    take(folder)
    taken = {file.name: Image.open(file).convert("RGB") for file in sorted(folder.glob("*.png"))}
    if options.update:
        KEPT.mkdir(exist_ok=True)
        for old in KEPT.glob("*.png"):
            old.unlink()
        for name, image in taken.items():
            image.save(KEPT / name, optimize=True)
        return 0
    kept = {file.name: Image.open(file).convert("RGB") for file in KEPT.glob("*.png")}
    failures = [f"{name}: kept, but not taken" for name in kept.keys() - taken.keys()]
    failures += [f"{name}: taken, but not kept" for name in taken.keys() - kept.keys()]
    failures += [f"{name}: {wrong}" for name in kept.keys() & taken.keys() if (wrong := problem(kept[name], taken[name]))]
    if not faults_are_seen(kept["plain.png"]):
        failures.append("a changed picture was taken for the same")
    if failures:
        print("\n".join(sorted(failures)))
        print(f"the pictures are in {folder.resolve()}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
