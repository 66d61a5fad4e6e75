// Reference tables for the test suites: CSV files under tests/data/ (published data sets, peer
// library vectors, string tables, expected grids), each with its provenance in '#' lines at the
// top. One loader serves every suite:
//
//   for (const auto& row : velquor::test::LoadReferenceTable("reference/sharma_ciede2000.csv"))
//     EXPECT_NEAR(Compute(row.Number("L1"), ...), row.Number("dE00"), kFourDecimals);
//
// Format: lines starting with '#' and blank lines are skipped; the first other line names the
// columns; fields are separated by commas and may be double-quoted ("a, b" and "say ""x""").
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velquor::test {

class ReferenceRow {
 public:
  ReferenceRow(const std::vector<std::string>* columns, std::vector<std::string> fields,
               std::string where)
      : columns_(columns), fields_(std::move(fields)), where_(std::move(where)) {}

  // The field under `column` as text; an unknown column fails the test and gives "".
  const std::string& Text(std::string_view column) const {
    for (std::size_t i = 0; i < columns_->size(); ++i) {
      if ((*columns_)[i] == column) return fields_[i];
    }
    ADD_FAILURE() << where_ << ": no column '" << column << "'";
    static const std::string kNone;
    return kNone;
  }

  // The field under `column` as a number; text that is not a whole number fails the test.
  double Number(std::string_view column) const {
    const std::string& text = Text(column);
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size()) {
      ADD_FAILURE() << where_ << ": '" << text << "' under '" << column << "' is not a number";
    }
    return value;
  }

  int Integer(std::string_view column) const { return static_cast<int>(Number(column)); }

  // "file:line", for failure messages.
  const std::string& Where() const { return where_; }

 private:
  const std::vector<std::string>* columns_;
  std::vector<std::string> fields_;
  std::string where_;
};

class ReferenceTable {
 public:
  explicit ReferenceTable(const std::string& name) {
    const std::string path = std::string(VELQUOR_TEST_DATA_DIR) + "/" + name;
    std::ifstream in(path);
    if (!in) {
      ADD_FAILURE() << "cannot read the reference table " << path;
      return;
    }
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
      ++number;
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line.empty() || line[0] == '#') continue;
      std::vector<std::string> fields = Split(line);
      if (columns_.empty()) {
        columns_ = std::move(fields);
        continue;
      }
      const std::string where = name + ":" + std::to_string(number);
      if (fields.size() != columns_.size()) {
        ADD_FAILURE() << where << ": " << fields.size() << " fields, " << columns_.size()
                      << " columns";
        continue;
      }
      rows_.emplace_back(&columns_, std::move(fields), where);
    }
    if (rows_.empty()) ADD_FAILURE() << path << " has no rows";
  }

  ReferenceTable(const ReferenceTable&) = delete;
  ReferenceTable& operator=(const ReferenceTable&) = delete;

  auto begin() const { return rows_.begin(); }
  auto end() const { return rows_.end(); }
  std::size_t size() const { return rows_.size(); }
  const ReferenceRow& operator[](std::size_t i) const { return rows_[i]; }

 private:
  static std::vector<std::string> Split(const std::string& line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (quoted && line.compare(i, 2, "\"\"") == 0) {
        fields.back() += line[++i];  // a doubled quote inside quotes stands for one
      } else if (line[i] == '"') {
        quoted = !quoted;
      } else if (line[i] == ',' && !quoted) {
        fields.emplace_back();
      } else {
        fields.back() += line[i];
      }
    }
    return fields;
  }

  std::vector<std::string> columns_;
  std::vector<ReferenceRow> rows_;
};

// Reads tests/data/<name> at its first use.
inline const ReferenceTable& LoadReferenceTable(const std::string& name) {
  // Tables are small and read-only: keep each one for the life of the test program.
  static std::map<std::string, std::unique_ptr<ReferenceTable>> loaded;
  std::unique_ptr<ReferenceTable>& table = loaded[name];
  if (table == nullptr) table = std::make_unique<ReferenceTable>(name);
  return *table;
}

}  // namespace velquor::test
