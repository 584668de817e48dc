#!/usr/bin/python3
"""Turns the JSON of tessary_bench (standard input) into ratios.

Benchmarks come in pairs TOPIC/ours[/ARGUMENT] and TOPIC/baseline[/ARGUMENT], measured in the same run; a label says
what the baseline is. A ratio of 2.0 means that ours takes twice the baseline's time. Exit status 1 when a benchmark
failed or has no partner.
"""

import json
import sys


def read_times(report):
    """{(topic, argument): {"ours" or "baseline": (nanoseconds, label)}} and whether all were usable."""
    nanoseconds = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    pairs, usable = {}, True
    for entry in report["benchmarks"]:
        parts = entry["run_name"].split("/")
        role = next((part for part in parts if part in ("ours", "baseline")), None)
        if entry.get("error_occurred") or role is None:
            reason = entry.get("error_message", "the name says neither ours nor baseline")
            print(f"{entry['run_name']}: {reason}", file=sys.stderr)
            usable = False
            continue
        cut = parts.index(role)
        key = ("/".join(parts[:cut]), "/".join(parts[cut + 1:]))
        time = entry["real_time"] * nanoseconds[entry["time_unit"]]
        pairs.setdefault(key, {})[role] = (time, entry.get("label", ""))
    return pairs, usable


def main():
    text = sys.stdin.read()
    if not text.strip():
        print("no benchmark matches", file=sys.stderr)
        return 0
    pairs, usable = read_times(json.loads(text))
    for (topic, argument), roles in pairs.items():
        name = f"{topic}/{argument}" if argument else topic
        if len(roles) < 2:
            print(f"{name}: measured without its partner", file=sys.stderr)
            usable = False
            continue
        baseline, label = roles["baseline"]
        print(f"{name:<50} {roles['ours'][0] / baseline:8.2f} x {label or 'baseline'}")
    return 0 if usable else 1


if __name__ == "__main__":
    sys.exit(main())
