// velquor_make_weight_tables <cie_dir> <out_dir>
//
// Builds the 34 tristimulus weighting tables from the CIE data in <cie_dir> and writes them to
// <out_dir> as ILL00_02 ... ILL16_10 (984 bytes each), together with README.md describing each
// table's source and white-point pinning. Exit status 0 on success, 1 on bad or missing data or
// a write failure, 2 on wrong usage.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "weight_table_builder.h"

namespace {

namespace wt = velquor::weight_tables;

void WriteFile(const std::filesystem::path& path, const char* data, std::size_t size) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(data, static_cast<std::streamsize>(size));
  out.close();
  if (!out) throw std::runtime_error(path.string() + ": cannot write file");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: velquor_make_weight_tables <cie_dir> <out_dir>\n";
    return 2;
  }
  try {
    const std::filesystem::path outDir = argv[2];
    const wt::CieData data = wt::LoadCieData(argv[1]);
    const std::vector<wt::WeightTable> tables = wt::BuildAllWeightTables(data);
    std::error_code ec;
    std::filesystem::create_directories(outDir, ec);
    if (ec) throw std::runtime_error(outDir.string() + ": " + ec.message());
    for (const wt::WeightTable& table : tables) {
      const auto bytes = wt::SerializeWeightTable(table);
      WriteFile(outDir / wt::ResourceName(table.illuminant, table.observerDegrees),
                reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    const std::string readme = wt::ProvenanceMarkdown(tables);
    WriteFile(outDir / "README.md", readme.data(), readme.size());
    std::cout << "wrote " << tables.size() << " tables and README.md to " << outDir.string()
              << "\n";
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "velquor_make_weight_tables: " << e.what() << "\n";
    return 1;
  }
}
