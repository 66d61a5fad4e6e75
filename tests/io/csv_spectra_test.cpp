#include "velquor/io/csv_spectra.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "velquor/io/cgats_reader.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/utf8.h"

namespace velquor {
namespace {

std::string ColorCheckerPath() {
  return std::string(VELQUOR_TEST_DATA_DIR) + "/samples/colorchecker_ohta_380_780_5nm.csv";
}

// The ColorChecker file reads as printed ("dark skin": 0.0480 at 380 nm, 0.4210 at 780 nm), and
// CSV -> CGATS -> CSV keeps every value exactly and the sample names.
TEST(CsvSpectra, ColorCheckerReadsAndSurvivesConversionToCgatsAndBack) {
  MeasurementFile csv;
  const MeasurementStatus read = ReadCsvSpectraFile(ColorCheckerPath(), {}, csv);
  ASSERT_TRUE(read.ok) << read.error.Message();
  EXPECT_EQ(csv.format, MeasurementFormat::kCsv);
  ASSERT_EQ(csv.samples.size(), 24u);
  ASSERT_EQ(csv.wavelengths.size(), 81u);
  EXPECT_EQ(csv.wavelengths.back(), 780.0);
  EXPECT_EQ(csv.SampleLabel(23), "black 2 (1.5 D)");
  EXPECT_EQ(csv.samples[0].line, 2u);
  EXPECT_EQ(csv.samples[0].values.front(), 0.0480);
  EXPECT_EQ(csv.samples[0].values.back(), 0.4210);
  EXPECT_EQ(csv.scale, ReflectanceScale::kFraction);
  EXPECT_TRUE(csv.scaleDetected && csv.notes.empty());
  std::string cgatsText;
  ASSERT_TRUE(FormatCgats(csv, {}, cgatsText));
  EXPECT_NE(cgatsText.find("SAMPLE_NAME\tSPECTRAL_NM380\tSPECTRAL_NM385"), std::string::npos);
  MeasurementFile cgats;
  const MeasurementStatus status = ParseCgats(cgatsText, "converted.cgats", {}, cgats);
  ASSERT_TRUE(status.ok) << status.error.Message();
  std::string csvText;
  ASSERT_TRUE(FormatCsvSpectra(cgats, {}, csvText));
  EXPECT_EQ(csvText.substr(0, 24), "SAMPLE_NAME,380,385,390,");
  MeasurementFile back;
  ASSERT_TRUE(ParseCsvSpectra(csvText, "back.csv", {}, back).ok);
  for (const MeasurementFile* file : {&cgats, &back}) {
    ASSERT_EQ(file->samples.size(), csv.samples.size());
    EXPECT_EQ(file->wavelengths, csv.wavelengths);
    for (std::size_t s = 0; s < csv.samples.size(); ++s) {
      EXPECT_EQ(file->SampleLabel(s), csv.SampleLabel(s));
      EXPECT_EQ(file->samples[s].values, csv.samples[s].values) << csv.SampleLabel(s);
    }
  }
}

TEST(CsvSpectra, KeepsOtherColumnsQuotingAndMissingValuesThroughAWrite) {
  const std::string text =
      "id;name;400 nm;410nm;nm420;comment\n"
      "1;\"Red; deep\";10,5;20;30;\"said \"\"ok\"\"\"\n"
      "\n"
      "2; Blue ;;21,25;N/A;\n";
  MeasurementFile file;
  const MeasurementStatus status = ParseCsvSpectra(text, "semi.csv", {}, file);
  ASSERT_TRUE(status.ok) << status.error.Message();
  EXPECT_EQ(file.wavelengths, (std::vector<double>{400, 410, 420}));
  EXPECT_EQ(file.SampleLabel(0), "Red; deep");
  EXPECT_EQ(file.SampleLabel(1), "Blue");
  EXPECT_EQ(file.samples[0].values, (std::vector<double>{10.5, 20, 30}));
  EXPECT_EQ(file.samples[0].fields, (std::vector<std::string>{"1", "Red; deep", "said \"ok\""}));
  EXPECT_EQ(file.MissingWavelengths(1), (std::vector<double>{400, 420}));
  ASSERT_EQ(file.notes.size(), 1u);
  EXPECT_EQ(file.notes[0].line, 4u);
  EXPECT_EQ(file.notes[0].text, "sample Blue has no value at 400, 420 nm");
  EXPECT_EQ(file.scale, ReflectanceScale::kPercent);

  std::string written;
  ASSERT_TRUE(FormatCsvSpectra(file, {}, written));
  EXPECT_EQ(written,
            "id,name,400,410,420,comment\n"
            "1,\"Red; deep\",10.5,20,30,\"said \"\"ok\"\"\"\n"
            "2,Blue,,21.25,,\n");
  MeasurementFile back;
  ASSERT_TRUE(ParseCsvSpectra(written, "out.csv", {}, back).ok);
  EXPECT_EQ(back.samples[0].fields, file.samples[0].fields);
  EXPECT_EQ(back.MissingWavelengths(1), file.MissingWavelengths(1));
}

// The delimiter is the most frequent of ',', ';' and TAB in the header; ties go to ',' first,
// then ';'. Which one won shows in the wavelength column that was found.
TEST(CsvSpectra, DelimiterTiesGoToCommaThenSemicolon) {
  const struct {
    const char* text;
    double nm;
  } kCases[] = {{"400;410\t420\n1;2\t3\n", 400}, {"400,410\t420\n1,2\t3\n", 400}};
  for (const auto& c : kCases) {
    MeasurementFile file;
    ASSERT_TRUE(ParseCsvSpectra(c.text, "d.csv", {}, file).ok) << c.text;
    EXPECT_EQ(file.wavelengths, std::vector<double>(1, c.nm)) << c.text;
  }
}

// A column added after reading gets one text per sample, empty where none is given.
TEST(CsvSpectra, AddedColumnFillsEverySample) {
  MeasurementFile file;
  ASSERT_TRUE(ParseCsvSpectra("n,400\na,1\nb,2\n", "a.csv", {}, file).ok);
  AddMeasurementColumn(file, "L", {"50"});
  EXPECT_EQ(file.samples[0].fields, (std::vector<std::string>{"a", "50"}));
  EXPECT_EQ(file.samples[1].fields, (std::vector<std::string>{"b", ""}));
  EXPECT_EQ(file.columns.back().name, "L");
}

TEST(CsvSpectra, ChoosesTheNameColumn) {
  const struct {
    const char* header;
    std::ptrdiff_t nameField;
    std::ptrdiff_t idField;
  } kCases[] = {
      {"batch,SAMPLE_NAME,400,410,420", 1, -1},
      {"ID,batch,400,410,420", -1, 0},
      {"batch,lot,400,410,420", 0, -1},
      {"Name,sample_id,400,410,420", 0, 1},
  };
  for (const auto& c : kCases) {
    MeasurementFile file;
    const std::string text = std::string(c.header) + "\nx,y,1,2,3\n";
    ASSERT_TRUE(ParseCsvSpectra(text, "n.csv", {}, file).ok) << c.header;
    EXPECT_EQ(file.nameField, c.nameField) << c.header;
    EXPECT_EQ(file.idField, c.idField) << c.header;
  }
}

TEST(CsvSpectra, UnreadableFileIsAnError) {
  MeasurementFile file;
  const std::string path = std::string(VELQUOR_TEST_DATA_DIR) + "/samples/no_such_file.csv";
  const MeasurementStatus status = ReadCsvSpectraFile(path, {}, file);
  EXPECT_FALSE(status.ok);
  EXPECT_EQ(status.error.Message(), path + ": cannot open the file (No such file or directory)");
}

// Bytes that are not UTF-8 (Latin-1 "\xE9", a lone continuation byte, a truncated sequence)
// become U+FFFD wherever they stand; one note names the file and the first such line.
TEST(MeasurementFiles, InvalidUtf8IsReplacedAndNotedOnce) {
  const struct {
    bool cgats;
    std::string text;
    std::size_t firstLine;
    const char* name;  // the first sample's name as read
  } kCases[] = {
      {true,
       "CGATS.17\nORIGINATOR \"caf\xE9\"\nBEGIN_DATA_FORMAT\nSAMPLE_NAME nm400 X\x80\nEND_DATA_FORMAT\n"
       "BEGIN_DATA\n\"r\xC3\xA9" "d \xE2\x82\" 0.5 \xF0\x9F\nEND_DATA\n",
       2, "r\xC3\xA9" "d \xEF\xBF\xBD"},
      {false, "name,400\n\xFF\xFEred,0.5\nok,\n", 2, "\xEF\xBF\xBD\xEF\xBF\xBDred"},
      {false, "name,400\nred,0.5\n", 0, "red"},
  };
  for (const auto& c : kCases) {
    MeasurementFile file;
    const MeasurementStatus status = c.cgats ? ParseCgats(c.text, "in.txt", {}, file) : ParseCsvSpectra(c.text, "in.txt", {}, file);
    ASSERT_TRUE(status.ok) << status.error.Message();
    EXPECT_EQ(file.SampleLabel(0), c.name);
    EXPECT_EQ(file.invalidUtf8Line, c.firstLine);
    for (const MeasurementColumn& column : file.columns) EXPECT_TRUE(IsValidUtf8(column.name)) << column.name;
    for (const CgatsKeyword& keyword : file.keywords) EXPECT_TRUE(IsValidUtf8(keyword.value)) << keyword.value;
    for (const std::string& field : file.samples[0].fields) EXPECT_TRUE(IsValidUtf8(field)) << field;
    const auto utf8Notes = std::count_if(file.notes.begin(), file.notes.end(), [](const MeasurementNote& note) {
      return note.text.find("U+FFFD") != std::string::npos;
    });
    EXPECT_EQ(utf8Notes, c.firstLine == 0 ? 0 : 1);
    if (c.firstLine != 0) {
      EXPECT_EQ(file.notes[0].line, c.firstLine);
      EXPECT_EQ(file.notes[0].text, "text that is not valid UTF-8 was replaced by U+FFFD in in.txt, first on line " +
                                        std::to_string(c.firstLine));
    }
  }
}

TEST(MeasurementNumbers, ParseOnlyWholeFiniteNumbers) {
  const struct {
    const char* text;
    bool decimalComma;
    bool ok;
    double value;
  } kCases[] = {
      {"0.25", false, true, 0.25},  {"+1.5e2", false, true, 150}, {"-0.01", false, true, -0.01},
      {".5", false, true, 0.5},     {"0,25", true, true, 0.25},   {"0,25", false, false, 0},
      {"1.5.2", false, false, 0},   {"++1", false, false, 0},     {"inf", false, false, 0},
      {"nan", false, false, 0},     {"1e400", false, false, 0},   {"0x10", false, false, 0},
      {"1 ", false, false, 0},      {"", false, false, 0},        {"-", false, false, 0},
      // 63 characters fit the parser's buffer, 64 do not.
      {"0.0000000000000000000000000000000000000000000000000000000000000", false, true, 0},
      {"0.00000000000000000000000000000000000000000000000000000000000000", false, false, 0},
  };
  for (const auto& c : kCases) {
    double value = -99.0;
    EXPECT_EQ(ParseMeasurementNumber(c.text, c.decimalComma, value), c.ok) << c.text;
    if (c.ok) {
      EXPECT_EQ(value, c.value) << c.text;
    }
  }
}

}  // namespace
}  // namespace velquor
