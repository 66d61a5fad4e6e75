#include "velquor/automation/safe_array_bridge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <map>
#include <string>
#include <type_traits>
#include <sstream>
#include <utility>
#include <vector>

#include "reference_table.h"
#include "velquor/automation/utf16.h"
#include "velquor/frame/constants.h"

namespace velquor {
namespace {

struct ArrayDeleter {
  void operator()(SAFEARRAY* psa) const {
    psa->cLocks = 0;  // tests leave arrays locked on purpose
    SafeArrayDestroy(psa);
  }
};
using ArrayPtr = std::unique_ptr<SAFEARRAY, ArrayDeleter>;

ArrayPtr Vector(VARTYPE vt, ULONG count, LONG lowerBound = 0) {
  return ArrayPtr(SafeArrayCreateVector(vt, lowerBound, count));
}

ArrayPtr StringVector(std::initializer_list<std::u16string> texts, LONG lowerBound = 0) {
  ArrayPtr psa = Vector(VT_BSTR, static_cast<ULONG>(texts.size()), lowerBound);
  LONG index = lowerBound;
  for (const std::u16string& text : texts) {
    BSTR bstr = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    EXPECT_EQ(SafeArrayPutElement(psa.get(), &index, bstr), S_OK);
    SysFreeString(bstr);
    ++index;
  }
  return psa;
}

// The strings of a BSTR vector as UTF-8, "-" for a null BSTR.
std::vector<std::string> Contents(SAFEARRAY* psa) {
  std::vector<std::string> result;
  for (const BSTR* slot = static_cast<BSTR*>(psa->pvData); result.size() < psa->rgsabound[0].cElements; ++slot) {
    result.push_back(*slot ? Utf16ToUtf8(std::u16string_view(*slot, SysStringLen(*slot))) : "-");
  }
  return result;
}

template <class T>
std::vector<std::string> Texts(const T* data, std::size_t count) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < count; ++i) result.push_back(std::to_string(data[i]));
  return result;
}

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  for (std::string part; std::getline(in, part, '|');) parts.push_back(part);
  return parts;
}

template <class A, class T>
A Filled(std::initializer_list<T> values) {
  A array;
  for (const T& v : values) {
    if constexpr (std::is_same_v<A, CValueArray>) array.Append(v); else array.Add(v);
  }
  return array;
}

template <class A>
auto Elements(const A& array) {
  std::vector<std::remove_cvref_t<decltype(array[0])>> result;
  for (std::size_t i = 0; i < array.GetSize(); ++i) result.push_back(array[i]);
  return result;
}

// Fails the n-th (1-based) call of one kind; 0 never fails.
class FaultPlan {
 public:
  FaultPlan(AutomationCall call, int failAt) {
    SetAutomationFaultHook([this, call, failAt](AutomationCall c, const SAFEARRAY*, LONG) {
      return c == call && ++calls_ == failAt ? E_FAIL : S_OK;
    });
  }
  ~FaultPlan() { SetAutomationFaultHook({}); }

 private:
  int calls_ = 0;
};

using Strings = std::vector<std::string>;

TEST(StringBridge, StoreThenLoadConvertsUtf8AndUtf16) {
  // "ä€😀" (U+00E4, U+20AC, U+1F600: four UTF-16 units); an ill-formed byte; a NUL.
  const std::string emoji = "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  const auto source = Filled<CStringArray, std::string>({"", "Gelb", emoji, "a\xFF", std::string("x\0y", 3)});
  ArrayPtr psa = StringVector({u"old 1", u"old 2", u"old 3", u"old 4", u"old 5", u"old 6"}, 5);
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(source, &raw), S_OK);
  EXPECT_EQ(psa->rgsabound[0].lLbound, 0);  // redimensioned to lower bound 0
  EXPECT_EQ(std::u16string(static_cast<BSTR*>(raw->pvData)[2]), (std::u16string{0x00E4, 0x20AC, 0xD83D, 0xDE00}));
  const Strings expected = {"", "Gelb", emoji, "a\xEF\xBF\xBD", "x"};
  EXPECT_EQ(Contents(raw), expected);
  auto loaded = Filled<CStringArray, std::string>({"stale"});
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Elements(loaded), expected);
  EXPECT_EQ(psa->cLocks, 0u);
  ASSERT_EQ(StoreToSafeArray(CStringArray(), &raw), S_OK);
  EXPECT_EQ(psa->rgsabound[0].cElements, 0u);

  // A null BSTR loads as empty; a string stops at its first NUL.
  ArrayPtr withNull = StringVector({u"one", std::u16string(u"t\0wo", 4), u"three"});
  SysFreeString(std::exchange(static_cast<BSTR*>(withNull->pvData)[2], nullptr));
  raw = withNull.get();
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Elements(loaded), (Strings{"one", "t", ""}));
}

// Each row sets up its arrays, then makes the n-th call of one kind fail.
TEST(Bridges, FaultsKeepWhatWasDoneBefore) {
  const std::map<std::string, AutomationCall> calls = {
      {"Lock", AutomationCall::kLock}, {"Unlock", AutomationCall::kUnlock}, {"GetElement", AutomationCall::kGetElement},
      {"PutElement", AutomationCall::kPutElement}, {"Redim", AutomationCall::kRedim}, {"AllocString", AutomationCall::kAllocString}};
  const std::map<std::string, HRESULT> results = {{"S_OK", S_OK}, {"E_FAIL", E_FAIL}, {"E_OUTOFMEMORY", E_OUTOFMEMORY}};
  for (const auto& row : test::LoadReferenceTable("reference/automation_bridge_faults.csv")) {
    SCOPED_TRACE(row.Where());
    const bool load = row.Text("op") == "load", strings = row.Text("array") == "strings";
    ArrayPtr psa = strings ? StringVector(load ? std::initializer_list<std::u16string>{u"a", u"b", u"c", u"d"}
                                               : std::initializer_list<std::u16string>{u"old"}, row.Integer("lower_bound"))
                           : Vector(VT_UI4, load ? 4 : 2, row.Integer("lower_bound"));
    const std::uint32_t numbers[4] = {1, 2, 3, 4}, nines[2] = {9, 9};
    if (!strings) std::memcpy(psa->pvData, load ? numbers : nines, load ? sizeof numbers : sizeof nines);
    auto texts = Filled<CStringArray, std::string>(load ? std::initializer_list<std::string>{"stale"}
                                                        : std::initializer_list<std::string>{"x", "y", "z"});
    auto dwords = Filled<CDWordArray, std::uint32_t>(load ? std::initializer_list<std::uint32_t>{9, 9}
                                                          : std::initializer_list<std::uint32_t>{5, 6, 7});
    SAFEARRAY* raw = psa.get();
    HRESULT hr = S_OK;
    {
      FaultPlan plan(calls.at(row.Text("call")), row.Integer("fail_at"));
      hr = strings ? (load ? LoadFromSafeArray(texts, &raw) : StoreToSafeArray(texts, &raw))
                   : (load ? LoadFromSafeArray(dwords, &raw) : StoreToSafeArray(dwords, &raw));
    }
    EXPECT_EQ(hr, results.at(row.Text("result")));
    const std::vector<std::string> after =
        load ? (strings ? Elements(texts) : Texts(dwords.GetData(), dwords.GetSize()))
             : (strings ? Contents(raw) : Texts(static_cast<const std::uint32_t*>(raw->pvData), raw->rgsabound[0].cElements));
    EXPECT_EQ(after, Split(row.Text("after")));
    EXPECT_EQ(psa->cLocks, static_cast<ULONG>(row.Integer("locks")));
    if (!load && hr == S_OK) {
      EXPECT_EQ(psa->rgsabound[0].lLbound, 0);
    }
  }
}

// Arrays of the wrong shape or kind are refused untouched; a store into a static or
// fixed-size array is refused even at the right size, and neighbouring features are not.
template <class A>
void CheckRefusals(A array, VARTYPE vt, std::initializer_list<VARTYPE> refused) {
  SCOPED_TRACE(testing::Message() << "vt " << vt);
  const SAFEARRAYBOUND bounds[2] = {{2, 0}, {3, 0}};
  std::vector<ArrayPtr> arrays;
  arrays.emplace_back(SafeArrayCreate(vt, 2, bounds));
  for (VARTYPE other : refused) arrays.push_back(Vector(other, 3));
  for (ArrayPtr& psa : arrays) {
    SAFEARRAY* raw = psa.get();
    EXPECT_EQ(LoadFromSafeArray(array, &raw), E_INVALIDARG) << raw->vt;
    EXPECT_EQ(StoreToSafeArray(array, &raw), E_INVALIDARG) << raw->vt;
    EXPECT_EQ(raw->rgsabound[0].cElements, psa->cDims == 2 ? 2u : 3u);
  }
  SAFEARRAY* none = nullptr;
  EXPECT_EQ(LoadFromSafeArray(array, &none), E_INVALIDARG);
  EXPECT_EQ(StoreToSafeArray(array, &none), E_INVALIDARG);
  EXPECT_EQ(LoadFromSafeArray(array, nullptr), E_INVALIDARG);
  EXPECT_EQ(array.GetSize(), 2u);
  for (const USHORT features : {FADF_FIXEDSIZE, FADF_STATIC, USHORT(FADF_AUTO | FADF_EMBEDDED | FADF_HAVEIID)}) {
    ArrayPtr psa = Vector(vt, 2);
    psa->fFeatures |= features;
    SAFEARRAY* raw = psa.get();
    const bool refuse = features != (FADF_AUTO | FADF_EMBEDDED | FADF_HAVEIID);
    EXPECT_EQ(StoreToSafeArray(array, &raw), refuse ? E_POINTER : S_OK) << features;
    const auto* bytes = static_cast<const unsigned char*>(raw->pvData);
    EXPECT_EQ(std::all_of(bytes, bytes + 2 * raw->cbElements, [](auto b) { return b == 0; }), refuse);
  }
}

TEST(AllBridges, RefuseArraysOfTheWrongShapeOrKind) {
  CheckRefusals(Filled<CStringArray, std::string>({"p", "q"}), VT_BSTR, {VT_UI1, VT_I2, VT_I4, VT_R8, VT_I8});
  CheckRefusals(Filled<CValueArray, double>({1, 2}), VT_R8, {VT_UI1, VT_I2, VT_I4, VT_R4, VT_BSTR});
  CheckRefusals(Filled<CDWordArray, std::uint32_t>({1, 2}), VT_UI4, {VT_UI1, VT_I2, VT_R8, VT_I8, VT_BSTR});
  CheckRefusals(Filled<CUIntArray, std::uint32_t>({1, 2}), VT_R4, {VT_UI1, VT_I2, VT_R8, VT_I8, VT_BSTR});
}

TEST(NumericBridges, RoundTripCopiesExactImages) {
  const double nan = std::bit_cast<double>(std::uint64_t{0x7FF8DEADBEEF0001});
  const auto doubles =
      Filled<CValueArray, double>({kMissing, -0.0, 1.0 / 3.0, nan, std::numeric_limits<double>::denorm_min()});
  ArrayPtr psa = Vector(VT_R8, 1);
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(doubles, &raw), S_OK);
  ASSERT_EQ(raw->rgsabound[0].cElements, 5u);
  EXPECT_EQ(std::memcmp(raw->pvData, doubles.GetData(), 5 * sizeof(double)), 0);
  CValueArray back;
  ASSERT_EQ(LoadFromSafeArray(back, &raw), S_OK);
  ASSERT_EQ(back.GetSize(), 5u);
  EXPECT_EQ(std::memcmp(back.GetData(), doubles.GetData(), 5 * sizeof(double)), 0);

  // 32-bit pairs copy raw images: extremes and the image of 1.5f (0x3FC00000).
  ArrayPtr ints = Vector(VT_I4, 0);
  raw = ints.get();
  ASSERT_EQ(StoreToSafeArray(Filled<CDWordArray, std::uint32_t>({0u, 0xFFFFFFFFu, 0x80000000u, 0x3FC00000u}), &raw), S_OK);
  EXPECT_EQ(Texts(static_cast<const std::int32_t*>(raw->pvData), 4), (Strings{"0", "-1", "-2147483648", "1069547520"}));
  CUIntArray uints;
  ASSERT_EQ(LoadFromSafeArray(uints, &raw), S_OK);
  ASSERT_EQ(uints.GetSize(), 4u);
  EXPECT_EQ(std::bit_cast<float>(uints[3]), 1.5f);
}

}  // namespace
}  // namespace velquor
