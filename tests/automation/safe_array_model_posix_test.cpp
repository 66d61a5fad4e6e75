#include "velquor/automation/safe_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// Behaviour of the portable automation model that oleaut32 does not share: the element order
// and redimension of multi-dimensional arrays, zero-filled new strings, the model's storage.
namespace velquor::ole {
namespace {

TEST(AutomationModel, NewStringsWithoutSourceAreZeros) {
  BSTR zeros = SysAllocStringLen(nullptr, 2);
  EXPECT_EQ(std::u16string(zeros, 3), std::u16string(3, u'\0'));
  SysFreeString(zeros);
}

TEST(AutomationModel, ElementIndicesAreCheckedOnBothSidesOfEachBound) {
  const SAFEARRAYBOUND bounds[2] = {{2, -2}, {3, 1}};  // rows -2, -1; columns 1, 2, 3
  SAFEARRAY* psa = SafeArrayCreate(VT_I4, 2, bounds);
  LONG lower = 0, upper = 0;
  EXPECT_EQ(SafeArrayGetLBound(psa, 2, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(psa, 2, &upper), S_OK);
  EXPECT_EQ(std::pair(lower, upper), std::pair(1, 3));
  EXPECT_EQ(SafeArrayGetUBound(psa, 3, &upper), DISP_E_BADINDEX);
  const std::tuple<LONG, LONG, HRESULT> puts[] = {{-3, 1, DISP_E_BADINDEX}, {0, 1, DISP_E_BADINDEX}, {-2, 0, DISP_E_BADINDEX},
                                                  {-2, 4, DISP_E_BADINDEX}, {-2, 1, S_OK}, {-1, 3, S_OK}, {-1, 2, S_OK}};
  std::int32_t value = 0, read = 0;
  for (const auto& [row, column, result] : puts) {
    const LONG at[2] = {row, column};
    ++value;
    EXPECT_EQ(SafeArrayPutElement(psa, at, &value), result) << row << ',' << column;
    EXPECT_EQ(SafeArrayGetElement(psa, at, &read), result) << row << ',' << column;
    EXPECT_EQ(read, result == S_OK ? value : read);
  }
  // The first index varies slowest: (-1, 2) is element 1 * 3 + 1.
  const auto* data = static_cast<std::int32_t*>(psa->pvData);
  EXPECT_EQ(std::vector<std::int32_t>(data, data + 6), (std::vector<std::int32_t>{5, 0, 0, 0, 7, 6}));
  // Growing the first bound appends rows and keeps the elements in place.
  const SAFEARRAYBOUND three{3, -2};
  ASSERT_EQ(SafeArrayRedim(psa, &three), S_OK);
  EXPECT_EQ(static_cast<std::int32_t*>(psa->pvData)[4], 7);
  EXPECT_EQ(psa->storage.size(), 36u);
  EXPECT_EQ(SafeArrayDestroy(psa), S_OK);
  const SAFEARRAYBOUND huge[3] = {{0xFFFFFFFF, 0}, {0xFFFFFFFF, 0}, {0xFFFFFFFF, 0}};
  EXPECT_EQ(SafeArrayCreate(VT_R8, 3, huge), nullptr);  // refused, not wrapped
}

TEST(AutomationModel, LocksGuardRedimAndDestroy) {
  SAFEARRAY* psa = SafeArrayCreateVector(VT_BSTR, 0, 2);
  static_cast<BSTR*>(psa->pvData)[1] = SysAllocString(u"kept");
  EXPECT_EQ(SafeArrayUnlock(psa), E_UNEXPECTED);
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(psa, &data), S_OK);
  EXPECT_EQ(data, psa->pvData);
  const SAFEARRAYBOUND one{1, 0};
  EXPECT_EQ(SafeArrayRedim(psa, &one), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(SafeArrayDestroy(psa), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(SafeArrayUnaccessData(psa), S_OK);
  psa->fFeatures |= FADF_FIXEDSIZE;
  EXPECT_EQ(SafeArrayRedim(psa, &one), E_INVALIDARG);
  psa->fFeatures &= static_cast<USHORT>(~FADF_FIXEDSIZE);
  EXPECT_EQ(SafeArrayRedim(psa, &one), S_OK);  // frees the dropped string
  EXPECT_EQ(SafeArrayDestroy(psa), S_OK);
}

}  // namespace
}  // namespace velquor::ole
