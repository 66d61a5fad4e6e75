#include "velquor/automation/safe_array_bridge.h"

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "velquor/automation/utf16.h"

namespace velquor {
namespace {

// Features that forbid resizing.
constexpr USHORT kNoResizeFeatures = FADF_STATIC | FADF_FIXEDSIZE;
// Features of arrays whose elements own something (strings, interfaces, variants, records);
// their raw images must not be copied as plain values.
constexpr USHORT kOwningFeatures =
    FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT | FADF_RECORD;
// Element size of a string array: one BSTR.
constexpr UINT kStringElementSize = sizeof(BSTR);
// Largest library array a store accepts: indices must fit a LONG.
constexpr std::size_t kMaxStoreSize = static_cast<std::size_t>(std::numeric_limits<LONG>::max());

// The safe array of `ppsa` when it has one dimension, elements of `elementSize` bytes and of
// the wanted kind (strings, or plain values); null otherwise.
SAFEARRAY* CheckedArray(SAFEARRAY** ppsa, UINT elementSize, bool strings) {
  if (ppsa == nullptr) return nullptr;
  SAFEARRAY* psa = *ppsa;
  if (ole::SafeArrayGetDim(psa) != 1 || ole::SafeArrayGetElemsize(psa) != elementSize) {
    return nullptr;
  }
  const bool kindMatches =
      strings ? (psa->fFeatures & FADF_BSTR) != 0 : (psa->fFeatures & kOwningFeatures) == 0;
  return kindMatches ? psa : nullptr;
}

bool CanResize(const SAFEARRAY* psa) {
  return (psa->fFeatures & kNoResizeFeatures) == 0;
}

// Redimensions `psa` to `size` elements with lower bound 0.
bool RedimToSize(SAFEARRAY* psa, std::size_t size) {
  if (size > kMaxStoreSize) return false;
  const SAFEARRAYBOUND bound{static_cast<ULONG>(size), 0};
  return Succeeded(ole::SafeArrayRedim(psa, &bound));
}

// A text up to its first NUL.
template <class Char>
std::basic_string_view<Char> UpToNul(std::basic_string_view<Char> text) {
  return text.substr(0, text.find(Char{}));
}

template <class Array>
using ElementOf = std::remove_cvref_t<decltype(*std::declval<Array&>().GetData())>;

// Numeric load: size the library array to the bound's count, then one block copy.
template <class Array>
HRESULT LoadBlock(Array& array, SAFEARRAY** ppsa) {
  using T = ElementOf<Array>;
  SAFEARRAY* psa = CheckedArray(ppsa, sizeof(T), false);
  if (psa == nullptr) return E_INVALIDARG;
  const ULONG count = psa->rgsabound[0].cElements;
  try {
    array.SetSize(count);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  if (Failed(ole::SafeArrayLock(psa))) return E_FAIL;
  if (count > 0) std::memcpy(array.GetData(), psa->pvData, std::size_t{count} * sizeof(T));
  ole::SafeArrayUnlock(psa);
  return S_OK;
}

// Numeric store: resize the safe array to the library size, then one block copy.
template <class Array>
HRESULT StoreBlock(const Array& array, SAFEARRAY** ppsa) {
  using T = ElementOf<Array>;
  SAFEARRAY* psa = CheckedArray(ppsa, sizeof(T), false);
  if (psa == nullptr) return E_INVALIDARG;
  if (!CanResize(psa)) return E_POINTER;
  const std::size_t count = array.GetSize();
  if (!RedimToSize(psa, count)) return E_FAIL;
  if (Failed(ole::SafeArrayLock(psa))) return E_FAIL;
  if (count > 0) std::memcpy(psa->pvData, array.GetData(), count * sizeof(T));
  ole::SafeArrayUnlock(psa);
  return S_OK;
}

}  // namespace

HRESULT LoadFromSafeArray(CStringArray& array, SAFEARRAY** ppsa) {
  SAFEARRAY* psa = CheckedArray(ppsa, kStringElementSize, true);
  if (psa == nullptr) return E_INVALIDARG;
  array.RemoveAll();
  if (Failed(ole::SafeArrayLock(psa))) return E_FAIL;
  const ULONG count = psa->rgsabound[0].cElements;
  for (ULONG i = 0; i < count; ++i) {
    const auto index = static_cast<LONG>(i);
    BSTR text = nullptr;
    if (Failed(ole::SafeArrayGetElement(psa, &index, &text))) return E_FAIL;  // stays locked
    try {
      array.Add(Utf16ToUtf8(UpToNul(std::u16string_view(ole::BstrText(text)))));
    } catch (const std::bad_alloc&) {
      ole::SysFreeString(text);
      return E_OUTOFMEMORY;
    }
    ole::SysFreeString(text);
  }
  ole::SafeArrayUnlock(psa);
  return S_OK;
}

HRESULT StoreToSafeArray(const CStringArray& array, SAFEARRAY** ppsa) {
  SAFEARRAY* psa = CheckedArray(ppsa, kStringElementSize, true);
  if (psa == nullptr) return E_INVALIDARG;
  if (!CanResize(psa)) return E_POINTER;
  const std::size_t count = array.GetSize();
  if (!RedimToSize(psa, count)) return E_FAIL;
  for (std::size_t i = 0; i < count; ++i) {
    BSTR wide = nullptr;
    try {
      wide = ole::AllocBstr(Utf8ToUtf16(UpToNul(std::string_view(array[i]))));
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
    if (wide == nullptr) return E_OUTOFMEMORY;
    const auto index = static_cast<LONG>(i);
    const HRESULT hr = ole::SafeArrayPutElement(psa, &index, wide);  // stores a copy
    ole::SysFreeString(wide);
    if (Failed(hr)) return E_FAIL;
  }
  return S_OK;
}

HRESULT LoadFromSafeArray(CValueArray& array, SAFEARRAY** ppsa) {
  return LoadBlock(array, ppsa);
}
HRESULT StoreToSafeArray(const CValueArray& array, SAFEARRAY** ppsa) {
  return StoreBlock(array, ppsa);
}

HRESULT LoadFromSafeArray(CDWordArray& array, SAFEARRAY** ppsa) {
  return LoadBlock(array, ppsa);
}
HRESULT StoreToSafeArray(const CDWordArray& array, SAFEARRAY** ppsa) {
  return StoreBlock(array, ppsa);
}

HRESULT LoadFromSafeArray(CUIntArray& array, SAFEARRAY** ppsa) {
  return LoadBlock(array, ppsa);
}
HRESULT StoreToSafeArray(const CUIntArray& array, SAFEARRAY** ppsa) {
  return StoreBlock(array, ppsa);
}

}  // namespace velquor
