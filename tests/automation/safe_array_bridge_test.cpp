#include "velquor/automation/safe_array_bridge.h"

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
  for (const BSTR* slot = static_cast<BSTR*>(psa->pvData); result.size() < psa->rgsabound[0].cElements; ++slot) {
    result.push_back(*slot ? std::optional(std::u16string(*slot, SysStringLen(*slot))) : std::nullopt);
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
  FaultPlan(AutomationCall call, int failAt) {
    SetAutomationFaultHook([this, call, failAt](AutomationCall c, const SAFEARRAY*, LONG i) {
      if (c != call) return S_OK;
      indices.push_back(i);
      return static_cast<int>(indices.size()) == failAt ? E_FAIL : S_OK;
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

TEST(StringBridge, StoreThenLoadConvertsUtf8AndUtf16) {
  // "Gelb"; "ä€😀" (U+00E4, U+20AC, U+1F600: four UTF-16 units); an ill-formed byte; a NUL.
  const std::string emoji = "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  const CStringArray source = StringArray({"", "Gelb", emoji, "a\xFF", std::string("x\0y", 3)});
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
  EXPECT_EQ(Texts(loaded), (std::vector<std::string>{"", "Gelb", emoji, "a\xEF\xBF\xBD", "x"}));
  EXPECT_EQ(psa->cLocks, 0u);

  ASSERT_EQ(StoreToSafeArray(CStringArray(), &raw), S_OK);  // storing nothing: zero elements
  EXPECT_EQ(psa->rgsabound[0].cElements, 0u);

  // A null BSTR loads as empty; a string stops at its first NUL.
  ArrayPtr withNull = StringVector({u"one", std::u16string(u"t\0wo", 4), u"three"});
  SysFreeString(static_cast<BSTR*>(withNull->pvData)[2]);
  static_cast<BSTR*>(withNull->pvData)[2] = nullptr;
  raw = withNull.get();
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(Texts(loaded), (std::vector<std::string>{"one", "t", ""}));
}

TEST(StringBridge, LoadReadsFromIndexZeroWhateverTheLowerBound) {
  for (const LONG lowerBound : {1, 0}) {
    ArrayPtr psa = StringVector({u"a", u"b", u"c"}, lowerBound);
    SAFEARRAY* raw = psa.get();
    FaultPlan log(AutomationCall::kGetElement, 0);  // records only
    CStringArray loaded = StringArray({"stale"});
    // With lower bound 1, index 0 lies below the bound: nothing read, the array left locked.
    EXPECT_EQ(LoadFromSafeArray(loaded, &raw), lowerBound == 0 ? S_OK : E_FAIL);
    EXPECT_EQ(log.indices, (lowerBound == 0 ? std::vector<LONG>{0, 1, 2} : std::vector<LONG>{0}));
    EXPECT_EQ(loaded.GetSize(), lowerBound == 0 ? 3u : 0u);
    EXPECT_EQ(psa->cLocks, lowerBound == 0 ? 0u : 1u);
  }
}

TEST(StringBridge, LoadFaultsKeepWhatWasReadBefore) {
  const struct {
    AutomationCall call;
    int failAt;
    std::vector<std::string> kept;
    ULONG locks;
  } cases[] = {
      {AutomationCall::kLock, 1, {}, 0},
      {AutomationCall::kGetElement, 1, {}, 1},
      {AutomationCall::kGetElement, 3, {"a", "b"}, 1},
      {AutomationCall::kGetElement, 4, {"a", "b", "c"}, 1},
      // The copy that SafeArrayGetElement makes of the second string cannot be allocated.
      {AutomationCall::kAllocString, 2, {"a"}, 1},
      // A failing unlock is not checked: the load succeeds and the array stays locked.
      {AutomationCall::kUnlock, 1, {"a", "b", "c", "d"}, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(c.call) << '/' << c.failAt);
    ArrayPtr psa = StringVector({u"a", u"b", u"c", u"d"});
    SAFEARRAY* raw = psa.get();
    CStringArray loaded = StringArray({"stale"});
    FaultPlan plan(c.call, c.failAt);
    EXPECT_EQ(LoadFromSafeArray(loaded, &raw), c.call == AutomationCall::kUnlock ? S_OK : E_FAIL);
    EXPECT_EQ(Texts(loaded), c.kept);
    EXPECT_EQ(psa->cLocks, c.locks);
  }
}

TEST(StringBridge, StoreFaultsLeaveTheResizedArrayWithTheStringsWritten) {
  const std::optional<std::u16string> none;
  // Each element takes two string allocations: the store's own, then the copy that
  // SafeArrayPutElement keeps.
  const struct {
    AutomationCall call;
    int failAt;
    HRESULT result;
    std::vector<std::optional<std::u16string>> after;
  } cases[] = {
      {AutomationCall::kRedim, 1, E_FAIL, {u"old"}},
      {AutomationCall::kPutElement, 1, E_FAIL, {u"old", none, none}},  // kept in its place
      {AutomationCall::kPutElement, 2, E_FAIL, {u"x", none, none}},
      {AutomationCall::kAllocString, 3, E_OUTOFMEMORY, {u"x", none, none}},  // the store's
      {AutomationCall::kAllocString, 4, E_FAIL, {u"x", none, none}},  // SafeArrayPutElement's
      {AutomationCall::kAllocString, 6, E_FAIL, {u"x", u"y", none}},
  };
  const CStringArray source = StringArray({"x", "y", "z"});
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(c.call) << '/' << c.failAt);
    ArrayPtr psa = StringVector({u"old"});
    SAFEARRAY* raw = psa.get();
    FaultPlan plan(c.call, c.failAt);
    EXPECT_EQ(StoreToSafeArray(source, &raw), c.result);
    EXPECT_EQ(Contents(raw), c.after);
  }
}

// One pair, driven through type-erased calls on a library array prefilled with two elements.
struct Pair {
  const char* name;
  VARTYPE vt;                                 // an element type the pair accepts
  std::vector<VARTYPE> refused;               // element types it refuses
  std::function<HRESULT(SAFEARRAY**)> load;   // loads into the prefilled array
  std::function<HRESULT(SAFEARRAY**)> store;  // stores the prefilled array
  std::function<std::size_t()> librarySize;
};

template <class A>
Pair MakePair(const char* name, VARTYPE vt, std::vector<VARTYPE> refused, A& array) {
  return {name,
          vt,
          std::move(refused),
          [&array](SAFEARRAY** p) { return LoadFromSafeArray(array, p); },
          [&array](SAFEARRAY** p) { return StoreToSafeArray(array, p); },
          [&array] { return array.GetSize(); }};
}

// The four library arrays, two elements each, and their pairs.
struct Arrays {
  CStringArray strings = StringArray({"p", "q"});
  CValueArray doubles;
  CDWordArray dwords;
  CUIntArray uints;
  std::vector<Pair> pairs = {
      MakePair("strings", VT_BSTR, {VT_UI1, VT_I2, VT_I4, VT_R4, VT_R8, VT_I8}, strings),
      MakePair("doubles", VT_R8, {VT_UI1, VT_I2, VT_I4, VT_R4, VT_BSTR}, doubles),
      MakePair("dwords", VT_UI4, {VT_UI1, VT_I2, VT_R8, VT_I8, VT_BSTR}, dwords),
      MakePair("uints", VT_R4, {VT_UI1, VT_I2, VT_R8, VT_I8, VT_BSTR}, uints)};
  Arrays() {
    for (const int v : {1, 2}) {
      doubles.Append(v);
      dwords.Add(v);
      uints.Add(v);
    }
  }
};

TEST(AllBridges, RefuseArraysOfTheWrongShapeOrKindUntouched) {
  Arrays arrays;
  for (const Pair& pair : arrays.pairs) {
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
  const std::pair<USHORT, HRESULT> cases[] = {{FADF_FIXEDSIZE, E_POINTER}, {FADF_STATIC, E_POINTER},
                                               {FADF_STATIC | FADF_FIXEDSIZE, E_POINTER},
                                               {FADF_AUTO | FADF_EMBEDDED | FADF_HAVEIID, S_OK}};  // neighbours do not
  Arrays arrays;
  for (const Pair& pair : arrays.pairs) {
    for (const auto& [features, result] : cases) {
      ArrayPtr psa = Vector(pair.vt, 2);
      psa->fFeatures |= features;
      SAFEARRAY* raw = psa.get();
      EXPECT_EQ(pair.store(&raw), result) << pair.name << ' ' << features;
      if (result == E_POINTER) {  // nothing written: still the initial zeros (null strings)
        const auto* bytes = static_cast<const unsigned char*>(raw->pvData);
        EXPECT_EQ(raw->rgsabound[0].cElements, 2u);
        EXPECT_TRUE(std::all_of(bytes, bytes + 2 * raw->cbElements, [](auto b) { return b == 0; }));
      }
    }
  }
}

TEST(NumericBridges, RoundTripCopiesExactImages) {
  CValueArray doubles;
  const double nan = std::bit_cast<double>(std::uint64_t{0x7FF8DEADBEEF0001});
  for (double v : {kMissing, -0.0, 1.0 / 3.0, nan, std::numeric_limits<double>::denorm_min()}) {
    doubles.Append(v);
  }
  ArrayPtr psa = Vector(VT_R8, 1);
  SAFEARRAY* raw = psa.get();
  ASSERT_EQ(StoreToSafeArray(doubles, &raw), S_OK);
  ASSERT_EQ(Values<double>(raw).size(), 5u);
  EXPECT_EQ(std::memcmp(Values<double>(raw).data(), doubles.GetData(), 5 * sizeof(double)), 0);
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
  EXPECT_EQ(Values<std::int32_t>(raw), (std::vector<std::int32_t>{0, -1, std::numeric_limits<std::int32_t>::min(), 0x3FC00000}));
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
  loaded.Append(7.0);
  loaded.Append(8.0);
  ASSERT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(std::vector<double>(loaded.GetData(), loaded.GetData() + loaded.GetSize()),
            (std::vector<double>{0.5, 1.5, 2.5}));

  // A failed lock comes after the library array was sized: old values kept, new ones zero.
  ArrayPtr four = Vector(VT_R8, 4);
  raw = four.get();
  {
    FaultPlan plan(AutomationCall::kLock, 1);
    EXPECT_EQ(LoadFromSafeArray(loaded, &raw), E_FAIL);
  }
  EXPECT_EQ(std::vector<double>(loaded.GetData(), loaded.GetData() + loaded.GetSize()),
            (std::vector<double>{0.5, 1.5, 2.5, 0.0}));
  EXPECT_EQ(four->cLocks, 0u);

  // Storing nothing leaves zero elements at lower bound 0; loading them empties the array.
  ArrayPtr five = Vector(VT_R8, 5, -2);
  raw = five.get();
  EXPECT_EQ(StoreToSafeArray(CValueArray(), &raw), S_OK);
  EXPECT_EQ(five->rgsabound[0].cElements, 0u);
  EXPECT_EQ(five->rgsabound[0].lLbound, 0);
  EXPECT_EQ(LoadFromSafeArray(loaded, &raw), S_OK);
  EXPECT_EQ(loaded.GetSize(), 0u);
}

TEST(NumericBridges, FailedStoreKeepsWhatItHadDone) {
  CDWordArray source;
  for (std::uint32_t v : {5u, 6u, 7u}) source.Add(v);
  const struct {
    AutomationCall call;
    HRESULT result;
    std::vector<std::uint32_t> after;
    ULONG locks;
  } cases[] = {
      {AutomationCall::kRedim, E_FAIL, {9, 9}, 0},    // untouched
      {AutomationCall::kLock, E_FAIL, {9, 9, 0}, 0},  // resized, nothing copied
      {AutomationCall::kUnlock, S_OK, {5, 6, 7}, 1},  // the unlock is not checked
  };
  for (const auto& c : cases) {
    ArrayPtr psa = Vector(VT_UI4, 2, 3);
    const std::uint32_t nines[2] = {9, 9};
    std::memcpy(psa->pvData, nines, sizeof nines);
    SAFEARRAY* raw = psa.get();
    FaultPlan plan(c.call, 1);
    EXPECT_EQ(StoreToSafeArray(source, &raw), c.result) << static_cast<int>(c.call);
    EXPECT_EQ(Values<std::uint32_t>(raw), c.after) << static_cast<int>(c.call);
    EXPECT_EQ(psa->cLocks, c.locks);
  }
}

}  // namespace
}  // namespace velquor
