"""The comparison of pictures sees what a drafter would see, and nothing else."""

import pathlib
import sys

from PIL import Image, ImageDraw

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import picture  # noqa: E402

BACKGROUND = (33, 40, 48)
LINE = [(30, 40), (350, 250)]


def drawn(line=None, color=(255, 0, 0), size=(400, 300), smooth=False):
    factor = 4 if smooth else 1
    image = Image.new("RGB", (size[0] * factor, size[1] * factor), BACKGROUND)
    if line:
        ImageDraw.Draw(image).line([(x * factor, y * factor) for x, y in line], fill=color, width=2 * factor)
    return image.reduce(factor) if smooth else image


def moved(offset):
    return [(x, y + offset) for x, y in LINE]


SAME = {
    "itself": drawn(LINE),
    "antialiased": drawn(LINE, smooth=True),
    "one pixel off": drawn(moved(1)),
    "a little darker": drawn(LINE, color=(225, 20, 20)),
}
DIFFERENT = {
    "nothing": drawn(),
    "another colour": drawn(LINE, color=(255, 255, 0)),
    "four pixels off": drawn(moved(4)),
    "a line more": drawn(LINE + [(300, 20)]),
    "a line less": drawn([LINE[0], (300, 217)]),
    "another size": drawn(LINE, size=(400, 301)),
}

failures = [f"{name}: {problem}" for name, got in SAME.items()
            if (problem := picture.compare(drawn(LINE), got)[0])]
failures += [f"{name}: taken for the same" for name, got in DIFFERENT.items()
             if not picture.compare(drawn(LINE), got)[0]]
print("\n".join(failures))
sys.exit(1 if failures else 0)
