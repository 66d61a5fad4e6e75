// A Windows host as a colour application is one: it loads velquor.dll at run time, joins the
// library's resources through ordinal 1 and runs a QC comparison through the C interface,
// with every entry point taken from the DLL's export table (no import library).
#include <math.h>
#include <stdio.h>
#include <string.h>
#include <windows.h>

#include "velquor/velquor_c.h"

typedef void* (*InitModule)(void);
typedef int (*DeltaEBatch)(const double*, const double*, size_t, int, int, int, const double[3],
                           double, vq_diff7*);
typedef int (*TextOf)(int, char*, size_t);

// An exported entry as a function of the given type (through void (*)(void), the type that
// converts to every function type without a warning).
#define ENTRY(type, name) ((type)(void (*)(void))GetProcAddress(library, name))

static int failures = 0;
static void Check(int ok, const char* what) {
  if (!ok) {
    printf("failed: %s\n", what);
    ++failures;
  }
}

int main(void) {
  HMODULE library = LoadLibraryA("velquor.dll");
  if (library == NULL) {
    printf("velquor.dll could not be loaded (error %lu)\n", GetLastError());
    return 1;
  }
  // Ordinal 1 is InitVelquorModule, also exported under that name.
  const InitModule byOrdinal = ENTRY(InitModule, MAKEINTRESOURCEA(1));
  const InitModule byName = ENTRY(InitModule, "InitVelquorModule");
  Check(byOrdinal != NULL && byOrdinal == byName, "ordinal 1 is InitVelquorModule");
  Check(byOrdinal != NULL && byOrdinal() != NULL, "InitVelquorModule gives a resource link");

  const DeltaEBatch deltaE = ENTRY(DeltaEBatch, "vq_delta_e_batch");
  const TextOf totalLabel = ENTRY(TextOf, "vq_difference_total_label");
  Check(deltaE != NULL && totalLabel != NULL, "the C interface is exported by name");
  if (deltaE == NULL || totalLabel == NULL) return 1;

  // A flat 50 % standard against flat 50 % and 40 % trials under D65/10: neutral greys, so
  // dE*ab is the lightness difference 116 (0.5^(1/3) - 0.4^(1/3)).
  double standard[VQ_SPECTRUM_POINTS], trials[2 * VQ_SPECTRUM_POINTS];
  for (int i = 0; i < VQ_SPECTRUM_POINTS; ++i) {
    standard[i] = trials[i] = 50.0;
    trials[VQ_SPECTRUM_POINTS + i] = 40.0;
  }
  vq_diff7 results[2];
  const double weights[3] = {1, 1, 1};
  Check(deltaE(standard, trials, 2, VQ_DIFF_CIELAB, 2, VQ_OBSERVER_10, weights, 0.0, results) ==
            VQ_OK,
        "vq_delta_e_batch succeeds");
  const double expected = 116.0 * (cbrt(0.5) - cbrt(0.4));
  Check(results[0].slot[6] == 0.0, "a trial equal to the standard has dE 0");
  Check(fabs(results[1].slot[6] - expected) < 1e-9 * expected, "dE*ab of the darker grey");
  Check(fabs(results[1].slot[0] + expected) < 1e-9 * expected, "dL* is negative (darker)");

  // The label comes from the DLL's string table, in UTF-8.
  char label[32] = "";
  totalLabel(VQ_DIFF_CIELAB, label, sizeof label);
  Check(strcmp(label, "\xCE\x94" "E*ab") == 0, "the total's label is the string table's");

  printf("dE*ab %.12f (expected %.12f), label %s: %d failures\n", results[1].slot[6], expected,
         "dE*ab", failures);
  FreeLibrary(library);
  return failures != 0;
}
