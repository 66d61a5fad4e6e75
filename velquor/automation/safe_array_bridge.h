// Exchange of the library's arrays with automation clients through one-dimensional safe arrays.
//
// Each library array kind has a pair: LoadFromSafeArray fills the library array from a safe
// array, StoreToSafeArray writes the library array into a caller's safe array. The caller owns
// the safe array in both directions. On Windows the safe arrays and strings are oleaut32's own;
// elsewhere they are the portable model of safe_array.h. Results (nothing is thrown or logged):
//  - S_OK on success;
//  - E_INVALIDARG when the safe array is missing, does not have exactly one dimension, or its
//    elements are not of the pair's kind: strings (BSTR) for CStringArray; plain values of
//    8 bytes for CValueArray and of 4 bytes for CDWordArray and CUIntArray;
//  - E_POINTER when a store meets a static or fixed-size safe array (features
//    FADF_STATIC | FADF_FIXEDSIZE), even one whose size already matches;
//  - E_FAIL when locking, resizing, reading or writing an element fails;
//  - E_OUTOFMEMORY when a string (or the library array) cannot be allocated.
//
// Behaviour kept for compatibility with existing automation clients:
//  - a load reads indices 0 .. count - 1 whatever lower bound the safe array declares, so a
//    safe array must be zero-based (with lower bound 1, reading index 0 fails: E_FAIL);
//  - a failed load keeps what was read before the failure: a string load stops at the first
//    element it cannot read and leaves the safe array locked; a numeric load has already
//    sized the library array to the safe array's count (new elements 0) when locking fails;
//  - a store first redimensions the safe array to (library size, lower bound 0); a failed
//    store leaves it at that size with the elements written so far;
//  - the unlock that ends a successful load or store is not checked;
//  - strings are converted between UTF-8 and UTF-16 (see utf16.h) as NUL-terminated texts: a
//    string is taken up to its first NUL character in either direction.
#pragma once

#include "velquor/data/dword_array.h"
#include "velquor/data/string_array.h"
#include "velquor/data/value_array.h"
// Last: on Windows it brings in <windows.h> and <oleauto.h>.
#include "velquor/automation/safe_array.h"

namespace velquor {

HRESULT LoadFromSafeArray(CStringArray& array, SAFEARRAY** ppsa);
HRESULT StoreToSafeArray(const CStringArray& array, SAFEARRAY** ppsa);

HRESULT LoadFromSafeArray(CValueArray& array, SAFEARRAY** ppsa);
HRESULT StoreToSafeArray(const CValueArray& array, SAFEARRAY** ppsa);

HRESULT LoadFromSafeArray(CDWordArray& array, SAFEARRAY** ppsa);
HRESULT StoreToSafeArray(const CDWordArray& array, SAFEARRAY** ppsa);

HRESULT LoadFromSafeArray(CUIntArray& array, SAFEARRAY** ppsa);
HRESULT StoreToSafeArray(const CUIntArray& array, SAFEARRAY** ppsa);

}  // namespace velquor
