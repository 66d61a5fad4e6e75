#include "velquor/automation/safe_array_bridge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <map>
#include <string>
#include <sstream>
#include <vector>

#include "reference_table.h"
#include "velquor/automation/utf16.h"
#include "velquor/frame/constants.h"

namespace velquor {
namespace {

// Destroys the array even when a test left it locked on purpose.
using ArrayPtr = std::unique_ptr<SAFEARRAY, void (*)(SAFEARRAY*)>;
ArrayPtr Owned(SAFEARRAY* psa) {
  return ArrayPtr(psa, [](SAFEARRAY* p) { ole::SafeArrayDestroy((p->cLocks = 0, p)); });
}

using Strings = std::vector<std::string>;

// A safe array (a vector, or a matrix of `elements.size()` x 3) whose first elements in memory
// are `elements`: texts ("-" leaves a null BSTR) or integer images.
ArrayPtr Make(VARTYPE vt, const Strings& elements, LONG lowerBound = 0, UINT dims = 1) {
  const SAFEARRAYBOUND bounds[2] = {{static_cast<ULONG>(elements.size()), lowerBound}, {3, 0}};
  ArrayPtr psa = Owned(ole::SafeArrayCreate(vt, dims, bounds));
  for (std::size_t i = 0; i < elements.size(); ++i) {
    auto* element = static_cast<char*>(psa->pvData) + i * psa->cbElements;
    const std::int64_t image = vt == VT_BSTR ? 0 : std::stoll(elements[i]);
    if (vt != VT_BSTR) std::memcpy(element, &image, psa->cbElements);
    const BSTR text = vt == VT_BSTR && elements[i] != "-" ? ole::AllocBstr(Utf8ToUtf16(elements[i])) : nullptr;
    if (text != nullptr) std::memcpy(element, &text, sizeof text);
  }
  return psa;
}

// The first elements in memory of a safe array, as many as its first dimension counts (integer
// images; "-" for a null BSTR), or of a library array.
Strings Contents(SAFEARRAY* psa, VARTYPE vt) {
  LONG lower = 0, upper = -1;
  EXPECT_EQ(ole::SafeArrayGetLBound(psa, 1, &lower), S_OK);
  EXPECT_EQ(ole::SafeArrayGetUBound(psa, 1, &upper), S_OK);
  Strings result;
  for (LONG i = 0; i <= upper - lower; ++i) {
    const char* element = static_cast<const char*>(psa->pvData) + i * psa->cbElements;
    BSTR text = nullptr;
    std::uint64_t image = 0;
    std::memcpy(vt == VT_BSTR ? static_cast<void*>(&text) : &image, element, psa->cbElements);
    result.push_back(vt != VT_BSTR ? vt == VT_I4 ? std::to_string(std::int32_t(image)) : std::to_string(image)
                     : text ? Utf16ToUtf8(ole::BstrText(text)) : "-");
  }
  return result;
}
template <class A>
Strings Contents(const A& array) {
  Strings result;
  for (std::size_t i = 0; i < array.GetSize(); ++i) {
    std::ostringstream text;
    text << array[i];
    result.push_back(text.str());
  }
  return result;
}

Strings Split(const std::string& text) {
  Strings parts;
  std::stringstream in(text);
  for (std::string part; std::getline(in, part, '|');) parts.push_back(part);
  return parts;
}

// Makes the n-th (1-based) call of one kind fail; 0 never fails.
void FailNth(ole::AutomationCall call, int failAt) {
  ole::SetAutomationFaultHook([call, failAt, calls = 0](ole::AutomationCall c, const SAFEARRAY*, LONG) mutable {
    return c == call && ++calls == failAt ? E_FAIL : S_OK;
  });
}

TEST(StringBridge, StoreThenLoadConvertsUtf8AndUtf16) {
  // "ä€😀" (U+00E4, U+20AC, U+1F600: four UTF-16 units); an ill-formed byte; a NUL.
  const std::string emoji = "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  CStringArray source;
  for (const std::string& text : Strings{"", "Gelb", emoji, "a\xFF", std::string("x\0y", 3)}) source.Add(text);
  ArrayPtr psa = Make(VT_BSTR, {"old 1", "old 2", "old 3", "old 4", "old 5", "old 6"}, 5);
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(source, &raw), S_OK);
  EXPECT_EQ(ole::BstrText(static_cast<BSTR*>(raw->pvData)[2]), (std::u16string{0x00E4, 0x20AC, 0xD83D, 0xDE00}));
  const Strings expected = {"", "Gelb", emoji, "a\xEF\xBF\xBD", "x"};
  EXPECT_EQ(Contents(raw, VT_BSTR), expected);
  CStringArray loaded;
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Contents(loaded), expected);
  ASSERT_EQ(StoreToSafeArray(CStringArray(), &raw), S_OK);
  EXPECT_EQ(psa->rgsabound[0].cElements, 0u);

  // A null BSTR loads as empty; a string stops at its first NUL.
  ArrayPtr withNull = Make(VT_BSTR, {"one", std::string("t\0wo", 4), "-"});
  raw = withNull.get();
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Contents(loaded), (Strings{"one", "t", ""}));
}

TEST(Bridges, LoadsAndStoresRefuseBadArraysAndKeepWhatWasDoneBeforeAFault) {
  const Strings calls = {"Lock", "Unlock", "GetElement", "PutElement", "Redim", "AllocString"};  // AutomationCall order
  const std::map<std::string, HRESULT> results = {
      {"S_OK", S_OK}, {"E_FAIL", E_FAIL}, {"E_OUTOFMEMORY", E_OUTOFMEMORY}, {"E_INVALIDARG", E_INVALIDARG}, {"E_POINTER", E_POINTER}};
  const std::map<std::string, VARTYPE> types = {{"BSTR", VT_BSTR}, {"UI1", VT_UI1}, {"I2", VT_I2}, {"I4", VT_I4},
                                                {"UI4", VT_UI4}, {"R4", VT_R4}, {"R8", VT_R8}, {"I8", VT_I8}};
  for (const auto& row : test::LoadReferenceTable("reference/automation_bridge_calls.csv")) {
    SCOPED_TRACE(row.Where());
    ArrayPtr psa = Make(types.at(row.Text("vt")), Split(row.Text("safe_array")), row.Integer("lower_bound"),
                        static_cast<UINT>(row.Integer("dims")));
    const auto features = static_cast<USHORT>(row.Integer("features"));
    psa->fFeatures |= features;
    CStringArray texts;
    CValueArray doubles;
    CDWordArray dwords;
    CUIntArray uints;
    const std::string& kind = row.Text("array");
    for (const std::string& text : Split(row.Text("library"))) {
      texts.Add(text);
      if (kind == "strings") continue;
      doubles.Append(std::stod(text));
      dwords.Add(static_cast<std::uint32_t>(std::stoll(text)));
      uints.Add(static_cast<std::uint32_t>(std::stoll(text)));
    }
    const bool load = row.Text("op") == "load";
    SAFEARRAY* raw = psa.get();
    const auto call = [&](auto& array) { return load ? LoadFromSafeArray(array, &raw) : StoreToSafeArray(array, &raw); };
    FailNth(ole::AutomationCall(std::find(calls.begin(), calls.end(), row.Text("call")) - calls.begin()), row.Integer("fail_at"));
    const HRESULT hr = kind == "strings" ? call(texts) : kind == "doubles" ? call(doubles) : kind == "dwords" ? call(dwords) : call(uints);
    ole::SetAutomationFaultHook({});
    EXPECT_EQ(hr, results.at(row.Text("result")));
    const Strings after = !load ? Contents(raw, types.at(row.Text("vt")))
                          : kind == "strings" ? Contents(texts) : kind == "doubles" ? Contents(doubles)
                          : kind == "dwords"  ? Contents(dwords) : Contents(uints);
    EXPECT_EQ(after, Split(row.Text("after")));
    EXPECT_EQ(psa->cLocks, static_cast<ULONG>(row.Integer("locks")));
    if (!load && hr == S_OK) {
      EXPECT_EQ(psa->rgsabound[0].lLbound, 0);
    }
    psa->fFeatures &= static_cast<USHORT>(~features);  // destroyed as created
  }
}

TEST(NumericBridges, RoundTripCopiesExactImages) {
  const double nan = std::bit_cast<double>(std::uint64_t{0x7FF8DEADBEEF0001});
  CValueArray doubles, back;
  for (const double v : {kMissing, -0.0, 1.0 / 3.0, nan, std::numeric_limits<double>::denorm_min()}) doubles.Append(v);
  ArrayPtr psa = Make(VT_R8, {"0"});
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(doubles, &raw), S_OK);
  ASSERT_EQ(LoadFromSafeArray(back, &raw), S_OK);
  ASSERT_EQ(back.GetSize(), 5u);
  SAFEARRAY* none = nullptr;  // no array at all
  EXPECT_EQ(LoadFromSafeArray(back, &none), E_INVALIDARG);
  EXPECT_EQ(StoreToSafeArray(back, &none), E_INVALIDARG);
  EXPECT_EQ(LoadFromSafeArray(back, nullptr), E_INVALIDARG);
  EXPECT_EQ(std::memcmp(back.GetData(), doubles.GetData(), 5 * sizeof(double)), 0);
}

}  // namespace
}  // namespace velquor
