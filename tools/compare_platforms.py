#!/usr/bin/env python3
"""Runs the Linux and the Windows build of the command-line tool side by side (the Windows one
under Wine) on the same measurements and compares every number of their JSON reports.

Prints the number of values compared and the largest absolute and relative difference; fails
when a text differs or a number differs by more than --tolerance (relative).

usage: compare_platforms.py --linux build/release/cli/velquor
                            --windows build/windows-x64/bin/velquor.exe [--wine tools/wine_run]
"""
import argparse
import json
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SAMPLES = os.path.join(ROOT, "tests", "data", "samples", "colorchecker_ohta_380_780_5nm.csv")
ILLUMINANTS = "D65/10,A/2,F11/10,F2/2,D50/2,C/2,T84/10,CWF/10"
INDICES = ("WI CIE,Tint CIE,WI E313-10,YI E313-10,YI D1925,YI DIN 6167,Berger,Taube,Stensby,"
           "Hunter,Dom. Wav.,Purity,Rx,Rz")
SYSTEMS = ["cielab", "cmc:2:1", "hunter", "fmc2", "cie94:1:1:1", "lch", "luv", "xyz", "gepqs2",
           "audi:45", "din99:1:1", "cie2000:1:1:1", "din6175:1:1:1:1"]
STRENGTHS = ["apparent", "chromatic-max", "pseudo-tris", "tris", "when-dl0", "chromatic@520"]


def commands():
    yield ["xyz", "-i", ILLUMINANTS, SAMPLES]
    for space in ["lab", "lch", "luv", "hunter", "din99", "yxy", "rgb"]:
        yield ["lab", "-s", space, "-i", ILLUMINANTS, SAMPLES]
    for system in SYSTEMS:
        yield ["diff", "-s", system, "-i", "D65/10,A/10", SAMPLES, SAMPLES]
    yield ["index", "-x", INDICES, "-i", "D65/10,C/2", SAMPLES]
    for method in STRENGTHS:
        yield ["strength", "-m", method, SAMPLES, SAMPLES]
    yield ["qc", "-i", "D65/10,A/10", SAMPLES, SAMPLES]


def run(tool, args, wine):
    command = ([wine] if wine else []) + [tool] + args + ["--json"]
    done = subprocess.run(command, capture_output=True)
    if done.returncode not in (0, 1):
        sys.exit(f"{' '.join(command)}: exit {done.returncode}\n{done.stderr.decode()}")
    return json.loads(done.stdout.decode("utf-8"))


def compare(a, b, where, stats, tolerance):
    if isinstance(a, bool) or isinstance(b, bool) or not isinstance(a, (int, float)):
        if type(a) is not type(b):
            stats["failures"].append(f"{where}: {a!r} against {b!r}")
        elif isinstance(a, dict):
            if a.keys() != b.keys():
                stats["failures"].append(f"{where}: keys {sorted(a)} against {sorted(b)}")
            for key in a.keys() & b.keys():
                compare(a[key], b[key], f"{where}.{key}", stats, tolerance)
        elif isinstance(a, list):
            if len(a) != len(b):
                stats["failures"].append(f"{where}: {len(a)} items against {len(b)}")
            for i, (x, y) in enumerate(zip(a, b)):
                compare(x, y, f"{where}[{i}]", stats, tolerance)
        elif a != b:
            stats["failures"].append(f"{where}: {a!r} against {b!r}")
        return
    if not isinstance(b, (int, float)):
        stats["failures"].append(f"{where}: {a!r} against {b!r}")
        return
    stats["values"] += 1
    difference = abs(a - b)
    relative = difference / max(abs(a), abs(b)) if difference else 0.0
    stats["identical"] += difference == 0
    if difference > stats["absolute"][0]:
        stats["absolute"] = (difference, where)
    if relative > stats["relative"][0]:
        stats["relative"] = (relative, where)
    if relative > tolerance:
        stats["failures"].append(f"{where}: {a!r} against {b!r}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--linux", required=True)
    parser.add_argument("--windows", required=True)
    parser.add_argument("--wine", default=os.path.join(ROOT, "tools", "wine_run"))
    parser.add_argument("--tolerance", type=float, default=1e-13)
    args = parser.parse_args()
    stats = {"values": 0, "identical": 0, "absolute": (0.0, "-"), "relative": (0.0, "-"),
             "failures": []}
    for command in commands():
        compare(run(args.linux, command, None), run(args.windows, command, args.wine),
                " ".join(command[:3]), stats, args.tolerance)
    print(f"compared {stats['values']} values of {len(list(commands()))} reports: "
          f"{stats['identical']} identical; largest difference {stats['absolute'][0]:.3g} "
          f"({stats['absolute'][1]}), largest relative {stats['relative'][0]:.3g} "
          f"({stats['relative'][1]})")
    for failure in stats["failures"][:20]:
        print("differs:", failure)
    return 1 if stats["failures"] else 0


if __name__ == "__main__":
    sys.exit(main())
