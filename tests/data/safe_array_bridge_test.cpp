#include "velquor/data/safe_array_bridge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

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
  SAFEARRAY* psa = SafeArrayCreateVector(vt, lowerBound, count);
  EXPECT_NE(psa, nullptr);
  return ArrayPtr(psa);
}

ArrayPtr Matrix(VARTYPE vt) {
  const SAFEARRAYBOUND bounds[2] = {{2, 0}, {3, 0}};
  return ArrayPtr(SafeArrayCreate(vt, 2, bounds));
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

// The strings of a BSTR vector, nullopt for a null BSTR.
std::vector<std::optional<std::u16string>> Contents(SAFEARRAY* psa) {
  std::vector<std::optional<std::u16string>> result;
  const BSTR* slots = static_cast<BSTR*>(psa->pvData);
  for (ULONG i = 0; i < psa->rgsabound[0].cElements; ++i) {
    if (slots[i] == nullptr) {
      result.emplace_back();
    } else {
      result.emplace_back(std::u16string(slots[i], SysStringLen(slots[i])));
    }
  }
  return result;
}

template <class T>
std::vector<T> Values(SAFEARRAY* psa) {
  std::vector<T> result(psa->rgsabound[0].cElements);
  if (!result.empty()) std::memcpy(result.data(), psa->pvData, result.size() * sizeof(T));
  return result;
}

// Fails the n-th (1-based) call of one kind and records every call of that kind with its index.
class FaultPlan {
 public:
  FaultPlan(AutomationCall call, int failAt, HRESULT code = E_FAIL) {
    SetAutomationFaultHook([this, call, failAt, code](AutomationCall c, const SAFEARRAY*, LONG i) {
      if (c != call) return S_OK;
      indices.push_back(i);
      return static_cast<int>(indices.size()) == failAt ? code : S_OK;
    });
  }
  ~FaultPlan() { SetAutomationFaultHook({}); }
  FaultPlan(const FaultPlan&) = delete;
  FaultPlan& operator=(const FaultPlan&) = delete;

  std::vector<LONG> indices;
};

CStringArray StringArray(std::initializer_list<std::string> texts) {
  CStringArray array;
  for (const std::string& text : texts) array.Add(text);
  return array;
}

std::vector<std::string> Texts(const CStringArray& array) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < array.GetSize(); ++i) result.push_back(array[i]);
  return result;
}

// --- strings -------------------------------------------------------------------------------

TEST(StringBridge, StoreThenLoadConvertsUtf8AndUtf16) {
  // "Gelb"; "ä€😀" (U+00E4, U+20AC, U+1F600: four UTF-16 units); an ill-formed byte; a NUL.
  const CStringArray source = StringArray(
      {"", "Gelb", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "a\xFF", std::string("x\0y", 3)});
  ArrayPtr psa = StringVector({u"old 1", u"old 2", u"old 3", u"old 4", u"old 5", u"old 6"}, 5);
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(source, &raw), S_OK);

  EXPECT_EQ(psa->rgsabound[0].cElements, 5u);
  EXPECT_EQ(psa->rgsabound[0].lLbound, 0);  // redimensioned to lower bound 0
  const std::vector<std::optional<std::u16string>> expected = {
      u"", u"Gelb", std::u16string{0x00E4, 0x20AC, 0xD83D, 0xDE00}, u"a\uFFFD", u"x"};
  EXPECT_EQ(Contents(raw), expected);

  CStringArray loaded = StringArray({"stale"});
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Texts(loaded),
            (std::vector<std::string>{"", "Gelb", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80",
                                      "a\xEF\xBF\xBD", "x"}));
  EXPECT_EQ(psa->cLocks, 0u);

  ASSERT_EQ(StoreToSafeArray(CStringArray(), &raw), S_OK);  // storing nothing: zero elements
  EXPECT_EQ(psa->rgsabound[0].cElements, 0u);
}

TEST(StringBridge, LoadTakesNullAsEmptyAndStopsAtNul) {
  ArrayPtr psa = StringVector({u"one", std::u16string(u"t\0wo", 4), u"three"});
  const BSTR* slots = static_cast<BSTR*>(psa->pvData);
  SysFreeString(slots[2]);
  static_cast<BSTR*>(psa->pvData)[2] = nullptr;
  SAFEARRAY* raw = psa.get();
  CStringArray loaded;
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Texts(loaded), (std::vector<std::string>{"one", "t", ""}));
}

TEST(StringBridge, LoadReadsFromIndexZeroWhateverTheLowerBound) {
  ArrayPtr psa = StringVector({u"a", u"b", u"c"}, 1);
  SAFEARRAY* raw = psa.get();
  FaultPlan log(AutomationCall::kGetElement, 0);  // records only
  CStringArray loaded = StringArray({"stale"});
  EXPECT_EQ(LoadFromSafeArray(loaded, &raw), E_FAIL);  // index 0 lies below the bound
  EXPECT_EQ(log.indices, std::vector<LONG>{0});
  EXPECT_EQ(loaded.GetSize(), 0u);
  EXPECT_EQ(psa->cLocks, 1u);  // left locked

  // Lower bound 0: indices 0, 1, 2.
  ArrayPtr zeroBased = StringVector({u"a", u"b", u"c"});
  raw = zeroBased.get();
  log.indices.clear();
  EXPECT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(log.indices, (std::vector<LONG>{0, 1, 2}));
}

TEST(StringBridge, LoadFaultsKeepWhatWasReadBefore) {
  struct Case {
    AutomationCall call;
    int failAt;
    std::vector<std::string> kept;
    ULONG locks;
  };
  const Case cases[] = {
      {AutomationCall::kLock, 1, {}, 0},
      {AutomationCall::kGetElement, 1, {}, 1},
      {AutomationCall::kGetElement, 3, {"a", "b"}, 1},
      {AutomationCall::kGetElement, 4, {"a", "b", "c"}, 1},
      // The copy that SafeArrayGetElement makes of the second string cannot be allocated.
      {AutomationCall::kAllocString, 2, {"a"}, 1},
      // A failing unlock is not checked: the load succeeds and the array stays locked.
      {AutomationCall::kUnlock, 1, {"a", "b", "c", "d"}, 1},
  };
  for (const Case& c : cases) {
    ArrayPtr psa = StringVector({u"a", u"b", u"c", u"d"});
    SAFEARRAY* raw = psa.get();
    CStringArray loaded = StringArray({"stale"});
    HRESULT hr;
    {
      FaultPlan plan(c.call, c.failAt);
      hr = LoadFromSafeArray(loaded, &raw);
    }
    EXPECT_EQ(hr, c.call == AutomationCall::kUnlock ? S_OK : E_FAIL) << c.failAt;
    EXPECT_EQ(Texts(loaded), c.kept) << static_cast<int>(c.call) << '/' << c.failAt;
    EXPECT_EQ(psa->cLocks, c.locks);
  }
}

TEST(StringBridge, StoreFaultsLeaveTheResizedArrayWithTheStringsWritten) {
  using Contents_t = std::vector<std::optional<std::u16string>>;
  struct Case {
    AutomationCall call;
    int failAt;
    HRESULT result;
    Contents_t after;
  };
  const std::optional<std::u16string> none;
  // Each element takes two string allocations: the store's own, then the copy that
  // SafeArrayPutElement keeps.
  const Case cases[] = {
      {AutomationCall::kRedim, 1, E_FAIL, {u"old"}},
      {AutomationCall::kPutElement, 1, E_FAIL, {u"old", none, none}},  // kept in its place
      {AutomationCall::kPutElement, 2, E_FAIL, {u"x", none, none}},
      {AutomationCall::kAllocString, 3, E_OUTOFMEMORY, {u"x", none, none}},  // the store's
      {AutomationCall::kAllocString, 4, E_FAIL, {u"x", none, none}},  // SafeArrayPutElement's
      {AutomationCall::kAllocString, 6, E_FAIL, {u"x", u"y", none}},
  };
  const CStringArray source = StringArray({"x", "y", "z"});
  for (const Case& c : cases) {
    ArrayPtr psa = StringVector({u"old"});
    SAFEARRAY* raw = psa.get();
    HRESULT hr;
    {
      FaultPlan plan(c.call, c.failAt);
      hr = StoreToSafeArray(source, &raw);
    }
    EXPECT_EQ(hr, c.result) << static_cast<int>(c.call) << '/' << c.failAt;
    EXPECT_EQ(Contents(raw), c.after) << static_cast<int>(c.call) << '/' << c.failAt;
  }
}

// --- every pair ----------------------------------------------------------------------------

// One pair, driven through type-erased calls on a library array prefilled with two elements.
struct Pair {
  const char* name;
  VARTYPE vt;                                 // an element type the pair accepts
  std::vector<VARTYPE> refused;               // element types it refuses
  std::function<HRESULT(SAFEARRAY**)> load;   // loads into the prefilled array
  std::function<HRESULT(SAFEARRAY**)> store;  // stores the prefilled array
  std::function<std::size_t()> librarySize;
};

std::vector<Pair> AllPairs(CStringArray& strings, CValueArray& doubles, CDWordArray& dwords,
                           CUIntArray& uints) {
  strings = StringArray({"p", "q"});
  doubles.RemoveAll();
  doubles.Append(1.0);
  doubles.Append(2.0);
  dwords.RemoveAll();
  dwords.Add(1);
  dwords.Add(2);
  uints.RemoveAll();
  uints.Add(1);
  uints.Add(2);
  return {
      {"strings",
       VT_BSTR,
       {VT_UI1, VT_I2, VT_I4, VT_R4, VT_R8, VT_I8},
       [&](SAFEARRAY** p) { return LoadFromSafeArray(strings, p); },
       [&](SAFEARRAY** p) { return StoreToSafeArray(strings, p); },
       [&] { return strings.GetSize(); }},
      {"doubles",
       VT_R8,
       {VT_UI1, VT_I2, VT_I4, VT_R4, VT_BSTR},
       [&](SAFEARRAY** p) { return LoadFromSafeArray(doubles, p); },
       [&](SAFEARRAY** p) { return StoreToSafeArray(doubles, p); },
       [&] { return doubles.GetSize(); }},
      {"dwords",
       VT_UI4,
       {VT_UI1, VT_I2, VT_R8, VT_I8, VT_BSTR},
       [&](SAFEARRAY** p) { return LoadFromSafeArray(dwords, p); },
       [&](SAFEARRAY** p) { return StoreToSafeArray(dwords, p); },
       [&] { return dwords.GetSize(); }},
      {"uints",
       VT_R4,
       {VT_UI1, VT_I2, VT_R8, VT_I8, VT_BSTR},
       [&](SAFEARRAY** p) { return LoadFromSafeArray(uints, p); },
       [&](SAFEARRAY** p) { return StoreToSafeArray(uints, p); },
       [&] { return uints.GetSize(); }},
  };
}

TEST(AllBridges, RefuseArraysOfTheWrongShapeOrKindUntouched) {
  CStringArray strings;
  CValueArray doubles;
  CDWordArray dwords;
  CUIntArray uints;
  for (const Pair& pair : AllPairs(strings, doubles, dwords, uints)) {
    std::vector<ArrayPtr> refused;
    refused.push_back(Matrix(pair.vt));  // two dimensions of the right type
    for (VARTYPE vt : pair.refused) refused.push_back(Vector(vt, 3));
    for (ArrayPtr& psa : refused) {
      SAFEARRAY* raw = psa.get();
      const ULONG before = raw->rgsabound[0].cElements;
      EXPECT_EQ(pair.load(&raw), E_INVALIDARG) << pair.name << " vt " << raw->vt;
      EXPECT_EQ(pair.librarySize(), 2u) << pair.name;
      EXPECT_EQ(pair.store(&raw), E_INVALIDARG) << pair.name << " vt " << raw->vt;
      EXPECT_EQ(raw->rgsabound[0].cElements, before);
    }
    SAFEARRAY* none = nullptr;
    EXPECT_EQ(pair.load(&none), E_INVALIDARG) << pair.name;
    EXPECT_EQ(pair.store(&none), E_INVALIDARG) << pair.name;
    EXPECT_EQ(pair.load(nullptr), E_INVALIDARG) << pair.name;
    EXPECT_EQ(pair.librarySize(), 2u) << pair.name;
  }
}

TEST(AllBridges, StaticOrFixedSizeArraysRefuseAStoreEvenAtTheRightSize) {
  struct Case {
    USHORT features;
    HRESULT result;
  };
  const Case cases[] = {
      {FADF_FIXEDSIZE, E_POINTER},
      {FADF_STATIC, E_POINTER},
      {FADF_STATIC | FADF_FIXEDSIZE, E_POINTER},
      {FADF_AUTO | FADF_EMBEDDED | FADF_HAVEIID, S_OK},  // the neighbouring flags do not
  };
  CStringArray strings;
  CValueArray doubles;
  CDWordArray dwords;
  CUIntArray uints;
  for (const Pair& pair : AllPairs(strings, doubles, dwords, uints)) {
    for (const Case& c : cases) {
      ArrayPtr psa = Vector(pair.vt, 2);
      psa->fFeatures |= c.features;
      SAFEARRAY* raw = psa.get();
      EXPECT_EQ(pair.store(&raw), c.result) << pair.name << ' ' << c.features;
      if (c.result == E_POINTER) {  // nothing written: still the initial zeros (null strings)
        const auto* bytes = static_cast<const unsigned char*>(raw->pvData);
        EXPECT_EQ(raw->rgsabound[0].cElements, 2u);
        EXPECT_TRUE(std::all_of(bytes, bytes + 2 * raw->cbElements, [](auto b) { return b == 0; }));
      }
    }
  }
}

// --- numeric pairs -------------------------------------------------------------------------

TEST(NumericBridges, RoundTripCopiesExactImages) {
  CValueArray doubles;
  const double nan = std::bit_cast<double>(std::uint64_t{0x7FF8DEADBEEF0001});
  for (double v : {kMissing, -0.0, 1.0 / 3.0, nan, std::numeric_limits<double>::denorm_min()}) {
    doubles.Append(v);
  }
  ArrayPtr psa = Vector(VT_R8, 1);
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(doubles, &raw), S_OK);
  const std::vector<double> stored = Values<double>(raw);
  ASSERT_EQ(stored.size(), 5u);
  EXPECT_EQ(std::memcmp(stored.data(), doubles.GetData(), 5 * sizeof(double)), 0);
  CValueArray back;
  ASSERT_EQ(LoadFromSafeArray(back, &raw), S_OK);
  ASSERT_EQ(back.GetSize(), 5u);
  EXPECT_EQ(std::memcmp(back.GetData(), doubles.GetData(), 5 * sizeof(double)), 0);

  // 32-bit pairs copy raw images: extremes and the image of 1.5f (0x3FC00000).
  CDWordArray dwords;
  for (std::uint32_t v : {0u, 0xFFFFFFFFu, 0x80000000u, 0x3FC00000u}) dwords.Add(v);
  ArrayPtr ints = Vector(VT_I4, 0);
  raw = ints.get();
  ASSERT_EQ(StoreToSafeArray(dwords, &raw), S_OK);
  EXPECT_EQ(
      Values<std::int32_t>(raw),
      (std::vector<std::int32_t>{0, -1, std::numeric_limits<std::int32_t>::min(), 0x3FC00000}));
  CUIntArray uints;
  ASSERT_EQ(LoadFromSafeArray(uints, &raw), S_OK);
  ASSERT_EQ(uints.GetSize(), 4u);
  EXPECT_EQ(std::bit_cast<float>(uints[3]), 1.5f);
  EXPECT_EQ(uints[1], 0xFFFFFFFFu);
}

TEST(NumericBridges, LoadCopiesTheWholeBlockWhateverTheLowerBound) {
  ArrayPtr psa = Vector(VT_R8, 3, 1);
  const double values[3] = {0.5, 1.5, 2.5};
  std::memcpy(psa->pvData, values, sizeof values);
  SAFEARRAY* raw = psa.get();
  CValueArray loaded;
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  ASSERT_EQ(loaded.GetSize(), 3u);
  EXPECT_EQ(loaded[0], 0.5);
  EXPECT_EQ(loaded[2], 2.5);
}

TEST(NumericBridges, FailedLoadHasAlreadySizedTheLibraryArray) {
  ArrayPtr psa = Vector(VT_R8, 4);
  SAFEARRAY* raw = psa.get();
  CValueArray loaded;
  loaded.Append(7.0);
  loaded.Append(8.0);
  {
    FaultPlan plan(AutomationCall::kLock, 1);
    EXPECT_EQ(LoadFromSafeArray(loaded, &raw), E_FAIL);
  }
  ASSERT_EQ(loaded.GetSize(), 4u);
  EXPECT_EQ(loaded[0], 7.0);  // old values kept, new ones zero
  EXPECT_EQ(loaded[1], 8.0);
  EXPECT_EQ(loaded[3], 0.0);
  EXPECT_EQ(psa->cLocks, 0u);
}

TEST(NumericBridges, FailedStoreKeepsWhatItHadDone) {
  CDWordArray source;
  for (std::uint32_t v : {5u, 6u, 7u}) source.Add(v);
  struct Case {
    AutomationCall call;
    HRESULT result;
    std::vector<std::uint32_t> after;
    ULONG locks;
  };
  const Case cases[] = {
      {AutomationCall::kRedim, E_FAIL, {9, 9}, 0},    // untouched
      {AutomationCall::kLock, E_FAIL, {9, 9, 0}, 0},  // resized, nothing copied
      {AutomationCall::kUnlock, S_OK, {5, 6, 7}, 1},  // the unlock is not checked
  };
  for (const Case& c : cases) {
    ArrayPtr psa = Vector(VT_UI4, 2, 3);
    const std::uint32_t nines[2] = {9, 9};
    std::memcpy(psa->pvData, nines, sizeof nines);
    SAFEARRAY* raw = psa.get();
    {
      FaultPlan plan(c.call, 1);
      EXPECT_EQ(StoreToSafeArray(source, &raw), c.result) << static_cast<int>(c.call);
    }
    EXPECT_EQ(Values<std::uint32_t>(raw), c.after) << static_cast<int>(c.call);
    EXPECT_EQ(psa->cLocks, c.locks);
  }
}

TEST(NumericBridges, StoringNothingLeavesZeroElements) {
  ArrayPtr psa = Vector(VT_R8, 5, -2);
  SAFEARRAY* raw = psa.get();
  EXPECT_EQ(StoreToSafeArray(CValueArray(), &raw), S_OK);
  EXPECT_EQ(psa->rgsabound[0].cElements, 0u);
  EXPECT_EQ(psa->rgsabound[0].lLbound, 0);
  CValueArray loaded;
  loaded.Append(1.0);
  EXPECT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(loaded.GetSize(), 0u);
}

}  // namespace
}  // namespace velquor
