// OLE Automation arrays and strings on Windows: thin wrappers over oleaut32 that consult the
// fault hook first, so the failure paths of their callers can be exercised as on other
// platforms.
#include "velquor/automation/safe_array.h"

#include <cwchar>

namespace velquor::ole {
namespace {

bool HoldsStrings(const SAFEARRAY* psa) {
  return (psa->fFeatures & FADF_BSTR) != 0;
}

// What the hook says about the string copy that an element call makes of `text`.
HRESULT CopyFault(BSTR text) {
  if (text == nullptr) return S_OK;
  const auto length = static_cast<LONG>(::SysStringLen(text));
  return Failed(ConsultAutomationFaultHook(AutomationCall::kAllocString, nullptr, length))
             ? E_OUTOFMEMORY
             : S_OK;
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* source, UINT length) {
  const auto asked = static_cast<LONG>(length);
  if (Failed(ConsultAutomationFaultHook(AutomationCall::kAllocString, nullptr, asked))) {
    return nullptr;
  }
  return ::SysAllocStringLen(source, length);
}

BSTR SysAllocString(const OLECHAR* source) {
  if (source == nullptr) return nullptr;
  return ole::SysAllocStringLen(source, static_cast<UINT>(std::wcslen(source)));
}

UINT SysStringLen(BSTR text) {
  return ::SysStringLen(text);
}

UINT SysStringByteLen(BSTR text) {
  return ::SysStringByteLen(text);
}

void SysFreeString(BSTR text) {
  ::SysFreeString(text);
}

SAFEARRAY* SafeArrayCreate(VARTYPE vt, UINT dims, const SAFEARRAYBOUND* bounds) {
  return ::SafeArrayCreate(vt, dims, const_cast<SAFEARRAYBOUND*>(bounds));
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE vt, LONG lowerBound, ULONG count) {
  return ::SafeArrayCreateVector(vt, lowerBound, count);
}

HRESULT SafeArrayDestroy(SAFEARRAY* psa) {
  return ::SafeArrayDestroy(psa);
}

UINT SafeArrayGetDim(SAFEARRAY* psa) {
  return psa == nullptr ? 0 : ::SafeArrayGetDim(psa);
}

UINT SafeArrayGetElemsize(SAFEARRAY* psa) {
  return psa == nullptr ? 0 : ::SafeArrayGetElemsize(psa);
}

HRESULT SafeArrayGetLBound(SAFEARRAY* psa, UINT dim, LONG* lowerBound) {
  return ::SafeArrayGetLBound(psa, dim, lowerBound);
}

HRESULT SafeArrayGetUBound(SAFEARRAY* psa, UINT dim, LONG* upperBound) {
  return ::SafeArrayGetUBound(psa, dim, upperBound);
}

HRESULT SafeArrayLock(SAFEARRAY* psa) {
  if (psa == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kLock, psa, 0); Failed(hr)) {
    return hr;
  }
  return ::SafeArrayLock(psa);
}

HRESULT SafeArrayUnlock(SAFEARRAY* psa) {
  if (psa == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kUnlock, psa, 0);
      Failed(hr)) {
    return hr;
  }
  return ::SafeArrayUnlock(psa);
}

HRESULT SafeArrayAccessData(SAFEARRAY* psa, void** data) {
  if (psa == nullptr || data == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kLock, psa, 0); Failed(hr)) {
    *data = nullptr;
    return hr;
  }
  return ::SafeArrayAccessData(psa, data);
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* psa) {
  if (psa == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kUnlock, psa, 0);
      Failed(hr)) {
    return hr;
  }
  return ::SafeArrayUnaccessData(psa);
}

HRESULT SafeArrayGetElement(SAFEARRAY* psa, const LONG* indices, void* value) {
  if (psa == nullptr || indices == nullptr || value == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kGetElement, psa, indices[0]);
      Failed(hr)) {
    return hr;
  }
  BSTR before = nullptr;  // restored when the hook refuses the string copy
  if (HoldsStrings(psa)) before = *static_cast<BSTR*>(value);
  const HRESULT hr = ::SafeArrayGetElement(psa, const_cast<LONG*>(indices), value);
  if (Failed(hr) || !HoldsStrings(psa)) return hr;
  BSTR copy = *static_cast<BSTR*>(value);
  if (const HRESULT fault = CopyFault(copy); Failed(fault)) {
    ::SysFreeString(copy);
    *static_cast<BSTR*>(value) = before;
    return fault;
  }
  return hr;
}

HRESULT SafeArrayPutElement(SAFEARRAY* psa, const LONG* indices, const void* value) {
  if (psa == nullptr || indices == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kPutElement, psa, indices[0]);
      Failed(hr)) {
    return hr;
  }
  if (HoldsStrings(psa)) {
    if (const HRESULT fault = CopyFault(static_cast<BSTR>(const_cast<void*>(value)));
        Failed(fault)) {
      return fault;
    }
  }
  return ::SafeArrayPutElement(psa, const_cast<LONG*>(indices), const_cast<void*>(value));
}

HRESULT SafeArrayRedim(SAFEARRAY* psa, const SAFEARRAYBOUND* bound) {
  if (psa == nullptr || bound == nullptr) return E_INVALIDARG;
  if (const HRESULT hr = ConsultAutomationFaultHook(AutomationCall::kRedim, psa, 0); Failed(hr)) {
    return hr;
  }
  return ::SafeArrayRedim(psa, const_cast<SAFEARRAYBOUND*>(bound));
}

}  // namespace velquor::ole
