/* The C interface, exercised from a program compiled as C11.
 * Expected values: published data (ASTM E308 white points, Sharma-Wu-Dalal CIEDE2000 pairs,
 * ASTM E313-10 white points), hand calculations shown beside them, and invariants (a flat
 * spectrum scales the white point; a white has CIE whiteness Y and tint 0). */
#define _XOPEN_SOURCE 700

#include <ftw.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "velquor/velquor_c.h"

static int failures = 0;
static int checks = 0;

/* Prints the case (and index, for tables), the value got and the one expected. */
#define CHECK_NEAR(index, got, expected, tolerance)                                          \
  do {                                                                                       \
    double g_ = (got), e_ = (expected);                                                      \
    ++checks;                                                                                \
    if (!(fabs(g_ - e_) <= (tolerance))) {                                                   \
      ++failures;                                                                            \
      printf("%s:%d [%d] %s: got %.17g, expected %.17g (%.3g x tolerance)\n", __FILE__,      \
             __LINE__, (int)(index), #got, g_, e_, fabs(g_ - e_) / (tolerance));             \
    }                                                                                        \
  } while (0)
#define CHECK_INT(index, got, expected)                                                      \
  do {                                                                                       \
    long long g_ = (long long)(got), e_ = (long long)(expected);                             \
    ++checks;                                                                                \
    if (g_ != e_) {                                                                          \
      ++failures;                                                                            \
      printf("%s:%d [%d] %s: got %lld, expected %lld\n", __FILE__, __LINE__, (int)(index),   \
             #got, g_, e_);                                                                  \
    }                                                                                        \
  } while (0)
#define CHECK_STR(index, got, expected)                                                      \
  do {                                                                                       \
    const char *g_ = (got), *e_ = (expected);                                                \
    ++checks;                                                                                \
    if (strcmp(g_, e_) != 0) {                                                               \
      ++failures;                                                                            \
      printf("%s:%d [%d] %s: got \"%s\", expected \"%s\"\n", __FILE__, __LINE__, (int)(index), \
             #got, g_, e_);                                                                  \
    }                                                                                        \
  } while (0)
#define CHECK_MISSING(index, got) CHECK_INT(index, vq_is_missing(got), 1)

static void Flat(double* spectrum, double value) {
  for (int i = 0; i < VQ_SPECTRUM_POINTS; ++i) spectrum[i] = value;
}

static char scratchFolder[256];

static int RemoveEntry(const char* path, const struct stat* info, int type, struct FTW* walk) {
  (void)info;
  (void)type;
  (void)walk;
  return remove(path);
}

/* ---- frame ---------------------------------------------------------------------------- */

static void TestVersionAndResultTexts(void) {
  CHECK_STR(0, vq_version(), VELQUOR_VERSION_STRING);
  CHECK_INT(0, vq_version_number(), VQ_VERSION_NUMBER);
  CHECK_STR(0, vq_result_text(VQ_ERR_NULL), "null pointer");
  CHECK_STR(0, vq_result_text(-99), "unknown result code");
}

static void TestStrings(void) {
  char text[64];
  CHECK_INT(0, vq_string(384, text, sizeof text), 10);
  CHECK_STR(0, text, "A|Tungsten");
  /* Too small: cut to size - 1 bytes, terminated, full length returned. */
  CHECK_INT(1, vq_string(384, text, 4), 10);
  CHECK_STR(1, text, "A|T");
  CHECK_INT(2, vq_string(384, NULL, 0), 10);
  CHECK_INT(3, vq_string(384, NULL, 4), VQ_ERR_NULL);
  CHECK_INT(4, vq_string(60000, text, sizeof text), VQ_ERR_NOT_FOUND);
  CHECK_STR(4, text, "");

  /* A translation replaces the texts it lists and nothing else; a bad one is refused. */
  static const char kGerman[] = "384\tA|Glühlampe\n";
  char error[128];
  CHECK_INT(0, vq_load_translation_text(kGerman, strlen(kGerman), error, sizeof error), VQ_OK);
  vq_string(384, text, sizeof text);
  CHECK_STR(0, text, "A|Glühlampe");
  vq_string(385, text, sizeof text);
  CHECK_STR(0, text, "C|North Sky Daylight");
  CHECK_INT(1, vq_load_translation_text("no tab here\n", 12, error, sizeof error), VQ_ERR_FAILED);
  CHECK_INT(1, error[0] != '\0', 1);
  vq_string(384, text, sizeof text);
  CHECK_STR(1, text, "A|Glühlampe");
  CHECK_INT(2, vq_load_translation("/nonexistent/strings.txt", NULL, 0), VQ_ERR_FAILED);
  CHECK_INT(3, vq_clear_translation(), VQ_OK);
  vq_string(384, text, sizeof text);
  CHECK_STR(3, text, "A|Tungsten");

  CHECK_INT(0, vq_illuminant_text(2, VQ_ILLUMINANT_CODE, text, sizeof text), 3);
  CHECK_STR(0, text, "D65");
  vq_illuminant_text(0, VQ_ILLUMINANT_NAME, text, sizeof text);
  CHECK_STR(1, text, "Tungsten");
  CHECK_INT(2, vq_illuminant_text(31, VQ_ILLUMINANT_TEXT, text, sizeof text), VQ_ERR_RANGE);
  vq_observer_text(1, VQ_OBSERVER_SLASH, text, sizeof text);
  CHECK_STR(0, text, "/10°");
  CHECK_INT(1, vq_observer_text(2, VQ_OBSERVER_PLAIN, text, sizeof text), VQ_ERR_RANGE);
}

typedef struct Captured {
  int count;
  int kind;
  char text[256];
} Captured;

static void CaptureMessage(void* context, int kind, const char* text, size_t length) {
  Captured* captured = (Captured*)context;
  ++captured->count;
  captured->kind = kind;
  snprintf(captured->text, sizeof captured->text, "%s", text);
  if (strlen(text) != length) captured->kind = -1;
}

/* ---- data ----------------------------------------------------------------------------- */

static void TestData(void) {
  /* K/S of 50 %: (1 - 0.5)^2 / (2 x 0.5) = 0.25; below 0.01 % it is 9999.
   * Density of 10 %: log10(100 / 10) = 1. */
  double values[3] = {50.0, 0.001, 10.0};
  CHECK_INT(0, vq_convert_refl(values, 2, VQ_REFL_KS), VQ_OK);
  CHECK_NEAR(0, values[0], 0.25, 1e-15);
  CHECK_NEAR(1, values[1], 9999.0, 0.0);
  CHECK_INT(2, vq_convert_refl(values + 2, 1, VQ_REFL_DENSITY), VQ_OK);
  CHECK_NEAR(2, values[2], 1.0, 1e-15);
  CHECK_INT(3, vq_convert_refl(values, 1, 5), VQ_ERR_RANGE);

  /* Onto the grid: 400-700 nm at 10 nm (fractions) is sampled, and repeated outward from the
   * ends; 20 nm data of a quadratic is reproduced at 450 nm by Sprague interpolation, which
   * is exact for polynomials up to degree 4 away from the ends. */
  double bands[31], fractions[31], quadratic[19], grid[2 * VQ_SPECTRUM_POINTS];
  for (int i = 0; i < 31; ++i) {
    bands[i] = 400.0 + 10.0 * i;
    fractions[i] = bands[i] / 1000.0;
  }
  char text[128];
  CHECK_INT(0, vq_map_to_grid(bands, 31, fractions, 1, 100.0, grid, text, sizeof text), VQ_OK);
  CHECK_NEAR(0, grid[4], 40.0, 1e-12);   /* 400 nm */
  CHECK_NEAR(0, grid[19], 55.0, 1e-12);  /* 550 nm */
  CHECK_NEAR(0, grid[0], 40.0, 1e-12);   /* 360 nm: the 400 nm value repeated */
  CHECK_NEAR(0, grid[39], 70.0, 1e-12);  /* 750 nm: the 700 nm value repeated */
  double twentyNm[19];
  for (int i = 0; i < 19; ++i) {
    twentyNm[i] = 380.0 + 20.0 * i;
    const double t = (twentyNm[i] - 500.0) / 100.0;
    quadratic[i] = 30.0 + 10.0 * t - 4.0 * t * t;
  }
  CHECK_INT(1, vq_map_to_grid(twentyNm, 19, quadratic, 1, 1.0, grid, NULL, 0), VQ_OK);
  CHECK_NEAR(1, grid[9], 30.0 - 5.0 - 1.0, 1e-9); /* 450 nm: t = -0.5 */
  CHECK_INT(2, vq_map_to_grid(bands, 2, fractions, 1, 100.0, grid, text, sizeof text),
            VQ_ERR_FAILED);
  CHECK_INT(2, text[0] != '\0', 1);

  CHECK_INT(0, vq_angle_name(0, text, sizeof text), 2);
  CHECK_STR(0, text, "d8");
  CHECK_INT(1, vq_angle_name(46, text, sizeof text), VQ_ERR_RANGE);
  vq_angle_filter(-1, text, sizeof text);
  CHECK_STR(0, text, "(Angle BETWEEN 0 AND 3 OR Angle = 8)");
  vq_angle_filter(16, text, sizeof text);
  CHECK_STR(1, text, "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 16 OR Angle = 12)");
}

/* ---- colorimetry ---------------------------------------------------------------------- */

static void TestWhitePointsAndTristimulus(void) {
  /* ASTM E308 white points of the 10 nm tables, to their three decimals. */
  static const struct {
    int illuminant, observer;
    double xn, zn;
  } kWhites[] = {{2, 0, 95.047, 108.883}, {2, 1, 94.811, 107.304}, {1, 0, 98.074, 118.232}};
  for (int i = 0; i < 3; ++i) {
    vq_xyz white;
    CHECK_INT(i, vq_white_point(kWhites[i].illuminant, kWhites[i].observer, &white), VQ_OK);
    CHECK_NEAR(i, white.x, kWhites[i].xn, 5e-4);
    CHECK_NEAR(i, white.y, 100.0, 5e-4);
    CHECK_NEAR(i, white.z, kWhites[i].zn, 5e-4);
    double table[VQ_WEIGHT_TABLE_LENGTH];
    CHECK_INT(i, vq_weight_table(kWhites[i].illuminant, kWhites[i].observer, table, 123), 123);
    CHECK_NEAR(i, table[120], white.x, 0.0);
    CHECK_NEAR(i, table[122], white.z, 0.0);
  }
  vq_xyz white;
  CHECK_INT(2, vq_white_point(17, 0, &white), VQ_ERR_RANGE);
  CHECK_INT(3, vq_white_point(2, 2, &white), VQ_ERR_RANGE);

  /* A flat 50 % spectrum gives exactly half of the 100 % one (halving is exact in binary),
   * and the 100 % one the white point within the tables' rounding. */
  double spectrum[VQ_SPECTRUM_POINTS];
  vq_xyz full, half;
  Flat(spectrum, 100.0);
  CHECK_INT(0, vq_compute_xyz(spectrum, 2, 1, &full), VQ_OK);
  Flat(spectrum, 50.0);
  vq_compute_xyz(spectrum, 2, 1, &half);
  vq_white_point(2, 1, &white);
  CHECK_NEAR(0, full.x, white.x, 0.025);
  CHECK_NEAR(0, full.y, 100.0, 0.005);
  CHECK_NEAR(0, full.z, white.z, 0.025);
  CHECK_NEAR(1, half.x, 0.5 * full.x, 0.0);
  CHECK_NEAR(1, half.y, 0.5 * full.y, 0.0);
  CHECK_NEAR(1, half.z, 0.5 * full.z, 0.0);

  /* An illuminant without a table falls back to D65; an observer other than 0 or 1 is
   * refused; a missing first point makes the whole triple missing. */
  vq_xyz fallback;
  CHECK_INT(2, vq_compute_xyz(spectrum, 20, 1, &fallback), VQ_FALLBACK);
  CHECK_NEAR(2, fallback.y, half.y, 0.0);
  CHECK_INT(3, vq_compute_xyz(spectrum, 2, 5, &fallback), VQ_ERR_RANGE);
  CHECK_INT(4, vq_compute_xyz(NULL, 2, 1, &fallback), VQ_ERR_NULL);
  spectrum[0] = VQ_MISSING;
  vq_xyz missing;
  vq_compute_xyz(spectrum, 2, 1, &missing);
  CHECK_MISSING(5, missing.x);
}

static void TestBatches(void) {
  /* 130 spectra, more than one internal chunk of vq_lab_batch: flat 1 % .. 130 %, with the
   * first point of spectrum 7 missing. Batch results equal the single calls bit for bit. */
  enum { kCount = 130 };
  static double spectra[kCount * VQ_SPECTRUM_POINTS];
  static vq_xyz xyz[kCount], xyz2[kCount];
  static vq_coords5 lab[kCount], lab2[kCount];
  for (int k = 0; k < kCount; ++k) Flat(spectra + k * VQ_SPECTRUM_POINTS, k + 1.0);
  spectra[7 * VQ_SPECTRUM_POINTS] = VQ_MISSING;
  CHECK_INT(0, vq_xyz_batch(spectra, kCount, 5, 0, xyz), VQ_OK);
  CHECK_INT(0, vq_lab_batch(spectra, kCount, 5, 0, lab, NULL), VQ_OK);
  CHECK_INT(0, vq_lab_batch(spectra, kCount, 5, 0, lab2, xyz2), VQ_OK);
  int mismatches = 0;
  for (int k = 0; k < kCount; ++k) {
    vq_xyz one;
    vq_coords5 oneLab;
    vq_compute_xyz(spectra + k * VQ_SPECTRUM_POINTS, 5, 0, &one);
    vq_xyz_to_lab(5, 0, &one, &oneLab);
    if (memcmp(&one, &xyz[k], sizeof one) != 0 || memcmp(&one, &xyz2[k], sizeof one) != 0 ||
        memcmp(&oneLab, &lab[k], sizeof oneLab) != 0 ||
        memcmp(&oneLab, &lab2[k], sizeof oneLab) != 0) {
      ++mismatches;
    }
  }
  CHECK_INT(1, mismatches, 0);
  CHECK_MISSING(2, lab[7].l);
  vq_coords5 lab3[2];
  CHECK_INT(3, vq_xyz_to_lab_batch(5, 0, xyz + 6, 2, lab3), VQ_OK);
  CHECK_INT(3, memcmp(lab3, lab + 6, sizeof lab3), 0);
  CHECK_INT(4, vq_xyz_batch(NULL, 0, 2, 0, NULL), VQ_OK);
  CHECK_INT(5, vq_xyz_batch(NULL, 1, 2, 0, xyz), VQ_ERR_NULL);
  CHECK_INT(6, vq_lab_batch(spectra, 2, 2, 0, NULL, NULL), VQ_ERR_NULL);
}

static void TestColourSpaces(void) {
  /* CIELAB of 50 % of the white: L* = 116 * 0.5^(1/3) - 16 = 76.069261014155..., a* = b* = 0. */
  vq_xyz white = {96.422, 100.0, 82.521};
  vq_xyz half = {48.211, 50.0, 41.2605};
  vq_coords5 lab;
  CHECK_INT(0, vq_xyz_to_lab_white(&white, &half, &lab), VQ_OK);
  CHECK_NEAR(0, lab.l, 116.0 * cbrt(0.5) - 16.0, 1e-9);
  CHECK_NEAR(0, lab.a, 0.0, 1e-12);

  /* CIELAB round trip through the pair's white (the inverse keeps the library's six-digit
   * offset, exact to about 4e-8 relative). */
  vq_coords5 start = {50.0, 20.0, -30.0, 0.0, 0.0}, back;
  vq_xyz xyz;
  CHECK_INT(1, vq_lab_to_xyz(2, 1, &start, &xyz), VQ_OK);
  vq_xyz_to_lab(2, 1, &xyz, &back);
  CHECK_NEAR(1, back.l, 50.0, 1e-6);
  CHECK_NEAR(1, back.a, 20.0, 1e-6);
  /* C*ab = sqrt(20^2 + 30^2) = 36.0555127546..., hab = 360 - atan(30/20) in degrees. */
  CHECK_NEAR(1, back.c, sqrt(1300.0), 1e-6);
  CHECK_NEAR(1, back.h, 360.0 - atan(1.5) * 57.29577951307855, 1e-5);
  CHECK_INT(2, vq_xyz_to_lab(17, 0, &xyz, &back), VQ_ERR_RANGE);

  /* CIELUV of the white itself: L* = 100, u* = v* = 0; back to the white. */
  vq_coords5 luv;
  vq_white_point(2, 0, &white);
  CHECK_INT(0, vq_xyz_to_luv(2, 0, &white, &luv), VQ_OK);
  CHECK_NEAR(0, luv.l, 100.0, 1e-12);
  CHECK_NEAR(0, luv.a, 0.0, 1e-12);
  vq_luv_to_xyz(2, 0, &luv, &xyz);
  CHECK_NEAR(1, xyz.x, white.x, 1e-9);

  /* Classic Hunter Lab (C, 2 degree) of (50, 40, 30) by hand:
   * L = 10 sqrt(40), a = 17.5 (1.02 x 50 - 40) / sqrt(40), b = 7 (40 - 0.847 x 30) / sqrt(40);
   * C and h the polar form of a, b. */
  vq_xyz sample = {50.0, 40.0, 30.0};
  vq_coords5 hunter;
  CHECK_INT(0, vq_xyz_to_hunter_lab(1, 0, &sample, &hunter), VQ_OK);
  CHECK_NEAR(0, hunter.l, 10.0 * sqrt(40.0), 1e-12);
  CHECK_NEAR(0, hunter.a, 17.5 * 11.0 / sqrt(40.0), 1e-12);
  CHECK_NEAR(0, hunter.b, 7.0 * 14.59 / sqrt(40.0), 1e-12);
  vq_hunter_lab_to_xyz(1, 0, &hunter, &xyz);
  CHECK_NEAR(1, xyz.x, 50.0, 1e-9);

  /* DIN99 of a neutral: L99 = 105.51 ln(1 + 0.0158 x 50), no chroma. */
  vq_coords5 neutral = {50.0, 0.0, 0.0, 0.0, 0.0}, din99;
  CHECK_INT(0, vq_lab_to_din99(&neutral, 1.0, 1.0, &din99), VQ_OK);
  CHECK_NEAR(0, din99.l, 105.51 * log(1.79), 1e-12);
  CHECK_NEAR(0, din99.c, 0.0, 1e-15);

  /* Chromaticity of D65 / 2 degree: 95.047 / 303.93 and 100 / 303.93. */
  vq_xyz d65 = {95.047, 100.0, 108.883}, black = {0.0, 0.0, 0.0};
  double x, y;
  CHECK_INT(0, vq_xyz_to_xy(&d65, &x, &y), VQ_OK);
  CHECK_NEAR(0, x, 95.047 / 303.93, 1e-15);
  CHECK_NEAR(0, y, 100.0 / 303.93, 1e-15);
  vq_xyz_to_xy(&black, &x, &y);
  CHECK_MISSING(1, x);

  /* Display RGB: twice the white saturates every channel at 255 (linear values >= 1), a
   * missing sample is the neutral grey 192. */
  int32_t rgb[3];
  vq_white_point(2, 0, &white);
  vq_xyz bright = {2.0 * white.x, 2.0 * white.y, 2.0 * white.z};
  CHECK_INT(0, vq_xyz_to_rgb(2, 0, &bright, rgb), VQ_OK);
  CHECK_INT(0, rgb[0] + rgb[1] + rgb[2], 3 * 255);
  vq_xyz absent = {VQ_MISSING, VQ_MISSING, VQ_MISSING};
  vq_xyz_to_rgb(2, 0, &absent, rgb);
  CHECK_INT(1, rgb[1], 192);

  /* Polar form: (3, 4) has chroma 5 and hue atan2(4, 3) = 53.130102354155...°; in radian mode
   * the +b axis is the rounded quarter turn 1.570796326795. */
  double c, h;
  CHECK_INT(0, vq_chroma_hue(3.0, 4.0, &c, &h), VQ_OK);
  CHECK_NEAR(0, c, 5.0, 1e-15);
  CHECK_NEAR(0, h, 53.13010235415598, 1e-9);
  vq_set_hue_in_degrees(0);
  vq_chroma_hue(0.0, 2.0, &c, &h);
  CHECK_NEAR(1, h, 1.570796326795, 0.0);
  vq_set_hue_in_degrees(1);
  CHECK_INT(2, vq_hue_in_degrees(), 1);
}

/* ---- colour difference ---------------------------------------------------------------- */

static vq_sample LabSample(double l, double a, double b) {
  vq_sample s;
  s.xyz.x = s.xyz.y = s.xyz.z = 20.0; /* any tristimulus values that are not missing */
  s.coords.l = l;
  s.coords.a = a;
  s.coords.b = b;
  vq_chroma_hue(a, b, &s.coords.c, &s.coords.h);
  return s;
}

static void TestDifferences(void) {
  /* Sharma, Wu and Dalal (2005), Table 1: pairs 1, 7, 17, 25 and 34, CIEDE2000 to 4 decimals.
   * Delta E*ab of the same pairs by hand: sqrt(dL^2 + da^2 + db^2). */
  static const double kPairs[][7] = {
      {50.0000, 2.6772, -79.7751, 50.0000, 0.0000, -82.7485, 2.0425},
      {50.0000, 0.0000, 0.0000, 50.0000, -1.0000, 2.0000, 2.3669},
      {50.0000, 2.5000, 0.0000, 73.0000, 25.0000, -18.0000, 27.1492},
      {60.2574, -34.0099, 36.2677, 60.4626, -34.1751, 39.4387, 1.2644},
      {2.0776, 0.0795, -1.1350, 0.9033, -0.0636, -0.5514, 0.9082},
  };
  for (int i = 0; i < 5; ++i) {
    const double* p = kPairs[i];
    vq_sample standard = LabSample(p[0], p[1], p[2]), trial = LabSample(p[3], p[4], p[5]);
    vq_diff7 d;
    CHECK_INT(i, vq_color_difference(&standard, &trial, VQ_DIFF_CIE2000, 2, 1, NULL, 0.0, &d),
              VQ_OK);
    CHECK_NEAR(i, d.slot[6], p[6], 1e-4);
    CHECK_INT(i, vq_color_difference(&standard, &trial, VQ_DIFF_CIELAB, 2, 1, NULL, 0.0, &d),
              VQ_OK);
    const double dl = p[3] - p[0], da = p[4] - p[1], db = p[5] - p[2];
    CHECK_NEAR(i, d.slot[6], sqrt(dl * dl + da * da + db * db), 1e-12);
    CHECK_NEAR(i, d.slot[0], dl, 1e-12);
  }

  /* A missing sample gives missing slots; an unknown system is refused. */
  vq_sample standard = LabSample(50, 0, 0), trial = LabSample(55, 1, 1);
  vq_diff7 d;
  trial.xyz.x = trial.xyz.y = trial.xyz.z = VQ_MISSING;
  vq_color_difference(&standard, &trial, VQ_DIFF_CMC, 2, 1, NULL, 0.0, &d);
  CHECK_MISSING(0, d.slot[6]);
  CHECK_INT(1, vq_color_difference(&standard, &trial, 13, 2, 1, NULL, 0.0, &d), VQ_ERR_RANGE);
  CHECK_INT(2, vq_color_difference(&standard, NULL, 0, 2, 1, NULL, 0.0, &d), VQ_ERR_NULL);

  /* One standard spectrum against trials: flat 50 % against flat 50 %, 60 % and a missing
   * curve. The batch equals sample-by-sample calls exactly; 60 % against 50 % is a pure
   * lightness step 116 (0.6^(1/3) - 0.5^(1/3)) within the tables' rounding of Yn. */
  static double trials[3 * VQ_SPECTRUM_POINTS];
  double standardCurve[VQ_SPECTRUM_POINTS];
  Flat(standardCurve, 50.0);
  Flat(trials, 50.0);
  Flat(trials + VQ_SPECTRUM_POINTS, 60.0);
  Flat(trials + 2 * VQ_SPECTRUM_POINTS, VQ_MISSING);
  const double weights[3] = {2.0, 1.0, 1.0};
  static const int kSystems[] = {VQ_DIFF_CIELAB, VQ_DIFF_CMC,    VQ_DIFF_HUNTER,
                                 VQ_DIFF_CIELUV, VQ_DIFF_DIN99,  VQ_DIFF_CIE2000,
                                 VQ_DIFF_FMC2,   VQ_DIFF_GE_PQS2, VQ_DIFF_CHROMATICITY};
  for (int s = 0; s < (int)(sizeof kSystems / sizeof kSystems[0]); ++s) {
    vq_diff7 batch[3];
    CHECK_INT(s, vq_delta_e_batch(standardCurve, trials, 3, kSystems[s], 2, 1, weights, 0.0, batch),
              VQ_OK);
    vq_sample std, one;
    vq_sample_from_spectrum(standardCurve, kSystems[s], 2, 1, weights, &std);
    for (int k = 0; k < 3; ++k) {
      vq_diff7 single;
      vq_sample_from_spectrum(trials + k * VQ_SPECTRUM_POINTS, kSystems[s], 2, 1, weights, &one);
      vq_color_difference(&std, &one, kSystems[s], 2, 1, weights, 0.0, &single);
      CHECK_INT(s * 10 + k, memcmp(&single, &batch[k], sizeof single), 0);
    }
    CHECK_MISSING(s, batch[2].slot[6]);
    if (kSystems[s] == VQ_DIFF_CIELAB) {
      CHECK_NEAR(s, batch[0].slot[6], 0.0, 0.0);
      CHECK_NEAR(s, batch[1].slot[6], 116.0 * (cbrt(0.6) - cbrt(0.5)), 5e-3);
    }
  }
  vq_diff7 none;
  CHECK_INT(0, vq_delta_e_batch(standardCurve, NULL, 0, VQ_DIFF_CIELAB, 2, 1, NULL, 0.0, NULL),
            VQ_OK);
  CHECK_INT(1, vq_delta_e_batch(standardCurve, trials, 1, 101, 2, 1, NULL, 0.0, &none),
            VQ_ERR_RANGE);

  /* Samples for DIN99 take kCH, kE from the weights; XYZ-only systems get missing
   * coordinates. */
  vq_xyz white;
  vq_white_point(2, 1, &white);
  vq_sample din, fmc;
  vq_coords5 lab, expected;
  vq_xyz_to_lab(2, 1, &white, &lab);
  vq_lab_to_din99(&lab, 2.0, 1.0, &expected);
  CHECK_INT(0, vq_sample_from_xyz(&white, VQ_DIFF_DIN99, 2, 1, weights, &din), VQ_OK);
  CHECK_NEAR(0, din.coords.l, expected.l, 0.0);
  vq_sample_from_xyz(&white, VQ_DIFF_FMC2, 2, 1, NULL, &fmc);
  CHECK_MISSING(1, fmc.coords.l);
  CHECK_NEAR(1, fmc.xyz.z, white.z, 0.0);
}

static void TestDifferenceTexts(void) {
  char text[128];
  vq_difference_text(VQ_DIFF_CIELAB, VQ_DIFF_TEXT_CAPTION, text, sizeof text);
  CHECK_STR(0, text, "CIE L*a*b*");
  vq_difference_text(VQ_DIFF_CIELAB, VQ_DIFF_TEXT_VALUE_COLUMNS, text, sizeof text);
  CHECK_STR(1, text, "L*|a*|b*|C*|h°");
  CHECK_INT(2, vq_difference_text(13, 0, text, sizeof text), VQ_ERR_RANGE);
  CHECK_INT(3, vq_difference_text(0, 16, text, sizeof text), VQ_ERR_RANGE);

  const char* cmcWeights[] = {"2", "1", "1"};
  CHECK_INT(0, vq_difference_weight_count(VQ_DIFF_CMC), 3);
  vq_difference_caption(VQ_DIFF_CMC, 0, cmcWeights, 3, text, sizeof text);
  CHECK_STR(0, text, "CMC (L:C) = 2 : 1, cf = 1");
  vq_difference_caption(VQ_DIFF_CMC, 1, cmcWeights, 3, text, sizeof text);
  CHECK_STR(1, text, "CMC (2:1) cf=1");
  CHECK_INT(2, vq_difference_caption(VQ_DIFF_CMC, 0, NULL, 3, text, sizeof text), VQ_ERR_NULL);
  vq_difference_total_label(VQ_DIFF_CMC, text, sizeof text);
  CHECK_STR(0, text, "ΔE*cmc");

  vq_shade_descriptor(1, text, sizeof text);
  CHECK_STR(0, text, "Darker");
  vq_shade_descriptor(0, text, sizeof text);
  CHECK_STR(1, text, " ");

  /* Thresholds: |dL| >= 0.1 counts (inclusive), |da| and |db| > 0.1 (strict). */
  static const struct {
    double a, b, dl, da, db;
    const char* text;
    int codes[3];
    uint32_t colours[3];
  } kShades[] = {
      {2, -3, 0.5, -0.2, -0.3, "Lighter,Less Red,Bluer", {2, 4, 10}, {0xFFFFFF, 0x0000FF, 0xFF0000}},
      {2, -3, -0.1, 0.1, 0.1000001, "Darker, ,Less Blue", {1, 0, 9}, {0, 0, 0xFF0000}},
      {-1, 1, 0.0999999, -0.1000001, -0.1, " ,Greener, ", {0, 6, 0}, {0, 0x008000, 0}},
  };
  for (int i = 0; i < 3; ++i) {
    vq_coords5 standard = {50, kShades[i].a, kShades[i].b, 0, 0};
    vq_diff7 d = {{kShades[i].dl, kShades[i].da, kShades[i].db, 0, 0, 0, 0}};
    int codes[3];
    uint32_t colours[3];
    const int length = vq_describe_shade(&standard, &d, 0, codes, colours, text, sizeof text);
    CHECK_INT(i, length, (int)strlen(kShades[i].text));
    CHECK_STR(i, text, kShades[i].text);
    for (int k = 0; k < 3; ++k) {
      CHECK_INT(i * 10 + k, codes[k], kShades[i].codes[k]);
      CHECK_INT(i * 10 + k, colours[k], kShades[i].colours[k]);
    }
  }
  vq_coords5 standard = {50, 2, -3, 0, 0};
  vq_diff7 d = {{VQ_MISSING, 1, 1, 0, 0, 0, 0}};
  int codes[3] = {7, 7, 7};
  CHECK_INT(0, vq_describe_shade(&standard, &d, 0, codes, NULL, text, sizeof text), 0);
  CHECK_STR(0, text, "");
  CHECK_INT(0, codes[0], 0);
}

/* ---- indices -------------------------------------------------------------------------- */

static void TestIndices(void) {
  /* The white of a pair is its own reference: CIE whiteness = its Y, CIE tint 0, both
   * filter values 100 %. */
  vq_xyz white;
  vq_white_point(2, 1, &white);
  double value;
  CHECK_INT(0, vq_index(VQ_INDEX_WI_CIE, 2, 1, &white, NULL, &value), VQ_OK);
  CHECK_NEAR(0, value, white.y, 1e-9);
  vq_index(VQ_INDEX_TINT_CIE, 2, 1, &white, NULL, &value);
  CHECK_NEAR(1, value, 0.0, 1e-9);
  vq_index(VQ_INDEX_FILTER_RZ, 2, 1, &white, NULL, &value);
  CHECK_NEAR(2, value, 100.0, 1e-9);
  vq_index(VQ_INDEX_FILTER_RX, 2, 1, &white, NULL, &value);
  CHECK_NEAR(3, value, 100.0, 1e-9);
  /* ASTM E313-73 whiteness is defined for C / 2 degree only. */
  vq_index(VQ_INDEX_WI_E313_73, 2, 1, &white, NULL, &value);
  CHECK_MISSING(4, value);

  /* ASTM D1925 of (80, 85, 90) under C / 2 degree: 100 (1.28 x 80 - 1.06 x 90) / 85. */
  vq_xyz sample[2] = {{80.0, 85.0, 90.0}, {VQ_MISSING, VQ_MISSING, VQ_MISSING}};
  double values[2];
  CHECK_INT(0, vq_index_batch(VQ_INDEX_YI_D1925, 1, 0, sample, 2, NULL, values), VQ_OK);
  CHECK_NEAR(0, values[0], 700.0 / 85.0, 1e-12);
  CHECK_MISSING(1, values[1]);

  /* Ganz/Griesser W = D Y + P x + Q y + C needs the coefficients: with (1, 0, 0, 0) it is Y. */
  const double ganz[4] = {1.0, 0.0, 0.0, 0.0};
  CHECK_INT(0, vq_index(VQ_INDEX_WI_GANZ, 2, 1, &white, NULL, &value), VQ_ERR_NULL);
  CHECK_INT(1, vq_index(VQ_INDEX_WI_GANZ, 2, 1, &white, ganz, &value), VQ_OK);
  CHECK_NEAR(1, value, white.y, 1e-12);
  CHECK_INT(2, vq_index(5, 2, 1, &white, NULL, &value), VQ_ERR_UNSUPPORTED);
  CHECK_INT(3, vq_index(VQ_INDEX_WI_CIE, 2, 1, NULL, NULL, &value), VQ_ERR_NULL);

  /* ASTM E313-10, table of white points: D65 / 2 degree (0.3127, 0.3290). */
  double xn, yn;
  CHECK_INT(0, vq_e313_white_point(2, 0, &xn, &yn), VQ_OK);
  CHECK_NEAR(0, xn, 0.3127, 0.0);
  CHECK_NEAR(0, yn, 0.3290, 0.0);
  CHECK_INT(1, vq_e313_white_point(0, 0, &xn, &yn), VQ_ERR_UNSUPPORTED);
}

static void TestWavelengthFastnessAndCatalogue(void) {
  /* Half way from the D65 / 2 degree white to the library's 2 degree locus point at 580 nm,
   * (0.5124, 0.4867): 580 nm at purity 50 %; the white itself has purity 0. */
  vq_xyz white, sample;
  double xn, yn, nm, purity;
  vq_white_point(2, 0, &white);
  vq_xyz_to_xy(&white, &xn, &yn);
  const double x = 0.5 * (xn + 0.5124), y = 0.5 * (yn + 0.4867);
  sample.x = 100.0 * x;
  sample.y = 100.0 * y;
  sample.z = 100.0 * (1.0 - x - y);
  CHECK_INT(0, vq_dominant_wavelength(2, 0, &sample, &nm, &purity), VQ_OK);
  CHECK_NEAR(0, nm, 580.0, 1e-9);
  CHECK_NEAR(0, purity, 50.0, 1e-9);
  vq_index(VQ_INDEX_EXCITATION_PURITY, 2, 0, &sample, NULL, &purity);
  CHECK_NEAR(1, purity, 50.0, 1e-9);
  vq_dominant_wavelength(2, 0, &white, &nm, &purity);
  CHECK_MISSING(2, nm);
  CHECK_NEAR(2, purity, 0.0, 0.0);

  /* Fastness of half the white against the white: a pure lightness step
   * dE = 100 - (116 x 0.5^(1/3) - 16). ISO 105-A04: 6.1 - 1.45 ln dE (below 4, so it stands);
   * ISO 105-A05: dE_F = dE, grade 5 - log2(dE / 0.85), step 1 (dE_F >= 11.6, the first
   * threshold). Identical samples grade 5, step 5 (only the last threshold, 0, is reached). */
  vq_xyz half = {0.5 * white.x, 0.5 * white.y, 0.5 * white.z};
  const double de = 116.0 - 116.0 * cbrt(0.5);
  double value;
  CHECK_INT(0, vq_fastness(VQ_INDEX_STAIN_A04, 2, 0, &white, &half, &value), VQ_OK);
  CHECK_NEAR(0, value, 6.1 - 1.45 * log(de), 1e-9);
  vq_fastness(VQ_INDEX_GREY_SCALE_A05, 2, 0, &white, &half, &value);
  CHECK_NEAR(1, value, 5.0 - log(de / 0.85) / log(2.0), 1e-9);
  vq_fastness(VQ_INDEX_GREY_SCALE_STEP_A05, 2, 0, &white, &half, &value);
  CHECK_NEAR(2, value, 1.0, 0.0);
  vq_fastness(VQ_INDEX_STAIN_A04, 2, 0, &white, &white, &value);
  CHECK_NEAR(3, value, 5.0, 0.0);
  vq_fastness(VQ_INDEX_STAIN_STEP_A04, 2, 0, &white, &white, &value);
  CHECK_NEAR(4, value, 5.0, 0.0);
  CHECK_INT(5, vq_fastness(VQ_INDEX_WI_CIE, 2, 0, &white, &white, &value), VQ_ERR_UNSUPPORTED);
  CHECK_INT(6, vq_index(VQ_INDEX_STAIN_A04, 2, 0, &white, NULL, &value), VQ_ERR_UNSUPPORTED);

  char text[64];
  vq_step_code_text(45, text, sizeof text);
  CHECK_STR(0, text, "4-5");
  vq_step_code_text(3, text, sizeof text);
  CHECK_STR(1, text, " 3 ");
  vq_index_text(VQ_INDEX_WI_CIE, VQ_INDEX_TEXT_LONG_NAME, text, sizeof text);
  CHECK_STR(0, text, "Whiteness: CIE");
  vq_index_text(VQ_INDEX_WI_CIE, VQ_INDEX_TEXT_HEADING, text, sizeof text);
  CHECK_STR(1, text, "WI\nCIE-94");
  CHECK_INT(2, vq_index_text(VQ_INDEX_WI_CIE, 3, text, sizeof text), VQ_ERR_RANGE);
  vq_index_mask(87, 0, text, sizeof text);
  CHECK_STR(0, text, "-000.00");
  vq_index_mask(VQ_INDEX_WI_CIE, 0, text, sizeof text);
  CHECK_STR(1, text, "0000.00");
}

/* ---- strength ------------------------------------------------------------------------- */

static void TestStrength(void) {
  /* Apparent strength is the ratio of the K/S sums. 50 % has K/S (0.5)^2 / 1 = 0.25 and
   * R = (3 - sqrt 5) / 2 solves (1 - r)^2 / (2r) = 0.5, so that batch is twice as strong. */
  double standard[VQ_SPECTRUM_POINTS], batch[VQ_SPECTRUM_POINTS];
  Flat(standard, 50.0);
  Flat(batch, 100.0 * (3.0 - sqrt(5.0)) / 2.0);
  vq_strength_settings settings = {0, 520, 100.0, 0, 0.0, 0.0};
  double strength = 0.0;
  int nm = -1;
  CHECK_INT(0, vq_strength(&settings, standard, batch, NULL, NULL, 2, 1, 0, &strength, &nm), VQ_OK);
  CHECK_NEAR(0, strength, 200.0, 1e-9);
  CHECK_INT(0, nm, 0);
  settings.method = 12; /* base: standard and batch exchanged */
  vq_strength(&settings, standard, batch, NULL, NULL, 2, 1, 0, &strength, NULL);
  CHECK_NEAR(1, strength, 50.0, 1e-9);
  settings.method = 2; /* at the user wavelength 520 nm, the same ratio */
  vq_strength(&settings, standard, batch, NULL, NULL, 2, 1, 0, &strength, &nm);
  CHECK_NEAR(2, strength, 200.0, 1e-9);
  CHECK_INT(2, nm, 520);
  CHECK_INT(3, vq_strength(&settings, standard, NULL, NULL, NULL, 2, 1, 0, &strength, NULL),
            VQ_ERR_NULL);

  char text[96];
  vq_strength_method_name(0, text, sizeof text);
  CHECK_STR(0, text, "Apparent");
  CHECK_INT(1, vq_strength_method_name(15, text, sizeof text), VQ_ERR_RANGE);
  settings.target_percent = 95.0;
  vq_strength_label(&settings, text, sizeof text);
  CHECK_STR(0, text, "95.00 Chromatic @ 520 nm");
  vq_set_strength_decimal_separator(",");
  settings.method = 0;
  vq_strength_label(&settings, text, sizeof text);
  CHECK_STR(1, text, "95,00 Apparent");
  vq_set_strength_decimal_separator(".");
  vq_strength_adjust_note(&settings, 80.0, 520, text, sizeof text);
  CHECK_STR(0, text, "(Apparent Strength adj. from 80.00% to 95.00%)");
}

/* ---- minimisers ----------------------------------------------------------------------- */

typedef struct Counter {
  int calls;
} Counter;

/* (x - 2)^2 + 1: minimum 1 at x = 2. */
static double Parabola(void* context, double x) {
  ++((Counter*)context)->calls;
  return (x - 2.0) * (x - 2.0) + 1.0;
}

static double TwoMinusSquare(void* context, double x) {
  (void)context;
  return x * x - 2.0;
}

static double Linear(void* context, double x) {
  (void)context;
  return x - 1.0;
}

static void TestSearches(void) {
  Counter counter = {0};
  double points[6] = {0.0, 0.5, 0.0, 0.0, 0.0, 0.0};
  CHECK_INT(0, vq_bracket_minimum(Parabola, &counter, points), VQ_SEARCH_FOUND);
  const double lo = points[0] < points[2] ? points[0] : points[2];
  const double hi = points[0] < points[2] ? points[2] : points[0];
  CHECK_INT(0, lo < 2.0 && 2.0 < hi, 1);
  CHECK_INT(0, points[4] <= points[3] && points[4] <= points[5], 1);
  CHECK_INT(1, vq_golden_section(Parabola, &counter, points, 1e-10), VQ_SEARCH_FOUND);
  CHECK_NEAR(1, points[0], 2.0, 1e-6);
  CHECK_NEAR(1, points[3], 1.0, 1e-12);

  /* x - 1 rises from 0 to 0.5, so the walk runs on -(x - 1) toward larger x; the sign change
   * between a = 0 and c = 0.5 + 1.618034 x 0.5 goes to the root finder: root 1. */
  double walk[6] = {0.0, 0.5, 0.0, 0.0, 0.0, 0.0};
  CHECK_INT(2, vq_bracket_extremum_or_root(Linear, NULL, walk), VQ_SEARCH_ROOT);
  CHECK_NEAR(2, walk[0], 1.0, 1e-9);

  vq_root_result root;
  CHECK_INT(0, vq_find_root(TwoMinusSquare, NULL, 0.0, 2.0, 1e-13, &root), VQ_OK);
  CHECK_INT(0, root.found, 1);
  CHECK_NEAR(0, root.root, sqrt(2.0), 1e-12);
  CHECK_INT(1, vq_find_root_bracketed(TwoMinusSquare, NULL, 2.0, 3.0, 2.0, 7.0, 0.0, &root),
            VQ_OK);
  CHECK_INT(1, root.found, 0);
  CHECK_INT(2, vq_find_root(NULL, NULL, 0.0, 2.0, 0.0, &root), VQ_ERR_NULL);
  CHECK_INT(3, vq_bracket_minimum(Parabola, &counter, NULL), VQ_ERR_NULL);
}

/* ---- settings, units, dates ----------------------------------------------------------- */

static void TestSettingsAndUnits(void) {
  CHECK_INT(0, vq_settings_use_folder(scratchFolder, 0), VQ_OK);
  int32_t number = 0;
  CHECK_INT(0, vq_settings_get_int("Test", "Count", -7, &number), VQ_OK);
  CHECK_INT(0, number, -7);
  CHECK_INT(1, vq_settings_set_int("Test", "Count", 42), VQ_OK);
  vq_settings_get_int("Test", "count", -7, &number);  /* names ignore ASCII case */
  CHECK_INT(1, number, 42);
  char text[16];
  CHECK_INT(2, vq_settings_set_string("Test", "Name", "Quality control"), VQ_OK);
  CHECK_INT(2, vq_settings_get_string("Test", "Name", "none", text, 8), 15);
  CHECK_STR(2, text, "Quality");
  vq_settings_get_string("Test", "Other", "none", text, sizeof text);
  CHECK_STR(3, text, "none");
  CHECK_INT(4, vq_settings_set_int(NULL, "Count", 1), VQ_ERR_NULL);

  CHECK_INT(0, vq_weight_unit_name(0, text, sizeof text), 6);
  CHECK_STR(0, text, "Pounds");
  vq_volume_unit_name(0, text, sizeof text);
  CHECK_STR(1, text, "Gallons");
  CHECK_INT(2, vq_weight_unit_name(15, text, sizeof text), VQ_ERR_NOT_FOUND);
  static const int kShots[][2] = {{17, 0}, {18, 1}, {21, 1}, {22, 0}};
  for (int i = 0; i < 4; ++i) CHECK_INT(i, vq_is_shot_unit((uint32_t)kShots[i][0]), kShots[i][1]);
}

static void TestDates(void) {
  /* 1 000 000 000 s after the epoch is Sunday 9 September 2001, 01:46:40 UTC; the "C" locale
   * writes MM/dd/yy and HH:mm:ss. */
  const int64_t t = 1000000000;
  char text[64];
  CHECK_INT(0, vq_format_date(VQ_DATE_SHORT, t, text, sizeof text), 8);
  CHECK_STR(0, text, "09/09/01");
  vq_format_date(VQ_TIME_OF_DAY, t, text, sizeof text);
  CHECK_STR(1, text, "01:46:40");
  vq_format_date(VQ_DATE_TIME, t, text, sizeof text);
  CHECK_STR(2, text, "09/09/01 -- 01:46:40");
  vq_format_date(VQ_DATE_LONG, t, text, sizeof text);
  CHECK_STR(3, text, "Sunday, September 9, 2001");
  CHECK_INT(4, vq_format_date(VQ_DATE_SHORT, -5, text, sizeof text), VQ_ERR_FAILED);
  CHECK_INT(5, vq_format_date(4, t, text, sizeof text), VQ_ERR_RANGE);
  CHECK_INT(0, vq_format_pattern("'Batch' nnn yyyy-MM-dd", 7, t, text, sizeof text), 20);
  CHECK_STR(0, text, "Batch 007 2001-09-09");
  CHECK_INT(1, vq_format_pattern("'open", 7, t, text, sizeof text), VQ_ERR_FAILED);
  vq_time_separator(text, sizeof text);
  CHECK_STR(0, text, ":");
  int64_t now = 0;
  CHECK_INT(0, vq_safe_current_time(&now), VQ_OK);
  CHECK_INT(0, now > 1600000000, 1);
  CHECK_INT(0, vq_format_date(VQ_DATE_SHORT, VQ_TIME_NOW, text, sizeof text), 8);
  int running = 0;
  CHECK_INT(0, vq_clock_text(0, &running, text, sizeof text), 4);
  CHECK_STR(0, text, "0:00");
  CHECK_INT(0, running, 1);
}

/* ---- instrument log ------------------------------------------------------------------- */

static long ReadFile(const char* path, char* text, size_t size) {
  FILE* file = fopen(path, "rb");
  if (file == NULL) return -1;
  const size_t n = fread(text, 1, size - 1, file);
  text[n] = '\0';
  fclose(file);
  return (long)n;
}

static void TestLog(Captured* captured) {
  char folder[300], logFile[320], text[256];
  snprintf(folder, sizeof folder, "%s/", scratchFolder);
  snprintf(logFile, sizeof logFile, "%sPalDebug.txt", folder);
  vq_settings_set_string("Diagnostics", "PathInfo", folder);
  vq_settings_set_int("Diagnostics", "General", 2);
  vq_settings_set_int("Diagnostics", "Color Sensor", 1);
  vq_log_reset_levels();
  int32_t level = -1;
  CHECK_INT(0, vq_log_level(VQ_LOG_GENERAL, &level), VQ_OK);
  CHECK_INT(0, level, 2);
  CHECK_INT(0, vq_log_is_on(VQ_LOG_COLOR_SENSOR), 1);
  CHECK_INT(1, vq_log_is_on(7), VQ_ERR_RANGE);

  /* Level 2: to the file, each line feed written as CR LF. */
  CHECK_INT(0, vq_log(VQ_LOG_GENERAL, "first\nsecond\n"), VQ_OK);
  CHECK_INT(0, ReadFile(logFile, text, sizeof text), 15);
  CHECK_STR(0, text, "first\r\nsecond\r\n");
  /* Level 1: to the message sink, with blanks and CR made visible in the send record. */
  CHECK_INT(1, vq_log_send("M 1\r", 3), VQ_OK);
  CHECK_INT(1, captured->count, 1);
  CHECK_INT(1, captured->kind, VQ_MESSAGE_INFORMATION);
  CHECK_STR(1, captured->text, "SendToComm = |M^1m|, nError = 3\n");
  char raw[] = "a b\r\n";
  vq_log_make_printable(raw, 5);
  CHECK_STR(2, raw, "a^bmj");

  /* A log file beyond 1 MiB is deleted at the next write, which then fails: the file error
   * reaches C as VQ_ERR_LOG_FILE, and both channels are switched off. */
  FILE* file = fopen(logFile, "ab");
  static char block[4096];
  memset(block, 'x', sizeof block);
  for (int i = 0; i < 257 && file != NULL; ++i) fwrite(block, 1, sizeof block, file);
  if (file != NULL) fclose(file);
  CHECK_INT(3, vq_log_write(2, "lost", 4), VQ_ERR_LOG_FILE);
  CHECK_INT(3, access(logFile, F_OK), -1);
  CHECK_INT(3, vq_log_is_on(VQ_LOG_GENERAL), 0);
  CHECK_INT(3, captured->count, 2);
  CHECK_INT(4, vq_log(VQ_LOG_GENERAL, NULL), VQ_ERR_NULL);
}

int main(void) {
  /* A fixed zone and locale for the date texts, and a scratch settings store. */
  setenv("TZ", "UTC0", 1);
  setenv("LC_ALL", "C", 1);
  tzset();
  snprintf(scratchFolder, sizeof scratchFolder, "%s/vq_c_api_XXXXXX",
           getenv("TMPDIR") != NULL ? getenv("TMPDIR") : "/tmp");
  if (mkdtemp(scratchFolder) == NULL) {
    printf("cannot create a scratch folder\n");
    return 1;
  }
  Captured captured = {0, -1, ""};
  vq_set_message_sink(CaptureMessage, &captured);

  TestVersionAndResultTexts();
  TestStrings();
  TestData();
  TestWhitePointsAndTristimulus();
  TestBatches();
  TestColourSpaces();
  TestDifferences();
  TestDifferenceTexts();
  TestIndices();
  TestWavelengthFastnessAndCatalogue();
  TestStrength();
  TestSearches();
  TestSettingsAndUnits();
  TestDates();
  TestLog(&captured);

  vq_set_message_sink(NULL, NULL);
  vq_settings_use_folder(NULL, 1);
  if (nftw(scratchFolder, RemoveEntry, 16, FTW_DEPTH | FTW_PHYS) != 0) {
    printf("could not remove %s\n", scratchFolder);
  }
  printf("%d of %d checks failed\n", failures, checks);
  return failures == 0 ? 0 : 1;
}
