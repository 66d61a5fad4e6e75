// OLE Automation arrays and strings, one seam per platform.
//
// The bridge (safe_array_bridge.h) calls the platform only through the functions of
// velquor::ole declared here, always qualified (ole::SafeArrayLock(psa)): on Windows an
// unqualified call with a ::SAFEARRAY* argument would also find oleaut32's function of the same
// name through argument-dependent lookup.
//  - Windows (safe_array_windows.cpp): the types, result codes, VT_* and FADF_* are those of
//    <oleauto.h>, and the functions are thin wrappers over oleaut32 that first consult the fault
//    hook below.
//  - Elsewhere (safe_array_posix.cpp): a portable model that keeps the layout, names, result
//    codes and calling conventions of the automation interface:
//     - HRESULT result codes with their standard 32-bit values;
//     - BSTR: a UTF-16 string that carries its length in bytes in the 4 bytes before its first
//       character and ends in a NUL that the length does not count; a null BSTR is an empty
//       string;
//     - SAFEARRAY: an array of one or more dimensions, each with an element count and a lower
//       bound, with an element size, feature flags (FADF_*), a lock count and the element data.
//    Model specifics (where OLE leaves things to its implementation, or the model is simpler):
//     - rgsabound holds the bounds first dimension first, and elements lie with the first
//       bound's index varying slowest; SafeArrayRedim changes the first bound, so elements keep
//       their places and new ones start as zeros (null BSTRs);
//     - the data is always present (pvData is null only for zero elements); SafeArrayLock only
//       counts, and a locked array can be neither redimensioned nor destroyed;
//     - a fixed-size or static array (FADF_FIXEDSIZE, FADF_STATIC) refuses SafeArrayRedim with
//       E_INVALIDARG;
//     - a BSTR element occupies one pointer (4 bytes on a 32-bit target, 8 on a 64-bit one).
// On both platforms a 1-D array's only bound is rgsabound[0], and SafeArrayGetLBound and
// SafeArrayGetUBound number dimensions from the first (leftmost) one.
// Not thread-safe: one array is used by one thread at a time, and the fault hook is set while
// no other thread makes automation calls.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <string_view>

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <oleauto.h>
#else
#include <vector>
#endif

namespace velquor {

#ifdef _WIN32

// The platform's own types; S_OK, E_*, DISP_E_*, VT_* and FADF_* come from <oleauto.h>.
using ::BSTR;
using ::HRESULT;
using ::LONG;
using ::OLECHAR;
using ::SAFEARRAY;
using ::SAFEARRAYBOUND;
using ::UINT;
using ::ULONG;
using ::USHORT;
using ::VARTYPE;

#else

using HRESULT = std::int32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = std::uint32_t;
using USHORT = std::uint16_t;
using VARTYPE = std::uint16_t;
using OLECHAR = char16_t;
using BSTR = OLECHAR*;

constexpr HRESULT MakeHresult(std::uint32_t bits) {
  return static_cast<HRESULT>(bits);
}

// Standard result codes.
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_UNEXPECTED = MakeHresult(0x8000FFFFu);          // catastrophic failure
inline constexpr HRESULT E_POINTER = MakeHresult(0x80004003u);             // invalid pointer
inline constexpr HRESULT E_FAIL = MakeHresult(0x80004005u);                // unspecified failure
inline constexpr HRESULT E_OUTOFMEMORY = MakeHresult(0x8007000Eu);         // out of memory
inline constexpr HRESULT E_INVALIDARG = MakeHresult(0x80070057u);          // invalid argument
inline constexpr HRESULT DISP_E_BADINDEX = MakeHresult(0x8002000Bu);       // index out of bounds
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = MakeHresult(0x8002000Du);  // array is locked

// Variant types of array elements (the subset the model supports).
inline constexpr VARTYPE VT_I2 = 2;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_R4 = 4;
inline constexpr VARTYPE VT_R8 = 5;
inline constexpr VARTYPE VT_BSTR = 8;
inline constexpr VARTYPE VT_I1 = 16;
inline constexpr VARTYPE VT_UI1 = 17;
inline constexpr VARTYPE VT_UI2 = 18;
inline constexpr VARTYPE VT_UI4 = 19;
inline constexpr VARTYPE VT_I8 = 20;
inline constexpr VARTYPE VT_UI8 = 21;
inline constexpr VARTYPE VT_INT = 22;
inline constexpr VARTYPE VT_UINT = 23;

// Array feature flags.
inline constexpr USHORT FADF_AUTO = 0x0001;
inline constexpr USHORT FADF_STATIC = 0x0002;
inline constexpr USHORT FADF_EMBEDDED = 0x0004;
inline constexpr USHORT FADF_FIXEDSIZE = 0x0010;
inline constexpr USHORT FADF_RECORD = 0x0020;
inline constexpr USHORT FADF_HAVEIID = 0x0040;
inline constexpr USHORT FADF_HAVEVARTYPE = 0x0080;
inline constexpr USHORT FADF_BSTR = 0x0100;
inline constexpr USHORT FADF_UNKNOWN = 0x0200;
inline constexpr USHORT FADF_DISPATCH = 0x0400;
inline constexpr USHORT FADF_VARIANT = 0x0800;

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

struct SAFEARRAY {
  USHORT cDims = 0;
  USHORT fFeatures = 0;
  ULONG cbElements = 0;
  ULONG cLocks = 0;
  void* pvData = nullptr;
  VARTYPE vt = 0;                         // element type (the model keeps it for every array)
  std::vector<SAFEARRAYBOUND> rgsabound;  // cDims bounds, the first one first
  std::vector<unsigned char> storage;     // the element data that pvData points into
};

#endif  // _WIN32

constexpr bool Succeeded(HRESULT hr) {
  return hr >= 0;
}
constexpr bool Failed(HRESULT hr) {
  return hr < 0;
}

namespace ole {

// Strings.
// A new BSTR of `length` characters copied from `source` (zeros when `source` is null), with a
// NUL after them; null when it cannot be allocated.
BSTR SysAllocStringLen(const OLECHAR* source, UINT length);
// A new BSTR copied from the NUL-terminated `source`; null for a null source.
BSTR SysAllocString(const OLECHAR* source);
// Length in characters and in bytes; 0 for a null BSTR.
UINT SysStringLen(BSTR text);
UINT SysStringByteLen(BSTR text);
// Frees a BSTR; a null BSTR is ignored.
void SysFreeString(BSTR text);

// Arrays.
// A new array of `dims` dimensions with the given bounds (first dimension first), all elements
// zero; null for an unsupported type, no dimensions or a size that cannot be allocated.
SAFEARRAY* SafeArrayCreate(VARTYPE vt, UINT dims, const SAFEARRAYBOUND* bounds);
// A new one-dimensional array of `count` elements whose indices start at `lowerBound`.
SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG count);
// Frees the array and the strings it holds; S_OK for null, DISP_E_ARRAYISLOCKED when locked.
HRESULT SafeArrayDestroy(SAFEARRAY* psa);

// Number of dimensions and element size in bytes; 0 for a null array.
UINT SafeArrayGetDim(SAFEARRAY* psa);
UINT SafeArrayGetElemsize(SAFEARRAY* psa);
// Bounds of dimension `dim` (1-based); DISP_E_BADINDEX for a dimension the array lacks.
HRESULT SafeArrayGetLBound(SAFEARRAY* psa, UINT dim, LONG* lowerBound);
HRESULT SafeArrayGetUBound(SAFEARRAY* psa, UINT dim, LONG* upperBound);

// Lock count; E_UNEXPECTED when unlocking an unlocked array or locking one 65,535 times.
HRESULT SafeArrayLock(SAFEARRAY* psa);
HRESULT SafeArrayUnlock(SAFEARRAY* psa);
// Locks the array and gives its data.
HRESULT SafeArrayAccessData(SAFEARRAY* psa, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* psa);

// Copies the element at `indices` (one per dimension, first dimension first) to `value`. For a
// string array `value` is a BSTR* and receives a new copy that the caller frees
// (E_OUTOFMEMORY when it cannot be allocated). DISP_E_BADINDEX for an index out of bounds.
HRESULT SafeArrayGetElement(SAFEARRAY* psa, const LONG* indices, void* value);
// Replaces the element at `indices` by a copy of `value`. For a string array `value` is the
// BSTR itself, not a pointer to it; the old string is freed.
HRESULT SafeArrayPutElement(SAFEARRAY* psa, const LONG* indices, const void* value);
// Changes the least significant bound (a 1-D array's only one) to `bound`: elements beyond the
// new count are dropped (strings freed), new ones are zero. DISP_E_ARRAYISLOCKED for a locked
// array; E_OUTOFMEMORY when the data cannot grow.
HRESULT SafeArrayRedim(SAFEARRAY* psa, const SAFEARRAYBOUND* bound);

// Fault injection, the same on both platforms. When a hook is set, the calls below consult it
// first with the array (null for strings) and, for element calls, the index in the first
// dimension (for kAllocString the length asked for); a failure code it returns makes the call
// fail with that code (null for kAllocString) without any effect. The copy of a non-null string
// that SafeArrayGetElement or SafeArrayPutElement makes consults it as kAllocString too, and
// then fails with E_OUTOFMEMORY.
enum class AutomationCall { kLock, kUnlock, kGetElement, kPutElement, kRedim, kAllocString };
using AutomationFaultHook =
    std::function<HRESULT(AutomationCall call, const SAFEARRAY* psa, LONG index)>;
// Sets the hook; an empty hook removes it.
void SetAutomationFaultHook(AutomationFaultHook hook);
// What the hook says about a call: S_OK when no hook is set.
HRESULT ConsultAutomationFaultHook(AutomationCall call, const SAFEARRAY* psa, LONG index);

// UTF-16 text in and out of BSTRs. OLECHAR is char16_t in the model and a 16-bit wchar_t on
// Windows; the units are copied, never reinterpreted.
static_assert(sizeof(OLECHAR) == sizeof(char16_t));
// The characters of `text` (all SysStringLen of them); empty for a null BSTR.
inline std::u16string BstrText(BSTR text) {
  if (text == nullptr) return {};
  std::u16string units(SysStringLen(text), u'\0');
  std::memcpy(units.data(), text, units.size() * sizeof(char16_t));
  return units;
}
// A new BSTR holding `units`; null when it cannot be allocated (or is longer than a UINT).
inline BSTR AllocBstr(std::u16string_view units) {
  if (units.size() > std::numeric_limits<UINT>::max()) return nullptr;
  BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(units.size()));
  if (text != nullptr && !units.empty()) {
    std::memcpy(text, units.data(), units.size() * sizeof(char16_t));
  }
  return text;
}

}  // namespace ole
}  // namespace velquor
