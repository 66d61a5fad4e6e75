#include "velquor/io/cgats_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "measurement_test_support.h"
#include "reference_table.h"
#include "velquor/frame/numeric.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"

namespace velquor {
namespace {

// Lines: 1 identifier, 2 keyword, 3 NUMBER_OF_FIELDS, 4-6 format, 7 NUMBER_OF_SETS,
// 8 BEGIN_DATA, then the rows.
std::string Cgats(const std::string& rows, const std::string& sets = "2", const std::string& fields = "5",
                  const std::string& names = "SAMPLE_ID SAMPLE_NAME nm400 nm410 nm420") {
  return "CGATS.17\nORIGINATOR \"velquor test\"\nNUMBER_OF_FIELDS " + fields + "\nBEGIN_DATA_FORMAT\n" + names +
         "\nEND_DATA_FORMAT\nNUMBER_OF_SETS " + sets + "\nBEGIN_DATA\n" + rows;
}

std::string DataFile(const std::string& name) {
  return std::string(VELQUOR_TEST_DATA_DIR) + "/io/" + name;
}

TEST(CgatsReader, ReadsHeaderFormatAndSamples) {
  MeasurementFile file;
  const MeasurementStatus status = ReadCgatsFile(DataFile("header_forms.cgats"), {}, file);
  ASSERT_TRUE(status.ok) << status.error.Message();
  ASSERT_EQ(file.keywords.size(), 3u);
  EXPECT_EQ(file.identifier + " " + file.keywords[0].name + "=" + file.keywords[0].value, "CGATS.17 ORIGINATOR=\"velquor test\"");
  EXPECT_EQ(file.wavelengths, (std::vector<double>{400, 410, 420}));
  EXPECT_EQ(file.formatLine, 7u);
  ASSERT_EQ(file.samples.size(), 2u);
  EXPECT_EQ(file.samples[0].line + file.samples[1].line, 12u + 14u);
  EXPECT_EQ(file.SampleLabel(0), "patch # one");
  EXPECT_EQ(file.samples[0].values, (std::vector<double>{10.5, 20, 30}));
  EXPECT_EQ(file.samples[1].values, (std::vector<double>{11, 21, 31.25}));
  EXPECT_EQ(file.samples[1].fields, (std::vector<std::string>{"A2", "two", "56"}));
  EXPECT_TRUE(file.scale == ReflectanceScale::kPercent && file.notes.empty());
  // Only the first significant line can be the identifier: a later lone word is a keyword.
  std::string lone = Cgats("S1 a 1 2 3\nS2 b 4 5 6\nEND_DATA\n");
  lone.insert(std::string("CGATS.17\n").size(), "LONE\n");
  MeasurementFile loneFile;
  ASSERT_TRUE(ParseCgats(lone, "lone", {}, loneFile).ok);
  EXPECT_EQ(loneFile.identifier + " " + loneFile.keywords.at(0).name, "CGATS.17 LONE");
}

TEST(MeasurementFiles, BadInputIsRefusedWithFileAndLine) {
  for (const auto& row : test::LoadReferenceTable("reference/io_refusals.csv")) {
    MeasurementFile file;
    const MeasurementStatus status = test::Parse(row.Text("format") == "csv", test::Unescape(row.Text("text")), "bad", file);
    EXPECT_FALSE(status.ok) << row.Where();
    EXPECT_EQ(status.error.Message(), row.Text("message")) << row.Where();
  }
}

// A line of exactly the limit is read from memory and from a source delivering 1000 bytes at a
// time; a 2 GB line from a source is refused after about 1 MiB.
TEST(LineReader, LineLengthLimitHoldsFromBothSides) {
  const std::string text = "a\r\n" + std::string(kMaxLineLength, 'y') + "\r\nlast";
  std::size_t offset = 0;
  LineReader memory(text);
  LineReader chunked([&](char* buffer, std::size_t capacity) -> long long {
    const std::size_t n = std::min({capacity, std::size_t{1000}, text.size() - offset});
    std::copy_n(text.data() + offset, n, buffer);
    offset += n;
    return static_cast<long long>(n);
  });
  for (LineReader* reader : {&memory, &chunked}) {
    std::vector<std::string> lines;
    for (std::string_view line; reader->Next(line) == LineReader::Status::kLine;) lines.emplace_back(line);
    EXPECT_EQ(lines, (std::vector<std::string>{"a", std::string(kMaxLineLength, 'y'), "last"}));
    EXPECT_EQ(reader->LineNumber(), 3u);
  }
  LineReader endless([&offset](char* buffer, std::size_t capacity) -> long long {
    const std::size_t n = std::min<std::size_t>(capacity, 2ull * 1024 * 1024 * 1024 - offset);
    std::fill(buffer, buffer + n, 'a');
    offset += n;
    return static_cast<long long>(n);
  });
  offset = 0;
  MeasurementFile file;
  EXPECT_EQ(ReadCgats(endless, "huge.cgats", {}, file).error.Message(), "huge.cgats:1: the line is longer than 1048576 bytes");
  EXPECT_LT(offset, 2u * kMaxLineLength);
}

// kMaxColumns (4096) columns read; one more is refused, in either format.
TEST(MeasurementFiles, ColumnLimitHoldsFromBothSides) {
  for (const std::size_t columns : {kMaxColumns, kMaxColumns + 1}) {
    std::string names = "SAMPLE_ID", csvHeader = "SAMPLE_ID", row = "x";
    for (std::size_t i = 1; i < columns; ++i) {
      names.append(" nm").append(std::to_string(i));
      csvHeader.append(",").append(std::to_string(i));
      row.append(" 0.5");
    }
    MeasurementFile file;
    const MeasurementStatus cgats = ParseCgats(Cgats(row + "\nEND_DATA\n", "1", std::to_string(columns), names), "wide.cgats", {}, file);
    std::replace(row.begin(), row.end(), ' ', ',');
    const MeasurementStatus csv = ParseCsvSpectra(csvHeader + "\n" + row + "\n", "wide.csv", {}, file);
    const bool fits = columns == kMaxColumns;
    EXPECT_EQ(cgats.ok ? "" : cgats.error.Message(), fits ? "" : "wide.cgats:5: more than 4096 columns");
    EXPECT_EQ(csv.ok ? "" : csv.error.Message(), fits ? "" : "wide.csv:1: more than 4096 columns");
    EXPECT_EQ(file.wavelengths.size(), fits ? kMaxColumns - 1 : 0u);
  }
}

TEST(MeasurementFiles, SpectralColumnNamesAndNumbers) {
  for (const auto& row : test::LoadReferenceTable("reference/io_spectral_column_names.csv")) {
    double nm = 0.0;
    EXPECT_EQ(ParseSpectralColumnName(row.Text("name"), row.Integer("plain") != 0, nm), row.Number("nm") != 0.0) << row.Where();
    EXPECT_EQ(row.Number("nm") != 0.0 ? nm : 0.0, row.Number("nm")) << row.Where();
  }
  for (const auto& row : test::LoadReferenceTable("reference/io_measurement_numbers.csv")) {
    double value = -99.0;
    EXPECT_EQ(ParseMeasurementNumber(row.Text("text"), row.Integer("decimal_comma") != 0, value), row.Integer("ok") != 0) << row.Where();
    EXPECT_EQ(row.Integer("ok") != 0 ? value : 0.0, row.Number("value")) << row.Where();
  }
}

TEST(CgatsReader, DetectsFractionOrPercentAndCanBeTold) {
  const std::map<std::string, ReflectanceScale> scales = {
      {"auto", ReflectanceScale::kAuto}, {"fraction", ReflectanceScale::kFraction}, {"percent", ReflectanceScale::kPercent}};
  for (const auto& row : test::LoadReferenceTable("reference/io_scale_detection.csv")) {
    SCOPED_TRACE(row.Where());
    const std::string rows = test::Unescape(row.Text("rows"));
    MeasurementFile file;
    ReadOptions options;
    options.scale = scales.at(row.Text("requested"));
    ASSERT_TRUE(ParseCgats(Cgats(rows + "END_DATA\n", std::to_string(std::count(rows.begin(), rows.end(), '\n'))), "s", options, file).ok);
    EXPECT_EQ(file.scale, scales.at(row.Text("expected")));
    EXPECT_EQ(file.DescribeScale(), row.Text("description"));
    EXPECT_EQ(file.PercentFactor(), row.Text("expected") == "percent" ? 1.0 : 100.0);
    std::string notes;
    for (const MeasurementNote& note : file.notes) notes += note.text.find("looks like") != std::string::npos ? note.text : "";
    EXPECT_EQ(notes, row.Text("note"));
  }
}

TEST(CgatsReader, MissingValuesAndTrailingContentAreNoted) {
  MeasurementFile file;
  const std::string rows = "1 red 0.1 \"\" 0.3\n2 blue 0.4 0.5 0.6\n3 green NA 0.5 N/A\nEND_DATA\n\nCGATS.17\nBEGIN_DATA_FORMAT\n";
  ASSERT_TRUE(ParseCgats(Cgats(rows, "3"), "m.cgats", {}, file).ok);
  ASSERT_EQ(file.samples.size(), 3u);
  EXPECT_TRUE(IsMissing(file.samples[0].values[1]));
  EXPECT_EQ(file.samples[1].values, (std::vector<double>{0.4, 0.5, 0.6}));
  EXPECT_EQ(file.MissingWavelengths(2), (std::vector<double>{400, 420}));
  EXPECT_EQ(file.largestValue, 0.6);
  std::vector<std::string> notes;
  for (const MeasurementNote& note : file.notes) notes.push_back(std::to_string(note.line) + ": " + note.text);
  std::sort(notes.begin(), notes.end());
  EXPECT_EQ(notes, (std::vector<std::string>{"11: sample green has no value at 400, 420 nm",
                                             "14: content after END_DATA is ignored; only the first table is read",
                                             "9: sample red has no value at 410 nm"}));
}

// Writing keeps the header and the other columns; reading the output gives the same file.
TEST(CgatsWriter, RoundTripKeepsKeywordsColumnsAndMissingValues) {
  MeasurementFile first, second;
  ASSERT_TRUE(ReadCgatsFile(DataFile("other_columns.ti3"), {}, first).ok);
  first.samples.at(0).fields.at(0) = "1,5";  // a number only with a decimal comma: text
  std::string written;
  ASSERT_TRUE(FormatCgats(first, {}, written));
  EXPECT_NE(written.find("\t50.5\t"), std::string::npos) << written;  // numbers unquoted
  EXPECT_NE(written.find("\"1,5\""), std::string::npos) << written;
  const MeasurementStatus status = ParseCgats(written, "out.ti3", {}, second);
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
