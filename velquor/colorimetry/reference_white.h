// The reference white of an illuminant and observer for the colour-space conversions.
#pragma once

namespace velquor {

// Xn, Yn, Zn (Y = 100 scale) of the pair's weighting table, loading the table on first use; the
// three doubles live for the whole process. Null when the table cannot be loaded (an index
// outside 0-16): the conversions then give missing outputs. Lock-free after the first load and
// allocation-free, so it suits per-sample calls.
const double* FindReferenceWhite(int illuminant, int observer);

}  // namespace velquor
