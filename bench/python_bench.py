#!/usr/bin/env python3
"""Throughput of the Python module against the same computation in plain NumPy.

  PYTHONPATH=<build>/python /usr/bin/python3 bench/python_bench.py [--count N] [--repeat R]

Times velquor.xyz on N spectra and velquor.delta_e(..., "cie2000") on N pairs (one standard
per trial, and one standard broadcast against every trial), next to NumPy matrix arithmetic:
XYZ = spectra @ weights.T * 0.01 with the module's weighting table, and CIEDE2000 vectorised
from the published formula (CIE 142-2001; Sharma, Wu and Dalal 2005). Prints the best of R
runs, the throughput and the ratio, and the largest disagreement between the two.
"""

import argparse
import time

import numpy as np

import velquor


def ciede2000_numpy(lab1, lab2, kl=1.0, kc=1.0, kh=1.0):
    """CIEDE2000 of (..., 3) CIELAB arrays, written out from the published formula."""
    l1, a1, b1 = np.moveaxis(lab1, -1, 0)
    l2, a2, b2 = np.moveaxis(lab2, -1, 0)
    c1 = np.hypot(a1, b1)
    c2 = np.hypot(a2, b2)
    c_mean7 = ((c1 + c2) / 2.0) ** 7
    g = 0.5 * (1.0 - np.sqrt(c_mean7 / (c_mean7 + 25.0 ** 7)))
    a1p = (1.0 + g) * a1
    a2p = (1.0 + g) * a2
    c1p = np.hypot(a1p, b1)
    c2p = np.hypot(a2p, b2)
    h1p = np.degrees(np.arctan2(b1, a1p)) % 360.0
    h2p = np.degrees(np.arctan2(b2, a2p)) % 360.0
    h1p = np.where((a1p == 0) & (b1 == 0), 0.0, h1p)
    h2p = np.where((a2p == 0) & (b2 == 0), 0.0, h2p)

    dlp = l2 - l1
    dcp = c2p - c1p
    dh = h2p - h1p
    dh = np.where(dh > 180.0, dh - 360.0, np.where(dh < -180.0, dh + 360.0, dh))
    product = c1p * c2p
    dh = np.where(product == 0, 0.0, dh)
    dhp = 2.0 * np.sqrt(product) * np.sin(np.radians(dh / 2.0))

    lp_mean = (l1 + l2) / 2.0
    cp_mean = (c1p + c2p) / 2.0
    h_sum = h1p + h2p
    hp_mean = np.where(np.abs(h1p - h2p) <= 180.0, h_sum / 2.0,
                       np.where(h_sum < 360.0, (h_sum + 360.0) / 2.0, (h_sum - 360.0) / 2.0))
    hp_mean = np.where(product == 0, h_sum, hp_mean)

    t = (1.0 - 0.17 * np.cos(np.radians(hp_mean - 30.0)) + 0.24 * np.cos(np.radians(2 * hp_mean))
         + 0.32 * np.cos(np.radians(3 * hp_mean + 6.0))
         - 0.20 * np.cos(np.radians(4 * hp_mean - 63.0)))
    d_theta = 30.0 * np.exp(-(((hp_mean - 275.0) / 25.0) ** 2))
    cp_mean7 = cp_mean ** 7
    rc = 2.0 * np.sqrt(cp_mean7 / (cp_mean7 + 25.0 ** 7))
    sl = 1.0 + 0.015 * (lp_mean - 50.0) ** 2 / np.sqrt(20.0 + (lp_mean - 50.0) ** 2)
    sc = 1.0 + 0.045 * cp_mean
    sh = 1.0 + 0.015 * cp_mean * t
    rt = -np.sin(np.radians(2.0 * d_theta)) * rc

    tl = dlp / (kl * sl)
    tc = dcp / (kc * sc)
    th = dhp / (kh * sh)
    return np.sqrt(tl * tl + tc * tc + th * th + rt * tc * th)


def best_of(repeat, function):
    best = float("inf")
    result = None
    for _ in range(repeat):
        start = time.perf_counter()
        result = function()
        best = min(best, time.perf_counter() - start)
    return best, result


def report(title, count, unit, module_time, numpy_time, disagreement):
    print(f"{title}")
    print(f"  velquor  {module_time * 1e3:9.1f} ms  {count / module_time / 1e6:8.2f} M {unit}/s")
    print(f"  NumPy    {numpy_time * 1e3:9.1f} ms  {count / numpy_time / 1e6:8.2f} M {unit}/s")
    print(f"  NumPy time / velquor time = {numpy_time / module_time:.2f};"
          f" largest difference {disagreement:.2e}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=1_000_000)
    parser.add_argument("--repeat", type=int, default=3)
    args = parser.parse_args()
    n, repeat = args.count, args.repeat
    rng = np.random.default_rng(2024)
    print(f"velquor {velquor.version()}, NumPy {np.__version__}, {n:,} items, best of {repeat}")

    # Tristimulus values: smooth random reflectance curves in percent.
    x = np.linspace(0.0, 1.0, velquor.SPECTRUM_POINTS)
    spectra = 5.0 + 90.0 * np.exp(-((x - rng.uniform(0, 1, (n, 1))) /
                                    rng.uniform(0.1, 0.5, (n, 1))) ** 2)
    weights = velquor.weight_table("D65", 10)
    module_time, module_xyz = best_of(repeat, lambda: velquor.xyz(spectra, "D65", 10))
    numpy_time, numpy_xyz = best_of(repeat, lambda: spectra @ weights.T * 0.01)
    report("xyz: 40-point spectra -> XYZ, D65/10", n, "spectra", module_time, numpy_time,
           np.max(np.abs(module_xyz - numpy_xyz)))

    # CIEDE2000 on pairs spread over the CIELAB solid, trials near their standards.
    std = np.column_stack([rng.uniform(5, 95, n), rng.uniform(-80, 80, n), rng.uniform(-80, 80, n)])
    trials = std + rng.normal(0.0, 2.0, (n, 3))
    module_time, module_de = best_of(repeat, lambda: velquor.delta_e(std, trials, "cie2000"))
    numpy_time, numpy_de = best_of(repeat, lambda: ciede2000_numpy(std, trials))
    report("delta_e cie2000: one standard per trial", n, "pairs", module_time, numpy_time,
           np.max(np.abs(module_de - numpy_de)))

    one = std[0]
    module_time, module_de = best_of(repeat, lambda: velquor.delta_e(one, trials, "cie2000"))
    numpy_time, numpy_de = best_of(repeat, lambda: ciede2000_numpy(one, trials))
    report("delta_e cie2000: one standard against every trial", n, "pairs", module_time,
           numpy_time, np.max(np.abs(module_de - numpy_de)))


if __name__ == "__main__":
    main()
