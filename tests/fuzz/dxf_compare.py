"""Looks into DXF files: what an independent reader finds wrong with one, and what of one file is missing in another."""

import collections
import re

import ezdxf
import ezdxf.recover

SECTIONS = ("TABLES", "BLOCKS", "ENTITIES", "OBJECTS")


def complaints(path):
    """Everything that ezdxf would correct or cannot accept, as texts."""
    try:
        document = ezdxf.readfile(path)
    except (IOError, ezdxf.DXFError) as error:
        return ["cannot be read: %s" % error]
    auditor = document.audit()
    return ["%s: %s" % (entry.code, entry.message) for entry in list(auditor.errors) + list(auditor.fixes)]


def tags(path):
    """Pairs of group code and text; the encoding follows the version in the header."""
    data = open(path, "rb").read()
    if data.startswith(b"\xef\xbb\xbf"):
        data = data[3:]
    utf8 = any(version in data[:4000] for version in (b"AC1021", b"AC1024", b"AC1027", b"AC1032"))
    try:
        text = data.decode("utf-8" if utf8 else "cp1252")
    except UnicodeDecodeError:
        text = data.decode("latin-1")
    lines = text.replace("\r\n", "\n").split("\n")
    for code, value in zip(lines[0::2], lines[1::2]):
        if code.strip() == "999":
            continue
        yield int(code), value
        if code.strip() == "0" and value.strip() == "EOF":
            return


def normal(code, value):
    """A value in a form that does not depend on how it was spelt."""
    if 10 <= code <= 59 or 110 <= code <= 149 or 210 <= code <= 239 or 460 <= code <= 469 or 1010 <= code <= 1059:
        number = float("%.9g" % float(value))
        return number % 360 if code in (50, 51) else number
    if 60 <= code <= 99 or 160 <= code <= 179 or 270 <= code <= 299 or 370 <= code <= 389 or 400 <= code <= 409 \
            or 420 <= code <= 429 or 440 <= code <= 459 or 1060 <= code <= 1071:
        return int(float(value))
    if code in (5, 105, 1005) or 320 <= code <= 369 or 390 <= code <= 399 or 480 <= code <= 481:
        return value.strip().lstrip("0").upper() or "0"
    if code in (6, 8):
        return valid_name(value)
    if code in (2, 3) and value.strip().upper() in ("$MODEL_SPACE", "$PAPER_SPACE"):
        return {"M": "*Model_Space", "P": "*Paper_Space"}[value.strip()[1].upper()]
    # A caret may stand for itself, but is written with a blank behind it.
    return value.replace("^ ", "^").rstrip() if code in (0, 2, 8, 100, 102) else value.replace("^ ", "^")


def decoded(text):
    return re.sub(r"\\U\+([0-9A-Fa-f]{4})", lambda found: chr(int(found.group(1), 16)), text)


def valid_name(name):
    return re.sub('[<>/\\\\":;?*=`,]', "_", name.strip().upper())


class Record:
    def __init__(self, section, kind):
        self.section = section
        self.kind = kind
        self.groups = []

    def handle(self):
        code = 105 if self.kind == "DIMSTYLE" else 5
        return next((value for group, value in self.groups if group == code), None)


def records(path):
    """The records of the sections that hold objects, in order, and a count of the tags of every other section."""
    found, others = [], collections.Counter()
    section, expecting_name = "", False
    for code, value in tags(path):
        name = value.strip()
        if code == 0 and name == "SECTION":
            expecting_name = True
        elif expecting_name and code == 2:
            section, expecting_name = name, False
        elif code == 0 and name == "ENDSEC":
            section = ""
        elif section not in SECTIONS:
            others[section] += 1
        elif code == 0:
            found.append(Record(section, name))
        elif found:
            found[-1].groups.append((code, normal(code, value)))
    return found, others


# Groups that may be left out when they have this value, or that other groups determine.
DEFAULTS = {
    6: ("BYLAYER",), 39: (0.0,), 48: (1.0,), 60: (0,), 62: (256,), 67: (0,), 370: (-1,), 38: (0.0,),
    40: (0.0,), 41: (0.0, 1.0), 42: (0.0, 1.0), 44: (0.0, 1.0), 50: (0.0,), 51: (0.0,), 71: (0, 1), 72: (0, 1), 73: (0, 1),
    280: (0,), 281: (1,), 290: (1,), 70: (0, 1), 7: ("STANDARD", "Standard"), 45: (0.0,), 43: (0.0, 1.0), 210: (0.0,), 220: (0.0,), 230: (1.0,), 66: (0, 1),
    21: (0.0,), 11: (0.0,), 31: (0.0,), 30: (0.0,), 3: ("",), 1: ("",), 2: ("",), 4: ("",),
}


def joined_pieces(record):
    """Long texts as one group: they may be cut at other places."""
    text = "".join(value for code, value in record.groups if code in (1, 3))
    if record.kind == "MTEXT" and text:
        record.groups = [group for group in record.groups if group[0] not in (1, 3)] + [(1, decoded(text))]


def losses(before_path, after_path, complete=False):
    """What stood in the first file and is not in the second, as texts. complete: also the groups of each record."""
    before, sections_before = records(before_path)
    after, sections_after = records(after_path)
    by_handle = {record.handle(): record for record in after if record.handle()}
    missing = []
    known = {record.handle() for record in before}
    old = version(before_path) < "AC1015"
    for record in before + after:
        joined_pieces(record)
        if record.kind == "LAYER":
            record.groups = [(code, valid_name(value) if code == 2 else value) for code, value in record.groups]
    counts_before = collections.Counter(r.kind for r in before if r.section == "ENTITIES" and not left_out(r, False))
    counts_after = collections.Counter(r.kind for r in after if r.section == "ENTITIES")
    for counts in (counts_before, counts_after):
        for kind in ("POLYLINE", "LWPOLYLINE", "VERTEX", "SEQEND") if old else ():
            counts.pop(kind, None)
    if counts_before != counts_after:
        missing.append("entity counts: %s instead of %s" % (dict(counts_after), dict(counts_before)))
    for name, count in sections_before.items():
        if name not in ("", "HEADER", "CLASSES") and sections_after.get(name) != count:
            missing.append("section %s: %s tags instead of %d" % (name, sections_after.get(name), count))
    for record in before:
        handle = record.handle()
        if not handle or handle == "0" or record.kind in ("ENDTAB", "TABLE") or left_out(record, old):
            continue
        same = by_handle.get(handle)
        if not same or same.kind != record.kind:
            missing.append("%s %s is missing" % (record.kind, handle))
        elif complete:
            missing += lost_groups(record, same, known)
    return missing


def version(path):
    groups = list(tags(path))
    for (code, value), (_, following) in zip(groups, groups[1:]):
        if code == 9 and value.strip() == "$ACADVER":
            return following.strip()
    return ""


def left_out(record, old):
    """Records that a reader is right to drop: what has no size, and what old files hold in another form."""
    if record.kind in ("CIRCLE", "ARC") and (40, 0.0) in record.groups:
        return True
    return old and record.kind in ("POLYLINE", "VERTEX", "SEQEND", "DIMSTYLE")


# Owners of parts and table records are written in one of two ways; a rotation of multiline text also as a direction.
def is_free(kind, code):
    return (code == 330 and kind in ("VERTEX", "ATTRIB", "SEQEND", "ENDBLK", "STYLE", "VPORT", "APPID", "LAYER", "LTYPE")) \
        or (kind == "MTEXT" and code == 50)


def is_reference(code):
    return 330 <= code <= 369 or 390 <= code <= 399


def lost_groups(before, after, known):
    left = collections.Counter(after.groups)
    left.subtract(before.groups)
    lost = []
    for (code, value), count in left.items():
        if count >= 0 or is_free(before.kind, code) or value in DEFAULTS.get(code, ()) or (is_reference(code) and value not in known):
            continue
        lost.append("%s %s: group %d %r is lost" % (before.kind, before.handle(), code, value))
    return lost
