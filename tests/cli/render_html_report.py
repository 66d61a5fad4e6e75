#!/usr/bin/python3
"""Renders the HTML QC report of `velquor demo --html` in headless Chromium and checks that the
screenshot is not blank and holds coloured plot marks, and that the rendered DOM holds the three
SVG plots with their tolerance polygon, markers, bars and curves.

usage: render_html_report.py VELQUOR_EXECUTABLE WORK_DIR (the report and screenshot stay there)

Standard library only (the PNG is decoded with zlib). Needs the Debian package `chromium`, or
the binary named by the environment variable VELQUOR_CHROMIUM.
"""
import os, re, shutil, struct, subprocess, sys, tempfile, zlib

WIDTH, HEIGHT = 1200, 2400


def check(ok, message):
    if not ok:
        sys.exit("FAIL: " + message)


def run(*command, env=None):
    # A cold Chromium start on a busy machine can take a while.
    result = subprocess.run(command, capture_output=True, timeout=180, env=env)
    check(result.returncode == 0, "%s exited with %d:\n%s"
          % (command[0], result.returncode, result.stderr.decode(errors="replace")[-3000:]))
    return result.stdout.decode(errors="replace")


def chromium(scratch, *extra):
    binary = os.environ.get("VELQUOR_CHROMIUM") or "chromium"
    check(shutil.which(binary), binary + " not found: install the Debian package `chromium`")
    # No sanitizer settings (Chromium is not instrumented), and a private home and profile.
    env = {k: v for k, v in os.environ.items() if "SAN_OPTIONS" not in k and k != "LD_PRELOAD"}
    env["HOME"] = scratch
    return run(binary, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
               "--no-first-run", "--disable-dev-shm-usage", "--force-device-scale-factor=1",
               "--user-data-dir=" + tempfile.mkdtemp(dir=scratch), *extra, env=env)


def pixels(data):
    """Rows of pixels of an 8-bit RGB or RGBA PNG without interlacing."""
    chunks, pos = {}, 8
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        chunks[kind] = chunks.get(kind, b"") + data[pos + 8:pos + 8 + length]
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", chunks[b"IHDR"])
    check((width, height, depth, colour in (2, 6), interlace) == (WIDTH, HEIGHT, 8, True, 0),
          "unexpected PNG: %dx%d, depth %d, colour type %d" % (width, height, depth, colour))
    n = 3 if colour == 2 else 4
    raw, stride, up = zlib.decompress(chunks[b"IDAT"]), width * n, bytearray(width * n)
    for y in range(height):
        kind, line = raw[y * (stride + 1)], bytearray(raw[y * (stride + 1) + 1:][:stride])
        if kind == 2:  # Up
            line = bytearray((x + b) & 0xFF for x, b in zip(line, up))
        elif kind:  # Sub, Average, Paeth
            for i in range(stride):
                a, b, c = (line[i - n], up[i], up[i - n]) if i >= n else (0, up[i], 0)
                pa, pb, pc = (abs(a + b - c - v) for v in (a, b, c))
                p = a if kind == 1 else (a + b) >> 1 if kind == 3 else \
                    a if pa <= min(pb, pc) else b if pb <= pc else c
                line[i] = (line[i] + p) & 0xFF
        yield [line[i:i + 3] for i in range(0, stride, n)]
        up = line


work = os.path.abspath(sys.argv[2])
html, png = os.path.join(work, "demo_report.html"), os.path.join(work, "demo_report.png")
os.makedirs(work, exist_ok=True)
[os.remove(stale) for stale in (html, png) if os.path.exists(stale)]
run(os.path.abspath(sys.argv[1]), "demo", "--html", html)
with tempfile.TemporaryDirectory() as scratch:
    chromium(scratch, "--window-size=%d,%d" % (WIDTH, HEIGHT), "--screenshot=" + png,
             "file://" + html)
    dom = chromium(scratch, "--dump-dom", "file://" + html)
check("<script" not in dom.lower(), "the report contains a <script> element")
plots = {p: "".join(re.findall(r'<svg\b[^>]*\bid="%s"[^>]*>.*?</svg>' % p, dom, re.S))
         for p in ("ab-plot", "dl-bars", "spectra")}
polygon = re.search(r'<polygon\b[^>]*class="tolerance"[^>]*\bpoints="([^"]*)"', plots["ab-plot"])
points = len(polygon.group(1).split()) if polygon else 0
markers = len(re.findall(r'class="trial (?:pass|fail)"', plots["ab-plot"]))
bars = len(re.findall(r'class="bar (?:pass|fail|rejected)"', plots["dl-bars"]))
curves = len(re.findall(r'<path\b[^>]*class="curve (?:standard|trial)"', plots["spectra"]))
print("DOM: polygon of %d points, %d markers, %d bars, %d curves" % (points, markers, bars, curves))
check(points >= 8 and 1 <= markers <= bars < curves, "plots missing or incomplete")
ink = coloured = inked_rows = 0
with open(png, "rb") as f:
    for row in pixels(f.read()):
        inked = [p for p in row if min(p) < 235]
        ink, inked_rows = ink + len(inked), inked_rows + bool(inked)
        # Saturated pixels come from the plots and the pass/fail colouring, not from text.
        coloured += sum(1 for p in inked if max(p) - min(p) > 80)
print("screenshot: %d non-white pixels, %d saturated, %d rows with ink"
      % (ink, coloured, inked_rows))
check(ink >= 0.01 * WIDTH * HEIGHT and coloured >= 2000 and inked_rows >= 0.3 * HEIGHT,
      "the screenshot is (nearly) blank or its plots were not drawn")
