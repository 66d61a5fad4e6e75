#!/usr/bin/python3
"""Compare `velquor xyz` with ArgyllCMS `spec2cie` on the 24 ColorChecker spectra.

Run:
    /usr/bin/python3 tools/compare_argyll.py [--velquor PATH] [--spec2cie PATH] [-v]

Needs the velquor command-line tool (default build/release/cli/velquor; build the velquor_cli
target) and ArgyllCMS `spec2cie` (Debian package argyll). Standard library only. ArgyllCMS is
a comparison peer, not a test dependency: this script is not registered with CTest. Exit
status 0 when every bound below holds, 1 when one fails, 2 on a missing tool or bad output.

What it does: writes tests/data/samples/colorchecker_ohta_380_780_5nm.csv (N. Ohta's
ColorChecker reflectances, 380-780 nm at 5 nm) plus a perfect white as an Argyll .ti3 file in a
temporary directory, computes XYZ from that one file with spec2cie and with `velquor xyz` (so
velquor's CGATS reader is exercised too) for A, C, D50, D65, F8 and F10 with the CIE 1931 2°
and 1964 10° observers (the conditions both tools have), and compares patch by patch. CIELAB
uses each tool's own white, i.e. its XYZ for the perfect white (velquor: the white point its
weighting table carries; Argyll: its 1 nm illuminant integral); ΔE*ab is CIE 1976.

The two tools sum differently, on purpose:
  * velquor: ASTM E308-style 10 nm weighting tables over 360-750 nm, built by ASTM E2022
    practice (5 nm SPDs Lagrange-interpolated to 1 nm, 1 nm products S·x̄ spread onto 10 nm
    nodes with Lagrange coefficients, nodes 760-830 nm added into 750 nm, X and Z pinned to
    the ASTM E308 white). Only the reflectance at 380, 390, ... 750 nm is used: 360 and 370 nm
    repeat 380 nm, R(750) stands in for everything beyond, the 5 nm points in between are
    not read.
  * spec2cie: a 1 nm sum over the observer range 360-830 nm, illuminant (Argyll's 5 nm
    tables) and reflectance (all 81 values) linearly interpolated to 1 nm, end values held.
The script rebuilds both from the CIE data in velquor/resources/cie and splits the difference:
Argyll's rebuilt sum matches spec2cie to 0.0004 (0.003 for F10, where Argyll's copy of the
lamp table differs slightly), velquor's rebuilt table method matches `velquor xyz` to its 4
printed decimals, and (velquor - Argyll) - (velquor rebuilt - Argyll rebuilt) is at most
0.003. So the whole velquor-Argyll difference is the summation method: for the smooth
illuminants it is the 10 nm sampling of the reflectance (the 750 nm cut-off is at most 0.0005
of it); for the 5 nm lamp tables C, F8 and F10 as much again comes from interpolating the SPD
to 1 nm by Lagrange (velquor, ASTM E2022) instead of linearly (Argyll).

Note: the CIE 15 direct summation at the measured 5 nm points over 380-780 nm is not what
spec2cie computes: it differs from Argyll by 0.016-0.107 in X, Y or Z, more than it differs
from velquor (0.012-0.026). It is printed for scale only.

Measured (Argyll 2.3.1 from Debian; XYZ on the Y = 100 scale; |dXYZ| is the largest of |dX|,
|dY|, |dZ| of a patch; max and mean over the 24 patches):

             velquor vs Argyll                  parts of velquor - Argyll   CIE 15 5 nm sum vs
  condition  max|dXYZ| mean   max dE  mean dE   illum. interp.  10 nm table  Argyll   velquor
  A/2°       0.0207  0.0084   0.112   0.045     0.0051          0.0212       0.0170   0.0137
  A/10°      0.0214  0.0082   0.102   0.044     0.0052          0.0221       0.0162   0.0124
  C/2°       0.0904  0.0234   0.155   0.053     0.0509          0.0396       0.0781   0.0211
  C/10°      0.0969  0.0241   0.127   0.049     0.0502          0.0464       0.0869   0.0206
  D50/2°     0.0302  0.0124   0.143   0.051     0.0075          0.0238       0.0314   0.0144
  D50/10°    0.0375  0.0131   0.123   0.048     0.0098          0.0274       0.0332   0.0146
  D65/2°     0.0349  0.0144   0.143   0.052     0.0000          0.0349       0.0411   0.0199
  D65/10°    0.0409  0.0147   0.120   0.049     0.0000          0.0408       0.0497   0.0213
  F8/2°      0.1073  0.0256   0.164   0.061     0.0792          0.0331       0.0944   0.0232
  F8/10°     0.0751  0.0185   0.135   0.054     0.0422          0.0343       0.0595   0.0232
  F10/2°     0.1222  0.0358   0.208   0.089     0.0948          0.0339       0.1071   0.0262
  F10/10°    0.0959  0.0288   0.187   0.077     0.0647          0.0353       0.0779   0.0250
(the parts and the 5 nm columns are max|dXYZ|; the script also prints their max ΔE*ab)
"""

import argparse
import csv
import math
import os
import shutil
import struct
import subprocess
import sys
import tempfile

REPO = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SAMPLES = os.path.join(REPO, "tests", "data", "samples", "colorchecker_ohta_380_780_5nm.csv")
CIE_DIR = os.path.join(REPO, "velquor", "resources", "cie")
DEFAULT_VELQUOR = os.path.join(REPO, "build", "release", "cli", "velquor")
WHITE_ID = "white"  # SAMPLE_ID of the perfect white added to the .ti3
WEIGHTS_DIR = os.path.join(REPO, "velquor", "resources", "weights")
GRID = range(360, 831)  # 1 nm working grid: the range of the CIE colour-matching functions

# Conditions both tools support: velquor code and table index, Argyll -i name, and the CIE
# file and column of the SPD.
ILLUMINANTS = [
    ("A", 0, "A", "illum_A_1nm_formula.csv", "A"),
    ("C", 1, "C", "illum_C_5nm.csv", "C"),
    ("D50", 5, "D50", "illum_D50_D55_D65_D75_5nm.csv", "D50"),
    ("D65", 2, "D65", "illum_D65_1nm.csv", "D65"),
    ("F8", 12, "F8", "illum_F1_F12_5nm.csv", "F8"),
    ("F10", 13, "F10", "illum_F1_F12_5nm.csv", "F10"),
]
OBSERVERS = [
    (2, "1931_2", "cmf_cie1931_2deg_1nm.csv"),
    (10, "1964_10", "cmf_cie1964_10deg_1nm.csv"),
]

# Pass/fail bounds, chosen from the measurements in the docstring (XYZ on the Y = 100 scale).
# velquor vs Argyll: the method difference (10 nm table and Lagrange-interpolated SPD against
# a 1 nm sum of linearly interpolated 5 nm data) reaches 0.122 in X, Y or Z and 0.208 ΔE*ab on
# these spectra (F10/2°, a line spectrum). The bounds leave about 25 % headroom and stay far
# below a visible difference, while a wrong table, observer or band shift (differences of 0.5
# to several units) fails.
BOUND_VQ_ARGYLL_DXYZ = 0.15
BOUND_VQ_ARGYLL_DE = 0.25
# Argyll against its rebuilt summation from the CIE data: measured at most 0.0030 (F10; 0.0004
# elsewhere), what Argyll's own copies of the lamp tables differ by.
BOUND_ARGYLL_REBUILT_DXYZ = 0.005
# velquor against the table method rebuilt here: exact up to the CLI's 4 decimals.
BOUND_VELQUOR_REBUILT_DXYZ = 0.0002
# Whatever of velquor - Argyll the two rebuilt methods do not account for: measured at most
# 0.0031, i.e. no more than Argyll vs its rebuilt summation.
BOUND_UNEXPLAINED_DXYZ = 0.005


def fail_usage(message):
    print("compare_argyll: " + message, file=sys.stderr)
    sys.exit(2)


def read_spectral_csv(path):
    """CSV with a header `wavelength_nm,<cols>` -> ({column: {nm: value}})."""
    with open(path, newline="", encoding="utf-8") as f:
        rows = list(csv.reader(f))
    columns = {name: {} for name in rows[0][1:]}
    for row in rows[1:]:
        nm = int(float(row[0]))
        for name, value in zip(rows[0][1:], row[1:]):
            columns[name][nm] = float(value)
    return columns


def read_samples(path):
    """The ColorChecker CSV: header `sample,380,...,780`, reflectance as fractions."""
    with open(path, newline="", encoding="utf-8") as f:
        rows = list(csv.reader(f))
    wavelengths = [int(w) for w in rows[0][1:]]
    samples = [(row[0], [float(v) for v in row[1:]]) for row in rows[1:]]
    return wavelengths, samples


def write_ti3(path, wavelengths, samples):
    """Argyll CGATS .ti3: spectral values in percent with SPECTRAL_NORM 100, the patches numbered
    from 1, then a perfect white. spec2cie needs a colour representation it knows, so every
    patch gets a dummy RGB of 0 0 0."""
    lines = [
        "CTI3",
        "",
        'DESCRIPTOR "ColorChecker (Ohta) reflectance for the velquor/Argyll comparison"',
        'ORIGINATOR "velquor tools/compare_argyll.py"',
        'DEVICE_CLASS "OUTPUT"',
        'COLOR_REP "RGB_XYZ"',
        'SPECTRAL_BANDS "%d"' % len(wavelengths),
        'SPECTRAL_START_NM "%f"' % wavelengths[0],
        'SPECTRAL_END_NM "%f"' % wavelengths[-1],
        'SPECTRAL_NORM "100.000000"',
        "",
        "NUMBER_OF_FIELDS %d" % (len(wavelengths) + 4),
        "BEGIN_DATA_FORMAT",
        "SAMPLE_ID RGB_R RGB_G RGB_B " + " ".join("SPEC_%d" % w for w in wavelengths),
        "END_DATA_FORMAT",
        "",
        "NUMBER_OF_SETS %d" % (len(samples) + 1),
        "BEGIN_DATA",
    ]
    for i, (_, values) in enumerate(samples):
        lines.append("%d 0 0 0 " % (i + 1) + " ".join("%.4f" % (100.0 * v) for v in values))
    # The perfect reflecting diffuser: each tool's XYZ for it is the white that tool uses.
    lines.append("%s 0 0 0 " % WHITE_ID + " ".join("100" for _ in wavelengths))
    lines.append("END_DATA")
    with open(path, "w", encoding="ascii") as f:
        f.write("\n".join(lines) + "\n")


def read_cgats(path):
    """Minimal CGATS reader: (field names, data rows as lists of strings)."""
    fields, rows = [], []
    section = None
    with open(path, encoding="latin-1") as f:
        for raw in f:
            line = raw.strip()
            if line == "BEGIN_DATA_FORMAT":
                section = "format"
            elif line == "END_DATA_FORMAT":
                section = None
            elif line == "BEGIN_DATA":
                section = "data"
            elif line == "END_DATA":
                section = None
            elif section == "format":
                fields.extend(line.split())
            elif section == "data" and line:
                rows.append(line.split())
    return fields, rows


def run_spec2cie(spec2cie, ti3, out, illuminant, observer):
    """XYZ (Y = 100 scale) per SAMPLE_ID."""
    cmd = [spec2cie, "-n", "-i", illuminant, "-o", observer, ti3, out]
    result = subprocess.run(cmd, capture_output=True, text=True)
    if result.returncode != 0:
        fail_usage("%s failed: %s" % (" ".join(cmd), (result.stderr or result.stdout).strip()))
    fields, rows = read_cgats(out)
    cols = [fields.index(name) for name in ("SAMPLE_ID", "XYZ_X", "XYZ_Y", "XYZ_Z")]
    return {row[cols[0]]: [float(row[c]) for c in cols[1:]] for row in rows}


def run_velquor(velquor, ti3, conditions):
    """{(sample id, condition label): XYZ} from `velquor xyz FILE -i LIST --csv`."""
    cmd = [velquor, "xyz", ti3, "-i", ",".join(conditions), "--csv"]
    result = subprocess.run(cmd, capture_output=True, text=True)
    if result.returncode != 0:
        fail_usage("%s failed (%d): %s" % (" ".join(cmd), result.returncode, result.stderr.strip()))
    out = {}
    for row in csv.DictReader(result.stdout.splitlines()):
        condition = row["condition"].replace("°", "")
        out[(row["sample"], condition)] = [float(row[k]) for k in ("X", "Y", "Z")]
    return out


def lagrange_stencil(k, n, t):
    """Lagrange coefficients for fraction t of interval k of an n-point table: the cubic through
    the four nodes around it, the quadratic through the first or last three in an end
    interval (the interpolation behind ASTM E2022 and velquor's tables). -> (first node, coefs)"""
    if k == 0:
        return 0, [(t - 1) * (t - 2) / 2, -t * (t - 2), t * (t - 1) / 2]
    if k == n - 2:
        return n - 3, [t * (t - 1) / 2, 1 - t * t, t * (t + 1) / 2]
    return k - 1, [-t * (t - 1) * (t - 2) / 6, (t + 1) * (t - 1) * (t - 2) / 2,
                   -(t + 1) * t * (t - 2) / 2, (t + 1) * t * (t - 1) / 6]


def lagrange_1nm(first, step, values, clip):
    """Equally spaced values -> {nm: value} on GRID by Lagrange interpolation, 0 outside the
    data; clip sets negative overshoot to 0 (for SPDs)."""
    out, n = {}, len(values)
    for nm in GRID:
        offset = nm - first
        if offset < 0 or offset > step * (n - 1):
            out[nm] = 0.0
        elif offset % step == 0:
            out[nm] = values[offset // step]
        else:
            node, coefs = lagrange_stencil(offset // step, n, (offset % step) / step)
            value = sum(c * values[node + i] for i, c in enumerate(coefs))
            out[nm] = max(value, 0.0) if clip else value
    return out


def linear_1nm(first, step, values):
    """Equally spaced values -> {nm: value} on GRID by linear interpolation, the end values held
    outside the data."""
    out, last = {}, first + step * (len(values) - 1)
    for nm in GRID:
        if nm <= first:
            out[nm] = values[0]
        elif nm >= last:
            out[nm] = values[-1]
        else:
            i, r = divmod(nm - first, step)
            out[nm] = values[i] + (values[i + 1] - values[i]) * r / step
    return out


def every(column, step):
    """{nm: value} -> (first nm, values at `step` nm intervals)."""
    nms = sorted(nm for nm in column if nm % step == 0)
    return nms[0], [column[nm] for nm in nms]


def spd_lagrange(column):
    """Illuminant on the 1 nm grid as velquor's table generator takes it: 1 nm data as they
    are, 5 nm data Lagrange-interpolated."""
    nms = sorted(column)
    if nms[1] - nms[0] == 1:
        return {nm: column[nm] for nm in GRID}
    return lagrange_1nm(nms[0], nms[1] - nms[0], [column[nm] for nm in nms], clip=True)


def spd_linear(column):
    """Illuminant on the 1 nm grid as Argyll takes its 5 nm tables: linear, ends held."""
    first, values = every(column, 5)
    return linear_1nm(first, 5, values)


def summation_1nm(spd, cmf, reflectance):
    """X = k·Σ S·R·x̄ over 360-830 nm at 1 nm, k = 100/Σ S·ȳ -> (sample XYZ, white XYZ)."""
    k = 100.0 / sum(spd[nm] * cmf["y_bar"][nm] for nm in GRID)
    sample, white = [], []
    for bar in ("x_bar", "y_bar", "z_bar"):
        sample.append(k * sum(spd[nm] * cmf[bar][nm] * reflectance[nm] for nm in GRID))
        white.append(k * sum(spd[nm] * cmf[bar][nm] for nm in GRID))
    return sample, white


def reflectance_all_points(wavelengths, values):
    """Argyll's reflectance: every measured point, linear between them, end values held."""
    return linear_1nm(wavelengths[0], wavelengths[1] - wavelengths[0], values)


def reflectance_10nm_nodes(wavelengths, values, last_nm=750):
    """velquor's reflectance: the values at 380, 390, ... 750 nm only, 360 and 370 nm repeating
    380 nm, 760-830 nm repeating 750 nm (the same as adding those weights into 750 nm), and
    Lagrange between the 10 nm nodes. Summing this against the 1 nm products S·x̄ is exactly
    the ASTM E2022 weighting table applied to the 10 nm values. last_nm = 780 instead uses the
    measured 760-780 nm values too, to size the effect of the 750 nm cut-off."""
    at = dict(zip(wavelengths, values))
    nodes = [at[min(max(nm, 380), last_nm)] for nm in range(360, 831, 10)]
    return lagrange_1nm(360, 10, nodes, clip=False)


def table_white(index, degrees):
    """White point velquor's weighting table carries (its X and Z columns are pinned to it)."""
    path = os.path.join(WEIGHTS_DIR, "ILL%02d_%02d" % (index, degrees))
    with open(path, "rb") as f:
        return list(struct.unpack("<123d", f.read())[120:123])


def pinned(xyz, white, target):
    """Scale X and Z as the table's pinning does (target Y = 100 = white Y)."""
    return [xyz[0] * target[0] / white[0], xyz[1], xyz[2] * target[2] / white[2]]


def direct_summation_5nm(spd, cmf, wavelengths, values):
    """CIE 15 direct summation at the measured 5 nm points, 380-780 nm, SPD and CMFs taken at
    those points (the 1 nm CIE data at 5 nm, or the 5 nm tables). -> (sample XYZ, white XYZ)"""
    k = 100.0 / sum(spd[nm] * cmf["y_bar"][nm] for nm in wavelengths)
    sample, white = [], []
    for bar in ("x_bar", "y_bar", "z_bar"):
        sample.append(k * sum(spd[nm] * cmf[bar][nm] * r for nm, r in zip(wavelengths, values)))
        white.append(k * sum(spd[nm] * cmf[bar][nm] for nm in wavelengths))
    return sample, white

def lab(xyz, white):
    """XYZ -> CIELAB (CIE 15:2004, exact breakpoints 216/24389 and 841/108)."""
    def f(t):
        return t ** (1.0 / 3.0) if t > 216.0 / 24389.0 else 841.0 / 108.0 * t + 4.0 / 29.0

    fx, fy, fz = (f(v / n) for v, n in zip(xyz, white))
    return 116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)


def delta_e(xyz1, white1, xyz2, white2):
    return math.dist(lab(xyz1, white1), lab(xyz2, white2))


def stats(pairs):
    """pairs: list of (xyz1, white1, xyz2, white2) -> (max|dXYZ|, mean|dXYZ|, max dE, mean dE),
    |dXYZ| being the largest of |dX|, |dY|, |dZ| of a patch."""
    dxyz = [max(abs(a - b) for a, b in zip(p[0], p[2])) for p in pairs]
    de = [delta_e(*p) for p in pairs]
    return max(dxyz), sum(dxyz) / len(dxyz), max(de), sum(de) / len(de)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--velquor", default=DEFAULT_VELQUOR,
                        help="velquor command-line tool (default %(default)s)")
    parser.add_argument("--spec2cie", default=shutil.which("spec2cie"),
                        help="ArgyllCMS spec2cie (default: from PATH)")
    parser.add_argument("-v", "--verbose", action="store_true",
                        help="also print every patch's X, Y, Z from both tools")
    args = parser.parse_args()
    if not (os.path.isfile(args.velquor) and os.access(args.velquor, os.X_OK)):
        fail_usage("velquor not found at %s; build the velquor_cli target "
                   "(cmake --build <build dir> --target velquor_cli) or pass --velquor PATH"
                   % args.velquor)
    if not args.spec2cie or not os.path.isfile(args.spec2cie):
        fail_usage("ArgyllCMS spec2cie not found; install it (Debian: apt-get install argyll) "
                   "or pass --spec2cie PATH")

    wavelengths, samples = read_samples(SAMPLES)
    cmfs = {deg: read_spectral_csv(os.path.join(CIE_DIR, f)) for deg, _, f in OBSERVERS}
    conditions = ["%s/%d" % (il[0], ob[0]) for il in ILLUMINANTS for ob in OBSERVERS]

    rows = []
    cutoff = 0.0
    with tempfile.TemporaryDirectory(prefix="velquor_argyll_") as tmp:
        ti3 = os.path.join(tmp, "colorchecker.ti3")
        write_ti3(ti3, wavelengths, samples)
        vq = run_velquor(args.velquor, ti3, conditions)
        for code, index, argyll_name, spd_file, spd_column in ILLUMINANTS:
            column = read_spectral_csv(os.path.join(CIE_DIR, spd_file))[spd_column]
            spd_vq, spd_ar = spd_lagrange(column), spd_linear(column)
            for degrees, argyll_observer, _ in OBSERVERS:
                condition = "%s/%d" % (code, degrees)
                cmf = cmfs[degrees]
                out = os.path.join(tmp, "%s_%d.ti3" % (code, degrees))
                argyll = run_spec2cie(args.spec2cie, ti3, out, argyll_name, argyll_observer)
                if WHITE_ID not in argyll or (WHITE_ID, condition) not in vq:
                    fail_usage("the white patch is missing from an output for %s" % condition)
                a_white, v_white = argyll[WHITE_ID], vq[(WHITE_ID, condition)]
                target = table_white(index, degrees)
                pairs = {key: [] for key in ("va", "al", "vq", "lm", "mq", "da", "dv")}
                residual = 0.0
                for i, (name, values) in enumerate(samples):
                    sid = str(i + 1)
                    if sid not in argyll or (sid, condition) not in vq:
                        fail_usage("patch %s (%s) missing from an output for %s"
                                   % (sid, name, condition))
                    a, v = argyll[sid], vq[(sid, condition)]
                    all_points = reflectance_all_points(wavelengths, values)
                    # L: Argyll's computation rebuilt from the CIE data; M: the same with
                    # velquor's illuminant interpolation; Q: velquor's table method.
                    lx, lw = summation_1nm(spd_ar, cmf, all_points)
                    mx, mw = summation_1nm(spd_vq, cmf, all_points)
                    unpinned, qw = summation_1nm(spd_vq, cmf,
                                                 reflectance_10nm_nodes(wavelengths, values))
                    qx, qw = pinned(unpinned, qw, target), target
                    # The same with the measured 760-780 nm values: size of the 750 nm cut-off.
                    full, _ = summation_1nm(spd_vq, cmf,
                                            reflectance_10nm_nodes(wavelengths, values, 780))
                    cutoff = max(cutoff, max(abs(p - q) for p, q in zip(full, unpinned)))
                    dx, dw = direct_summation_5nm(column, cmf, wavelengths, values)
                    pairs["va"].append((v, v_white, a, a_white))
                    pairs["al"].append((a, a_white, lx, lw))
                    pairs["vq"].append((v, v_white, qx, qw))
                    pairs["lm"].append((lx, lw, mx, mw))
                    pairs["mq"].append((mx, mw, qx, qw))
                    pairs["da"].append((dx, dw, a, a_white))
                    pairs["dv"].append((dx, dw, v, v_white))
                    # What the two rebuilt methods do not explain of velquor - Argyll.
                    residual = max(residual, max(abs((vi - ai) - (qi - li))
                                                 for vi, ai, qi, li in zip(v, a, qx, lx)))
                    if args.verbose:
                        print("%-7s %-24s velquor %8.4f %8.4f %8.4f   Argyll %8.4f %8.4f %8.4f"
                              % (condition, name, *v, *a))
                rows.append((condition, {k: stats(p) for k, p in pairs.items()}, residual))

    print("XYZ of the 24 ColorChecker patches (Y = 100 scale). ΔE*ab (CIE 1976) with each "
          "source's own white;")
    print("|dXYZ| = largest of |dX|, |dY|, |dZ| of a patch; max and mean over the 24 patches.\n")
    print("velquor xyz vs ArgyllCMS spec2cie")
    print("condition  max|dXYZ| mean|dXYZ|  max dE  mean dE")
    for condition, st, _ in rows:
        print("%-9s  %9.4f  %9.4f  %6.3f   %6.3f" % (condition, *st["va"]))

    print("\nWhere the difference comes from (max|dXYZ| / max dE):")
    print("  Argyll rebuilt:  1 nm sum 360-830 nm of the SPD and all 81 reflectance values,")
    print("                   both linearly interpolated, end values held")
    print("  velquor rebuilt: 1 nm sum, SPD Lagrange-interpolated, reflectance Lagrange from its")
    print("                   10 nm values 360-750 nm (exactly what the weighting tables do)")
    print("  illuminant interpolation: Argyll rebuilt vs the same with velquor's Lagrange SPD")
    print("  10 nm table method: that vs velquor rebuilt (10 nm reflectance, 360-750 nm)")
    print("  unexplained: largest |(velquor - Argyll) - (velquor rebuilt - Argyll rebuilt)|")
    print("  CIE 15 5 nm: direct summation at the measured 5 nm points, 380-780 nm\n")
    header = "%-9s  %-10s  %-10s  %-14s  %-14s  %-11s  %-14s  %-14s"
    print(header % ("", "Argyll vs", "velquor vs", "illuminant", "10 nm table", "unexplained",
                    "CIE 15 5 nm", "CIE 15 5 nm"))
    print(header % ("condition", "rebuilt", "rebuilt", "interpolation", "method", "",
                    "vs Argyll", "vs velquor"))
    failures = []
    for condition, st, residual in rows:
        print("%-9s  %10.4f  %10.4f  %8.4f/%5.3f  %8.4f/%5.3f  %11.4f  %8.4f/%5.3f  %8.4f/%5.3f"
              % (condition, st["al"][0], st["vq"][0], st["lm"][0], st["lm"][2], st["mq"][0],
                 st["mq"][2], residual, st["da"][0], st["da"][2], st["dv"][0], st["dv"][2]))
        checks = [
            (st["va"][0], BOUND_VQ_ARGYLL_DXYZ, "velquor vs Argyll max |dXYZ|"),
            (st["va"][2], BOUND_VQ_ARGYLL_DE, "velquor vs Argyll max ΔE*ab"),
            (st["al"][0], BOUND_ARGYLL_REBUILT_DXYZ, "Argyll vs its rebuilt summation max |dXYZ|"),
            (st["vq"][0], BOUND_VELQUOR_REBUILT_DXYZ,
             "velquor vs its rebuilt summation max |dXYZ|"),
            (residual, BOUND_UNEXPLAINED_DXYZ, "unexplained part of velquor - Argyll"),
        ]
        failures += ["%s: %s %.4f > %.4f" % (condition, what, got, bound)
                     for got, bound, what in checks if got > bound]
    print("\nOf the 10 nm table method, the 750 nm cut-off (using the measured 760-780 nm values "
          "instead)\naccounts for at most %.4f in X, Y or Z." % cutoff)
    print("\nBounds: velquor vs Argyll max |dXYZ| <= %.3f and ΔE*ab <= %.3f; Argyll vs rebuilt "
          "<= %.4f; velquor vs rebuilt <= %.4f; unexplained <= %.4f."
          % (BOUND_VQ_ARGYLL_DXYZ, BOUND_VQ_ARGYLL_DE, BOUND_ARGYLL_REBUILT_DXYZ,
             BOUND_VELQUOR_REBUILT_DXYZ, BOUND_UNEXPLAINED_DXYZ))
    if failures:
        print("\nFAIL")
        for message in failures:
            print("  " + message)
        return 1
    print("PASS: velquor agrees with Argyll within what the two summation methods explain.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
