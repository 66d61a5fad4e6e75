// Portable model of OLE Automation arrays and strings, for platforms without OLE Automation.
//
// It keeps the layout, names, result codes and calling conventions of the automation
// interface, so the library's bridge code reads the same on every platform:
//  - HRESULT result codes with their standard 32-bit values;
//  - BSTR: a UTF-16 string that carries its length in bytes in the 4 bytes before its first
//    character and ends in a NUL that the length does not count; a null BSTR is an empty
//    string;
//  - SAFEARRAY: an array of one or more dimensions, each with an element count and a lower
//    bound, with an element size, feature flags (FADF_*), a lock count and the element data.
//
// Model specifics (where OLE leaves things to its implementation):
//  - elements lie with the first bound's index varying slowest; SafeArrayRedim changes the
//    first bound, so elements keep their places and new ones start as zeros (null BSTRs);
//  - the data is always present (pvData is null only for zero elements); SafeArrayLock only
//    counts, and a locked array can be neither redimensioned nor destroyed;
//  - a fixed-size or static array (FADF_FIXEDSIZE, FADF_STATIC) refuses SafeArrayRedim with
//    E_INVALIDARG;
//  - a BSTR element occupies one pointer (4 bytes on the 32-bit automation target, 8 on a
//    64-bit platform);
//  - a process-wide fault hook (SetAutomationFaultHook) can make any array or string call
//    fail, so callers' failure paths can be exercised.
// Not thread-safe: one array is used by one thread at a time, and the fault hook is set while
// no other thread makes automation calls.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace velquor {

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
constexpr bool Succeeded(HRESULT hr) {
  return hr >= 0;
}
constexpr bool Failed(HRESULT hr) {
  return hr < 0;
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
  std::vector<SAFEARRAYBOUND> rgsabound;  // cDims bounds, the first one varying slowest
  std::vector<unsigned char> storage;     // the element data that pvData points into
};

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
// A new array of `dims` dimensions with the given bounds (first bound first), all elements
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
// Changes the first bound to `bound`: elements beyond the new count are dropped (strings
// freed), new ones are zero. E_INVALIDARG for a fixed-size or static array;
// DISP_E_ARRAYISLOCKED for a locked one; E_OUTOFMEMORY when the data cannot grow.
HRESULT SafeArrayRedim(SAFEARRAY* psa, const SAFEARRAYBOUND* bound);

// Fault injection. When a hook is set, every call below consults it first with the array (null
// for strings) and, for element calls, the index in the first dimension (for kAllocString the
// length asked for); a failure code it returns makes the call fail with that code (null for
// kAllocString) without any effect.
enum class AutomationCall { kLock, kUnlock, kGetElement, kPutElement, kRedim, kAllocString };
using AutomationFaultHook =
    std::function<HRESULT(AutomationCall call, const SAFEARRAY* psa, LONG index)>;
// Sets the hook; an empty hook removes it.
void SetAutomationFaultHook(AutomationFaultHook hook);

}  // namespace velquor
