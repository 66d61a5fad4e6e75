#include "velquor/automation/safe_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "velquor/data/dword_array.h"
#include "velquor/data/string_array.h"
#include "velquor/frame/archive.h"

namespace velquor {
namespace {

TEST(AutomationModel, ResultCodesHaveTheirStandardValues) {
  for (const auto& [code, bits] : {std::pair(E_INVALIDARG, 0x80070057u), std::pair(E_POINTER, 0x80004003u),
                                   std::pair(E_FAIL, 0x80004005u), std::pair(DISP_E_BADINDEX, 0x8002000Bu)})
    EXPECT_TRUE(static_cast<std::uint32_t>(code) == bits && Failed(code) && Succeeded(S_OK));
}

TEST(AutomationModel, BstrCarriesItsByteLengthBeforeTheText) {
  BSTR bstr = SysAllocStringLen(u"ab\0c", 4);
  EXPECT_EQ(reinterpret_cast<const std::uint32_t*>(bstr)[-1], 8u);  // the byte length, before the text
  EXPECT_EQ(SysStringLen(bstr), 4u);  // the embedded NUL counts
  EXPECT_EQ(std::u16string(bstr, 5), std::u16string(u"ab\0c\0", 5));
  SysFreeString(bstr);
  BSTR zeros = SysAllocStringLen(nullptr, 2);
  EXPECT_EQ(std::u16string(zeros, 3), std::u16string(3, u'\0'));
  SysFreeString(zeros);
  EXPECT_EQ(SysStringByteLen(nullptr), 0u);
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
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

std::string Stored(CObject& object) {
  std::stringstream stream;
  object.Serialize(*std::make_unique<CArchive>(static_cast<std::ostream&>(stream)));  // flushed here
  return stream.str();
}

void Load(CObject& object, const std::string& bytes) {
  std::stringstream stream(bytes);
  object.Serialize(*std::make_unique<CArchive>(static_cast<std::istream&>(stream)));
}

// The framework's string length prefixes: one byte below 255, then 0xFF and a 16-bit length
// below 0xFFFF, then 0xFF 0xFFFF and a 32-bit length; after a 2-byte element count.
TEST(RecordArrays, ArchiveFormsOfStringAndWordArrays) {
  using namespace std::string_literals;
  const std::pair<std::size_t, std::string> cases[] = {{0, "\x00"s}, {254, "\xFE"s}, {255, "\xFF\xFF\x00"s},
                                                       {0xFFFD, "\xFF\xFD\xFF"s}, {0xFFFE, "\xFF\xFF\xFF\xFE\xFF\x00\x00"s}};
  for (const auto& [length, prefix] : cases) {
    CStringArray array, back;
    array.Add(std::string(length, 'a'));
    back.Add("stale");
    EXPECT_EQ(Stored(array), "\x01\x00"s + prefix + array[0]) << length;
    Load(back, Stored(array));
    EXPECT_TRUE(back.GetSize() == 1 && back[0] == array[0]) << length;
  }
  CStringArray kept;
  kept.Add("kept");
  EXPECT_THROW(Load(kept, "\x01\x00\x05" "abc"s), ArchiveError);  // cut inside the text: no partial result
  EXPECT_EQ(kept[0], "kept");
  CDWordArray words;
  CUIntArray back;
  words.Add(0x01020304u);
  EXPECT_EQ(Stored(words), "\x01\x00\x04\x03\x02\x01"s);
  Load(back, Stored(words));
  EXPECT_TRUE(back.GetSize() == 1 && back[0] == 0x01020304u);
}

}  // namespace
}  // namespace velquor
