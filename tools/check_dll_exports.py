#!/usr/bin/env python3
"""Checks the export table of a velquor.dll with the matching objdump -p:
ordinal 1 is InitVelquorModule, and every function of the C interface (velquor/velquor_c.h)
is exported by name.

usage: check_dll_exports.py OBJDUMP velquor.dll velquor_c.h
"""
import re
import subprocess
import sys


def main():
    objdump, dll, header = sys.argv[1:4]
    listing = subprocess.run([objdump, "-p", dll], check=True, capture_output=True,
                             text=True).stdout
    base = int(re.search(r"^Ordinal Base\s+(\d+)", listing, re.M).group(1))
    table = listing.split("[Ordinal/Name Pointer] Table", 1)[1]
    ordinals = {m.group(2): base + int(m.group(1))
                for m in re.finditer(r"^\s*\[\s*(\d+)\]\s+(\S+)\s*$", table, re.M)}
    failures = []
    if ordinals.get("InitVelquorModule") != 1:
        failures.append(f"InitVelquorModule has ordinal {ordinals.get('InitVelquorModule')}")
    with open(header, encoding="utf-8") as f:
        declared = set(re.findall(r"\b(vq_\w+)\(", f.read()))
    declared -= {name for name in declared if name.endswith("_fn")}
    missing = sorted(name for name in declared if name not in ordinals)
    if missing:
        failures.append("not exported: " + ", ".join(missing))
    for failure in failures:
        print(f"{dll}: {failure}")
    if not failures:
        print(f"{dll}: ordinal 1 is InitVelquorModule; {len(declared)} C functions of "
              f"{len(ordinals)} exports")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
