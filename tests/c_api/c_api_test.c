// The C interface, exercised from a program compiled as C11.
// Expected values: published data (ASTM E308 white points, a Sharma-Wu-Dalal CIEDE2000 pair,
// ASTM E313-10 white points), hand calculations shown beside them, and invariants (a flat
// spectrum scales the white point; a white has CIE whiteness Y and tint 0).
#define _XOPEN_SOURCE 700

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#ifdef _WIN32
/* The few POSIX calls the test makes, on the Microsoft C run-time. */
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#define F_OK 0
#define access _access
static int setenv(const char* name, const char* value, int overwrite) {
  (void)overwrite;
  return _putenv_s(name, value);
}
static char* mkdtemp(char* pattern) {
  return _mktemp(pattern) != NULL && _mkdir(pattern) == 0 ? pattern : NULL;
}
static int truncate(const char* path, long long length) {
  const int file = _open(path, _O_RDWR | _O_BINARY);
  if (file < 0) return -1;
  const int result = _chsize_s(file, length) == 0 ? 0 : -1;
  _close(file);
  return result;
}
#define SCRATCH_PARENT (getenv("TEMP") != NULL ? getenv("TEMP") : ".")
#define REMOVE_FOLDER_COMMAND "rmdir /s /q \"%s\""
#else
#include <unistd.h>
#define SCRATCH_PARENT P_tmpdir
#define REMOVE_FOLDER_COMMAND "rm -rf '%s'"
#endif

#include "velquor/velquor_c.h"

#define COUNT(array) ((int)(sizeof(array) / sizeof((array)[0])))

static int failures = 0, checks = 0;
static char text[256]; /* the buffer of the text functions */

// Counts a check; a failed one prints its line, case index and what was checked, and the
// caller adds the value got, the one expected and (for numbers) the error in tolerances.
static int Failed(int ok, int line, int index, const char* what) {
  ++checks;
  failures += !ok;
  if (!ok) printf("%s:%d [%d] %s: ", __FILE__, line, index, what);
  return !ok;
}
static void Int(int line, int index, const char* what, long long got, long long want) {
  if (Failed(got == want, line, index, what)) printf("got %lld, expected %lld\n", got, want);
}
static void Str(int line, int index, const char* what, const char* got, const char* want) {
  if (Failed(strcmp(got, want) == 0, line, index, what))
    printf("got \"%s\", expected \"%s\"\n", got, want);
}
// Tables: reference values as rows {got, expected, tolerance} (a failure names its row), and
// results of calls that must all be one code (a failure names the call's place in the list).
static void Refs(int line, int index, const double (*rows)[3], int count) {
  for (int r = 0; r < count; ++r) {
    const double got = rows[r][0], want = rows[r][1], tol = rows[r][2];
    if (Failed(fabs(got - want) <= tol, line, index * 100 + r, "row (case x 100 + row)"))
      printf("got %.17g, expected %.17g (%.3g x tolerance)\n", got, want, fabs(got - want) / tol);
  }
}
static void Results(int line, int want, const int* results, int count) {
  for (int r = 0; r < count; ++r) Int(line, r, "call in the list", results[r], want);
}
#define CHECK_INT(i, got, want) Int(__LINE__, (i), #got, (long long)(got), (long long)(want))
#define CHECK_STR(i, got, want) Str(__LINE__, (i), #got, (got), (want))
// A text function returns the full length of its text (or an error code) and writes as much
// of it as fits into the buffer.
#define CHECK_CUT(i, call, length, want) \
  (Int(__LINE__, (i), #call, (call), (length)), Str(__LINE__, (i), #call, text, (want)))
#define CHECK_TEXT(i, call, want) CHECK_CUT(i, call, (long long)strlen(want), want)
#define CHECK_REFS(i, ...) \
  Refs(__LINE__, (i), (const double[][3]){__VA_ARGS__}, COUNT(((double[][3]){__VA_ARGS__})))
#define CHECK_RESULTS(want, ...) \
  Results(__LINE__, (want), (const int[]){__VA_ARGS__}, COUNT(((int[]){__VA_ARGS__})))
#define BUF text, sizeof text

static void Flat(double* spectrum, double value) {
  for (int i = 0; i < VQ_SPECTRUM_POINTS; ++i) spectrum[i] = value;
}

static char scratchFolder[256];


static void TestTexts(void) {
  CHECK_STR(0, vq_result_text(VQ_ERR_NULL), "null pointer");
  // Too small a buffer: cut to size - 1 bytes, terminated, full length returned.
  CHECK_CUT(1, vq_string(384, text, 4), 10, "A|T");
  // A translation replaces the texts it lists and nothing else; a bad one is refused.
  static const char kGerman[] = "384\tA|Glühlampe\n";
  char error[128] = "";
  CHECK_RESULTS(VQ_OK, vq_load_translation_text(kGerman, strlen(kGerman), error, sizeof error));
  CHECK_INT(1, vq_load_translation_text("no tab here\n", 12, error, sizeof error), VQ_ERR_FAILED);
  CHECK_INT(1, error[0] != '\0', 1);
  CHECK_TEXT(1, vq_string(384, BUF), "A|Glühlampe");
  CHECK_INT(2, vq_clear_translation(), VQ_OK);
  CHECK_TEXT(2, vq_string(384, BUF), "A|Tungsten");

  const char* cmcWeights[] = {"2", "1", "1"};
  CHECK_TEXT(0, vq_illuminant_text(2, VQ_ILLUMINANT_CODE, BUF), "D65");
  CHECK_TEXT(0, vq_observer_text(1, VQ_OBSERVER_SLASH, BUF), "/10°");
  CHECK_TEXT(0, vq_angle_name(0, BUF), "d8");
  CHECK_TEXT(1, vq_angle_filter(16, BUF),
             "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 16 OR Angle = 12)");
  CHECK_TEXT(1, vq_difference_text(VQ_DIFF_CIELAB, VQ_DIFF_TEXT_VALUE_COLUMNS, BUF),
             "L*|a*|b*|C*|h°");
  CHECK_TEXT(1, vq_difference_caption(VQ_DIFF_CMC, 1, cmcWeights, 3, BUF), "CMC (2:1) cf=1");
  CHECK_TEXT(0, vq_difference_total_label(VQ_DIFF_CMC, BUF), "ΔE*cmc");
  CHECK_TEXT(0, vq_shade_descriptor(1, BUF), "Darker");
  CHECK_TEXT(0, vq_step_code_text(45, BUF), "4-5");
  CHECK_TEXT(1, vq_index_text(VQ_INDEX_WI_CIE, VQ_INDEX_TEXT_HEADING, BUF), "WI\nCIE-94");
  CHECK_TEXT(1, vq_index_mask(VQ_INDEX_WI_CIE, 0, BUF), "0000.00");
  CHECK_TEXT(0, vq_weight_unit_name(0, BUF), "Pounds");
  CHECK_TEXT(0, vq_volume_unit_name(0, BUF), "Gallons");
  CHECK_TEXT(0, vq_strength_method_name(0, BUF), "Apparent");
  for (int u = 17; u <= 22; ++u) CHECK_INT(u, vq_is_shot_unit(u), u >= 18 && u <= 21); /* shots */
}

static void TestDataAndTristimulus(void) {
  // K/S of 50 %: (1 - 0.5)^2 / (2 x 0.5) = 0.25; below 0.01 % it is 9999.
  // Density of 10 %: log10(100 / 10) = 1.
  double values[3] = {50.0, 0.001, 10.0}, table[VQ_WEIGHT_TABLE_LENGTH];
  CHECK_RESULTS(VQ_OK, vq_convert_refl(values, 2, VQ_REFL_KS),
                vq_convert_refl(values + 2, 1, VQ_REFL_DENSITY));
  CHECK_REFS(0, {values[0], 0.25, 1e-15}, {values[1], 9999.0, 0.0}, {values[2], 1.0, 1e-15});

  // Onto the grid: two spectra of 400-700 nm at 10 nm (fractions), a flat 50 % and
  // 1 - nm / 1000, each read from its own place and repeated outward from the ends.
  double bands[31], two[62], grids[2 * VQ_SPECTRUM_POINTS], *second = grids + VQ_SPECTRUM_POINTS;
  for (int i = 0; i < 31; ++i) two[i + 31] = 1.0 - (bands[i] = 400.0 + 10.0 * i) / 1000.0;
  for (int i = 0; i < 31; ++i) two[i] = 0.5;
  CHECK_INT(0, vq_map_to_grid(bands, 31, two, 2, 100.0, grids, BUF), VQ_OK);
  CHECK_REFS(0, {grids[4], 50.0, 1e-12}, {second[19], 45.0, 1e-12}, {second[0], 60.0, 1e-12},
             {second[VQ_SPECTRUM_POINTS - 1], 30.0, 1e-12});
  CHECK_INT(2, vq_map_to_grid(bands, 2, two, 1, 100.0, grids, BUF), VQ_ERR_FAILED);
  CHECK_INT(2, text[0] != '\0', 1); /* the reason */

  // ASTM E308 white points of the 10 nm tables, to their three decimals.
  static const double kWhites[][4] = {
      {2, 0, 95.047, 108.883}, {2, 1, 94.811, 107.304}, {1, 0, 98.074, 118.232}};
  vq_xyz white, full, half, fallback;
  for (int i = 0; i < COUNT(kWhites); ++i) {
    CHECK_RESULTS(VQ_OK, vq_white_point((int)kWhites[i][0], (int)kWhites[i][1], &white));
    CHECK_INT(i, vq_weight_table((int)kWhites[i][0], (int)kWhites[i][1], table, 123), 123);
    CHECK_REFS(i, {white.x, kWhites[i][2], 5e-4}, {white.y, 100.0, 5e-4},
               {white.z, kWhites[i][3], 5e-4}, {table[120], white.x, 0.0},
               {table[122], white.z, 0.0});
  }
  // A flat 50 % spectrum gives exactly half of the 100 % one (halving is exact in binary),
  // and the 100 % one the white point within the tables' rounding. An illuminant without a
  // table falls back to D65.
  Flat(grids, 100.0);
  CHECK_INT(0, vq_compute_xyz(grids, 2, 1, &full), VQ_OK);
  Flat(grids, 50.0);
  CHECK_RESULTS(VQ_OK, vq_compute_xyz(grids, 2, 1, &half), vq_white_point(2, 1, &white));
  CHECK_INT(2, vq_compute_xyz(grids, 20, 1, &fallback), VQ_FALLBACK);
  CHECK_REFS(0, {full.x, white.x, 0.025}, {full.y, 100.0, 0.005}, {full.z, white.z, 0.025},
             {half.x, 0.5 * full.x, 0.0}, {half.y, 0.5 * full.y, 0.0},
             {half.z, 0.5 * full.z, 0.0}, {fallback.y, half.y, 0.0});
}

/* A batch's CIELAB record against the single call's: L*, a*, b*, C* bit for bit, the hue to the
 * vector atan2's few ulp. */
static int LabDiffers(const vq_coords5* single, const vq_coords5* batch) {
  return memcmp(single, batch, 4 * sizeof(double)) != 0 ||
         fabs(single->h - batch->h) > 1e-12 + 1e-13 * fabs(single->h);
}

static void TestBatches(void) {
  // 130 spectra, more than one internal chunk of vq_lab_batch: flat 1 % .. 130 %, with the
  // first point of spectrum 7 missing, which makes its whole record missing. Batch results
  // equal the single calls (XYZ bit for bit).
  enum { kCount = 130 };
  static double spectra[kCount * VQ_SPECTRUM_POINTS];
  static vq_xyz xyz[kCount], xyz2[kCount], one;
  static vq_coords5 lab[kCount], lab2[kCount], lab3[2], oneLab;
  for (int k = 0; k < kCount; ++k) Flat(spectra + k * VQ_SPECTRUM_POINTS, k + 1.0);
  spectra[7 * VQ_SPECTRUM_POINTS] = VQ_MISSING;
  CHECK_RESULTS(VQ_OK, vq_xyz_batch(spectra, kCount, 5, 0, xyz), vq_xyz_batch(NULL, 0, 2, 0, NULL),
                vq_lab_batch(spectra, kCount, 5, 0, lab, NULL),
                vq_lab_batch(spectra, kCount, 5, 0, lab2, xyz2));
  CHECK_RESULTS(VQ_OK, vq_xyz_to_lab_batch(5, 0, xyz + 6, 2, lab3));
  int mismatches = memcmp(lab3, lab + 6, sizeof lab3) != 0;
  for (int k = 0; k < kCount; ++k) {
    vq_compute_xyz(spectra + k * VQ_SPECTRUM_POINTS, 5, 0, &one);
    vq_xyz_to_lab(5, 0, &one, &oneLab);
    mismatches += memcmp(&one, &xyz[k], sizeof one) || memcmp(&one, &xyz2[k], sizeof one) ||
                  LabDiffers(&oneLab, &lab[k]) || LabDiffers(&oneLab, &lab2[k]);
  }
  CHECK_REFS(0, {mismatches, 0, 0}, {vq_is_missing(lab[7].l), 1, 0});
  // CIELUV and DIN99 batches against the single calls (DIN99's logarithms and trigonometry to a
  // few ulp).
  static vq_coords5 luv[kCount], din99[kCount], oneLuv, oneDin99;
  CHECK_RESULTS(VQ_OK, vq_xyz_to_luv_batch(5, 0, xyz, kCount, luv),
                vq_lab_to_din99_batch(lab, kCount, 1.5, 0.8, din99),
                vq_xyz_to_luv_batch(5, 0, NULL, 0, NULL), vq_lab_to_din99_batch(NULL, 0, 1, 1, NULL));
  mismatches = 0;
  for (int k = 0; k < kCount; ++k) {
    vq_xyz_to_luv(5, 0, &xyz[k], &oneLuv);
    vq_lab_to_din99(&lab[k], 1.5, 0.8, &oneDin99);
    mismatches += LabDiffers(&oneLuv, &luv[k]);
    for (int c = 0; c < 5; ++c) {
      const double a = (&oneDin99.l)[c], b = (&din99[k].l)[c];
      mismatches += fabs(a - b) > 1e-12 + 1e-13 * fabs(a);
    }
  }
  CHECK_REFS(0, {mismatches, 0, 0}, {vq_is_missing(din99[7].l), 1, 0},
             {vq_xyz_to_luv_batch(5, 0, NULL, 1, luv), VQ_ERR_NULL, 0},
             {vq_lab_to_din99_batch(lab, 1, 1, 1, NULL), VQ_ERR_NULL, 0});
}

static void TestColourSpaces(void) {
  vq_xyz pairWhite = {96.422, 100.0, 82.521}, half = {48.211, 50.0, 41.2605}, white, xyz;
  vq_xyz luvBack, hunterBack, hunterSample = {50.0, 40.0, 30.0};
  vq_xyz d65 = {95.047, 100.0, 108.883}, absent = {VQ_MISSING, VQ_MISSING, VQ_MISSING};
  vq_coords5 lab, start = {50, 20, -30, 0, 0}, neutral = {50, 0, 0, 0, 0}, back, luv, hunter, din99;
  double x, y, c, h;
  int32_t rgb[3], grey[3];
  vq_white_point(2, 0, &white);
  vq_xyz bright = {2.0 * white.x, 2.0 * white.y, 2.0 * white.z};
  CHECK_RESULTS(VQ_OK, vq_xyz_to_lab_white(&pairWhite, &half, &lab),
                vq_lab_to_xyz(2, 1, &start, &xyz), vq_xyz_to_luv(2, 0, &white, &luv),
                vq_xyz_to_hunter_lab(1, 0, &hunterSample, &hunter),
                vq_lab_to_din99(&neutral, 1.0, 1.0, &din99), vq_xyz_to_xy(&d65, &x, &y),
                vq_chroma_hue(3.0, 4.0, &c, &h), vq_xyz_to_rgb(2, 0, &bright, rgb));
  CHECK_RESULTS(VQ_OK, vq_xyz_to_lab(2, 1, &xyz, &back), vq_luv_to_xyz(2, 0, &luv, &luvBack),
                vq_hunter_lab_to_xyz(1, 0, &hunter, &hunterBack));
  vq_xyz_to_rgb(2, 0, &absent, grey);
  // CIELAB of 50 % of the white: L* = 116 x 0.5^(1/3) - 16, a* = 0.
  // CIELAB round trip through the pair's white (the inverse keeps the library's six-digit
  // offset, exact to about 4e-8 relative): C*ab = sqrt(20^2 + 30^2), hab = 360 - atan(30/20).
  // CIELUV of the white: L* = 100, u* = 0, and back to the white.
  // Classic Hunter Lab (C, 2 degree) of (50, 40, 30): L = 10 sqrt(40),
  // a = 17.5 (1.02 x 50 - 40) / sqrt(40), b = 7 (40 - 0.847 x 30) / sqrt(40), and back.
  // DIN99 of a neutral: L99 = 105.51 ln(1 + 0.0158 x 50), no chroma.
  // Chromaticity of D65 / 2 degree: 95.047 / 303.93 and 100 / 303.93.
  // Polar form of (3, 4): chroma 5, hue atan2(4, 3).
  // Display RGB: twice the white saturates every channel at 255 (linear values >= 1), a
  // missing sample is the neutral grey 192.
  CHECK_REFS(0, {lab.l, 116.0 * cbrt(0.5) - 16.0, 1e-9}, {lab.a, 0.0, 1e-12},
             {back.l, 50.0, 1e-6}, {back.a, 20.0, 1e-6}, {back.c, sqrt(1300.0), 1e-6},
             {back.h, 360.0 - atan(1.5) * 57.29577951307855, 1e-5},
             {luv.l, 100.0, 1e-12}, {luv.a, 0.0, 1e-12}, {luvBack.x, white.x, 1e-9},
             {hunter.l, 10.0 * sqrt(40.0), 1e-12}, {hunter.a, 17.5 * 11.0 / sqrt(40.0), 1e-12},
             {hunter.b, 7.0 * 14.59 / sqrt(40.0), 1e-12}, {hunterBack.x, 50.0, 1e-9},
             {din99.l, 105.51 * log(1.79), 1e-12}, {din99.c, 0.0, 1e-15},
             {x, 95.047 / 303.93, 1e-15}, {y, 100.0 / 303.93, 1e-15}, {c, 5.0, 1e-15},
             {h, 53.13010235415598, 1e-9},
             {rgb[0] + rgb[1] + rgb[2], 3 * 255, 0.0}, {grey[1], 192, 0.0});
}

static vq_sample LabSample(double l, double a, double b) {
  vq_sample s = {{20.0, 20.0, 20.0}, {l, a, b, 0.0, 0.0}}; /* any XYZ that is not missing */
  vq_chroma_hue(a, b, &s.coords.c, &s.coords.h);
  return s;
}

static void TestDifferences(void) {
  // Sharma, Wu and Dalal (2005), Table 1, pair 17: CIEDE2000 27.1492 (the formula's branches
  // are tested in C++; here the system codes and the coordinates' routing). Delta E*ab of the
  // same pair by hand: sqrt(23^2 + 22.5^2 + 18^2). A trial without XYZ has no CMC difference.
  vq_diff7 d, de2000, cmc;
  vq_sample standard = LabSample(50.0, 2.5, 0.0), trial = LabSample(73.0, 25.0, -18.0);
  vq_sample noXyz = {{VQ_MISSING, VQ_MISSING, VQ_MISSING}, {73.0, 25.0, -18.0, 0.0, 0.0}};
  CHECK_RESULTS(VQ_OK, vq_color_difference(&standard, &trial, VQ_DIFF_CIELAB, 2, 1, NULL, 0, &d),
                vq_color_difference(&standard, &trial, VQ_DIFF_CIE2000, 2, 1, NULL, 0, &de2000));
  vq_color_difference(&standard, &noXyz, VQ_DIFF_CMC, 2, 1, NULL, 0.0, &cmc);
  CHECK_REFS(0, {de2000.slot[6], 27.1492, 1e-4}, {d.slot[0], 23.0, 1e-12},
             {d.slot[6], sqrt(23.0 * 23.0 + 22.5 * 22.5 + 18.0 * 18.0), 1e-12},
             {vq_is_missing(cmc.slot[6]), 1, 0});

  // One standard spectrum against trials: flat 50 % against flat 50 %, 60 % and a missing
  // curve. The batch equals sample-by-sample calls exactly; 60 % against 50 % is a pure
  // lightness step 116 (0.6^(1/3) - 0.5^(1/3)) within the tables' rounding of Yn.
  static double trials[3 * VQ_SPECTRUM_POINTS];
  double standardCurve[VQ_SPECTRUM_POINTS];
  Flat(standardCurve, 50.0);
  for (int k = 0; k < 3; ++k)
    Flat(trials + k * VQ_SPECTRUM_POINTS, k < 2 ? 50.0 + 10.0 * k : VQ_MISSING);
  const double weights[3] = {2.0, 1.0, 1.0};
  const int kSystems[] = {VQ_DIFF_CIELAB, VQ_DIFF_CMC, VQ_DIFF_HUNTER, VQ_DIFF_CIELUV,
                          VQ_DIFF_DIN99, VQ_DIFF_FMC2, VQ_DIFF_GE_PQS2, VQ_DIFF_CHROMATICITY};
  for (int s = 0; s < COUNT(kSystems); ++s) {
    vq_diff7 batch[3] = {0}, single = {0};
    vq_sample std, one;
    CHECK_INT(s, vq_delta_e_batch(standardCurve, trials, 3, kSystems[s], 2, 1, weights, 0.0, batch),
              VQ_OK);
    vq_sample_from_spectrum(standardCurve, kSystems[s], 2, 1, weights, &std);
    for (int k = 0; k < 3; ++k) {
      vq_sample_from_spectrum(trials + k * VQ_SPECTRUM_POINTS, kSystems[s], 2, 1, weights, &one);
      vq_color_difference(&std, &one, kSystems[s], 2, 1, weights, 0.0, &single);
      CHECK_INT(s * 10 + k, memcmp(&single, &batch[k], sizeof single), 0);
    }
    CHECK_REFS(s, {vq_is_missing(batch[2].slot[6]), 1, 0}, {batch[0].slot[6] * (s == 0), 0.0, 0.0},
               {batch[1].slot[6] * (s == 0), (s == 0) * 116.0 * (cbrt(0.6) - cbrt(0.5)), 5e-3});
  }
  // Samples for DIN99 take kCH, kE from the weights.
  vq_xyz white;
  vq_sample din;
  vq_coords5 lab, expected;
  vq_white_point(2, 1, &white);
  vq_xyz_to_lab(2, 1, &white, &lab);
  vq_lab_to_din99(&lab, 2.0, 1.0, &expected);
  CHECK_RESULTS(VQ_OK, vq_sample_from_xyz(&white, VQ_DIFF_DIN99, 2, 1, weights, &din),
                vq_delta_e_batch(standardCurve, NULL, 0, VQ_DIFF_CIELAB, 2, 1, NULL, 0.0, NULL));
  CHECK_REFS(0, {din.coords.l, expected.l, 0.0});

  // |dL| >= 0.1 counts (inclusive), |da| and |db| > 0.1 (strict): -0.1 is darker, +0.1 not
  // redder, -0.1000001 bluer (code 10, shown in red).
  vq_coords5 shadeStd = {50, 2, -3, 0, 0};
  vq_diff7 shade = {{-0.1, 0.1, -0.1000001, 0, 0, 0, 0}};
  int codes[3];
  uint32_t colours[3];
  CHECK_TEXT(0, vq_describe_shade(&shadeStd, &shade, 0, codes, colours, BUF), "Darker, ,Bluer");
  CHECK_REFS(0, {codes[0], 1, 0}, {codes[1], 0, 0}, {codes[2], 10, 0}, {colours[2], 0xFF0000, 0});
}

static void TestIndicesAndFastness(void) {
  // The white of a pair is its own reference: CIE whiteness = its Y, CIE tint 0, both
  // filter values 100 %.
  // Ganz/Griesser W = D Y + P x + Q y + C with coefficients (1, 0, 0, 0) is Y.
  // ASTM E313-10, table of white points: D65 / 2 degree (0.3127, 0.3290).
  // ASTM D1925 of (80, 85, 90) under C / 2 degree: 100 (1.28 x 80 - 1.06 x 90) / 85.
  vq_xyz white, sample[2] = {{80.0, 85.0, 90.0}, {VQ_MISSING, VQ_MISSING, VQ_MISSING}};
  const double ganz[4] = {1.0, 0.0, 0.0, 0.0};
  double wi, tint, rz, rx, ganzWi, e313, xn, yn, yi[2];
  vq_white_point(2, 1, &white);
  CHECK_RESULTS(VQ_OK, vq_index(VQ_INDEX_WI_CIE, 2, 1, &white, NULL, &wi),
                vq_index(VQ_INDEX_TINT_CIE, 2, 1, &white, NULL, &tint),
                vq_index(VQ_INDEX_FILTER_RZ, 2, 1, &white, NULL, &rz),
                vq_index(VQ_INDEX_FILTER_RX, 2, 1, &white, NULL, &rx),
                vq_index(VQ_INDEX_WI_GANZ, 2, 1, &white, ganz, &ganzWi),
                vq_e313_white_point(2, 0, &xn, &yn), /* E313-73 is for C / 2 degree only */
                vq_index(VQ_INDEX_WI_E313_73, 2, 1, &white, NULL, &e313),
                vq_index_batch(VQ_INDEX_YI_D1925, 1, 0, sample, 2, NULL, yi));
  CHECK_REFS(0, {wi, white.y, 1e-9}, {tint, 0.0, 1e-9}, {rz, 100.0, 1e-9}, {rx, 100.0, 1e-9},
             {ganzWi, white.y, 1e-12}, {xn, 0.3127, 0.0}, {yn, 0.3290, 0.0},
             {yi[0], 700.0 / 85.0, 1e-12}, {vq_is_missing(yi[1]) + vq_is_missing(e313), 2, 0});

  // Half way from the D65 / 2 degree white to the library's 2 degree locus point at 580 nm,
  // (0.5124, 0.4867): 580 nm at purity 50 %.
  double nm, purity, indexPurity;
  vq_white_point(2, 0, &white);
  vq_xyz_to_xy(&white, &xn, &yn);
  const double x = 0.5 * (xn + 0.5124), y = 0.5 * (yn + 0.4867);
  const vq_xyz toLocus = {100.0 * x, 100.0 * y, 100.0 * (1.0 - x - y)};
  CHECK_RESULTS(VQ_OK, vq_dominant_wavelength(2, 0, &toLocus, &nm, &purity),
                vq_index(VQ_INDEX_EXCITATION_PURITY, 2, 0, &toLocus, NULL, &indexPurity));
  CHECK_REFS(0, {nm, 580.0, 1e-9}, {purity, 50.0, 1e-9}, {indexPurity, 50.0, 1e-9});

  // Fastness of half the white against the white: a pure lightness step
  // dE = 100 - (116 x 0.5^(1/3) - 16). ISO 105-A04: 6.1 - 1.45 ln dE (below 4, so it stands);
  // ISO 105-A05: dE_F = dE, grade 5 - log2(dE / 0.85), step 1 (dE_F >= 11.6, the first
  // threshold).
  const vq_xyz half = {0.5 * white.x, 0.5 * white.y, 0.5 * white.z};
  const double de = 116.0 - 116.0 * cbrt(0.5);
  double g[3];
  CHECK_RESULTS(VQ_OK, vq_fastness(VQ_INDEX_STAIN_A04, 2, 0, &white, &half, &g[0]),
                vq_fastness(VQ_INDEX_GREY_SCALE_A05, 2, 0, &white, &half, &g[1]),
                vq_fastness(VQ_INDEX_GREY_SCALE_STEP_A05, 2, 0, &white, &half, &g[2]));
  CHECK_REFS(1, {g[0], 6.1 - 1.45 * log(de), 1e-9}, {g[1], 5.0 - log(de / 0.85) / log(2.0), 1e-9},
             {g[2], 1.0, 0.0});
}

// The polynomial c[0] x^2 + c[1] x + c[2], its coefficients passed as the context.
static double Polynomial(void* context, double x) {
  const double* c = (const double*)context;
  return (c[0] * x + c[1]) * x + c[2];
}
static double kParabola[3] = {1.0, -4.0, 5.0}; /* (x - 2)^2 + 1: minimum 1 at x = 2 */
static double kSquareMinusTwo[3] = {1.0, 0.0, -2.0}; /* root sqrt 2 */

static void TestStrengthAndSearches(void) {
  // Apparent strength is the ratio of the K/S sums. 50 % has K/S (0.5)^2 / 1 = 0.25 and
  // R = (3 - sqrt 5) / 2 solves (1 - r)^2 / (2r) = 0.5, so that batch is twice as strong.
  // Method 12 is the base (standard and batch exchanged), method 2 (chromatic) the same
  // ratio at the user wavelength 520 nm.
  double standard[VQ_SPECTRUM_POINTS], batch[VQ_SPECTRUM_POINTS], got[3];
  Flat(standard, 50.0);
  Flat(batch, 100.0 * (3.0 - sqrt(5.0)) / 2.0);
  vq_strength_settings apparent = {0, 520, 95.0, 0, 0.0, 0.0}, base = {12, 520, 95.0, 0, 0.0, 0.0};
  vq_strength_settings chromatic = {2, 520, 95.0, 0, 0.0, 0.0};
  int nm = -1;
  CHECK_RESULTS(VQ_OK, vq_strength(&apparent, standard, batch, NULL, NULL, 2, 1, 0, &got[0], NULL),
                vq_strength(&base, standard, batch, NULL, NULL, 2, 1, 0, &got[1], NULL),
                vq_strength(&chromatic, standard, batch, NULL, NULL, 2, 1, 0, &got[2], &nm));
  CHECK_REFS(0, {got[0], 200.0, 1e-9}, {got[1], 50.0, 1e-9}, {got[2], 200.0, 1e-9},
             {nm, 520, 0});
  CHECK_TEXT(0, vq_strength_label(&chromatic, BUF), "95.00 Chromatic @ 520 nm");


  double points[6] = {0.0, 0.5, 0.0, 0.0, 0.0, 0.0};
  vq_root_result root;
  CHECK_RESULTS(VQ_SEARCH_FOUND, vq_bracket_minimum(Polynomial, kParabola, points));
  CHECK_RESULTS(VQ_SEARCH_FOUND, vq_golden_section(Polynomial, kParabola, points, 1e-10));
  CHECK_RESULTS(VQ_OK, vq_find_root(Polynomial, kSquareMinusTwo, 0.0, 2.0, 1e-13, &root));
  CHECK_REFS(0, {points[0], 2.0, 1e-6}, {points[3], 1.0, 1e-12}, {root.found, 1, 0},
             {root.root, sqrt(2.0), 1e-12});
}

static void TestSettingsAndDates(void) {
  // 1 000 000 000 s after the epoch is Sunday 9 September 2001, 01:46:40 UTC; the "C" locale
  // writes MM/dd/yy and HH:mm:ss. Setting names ignore ASCII case.
  const int64_t t = 1000000000;
  int32_t number = 0, defaulted = 0;
  int running = 0;
  CHECK_RESULTS(VQ_OK, vq_settings_use_folder(scratchFolder, 0));
  CHECK_RESULTS(VQ_OK, vq_settings_get_int("Test", "Count", -7, &defaulted));
  CHECK_RESULTS(VQ_OK, vq_settings_set_int("Test", "Count", 42),
                vq_settings_set_string("Test", "Name", "Quality control"));
  CHECK_RESULTS(VQ_OK, vq_settings_get_int("Test", "count", -7, &number));
  CHECK_TEXT(0, vq_clock_text(0, &running, BUF), "0:00");
  CHECK_REFS(0, {defaulted, -7, 0}, {number, 42, 0}, {running, 1, 0});
  CHECK_CUT(3, vq_settings_get_string("Test", "Name", "none", text, 8), 15, "Quality");
  CHECK_TEXT(4, vq_settings_get_string("Test", "Other", "none", BUF), "none");
#ifdef _WIN32
  // Windows formats with the user's regional settings: English (United States) here.
  CHECK_TEXT(1, vq_format_date(VQ_DATE_SHORT, t, BUF), "9/9/2001");
  CHECK_TEXT(2, vq_format_date(VQ_DATE_TIME, t, BUF), "9/9/2001 -- 1:46:40 AM");
#else
  CHECK_TEXT(1, vq_format_date(VQ_DATE_SHORT, t, BUF), "09/09/01");
  CHECK_TEXT(2, vq_format_date(VQ_DATE_TIME, t, BUF), "09/09/01 -- 01:46:40");
#endif
  CHECK_TEXT(3, vq_format_date(VQ_DATE_LONG, t, BUF), "Sunday, September 9, 2001");
  CHECK_TEXT(0, vq_format_pattern("'Batch' nnn yyyy-MM-dd", 7, t, BUF), "Batch 007 2001-09-09");
}

static void TestRefusedArguments(void) {
  static double spectra[2 * VQ_SPECTRUM_POINTS];
  double value, x, y;
  vq_xyz xyz = {50.0, 50.0, 50.0};
  vq_coords5 lab;
  vq_sample sample = LabSample(50.0, 0.0, 0.0);
  vq_diff7 d;
  vq_strength_settings settings = {0, 520, 100.0, 0, 0.0, 0.0};
  vq_root_result root;
  CHECK_RESULTS(VQ_ERR_NULL, vq_string(384, NULL, 4), vq_compute_xyz(NULL, 2, 1, &xyz),
                vq_xyz_batch(NULL, 1, 2, 0, &xyz), vq_lab_batch(spectra, 2, 2, 0, NULL, NULL),
                vq_xyz_to_lab_batch(2, 1, &xyz, 1, NULL),
                vq_color_difference(&sample, NULL, 0, 2, 1, NULL, 0.0, &d),
                vq_difference_caption(VQ_DIFF_CMC, 0, NULL, 3, BUF),
                vq_index(VQ_INDEX_WI_GANZ, 2, 1, &xyz, NULL, &value), /* no coefficients */
                vq_index(VQ_INDEX_WI_CIE, 2, 1, NULL, NULL, &value),
                vq_strength(&settings, spectra, NULL, NULL, NULL, 2, 1, 0, &value, NULL),
                vq_find_root(NULL, NULL, 0.0, 2.0, 0.0, &root),
                vq_bracket_minimum(Polynomial, kParabola, NULL),
                vq_settings_set_int(NULL, "Count", 1), vq_log(VQ_LOG_GENERAL, NULL),
                vq_xyz_to_rgb(2, 0, &xyz, NULL));
  CHECK_RESULTS(VQ_ERR_RANGE, vq_illuminant_text(31, VQ_ILLUMINANT_TEXT, BUF),
                vq_illuminant_text(2, VQ_ILLUMINANT_TEXT - 1, BUF), vq_illuminant_text(2, 3, BUF),
                vq_observer_text(2, VQ_OBSERVER_PLAIN, BUF), vq_angle_name(46, BUF),
                vq_convert_refl(spectra, 1, 5), vq_white_point(17, 0, &xyz),
                vq_white_point(2, 2, &xyz), vq_compute_xyz(spectra, 2, 5, &xyz),
                vq_xyz_to_lab(17, 0, &xyz, &lab),
                vq_color_difference(&sample, &sample, 13, 2, 1, NULL, 0.0, &d),
                vq_delta_e_batch(spectra, spectra, 1, 101, 2, 1, NULL, 0.0, &d),
                vq_difference_text(13, 0, BUF), vq_difference_text(0, 16, BUF),
                vq_index_text(VQ_INDEX_WI_CIE, 3, BUF), vq_strength_method_name(15, BUF),
                vq_format_date(4, 0, BUF), vq_log_is_on(7));
  CHECK_RESULTS(VQ_ERR_UNSUPPORTED, vq_index(5, 2, 1, &xyz, NULL, &value),
                vq_e313_white_point(0, 0, &x, &y),
                vq_fastness(VQ_INDEX_WI_CIE, 2, 0, &xyz, &xyz, &value),
                vq_index(VQ_INDEX_STAIN_A04, 2, 0, &xyz, NULL, &value));
  CHECK_RESULTS(VQ_ERR_NOT_FOUND, vq_weight_unit_name(15, BUF));
  CHECK_RESULTS(VQ_ERR_FAILED, vq_load_translation("/nonexistent/strings.txt", NULL, 0),
                vq_format_date(VQ_DATE_SHORT, -5, BUF), vq_format_pattern("'open", 7, 0, BUF));
}


// The message sink counts the messages through its context and keeps the last one's kind
// (-1 if the length given is not the text's).
static int capturedCount = 0, capturedKind = -1;
static void CaptureMessage(void* context, int kind, const char* message, size_t length) {
  ++*(int*)context;
  capturedKind = strlen(message) == length ? kind : -1;
}

static void TestLog(void) {
  // Levels come from the settings: General 2 writes to the file, each line feed as CR LF;
  // Color Sensor 1 sends to the message sink, as one message of the length given.
  char folder[300], logFile[320];
  int32_t level = -1;
  snprintf(folder, sizeof folder, "%s/", scratchFolder);
  snprintf(logFile, sizeof logFile, "%sPalDebug.txt", folder);
  vq_settings_set_string("Diagnostics", "PathInfo", folder);
  vq_settings_set_int("Diagnostics", "General", 2);
  vq_settings_set_int("Diagnostics", "Color Sensor", 1);
  CHECK_RESULTS(VQ_OK, vq_log_reset_levels());
  CHECK_RESULTS(VQ_OK, vq_log_level(VQ_LOG_GENERAL, &level), vq_log_send("M 1\r", 3),
                vq_log(VQ_LOG_GENERAL, "first\nsecond\n"));
  FILE* file = fopen(logFile, "rb");
  const size_t length = file != NULL ? fread(text, 1, sizeof text - 1, file) : 0;
  text[length] = '\0';
  if (file != NULL) fclose(file);
  CHECK_REFS(0, {level, 2, 0}, {vq_log_is_on(VQ_LOG_COLOR_SENSOR), 1, 0}, {length, 15, 0},
             {capturedCount, 1, 0}, {capturedKind, VQ_MESSAGE_INFORMATION, 0});
  CHECK_STR(1, text, "first\r\nsecond\r\n");
  // A log file beyond 1 MiB is deleted at the next write, which then fails: the file error
  // reaches C as VQ_ERR_LOG_FILE, and both channels are switched off.
  CHECK_INT(4, truncate(logFile, (1 << 20) + 1), 0);
  CHECK_INT(4, vq_log_write(2, "lost", 4), VQ_ERR_LOG_FILE);
  CHECK_REFS(4, {access(logFile, F_OK), -1, 0}, {vq_log_is_on(VQ_LOG_GENERAL), 0, 0},
             {capturedCount, 2, 0});
}

int main(void) {
  // A fixed zone and locale for the date texts, and a scratch settings store.
  setenv("TZ", "UTC0", 1);
  setenv("LC_ALL", "C", 1);
  tzset();
  snprintf(scratchFolder, sizeof scratchFolder, "%s/vq_c_api_XXXXXX", SCRATCH_PARENT);
  if (mkdtemp(scratchFolder) == NULL) {
    perror(scratchFolder);
    return 1;
  }
  vq_set_message_sink(CaptureMessage, &capturedCount);
  void (*const tests[])(void) = {TestTexts, TestDataAndTristimulus, TestBatches, TestColourSpaces,
      TestDifferences, TestIndicesAndFastness, TestStrengthAndSearches, TestSettingsAndDates,
      TestRefusedArguments, TestLog};
  for (int i = 0; i < COUNT(tests); ++i) tests[i]();
  vq_set_message_sink(NULL, NULL);
  vq_settings_use_folder(NULL, 1);
  char command[300];
  snprintf(command, sizeof command, REMOVE_FOLDER_COMMAND, scratchFolder);
  if (system(command) != 0) printf("could not remove %s\n", scratchFolder);
  printf("%d of %d checks failed\n", failures, checks);
  return failures != 0;
}
