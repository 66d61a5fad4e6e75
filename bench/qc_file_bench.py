#!/usr/bin/env python3
"""The qc command on a large batch: read a CGATS file of N spectra and write the qc CSV.

  /usr/bin/python3 bench/qc_file_bench.py [--velquor build/release/cli/velquor] [--count 100000]

Writes a standard and N trial spectra (the ColorChecker "orange" patch of the test data, 380-780
nm at 5 nm, made weaker or stronger and tilted a little at random, as fractions with four
decimals: a 58 MB CGATS.17 file for 100,000 trials) to a temporary folder, then runs, --repeat
times each (default 5), and reports the median and the spread (largest minus smallest) of the
wall time and of the CPU time (user + system) of the process:

  velquor qc STANDARD TRIALS --csv=OUT.csv      (the text report goes to /dev/null), one core
  velquor qc STANDARD TRIALS --csv > OUT.csv    (CSV only), one core (taskset -c 0)
  velquor qc STANDARD TRIALS --csv > OUT.csv    (CSV only), on every core (two on the CI machine)

If ArgyllCMS's spec2cie is installed (Debian package argyll), it runs on the same trials file
(read CGATS, compute XYZ, write CGATS; one thread) as the peer, and the ratios of the medians
are printed: velquor's CPU time over spec2cie's, and velquor's wall time on every core over
spec2cie's. Targets: the CSV-only run at most 0.25 s wall on two cores and at most 0.05x
spec2cie's time. Timing on a machine busy with other work is noisy: read the spread.
Exits 1 when the one-core CSV-only run takes 2 s of CPU or more.
"""

import argparse
import csv
import os
import random
import resource
import shutil
import statistics
import subprocess
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SAMPLES = os.path.join(HERE, "..", "tests", "data", "samples", "colorchecker_ohta_380_780_5nm.csv")
BUDGET_SECONDS = 2.0


def write_cgats(path, wavelengths, samples, identifier="CGATS.17", extra="", device=""):
    """A CGATS table; `device` holds device-value fields (ArgyllCMS wants RGB_R RGB_G RGB_B)."""
    with open(path, "w") as f:
        f.write(f'{identifier}\nORIGINATOR "velquor qc_file_bench"\n{extra}')
        fields = ["SAMPLE_ID"] + device.split() + [f"SPEC_{w}" for w in wavelengths]
        f.write(f"NUMBER_OF_FIELDS {len(fields)}\nBEGIN_DATA_FORMAT\n{' '.join(fields)}")
        f.write(f"\nEND_DATA_FORMAT\nNUMBER_OF_SETS {len(samples)}\nBEGIN_DATA\n")
        zeros = " 0.0" * len(device.split())
        for name, values in samples:
            f.write(name + zeros + " " + " ".join(f"{v:.4f}" for v in values) + "\n")
        f.write("END_DATA\n")


def make_files(folder, count):
    with open(SAMPLES) as f:
        rows = list(csv.reader(f))
    wavelengths = [int(w) for w in rows[0][1:]]
    standard = next([float(v) for v in row[1:]] for row in rows[1:] if row[0] == "orange")
    rng = random.Random(1)
    trials = []
    n = len(standard)
    for i in range(count):
        strength = rng.uniform(0.97, 1.03)
        tilt = rng.uniform(-0.01, 0.01)
        trials.append((f"B{i:06d}", [min(1.0, v * strength * (1 + tilt * (j - n / 2) / (n / 2)))
                                     for j, v in enumerate(standard)]))
    paths = {name: os.path.join(folder, name) for name in ("standard.txt", "trials.txt")}
    write_cgats(paths["standard.txt"], wavelengths, [("STD", standard)])
    write_cgats(paths["trials.txt"], wavelengths, trials)
    # The same trials as an ArgyllCMS .ti3 (percent, with its spectral keywords).
    extra = (f'DEVICE_CLASS "OUTPUT"\nCOLOR_REP "RGB_XYZ"\nSPECTRAL_BANDS "{len(wavelengths)}"\n'
             f'SPECTRAL_START_NM "{wavelengths[0]}"\nSPECTRAL_END_NM "{wavelengths[-1]}"\n'
             f'SPECTRAL_NORM "100.0"\n')
    paths["trials.ti3"] = os.path.join(folder, "trials.ti3")
    write_cgats(paths["trials.ti3"], wavelengths,
                [(str(i + 1), [100 * v for v in values]) for i, (_, values) in enumerate(trials)],
                "CTI3", extra, "RGB_R RGB_G RGB_B")
    return paths


def timed(command, stdout, pin):
    """Wall and CPU seconds of one run of `command` (on core 0 alone when `pin`)."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.perf_counter()
    with open(stdout, "wb") as out:
        subprocess.run((["taskset", "-c", "0"] if pin else []) + command, stdout=out, check=False)
    wall = time.perf_counter() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    cpu = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
    return wall, cpu


class Runs:
    """Median and spread of the wall and CPU times of `repeat` runs."""

    def __init__(self, command, stdout, repeat, pin=True):
        runs = [timed(command, stdout, pin) for _ in range(repeat)]
        walls, cpus = [r[0] for r in runs], [r[1] for r in runs]
        self.wall, self.cpu = statistics.median(walls), statistics.median(cpus)
        self.wall_spread, self.cpu_spread = max(walls) - min(walls), max(cpus) - min(cpus)

    def __str__(self):
        return (f"{self.wall:.3f} s wall (spread {self.wall_spread:.3f}), "
                f"{self.cpu:.3f} s CPU (spread {self.cpu_spread:.3f})")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--velquor", default=os.path.join(HERE, "..", "build", "release", "cli", "velquor"))
    parser.add_argument("--count", type=int, default=100000)
    parser.add_argument("--repeat", type=int, default=5)
    args = parser.parse_args()
    if not os.access(args.velquor, os.X_OK):
        raise SystemExit(f"no velquor tool at {args.velquor} (build it, or pass --velquor)")
    with tempfile.TemporaryDirectory() as folder:
        paths = make_files(folder, args.count)
        size = os.path.getsize(paths["trials.txt"]) / 1e6
        print(f"{args.count} trials, {size:.0f} MB CGATS; median of {args.repeat} runs, "
              f"{os.cpu_count()} cores, load average {os.getloadavg()[0]:.2f}")
        out = os.path.join(folder, "out.csv")
        qc = [args.velquor, "qc", paths["standard.txt"], paths["trials.txt"]]
        both = Runs(qc + ["--csv=" + out], os.devnull, args.repeat)
        only = Runs(qc + ["--csv"], out, args.repeat)
        every = Runs(qc + ["--csv"], out, args.repeat, pin=False)
        with open(out) as f:
            rows = sum(1 for _ in f) - 1
        print(f"  velquor qc --csv=FILE (+ text report), one core: {both}")
        print(f"  velquor qc --csv (CSV only), one core:           {only}; {rows} rows, "
              f"{args.count / only.cpu:,.0f} trials/s of CPU")
        print(f"  velquor qc --csv (CSV only), every core:         {every}")
        spec2cie = shutil.which("spec2cie")
        if spec2cie:
            peer = Runs([spec2cie, "-i", "D65", "-o", "1964_10", "-n", paths["trials.ti3"],
                         os.path.join(folder, "argyll.ti3")], os.devnull, args.repeat)
            print(f"  ArgyllCMS spec2cie (XYZ only), one core:         {peer}")
            print(f"  velquor qc takes {only.cpu / peer.cpu:.3f}x spec2cie's CPU time; "
                  f"on every core {every.wall / peer.wall:.3f}x its wall time")
        else:
            print("  ArgyllCMS spec2cie not found (Debian package argyll): no ratio")
        if only.cpu >= BUDGET_SECONDS:
            print(f"over the {BUDGET_SECONDS} s budget")
            return 1
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
