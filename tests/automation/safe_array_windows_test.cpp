// The bridges on arrays made by oleaut32 itself, as automation clients make them.
#include "velquor/automation/safe_array_bridge.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velquor {
namespace {

std::vector<std::string> Texts(const CStringArray& array) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < array.GetSize(); ++i) texts.push_back(array[i]);
  return texts;
}

// ::SafeArrayCreateVector keeps the descriptor and the data in one block; a store must still
// be able to grow and shrink it, and every lock it takes must be released.
TEST(AutomationWindows, StringVectorOfOleautRoundTrips) {
  SAFEARRAY* psa = ::SafeArrayCreateVector(VT_BSTR, 0, 2);
  ASSERT_NE(psa, nullptr);
  EXPECT_EQ(ole::SafeArrayGetElemsize(psa), sizeof(BSTR));
  LONG first = 0;  // oleaut32 takes the indices through a non-const pointer
  BSTR green = ::SysAllocString(L"Gr\u00FCn");
  ASSERT_EQ(::SafeArrayPutElement(psa, &first, green), S_OK);
  ::SysFreeString(green);
  CStringArray texts;
  ASSERT_EQ(LoadFromSafeArray(texts, &psa), S_OK);
  EXPECT_EQ(Texts(texts), (std::vector<std::string>{"Gr\xC3\xBCn", ""}));
  texts.Add("Blau");
  for (const std::size_t size : {3u, 1u}) {
    texts.SetSize(size);
    ASSERT_EQ(StoreToSafeArray(texts, &psa), S_OK) << size;
    EXPECT_EQ(psa->rgsabound[0].cElements, size);
    CStringArray back;
    ASSERT_EQ(LoadFromSafeArray(back, &psa), S_OK) << size;
    EXPECT_EQ(Texts(back), Texts(texts));
  }
  BSTR read = nullptr;
  ASSERT_EQ(::SafeArrayGetElement(psa, &first, &read), S_OK);
  EXPECT_EQ(std::wstring(read, ::SysStringLen(read)), L"Gr\u00FCn");
  ::SysFreeString(read);
  EXPECT_EQ(psa->cLocks, 0u);
  EXPECT_EQ(::SafeArrayDestroy(psa), S_OK);
}

// A fixed-size array of a client's own (as a Visual Basic fixed-size array is passed) can be
// read but never stored into, even at its own size.
TEST(AutomationWindows, FixedSizeArrayIsReadButNotResized) {
  double data[2] = {1.5, -2.0};
  SAFEARRAY fixed{};
  fixed.cDims = 1;
  fixed.fFeatures = FADF_STATIC | FADF_FIXEDSIZE;
  fixed.cbElements = sizeof(double);
  fixed.pvData = data;
  fixed.rgsabound[0] = {2, 0};
  SAFEARRAY* psa = &fixed;
  CValueArray values;
  ASSERT_EQ(LoadFromSafeArray(values, &psa), S_OK);
  EXPECT_TRUE(values.GetSize() == 2 && values[0] == 1.5 && values[1] == -2.0);
  values[0] = 7.0;
  EXPECT_EQ(StoreToSafeArray(values, &psa), E_POINTER);
  EXPECT_EQ(data[0], 1.5);
  EXPECT_EQ(fixed.cLocks, 0u);
}

}  // namespace
}  // namespace velquor
