#!/usr/bin/python3
"""Renders the HTML QC report of `velquor demo --html` in headless Chromium and checks that the
screenshot is not blank and holds coloured plot marks, and that the rendered DOM holds the three
SVG plots with their tolerance polygon, markers, bars and curves.

usage: render_html_report.py VELQUOR_EXECUTABLE [WORK_DIR]

The report and the screenshot stay in WORK_DIR (default: a temporary folder). Standard library
only (the PNG is decoded with zlib). Needs the Debian package `chromium`, or the binary named by
the environment variable VELQUOR_CHROMIUM.
"""
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib

WIDTH, HEIGHT = 1200, 2400
TIMEOUT = 180  # seconds per run; a cold Chromium start on a busy machine can take a while


def fail(message):
    sys.exit("FAIL: " + message)


def run(command, what, **options):
    try:
        result = subprocess.run(command, capture_output=True, timeout=TIMEOUT, check=False,
                                **options)
    except subprocess.TimeoutExpired:
        fail("%s did not finish within %d s" % (what, TIMEOUT))
    if result.returncode != 0:
        fail("%s exited with %d:\n%s"
             % (what, result.returncode, result.stderr.decode(errors="replace")[-3000:]))
    return result


def chromium(scratch, extra, url):
    binary = os.environ.get("VELQUOR_CHROMIUM") or "chromium"
    if not shutil.which(binary):
        fail("%s not found: install the Debian package `chromium` or set VELQUOR_CHROMIUM" % binary)
    # No sanitizer settings (Chromium is not instrumented), and a private home and profile.
    env = {k: v for k, v in os.environ.items()
           if not k.endswith("SAN_OPTIONS") and k != "LD_PRELOAD"}
    env.update(HOME=scratch, XDG_CONFIG_HOME=os.path.join(scratch, ".config"),
               XDG_CACHE_HOME=os.path.join(scratch, ".cache"))
    profile = tempfile.mkdtemp(prefix="profile-", dir=scratch)
    return run([binary, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                "--no-first-run", "--no-default-browser-check", "--disable-extensions",
                "--disable-dev-shm-usage", "--force-device-scale-factor=1",
                "--user-data-dir=" + profile] + extra + [url], "chromium " + extra[-1], env=env)


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    return a if pa <= pb and pa <= pc else b if pb <= pc else c


def decode_png(data):
    """(width, height, channels, rows) of an 8-bit RGB or RGBA PNG without interlacing."""
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        fail("screenshot is not a PNG file")
    pos, idat, header = 8, b"", (0, 0, 0, 0, 0, 0, 0)
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", data[pos + 8:pos + 21])
        elif kind == b"IDAT":
            idat += data[pos + 8:pos + 8 + length]
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace != 0:
        fail("unexpected PNG: depth %d, colour type %d, interlace %d" % (depth, colour, interlace))
    n = 3 if colour == 2 else 4
    raw, stride = zlib.decompress(idat), width * n
    rows, up = [], bytearray(stride)
    for y in range(height):
        start = y * (stride + 1)
        kind, line = raw[start], bytearray(raw[start + 1:start + 1 + stride])
        if kind == 2:  # Up
            line = bytearray((x + b) & 0xFF for x, b in zip(line, up))
        elif kind in (1, 3, 4):  # Sub, Average, Paeth
            for i in range(stride):
                a, c = (line[i - n], up[i - n]) if i >= n else (0, 0)
                p = a if kind == 1 else (a + up[i]) >> 1 if kind == 3 else paeth(a, up[i], c)
                line[i] = (line[i] + p) & 0xFF
        elif kind != 0:
            fail("unknown PNG filter %d in row %d" % (kind, y))
        rows.append(line)
        up = line
    return width, height, n, rows


def check_screenshot(path):
    with open(path, "rb") as f:
        width, height, n, rows = decode_png(f.read())
    if (width, height) != (WIDTH, HEIGHT):
        fail("screenshot is %dx%d, expected %dx%d" % (width, height, WIDTH, HEIGHT))
    ink = coloured = inked_rows = 0
    for line in rows:
        pixels = [line[i:i + 3] for i in range(0, len(line), n)]
        inked = [p for p in pixels if min(p) < 235]
        # Saturated pixels come from the plots and the pass/fail colouring, not from text.
        coloured += sum(1 for p in inked if max(p) - min(p) > 80)
        ink += len(inked)
        inked_rows += bool(inked)
    print("screenshot: %d non-white pixels, %d saturated, %d rows with ink"
          % (ink, coloured, inked_rows))
    if ink < 0.01 * width * height:
        fail("the screenshot is (nearly) blank: %d non-white pixels" % ink)
    if coloured < 2000:
        fail("the screenshot has only %d saturated pixels: the plots were not drawn" % coloured)
    if inked_rows < 0.3 * height:
        fail("only %d of %d rows hold anything" % (inked_rows, height))


def check_dom(dom):
    if "<script" in dom.lower():
        fail("the report contains a <script> element")
    plots = {}
    for plot in ("ab-plot", "dl-bars", "spectra"):
        match = re.search(r'<svg\b[^>]*\bid="%s"[^>]*>.*?</svg>' % plot, dom, re.S)
        if not match:
            fail('the rendered DOM has no <svg id="%s">' % plot)
        plots[plot] = match.group(0)
    polygon = re.search(r'<polygon\b[^>]*class="tolerance"[^>]*\bpoints="([^"]*)"',
                        plots["ab-plot"])
    points = len(polygon.group(1).split()) if polygon else 0
    markers = len(re.findall(r'class="trial (?:pass|fail)"', plots["ab-plot"]))
    bars = len(re.findall(r'class="bar (?:pass|fail|rejected)"', plots["dl-bars"]))
    curves = len(re.findall(r'<path\b[^>]*class="curve (?:standard|trial)"', plots["spectra"]))
    print("DOM: tolerance polygon of %d points, %d markers, %d bars, %d curves"
          % (points, markers, bars, curves))
    if points < 8:
        fail("the tolerance polygon has only %d points" % points)
    if markers < 1 or bars < markers or curves < bars + 1:
        fail("plots incomplete: %d markers, %d bars, %d curves" % (markers, bars, curves))


def main():
    if len(sys.argv) not in (2, 3):
        fail("usage: render_html_report.py VELQUOR_EXECUTABLE [WORK_DIR]")
    work = os.path.abspath(sys.argv[2]) if len(sys.argv) == 3 else tempfile.mkdtemp()
    os.makedirs(work, exist_ok=True)
    html, png = os.path.join(work, "demo_report.html"), os.path.join(work, "demo_report.png")
    for stale in (html, png):
        if os.path.exists(stale):
            os.remove(stale)
    run([os.path.abspath(sys.argv[1]), "demo", "--html", html], "velquor demo --html")
    with tempfile.TemporaryDirectory(prefix="velquor-chromium-") as scratch:
        chromium(scratch, ["--window-size=%d,%d" % (WIDTH, HEIGHT), "--screenshot=" + png],
                 "file://" + html)
        dump = chromium(scratch, ["--dump-dom"], "file://" + html)
    check_dom(dump.stdout.decode("utf-8", errors="replace"))
    check_screenshot(png)
    print("rendered %s -> %s" % (html, png))


if __name__ == "__main__":
    main()
