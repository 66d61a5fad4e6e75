#include "velquor/automation/safe_array.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

// The portable model of OLE Automation arrays and strings (see safe_array.h for where it
// differs from oleaut32).
namespace velquor::ole {
namespace {

HRESULT InjectedFault(AutomationCall call, const SAFEARRAY* psa, LONG index) {
  return ConsultAutomationFaultHook(call, psa, index);
}

// A BSTR's block: the 4-byte byte length, the characters, a NUL character.
constexpr std::size_t kPrefixBytes = sizeof(std::uint32_t);
constexpr UINT kMaxStringLength = (std::numeric_limits<std::uint32_t>::max() - 8) / 2;

unsigned char* BlockOf(BSTR text) {
  return reinterpret_cast<unsigned char*>(text) - kPrefixBytes;
}

// Element size of a supported type, 0 otherwise.
ULONG ElementSize(VARTYPE vt) {
  switch (vt) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_R4:
    case VT_INT:
    case VT_UINT:
      return 4;
    case VT_R8:
    case VT_I8:
    case VT_UI8:
      return 8;
    case VT_BSTR:
      return sizeof(BSTR);
    default:
      return 0;
  }
}

bool HoldsStrings(const SAFEARRAY* psa) {
  return (psa->fFeatures & FADF_BSTR) != 0;
}

BSTR* StringSlots(SAFEARRAY* psa) {
  return static_cast<BSTR*>(psa->pvData);
}

std::size_t ElementCount(const SAFEARRAY* psa) {
  std::size_t count = 1;
  for (const SAFEARRAYBOUND& bound : psa->rgsabound) count *= bound.cElements;
  return count;
}

void FreeStrings(SAFEARRAY* psa, std::size_t from, std::size_t to) {
  if (!HoldsStrings(psa)) return;
  for (std::size_t i = from; i < to; ++i) {
    SysFreeString(StringSlots(psa)[i]);
    StringSlots(psa)[i] = nullptr;
  }
}

// Byte offset of the element at `indices`, or false when an index lies outside its bound.
bool ElementOffset(const SAFEARRAY* psa, const LONG* indices, std::size_t& offset) {
  std::size_t flat = 0;
  for (std::size_t d = 0; d < psa->rgsabound.size(); ++d) {
    const SAFEARRAYBOUND& bound = psa->rgsabound[d];
    const std::int64_t i = std::int64_t{indices[d]} - bound.lLbound;
    if (i < 0 || i >= std::int64_t{bound.cElements}) return false;
    flat = flat * bound.cElements + static_cast<std::size_t>(i);
  }
  offset = flat * psa->cbElements;
  return true;
}

// Resizes the data to `count` elements, new ones zero. False when memory runs out.
bool ResizeStorage(SAFEARRAY* psa, std::size_t count) {
  try {
    psa->storage.resize(count * psa->cbElements, 0);
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  psa->pvData = psa->storage.empty() ? nullptr : psa->storage.data();
  return true;
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* source, UINT length) {
  if (Failed(InjectedFault(AutomationCall::kAllocString, nullptr, static_cast<LONG>(length)))) {
    return nullptr;
  }
  if (length > kMaxStringLength) return nullptr;
  const std::size_t bytes = std::size_t{length} * sizeof(OLECHAR);
  auto* block = static_cast<unsigned char*>(std::malloc(kPrefixBytes + bytes + sizeof(OLECHAR)));
  if (block == nullptr) return nullptr;
  const auto prefix = static_cast<std::uint32_t>(bytes);
  std::memcpy(block, &prefix, kPrefixBytes);
  auto* text = reinterpret_cast<BSTR>(block + kPrefixBytes);
  if (source != nullptr) {
    std::memcpy(text, source, bytes);
  } else {
    std::memset(text, 0, bytes);
  }
  text[length] = u'\0';
  return text;
}

BSTR SysAllocString(const OLECHAR* source) {
  if (source == nullptr) return nullptr;
  UINT length = 0;
  while (source[length] != u'\0') ++length;
  return SysAllocStringLen(source, length);
}

UINT SysStringByteLen(BSTR text) {
  if (text == nullptr) return 0;
  std::uint32_t prefix = 0;
  std::memcpy(&prefix, BlockOf(text), kPrefixBytes);
  return prefix;
}

UINT SysStringLen(BSTR text) {
  return SysStringByteLen(text) / sizeof(OLECHAR);
}

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(BlockOf(text));
}

SAFEARRAY* SafeArrayCreate(VARTYPE vt, UINT dims, const SAFEARRAYBOUND* bounds) {
  const ULONG size = ElementSize(vt);
  if (size == 0 || dims == 0 || dims > std::numeric_limits<USHORT>::max() || bounds == nullptr) {
    return nullptr;
  }
  std::size_t bytes = size;  // refuse sizes that overflow
  for (UINT d = 0; d < dims; ++d) {
    const std::size_t n = bounds[d].cElements;
    if (n != 0 && bytes > std::numeric_limits<std::size_t>::max() / n) return nullptr;
    bytes *= n;
  }
  auto* psa = new (std::nothrow) SAFEARRAY;
  if (psa == nullptr) return nullptr;
  psa->cDims = static_cast<USHORT>(dims);
  psa->fFeatures = FADF_HAVEVARTYPE | (vt == VT_BSTR ? FADF_BSTR : 0);
  psa->cbElements = size;
  psa->vt = vt;
  try {
    psa->rgsabound.assign(bounds, bounds + dims);
  } catch (const std::bad_alloc&) {
    delete psa;
    return nullptr;
  }
  if (!ResizeStorage(psa, ElementCount(psa))) {
    delete psa;
    return nullptr;
  }
  return psa;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG count) {
  const SAFEARRAYBOUND bound{count, lowerBound};
  return SafeArrayCreate(vt, 1, &bound);
}

HRESULT SafeArrayDestroy(SAFEARRAY* psa) {
  if (psa == nullptr) return S_OK;
  if (psa->cLocks > 0) return DISP_E_ARRAYISLOCKED;
  FreeStrings(psa, 0, ElementCount(psa));
  delete psa;
  return S_OK;
}

UINT SafeArrayGetDim(SAFEARRAY* psa) {
  return psa == nullptr ? 0 : psa->cDims;
}

UINT SafeArrayGetElemsize(SAFEARRAY* psa) {
  return psa == nullptr ? 0 : psa->cbElements;
}

HRESULT SafeArrayGetLBound(SAFEARRAY* psa, UINT dim, LONG* lowerBound) {
  if (psa == nullptr || lowerBound == nullptr) return E_INVALIDARG;
  if (dim == 0 || dim > psa->cDims) return DISP_E_BADINDEX;
  *lowerBound = psa->rgsabound[dim - 1].lLbound;
  return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* psa, UINT dim, LONG* upperBound) {
  if (psa == nullptr || upperBound == nullptr) return E_INVALIDARG;
  if (dim == 0 || dim > psa->cDims) return DISP_E_BADINDEX;
  const SAFEARRAYBOUND& bound = psa->rgsabound[dim - 1];
  *upperBound = static_cast<LONG>(std::int64_t{bound.lLbound} + bound.cElements - 1);
  return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* psa) {
  if (psa == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = InjectedFault(AutomationCall::kLock, psa, 0); Failed(hr)) return hr;
  if (psa->cLocks >= 0xFFFF) return E_UNEXPECTED;
  ++psa->cLocks;
  return S_OK;
}

HRESULT SafeArrayUnlock(SAFEARRAY* psa) {
  if (psa == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = InjectedFault(AutomationCall::kUnlock, psa, 0); Failed(hr)) return hr;
  if (psa->cLocks == 0) return E_UNEXPECTED;
  --psa->cLocks;
  return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* psa, void** data) {
  if (data == nullptr) return E_INVALIDARG;
  const HRESULT hr = SafeArrayLock(psa);
  *data = Succeeded(hr) ? psa->pvData : nullptr;
  return hr;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* psa) {
  return SafeArrayUnlock(psa);
}

HRESULT SafeArrayGetElement(SAFEARRAY* psa, const LONG* indices, void* value) {
  if (psa == nullptr || indices == nullptr || value == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = InjectedFault(AutomationCall::kGetElement, psa, indices[0]); Failed(hr)) {
    return hr;
  }
  std::size_t offset = 0;
  if (!ElementOffset(psa, indices, offset)) return DISP_E_BADINDEX;
  const unsigned char* element = static_cast<const unsigned char*>(psa->pvData) + offset;
  if (HoldsStrings(psa)) {
    BSTR source = nullptr;
    std::memcpy(&source, element, sizeof source);
    BSTR copy = nullptr;
    if (source != nullptr) {
      copy = SysAllocStringLen(source, SysStringLen(source));
      if (copy == nullptr) return E_OUTOFMEMORY;
    }
    *static_cast<BSTR*>(value) = copy;
  } else {
    std::memcpy(value, element, psa->cbElements);
  }
  return S_OK;
}

HRESULT SafeArrayPutElement(SAFEARRAY* psa, const LONG* indices, const void* value) {
  if (psa == nullptr || indices == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = InjectedFault(AutomationCall::kPutElement, psa, indices[0]); Failed(hr)) {
    return hr;
  }
  std::size_t offset = 0;
  if (!ElementOffset(psa, indices, offset)) return DISP_E_BADINDEX;
  unsigned char* element = static_cast<unsigned char*>(psa->pvData) + offset;
  if (HoldsStrings(psa)) {
    auto source = static_cast<BSTR>(const_cast<void*>(value));
    BSTR copy = nullptr;
    if (source != nullptr) {
      copy = SysAllocStringLen(source, SysStringLen(source));
      if (copy == nullptr) return E_OUTOFMEMORY;
    }
    BSTR old = nullptr;
    std::memcpy(&old, element, sizeof old);
    SysFreeString(old);
    std::memcpy(element, &copy, sizeof copy);
  } else {
    if (value == nullptr) return E_INVALIDARG;
    std::memcpy(element, value, psa->cbElements);
  }
  return S_OK;
}

HRESULT SafeArrayRedim(SAFEARRAY* psa, const SAFEARRAYBOUND* bound) {
  if (psa == nullptr || bound == nullptr || psa->cDims == 0) return E_INVALIDARG;
  if (const HRESULT hr = InjectedFault(AutomationCall::kRedim, psa, 0); Failed(hr)) return hr;
  if ((psa->fFeatures & (FADF_FIXEDSIZE | FADF_STATIC)) != 0) return E_INVALIDARG;
  if (psa->cLocks > 0) return DISP_E_ARRAYISLOCKED;
  const std::size_t oldCount = ElementCount(psa);
  std::size_t inner = 1;  // elements per index of the first dimension
  for (std::size_t d = 1; d < psa->rgsabound.size(); ++d) inner *= psa->rgsabound[d].cElements;
  const std::size_t count = inner * bound->cElements;
  if (count < oldCount) FreeStrings(psa, count, oldCount);
  if (!ResizeStorage(psa, count)) return E_OUTOFMEMORY;
  psa->rgsabound[0] = *bound;
  return S_OK;
}

}  // namespace velquor::ole
