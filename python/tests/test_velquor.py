"""Tests of the Python module: shapes and broadcasting, names, errors, and agreement with
published data and hand calculations."""

import threading

import numpy as np
import pytest

import velquor

# Sharma, Wu and Dalal (2005), CIEDE2000 test data: pairs 1-3, 7, 17-20, 25-30, at the four
# decimals published.
SHARMA_PAIRS = [
    ((50.0000, 2.6772, -79.7751), (50.0000, 0.0000, -82.7485), 2.0425),
    ((50.0000, 3.1571, -77.2803), (50.0000, 0.0000, -82.7485), 2.8615),
    ((50.0000, 2.8361, -74.0200), (50.0000, 0.0000, -82.7485), 3.4412),
    ((50.0000, 0.0000, 0.0000), (50.0000, -1.0000, 2.0000), 2.3669),
    ((50.0000, 2.4900, -0.0010), (50.0000, -2.4900, 0.0009), 7.1792),
    ((50.0000, 2.4900, -0.0010), (50.0000, -2.4900, 0.0010), 7.1792),
    ((50.0000, 2.4900, -0.0010), (50.0000, -2.4900, 0.0011), 7.2195),
    ((50.0000, 2.4900, -0.0010), (50.0000, -2.4900, 0.0012), 7.2195),
    ((60.2574, -34.0099, 36.2677), (60.4626, -34.1751, 39.4387), 1.2644),
    ((63.0109, -31.0961, -5.8663), (62.8187, -29.7946, -4.0864), 1.2630),
    ((61.2901, 3.7196, -5.3901), (61.4292, 2.2480, -4.9620), 1.8731),
    ((35.0831, -44.1164, 3.7933), (35.0232, -40.0716, 1.5901), 1.8645),
    ((22.7233, 20.0904, -46.6940), (23.0331, 14.9730, -42.5619), 2.0373),
    ((36.4612, 47.8580, 18.3852), (36.2715, 50.5065, 21.2231), 1.4146),
]


def spectra_sample(count, seed=7):
    """Smooth reflectance curves in percent, 5 % to 95 %."""
    rng = np.random.default_rng(seed)
    x = np.linspace(0.0, 1.0, velquor.SPECTRUM_POINTS)
    centre = rng.uniform(0.0, 1.0, (count, 1))
    width = rng.uniform(0.1, 0.5, (count, 1))
    return 5.0 + 90.0 * np.exp(-((x - centre) / width) ** 2)


# --- tristimulus values and white points --------------------------------------------------


def test_white_point_of_d65_10():
    # ASTM E308 table 6 white of D65 / 10 degree, as the library's weighting table holds it.
    np.testing.assert_allclose(velquor.white_point("D65", 10), [94.811, 100.0, 107.304],
                               rtol=0, atol=5e-4)


@pytest.mark.parametrize("observer", [2, 10])
@pytest.mark.parametrize("illuminant", range(17))
def test_perfect_white_integrates_to_the_white_point(illuminant, observer):
    white = velquor.xyz(np.full(40, 100.0), illuminant, observer)
    np.testing.assert_allclose(white, velquor.white_point(illuminant, observer), rtol=1e-12)


def test_xyz_is_the_weighted_sum_of_the_table():
    spectra = spectra_sample(50).reshape(5, 10, 40)
    table = velquor.weight_table("A", 2)
    assert table.shape == (3, 40)
    expected = spectra @ table.T * 0.01
    got = velquor.xyz(spectra, "A", 2)
    assert got.shape == (5, 10, 3)
    np.testing.assert_allclose(got, expected, rtol=1e-12)


def test_xyz_reads_strided_and_integer_input():
    spectra = spectra_sample(8)
    wide = np.zeros((8, 80))
    wide[:, ::2] = spectra
    np.testing.assert_array_equal(velquor.xyz(wide[:, ::2]), velquor.xyz(spectra))
    ints = np.full((2, 40), 50, dtype=np.int32)
    np.testing.assert_allclose(velquor.xyz(ints), velquor.xyz(np.full((2, 40), 50.0)))


def test_xyz_missing_first_point_gives_missing_triple():
    spectra = spectra_sample(2)
    spectra[1, 0] = velquor.MISSING
    out = velquor.xyz(spectra)
    assert not velquor.is_missing(out[0]).any()
    assert velquor.is_missing(out[1]).all()


# --- colour spaces -------------------------------------------------------------------------


def test_lab_of_white_and_mid_grey():
    white = velquor.white_point("D50", 2)
    # Y / Yn = (66/116)^3 gives L* = 50 exactly (hand calculation), a* = b* = 0 on the grey axis.
    grey = white * (66.0 / 116.0) ** 3
    out = velquor.lab(np.stack([white, grey]), "D50", 2)
    assert out.shape == (2, 5)
    np.testing.assert_allclose(out[:, 0], [100.0, 50.0], rtol=1e-9)
    np.testing.assert_allclose(out[:, 1:4], 0.0, atol=1e-9)


def test_lab_with_explicit_white_matches_the_named_pair():
    xyz = velquor.xyz(spectra_sample(6), "F11", 10)
    np.testing.assert_array_equal(velquor.lab(xyz, "T84", 10),
                                  velquor.lab(xyz, white=velquor.white_point("F11", 10)))


def test_lab_missing_sample_gives_missing_record():
    out = velquor.lab([velquor.MISSING, 50.0, 50.0])
    assert out.shape == (5,) and velquor.is_missing(out).all()


def test_din99_and_chroma_hue():
    # DIN99 of a neutral: L99 = 105.51 ln(1 + 0.0158 L*) (DIN 6176), no chroma.
    out = velquor.din99([[50.0, 0.0, 0.0]])
    np.testing.assert_allclose(out[0, 0], 105.51 * np.log(1 + 0.0158 * 50.0), rtol=1e-12)
    np.testing.assert_allclose(out[0, 3], 0.0, atol=1e-12)
    ch = velquor.chroma_hue([[3.0, 4.0], [0.0, -2.0]])
    np.testing.assert_allclose(ch, [[5.0, np.degrees(np.arctan2(4, 3))], [2.0, 270.0]],
                               rtol=1e-9)


# --- colour difference ---------------------------------------------------------------------


@pytest.mark.parametrize("std, trial, expected", SHARMA_PAIRS)
def test_ciede2000_sharma_pairs(std, trial, expected):
    assert velquor.delta_e(std, trial, "cie2000") == pytest.approx(expected, abs=5e-5)


def test_ciede2000_sharma_pairs_as_one_batch_in_both_orders():
    std = np.array([p[0] for p in SHARMA_PAIRS])
    trial = np.array([p[1] for p in SHARMA_PAIRS])
    expected = np.array([p[2] for p in SHARMA_PAIRS])
    np.testing.assert_allclose(velquor.delta_e(std, trial), expected, atol=5e-5)
    # CIEDE2000 is symmetric in the published data.
    np.testing.assert_allclose(velquor.delta_e(trial, std), expected, atol=5e-5)


def test_cielab_difference_record_by_hand():
    # dL = 3, da = 4, db = 0: dE = 5; dC = 4 (chroma 0 -> 4), dH = 0.
    rec = velquor.difference([50.0, 0.0, 0.0], [53.0, 4.0, 0.0], "CIE L*a*b*")
    np.testing.assert_allclose(rec, [3.0, 4.0, 0.0, 3.0, 4.0, 0.0, 5.0], atol=1e-12)


def test_one_standard_broadcasts_against_many_trials():
    rng = np.random.default_rng(3)
    std = np.array([50.0, 10.0, -20.0])
    trials = std + rng.normal(0.0, 3.0, (4, 6, 3))
    many = velquor.difference(std, trials, "cmc", (2, 1))
    assert many.shape == (4, 6, 7)
    paired = velquor.difference(np.broadcast_to(std, trials.shape).copy(), trials, "cmc", (2, 1))
    np.testing.assert_array_equal(many, paired)
    for i, j in [(0, 0), (3, 5)]:
        np.testing.assert_array_equal(many[i, j], velquor.difference(std, trials[i, j], "cmc",
                                                                     (2, 1)))
    # Batch shapes that broadcast in two directions, (4, 1) against (1, 6).
    cross = velquor.delta_e(trials[:, :1], trials[:1, :], "cie94")
    assert cross.shape == (4, 6)
    assert cross[2, 3] == velquor.delta_e(trials[2, 0], trials[0, 3], "cie94")


def test_single_pair_gives_a_scalar_and_empty_batches_stay_empty():
    assert np.ndim(velquor.delta_e([50, 0, 0], [51, 0, 0])) == 0
    assert velquor.delta_e([50, 0, 0], np.zeros((0, 3))).shape == (0,)
    assert velquor.difference([50, 0, 0], np.zeros((2, 0, 3))).shape == (2, 0, 7)


def test_weights_reach_the_formula():
    # A pure lightness difference: the CIEDE2000 total is |dL| / (kL SL), so kL = 2 halves it.
    std, trial = [50.0, 0.0, 0.0], [52.0, 0.0, 0.0]
    one = velquor.delta_e(std, trial, "cie2000", (1, 1, 1))
    two = velquor.delta_e(std, trial, "cie2000", (2, 1, 1))
    assert two == pytest.approx(one / 2, rel=1e-12)
    assert velquor.delta_e(std, trial, "cie2000", None) == one


def test_three_and_five_coordinates_agree():
    # Three coordinates are completed with the chroma and hue CIELAB itself stores.
    full = velquor.lab(velquor.xyz(spectra_sample(2)))
    for system in ("cie2000", "cmc", "cie94", "din6175"):
        np.testing.assert_array_equal(velquor.difference(full[0], full[1], system),
                                      velquor.difference(full[0, :3], full[1, :3], system))


def test_missing_coordinates_give_missing_record():
    rec = velquor.difference([velquor.MISSING, 0.0, 0.0], [50.0, 1.0, 1.0], "cmc")
    assert velquor.is_missing(rec).all()


def test_tristimulus_systems_take_xyz():
    # Chromaticity mode: slots 1-2 are the trial's x, y; equal X, Y, Z give x = y = 1/3.
    rec = velquor.difference([[40.0, 50.0, 60.0]] * 2, [[20.0, 20.0, 20.0], [10.0, 30.0, 60.0]],
                             "chromaticity")
    np.testing.assert_allclose(rec[:, :2], [[1 / 3, 1 / 3], [0.1, 0.3]], rtol=1e-12)
    np.testing.assert_array_equal(rec[:, 2:], 0.0)
    fmc = velquor.delta_e([40.0, 50.0, 60.0], [40.0, 50.0, 60.0], "FMC-2")
    assert fmc == 0.0


def test_xyz_yxy_needs_both_forms():
    with pytest.raises(ValueError, match="std_xyz"):
        velquor.difference([50, 0, 0], [51, 0, 0], "xyz/yxy")
    xyz = velquor.xyz(spectra_sample(2))
    lab = velquor.lab(xyz)
    rec = velquor.difference(lab[0], lab[1], "xyz/yxy", std_xyz=xyz[0], trial_xyz=xyz[1])
    # Slot 7 stays Delta E*ab.
    assert rec[6] == pytest.approx(np.linalg.norm(lab[1, :3] - lab[0, :3]), rel=1e-12)


def test_difference_labels():
    assert velquor.difference_labels("cie2000")[-1] == "ΔE00"
    assert velquor.difference_labels(0)[-1] == "ΔE*ab"


def test_loops_run_in_threads():
    std = np.array([50.0, 10.0, -20.0])
    trials = std + np.random.default_rng(5).normal(0.0, 3.0, (20000, 3))
    expected = velquor.delta_e(std, trials)
    results = [None] * 4

    def work(k):
        results[k] = velquor.delta_e(std, trials)

    threads = [threading.Thread(target=work, args=(k,)) for k in range(4)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    for r in results:
        np.testing.assert_array_equal(r, expected)


# --- names and errors ----------------------------------------------------------------------


@pytest.mark.parametrize("name, index", [("A", 0), ("d65", 2), ("CWF", 3), ("F2", 3),
                                         ("T84", 4), ("F11", 4), ("TL84", 4), ("U30", 9),
                                         ("F4", 16), (16, 16), (np.int64(5), 5)])
def test_illuminant_names(name, index):
    assert velquor.illuminant_index(name) == index


@pytest.mark.parametrize("name, code", [("cielab", 0), ("CMC", 1), ("Hunter Lab", 2),
                                        ("FMC-2", 3), ("CIE94", 4), ("GE-PQS II", 8),
                                        ("DIN99", 10), ("CIEDE2000", 11), ("de2000", 11),
                                        ("DIN 6175", 12), ("chromaticity", 100), (11, 11)])
def test_system_names(name, code):
    assert velquor.system_code(name) == code


@pytest.mark.parametrize("call, error", [
    (lambda: velquor.illuminant_index("D93"), KeyError),
    (lambda: velquor.illuminant_index(17), ValueError),
    (lambda: velquor.illuminant_index(True), TypeError),
    (lambda: velquor.observer_code(5), ValueError),
    (lambda: velquor.observer_code("4°"), KeyError),
    (lambda: velquor.system_code("cie2001"), KeyError),
    (lambda: velquor.system_code(13), ValueError),
    (lambda: velquor.xyz(np.zeros((3, 39))), ValueError),
    (lambda: velquor.xyz(5.0), ValueError),
    (lambda: velquor.lab(np.zeros((2, 4))), ValueError),
    (lambda: velquor.lab(np.zeros((2, 3)), white=[1, 2]), ValueError),
    (lambda: velquor.delta_e(np.zeros((2, 3)), np.zeros((3, 3))), ValueError),
    (lambda: velquor.delta_e(np.zeros(4), np.zeros(4)), ValueError),
    (lambda: velquor.delta_e(np.zeros(3), np.zeros(3), weights=(1, 2, 3, 4)), ValueError),
    (lambda: velquor.difference(np.zeros(3), np.zeros(3), "fmc2", std_xyz=np.ones(3),
                                trial_xyz=np.ones(3)), ValueError),
    (lambda: velquor.whiteness(np.ones(3), "Ganz"), KeyError),
    (lambda: velquor.strength(np.ones(40), np.ones(40), "brightest"), KeyError),
    (lambda: velquor.string(999999), KeyError),
])
def test_errors(call, error):
    with pytest.raises(error):
        call()


def test_string_table():
    assert velquor.string(386).startswith("D65|")
    assert [code for _, code, _ in velquor.illuminants()][:5] == ["A", "C", "D65", "CWF", "T84"]
    assert velquor.version().count(".") == 2


# --- indices and strength ------------------------------------------------------------------


def test_white_indices_of_the_perfect_white():
    # CIE whiteness of the computed white is its own Y and its tint 0 (CIE 15:2004).
    white = velquor.white_point("D65", 10)
    assert velquor.whiteness(white, "CIE") == pytest.approx(100.0, rel=1e-12)
    assert velquor.tint(white, "CIE") == pytest.approx(0.0, abs=1e-9)
    # Only the recalculated flavour is defined away from D65.
    assert velquor.is_missing(velquor.whiteness(velquor.white_point("A", 10), "CIE", "A"))
    assert velquor.whiteness(velquor.white_point("A", 10), "CIE (R)", "A") == \
        pytest.approx(100.0, rel=1e-12)


def test_catalogue_names_reach_the_same_formulas():
    # Every binding name and its catalogue short name compute the same numbers.
    xyz = np.array([[80.0, 85.0, 90.0], [30.0, 28.0, 12.0]])
    pairs = [("WI CIE", velquor.whiteness, "CIE"), ("yi e313-73 (r)", velquor.yellowness, "E313-73 (R)"),
             ("Tint CIE", velquor.tint, "CIE"), (" Rx ", velquor.filter_value, "Rx")]
    for name, kind, method in pairs:
        np.testing.assert_array_equal(velquor.catalogue_index(xyz, name), kind(xyz, method))
    assert velquor.catalogue_index(xyz[1], "Dom. Wav.") > 500  # an orange, dominant in the yellow-red
    with pytest.raises(KeyError):
        velquor.catalogue_index(xyz, "WI Ganz")


def test_yellowness_by_hand():
    # ASTM E313-73, C / 2 degree: YI = 100 (1 - 0.847 Z / Y); Y = 80, Z = 70 gives 25.8875.
    yi = velquor.yellowness([[70.0, 80.0, 70.0]] * 3, "E313-73", "C", 2)
    np.testing.assert_allclose(yi, 100.0 * (1.0 - 0.847 * 70.0 / 80.0), rtol=1e-12)
    assert yi.shape == (3,)


def test_apparent_strength_by_hand():
    # Kubelka-Munk K/S = (1 - R)^2 / 2R: 0.25 at 50 %, 0.3025 / 0.9 at 45 %; flat curves give
    # the ratio of the two at every wavelength.
    std = np.full(40, 50.0)
    batches = np.stack([np.full(40, 50.0), np.full(40, 45.0)])
    got = velquor.strength(std, batches, "apparent")
    np.testing.assert_allclose(got, [100.0, 100.0 * (0.3025 / 0.9) / 0.25], rtol=1e-9)


# --- measurement files and the grid --------------------------------------------------------

CGATS_TEXT = """CGATS.17
ORIGINATOR "velquor tests"
NUMBER_OF_FIELDS 4
BEGIN_DATA_FORMAT
SAMPLE_ID SPECTRAL_NM_400 SPECTRAL_NM_500 SPECTRAL_NM_600
END_DATA_FORMAT
NUMBER_OF_SETS 2
BEGIN_DATA
1 10 20 30
2 40 "" 60
END_DATA
"""


def test_read_cgats_text_maps_onto_the_grid():
    got = velquor.read_spectra("memory.cgats", text=CGATS_TEXT)
    spectra = got["spectra"]
    assert spectra.shape == (2, 40) and got["labels"] == ["1", "2"]
    # Three bands take the quadratic through them: here the line 10 + 0.1 (nm - 400); outside
    # 400-600 nm the nearest measured value is repeated.
    expected = np.clip(10.0 + 0.1 * (velquor.WAVELENGTHS - 400.0), 10.0, 30.0)
    np.testing.assert_allclose(spectra[0], expected, rtol=1e-12)
    # The empty value is missing; every grid point inside 400-600 nm leans on it.
    inside = (velquor.WAVELENGTHS > 400) & (velquor.WAVELENGTHS < 600)
    assert velquor.is_missing(spectra[1, inside]).all()
    assert spectra[1, 0] == 40.0 and spectra[1, -1] == 60.0
    assert got["notes"] and "500 nm" in got["notes"][0][1]


def test_read_csv_file_in_fractions():
    path = (__import__("pathlib").Path(__file__).resolve().parents[2] / "tests" / "data" /
            "samples" / "colorchecker_ohta_380_780_5nm.csv")
    got = velquor.read_spectra(path)
    assert got["spectra"].shape == (24, 40) and got["labels"][0] == "dark skin"
    # "dark skin" is 0.048 at 380 nm in the file: 4.8 % there and, repeated, at 360 and 370 nm.
    np.testing.assert_allclose(got["spectra"][0, :3], 4.8, rtol=1e-12)
    np.testing.assert_array_equal(
        velquor.map_to_grid(got["wavelengths"], got["values"], "fraction"), got["spectra"])


def test_map_to_grid_reproduces_a_line_from_offset_bands():
    # Regular 20 nm bands offset from the grid: Sprague interpolation reproduces straight lines.
    wavelengths = np.arange(355.0, 756.0, 20.0)
    values = np.stack([20.0 + 0.05 * wavelengths, 80.0 - 0.1 * (wavelengths - 355.0)])
    grid = velquor.map_to_grid(wavelengths, values)
    np.testing.assert_allclose(grid[0], 20.0 + 0.05 * velquor.WAVELENGTHS, rtol=1e-12)
    np.testing.assert_allclose(grid[1], 80.0 - 0.1 * (velquor.WAVELENGTHS - 355.0), rtol=1e-12)


@pytest.mark.parametrize("call, error", [
    (lambda: velquor.read_spectra("/nonexistent/file.cgats"), FileNotFoundError),
    (lambda: velquor.read_spectra("bad.cgats", text=CGATS_TEXT.replace("SETS 2", "SETS 3")),
     ValueError),
    (lambda: velquor.read_spectra("x.cgats", scale="percentage", text=CGATS_TEXT), ValueError),
    (lambda: velquor.read_spectra("x.txt", format="xml", text=""), KeyError),
    (lambda: velquor.map_to_grid([400, 400, 500], [1, 2, 3]), ValueError),
    (lambda: velquor.map_to_grid([400, 500, 600], [1, 2]), ValueError),
])
def test_measurement_errors(call, error):
    with pytest.raises(error):
        call()
