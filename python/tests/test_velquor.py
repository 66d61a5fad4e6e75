"""The Python module: shapes, broadcasting, names, errors, published data and hand values."""

from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest

import velquor as vq

NM = vq.WAVELENGTHS
DATA = Path(__file__).resolve().parents[2] / "tests" / "data"
close = np.testing.assert_allclose
equal = np.testing.assert_array_equal
Z3 = np.zeros(3)
# Sharma, Wu and Dalal (2005), CIEDE2000 test data: 14 pairs at the four decimals published.
SHARMA = np.loadtxt([line for line in (DATA / "reference" / "python_sharma_ciede2000.csv")
                     .read_text().splitlines() if line[:1].isdigit()], delimiter=",")
CGATS_TEXT = "\n".join([
    "CGATS.17", 'ORIGINATOR "velquor tests"', "NUMBER_OF_FIELDS 4", "BEGIN_DATA_FORMAT",
    "SAMPLE_ID SPECTRAL_NM_400 SPECTRAL_NM_500 SPECTRAL_NM_600", "END_DATA_FORMAT",
    "NUMBER_OF_SETS 2", "BEGIN_DATA", "1 10 20 30", '2 40 "" 60', "END_DATA", ""])


def spectra_sample(count, seed=7):
    rng = np.random.default_rng(seed)
    centre, width = rng.uniform(0.0, 1.0, (count, 1)), rng.uniform(0.1, 0.5, (count, 1))
    return 5.0 + 90.0 * np.exp(-((np.linspace(0.0, 1.0, 40) - centre) / width) ** 2)


def test_xyz_is_the_weighted_sum_of_the_table_for_any_layout_and_keeps_missing_records():
    for ill, obs in [(i, o) for i in range(17) for o in (2, 10)]:  # the white gives the white
        close(vq.xyz(np.full(40, 100.0), ill, obs), vq.white_point(ill, obs), rtol=1e-12)
    # ASTM E308 table 6 white of D65 / 10 degree, as the library's weighting table holds it.
    close(vq.white_point("D65", 10), [94.811, 100.0, 107.304], rtol=0, atol=5e-4)
    spectra = spectra_sample(50).reshape(5, 10, 40)
    close(vq.xyz(spectra, "A", 2), spectra @ vq.weight_table("A", 2).T * 0.01, rtol=1e-12)
    wide = np.zeros((8, 80))  # strided and integer input read as contiguous floats
    wide[:, ::2] = spectra[0, :8]
    equal(vq.xyz(wide[:, ::2]), vq.xyz(spectra[0, :8]))
    close(vq.xyz(np.full((2, 40), 50, np.int32)), vq.xyz(np.full((2, 40), 50.0)))
    spectra = spectra_sample(2)
    spectra[1, 0] = vq.MISSING
    out = vq.xyz(spectra)
    assert not vq.is_missing(out[0]).any() and vq.is_missing(out[1]).all()
    assert vq.is_missing(vq.lab([vq.MISSING, 50.0, 50.0])).all()
    assert vq.is_missing(vq.difference([vq.MISSING, 0.0, 0.0], [50.0, 1.0, 1.0], "cmc")).all()


def test_batch_threads_change_the_speed_not_the_numbers():
    rng = np.random.default_rng(7)
    spectra = rng.uniform(2.0, 95.0, size=(5000, vq.SPECTRUM_POINTS))
    results = []
    for threads in (1, 2, 8):
        vq.set_batch_threads(threads)
        assert vq.batch_threads() == threads
        results.append(vq.lab(vq.xyz(spectra, "D65", 10), "D65", 10))
    vq.set_batch_threads(100000)
    assert vq.batch_threads() == 64
    vq.set_batch_threads(0)
    assert all(np.array_equal(results[0], r) for r in results[1:])


def test_lab_din99_and_chroma_hue_by_hand():
    # Y / Yn = (66/116)^3 gives L* = 50 exactly, a* = b* = 0 on the grey axis.
    white = vq.white_point("D50", 2)
    close(vq.lab(np.stack([white, white * (66.0 / 116.0) ** 3]), "D50", 2)[:, :4],
          [[100.0, 0, 0, 0], [50.0, 0, 0, 0]], atol=1e-9)
    xyz = vq.xyz(spectra_sample(6), "F11", 10)
    equal(vq.lab(xyz, "T84", 10), vq.lab(xyz, white=vq.white_point("F11", 10)))
    # DIN99 of a neutral: L99 = 105.51 ln(1 + 0.0158 L*) (DIN 6176), no chroma.
    close(vq.din99([[50.0, 0.0, 0.0]])[0, [0, 3]], [105.51 * np.log(1.79), 0.0], atol=1e-12)
    close(vq.chroma_hue([[3.0, 4.0], [0.0, -2.0]]), [[5.0, np.degrees(np.arctan2(4, 3))],
                                                      [2.0, 270.0]], rtol=1e-9)


def test_differences_by_published_data_hand_and_tristimulus_systems():
    close(vq.delta_e(SHARMA[:, :3], SHARMA[:, 3:6]), SHARMA[:, 6], atol=5e-5)
    close(vq.delta_e(SHARMA[:, 3:6], SHARMA[:, :3]), SHARMA[:, 6], atol=5e-5)  # symmetric data
    # dL = 3, da = 4, db = 0: dE = 5; dC = 4 (chroma 0 -> 4), dH = 0.
    close(vq.difference([50.0, 0.0, 0.0], [53.0, 4.0, 0.0], "CIE L*a*b*"),
          [3.0, 4.0, 0.0, 3.0, 4.0, 0.0, 5.0], atol=1e-12)
    # A pure lightness difference: the CIEDE2000 total is |dL| / (kL SL), so kL = 2 halves it.
    one = vq.delta_e([50.0, 0.0, 0.0], [52.0, 0.0, 0.0], "cie2000", None)
    assert vq.delta_e([50.0, 0, 0], [52.0, 0, 0], "cie2000", (2, 1, 1)) == pytest.approx(one / 2)
    full = vq.lab(vq.xyz(spectra_sample(2)))  # three coordinates get CIELAB's chroma and hue
    for system in ("cie2000", "cmc", "cie94", "din6175"):
        equal(vq.difference(full[0], full[1], system),
              vq.difference(full[0, :3], full[1, :3], system))
    # Chromaticity mode: slots 1-2 are the trial's x, y; equal X, Y, Z give x = y = 1/3.
    rec = vq.difference([[40.0, 50.0, 60.0]] * 2, [[20.0, 20.0, 20.0], [10.0, 30.0, 60.0]],
                        "chromaticity")
    close(rec, [[1 / 3, 1 / 3, 0, 0, 0, 0, 0], [0.1, 0.3, 0, 0, 0, 0, 0]], rtol=1e-12)
    lab = vq.lab(xyz := vq.xyz(spectra_sample(2)))  # XYZ/Yxy takes both; slot 7 is Delta E*ab
    rec = vq.difference(lab[0], lab[1], "xyz/yxy", std_xyz=xyz[0], trial_xyz=xyz[1])
    assert rec[6] == pytest.approx(np.linalg.norm(lab[1, :3] - lab[0, :3]), rel=1e-12)


def test_one_standard_broadcasts_against_many_trials_in_threads():
    std = np.array([50.0, 10.0, -20.0])
    trials = std + np.random.default_rng(3).normal(0.0, 3.0, (4, 6, 3))
    many = vq.difference(std, trials, "cmc", (2, 1))
    equal(many, vq.difference(np.broadcast_to(std, trials.shape).copy(), trials, "cmc", (2, 1)))
    cross = vq.delta_e(trials[:, :1], trials[:1, :], "cie94")  # (4, 1) against (1, 6)
    assert cross.shape == (4, 6) and cross[2, 3] == vq.delta_e(trials[2, 0], trials[0, 3], "cie94")
    assert np.ndim(vq.delta_e([50, 0, 0], [51, 0, 0])) == 0  # a pair gives a scalar
    assert vq.difference([50, 0, 0], np.zeros((2, 0, 3))).shape == (2, 0, 7)
    big = std + np.random.default_rng(5).normal(0.0, 3.0, (20000, 3))
    with ThreadPoolExecutor(4) as pool:
        equal(list(pool.map(lambda _: vq.delta_e(std, big), range(4))), [vq.delta_e(std, big)] * 4)


def test_names_and_string_table():
    assert [vq.difference_labels(s)[-1] for s in ("cie2000", 0)] == ["ΔE00", "ΔE*ab"]
    assert vq.string(386).startswith("D65|") and vq.version().count(".") == 2
    assert [code for _, code, _ in vq.illuminants()][:5] == ["A", "C", "D65", "CWF", "T84"]
    for name, index in [("A", 0), ("d65", 2), ("F2", 3), ("TL84", 4), ("F11", 4), ("U30", 9),
                        ("F4", 16), (16, 16), (np.int64(5), 5)]:
        assert vq.illuminant_index(name) == index, name
    for name, code in [("cielab", 0), ("CMC", 1), ("Hunter Lab", 2), ("FMC-2", 3), ("CIE94", 4),
                       ("GE-PQS II", 8), ("DIN99", 10), ("de2000", 11), ("DIN 6175", 12),
                       ("chromaticity", 100), (11, 11)]:
        assert vq.system_code(name) == code, name


@pytest.mark.parametrize("call, error", [
    (lambda: vq.illuminant_index("D93"), KeyError), (lambda: vq.observer_code("4°"), KeyError),
    (lambda: vq.illuminant_index(17), ValueError), (lambda: vq.observer_code(5), ValueError),
    (lambda: vq.illuminant_index(True), TypeError), (lambda: vq.string(999999), KeyError),
    (lambda: vq.system_code("cie2001"), KeyError), (lambda: vq.system_code(13), ValueError),
    (lambda: vq.xyz(np.zeros((3, 39))), ValueError), (lambda: vq.xyz(5.0), ValueError),
    (lambda: vq.lab(np.zeros((2, 4))), ValueError), (lambda: vq.lab(Z3, white=[1, 2]), ValueError),
    (lambda: vq.delta_e(np.zeros((2, 3)), np.zeros((3, 3))), ValueError),
    (lambda: vq.delta_e(Z3, Z3, weights=(1, 2, 3, 4)), ValueError),
    (lambda: vq.difference(Z3, Z3, "fmc2", std_xyz=Z3 + 1, trial_xyz=Z3 + 1), ValueError),
    (lambda: vq.difference([50, 0, 0], [51, 0, 0], "xyz/yxy"), ValueError),  # no XYZ given
    (lambda: vq.whiteness(Z3 + 1, "Ganz"), KeyError),
    (lambda: vq.catalogue_index(Z3 + 1, "WI Ganz"), KeyError),
    (lambda: vq.strength(np.ones(40), np.ones(40), "brightest"), KeyError),
    (lambda: vq.read_spectra("/nonexistent/file.cgats"), FileNotFoundError),
    (lambda: vq.read_spectra("x.cgats", text=CGATS_TEXT.replace("SETS 2", "SETS 3")), ValueError),
    (lambda: vq.read_spectra("x.cgats", scale="percentage", text=CGATS_TEXT), ValueError),
    (lambda: vq.read_spectra("x.txt", format="xml", text=""), KeyError),
    (lambda: vq.map_to_grid([400, 400, 500], [1, 2, 3]), ValueError),
    (lambda: vq.map_to_grid([400, 500, 600], [1, 2]), ValueError)])
def test_errors(call, error):
    with pytest.raises(error):
        call()


def test_indices_and_strength_by_hand():
    # CIE 15:2004: the white has whiteness Y, tint 0; only the recalculated flavour leaves D65.
    white, white_a = vq.white_point("D65", 10), vq.white_point("A", 10)
    close([vq.whiteness(white, "CIE"), vq.tint(white, "CIE") + 100], 100.0, rtol=1e-11)
    assert vq.is_missing(vq.whiteness(white_a, "CIE", "A"))
    assert vq.catalogue_index([30.0, 28.0, 12.0], "Dom. Wav.") > 500  # an orange
    close(vq.whiteness(white_a, "CIE (R)", "A"), 100.0, rtol=1e-12)
    xyz = np.array([[80.0, 85.0, 90.0], [30.0, 28.0, 12.0]])
    for name, kind, method in [("WI CIE", vq.whiteness, "CIE"), (" Rx ", vq.filter_value, "Rx"),
                               ("yi e313-73 (r)", vq.yellowness, "E313-73 (R)")]:
        equal(vq.catalogue_index(xyz, name), kind(xyz, method))
    # ASTM E313-73, C / 2 degree: YI = 100 (1 - 0.847 Z / Y).
    close(vq.yellowness([[70.0, 80.0, 70.0]] * 3, "E313-73", "C", 2), [25.8875] * 3, rtol=1e-12)
    # Kubelka-Munk K/S = (1 - R)^2 / 2R: 0.25 at 50 %, 0.3025 / 0.9 at 45 %.
    got = vq.strength(np.full(40, 50.0), np.stack([np.full(40, 50.0), np.full(40, 45.0)]),
                      "apparent")
    close(got, [100.0, 100.0 * (0.3025 / 0.9) / 0.25], rtol=1e-9)


def test_reading_spectra_maps_them_onto_the_grid():
    got = vq.read_spectra("memory.cgats", text=CGATS_TEXT)
    spectra = got["spectra"]
    assert spectra.shape == (2, 40) and got["labels"] == ["1", "2"]
    # Three bands take their quadratic, here a line, the ends repeat; "" is missing inside them.
    close(spectra[0], np.clip(10.0 + 0.1 * (NM - 400.0), 10.0, 30.0), rtol=1e-12)
    assert vq.is_missing(spectra[1, (NM > 400) & (NM < 600)]).all()
    assert spectra[1, 0] == 40.0 and spectra[1, -1] == 60.0 and "500 nm" in got["notes"][0][1]
    got = vq.read_spectra(DATA / "samples" / "colorchecker_ohta_380_780_5nm.csv")
    assert got["spectra"].shape == (24, 40) and got["labels"][0] == "dark skin"
    close(got["spectra"][0, :3], 4.8, rtol=1e-12)  # 0.048 at 380 nm, repeated below
    equal(vq.map_to_grid(got["wavelengths"], got["values"], "fraction"), got["spectra"])
    # Regular 20 nm bands offset from the grid: Sprague interpolation reproduces straight lines.
    bands = np.arange(355.0, 756.0, 20.0)
    grid = vq.map_to_grid(bands, np.stack([20.0 + 0.05 * bands, 80.0 - 0.1 * (bands - 355.0)]))
    close(grid, [20.0 + 0.05 * NM, 80.0 - 0.1 * (NM - 355.0)], rtol=1e-12)
