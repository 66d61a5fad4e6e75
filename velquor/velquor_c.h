/* velquor C interface: the library's main operations for C and for languages that bind to C.
 *
 * Conventions
 * - Every name starts with vq_ (functions, types) or VQ_ (macros). The header compiles as C99
 *   and later and as C++; nothing C++ crosses the interface and nothing throws out of it.
 * - Colour records are plain structs of doubles: vq_xyz (X, Y, Z on the Y = 100 scale),
 *   vq_coords5 (lightness, first axis, second axis, chroma, hue) and vq_diff7 (the seven
 *   slots of a colour difference). Spectra are arrays of VQ_SPECTRUM_POINTS (40) doubles,
 *   reflectance or transmittance in percent at 360, 370, ... 750 nm; a batch of n spectra is
 *   40 n doubles, spectrum k starting at element 40 k.
 * - The caller owns every buffer. Arrays come with their counts; the library never keeps a
 *   pointer it was given (except the context of an installed message sink).
 * - Most functions return an int result code: VQ_OK (0) on success, a positive warning
 *   (VQ_FALLBACK) when the call succeeded with a documented substitution, or a negative
 *   VQ_ERR_* code. On a negative result the outputs are left as they were, except that a
 *   text function may leave an empty text (or, where it says so, a partial one or a reason)
 *   in its buffer. vq_result_text names each code.
 * - Functions that produce text copy it into a caller buffer of `size` bytes, snprintf-style:
 *   at most size - 1 bytes and a terminating zero (nothing at all when size is 0, and then
 *   the buffer may be NULL), and return the full length of the text in bytes without the
 *   zero. A result >= size means the text was cut; call again with result + 1 bytes. Texts
 *   are UTF-8. A NULL buffer with a non-zero size is VQ_ERR_NULL.
 * - Calculations keep the library's rules: an input that is missing (the value VQ_MISSING,
 *   1e-05; see vq_is_missing) gives missing outputs with VQ_OK, it is not an error. Errors are
 *   reserved for calls that cannot be carried out: a NULL pointer, an illuminant outside
 *   0..16, an observer other than 0 or 1, an unknown difference system, and the like.
 * - Hue angles are in degrees (see vq_set_hue_in_degrees).
 * - Threads: as the C++ library. Calls may come from any thread; the process-wide state
 *   (weighting tables, string translation, message sink, settings store, log levels) is
 *   shared by all of them. Large batches run on several threads (vq_set_batch_threads).
 */
#ifndef VELQUOR_VELQUOR_C_H_
#define VELQUOR_VELQUOR_C_H_

#include <stddef.h>
#include <stdint.h>

#include "velquor/version.h"

#ifdef __cplusplus
#define VQ_NOEXCEPT noexcept
extern "C" {
#else
#define VQ_NOEXCEPT
#endif

/* ---- Version ------------------------------------------------------------------------------ */

/* The version of the headers as one number: major * 10000 + minor * 100 + patch. */
#define VQ_VERSION_NUMBER \
  (VELQUOR_VERSION_MAJOR * 10000 + VELQUOR_VERSION_MINOR * 100 + VELQUOR_VERSION_PATCH)

/* "major.minor.patch" of the library that is running (a static text). */
const char* vq_version(void) VQ_NOEXCEPT;
/* The running library's version as VQ_VERSION_NUMBER computes it for the headers. */
int vq_version_number(void) VQ_NOEXCEPT;

/* ---- Result codes ------------------------------------------------------------------------- */

#define VQ_OK 0
/* The illuminant has no weighting table: D65 (index 2) was used instead, the library's
 * fallback. The outputs are valid for D65. */
#define VQ_FALLBACK 1
#define VQ_ERR_NULL (-1)        /* a required pointer is NULL */
#define VQ_ERR_RANGE (-2)       /* an argument lies outside its documented range */
#define VQ_ERR_UNSUPPORTED (-3) /* the library does not compute this (e.g. an index identifier) */
#define VQ_ERR_NOT_FOUND (-4)   /* the string, text or value does not exist */
#define VQ_ERR_FAILED (-5)      /* the operation was carried out and failed (see the function) */
#define VQ_ERR_LOG_FILE (-6)    /* an oversized log file was deleted; the text was not logged */
#define VQ_ERR_NO_MEMORY (-7)   /* memory ran out */
#define VQ_ERR_INTERNAL (-8)    /* an unexpected failure inside the library */

/* A short English description of a result code ("ok", "null pointer", ...); never NULL. */
const char* vq_result_text(int code) VQ_NOEXCEPT;

/* ---- Records and shared constants --------------------------------------------------------- */

/* The missing value: an absent point, coordinate or result. */
#define VQ_MISSING 1e-05
/* Points of a spectrum: 360 nm to 750 nm in 10 nm steps. */
#define VQ_SPECTRUM_POINTS 40
#define VQ_FIRST_WAVELENGTH 360
#define VQ_WAVELENGTH_STEP 10
/* Illuminant indices with a weighting table: 0 A, 1 C, 2 D65, 3 CWF, 4 T84, 5 D50, 6 D55,
 * 7 D75, 8 U50, 9 U30, 10 F6, 11 F7, 12 F8, 13 F10, 14 H23, 15 HM, 16 F4. */
#define VQ_ILLUMINANT_COUNT 17
#define VQ_ILLUMINANT_SLOTS 31 /* catalogue texts: 0..30 */
/* Observer codes. */
#define VQ_OBSERVER_2 0  /* CIE 1931 2 degree */
#define VQ_OBSERVER_10 1 /* CIE 1964 10 degree */

typedef struct vq_xyz {
  double x, y, z;
} vq_xyz;

/* Coordinates of a colour space: lightness, first and second axis, chroma, hue (degrees). */
typedef struct vq_coords5 {
  double l, a, b, c, h;
} vq_coords5;

/* A colour difference: slot[0..2] the rectangular differences, slot[3..5] the (weighted)
 * lightness, chroma and hue terms, slot[6] the total; trial minus standard. */
typedef struct vq_diff7 {
  double slot[7];
} vq_diff7;

/* One side of a comparison: tristimulus values and the coordinates the difference system
 * reads (see vq_sample_from_xyz). */
typedef struct vq_sample {
  vq_xyz xyz;
  vq_coords5 coords;
} vq_sample;

/* 1 when `value` counts as missing (strictly between 9.99e-06 and 1.001e-05), else 0. */
int vq_is_missing(double value) VQ_NOEXCEPT;

/* ---- Library frame: strings, translation, messages, options ------------------------------- */

/* String `id` of the library's string table (or of the loaded translation). Returns its
 * length; VQ_ERR_NOT_FOUND (and an empty text) when no string has that identifier.
 * String 384 is "A|Tungsten". */
int vq_string(uint32_t id, char* buffer, size_t size) VQ_NOEXCEPT;

/* Loads a translated string table (UTF-8 lines "<id><TAB><text>") from a file or from
 * memory (`length` bytes); its texts replace the library's by identifier. VQ_ERR_FAILED when
 * it cannot be read or parsed: the previous translation stays, and the reason (file, line)
 * is copied into `error` (may be NULL with error_size 0). */
int vq_load_translation(const char* path, char* error, size_t error_size) VQ_NOEXCEPT;
int vq_load_translation_text(const char* text, size_t length, char* error,
                             size_t error_size) VQ_NOEXCEPT;
/* Drops the translation. */
int vq_clear_translation(void) VQ_NOEXCEPT;

/* Message kinds passed to a message sink. */
#define VQ_MESSAGE_INFORMATION 0
#define VQ_MESSAGE_WARNING 1
#define VQ_MESSAGE_ERROR 2

/* Receives the library's user messages (the log's "deleted" notice, level-1 log texts, the
 * clock warning): `text` holds `length` bytes and a terminating zero, valid during the call.
 * Deliveries are serialised; a sink must not call back into functions that show messages. */
typedef void (*vq_message_sink)(void* context, int kind, const char* text, size_t length);
/* Installs `sink` with its `context` for the whole process; NULL restores the default
 * (standard error; on Windows a message box unless VELQUOR_MESSAGES=stderr is set). */
int vq_set_message_sink(vq_message_sink sink, void* context) VQ_NOEXCEPT;

/* The unit of hue angles at the interface: 1 degrees (the default), 0 radians. */
int vq_hue_in_degrees(void) VQ_NOEXCEPT;
int vq_set_hue_in_degrees(int degrees) VQ_NOEXCEPT;

/* Threads of the batch functions (vq_xyz_batch, vq_xyz_to_lab_batch, vq_xyz_to_luv_batch,
 * vq_lab_batch, vq_lab_to_din99_batch, vq_difference_batch, vq_difference_pairs,
 * vq_delta_e_batch, vq_index_batch, vq_strength_batch), for the whole process. Their numbers
 * come from the library's SIMD kernels where it has them: tristimulus values bit for bit as
 * vq_compute_xyz, the rest within 1e-13 relative of the library's scalar formulas (atan2, sin,
 * cos, exp and log are vector functions there), every branch and missing value as the scalar
 * formula decides it. A batch larger than one chunk (256 to 32768 samples, by function) is
 * split into fixed chunks run by the calling thread and up to threads - 1 workers of a pool
 * the library starts on first need; smaller batches, and any batch at threads = 1, run in the
 * calling thread alone. Every sample is computed by the same code whatever the split, so
 * results are identical, bit for bit, at every setting.
 * `threads`: 0 = one per processor (the default), 1 = the calling thread only, larger values
 * are cut to VQ_MAX_BATCH_THREADS, negative values count as 1. Several threads may run batches
 * at once. The pool's workers are never joined: they wait, idle, until the process ends, and
 * once the pool exists the library stays loaded until then (FreeLibrary/dlclose keep it). */
#define VQ_MAX_BATCH_THREADS 64
int vq_set_batch_threads(int threads) VQ_NOEXCEPT;
/* The thread count in use, 1..VQ_MAX_BATCH_THREADS (0 resolved to the processor count). */
int vq_batch_threads(void) VQ_NOEXCEPT;

/* ---- Spectral data ------------------------------------------------------------------------ */

/* Reflectance conversions (applied in place to `count` values). */
#define VQ_REFL_NONE 0     /* unchanged */
#define VQ_REFL_KS 1       /* Kubelka-Munk K/S; 9999.0 below 0.01 % */
#define VQ_REFL_DENSITY 2  /* optical density log10(100 / R); 4.3 below 0.01 %, 0 above 100 % */
#define VQ_REFL_LN 3       /* ln(R) */
#define VQ_REFL_MINUS_LN 4 /* -ln(R) */
int vq_convert_refl(double* values, size_t count, int conversion) VQ_NOEXCEPT;

/* Display name of angle code 0..45 (geometry, viewing angle, specular mode, ...), e.g. "d/8".
 * VQ_ERR_RANGE above 45. */
int vq_angle_name(int code, char* buffer, size_t size) VQ_NOEXCEPT;
/* Database filter clause on the column Angle for measurements compatible with angle code
 * `code` (0..255), e.g. "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 16 OR Angle = 12)";
 * code -1 gives the standard geometries alone. */
int vq_angle_filter(int code, char* buffer, size_t size) VQ_NOEXCEPT;

/* Maps `count` spectra measured at `band_count` wavelengths (nm, strictly increasing or
 * decreasing; spectrum k is values[k * band_count ...]) onto the library's grid, 40 doubles
 * each, multiplied by `to_percent` (100 for fractions, 1 for percent). Measured grid points
 * are taken as they are; the others inside the measured range are interpolated (Sprague,
 * CIE 167:2005, for regular data of 6 or more bands, else a local cubic); points outside it
 * repeat the nearest measured value (CIE 15:2004). A missing value makes the grid points
 * computed from it missing. VQ_ERR_FAILED for a wavelength set that cannot be mapped (fewer
 * than 3 bands, a repeated wavelength, a range that does not reach the grid), with the reason
 * in `error` (may be NULL with error_size 0). */
int vq_map_to_grid(const double* wavelengths, size_t band_count, const double* values,
                   size_t count, double to_percent, double* spectra, char* error,
                   size_t error_size) VQ_NOEXCEPT;

/* ---- Colorimetry ------------------------------------------------------------------------- */

/* Texts of illuminant `index` (0..30): the whole "code|name" text, the code or the name. */
#define VQ_ILLUMINANT_TEXT 0 /* "D65|Daylight 6500° Kelvin" */
#define VQ_ILLUMINANT_CODE 1 /* "D65" */
#define VQ_ILLUMINANT_NAME 2 /* "Daylight 6500° Kelvin" */
int vq_illuminant_text(int index, int part, char* buffer, size_t size) VQ_NOEXCEPT;
/* Texts of an observer (0 or 1). */
#define VQ_OBSERVER_PLAIN 0 /* "2°" */
#define VQ_OBSERVER_DASH 1  /* " - 2°" */
#define VQ_OBSERVER_SLASH 2 /* "/2°" */
int vq_observer_text(int observer, int form, char* buffer, size_t size) VQ_NOEXCEPT;

/* The ASTM E308-type weighting table of an illuminant and observer: 123 doubles, the X, Y and
 * Z weights at 360..750 nm (0-39, 40-79, 80-119), then Xn, Yn, Zn. Copies the first
 * min(count, 123) doubles and returns 123 (VQ_WEIGHT_TABLE_LENGTH). */
#define VQ_WEIGHT_TABLE_LENGTH 123
int vq_weight_table(int illuminant, int observer, double* table, size_t count) VQ_NOEXCEPT;
/* White point Xn, Yn = 100, Zn of the pair (from its weighting table). */
int vq_white_point(int illuminant, int observer, vq_xyz* white) VQ_NOEXCEPT;

/* Tristimulus values of one spectrum (ASTM E308 weighted sums, 10 nm): 100 % everywhere gives
 * the white point. A missing first point gives missing X, Y, Z. An illuminant index outside
 * 0..16 is replaced by D65 (result VQ_FALLBACK). */
int vq_compute_xyz(const double* spectrum, int illuminant, int observer, vq_xyz* xyz) VQ_NOEXCEPT;
/* The same over `count` spectra (40 count doubles) into `count` records. */
int vq_xyz_batch(const double* spectra, size_t count, int illuminant, int observer,
                 vq_xyz* xyz) VQ_NOEXCEPT;

/* CIELAB (CIE 15:2004) with the white of the pair, or with the white given. */
int vq_xyz_to_lab(int illuminant, int observer, const vq_xyz* xyz, vq_coords5* lab) VQ_NOEXCEPT;
int vq_xyz_to_lab_white(const vq_xyz* white, const vq_xyz* xyz, vq_coords5* lab) VQ_NOEXCEPT;
/* Reads lab->l, lab->a, lab->b. */
int vq_lab_to_xyz(int illuminant, int observer, const vq_coords5* lab, vq_xyz* xyz) VQ_NOEXCEPT;
/* CIELAB of `count` XYZ records. */
int vq_xyz_to_lab_batch(int illuminant, int observer, const vq_xyz* xyz, size_t count,
                        vq_coords5* lab) VQ_NOEXCEPT;
/* CIELAB of `count` spectra, through their tristimulus values, which are also stored in `xyz`
 * unless it is NULL. Illuminant fallback as vq_compute_xyz. */
int vq_lab_batch(const double* spectra, size_t count, int illuminant, int observer,
                 vq_coords5* lab, vq_xyz* xyz) VQ_NOEXCEPT;

/* CIELUV (CIE 15:2004); black (no chromaticity) gives missing coordinates. */
int vq_xyz_to_luv(int illuminant, int observer, const vq_xyz* xyz, vq_coords5* luv) VQ_NOEXCEPT;
int vq_luv_to_xyz(int illuminant, int observer, const vq_coords5* luv, vq_xyz* xyz) VQ_NOEXCEPT;
/* CIELUV of `count` XYZ records. */
int vq_xyz_to_luv_batch(int illuminant, int observer, const vq_xyz* xyz, size_t count,
                        vq_coords5* luv) VQ_NOEXCEPT;

/* Hunter L, a, b in l, a, b (classic formulas for C / 2 degree, the white point form for
 * every other pair); c and h receive the polar form of a, b (vq_chroma_hue). */
int vq_xyz_to_hunter_lab(int illuminant, int observer, const vq_xyz* xyz,
                         vq_coords5* hunter) VQ_NOEXCEPT;
int vq_hunter_lab_to_xyz(int illuminant, int observer, const vq_coords5* hunter,
                         vq_xyz* xyz) VQ_NOEXCEPT;

/* DIN99 (DIN 6176) of CIELAB lab->l, a, b with the weights kCH and kE (1, 1 unweighted). */
int vq_lab_to_din99(const vq_coords5* lab, double kch, double ke, vq_coords5* din99) VQ_NOEXCEPT;
/* DIN99 of `count` CIELAB records (l, a, b read). */
int vq_lab_to_din99_batch(const vq_coords5* lab, size_t count, double kch, double ke,
                          vq_coords5* din99) VQ_NOEXCEPT;

/* CIE 1931 chromaticity x, y; missing (VQ_MISSING) for a missing sample or X + Y + Z = 0. */
int vq_xyz_to_xy(const vq_xyz* xyz, double* x, double* y) VQ_NOEXCEPT;

/* Display RGB 0..255 (sRGB primaries balanced to the pair's white); grey 192 for a missing
 * sample. */
int vq_xyz_to_rgb(int illuminant, int observer, const vq_xyz* xyz, int32_t rgb[3]) VQ_NOEXCEPT;

/* Chroma sqrt(a^2 + b^2) and hue angle of (a, b). */
int vq_chroma_hue(double a, double b, double* chroma, double* hue) VQ_NOEXCEPT;

/* ---- Colour difference -------------------------------------------------------------------- */

/* Difference-system codes. */
#define VQ_DIFF_CIELAB 0
#define VQ_DIFF_CMC 1
#define VQ_DIFF_HUNTER 2
#define VQ_DIFF_FMC2 3
#define VQ_DIFF_CIE94 4
#define VQ_DIFF_CIELCH 5
#define VQ_DIFF_CIELUV 6
#define VQ_DIFF_XYZ_YXY 7
#define VQ_DIFF_GE_PQS2 8
#define VQ_DIFF_AUDI 9
#define VQ_DIFF_DIN99 10
#define VQ_DIFF_CIE2000 11
#define VQ_DIFF_DIN6175 12
#define VQ_DIFF_CHROMATICITY 100

/* Fills a sample for difference system `system` from its tristimulus values: the coordinates
 * are CIELAB for systems 0, 1, 4, 5, 7, 9, 11, 12; CIELUV for 6; DIN99 for 10 with kCH =
 * weights[0] and kE = weights[1] (NULL weights: 1, 1); Hunter Lab for 2 (as
 * vq_xyz_to_hunter_lab); systems 3, 8 and 100 read XYZ only and get missing coordinates. */
int vq_sample_from_xyz(const vq_xyz* xyz, int system, int illuminant, int observer,
                       const double weights[3], vq_sample* sample) VQ_NOEXCEPT;
/* The same from a spectrum (illuminant fallback as vq_compute_xyz). */
int vq_sample_from_spectrum(const double* spectrum, int system, int illuminant, int observer,
                            const double weights[3], vq_sample* sample) VQ_NOEXCEPT;

/* Compares trial with standard in `system`. weights (NULL: 1, 1, 1): CMC l, c; CIE94 and
 * CIE2000 kL, kC, kH; DIN6175 gL, gC, gH. parameter: the viewing angle of system 9, p of
 * system 12 (0 is taken as 1). illuminant and observer are read by GE-PQS II. Results are
 * limited to -999.99..999.99; a missing sample gives missing slots. System 100 puts the
 * trial's x, y in slot[0], slot[1] and 0 in the other slots.
 * Systems 0, 1, 4, 5, 6, 10, 11 and 12 are computed several trials at a time in the lanes of
 * the CPU's vector unit (SSE4, AVX2, AVX-512, NEON, chosen at run time); systems 1 (CMC) and
 * 11 (CIE2000) then use vector cos, sin, exp and atan2 and agree with the one-pair formulas of
 * the C++ interface to about 1e-15 relative, the others give the same bits. A pair's result
 * is the same whichever of these functions computes it, wherever it sits in a batch and at
 * every thread count. */
int vq_color_difference(const vq_sample* standard, const vq_sample* trial, int system,
                        int illuminant, int observer, const double weights[3], double parameter,
                        vq_diff7* difference) VQ_NOEXCEPT;
/* One standard against `count` trials. */
int vq_difference_batch(const vq_sample* standard, const vq_sample* trials, size_t count,
                        int system, int illuminant, int observer, const double weights[3],
                        double parameter, vq_diff7* differences) VQ_NOEXCEPT;
/* Pair by pair: standards[i] against trials[i], i = 0 .. count - 1, into differences[i]. The
 * batch threads split it as they split vq_difference_batch. */
int vq_difference_pairs(const vq_sample* standards, const vq_sample* trials, size_t count,
                        int system, int illuminant, int observer, const double weights[3],
                        double parameter, vq_diff7* differences) VQ_NOEXCEPT;
/* One standard spectrum against `count` trial spectra (40 count doubles): samples as
 * vq_sample_from_spectrum, differences as vq_color_difference. */
int vq_delta_e_batch(const double* standard, const double* trials, size_t count, int system,
                     int illuminant, int observer, const double weights[3], double parameter,
                     vq_diff7* differences) VQ_NOEXCEPT;

/* Texts of a difference system (0..12): string 2368 + 16 system + offset. Column lists
 * separate their fields by '|'. */
#define VQ_DIFF_TEXT_CAPTION 0
#define VQ_DIFF_TEXT_SHORT_NAME 1
#define VQ_DIFF_TEXT_COLUMNS 2
#define VQ_DIFF_TEXT_VALUE_COLUMNS 3
#define VQ_DIFF_TEXT_DIFFERENCE_COLUMNS 4
#define VQ_DIFF_TEXT_THREE_VALUE_COLUMNS 6
#define VQ_DIFF_TEXT_THREE_DIFFERENCE_COLUMNS 7
#define VQ_DIFF_TEXT_COORDINATE_LABELS 8
#define VQ_DIFF_TEXT_COMPONENT_LABELS 9
#define VQ_DIFF_TEXT_SECOND_COORDINATE_LABELS 10
/* Offsets 0..15; those without a string give the empty text. */
int vq_difference_text(int system, int offset, char* buffer, size_t size) VQ_NOEXCEPT;
/* The caption (short_name 0) or short name (non-zero) with its "%s" placeholders filled from
 * `weight_count` texts in caption order ("CMC (L:C) = 2 : 1, cf = 1"). */
int vq_difference_caption(int system, int short_name, const char* const* weights,
                          size_t weight_count, char* buffer, size_t size) VQ_NOEXCEPT;
/* Number of placeholders of the caption: 3 for CMC, CIE94, CIE2000, DIN6175; 2 for DIN99;
 * 0 for the other systems (and for codes outside 0..12). */
int vq_difference_weight_count(int system) VQ_NOEXCEPT;
/* The label of the total ("ΔE*ab", "ΔE*cmc", ...). */
int vq_difference_total_label(int system, char* buffer, size_t size) VQ_NOEXCEPT;

/* Shade descriptor codes: 0 none, 1 Darker, 2 Lighter, 3 Redder, 4 Less Red, 5 Less Green,
 * 6 Greener, 7 Yellower, 8 Less Yellow, 9 Less Blue, 10 Bluer. The text of a code; code 0
 * and unknown codes give " ". */
int vq_shade_descriptor(int code, char* buffer, size_t size) VQ_NOEXCEPT;
/* Verbal shade description from the standard's a, b and the difference's slots 0..2:
 * `text` receives the three words joined by ",", e.g. "Lighter, ,Bluer", `codes` the three
 * codes and `colours` the three display colours (0x00BBGGRR), both may be NULL. When an
 * input is missing the text is empty (result 0) and codes and colours are 0. */
int vq_describe_shade(const vq_coords5* standard, const vq_diff7* difference, int dark_text,
                      int codes[3], uint32_t colours[3], char* text, size_t size) VQ_NOEXCEPT;

/* ---- Indices ------------------------------------------------------------------------------- */

/* Index identifiers of the library's index catalogue that are computed from one sample's
 * tristimulus values. "_R" marks the recalculated flavour, defined for every illuminant and
 * observer; the plain flavours give VQ_MISSING outside the pairs with published
 * coefficients. */
#define VQ_INDEX_YI_E313_73_R 0
#define VQ_INDEX_YI_D1925_R 1
#define VQ_INDEX_WI_E313_73_R 2
#define VQ_INDEX_WI_CIE_R 3
#define VQ_INDEX_TINT_CIE_R 4
#define VQ_INDEX_YI_E313_10_R 14
#define VQ_INDEX_YI_DIN6167_R 15
#define VQ_INDEX_WI_BERGER_R 17
#define VQ_INDEX_WI_STENSBY 18
#define VQ_INDEX_WI_HUNTER 19
#define VQ_INDEX_WI_TAUBE_R 20
#define VQ_INDEX_FILTER_RX 40
#define VQ_INDEX_FILTER_RZ 42
#define VQ_INDEX_TINT_E313_10 52
#define VQ_INDEX_TINT_CIE 53
#define VQ_INDEX_WI_E313_73 54
#define VQ_INDEX_WI_E313_10 55
#define VQ_INDEX_WI_BERGER 56
#define VQ_INDEX_WI_CIE 57
#define VQ_INDEX_WI_TAUBE 58
#define VQ_INDEX_YI_D1925 59
#define VQ_INDEX_YI_E313_73 60
#define VQ_INDEX_YI_E313_10 61
#define VQ_INDEX_YI_DIN6167 62
#define VQ_INDEX_WI_GANZ 63
#define VQ_INDEX_TINT_GANZ 64
#define VQ_INDEX_YI_DCM 65

#define VQ_INDEX_DOMINANT_WAVELENGTH 23 /* nm; negative: complementary (purple line) */
#define VQ_INDEX_EXCITATION_PURITY 24   /* percent */

/* The index `identifier` of a sample. `coefficients` are read only by Ganz/Griesser (whiteness
 * D, P, Q, C; tint m, n, k0) and must then not be NULL. VQ_ERR_UNSUPPORTED for identifiers
 * not listed above (the fastness grades compare two samples: vq_fastness). */
int vq_index(uint32_t identifier, int illuminant, int observer, const vq_xyz* xyz,
             const double* coefficients, double* value) VQ_NOEXCEPT;
/* The same over `count` samples, values[k] for xyz[k]: the formula and its constants are
 * resolved once, the samples run several at a time in vector registers where the formula is
 * plain arithmetic, and large batches are split over the library's threads
 * (vq_set_batch_threads); every value is what vq_index gives for its sample. */
int vq_index_batch(uint32_t identifier, int illuminant, int observer, const vq_xyz* xyz,
                   size_t count, const double* coefficients, double* values) VQ_NOEXCEPT;
/* Dominant wavelength (nm, negative for a complementary wavelength) and excitation purity
 * (percent) of a sample (CIE 15:2004, 9.1); a sample at the white point has purity 0 and a
 * missing wavelength. */
int vq_dominant_wavelength(int illuminant, int observer, const vq_xyz* xyz, double* wavelength,
                           double* purity) VQ_NOEXCEPT;

/* Textile fastness of a specimen against its reference (tristimulus values, reference first):
 * ISO 105-A04 staining and ISO 105-A05 change in colour, as continuous grades (5 = no
 * difference) or as step codes 1, 12, 2, 23, 3, 34, 4, 45, 5 (half grades "1-2" .. "4-5"),
 * 6 below the scale. */
#define VQ_INDEX_STAIN_A04 11
#define VQ_INDEX_GREY_SCALE_A05 12
#define VQ_INDEX_STAIN_STEP_A04 66
#define VQ_INDEX_GREY_SCALE_STEP_A05 67
int vq_fastness(uint32_t identifier, int illuminant, int observer, const vq_xyz* reference,
                const vq_xyz* specimen, double* value) VQ_NOEXCEPT;
/* Display text of a step code: "4-5" for 45, " 3 " for 3. */
int vq_step_code_text(int32_t code, char* buffer, size_t size) VQ_NOEXCEPT;

/* Texts of any catalogue identifier (base 0..186, difference variant + 1000), e.g. for 57
 * "WI CIE", "Whiteness: CIE", and the two-line column heading "WI\nCIE-94". */
#define VQ_INDEX_TEXT_NAME 0
#define VQ_INDEX_TEXT_LONG_NAME 1
#define VQ_INDEX_TEXT_HEADING 2
int vq_index_text(uint32_t identifier, int which, char* buffer, size_t size) VQ_NOEXCEPT;
/* The display mask the host sizes and formats the index column by ("0000.00", "-000.00", a
 * date, ...); `parameter` is the angle code of the sensor identifier 44. */
int vq_index_mask(uint32_t identifier, uint32_t parameter, char* buffer, size_t size) VQ_NOEXCEPT;

/* The ASTM E313-10 white point chromaticity of C, D65 or D50 (VQ_ERR_UNSUPPORTED for the
 * other illuminants). */
int vq_e313_white_point(int illuminant, int observer, double* xn, double* yn) VQ_NOEXCEPT;

/* ---- Minimisers and root finder ---------------------------------------------------------- */

/* The caller's function of one variable, called with the caller's context untouched. */
typedef double (*vq_objective)(void* context, double x);

/* Search outcomes (returned by the searches when not negative). */
#define VQ_SEARCH_FAILED 0
#define VQ_SEARCH_FOUND 1
#define VQ_SEARCH_ROOT 2
#define VQ_SEARCH_ROOT_FAILED 3
#define VQ_SEARCH_ABANDONED 3
#define VQ_SEARCH_FOUND_SLOWLY 4

/* The point vector of the searches: points[0], points[1] the two starting abscissas,
 * points[2] the third abscissa (golden-section) or an upper bound, 0 for none (bracketing);
 * on return the result's abscissas in 0..2 and the function values in 3..5. A search that
 * starts uphill (f(points[0]) < f(points[1])) seeks a maximum, the library's behaviour. */
int vq_bracket_minimum(vq_objective objective, void* context, double points[6]) VQ_NOEXCEPT;
int vq_bracket_extremum_or_root(vq_objective objective, void* context,
                                double points[6]) VQ_NOEXCEPT;
/* Golden-section narrowing of the triple in points[0..2] to the relative `tolerance`.
 * vq_golden_section returns VQ_SEARCH_FOUND. */
int vq_golden_section(vq_objective objective, void* context, double points[6],
                      double tolerance) VQ_NOEXCEPT;
int vq_golden_section_or_root(vq_objective objective, void* context, double points[6],
                              double tolerance) VQ_NOEXCEPT;

typedef struct vq_root_result {
  int found;      /* 1 when a root was found to the tolerance */
  double root;    /* the root, or the end of the final interval with the smaller |f| */
  double a, b;    /* the final interval */
  double fa, fb;  /* f there */
} vq_root_result;
/* Brent's method on [a, b], which must enclose a sign change; absolute tolerance in x. */
int vq_find_root(vq_objective objective, void* context, double a, double b, double tolerance,
                 vq_root_result* result) VQ_NOEXCEPT;
/* The same with f(a), f(b) already known. */
int vq_find_root_bracketed(vq_objective objective, void* context, double a, double b, double fa,
                           double fb, double tolerance, vq_root_result* result) VQ_NOEXCEPT;

/* ---- Colour strength ------------------------------------------------------------------------ */

/* Strength methods: 0 apparent (K/S summed over 420-680 nm), 1 chromatic at the standard's
 * maximum absorption, 2 chromatic at the user wavelength, 3-6 pseudo-tristimulus (X+Y+Z, X, Y,
 * Z weights), 7-10 tristimulus (X+Y+Z, X, Y, Z), 11 "when dL=0" (computed as apparent),
 * 12-14 as 0-2 for white and base components (standard and batch exchanged). */
typedef struct vq_strength_settings {
  int32_t method;
  int32_t user_wavelength; /* nm, methods 2 and 14 */
  double target_percent;   /* shown in the label and the adjustment note */
  int32_t saunderson_on;   /* non-zero: Saunderson correction with k1, k2 */
  double k1, k2;
} vq_strength_settings;

/* Strength of a batch against its standard in percent (100 = as strong). Spectra are
 * reflectance in percent; the tristimulus values (read by methods 7-10) may be NULL, and are
 * then computed from the spectra for the illuminant and observer. use_absorbance: optical
 * density in place of K/S. `wavelength` (may be NULL) receives the wavelength the method used
 * for methods 1, 2, 13 and 14, and 0 for the others. */
int vq_strength(const vq_strength_settings* settings, const double* standard,
                const double* batch, const vq_xyz* standard_xyz, const vq_xyz* batch_xyz,
                int illuminant, int observer, int use_absorbance, double* strength,
                int* wavelength) VQ_NOEXCEPT;
/* Strength of `count` batches against one standard, as vq_strength for each: batch k is the 40
 * points at batches + 40 k, its tristimulus values batch_xyz[k] (batch_xyz may be NULL: then
 * computed from the spectra; read by methods 7-10 only), its strength strengths[k]. The
 * standard's part is worked out once and the batches are split over the library's threads
 * (vq_set_batch_threads); the results are those of vq_strength at any thread count. */
int vq_strength_batch(const vq_strength_settings* settings, const double* standard,
                      const vq_xyz* standard_xyz, const double* batches, const vq_xyz* batch_xyz,
                      size_t count, int illuminant, int observer, int use_absorbance,
                      double* strengths, int* wavelength) VQ_NOEXCEPT;
/* The name of method 0..14 ("Apparent", ...). */
int vq_strength_method_name(int method, char* buffer, size_t size) VQ_NOEXCEPT;
/* The label of a settings record, "100.00 Apparent", "95.00 Chromatic @ 520 nm". */
int vq_strength_label(const vq_strength_settings* settings, char* buffer,
                      size_t size) VQ_NOEXCEPT;
/* The note of an adjustment from `from_percent` to the target, "(Apparent Strength adj. from
 * 80.00% to 100.00%)"; `wavelength` fills the chromatic methods' notes. */
int vq_strength_adjust_note(const vq_strength_settings* settings, double from_percent,
                            int wavelength, char* buffer, size_t size) VQ_NOEXCEPT;
/* The decimal separator of the strength texts; "" restores the user's locale's. */
int vq_set_strength_decimal_separator(const char* separator) VQ_NOEXCEPT;

/* ---- Settings, units, date and time texts ------------------------------------------------- */

/* Settings are named values in sections of the per-user store
 * (software / Palomerix / Quelmark / <section>). A value that cannot be read gives the
 * default; a write that fails gives VQ_ERR_FAILED. */
int vq_settings_get_int(const char* section, const char* name, int32_t default_value,
                        int32_t* value) VQ_NOEXCEPT;
int vq_settings_set_int(const char* section, const char* name, int32_t value) VQ_NOEXCEPT;
int vq_settings_get_string(const char* section, const char* name, const char* default_value,
                           char* buffer, size_t size) VQ_NOEXCEPT;
int vq_settings_set_string(const char* section, const char* name, const char* value) VQ_NOEXCEPT;
/* Keeps the store in the folder `root` (created on use) for the whole process; NULL restores
 * the default per-user store. flush_to_disk 0 leaves flushing to the system (scratch stores). */
int vq_settings_use_folder(const char* root, int flush_to_disk) VQ_NOEXCEPT;

/* Names of weight units (0 Pounds .. 5) and volume units (0 Gallons .. 21);
 * VQ_ERR_NOT_FOUND for a unit without a name. */
int vq_weight_unit_name(uint32_t unit, char* buffer, size_t size) VQ_NOEXCEPT;
int vq_volume_unit_name(uint32_t unit, char* buffer, size_t size) VQ_NOEXCEPT;
/* 1 for the four "Shots" volume units (18..21), else 0. */
int vq_is_shot_unit(uint32_t unit) VQ_NOEXCEPT;

/* Times are seconds since 1970-01-01 00:00:00 UTC, 0..2147483647; VQ_TIME_NOW formats the
 * current time. Texts follow the user's regional formats and time zone. */
#define VQ_TIME_NOW INT64_MIN
#define VQ_DATE_SHORT 0
#define VQ_DATE_LONG 1
#define VQ_TIME_OF_DAY 2
#define VQ_DATE_TIME 3 /* short date, " -- ", time */
/* VQ_ERR_FAILED when the time cannot be converted or formatted. */
int vq_format_date(int form, int64_t time, char* buffer, size_t size) VQ_NOEXCEPT;
/* A name from a pattern of date and time pictures, quoted literals and runs of 'n' for
 * `number` ("'Batch' nnn yyyy-MM-dd" with 7). VQ_ERR_FAILED for a bad pattern or time; the
 * text built up to the fault is copied. */
int vq_format_pattern(const char* pattern, uint32_t number, int64_t time, char* buffer,
                      size_t size) VQ_NOEXCEPT;
/* The current time, 1990-01-01 local time when the system clock lies outside 1970..2037. */
int vq_safe_current_time(int64_t* time) VQ_NOEXCEPT;
/* The user's time separator (":" when the locale gives none). */
int vq_time_separator(char* buffer, size_t size) VQ_NOEXCEPT;
/* The running clock: limit 0 (re)starts it counting up, another limit counting down from it,
 * VQ_CLOCK_READ only reads it. `running` (may be NULL) receives 1 while it runs, 0 once a
 * countdown has expired. Returns the text's length ("m:ss" or "h:mm:ss"). */
#define VQ_CLOCK_READ 4294967295u
int vq_clock_text(uint32_t limit_seconds, int* running, char* buffer, size_t size) VQ_NOEXCEPT;

/* ---- Instrument communication log --------------------------------------------------------- */

/* Channels; each has a level in settings section "Diagnostics": 0 off, 1 messages (through
 * the message sink), 2 the file "<PathInfo>PalDebug.txt". */
#define VQ_LOG_GENERAL 0
#define VQ_LOG_COLOR_SENSOR 1
int vq_log_level(int channel, int32_t* level) VQ_NOEXCEPT;
/* 1 when the channel is on, 0 when off. */
int vq_log_is_on(int channel) VQ_NOEXCEPT;
/* Forgets the cached levels, so the next use reads the settings. */
int vq_log_reset_levels(void) VQ_NOEXCEPT;
/* Writes a text on a channel, or with an explicit `level`. Line feeds end lines (CR LF in the
 * file). VQ_ERR_LOG_FILE when the file had grown beyond 1 MiB: it was deleted, both levels
 * were set to 0 and the text was not written. */
int vq_log(int channel, const char* text) VQ_NOEXCEPT;
int vq_log_write(int32_t level, const char* text, size_t length) VQ_NOEXCEPT;
/* The send and receive records of instrument traffic (Color Sensor channel). */
int vq_log_send(const char* command, int error) VQ_NOEXCEPT;
int vq_log_receive(const char* buffer, size_t length, int32_t allowed_ms, uint32_t start_tick,
                   int return_error, const char* separator) VQ_NOEXCEPT;
/* Makes control characters and blanks of `length` bytes visible in place (CR -> 'm',
 * LF -> 'j', blank -> '^'). */
int vq_log_make_printable(char* text, size_t length) VQ_NOEXCEPT;
/* Steps the Color Sensor level 0 -> 1 -> 2 -> 0, storing `folder` as the log folder for level
 * 2, and shows messages[new level] and messages[3] (`count` texts, missing ones empty). */
int vq_log_cycle_color_sensor(const char* folder, const char* const* messages,
                              size_t count) VQ_NOEXCEPT;
/* The millisecond tick count of the receive record (wraps after 2^32 ms). */
uint32_t vq_tick_count(void) VQ_NOEXCEPT;

#ifdef __cplusplus
}  /* extern "C" */
#endif

#endif /* VELQUOR_VELQUOR_C_H_ */
