"""Tests of the Python module: shapes and broadcasting, names, errors, and agreement with
published data and hand calculations."""

from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest

import velquor as vq

NM = vq.WAVELENGTHS
close = np.testing.assert_allclose
equal = np.testing.assert_array_equal

# Sharma, Wu and Dalal (2005), CIEDE2000 test data: 14 pairs at the four decimals published.
REFERENCE = Path(__file__).resolve().parents[2] / "tests" / "data" / "reference"
SHARMA_PAIRS = np.loadtxt([line for line in (REFERENCE / "python_sharma_ciede2000.csv").read_text()
                           .splitlines() if line[:1].isdigit()], delimiter=",")


def spectra_sample(count, seed=7):
    """Smooth reflectance curves in percent, 5 % to 95 %."""
    rng = np.random.default_rng(seed)
    centre, width = rng.uniform(0.0, 1.0, (count, 1)), rng.uniform(0.1, 0.5, (count, 1))
    return 5.0 + 90.0 * np.exp(-((np.linspace(0.0, 1.0, 40) - centre) / width) ** 2)



def test_white_point_of_d65_10():
    # ASTM E308 table 6 white of D65 / 10 degree, as the library's weighting table holds it.
    close(vq.white_point("D65", 10), [94.811, 100.0, 107.304], rtol=0, atol=5e-4)


@pytest.mark.parametrize("observer", [2, 10])
@pytest.mark.parametrize("illuminant", range(17))
def test_perfect_white_integrates_to_the_white_point(illuminant, observer):
    white = vq.xyz(np.full(40, 100.0), illuminant, observer)
    close(white, vq.white_point(illuminant, observer), rtol=1e-12)


def test_xyz_is_the_weighted_sum_of_the_table_for_any_layout():
    spectra = spectra_sample(50).reshape(5, 10, 40)
    table = vq.weight_table("A", 2)
    assert table.shape == (3, 40)
    close(vq.xyz(spectra, "A", 2), spectra @ table.T * 0.01, rtol=1e-12)
    # Strided and integer input read as their contiguous float equivalents.
    wide = np.zeros((8, 80))
    wide[:, ::2] = spectra[0, :8]
    equal(vq.xyz(wide[:, ::2]), vq.xyz(spectra[0, :8]))
    close(vq.xyz(np.full((2, 40), 50, np.int32)), vq.xyz(np.full((2, 40), 50.0)))


def test_missing_inputs_give_missing_records():
    spectra = spectra_sample(2)
    spectra[1, 0] = vq.MISSING
    out = vq.xyz(spectra)
    assert not vq.is_missing(out[0]).any() and vq.is_missing(out[1]).all()
    out = vq.lab([vq.MISSING, 50.0, 50.0])
    assert out.shape == (5,) and vq.is_missing(out).all()
    assert vq.is_missing(vq.difference([vq.MISSING, 0.0, 0.0], [50.0, 1.0, 1.0], "cmc")).all()


def test_lab_of_white_and_mid_grey_and_by_explicit_white():
    white = vq.white_point("D50", 2)
    # Y / Yn = (66/116)^3 gives L* = 50 exactly (hand calculation), a* = b* = 0 on the grey axis.
    out = vq.lab(np.stack([white, white * (66.0 / 116.0) ** 3]), "D50", 2)
    assert out.shape == (2, 5)
    close(out[:, 0], [100.0, 50.0], rtol=1e-9)
    close(out[:, 1:4], 0.0, atol=1e-9)
    xyz = vq.xyz(spectra_sample(6), "F11", 10)
    equal(vq.lab(xyz, "T84", 10), vq.lab(xyz, white=vq.white_point("F11", 10)))


def test_din99_and_chroma_hue():
    # DIN99 of a neutral: L99 = 105.51 ln(1 + 0.0158 L*) (DIN 6176), no chroma.
    out = vq.din99([[50.0, 0.0, 0.0]])
    close(out[0, 0], 105.51 * np.log(1 + 0.0158 * 50.0), rtol=1e-12)
    close(out[0, 3], 0.0, atol=1e-12)
    ch = vq.chroma_hue([[3.0, 4.0], [0.0, -2.0]])
    close(ch, [[5.0, np.degrees(np.arctan2(4, 3))], [2.0, 270.0]], rtol=1e-9)



def test_ciede2000_sharma_pairs_as_one_batch_in_both_orders():
    std, trial, expected = SHARMA_PAIRS[:, :3], SHARMA_PAIRS[:, 3:6], SHARMA_PAIRS[:, 6]
    close(vq.delta_e(std, trial), expected, atol=5e-5)
    close(vq.delta_e(trial, std), expected, atol=5e-5)  # symmetric in the published data


def test_cielab_difference_record_by_hand():
    # dL = 3, da = 4, db = 0: dE = 5; dC = 4 (chroma 0 -> 4), dH = 0.
    rec = vq.difference([50.0, 0.0, 0.0], [53.0, 4.0, 0.0], "CIE L*a*b*")
    close(rec, [3.0, 4.0, 0.0, 3.0, 4.0, 0.0, 5.0], atol=1e-12)


def test_one_standard_broadcasts_against_many_trials():
    std = np.array([50.0, 10.0, -20.0])
    trials = std + np.random.default_rng(3).normal(0.0, 3.0, (4, 6, 3))
    many = vq.difference(std, trials, "cmc", (2, 1))
    assert many.shape == (4, 6, 7)
    equal(many, vq.difference(np.broadcast_to(std, trials.shape).copy(), trials, "cmc", (2, 1)))
    for i, j in [(0, 0), (3, 5)]:
        equal(many[i, j], vq.difference(std, trials[i, j], "cmc", (2, 1)))
    # Batch shapes that broadcast in two directions, (4, 1) against (1, 6).
    cross = vq.delta_e(trials[:, :1], trials[:1, :], "cie94")
    assert cross.shape == (4, 6)
    assert cross[2, 3] == vq.delta_e(trials[2, 0], trials[0, 3], "cie94")
    # A single pair gives a scalar; empty batches stay empty.
    assert np.ndim(vq.delta_e([50, 0, 0], [51, 0, 0])) == 0
    assert vq.delta_e([50, 0, 0], np.zeros((0, 3))).shape == (0,)
    assert vq.difference([50, 0, 0], np.zeros((2, 0, 3))).shape == (2, 0, 7)


def test_weights_reach_the_formula_and_three_coordinates_are_completed():
    # A pure lightness difference: the CIEDE2000 total is |dL| / (kL SL), so kL = 2 halves it.
    std, trial = [50.0, 0.0, 0.0], [52.0, 0.0, 0.0]
    one = vq.delta_e(std, trial, "cie2000", (1, 1, 1))
    assert vq.delta_e(std, trial, "cie2000", (2, 1, 1)) == pytest.approx(one / 2, rel=1e-12)
    assert vq.delta_e(std, trial, "cie2000", None) == one
    # Three coordinates are completed with the chroma and hue CIELAB itself stores.
    full = vq.lab(vq.xyz(spectra_sample(2)))
    for system in ("cie2000", "cmc", "cie94", "din6175"):
        equal(vq.difference(full[0], full[1], system),
              vq.difference(full[0, :3], full[1, :3], system))


def test_tristimulus_systems_take_xyz():
    # Chromaticity mode: slots 1-2 are the trial's x, y; equal X, Y, Z give x = y = 1/3.
    rec = vq.difference([[40.0, 50.0, 60.0]] * 2, [[20.0, 20.0, 20.0], [10.0, 30.0, 60.0]],
                             "chromaticity")
    close(rec[:, :2], [[1 / 3, 1 / 3], [0.1, 0.3]], rtol=1e-12)
    equal(rec[:, 2:], 0.0)
    assert vq.delta_e([40.0, 50.0, 60.0], [40.0, 50.0, 60.0], "FMC-2") == 0.0
    # XYZ/Yxy needs both forms; its slot 7 stays Delta E*ab.
    xyz = vq.xyz(spectra_sample(2))
    lab = vq.lab(xyz)
    rec = vq.difference(lab[0], lab[1], "xyz/yxy", std_xyz=xyz[0], trial_xyz=xyz[1])
    assert rec[6] == pytest.approx(np.linalg.norm(lab[1, :3] - lab[0, :3]), rel=1e-12)


def test_difference_labels_and_string_table():
    assert vq.difference_labels("cie2000")[-1] == "ΔE00"
    assert vq.difference_labels(0)[-1] == "ΔE*ab"
    assert vq.string(386).startswith("D65|")
    assert [code for _, code, _ in vq.illuminants()][:5] == ["A", "C", "D65", "CWF", "T84"]
    assert vq.version().count(".") == 2


def test_loops_run_in_threads():
    std = np.array([50.0, 10.0, -20.0])
    trials = std + np.random.default_rng(5).normal(0.0, 3.0, (20000, 3))
    expected = vq.delta_e(std, trials)
    with ThreadPoolExecutor(4) as pool:
        for result in pool.map(lambda _: vq.delta_e(std, trials), range(4)):
            equal(result, expected)



@pytest.mark.parametrize("name, index", [
    ("A", 0), ("d65", 2), ("CWF", 3), ("F2", 3), ("T84", 4), ("F11", 4), ("TL84", 4), ("U30", 9),
    ("F4", 16), (16, 16), (np.int64(5), 5)])
def test_illuminant_names(name, index):
    assert vq.illuminant_index(name) == index


@pytest.mark.parametrize("name, code", [
    ("cielab", 0), ("CMC", 1), ("Hunter Lab", 2), ("FMC-2", 3), ("CIE94", 4), ("GE-PQS II", 8),
    ("DIN99", 10), ("CIEDE2000", 11), ("de2000", 11), ("DIN 6175", 12), ("chromaticity", 100),
    (11, 11)])
def test_system_names(name, code):
    assert vq.system_code(name) == code


CGATS_TEXT = "\n".join([
    "CGATS.17", 'ORIGINATOR "velquor tests"', "NUMBER_OF_FIELDS 4", "BEGIN_DATA_FORMAT",
    "SAMPLE_ID SPECTRAL_NM_400 SPECTRAL_NM_500 SPECTRAL_NM_600", "END_DATA_FORMAT",
    "NUMBER_OF_SETS 2", "BEGIN_DATA", "1 10 20 30", '2 40 "" 60', "END_DATA", ""])
Z3 = np.zeros(3)


@pytest.mark.parametrize("call, error", [
    (lambda: vq.illuminant_index("D93"), KeyError), (lambda: vq.observer_code("4°"), KeyError),
    (lambda: vq.illuminant_index(17), ValueError), (lambda: vq.observer_code(5), ValueError),
    (lambda: vq.illuminant_index(True), TypeError), (lambda: vq.string(999999), KeyError),
    (lambda: vq.system_code("cie2001"), KeyError), (lambda: vq.system_code(13), ValueError),
    (lambda: vq.xyz(np.zeros((3, 39))), ValueError), (lambda: vq.xyz(5.0), ValueError),
    (lambda: vq.lab(np.zeros((2, 4))), ValueError),
    (lambda: vq.lab(np.zeros((2, 3)), white=[1, 2]), ValueError),
    (lambda: vq.delta_e(np.zeros((2, 3)), np.zeros((3, 3))), ValueError),
    (lambda: vq.delta_e(np.zeros(4), np.zeros(4)), ValueError),
    (lambda: vq.delta_e(Z3, Z3, weights=(1, 2, 3, 4)), ValueError),
    (lambda: vq.difference(Z3, Z3, "fmc2", std_xyz=Z3 + 1, trial_xyz=Z3 + 1), ValueError),
    (lambda: vq.difference([50, 0, 0], [51, 0, 0], "xyz/yxy"), ValueError),  # no XYZ given
    (lambda: vq.whiteness(np.ones(3), "Ganz"), KeyError),
    (lambda: vq.catalogue_index(np.ones(3), "WI Ganz"), KeyError),
    (lambda: vq.strength(np.ones(40), np.ones(40), "brightest"), KeyError),
    (lambda: vq.read_spectra("/nonexistent/file.cgats"), FileNotFoundError),
    (lambda: vq.read_spectra("x.cgats", text=CGATS_TEXT.replace("SETS 2", "SETS 3")), ValueError),
    (lambda: vq.read_spectra("x.cgats", scale="percentage", text=CGATS_TEXT), ValueError),
    (lambda: vq.read_spectra("x.txt", format="xml", text=""), KeyError),
    (lambda: vq.map_to_grid([400, 400, 500], [1, 2, 3]), ValueError),
    (lambda: vq.map_to_grid([400, 500, 600], [1, 2]), ValueError),
])
def test_errors(call, error):
    with pytest.raises(error):
        call()



def test_white_indices_of_the_perfect_white():
    # CIE whiteness of the computed white is its own Y and its tint 0 (CIE 15:2004); only the
    # recalculated flavour is defined away from D65.
    white, white_a = vq.white_point("D65", 10), vq.white_point("A", 10)
    assert vq.whiteness(white, "CIE") == pytest.approx(100.0, rel=1e-12)
    assert vq.tint(white, "CIE") == pytest.approx(0.0, abs=1e-9)
    assert vq.is_missing(vq.whiteness(white_a, "CIE", "A"))
    assert vq.whiteness(white_a, "CIE (R)", "A") == pytest.approx(100.0, rel=1e-12)
    # An orange is dominant in the yellow-red.
    assert vq.catalogue_index([30.0, 28.0, 12.0], "Dom. Wav.") > 500


@pytest.mark.parametrize("name, kind, method", [
    ("WI CIE", vq.whiteness, "CIE"), ("yi e313-73 (r)", vq.yellowness, "E313-73 (R)"),
    ("Tint CIE", vq.tint, "CIE"), (" Rx ", vq.filter_value, "Rx")])
def test_catalogue_names_reach_the_same_formulas(name, kind, method):
    xyz = np.array([[80.0, 85.0, 90.0], [30.0, 28.0, 12.0]])
    equal(vq.catalogue_index(xyz, name), kind(xyz, method))


def test_yellowness_and_apparent_strength_by_hand():
    # ASTM E313-73, C / 2 degree: YI = 100 (1 - 0.847 Z / Y); Y = 80, Z = 70 gives 25.8875.
    yi = vq.yellowness([[70.0, 80.0, 70.0]] * 3, "E313-73", "C", 2)
    assert yi.shape == (3,)
    close(yi, 100.0 * (1.0 - 0.847 * 70.0 / 80.0), rtol=1e-12)
    # Kubelka-Munk K/S = (1 - R)^2 / 2R: 0.25 at 50 %, 0.3025 / 0.9 at 45 %; flat curves give
    # the ratio of the two at every wavelength.
    batches = np.stack([np.full(40, 50.0), np.full(40, 45.0)])
    got = vq.strength(np.full(40, 50.0), batches, "apparent")
    close(got, [100.0, 100.0 * (0.3025 / 0.9) / 0.25], rtol=1e-9)



def test_read_cgats_text_maps_onto_the_grid():
    got = vq.read_spectra("memory.cgats", text=CGATS_TEXT)
    spectra = got["spectra"]
    assert spectra.shape == (2, 40) and got["labels"] == ["1", "2"]
    # Three bands take the quadratic through them: here the line 10 + 0.1 (nm - 400); outside
    # 400-600 nm the nearest measured value is repeated.
    close(spectra[0], np.clip(10.0 + 0.1 * (NM - 400.0), 10.0, 30.0), rtol=1e-12)
    # The empty value is missing; every grid point inside 400-600 nm leans on it.
    assert vq.is_missing(spectra[1, (NM > 400) & (NM < 600)]).all()
    assert spectra[1, 0] == 40.0 and spectra[1, -1] == 60.0
    assert got["notes"] and "500 nm" in got["notes"][0][1]


def test_read_csv_file_in_fractions():
    path = (Path(__file__).resolve().parents[2] / "tests" / "data" / "samples" /
            "colorchecker_ohta_380_780_5nm.csv")
    got = vq.read_spectra(path)
    assert got["spectra"].shape == (24, 40) and got["labels"][0] == "dark skin"
    # "dark skin" is 0.048 at 380 nm in the file: 4.8 % there and, repeated, at 360 and 370 nm.
    close(got["spectra"][0, :3], 4.8, rtol=1e-12)
    equal(vq.map_to_grid(got["wavelengths"], got["values"], "fraction"), got["spectra"])


def test_map_to_grid_reproduces_a_line_from_offset_bands():
    # Regular 20 nm bands offset from the grid: Sprague interpolation reproduces straight lines.
    bands = np.arange(355.0, 756.0, 20.0)
    grid = vq.map_to_grid(bands, np.stack([20.0 + 0.05 * bands, 80.0 - 0.1 * (bands - 355.0)]))
    close(grid[0], 20.0 + 0.05 * NM, rtol=1e-12)
    close(grid[1], 80.0 - 0.1 * (NM - 355.0), rtol=1e-12)
