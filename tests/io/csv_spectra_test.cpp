#include "velquor/io/csv_spectra.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "measurement_test_support.h"
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

// The delimiter is the most frequent of ',', ';' and TAB in the header, ties going to ',' and
// then ';' (the wavelength column found shows which won); the name column is SAMPLE_NAME or
// Name, else the first column that is not an identifier.
TEST(CsvSpectra, ChoosesTheDelimiterAndTheNameColumn) {
  const struct {
    const char* text;
    std::vector<double> wavelengths;
    std::ptrdiff_t nameField, idField;
  } kCases[] = {
      {"400;410\t420\n1;2\t3", {400}, 0, -1},
      {"400,410\t420\n1,2\t3", {400}, 0, -1},
      {"batch,SAMPLE_NAME,400,410,420\nx,y,1,2,3", {400, 410, 420}, 1, -1},
      {"ID,batch,400,410,420\nx,y,1,2,3", {400, 410, 420}, -1, 0},
      {"batch,lot,400,410,420\nx,y,1,2,3", {400, 410, 420}, 0, -1},
      {"Name,sample_id,400,410,420\nx,y,1,2,3", {400, 410, 420}, 0, 1},
  };
  for (const auto& c : kCases) {
    MeasurementFile file;
    ASSERT_TRUE(ParseCsvSpectra(c.text, "n.csv", {}, file).ok) << c.text;
    EXPECT_EQ(file.wavelengths, c.wavelengths) << c.text;
    EXPECT_EQ(std::pair(file.nameField, file.idField), std::pair(c.nameField, c.idField)) << c.text;
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

// Bytes that are not UTF-8 (Latin-1 "\xE9", a lone continuation byte, a truncated sequence)
// become U+FFFD wherever they stand; one note names the file and the first such line.
TEST(MeasurementFiles, InvalidUtf8IsReplacedAndNotedOnce) {
  const struct {
    bool csv;
    std::string text;
    std::size_t firstLine;
    const char* name;  // the first sample's name as read
  } kCases[] = {
      {false,
       "CGATS.17\nORIGINATOR \"caf\xE9\"\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 X\x80\nEND_DATA_FORMAT\n"
       "BEGIN_DATA\n\"r\xC3\xA9" "d \xE2\x82\" 0.5 \xF0\x9F\nEND_DATA\n",
       2, "r\xC3\xA9" "d \xEF\xBF\xBD"},
      {true, "name,400\n\xFF\xFEred,0.5\nok,\n", 2, "\xEF\xBF\xBD\xEF\xBF\xBDred"},
      {true, "name,400\nred,0.5\n", 0, "red"},
  };
  for (const auto& c : kCases) {
    MeasurementFile file;
    ASSERT_TRUE(test::Parse(c.csv, c.text, "in.txt", file).ok);
    EXPECT_EQ(file.SampleLabel(0), c.name);
    EXPECT_EQ(file.invalidUtf8Line, c.firstLine);
    std::string all;
    for (const MeasurementColumn& column : file.columns) all += column.name;
    for (const CgatsKeyword& keyword : file.keywords) all += keyword.value;
    for (const std::string& field : file.samples[0].fields) all += field;
    EXPECT_TRUE(IsValidUtf8(all)) << all;
    std::vector<std::string> notes;
    for (const MeasurementNote& note : file.notes) {
      if (note.text.find("U+FFFD") != std::string::npos) notes.push_back(std::to_string(note.line) + ": " + note.text);
    }
    EXPECT_EQ(notes, c.firstLine == 0 ? std::vector<std::string>{}
                                      : std::vector<std::string>{"2: text that is not valid UTF-8 was replaced by U+FFFD "
                                                                 "in in.txt, first on line 2"});
  }
}

}  // namespace
}  // namespace velquor
