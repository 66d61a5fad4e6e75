#!/usr/bin/python3
"""Renders the HTML QC report of `velquor demo --html` in headless Chromium and checks that the
page and its plots were drawn: the screenshot is not blank and holds coloured plot marks, and the
rendered DOM holds the three SVG plots with their tolerance polygon, markers, bars and curves.

usage: render_html_report.py VELQUOR_EXECUTABLE [WORK_DIR]

The report and the screenshot stay in WORK_DIR (default: a temporary folder) for inspection.
Uses only the Python standard library; the PNG is decoded with zlib. Needs the Debian package
`chromium` (tools/dev installs it); the environment variable VELQUOR_CHROMIUM names another
binary.
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
TIMEOUT = 180  # seconds per Chromium run; a cold start on a busy machine can take a while


def fail(message):
    print("FAIL: " + message, file=sys.stderr)
    sys.exit(1)


def find_chromium():
    named = os.environ.get("VELQUOR_CHROMIUM")
    if named:
        return named if shutil.which(named) else None
    return shutil.which("chromium") or (
        "/usr/bin/chromium" if os.access("/usr/bin/chromium", os.X_OK) else None)


def chromium_env(home):
    """The caller's environment without sanitizer settings (Chromium is not instrumented) and
    with a private home, so nothing is written to the user's profile."""
    env = {k: v for k, v in os.environ.items()
           if not k.endswith("SAN_OPTIONS") and k != "LD_PRELOAD"}
    env.update(HOME=home, XDG_CONFIG_HOME=os.path.join(home, ".config"),
               XDG_CACHE_HOME=os.path.join(home, ".cache"))
    return env


def run_chromium(chromium, scratch, extra, url):
    profile = tempfile.mkdtemp(prefix="profile-", dir=scratch)
    command = [chromium, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
               "--no-first-run", "--no-default-browser-check", "--disable-extensions",
               "--disable-dev-shm-usage", "--force-device-scale-factor=1",
               "--user-data-dir=" + profile] + extra + [url]
    try:
        return subprocess.run(command, capture_output=True, timeout=TIMEOUT,
                              env=chromium_env(scratch), check=False)
    except subprocess.TimeoutExpired:
        fail("chromium did not finish within %d s: %s" % (TIMEOUT, " ".join(command)))


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    if pa <= pb and pa <= pc:
        return a
    return b if pb <= pc else c


def decode_png(data):
    """(width, height, channels, rows) of an 8-bit RGB or RGBA PNG without interlacing."""
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        fail("screenshot is not a PNG file")
    pos, idat, header = 8, [], None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat.append(body)
        elif kind == b"IEND":
            break
        pos += 12 + length
    if header is None:
        fail("PNG without IHDR")
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace != 0:
        fail("unexpected PNG format: depth %d, colour type %d, interlace %d"
             % (depth, colour, interlace))
    channels = 3 if colour == 2 else 4
    raw = zlib.decompress(b"".join(idat))
    stride = width * channels
    rows, previous = [], bytearray(stride)
    for y in range(height):
        start = y * (stride + 1)
        kind, line = raw[start], bytearray(raw[start + 1:start + 1 + stride])
        if kind == 1:  # Sub
            for i in range(channels, stride):
                line[i] = (line[i] + line[i - channels]) & 0xFF
        elif kind == 2:  # Up
            line = bytearray((a + b) & 0xFF for a, b in zip(line, previous))
        elif kind == 3:  # Average
            for i in range(stride):
                left = line[i - channels] if i >= channels else 0
                line[i] = (line[i] + ((left + previous[i]) >> 1)) & 0xFF
        elif kind == 4:  # Paeth
            for i in range(stride):
                left = line[i - channels] if i >= channels else 0
                upper_left = previous[i - channels] if i >= channels else 0
                line[i] = (line[i] + paeth(left, previous[i], upper_left)) & 0xFF
        elif kind != 0:
            fail("unknown PNG filter %d in row %d" % (kind, y))
        rows.append(line)
        previous = line
    return width, height, channels, rows


def check_screenshot(path):
    with open(path, "rb") as f:
        width, height, channels, rows = decode_png(f.read())
    if (width, height) != (WIDTH, HEIGHT):
        fail("screenshot is %dx%d, expected %dx%d" % (width, height, WIDTH, HEIGHT))
    ink = coloured = 0
    inked_rows = 0
    for line in rows:
        row_ink = 0
        for i in range(0, len(line), channels):
            r, g, b = line[i], line[i + 1], line[i + 2]
            if r < 235 or g < 235 or b < 235:
                row_ink += 1
                # Saturated pixels come from the plots' markers, bars and curves and the
                # pass/fail colouring, not from black or grey text.
                if max(r, g, b) - min(r, g, b) > 80:
                    coloured += 1
        ink += row_ink
        inked_rows += row_ink > 0
    total = width * height
    print("screenshot %dx%d: %.1f %% non-white pixels, %d saturated pixels, %d rows with ink"
          % (width, height, 100.0 * ink / total, coloured, inked_rows))
    if ink < 0.01 * total:
        fail("the screenshot is (nearly) blank: %d non-white pixels" % ink)
    if coloured < 2000:
        fail("the screenshot has only %d saturated pixels: the plots were not drawn" % coloured)
    if inked_rows < 0.3 * height:
        fail("only %d of %d rows hold anything" % (inked_rows, height))


def svg_element(dom, plot_id):
    match = re.search(r'<svg\b[^>]*\bid="%s"[^>]*>.*?</svg>' % plot_id, dom, re.S)
    if not match:
        fail('the rendered DOM has no <svg id="%s">' % plot_id)
    return match.group(0)


def check_dom(dom):
    if "<script" in dom.lower():
        fail("the report contains a <script> element")
    ab = svg_element(dom, "ab-plot")
    bars = svg_element(dom, "dl-bars")
    spectra = svg_element(dom, "spectra")
    polygon = re.search(r'<polygon\b[^>]*class="tolerance"[^>]*\bpoints="([^"]*)"', ab)
    if not polygon:
        fail("the a*b* plot has no tolerance polygon")
    points = len(polygon.group(1).split())
    markers = len(re.findall(r'class="trial (?:pass|fail)"', ab))
    bar_count = len(re.findall(r'class="bar (?:pass|fail|rejected)"', bars))
    curves = len(re.findall(r'<path\b[^>]*class="curve (?:standard|trial)"', spectra))
    print("DOM: tolerance polygon of %d points, %d trial markers, %d bars, %d curves"
          % (points, markers, bar_count, curves))
    if points < 8:
        fail("the tolerance polygon has only %d points" % points)
    if markers < 1 or bar_count < markers or curves < bar_count + 1:
        fail("plots incomplete: %d markers, %d bars, %d curves" % (markers, bar_count, curves))


def main():
    if len(sys.argv) not in (2, 3):
        fail("usage: render_html_report.py VELQUOR_EXECUTABLE [WORK_DIR]")
    velquor = os.path.abspath(sys.argv[1])
    chromium = find_chromium()
    if not chromium:
        fail("chromium not found: install the Debian package `chromium` "
             "(`tools/dev test` installs it) or set VELQUOR_CHROMIUM")
    work = os.path.abspath(sys.argv[2]) if len(sys.argv) == 3 else tempfile.mkdtemp()
    os.makedirs(work, exist_ok=True)
    html = os.path.join(work, "demo_report.html")
    png = os.path.join(work, "demo_report.png")
    for stale in (html, png):
        if os.path.exists(stale):
            os.remove(stale)

    result = subprocess.run([velquor, "demo", "--html", html], capture_output=True, timeout=120,
                            check=False)
    if result.returncode != 0 or not os.path.isfile(html):
        fail("velquor demo --html exited with %d:\n%s" % (result.returncode,
                                                          result.stderr.decode(errors="replace")))
    url = "file://" + html

    with tempfile.TemporaryDirectory(prefix="velquor-chromium-") as scratch:
        shot = run_chromium(chromium, scratch, ["--window-size=%d,%d" % (WIDTH, HEIGHT),
                                                "--screenshot=" + png], url)
        if shot.returncode != 0 or not os.path.isfile(png):
            fail("chromium --screenshot exited with %d:\n%s"
                 % (shot.returncode, shot.stderr.decode(errors="replace")[-3000:]))
        dump = run_chromium(chromium, scratch, ["--dump-dom"], url)
        if dump.returncode != 0:
            fail("chromium --dump-dom exited with %d:\n%s"
                 % (dump.returncode, dump.stderr.decode(errors="replace")[-3000:]))

    check_dom(dump.stdout.decode("utf-8", errors="replace"))
    check_screenshot(png)
    print("rendered %s -> %s" % (html, png))


if __name__ == "__main__":
    main()
