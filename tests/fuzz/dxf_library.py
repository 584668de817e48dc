#!/usr/bin/python3
"""Checks the outcome of dxf_roundtrip: dxf_library.py LIST, the list that the round trip was given.

For each pair of files, the second must be free of anything that ezdxf would correct, and must hold everything that the
first one holds."""

import collections
import os
import sys

import dxf_compare


def main(list_path):
    kinds, checked, failures = collections.Counter(), 0, 0
    for line in open(list_path, encoding="utf-8"):
        before, after = line.rstrip("\n").split("\t")
        problems = ["ezdxf: " + text for text in dxf_compare.complaints(after)]
        if not os.path.exists(after):
            problems = ["not written"]
        else:
            problems += dxf_compare.losses(before, after, complete=True)
        checked += 1
        failures += bool(problems)
        for problem in problems[:12]:
            kinds[" ".join(problem.split(" ")[:1] + problem.split(" ")[2:])[:60]] += 1
        if problems:
            print("FAILED: %s: %d problems\n    %s" % (before, len(problems), "\n    ".join(problems[:6])))
    print("%d files, %d failures" % (checked, failures))
    for kind, count in kinds.most_common(20):
        print("  %6d  %s" % (count, kind))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
