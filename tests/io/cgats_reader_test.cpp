#include "velquor/io/cgats_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

// Lines: 1 identifier, 2 keyword, 3 NUMBER_OF_FIELDS, 4-6 format, 7 NUMBER_OF_SETS,
// 8 BEGIN_DATA, 9-10 rows, 11 END_DATA.
std::string Cgats(const std::string& rows, const std::string& names = "SAMPLE_ID SAMPLE_NAME nm400 nm410 nm420",
                  const std::string& fields = "5", const std::string& sets = "2") {
  return "CGATS.17\nORIGINATOR \"velquor test\"\nNUMBER_OF_FIELDS " + fields + "\nBEGIN_DATA_FORMAT\n" + names +
         "\nEND_DATA_FORMAT\nNUMBER_OF_SETS " + sets + "\nBEGIN_DATA\n" + rows;
}

const std::string kNames = "SAMPLE_ID SAMPLE_NAME nm400 nm410 nm420";
const std::string kRows = "1 \"red one\" 0.1 0.2 0.3\n2 blue 0.4 0.5 0.6\nEND_DATA\n";

TEST(CgatsReader, ReadsHeaderFormatAndSamples) {
  const std::string text =
      "CGATS.17\n"
      "# exported by hand\n"
      "ORIGINATOR \"velquor test\"  # trailing comment\n"
      "KEYWORD \"MEASUREMENT_GEOMETRY\"\n"
      "MEASUREMENT_GEOMETRY \"d/8\"\n"
      "NUMBER_OF_FIELDS 6\n"
      "BEGIN_DATA_FORMAT SAMPLE_ID\n"
      "SAMPLE_NAME\n"
      "SPECTRAL_NM_400 SPECTRAL_NM410 380 nm420 END_DATA_FORMAT\n"
      "NUMBER_OF_SETS 2\n"
      "BEGIN_DATA\n"
      "A1\t\"patch # one\"\t10.5\t20\t55.2\t30\n"
      "\n"
      "A2 'two' 11 21 56 31.25\n"
      "END_DATA\n";
  MeasurementFile file;
  const MeasurementStatus status = ParseCgats(text, "in.cgats", {}, file);
  ASSERT_TRUE(status.ok) << status.error.Message();
  EXPECT_EQ(file.identifier, "CGATS.17");
  ASSERT_EQ(file.keywords.size(), 3u);
  EXPECT_EQ(file.keywords[0].name, "ORIGINATOR");
  EXPECT_EQ(file.keywords[0].value, "\"velquor test\"");
  EXPECT_EQ(file.wavelengths, (std::vector<double>{400, 410, 420}));
  EXPECT_EQ(file.formatLine, 7u);
  ASSERT_EQ(file.samples.size(), 2u);
  EXPECT_EQ(file.samples[0].line, 12u);
  EXPECT_EQ(file.samples[1].line, 14u);
  EXPECT_EQ(file.SampleLabel(0), "patch # one");
  EXPECT_EQ(file.samples[0].values, (std::vector<double>{10.5, 20, 30}));
  EXPECT_EQ(file.samples[1].values, (std::vector<double>{11, 21, 31.25}));
  EXPECT_EQ(file.samples[1].fields, (std::vector<std::string>{"A2", "two", "56"}));
  EXPECT_EQ(file.scale, ReflectanceScale::kPercent);
  EXPECT_TRUE(file.notes.empty());
}

// Each refusal names the file and the line (none when the file as a whole is at fault).
TEST(MeasurementFiles, BadInputIsRefusedWithFileAndLine) {
  const std::string& names = kNames;
  const struct {
    bool csv;
    std::string text;
    std::string message;
  } kCases[] = {
      {false, "", "bad: the file is empty"},
      {false, "\n\n  \n", "bad: not a CGATS file: no BEGIN_DATA_FORMAT before the end of the file"},
      {false, std::string("CGATS.17\nPK\x03\x04\x00\x00", 15), "bad:2: binary data (byte 0x03): not a text file"},
      {false, Cgats("1 a 0.1 0.2 0.3\n2 b 0.4 0.5 0.6\n"), "bad:8: BEGIN_DATA of line 8 has no END_DATA"},
      {false, "CGATS.17\nBEGIN_DATA_FORMAT\nnm400 nm410\nBEGIN_DATA\n",
       "bad:2: BEGIN_DATA_FORMAT of line 2 has no END_DATA_FORMAT"},
      {false, Cgats("1 a 0.1 0.2 0.3\n2 b 0.4 0.5\nEND_DATA\n"), "bad:10: the row has 4 fields; the data format has 5"},
      {false, Cgats("1 a 0.1 0.2 0.3 0.4\n"), "bad:9: the row has 6 fields; the data format has 5"},
      {false, Cgats("1 a 0.1 0.2 0.3\n2 b 0.4 O.5 0.6\nEND_DATA\n"), "bad:10: field nm410: \"O.5\" is not a number"},
      {false, Cgats(kRows, "SAMPLE_ID SAMPLE_NAME nm400 SPECTRAL_NM_400 nm420"),
       "bad:5: duplicate wavelength 400 nm (columns nm400 and SPECTRAL_NM_400)"},
      {false, Cgats(kRows, "SAMPLE_ID SAMPLE_ID nm400 nm410 nm420"), "bad:5: duplicate column SAMPLE_ID"},
      {false, Cgats(kRows, names, "4"), "bad:6: NUMBER_OF_FIELDS is 4 but the data format names 5 fields"},
      {false, Cgats(kRows, names, "5", "3"), "bad:11: NUMBER_OF_SETS is 3 but the data block has 2 rows"},
      {false, Cgats(kRows, names, "5", "two"), "bad:7: NUMBER_OF_SETS needs a whole number, not \"two\""},
      {false, Cgats(kRows, names, "-5"), "bad:3: NUMBER_OF_FIELDS needs a whole number, not \"-5\""},
      {false, "CGATS.17\nBEGIN_DATA\n1 2\nEND_DATA\n", "bad:2: BEGIN_DATA comes before BEGIN_DATA_FORMAT"},
      {false, "CGATS.17\nEND_DATA\n", "bad:2: END_DATA without BEGIN_DATA"},
      {false, "CGATS.17\nBEGIN_DATA_FORMAT\nnm400 nm410 nm420\nEND_DATA_FORMAT\nBEGIN_DATA_FORMAT\n",
       "bad:5: BEGIN_DATA_FORMAT appears twice"},
      {false, Cgats("1 \"red one 0.1 0.2 0.3\n"), "bad:9: quoted text is not closed"},
      {false, Cgats(kRows, "SAMPLE_ID SAMPLE_NAME LAB_L LAB_A LAB_B"),
       "bad:4: no spectral columns (names such as SPECTRAL_NM380, nm380, SPEC_380 or R_380)"},
      {false, Cgats("END_DATA\n", names, "5", "0"), "bad:8: no samples"},
      {false, "CGATS.17\n" + std::string(kMaxLineLength + 1, 'x') + "\n", "bad:2: the line is longer than 1048576 bytes"},
      {true, "", "bad: the file is empty"},
      {true, "# only a comment\n\n", "bad: no wavelength columns in the header (names such as 380, 380nm or nm380)"},
      {true, "sample,L,a,b\nx,1,2,3\n", "bad:1: no wavelength columns in the header (names such as 380, 380nm or nm380)"},
      {true, "sample,400,410,420\n", "bad:1: no samples"},
      {true, "sample,400,410,420\na,1,2,3\nb,1,2\n", "bad:3: the row has 3 fields; the header has 4"},
      {true, "sample,400,410,420\na,1,2,3,\n", "bad:2: the row has 5 fields; the header has 4"},
      {true, "sample,400,410,420\na,1,2,3e\n", "bad:2: field 420: \"3e\" is not a number"},
      {true, "sample,400,nm400,420\na,1,2,3\n", "bad:1: duplicate wavelength 400 nm (columns 400 and nm400)"},
      {true, "sample,400,410,420\n\"a,1,2,3\n", "bad:2: quoted text is not closed"},
      {true, "sample,400,410\n\x7f\x45LF,1,2\n", "bad:2: binary data (byte 0x7F): not a text file"},
      // A quoted value is cut after 40 bytes, never inside a character (here the 2-byte e-acute).
      {true, "s,400\na," + std::string(39, 'x') + "\xC3\xA9z\n",
       "bad:2: field 400: \"" + std::string(39, 'x') + "...\" is not a number"},
  };
  for (const auto& c : kCases) {
    MeasurementFile file;
    const MeasurementStatus status = c.csv ? ParseCsvSpectra(c.text, "bad", {}, file) : ParseCgats(c.text, "bad", {}, file);
    EXPECT_FALSE(status.ok) << c.text;
    EXPECT_EQ(status.error.Message(), c.message);
  }
}

// A 2 GB line: the reader stops after about 1 MiB, whatever the source would still deliver.
TEST(CgatsReader, EndlessLineIsRefusedAfterBoundedReading) {
  unsigned long long delivered = 0;
  LineReader reader([&delivered](char* buffer, std::size_t capacity) -> long long {
    const std::size_t n = std::min<std::size_t>(capacity, 2ull * 1024 * 1024 * 1024 - delivered);
    std::fill(buffer, buffer + n, 'a');
    delivered += n;
    return static_cast<long long>(n);
  });
  MeasurementFile file;
  const MeasurementStatus status = ReadCgats(reader, "huge.cgats", {}, file);
  EXPECT_FALSE(status.ok);
  EXPECT_EQ(status.error.Message(), "huge.cgats:1: the line is longer than 1048576 bytes");
  EXPECT_LT(delivered, 2u * kMaxLineLength);
}

TEST(LineReader, AcceptsALineOfExactlyTheLimitFromMemoryAndFromASource) {
  const std::string text = "a\r\n" + std::string(kMaxLineLength, 'y') + "\r\nlast";
  for (const bool fromSource : {false, true}) {
    std::size_t offset = 0;
    LineReader memory(text);
    LineReader chunked([&](char* buffer, std::size_t capacity) -> long long {
      const std::size_t n = std::min<std::size_t>(std::min<std::size_t>(capacity, 1000), text.size() - offset);
      std::copy_n(text.data() + offset, n, buffer);
      offset += n;
      return static_cast<long long>(n);
    });
    LineReader& reader = fromSource ? chunked : memory;
    std::string_view line;
    ASSERT_EQ(reader.Next(line), LineReader::Status::kLine);
    EXPECT_EQ(line, "a");
    ASSERT_EQ(reader.Next(line), LineReader::Status::kLine);
    EXPECT_EQ(line.size(), kMaxLineLength);
    ASSERT_EQ(reader.Next(line), LineReader::Status::kLine);
    EXPECT_EQ(line, "last");
    EXPECT_EQ(reader.LineNumber(), 3u);
    EXPECT_EQ(reader.Next(line), LineReader::Status::kEnd);
  }
}

// kMaxColumns (4096) columns read; one more is refused, in either format.
TEST(MeasurementFiles, ColumnLimitHoldsFromBothSides) {
  for (const std::size_t columns : {kMaxColumns, kMaxColumns + 1}) {
    std::string names = "SAMPLE_ID";
    std::string csvHeader = "SAMPLE_ID";
    std::string row = "x";
    for (std::size_t i = 1; i < columns; ++i) {
      const std::string nm = std::to_string(i);
      names.append(" nm").append(nm);
      csvHeader.append(",").append(nm);
      row.append(" 0.5");
    }
    MeasurementFile file;
    const MeasurementStatus cgats = ParseCgats(Cgats(row + "\nEND_DATA\n", names, std::to_string(columns), "1"),
                                               "wide.cgats", {}, file);
    std::string csvRow = row;
    std::replace(csvRow.begin(), csvRow.end(), ' ', ',');
    const MeasurementStatus csv = ParseCsvSpectra(csvHeader + "\n" + csvRow + "\n", "wide.csv", {}, file);
    if (columns == kMaxColumns) {
      EXPECT_TRUE(cgats.ok) << cgats.error.Message();
      EXPECT_TRUE(csv.ok) << csv.error.Message();
      EXPECT_EQ(file.wavelengths.size(), kMaxColumns - 1);
    } else {
      EXPECT_EQ(cgats.error.Message(), "wide.cgats:5: more than 4096 columns");
      EXPECT_EQ(csv.error.Message(), "wide.csv:1: more than 4096 columns");
    }
  }
}

// Every common naming of spectral columns, with and without the plain CSV forms.
TEST(SpectralColumnNames, RecogniseEveryCommonNaming) {
  const struct {
    const char* name;
    bool plain;
    double nm;  // 0 = not a spectral column
  } kCases[] = {
      {"nm380", false, 380},          {"NM_380", false, 380},       {"SPECTRAL_NM_380", false, 380},
      {"SPECTRAL_NM380", false, 380}, {"SPEC_380", false, 380},     {"R_380", false, 380},
      {"SPECTRAL_380", false, 380},   {"spectral_nm_382.5", false, 382.5}, {"Nm_780", false, 780},
      {"380", false, 0},              {"380", true, 380},           {"380nm", true, 380},
      {"380 nm", true, 380},          {"SPECTRAL_NM_", false, 0},   {"NM", false, 0},
      {"R380", false, 0},             {"LAB_L", false, 0},          {"nm-5", false, 0},
      {"nm0", false, 0},              {"nm380.", false, 0},         {"nm100000", false, 0},
      {"SPECTRAL_PCT", false, 0},     {"380x", true, 0},            {"nm 380", false, 0},
  };
  for (const auto& c : kCases) {
    double nm = 0.0;
    EXPECT_EQ(ParseSpectralColumnName(c.name, c.plain, nm), c.nm != 0.0) << c.name;
    if (c.nm != 0.0) {
      EXPECT_EQ(nm, c.nm) << c.name;
    }
  }
}

// The scale is judged by the 90th percentile of the values (nearest rank: the largest of 5
// values, the 11th of 12), above 2 percent, else fractions, so one slip such as "25" for
// "0.21" among 12 values is outvoted and two are not; the caller can say which. A sample
// whose largest value looks like the other scale, among samples that agree, gets a note.
TEST(CgatsReader, DetectsFractionOrPercentAndCanBeTold) {
  constexpr auto kAuto = ReflectanceScale::kAuto, kFraction = ReflectanceScale::kFraction,
                 kPercent = ReflectanceScale::kPercent;
  const struct {
    const char* rows;
    ReflectanceScale requested, expected;
    const char* description;
    const char* note;  // "" = none
  } kCases[] = {
      {"1 a 0.1 2 0.3\n2 b \"\" 0.2 -0.01\n", kAuto, kFraction,
       "spectral values read as fractions (largest value 2, detected)", ""},
      {"1 a 0.1 2.0001 0.3\n2 b \"\" 0.2 -0.01\n", kAuto, kPercent,
       "spectral values read as percent (largest value 2.0001, detected)",
       "sample b looks like fractions (largest value 0.2) but the file is read as percent; 1 of 2 samples disagree"},
      {"1 a 0.1 0.955 0.3\n2 b \"\" 0.2 -0.01\n", kPercent, kPercent,
       "spectral values read as percent (as requested; largest value 0.955)", ""},
      {"1 a 0.1 95.5 0.3\n2 b \"\" 20 30\n", kFraction, kFraction,
       "spectral values read as fractions (as requested; largest value 95.5)", ""},
      {"1 a 0.2 25 0.3\n2 b 0.4 0.5 0.6\n3 c 0.1 0.1 0.1\n4 d 0.9 0.8 0.7\n", kAuto, kFraction,
       "spectral values read as fractions (largest value 25, detected)",
       "sample a looks like percent (largest value 25) but the file is read as fractions; 1 of 4 samples disagree"},
      {"1 a 0.2 25 0.3\n2 b 0.4 0.5 60\n3 c 0.1 0.1 0.1\n4 d 0.9 0.8 0.7\n", kAuto, kPercent,
       "spectral values read as percent (largest value 60, detected)",
       "sample c looks like fractions (largest value 0.1) but the file is read as percent; 2 of 4 samples disagree"},
      {"1 a 20 25 30\n2 b 40 50 60\n3 c 1 1 1\n4 d 90 80 70\n", kFraction, kFraction,
       "spectral values read as fractions (as requested; largest value 90)",
       "sample a looks like percent (largest value 30) but the file is read as fractions; 3 of 4 samples disagree"},
  };
  for (const auto& c : kCases) {
    MeasurementFile file;
    ReadOptions options;
    options.scale = c.requested;
    const std::string sets = std::to_string(std::count(c.rows, c.rows + std::strlen(c.rows), '\n'));
    ASSERT_TRUE(ParseCgats(Cgats(std::string(c.rows) + "END_DATA\n", kNames, "5", sets), "s", options, file).ok);
    EXPECT_EQ(file.scale, c.expected) << c.rows;
    EXPECT_EQ(file.DescribeScale(), c.description);
    EXPECT_EQ(file.PercentFactor(), c.expected == kPercent ? 1.0 : 100.0);
    std::vector<std::string> notes;
    for (const MeasurementNote& note : file.notes) {
      if (note.text.find("looks like") != std::string::npos) notes.push_back(note.text);
    }
    EXPECT_EQ(notes, (*c.note == '\0' ? std::vector<std::string>{} : std::vector<std::string>{c.note})) << c.rows;
  }
}

// A sample with a missing value is read and reported; the other samples are untouched.
TEST(CgatsReader, MissingValueIsReportedAndTheOtherSamplesRead) {
  MeasurementFile file;
  const std::string rows = "1 red 0.1 \"\" 0.3\n2 blue 0.4 0.5 0.6\n3 green NA 0.5 N/A\nEND_DATA\n";
  ASSERT_TRUE(ParseCgats(Cgats(rows, "SAMPLE_ID SAMPLE_NAME nm400 nm410 nm420", "5", "3"), "m.cgats", {}, file).ok);
  ASSERT_EQ(file.samples.size(), 3u);
  EXPECT_TRUE(IsMissing(file.samples[0].values[1]));
  EXPECT_EQ(file.samples[1].values, (std::vector<double>{0.4, 0.5, 0.6}));
  EXPECT_EQ(file.MissingWavelengths(2), (std::vector<double>{400, 420}));
  ASSERT_EQ(file.notes.size(), 2u);
  EXPECT_EQ(file.notes[0].line, 9u);
  EXPECT_EQ(file.notes[0].text, "sample red has no value at 410 nm");
  EXPECT_EQ(file.notes[1].line, 11u);
  EXPECT_EQ(file.notes[1].text, "sample green has no value at 400, 420 nm");
  EXPECT_EQ(file.largestValue, 0.6);
}

TEST(CgatsReader, ContentAfterTheFirstTableIsIgnoredWithANote) {
  MeasurementFile file;
  ASSERT_TRUE(ParseCgats(Cgats(kRows + "\nCGATS.17\nBEGIN_DATA_FORMAT\n"), "two.cgats", {}, file).ok);
  EXPECT_EQ(file.samples.size(), 2u);
  ASSERT_EQ(file.notes.size(), 1u);
  EXPECT_EQ(file.notes[0].line, 13u);
}

// Writing keeps the header and the other columns; reading the output gives the same file.
TEST(CgatsWriter, RoundTripKeepsKeywordsColumnsAndMissingValues) {
  const std::string text =
      "CTI3\nKEYWORD \"DEVICE_CLASS\"\nDEVICE_CLASS \"OUTPUT\"\nBEGIN_DATA_FORMAT\n"
      "SAMPLE_ID SAMPLE_NAME nm400 nm410 nm420 LAB_L DATE\nEND_DATA_FORMAT\nBEGIN_DATA\n"
      "1 \"with space\" 0.1 0.25 0.3 50.5 \"2024-01-02\"\n"
      "2 \"it's\" 0.4 \"\" 0.6 60 ''\n"
      "END_DATA\n";
  MeasurementFile first;
  MeasurementStatus status = ParseCgats(text, "in.ti3", {}, first);
  ASSERT_TRUE(status.ok) << status.error.Message();
  std::string written;
  ASSERT_TRUE(FormatCgats(first, {}, written));
  EXPECT_NE(written.find("\t50.5\t"), std::string::npos) << written;  // numbers unquoted
  MeasurementFile second;
  status = ParseCgats(written, "out.ti3", {}, second);
  ASSERT_TRUE(status.ok) << status.error.Message() << "\n" << written;
  const auto summary = [](const MeasurementFile& f) {
    std::vector<std::string> items = {f.identifier};
    for (const CgatsKeyword& keyword : f.keywords) items.push_back(keyword.name + "=" + keyword.value);
    for (const MeasurementColumn& column : f.columns) items.push_back(column.name);
    for (const MeasurementSample& sample : f.samples) {
      items.insert(items.end(), sample.fields.begin(), sample.fields.end());
      for (const double v : sample.values) items.push_back(IsMissing(v) ? "missing" : FormatMeasurementNumber(v));
    }
    return items;
  };
  EXPECT_EQ(summary(second), summary(first));
  EXPECT_TRUE(IsMissing(second.samples[1].values[1]));
}

}  // namespace
}  // namespace velquor
