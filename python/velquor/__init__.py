"""velquor: colour-science calculations for colour quality control, on NumPy arrays.

Every function takes arrays with the component axis last and any batch shape in front:

* spectra ``(..., 40)``: reflectance (or transmittance) in percent at 360, 370, ... 750 nm;
* tristimulus values ``(..., 3)``: X, Y, Z on the scale where the perfect white has Y = 100;
* coordinates ``(..., 5)``: lightness, first axis, second axis, chroma, hue in degrees
  (``(..., 3)`` is accepted where chroma and hue can be derived);
* difference records ``(..., 7)``: three rectangular differences, the lightness, chroma and
  hue terms, and the total, trial minus standard, limited to -999.99 ... 999.99.

Inputs broadcast against each other in the NumPy way, so one standard serves many trials.
Illuminants are named by their short code ("D65", "A", "CWF", "T84", ...) or index 0-16,
observers by 2 or 10 (degrees), difference systems by name ("cielab", "cmc", "cie94",
"cie2000", "din99", ...) or code. Values that are absent or cannot be computed are the
library's missing value 1e-05 (``velquor.MISSING``; test with ``velquor.is_missing``); the
calculations themselves never raise. Wrong shapes raise ValueError, unknown names KeyError.
"""

import math
import os
import re

import numpy as np

from . import _velquor

__license__ = "MIT"

__all__ = [
    "MISSING", "is_missing", "version", "string", "set_batch_threads", "batch_threads", "illuminants", "illuminant_index",
    "observer_code", "system_code", "weight_table", "white_point", "xyz", "lab", "luv",
    "hunter_lab", "din99", "chroma_hue", "difference", "delta_e", "difference_labels",
    "whiteness", "yellowness", "tint", "filter_value", "indices", "strength",
    "read_spectra", "map_to_grid", "SPECTRUM_POINTS", "WAVELENGTHS",
]

#: The missing value: a point or result that is absent or could not be computed.
MISSING = 1e-05
#: Points of a spectrum and their wavelengths in nm.
SPECTRUM_POINTS = 40
WAVELENGTHS = np.arange(360, 751, 10)


def is_missing(values):
    """True where a value is the missing value (strictly between 9.99e-06 and 1.001e-05)."""
    values = np.asarray(values, dtype=np.float64)
    return (values > 9.99e-06) & (values < 1.001e-05)


def version():
    """The running library's version, "major.minor.patch"."""
    return _velquor.version()


def set_batch_threads(threads):
    """Sets how many threads the batch functions (xyz, lab, difference, ...) use for large
    inputs: 0 (the default) one per processor, 1 only the calling thread, at most 64. Results
    are the same, bit for bit, at every thread count."""
    _velquor.set_batch_threads(_integer(threads, "threads"))


def batch_threads():
    """The thread count the batch functions use now (0 resolved to the processors, capped)."""
    return _velquor.batch_threads()


def string(id):
    """Text of string ``id`` of the library's string table; KeyError if there is none."""
    id = _integer(id, "string id")
    if id < 0 or id > 0xFFFFFFFF:
        raise KeyError(f"no string {id}")
    text = _velquor.string(id)
    if text is None:
        raise KeyError(f"no string {id}")
    return text


# ---------------------------------------------------------------------------------------------
# Names and codes


def _key(name):
    """A name as looked up: lower case, letters and digits only ("GE-PQS II" -> "gepqsii")."""
    return re.sub(r"[^0-9a-z]", "", name.lower())


def _integer(value, what):
    if isinstance(value, (bool, np.bool_)) or not isinstance(value, (int, np.integer)):
        raise TypeError(f"{what} must be an integer, not {type(value).__name__}")
    return int(value)


_ILLUMINANT_CODES = tuple(_velquor.illuminant_codes())
_ILLUMINANT_NAMES = tuple(_velquor.illuminant_names())
_ILLUMINANTS = {_key(code): index for index, code in enumerate(_ILLUMINANT_CODES)}
# The CIE names of the fluorescent lamps that the catalogue lists under trade names.
_ILLUMINANTS.update({"f2": 3, "f11": 4, "tl84": 4, "f12": 9, "wwf": 16})


def illuminants():
    """The illuminants with a weighting table: a list of (index, short code, long name)."""
    return [(i, c, n) for i, (c, n) in enumerate(zip(_ILLUMINANT_CODES, _ILLUMINANT_NAMES))]


def illuminant_index(illuminant):
    """Index 0-16 of an illuminant given by short code ("D65", "F11", ...) or index."""
    if isinstance(illuminant, str):
        try:
            return _ILLUMINANTS[_key(illuminant)]
        except KeyError:
            raise KeyError(f"unknown illuminant {illuminant!r}; known: "
                           f"{', '.join(_ILLUMINANT_CODES)}") from None
    index = _integer(illuminant, "illuminant")
    if not 0 <= index < len(_ILLUMINANT_CODES):
        raise ValueError(f"illuminant index {index} outside 0..{len(_ILLUMINANT_CODES) - 1}")
    return index


def observer_code(observer):
    """Library code of an observer given in degrees: 2 (CIE 1931) -> 0, 10 (CIE 1964) -> 1."""
    if isinstance(observer, str):
        key = observer.strip().rstrip("°").strip()
        if key in ("2", "10"):
            return 0 if key == "2" else 1
        raise KeyError(f"unknown observer {observer!r}; use 2 or 10")
    degrees = _integer(observer, "observer")
    if degrees not in (2, 10):
        raise ValueError(f"observer must be 2 or 10 (degrees), not {degrees}")
    return 0 if degrees == 2 else 1


_SYSTEMS = {
    0: ("cielab", "lab", "cie76", "de76", "deltaeab"),
    1: ("cmc",),
    2: ("hunter", "hunterlab"),
    3: ("fmc2", "fmcii"),
    4: ("cie94", "de94"),
    5: ("cielch", "lch"),
    6: ("cieluv", "luv"),
    7: ("ciexyzyxy", "xyzyxy", "xyz", "yxy"),
    8: ("gepqsii", "gepqs2", "pqs"),
    9: ("audi", "audilab"),
    10: ("din99",),
    11: ("cie2000", "ciede2000", "de2000", "de00"),
    12: ("din6175",),
    100: ("chromaticity", "xy"),
}
_SYSTEM_CODES = {name: code for code, names in _SYSTEMS.items() for name in names}
# Systems that compare tristimulus values only, and the one that needs both forms.
_XYZ_SYSTEMS = (3, 8, 100)
_XYZ_AND_COORDINATE_SYSTEMS = (7,)


def system_code(system):
    """Code of a difference system given by name ("cie2000", "CMC", ...) or code (0-12, 100)."""
    if isinstance(system, str):
        try:
            return _SYSTEM_CODES[_key(system)]
        except KeyError:
            names = ", ".join(names[0] for names in _SYSTEMS.values())
            raise KeyError(f"unknown difference system {system!r}; known: {names}") from None
    code = _integer(system, "system")
    if code not in _SYSTEMS:
        raise ValueError(f"difference system code {code} is not one of 0..12, 100")
    return code


def _pair(illuminant, observer):
    return illuminant_index(illuminant), observer_code(observer)


# ---------------------------------------------------------------------------------------------
# Shapes and broadcasting


def _components(values, width, what, widths=None):
    """`values` as a float64 array whose last axis holds `width` (or one of `widths`) values."""
    array = np.asarray(values, dtype=np.float64)
    allowed = widths or (width,)
    if array.ndim == 0 or array.shape[-1] not in allowed:
        expected = " or ".join(f"(..., {w})" for w in allowed)
        raise ValueError(f"{what} must have shape {expected}; got {array.shape}")
    return array


def _rows(array):
    return array.reshape(-1, array.shape[-1])


def _broadcast(*arrays):
    """The common batch shape of arrays (component axis last) and each as (rows, width):
    arrays already of the batch shape keep all their rows, a single row stays one row (the
    compiled loops read it for every pair) and anything else is broadcast out."""
    try:
        batch = np.broadcast_shapes(*(a.shape[:-1] for a in arrays))
    except ValueError:
        shapes = ", ".join(str(a.shape) for a in arrays)
        raise ValueError(f"batch shapes do not broadcast: {shapes}") from None
    tables = []
    for a in arrays:
        if a.shape[:-1] == batch:
            tables.append(_rows(a))
        elif math.prod(a.shape[:-1]) == 1:
            tables.append(a.reshape(1, a.shape[-1]))
        else:
            tables.append(_rows(np.broadcast_to(a, batch + a.shape[-1:])))
    return batch, tables


def _shaped(result, batch, width=None):
    shape = batch if width is None else batch + (width,)
    out = result.reshape(shape)
    return out[()] if out.ndim == 0 else out


# ---------------------------------------------------------------------------------------------
# Colorimetry


def weight_table(illuminant="D65", observer=10):
    """The (3, 40) tristimulus weighting table (ASTM E308 kind, 10 nm, 360-750 nm) of a pair:
    rows X, Y, Z. The Y row sums to 100, so ``spectra @ table.T * 0.01`` gives XYZ of spectra
    in percent."""
    table = _velquor.weight_table(*_pair(illuminant, observer))
    if table is None:
        raise KeyError(f"no weighting table for {illuminant!r}/{observer}")
    return table


def white_point(illuminant="D65", observer=10):
    """White point (Xn, Yn = 100, Zn) of an illuminant and observer, from its weighting table."""
    white = _velquor.white_point(*_pair(illuminant, observer))
    if white is None:
        raise KeyError(f"no white point for {illuminant!r}/{observer}")
    return white


def xyz(spectra, illuminant="D65", observer=10):
    """CIE tristimulus values (ASTM E308 weighted summation, CIE 15:2004) of spectra.

    spectra: ``(..., 40)`` reflectance or transmittance in percent, 360-750 nm in 10 nm steps.
    Returns ``(..., 3)`` X, Y, Z on the scale where 100 % everywhere gives Y = 100. A spectrum
    whose first point (360 nm) is missing gives the missing triple."""
    spectra = _components(spectra, SPECTRUM_POINTS, "spectra")
    return _velquor.xyz(_rows(spectra), *_pair(illuminant, observer)).reshape(
        spectra.shape[:-1] + (3,))


def lab(xyz, illuminant="D65", observer=10, white=None):
    """CIELAB (CIE 15:2004) of tristimulus values: ``(..., 3)`` -> ``(..., 5)`` L*, a*, b*,
    C*ab, hab (degrees). The white point is that of the illuminant and observer unless
    ``white`` (Xn, Yn, Zn) is given. Uses the library's rounded breakpoint 0.008856 and slope
    7.787. Missing inputs give missing records."""
    xyz = _components(xyz, 3, "xyz")
    if white is not None:
        white = _components(white, 3, "white")
        if white.shape != (3,):
            raise ValueError(f"white must have shape (3,); got {white.shape}")
    out = _velquor.lab(_rows(xyz), *_pair(illuminant, observer), white)
    return out.reshape(xyz.shape[:-1] + (5,))


def luv(xyz, illuminant="D65", observer=10):
    """CIELUV (CIE 15:2004) of tristimulus values: ``(..., 3)`` -> ``(..., 5)`` L*, u*, v*,
    C*uv, huv (degrees)."""
    xyz = _components(xyz, 3, "xyz")
    return _velquor.luv(_rows(xyz), *_pair(illuminant, observer)).reshape(
        xyz.shape[:-1] + (5,))


def hunter_lab(xyz, illuminant="D65", observer=10):
    """Hunter L, a, b (Hunter 1958; the white-point form for every pair but C/2°, which uses
    the classic rounded ratios): ``(..., 3)`` -> ``(..., 3)``. Y must be positive."""
    xyz = _components(xyz, 3, "xyz")
    return _velquor.hunter_lab(_rows(xyz), *_pair(illuminant, observer)).reshape(xyz.shape)


def din99(lab, kch=1.0, ke=1.0):
    """DIN99 coordinates (DIN 6176) of CIELAB L*, a*, b* (``(..., 3)`` or ``(..., 5)``; only
    the first three are read) -> ``(..., 5)`` L99, a99, b99, C99, h99 (degrees), with the
    weights kCH and kE of the DIN99 difference."""
    lab = _components(lab, 3, "lab", widths=(3, 5))[..., :3]
    return _velquor.din99(_rows(np.ascontiguousarray(lab)), float(kch), float(ke)).reshape(
        lab.shape[:-1] + (5,))


def chroma_hue(ab):
    """Chroma sqrt(a² + b²) and hue angle in degrees [0, 360) of ``(..., 2)`` pairs (a, b)
    of any opponent space; returns ``(..., 2)``."""
    ab = _components(ab, 2, "ab")
    return _velquor.chroma_hue(_rows(ab)).reshape(ab.shape)


# ---------------------------------------------------------------------------------------------
# Colour difference


def _weights(weights):
    if weights is None:
        return (1.0, 1.0, 1.0)
    values = [float(w) for w in np.atleast_1d(np.asarray(weights, dtype=np.float64))]
    if not 1 <= len(values) <= 3:
        raise ValueError(f"weights must hold one to three numbers; got {len(values)}")
    return tuple(values + [1.0] * (3 - len(values)))


def _difference(std, trials, system, weights, parameter, std_xyz, trial_xyz, illuminant,
                observer, total_only):
    code = system_code(system)
    pair = _pair(illuminant, observer)
    if (std_xyz is None) != (trial_xyz is None):
        raise ValueError("give std_xyz and trial_xyz together")
    if code in _XYZ_SYSTEMS:
        if std_xyz is not None:
            raise ValueError(f"system {system!r} compares tristimulus values: pass them as "
                             "std and trials, without std_xyz/trial_xyz")
        arrays = [_components(std, 3, "std (X, Y, Z)"), _components(trials, 3, "trials (X, Y, Z)")]
        forms = (None, None, 0, 1)
    else:
        arrays = [_components(std, 5, "std", widths=(3, 5)),
                  _components(trials, 5, "trials", widths=(3, 5))]
        forms = (0, 1, None, None)
        if code in _XYZ_AND_COORDINATE_SYSTEMS and std_xyz is None:
            raise ValueError(f"system {system!r} also needs std_xyz and trial_xyz")
        if std_xyz is not None:
            arrays += [_components(std_xyz, 3, "std_xyz"), _components(trial_xyz, 3, "trial_xyz")]
            forms = (0, 1, 2, 3)
    batch, tables = _broadcast(*arrays)
    width = None if total_only else 7
    if math.prod(batch) == 0:
        return np.empty(batch if total_only else batch + (7,))
    args = [None if f is None else tables[f] for f in forms]
    out = _velquor.difference(*args, code, *pair, _weights(weights), float(parameter),
                              total_only)
    return _shaped(out, batch, width)


def difference(std, trials, system="cie2000", weights=(1, 1, 1), parameter=1.0, *,
               std_xyz=None, trial_xyz=None, illuminant="D65", observer=10):
    """Colour difference of trials from standards: the seven-slot records ``(..., 7)``.

    std, trials: coordinates ``(..., 5)`` (or ``(..., 3)``: chroma and hue are derived) of the
    system's colour space -- CIELAB for cielab, cmc, cie94, cielch, xyz/yxy, audi, cie2000 and
    din6175; CIELUV for cieluv; DIN99 for din99; Hunter Lab for hunter -- or X, Y, Z
    ``(..., 3)`` for the systems on tristimulus values (fmc2, gepqsii, chromaticity). They
    broadcast against each other. Slots: dL, da, db; the lightness, chroma and hue terms
    (weighted in CMC, CIE94, CIEDE2000, DIN 6175-2); the total. Differences are trial minus
    standard, limited to -999.99 ... 999.99.

    weights: CMC (l, c), CIE94 and CIEDE2000 (kL, kC, kH), DIN 6175-2 (gL, gC, gH).
    parameter: the viewing angle of the angle-dependent system, p of DIN 6175-2.
    std_xyz, trial_xyz: tristimulus values, needed by the CIE XYZ/Yxy system; with them a
    sample whose XYZ is missing gives a missing record. Without them a sample whose L, a or b
    is missing does. illuminant, observer: read by GE-PQS II only."""
    return _difference(std, trials, system, weights, parameter, std_xyz, trial_xyz,
                       illuminant, observer, total_only=False)


def delta_e(std, trials, system="cie2000", weights=(1, 1, 1), parameter=1.0, *,
            std_xyz=None, trial_xyz=None, illuminant="D65", observer=10):
    """The total colour difference (slot 7 of :func:`difference`) as an array of the batch
    shape, e.g. ``delta_e(std, trials, "cie2000")`` for CIEDE2000 (CIE 142-2001)."""
    return _difference(std, trials, system, weights, parameter, std_xyz, trial_xyz,
                       illuminant, observer, total_only=True)


# System k owns strings 2368 + 16 k ...; offset 4 lists its difference columns and the total.
_DIFFERENCE_STRING_BASE = 2368
_DIFFERENCE_STRINGS_PER_SYSTEM = 16
_DIFFERENCE_COLUMNS = 4


def difference_labels(system):
    """Column labels of a system's differences, ending with its total ("ΔE*ab", ...)."""
    code = system_code(system)
    if code == 100:
        raise KeyError("the chromaticity mode has no labels")
    text = _velquor.string(_DIFFERENCE_STRING_BASE + _DIFFERENCE_STRINGS_PER_SYSTEM * code +
                           _DIFFERENCE_COLUMNS)
    return text.split("|") if text else []


# ---------------------------------------------------------------------------------------------
# Indices


_INDEX_TABLE = [(kind, name) for kind, name in _velquor.index_table()]
_INDEX_ENTRIES = {(kind, _key(name)): n for n, (kind, name) in enumerate(_INDEX_TABLE)}


def indices():
    """The indices offered, as (kind, name) pairs; "(R)" marks a recalculated flavour."""
    return list(_INDEX_TABLE)


def _index(kind, xyz, method, illuminant, observer):
    entry = _INDEX_ENTRIES.get((kind, _key(method)))
    if entry is None:
        names = ", ".join(name for k, name in _INDEX_TABLE if k == kind)
        raise KeyError(f"unknown {kind} index {method!r}; known: {names}")
    xyz = _components(xyz, 3, "xyz")
    return _shaped(_velquor.index(_rows(xyz), entry, *_pair(illuminant, observer)),
                   xyz.shape[:-1])


def catalogue_index(xyz, name, illuminant="D65", observer=10):
    """Any index computed from tristimulus values ``(..., 3)`` -> ``(...)``, by its catalogue
    short name as the command-line tool and hosts show it: "WI CIE", "YI E313-73 (R)",
    "Tint CIE", "Dom. Wav.", "Purity", "Rx" ... (case and surrounding blanks ignored)."""
    xyz = _components(xyz, 3, "xyz")
    return _shaped(_velquor.catalogue_index(_rows(xyz), name, *_pair(illuminant, observer)),
                   xyz.shape[:-1])


def whiteness(xyz, method="CIE", illuminant="D65", observer=10):
    """Whiteness index of tristimulus values ``(..., 3)`` -> ``(...)``: "CIE" (CIE 15:2004),
    "E313-10", "E313-73" (ASTM E313), "Taube", "Berger", "Stensby", "Hunter"; a name with
    "(R)" is the recalculated flavour valid for every pair. The plain formulas give the
    missing value for pairs without published coefficients."""
    return _index("whiteness", xyz, method, illuminant, observer)


def yellowness(xyz, method="E313-10", illuminant="D65", observer=10):
    """Yellowness index: "E313-10", "E313-73" (ASTM E313), "D1925" (ASTM D1925), "DIN6167",
    "DCM", with "(R)" flavours. Positive is yellowish."""
    return _index("yellowness", xyz, method, illuminant, observer)


def tint(xyz, method="CIE", illuminant="D65", observer=10):
    """Tint index: "CIE" (CIE 15:2004), "CIE (R)", "E313-10". Positive is greenish."""
    return _index("tint", xyz, method, illuminant, observer)


def filter_value(xyz, method="Rx", illuminant="D65", observer=10):
    """Tristimulus filter value "Rx" or "Rz" (DIN 5033), in percent."""
    return _index("filter", xyz, method, illuminant, observer)


# ---------------------------------------------------------------------------------------------
# Strength


_STRENGTH_METHODS = {
    "apparent": 0, "chromaticmaxabsorption": 1, "chromatic": 1, "chromaticuserwavelength": 2,
    "pseudotristimulus": 3, "pseudotristimulusx": 4, "pseudotristimulusy": 5,
    "pseudotristimulusz": 6, "tristimulus": 7, "tristimulusx": 8, "tristimulusy": 9,
    "tristimulusz": 10, "whendl0": 11, "baseapparent": 12, "basechromaticmaxabsorption": 13,
    "basechromaticuserwavelength": 14,
}


def strength(std, batch, method="apparent", illuminant="D65", observer=10, *,
             absorbance=False, k1=None, k2=None, wavelength=500, return_wavelength=False):
    """Colour strength in percent (100 = as strong as the standard) of batch spectra against
    standard spectra, both ``(..., 40)`` in percent; they broadcast.

    method: "apparent" (K/S summed over 420-680 nm), "chromatic_max_absorption",
    "chromatic_user_wavelength" (at ``wavelength`` nm), "pseudo_tristimulus[_x|_y|_z]",
    "tristimulus[_x|_y|_z]", "when_dL_0", "base_apparent", "base_chromatic_..." or code 0-14.
    K/S is Kubelka-Munk; ``absorbance`` uses the optical density instead; k1, k2 switch on the
    Saunderson correction. With ``return_wavelength`` also returns the wavelength (nm) used by
    the chromatic methods."""
    if isinstance(method, str):
        code = _STRENGTH_METHODS.get(_key(method))
        if code is None:
            raise KeyError(f"unknown strength method {method!r}; known: "
                           f"{', '.join(_STRENGTH_METHODS)}")
    else:
        code = _integer(method, "method")
        if not 0 <= code <= 14:
            raise ValueError(f"strength method code {code} outside 0..14")
    std = _components(std, SPECTRUM_POINTS, "std")
    batch = _components(batch, SPECTRUM_POINTS, "batch")
    shape, (s, b) = _broadcast(std, batch)
    if math.prod(shape) == 0:
        empty = np.empty(shape)
        return (empty, np.empty(shape, dtype=int)) if return_wavelength else empty
    values, used = _velquor.strength(s, b, code, *_pair(illuminant, observer),
                                     bool(absorbance), k1, k2, _integer(wavelength, "wavelength"))
    if return_wavelength:
        return _shaped(values, shape), _shaped(used, shape)
    return _shaped(values, shape)


# ---------------------------------------------------------------------------------------------
# Measurement files and the spectral grid


def read_spectra(path, format=None, scale="auto", *, text=None):
    """Reads a CGATS.17 or CSV file of measured spectra and maps them onto the library's grid.

    format: "cgats" or "csv"; by default from the file name (".csv" is CSV, anything else
    CGATS). scale: "auto" (values above 2 mean percent), "fraction" or "percent". With
    ``text`` the file's content is given as a string and ``path`` only names it in messages.
    Returns a dict: "spectra" ``(n, 40)`` in percent at 360-750 nm (Sprague interpolation
    after CIE 167:2005 where the file's grid is coarser or offset, the nearest value repeated
    outside the measured range; missing values stay missing), "labels" (sample names),
    "wavelengths" and "values" as measured, "field_names" and "fields" (the non-spectral
    columns as text), "scale" and "mapping" (how the values were read and mapped) and
    "notes" ((line, text) pairs). A file that cannot be read raises FileNotFoundError or
    ValueError with the file and line."""
    path = os.fspath(path)
    if format is None:
        format = "csv" if path.lower().endswith(".csv") else "cgats"
    format = format.lower()
    if format not in ("cgats", "csv"):
        raise KeyError(f"unknown file format {format!r}; use 'cgats' or 'csv'")
    if text is None and not os.path.isfile(path):
        raise FileNotFoundError(path)
    return _velquor.read_spectra(path, format, scale, text)


def map_to_grid(wavelengths, values, scale="percent"):
    """Spectra measured at ``wavelengths`` (nm, strictly monotonic, reaching into 360-750 nm)
    onto the library's grid: ``values`` ``(..., len(wavelengths))`` -> ``(..., 40)`` percent.
    scale: "percent" or "fraction" (values multiplied by 100). Interpolation as
    :func:`read_spectra`; a wavelength set the mapping refuses raises ValueError."""
    wavelengths = [float(w) for w in np.atleast_1d(np.asarray(wavelengths, dtype=np.float64))]
    factor = {"percent": 1.0, "fraction": 100.0}.get(scale)
    if factor is None:
        raise KeyError(f"unknown scale {scale!r}; use 'percent' or 'fraction'")
    values = _components(values, len(wavelengths), "values")
    return _velquor.map_to_grid(wavelengths, _rows(values), factor).reshape(
        values.shape[:-1] + (SPECTRUM_POINTS,))
