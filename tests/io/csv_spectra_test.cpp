#include "velquor/io/csv_spectra.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "measurement_test_support.h"
#include "reference_table.h"
#include "velquor/frame/utf8.h"
#include "velquor/io/cgats_reader.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/io/spectral_grid_mapping.h"

namespace velquor {
namespace {

// The ColorChecker file (380-780 nm at 5 nm) reads as printed ("dark skin": 0.0480 at 380 nm,
// 0.4210 at 780 nm); CSV -> CGATS -> CSV keeps every value exactly and the sample names; on
// the grid every point from 380 nm on is a measured value times 100, exactly, and 360 and 370
// nm repeat the 380 nm value.
TEST(CsvSpectra, ColorCheckerReadsConvertsAndMaps) {
  MeasurementFile csv, cgats, back;
  const MeasurementStatus read =
      ReadCsvSpectraFile(std::string(VELQUOR_TEST_DATA_DIR) + "/samples/colorchecker_ohta_380_780_5nm.csv", {}, csv);
  ASSERT_TRUE(read.ok) << read.error.Message();
  EXPECT_EQ(csv.format, MeasurementFormat::kCsv);
  ASSERT_EQ(csv.samples.size(), 24u);
  ASSERT_EQ(csv.wavelengths.size(), 81u);
  EXPECT_EQ(csv.SampleLabel(23), "black 2 (1.5 D)");
  EXPECT_EQ(csv.samples[0].line, 2u);
  EXPECT_EQ(csv.samples[0].values.front() + csv.samples[0].values.back(), 0.0480 + 0.4210);
  EXPECT_TRUE(csv.scale == ReflectanceScale::kFraction && csv.scaleDetected && csv.notes.empty());
  std::string cgatsText, csvText;
  ASSERT_TRUE(FormatCgats(csv, {}, cgatsText));
  EXPECT_NE(cgatsText.find("SAMPLE_NAME\tSPECTRAL_NM380\tSPECTRAL_NM385"), std::string::npos);
  ASSERT_TRUE(ParseCgats(cgatsText, "converted.cgats", {}, cgats).ok);
  ASSERT_TRUE(FormatCsvSpectra(cgats, {}, csvText));
  EXPECT_EQ(csvText.substr(0, 24), "SAMPLE_NAME,380,385,390,");
  ASSERT_TRUE(ParseCsvSpectra(csvText, "back.csv", {}, back).ok);
  for (const MeasurementFile* file : {&cgats, &back}) {
    ASSERT_EQ(file->samples.size(), csv.samples.size());
    EXPECT_EQ(file->wavelengths, csv.wavelengths);
    for (std::size_t s = 0; s < csv.samples.size(); ++s) {
      EXPECT_EQ(file->SampleLabel(s), csv.SampleLabel(s));
      EXPECT_EQ(file->samples[s].values, csv.samples[s].values) << csv.SampleLabel(s);
    }
  }
  std::vector<MappedSample> mapped;
  SpectralGridMapping mapping;
  ASSERT_TRUE(MapMeasurementFile(csv, mapped, &mapping).ok);
  ASSERT_EQ(mapped.size(), 24u);
  EXPECT_EQ(mapping.Method(), GridMappingMethod::kSampled);
  EXPECT_EQ(mapping.ExtrapolatedWavelengths(), (std::vector<int>{360, 370}));
  EXPECT_EQ(mapping.Describe(), "sampled at the grid wavelengths; extrapolated by repeating the nearest measured value: 360, 370 nm");
  for (std::size_t s = 0; s < mapped.size(); ++s) {
    EXPECT_FALSE(mapped[s].hasMissing);
    for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
      EXPECT_EQ(mapped[s].curve[i], csv.samples[s].values[i < 2 ? 0 : (i - 2) * 2] * 100.0) << s << " at " << i;
    }
  }
}

TEST(CsvSpectra, KeepsOtherColumnsQuotingAndMissingValuesThroughAWrite) {
  const std::string text =
      "id;name;400 nm;410nm;nm420;comment\n"
      "1;\"Red; deep\";10,5;20;30;\"said \"\"ok\"\"\"\n"
      "\n"
      "2; Blue ;;21,25;N/A;\n";
  MeasurementFile file, back;
  ASSERT_TRUE(ParseCsvSpectra(text, "semi.csv", {}, file).ok);
  EXPECT_EQ(file.wavelengths, (std::vector<double>{400, 410, 420}));
  EXPECT_EQ(file.SampleLabel(1), "Blue");
  EXPECT_EQ(file.samples[0].values, (std::vector<double>{10.5, 20, 30}));
  EXPECT_EQ(file.samples[0].fields, (std::vector<std::string>{"1", "Red; deep", "said \"ok\""}));
  ASSERT_EQ(file.notes.size(), 1u);
  EXPECT_EQ(std::to_string(file.notes[0].line) + ": " + file.notes[0].text, "4: sample Blue has no value at 400, 420 nm");
  EXPECT_EQ(file.scale, ReflectanceScale::kPercent);
  std::string written;
  ASSERT_TRUE(FormatCsvSpectra(file, {}, written));
  EXPECT_EQ(written, "id,name,400,410,420,comment\n1,\"Red; deep\",10.5,20,30,\"said \"\"ok\"\"\"\n2,Blue,,21.25,,\n");
  ASSERT_TRUE(ParseCsvSpectra(written, "out.csv", {}, back).ok);
  EXPECT_EQ(back.samples[0].fields, file.samples[0].fields);
  EXPECT_EQ(back.MissingWavelengths(1), (std::vector<double>{400, 420}));
}

TEST(CsvSpectra, ChoosesTheDelimiterAndTheNameColumn) {
  for (const auto& row : test::LoadReferenceTable("reference/io_csv_columns.csv")) {
    MeasurementFile file;
    ASSERT_TRUE(ParseCsvSpectra(test::Unescape(row.Text("text")), "n.csv", {}, file).ok) << row.Where();
    std::string wavelengths;
    for (const double nm : file.wavelengths) wavelengths.append(wavelengths.empty() ? "" : "|").append(FormatMeasurementNumber(nm));
    EXPECT_EQ(wavelengths, row.Text("wavelengths")) << row.Where();
    EXPECT_EQ(file.nameField, row.Integer("name_field")) << row.Where();
    EXPECT_EQ(file.idField, row.Integer("id_field")) << row.Where();
  }
}

TEST(CsvSpectra, AddedColumnFillsEverySampleAndAMissingFileIsAnError) {
  MeasurementFile file;
  ASSERT_TRUE(ParseCsvSpectra("n,400\na,1\nb,2\n", "a.csv", {}, file).ok);
  AddMeasurementColumn(file, "L", {"50"});
  EXPECT_EQ(file.samples[0].fields, (std::vector<std::string>{"a", "50"}));
  EXPECT_EQ(file.samples[1].fields, (std::vector<std::string>{"b", ""}));
  EXPECT_EQ(file.columns.back().name, "L");
  const std::string path = std::string(VELQUOR_TEST_DATA_DIR) + "/samples/no_such_file.csv";
  EXPECT_EQ(ReadCsvSpectraFile(path, {}, file).error.Message(), path + ": cannot open the file (No such file or directory)");
}

TEST(MeasurementFiles, InvalidUtf8IsReplacedAndNotedOnce) {
  for (const auto& row : test::LoadReferenceTable("reference/io_invalid_utf8.csv")) {
    SCOPED_TRACE(row.Where());
    MeasurementFile file;
    ASSERT_TRUE(test::Parse(row.Text("format") == "csv", test::Unescape(row.Text("text")), "in.txt", file).ok);
    EXPECT_EQ(file.SampleLabel(0), test::Unescape(row.Text("name")));
    EXPECT_EQ(file.invalidUtf8Line, static_cast<std::size_t>(row.Integer("first_line")));
    std::string all;
    for (const MeasurementColumn& column : file.columns) all += column.name;
    for (const CgatsKeyword& keyword : file.keywords) all += keyword.value;
    for (const std::string& field : file.samples[0].fields) all += field;
    EXPECT_TRUE(IsValidUtf8(all)) << all;
    std::vector<std::string> notes;
    for (const MeasurementNote& note : file.notes) {
      if (note.text.find("U+FFFD") != std::string::npos) notes.push_back(std::to_string(note.line) + ": " + note.text);
    }
    EXPECT_EQ(notes, row.Integer("first_line") == 0 ? std::vector<std::string>{}
                     : std::vector<std::string>{"2: text that is not valid UTF-8 was replaced by U+FFFD in in.txt, first on line 2"});
  }
}

}  // namespace
}  // namespace velquor
