#!/usr/bin/env python3
"""The batch engine's speed as ratios against its peers, measured side by side in one process.

  /usr/bin/python3 bench/ratios.py [--build build/release] [--repetitions 5]

Runs every Google Benchmark named *Vs* in build/bench/velquor_bench_* (each alternates velquor
with its peer in every iteration and reports the counter "ratio" = peer time / velquor time,
against LittleCMS, the memory-bandwidth anchor or one thread, or "speedup" against per-sample
calls) --repetitions times, then times the Python
module against the C API on the same arrays in this process (ctypes on libvelquor.so), and
prints one line per path: the median ratio, its spread (min-max) over the repetitions, and
the SIMD level the benchmark ran at.
"""

import argparse
import ctypes
import glob
import json
import os
import statistics
import subprocess
import sys
import time


def run_benchmarks(build, repetitions):
    rows = {}
    for program in sorted(glob.glob(os.path.join(build, "bench", "velquor_bench_*"))):
        out = subprocess.run(
            [program, "--benchmark_filter=Vs", f"--benchmark_repetitions={repetitions}",
             "--benchmark_format=json"],
            check=False, capture_output=True, text=True).stdout
        if not out.strip():
            continue  # no side-by-side benchmark in this program
        for b in json.loads(out)["benchmarks"]:
            if b.get("run_type") != "iteration":
                continue
            name = b["run_name"].replace("/manual_time", "").replace("/real_time", "")
            for counter in ("ratio", "anchor_ratio", "speedup", "speedup_threads"):
                if counter in b:
                    row = rows.setdefault(f"{name} {counter}",
                                          {"label": b.get("label", ""), "ratios": []})
                    row["ratios"].append(b[counter])
    return rows


def best_of_interleaved(repeat, first, second):
    """Best times of two functions run alternately, so that both see the same machine load."""
    best = [float("inf"), float("inf")]
    for _ in range(repeat):
        for k, function in enumerate((first, second)):
            start = time.perf_counter()
            function()
            best[k] = min(best[k], time.perf_counter() - start)
    return best


def python_against_c(build, repetitions, count=1_000_000):
    """velquor.xyz / velquor.lab against vq_xyz_batch / vq_xyz_to_lab_batch on the same input.
    Like the Python functions, which return a new array, the C calls write into a fresh one
    (its first touch costs page faults, some 5 ms for 1,000,000 CIELAB records)."""
    sys.path.insert(0, os.path.join(build, "python"))
    import numpy as np
    import velquor

    lib = ctypes.CDLL(os.path.join(build, "velquor", "libvelquor.so"))
    pointer = ctypes.POINTER(ctypes.c_double)
    lib.vq_xyz_batch.argtypes = [pointer, ctypes.c_size_t, ctypes.c_int, ctypes.c_int, pointer]
    lib.vq_xyz_to_lab_batch.argtypes = [ctypes.c_int, ctypes.c_int, pointer, ctypes.c_size_t,
                                        pointer]
    for setter in (lib.vq_set_batch_threads, velquor.set_batch_threads):
        setter(1)
    rng = np.random.default_rng(20261125)
    spectra = np.clip(rng.uniform(2, 95, (count, 1)) + rng.uniform(-1.5, 1.5, (count, 1)) *
                      (np.arange(40) - 20.0), 0.5, 100.0)
    xyz = np.empty((count, 3))
    ptr = lambda a: a.ctypes.data_as(pointer)
    rows = {}
    cases = {
        "python xyz vs C vq_xyz_batch": (
            lambda: velquor.xyz(spectra, "D65", 10),
            lambda: lib.vq_xyz_batch(ptr(spectra), count, 2, 1, ptr(np.empty((count, 3))))),
        "python lab vs C vq_xyz_to_lab_batch": (
            lambda: velquor.lab(xyz, "D65", 10),
            lambda: lib.vq_xyz_to_lab_batch(2, 1, ptr(xyz), count, ptr(np.empty((count, 5))))),
    }
    lib.vq_xyz_batch(ptr(spectra), count, 2, 1, ptr(xyz))
    for name, (python, c) in cases.items():
        ratios = []
        for _ in range(repetitions):
            c_time, python_time = best_of_interleaved(5, c, python)
            ratios.append(c_time / python_time)
        rows[name] = {"label": "1 thread", "ratios": ratios}
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default="build/release")
    parser.add_argument("--repetitions", type=int, default=5)
    args = parser.parse_args()
    rows = run_benchmarks(args.build, args.repetitions)
    rows.update(python_against_c(args.build, args.repetitions))
    width = max(len(name) for name in rows)
    print(f"{'path':<{width}} {'ratio':>7}  {'spread':>13}  level")
    for name, row in rows.items():
        r = row["ratios"]
        print(f"{name:<{width}} {statistics.median(r):7.2f}  {min(r):6.2f}-{max(r):<6.2f}  "
              f"{row['label']}")


if __name__ == "__main__":
    main()
