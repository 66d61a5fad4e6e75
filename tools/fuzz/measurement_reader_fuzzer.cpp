// libFuzzer target for the measurement-file readers (CGATS and CSV), the grid mapping and the
// writers. Besides crashes and sanitizer reports it traps on broken promises:
//  - a file that reads has samples, and every sample one value per wavelength;
//  - a failure carries a message naming the input;
//  - every text read (column names, fields, keywords) is valid UTF-8;
//  - what reads writes out (CGATS and CSV) and reads back with the same samples and values.
// The first input byte picks how the lines are delivered: from memory, or from a source in
// blocks of 1 to 64 bytes, so that lines cross block boundaries.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velquor/io/cgats_reader.h"
#include "velquor/io/cgats_writer.h"
#include "velquor/io/csv_spectra.h"
#include "velquor/io/spectral_grid_mapping.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/utf8.h"

namespace {

using namespace velquor;

void Check(bool condition) {
  if (!condition) __builtin_trap();
}

bool SameValues(const MeasurementFile& a, const MeasurementFile& b) {
  if (a.samples.size() != b.samples.size() || a.wavelengths != b.wavelengths) return false;
  for (std::size_t s = 0; s < a.samples.size(); ++s) {
    const std::vector<double>& x = a.samples[s].values;
    const std::vector<double>& y = b.samples[s].values;
    if (x.size() != y.size()) return false;
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (IsMissing(x[i]) != IsMissing(y[i])) return false;
      if (!IsMissing(x[i]) && x[i] != y[i]) return false;
    }
  }
  return true;
}

void CheckRead(const MeasurementStatus& status, const MeasurementFile& file) {
  if (!status.ok) {
    Check(status.error.file == "fuzz" && !status.error.text.empty());
    return;
  }
  Check(!file.samples.empty());
  Check(file.scale != ReflectanceScale::kAuto);
  for (const MeasurementSample& sample : file.samples) {
    Check(sample.values.size() == file.wavelengths.size());
    Check(sample.fields.size() == file.fieldCount);
    for (const std::string& field : sample.fields) Check(IsValidUtf8(field));
  }
  for (const MeasurementColumn& column : file.columns) Check(IsValidUtf8(column.name));
  for (const CgatsKeyword& keyword : file.keywords) Check(IsValidUtf8(keyword.name) && IsValidUtf8(keyword.value));
  std::vector<MappedSample> mapped;
  SpectralGridMapping mapping;
  if (MapMeasurementFile(file, mapped, &mapping).ok) {
    Check(mapped.size() == file.samples.size());
    (void)mapping.Describe();
  }

  std::string text;
  Check(FormatCgats(file, {}, text));
  MeasurementFile cgats;
  Check(ParseCgats(text, "rewritten", {}, cgats).ok);
  Check(SameValues(file, cgats));

  Check(FormatCsvSpectra(file, {}, text));
  MeasurementFile csv;
  Check(ParseCsvSpectra(text, "rewritten", {}, csv).ok);
  Check(SameValues(file, csv));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t block = (data[0] & 63u) + 1;
  const bool chunked = (data[0] & 64u) != 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  ReadOptions options;
  options.scale = (data[0] & 128u) != 0 ? ReflectanceScale::kPercent : ReflectanceScale::kAuto;

  for (const bool csv : {false, true}) {
    std::size_t offset = 0;
    LineReader memory(text);
    LineReader blocks([&](char* buffer, std::size_t capacity) -> long long {
      std::size_t n = capacity < block ? capacity : block;
      if (n > text.size() - offset) n = text.size() - offset;
      for (std::size_t i = 0; i < n; ++i) buffer[i] = text[offset + i];
      offset += n;
      return static_cast<long long>(n);
    });
    LineReader& reader = chunked ? blocks : memory;
    MeasurementFile file;
    const MeasurementStatus status =
        csv ? ReadCsvSpectra(reader, "fuzz", options, file) : ReadCgats(reader, "fuzz", options, file);
    CheckRead(status, file);
  }
  return 0;
}
