#include "velquor/automation/safe_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "velquor/data/dword_array.h"
#include "velquor/data/string_array.h"
#include "velquor/frame/archive.h"

namespace velquor {
namespace {

TEST(AutomationModel, ResultCodesHaveTheirStandardValues) {
  EXPECT_EQ(static_cast<std::uint32_t>(S_OK), 0u);
  EXPECT_EQ(static_cast<std::uint32_t>(E_INVALIDARG), 0x80070057u);
  EXPECT_EQ(static_cast<std::uint32_t>(E_POINTER), 0x80004003u);
  EXPECT_EQ(static_cast<std::uint32_t>(E_FAIL), 0x80004005u);
  EXPECT_EQ(static_cast<std::uint32_t>(E_OUTOFMEMORY), 0x8007000Eu);
  EXPECT_EQ(static_cast<std::uint32_t>(DISP_E_BADINDEX), 0x8002000Bu);
  EXPECT_EQ(FADF_STATIC | FADF_FIXEDSIZE, 0x0012);
  EXPECT_TRUE(Failed(E_FAIL));
  EXPECT_TRUE(Succeeded(S_OK));
}

TEST(AutomationModel, BstrCarriesItsByteLengthBeforeTheText) {
  const char16_t text[] = u"ab\0c";
  BSTR bstr = SysAllocStringLen(text, 4);
  ASSERT_NE(bstr, nullptr);
  std::uint32_t prefix = 0;
  std::memcpy(&prefix, reinterpret_cast<const unsigned char*>(bstr) - 4, 4);
  EXPECT_EQ(prefix, 8u);
  EXPECT_EQ(SysStringLen(bstr), 4u);  // the embedded NUL counts
  EXPECT_EQ(SysStringByteLen(bstr), 8u);
  EXPECT_EQ(bstr[4], u'\0');
  SysFreeString(bstr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  SysFreeString(nullptr);
  BSTR zeros = SysAllocStringLen(nullptr, 2);
  EXPECT_EQ(zeros[0], u'\0');
  SysFreeString(zeros);
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
}

TEST(AutomationModel, ElementIndicesAreCheckedOnBothSidesOfEachBound) {
  SAFEARRAY* psa = SafeArrayCreateVector(VT_I4, -2, 3);  // indices -2, -1, 0
  ASSERT_NE(psa, nullptr);
  LONG lower = 0;
  LONG upper = 0;
  EXPECT_EQ(SafeArrayGetLBound(psa, 1, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(psa, 1, &upper), S_OK);
  EXPECT_EQ(lower, -2);
  EXPECT_EQ(upper, 0);
  EXPECT_EQ(SafeArrayGetLBound(psa, 2, &lower), DISP_E_BADINDEX);
  std::int32_t value = 42;
  for (LONG index : {-3, 1}) {
    EXPECT_EQ(SafeArrayPutElement(psa, &index, &value), DISP_E_BADINDEX) << index;
    EXPECT_EQ(SafeArrayGetElement(psa, &index, &value), DISP_E_BADINDEX) << index;
  }
  for (LONG index : {-2, 0}) {
    value = index * 10;
    EXPECT_EQ(SafeArrayPutElement(psa, &index, &value), S_OK) << index;
  }
  std::int32_t read = 1;
  const LONG first = -2;
  EXPECT_EQ(SafeArrayGetElement(psa, &first, &read), S_OK);
  EXPECT_EQ(read, -20);
  EXPECT_EQ(static_cast<std::int32_t*>(psa->pvData)[2], 0);
  EXPECT_EQ(SafeArrayDestroy(psa), S_OK);
}

TEST(AutomationModel, TwoDimensionsKeepTheFirstIndexSlowest) {
  const SAFEARRAYBOUND bounds[2] = {{2, 1}, {3, 0}};
  SAFEARRAY* psa = SafeArrayCreate(VT_I2, 2, bounds);
  ASSERT_NE(psa, nullptr);
  EXPECT_EQ(SafeArrayGetDim(psa), 2u);
  EXPECT_EQ(SafeArrayGetElemsize(psa), 2u);
  const LONG indices[2] = {2, 1};  // second row, second column: element 1 * 3 + 1
  const std::int16_t value = 7;
  ASSERT_EQ(SafeArrayPutElement(psa, indices, &value), S_OK);
  EXPECT_EQ(static_cast<std::int16_t*>(psa->pvData)[4], 7);
  // Growing the first bound appends rows and keeps the elements in place.
  const SAFEARRAYBOUND three{3, 1};
  ASSERT_EQ(SafeArrayRedim(psa, &three), S_OK);
  EXPECT_EQ(static_cast<std::int16_t*>(psa->pvData)[4], 7);
  EXPECT_EQ(psa->storage.size(), 18u);
  EXPECT_EQ(SafeArrayDestroy(psa), S_OK);
  // A size beyond the address space is refused, not wrapped.
  const SAFEARRAYBOUND huge[3] = {{0xFFFFFFFF, 0}, {0xFFFFFFFF, 0}, {0xFFFFFFFF, 0}};
  EXPECT_EQ(SafeArrayCreate(VT_R8, 3, huge), nullptr);
}

TEST(AutomationModel, LocksGuardRedimAndDestroy) {
  SAFEARRAY* psa = SafeArrayCreateVector(VT_BSTR, 0, 2);
  const LONG index = 1;
  BSTR text = SysAllocString(u"kept");
  ASSERT_EQ(SafeArrayPutElement(psa, &index, text), S_OK);
  SysFreeString(text);
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

TEST(RecordArrays, StringArchiveFormUsesTheFrameworksLengthPrefixes) {
  using namespace std::string_literals;
  struct Case {
    std::size_t length;
    std::string prefix;  // bytes before the text
  };
  const Case cases[] = {
      {0, "\x00"s},
      {254, "\xFE"s},
      {255, "\xFF\xFF\x00"s},
      {0xFFFD, "\xFF\xFD\xFF"s},
      {0xFFFE, "\xFF\xFF\xFF\xFE\xFF\x00\x00"s},
  };
  for (const Case& c : cases) {
    CStringArray array;
    array.Add(std::string(c.length, 'a'));
    std::stringstream stream;
    {
      CArchive out(static_cast<std::ostream&>(stream));
      array.Serialize(out);
    }
    const std::string bytes = stream.str();
    EXPECT_EQ(bytes.substr(2, c.prefix.size()), c.prefix) << c.length;
    EXPECT_EQ(bytes.size(), 2 + c.prefix.size() + c.length);
    CStringArray back;
    back.Add("stale");
    CArchive in(static_cast<std::istream&>(stream));
    back.Serialize(in);
    ASSERT_EQ(back.GetSize(), 1u);
    EXPECT_EQ(back[0], array[0]);
  }
  // A stream cut inside a text fails without a partial result.
  std::stringstream cut(
      std::string("\x01\x00\x05"
                  "abc",
                  6));
  CArchive in(static_cast<std::istream&>(cut));
  CStringArray back;
  back.Add("kept");
  EXPECT_THROW(back.Serialize(in), ArchiveError);
  EXPECT_EQ(back[0], "kept");
}

TEST(RecordArrays, WordArrayArchiveForm) {
  CDWordArray array;
  array.Add(0x01020304u);
  std::stringstream stream;
  {
    CArchive out(static_cast<std::ostream&>(stream));
    array.Serialize(out);
  }
  EXPECT_EQ(stream.str(), std::string("\x01\x00\x04\x03\x02\x01", 6));
  CUIntArray back;
  CArchive in(static_cast<std::istream&>(stream));
  back.Serialize(in);
  ASSERT_EQ(back.GetSize(), 1u);
  EXPECT_EQ(back[0], 0x01020304u);
}

}  // namespace
}  // namespace velquor
