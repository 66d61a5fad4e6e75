// Tables and the QC report as aligned text for the terminal, and as CSV.
#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "report.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"

namespace velquor::cli {

namespace {

// Columns a text takes on a terminal: its UTF-8 code points ("ΔE*ab" is five).
std::size_t DisplayWidth(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

void AppendPadded(std::string& out, std::string_view text, std::size_t width, bool right) {
  const std::size_t pad = width > DisplayWidth(text) ? width - DisplayWidth(text) : 0;
  if (right) out.append(pad, ' ');
  out.append(text);
  if (!right) out.append(pad, ' ');
}

// Appends `text` as one CSV field: quoted (quotes doubled) when it holds a comma, a quote or
// a line end.
void AppendCsvField(std::string& out, std::string_view text) {
  if (text.find_first_of(",\"\n\r") == std::string_view::npos) {
    out.append(text);
    return;
  }
  out.push_back('"');
  for (char c : text) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
}

// One CSV line. Missing values are empty fields, as the measurement files write them.
void AppendCsvRow(std::string& out, const std::vector<std::string>& fields) {
  for (std::size_t c = 0; c < fields.size(); ++c) {
    if (c > 0) out.push_back(',');
    AppendCsvField(out, fields[c]);
  }
  out.push_back('\n');
}

void AppendCsvRow(std::string& out, const std::vector<Cell>& cells) {
  for (std::size_t c = 0; c < cells.size(); ++c) {
    if (c > 0) out.push_back(',');
    if (!cells[c].missing) AppendCsvField(out, cells[c].text);
  }
  out.push_back('\n');
}

// Appends the parts in order. (Chains of "text" + std::string trip a false -Wrestrict
// warning in GCC 12 once inlined.)
void Append(std::string& out, std::initializer_list<std::string_view> parts) {
  for (std::string_view part : parts) out.append(part);
}

std::string Fixed(double value, int decimals) {
  return NumberCell(value, decimals).text;
}

}  // namespace

std::string RenderTableText(const Table& table) {
  std::vector<std::size_t> widths(table.headers.size(), 0);
  std::vector<bool> numeric(table.headers.size(), true);
  for (std::size_t c = 0; c < table.headers.size(); ++c) widths[c] = DisplayWidth(table.headers[c]);
  for (const auto& row : table.rows) {
    for (std::size_t c = 0; c < row.size() && c < widths.size(); ++c) {
      widths[c] = std::max(widths[c], DisplayWidth(row[c].text));
      if (!row[c].number) numeric[c] = false;
    }
  }
  std::string out;
  if (!table.title.empty()) out += table.title + "\n";
  auto line = [&](const auto& texts) {
    std::string row;
    for (std::size_t c = 0; c < widths.size(); ++c) {
      if (c > 0) row += "  ";
      AppendPadded(row, c < texts.size() ? std::string_view(texts[c]) : "", widths[c],
                   numeric[c] && !table.rows.empty());
    }
    while (!row.empty() && row.back() == ' ') row.pop_back();
    out += row + "\n";
  };
  line(table.headers);
  std::vector<std::string> texts;
  for (const auto& row : table.rows) {
    texts.clear();
    for (const Cell& cell : row) texts.push_back(cell.text);
    line(texts);
  }
  for (const std::string& note : table.notes) Append(out, {"note: ", note, "\n"});
  return out;
}

std::string RenderTableCsv(const Table& table) {
  std::string out;
  AppendCsvRow(out, table.headers);
  for (const auto& row : table.rows) AppendCsvRow(out, row);
  return out;
}

std::vector<std::string> QcResultHeaders(const QcReport& report) {
  std::vector<std::string> headers = {"trial", "condition"};
  for (const std::string& label : report.columnLabels) headers.push_back(label);
  headers.push_back("shade");
  headers.push_back("result");
  // Indices and strength are computed under the first condition and shown on its rows.
  const std::string under =
      report.conditions.size() > 1 ? " (" + report.conditions.front().label + ")" : "";
  for (const IndexChoice& index : report.indices) headers.push_back(index.name + under);
  if (report.withStrength) headers.push_back("strength %" + under);
  return headers;
}

void QcResultRow(const QcReport& report, const QcSample& trial, std::size_t c,
                 std::vector<Cell>& row) {
  const QcResult& result = trial.results[c];
  row.clear();
  row.push_back(TextCell(trial.name));
  row.push_back(TextCell(report.conditions[c].label));
  for (std::size_t slot = 0; slot < 7; ++slot) {
    row.push_back(NumberCell(result.computed ? result.difference[slot] : kMissing, 2));
  }
  if (result.computed) row[2 + 6].fail = !result.pass;
  row.push_back(TextCell(result.computed ? ShadeWords(result.shade) : ""));
  Cell verdict = TextCell(!result.computed ? "rejected" : result.pass ? "pass" : "fail");
  verdict.fail = !result.pass;
  row.push_back(std::move(verdict));
  for (double value : trial.indices) row.push_back(c == 0 ? NumberCell(value, 2) : TextCell(""));
  if (report.withStrength) row.push_back(c == 0 ? NumberCell(trial.strength, 2) : TextCell(""));
}

Table QcResultTable(const QcReport& report) {
  Table table;
  table.title = "Standard " + report.standard.name + " — " + report.system.caption +
                ", tolerance " + Fixed(report.tolerance, 2);
  table.headers = QcResultHeaders(report);
  for (const QcSample& trial : report.trials) {
    for (std::size_t c = 0; c < report.conditions.size(); ++c) {
      QcResultRow(report, trial, c, table.rows.emplace_back());
    }
    if (!trial.note.empty()) table.notes.push_back(trial.name + ": " + trial.note);
  }
  return table;
}

std::string RenderQcText(const QcReport& report) {
  std::string out;
  out += "Colour QC report\n";
  Append(out, {"Standard: ", report.standard.name, " from ", report.standardSource, "\n"});
  Append(out,
         {"Trials: ", std::to_string(report.trials.size()), " from ", report.trialsSource, "\n"});
  Append(out, {"Difference system: ", report.system.caption, "; tolerance ",
               Fixed(report.tolerance, 2), " ", report.columnLabels[6], "\n"});
  out += "Conditions:";
  for (const Condition& condition : report.conditions) Append(out, {" ", condition.label});
  out += "\n";
  if (report.withStrength) Append(out, {"Strength: ", report.strength.name, "\n"});
  for (const std::string& note : report.notes) Append(out, {"  ", note, "\n"});
  Table table = QcResultTable(report);
  table.title.clear();  // the header above says it
  Append(out, {"\n", RenderTableText(table), "\nBatch summary (", report.columnLabels[6], ")\n"});
  Table summary;
  summary.headers = {"condition", "trials", "pass", "fail",
                     "rejected",  "mean",   "max",  "worst 10 %"};
  for (std::size_t c = 0; c < report.summaries.size(); ++c) {
    const QcSummary& s = report.summaries[c];
    summary.rows.push_back({TextCell(report.conditions[c].label), NumberCell(s.trials, 0),
                            NumberCell(s.passed, 0), NumberCell(s.failed, 0),
                            NumberCell(s.rejected, 0), NumberCell(s.mean, 2), NumberCell(s.max, 2),
                            NumberCell(s.worst10, 2)});
  }
  out += RenderTableText(summary);
  out += report.AllPassed() ? "Batch accepted: every trial within tolerance.\n"
                            : "Batch not accepted: see the trials marked fail or rejected.\n";
  return out;
}

// Straight into one buffer, row by row, without cells or a table: a batch may hold a million
// trials. The same texts as QcResultRow gives, missing values as empty fields.
std::string RenderQcCsv(const QcReport& report) {
  std::string out;
  AppendCsvRow(out, QcResultHeaders(report));
  const std::size_t columns = QcResultHeaders(report).size();
  out.reserve(out.size() + report.trials.size() * report.conditions.size() * (columns * 6 + 48));
  const auto number = [&out](double value, int decimals) {
    out.push_back(',');
    if (!IsMissing(value) && std::isfinite(value)) AppendFixed(out, value, decimals);
  };
  for (const QcSample& trial : report.trials) {
    for (std::size_t c = 0; c < report.conditions.size(); ++c) {
      const QcResult& result = trial.results[c];
      AppendCsvField(out, trial.name);
      out.push_back(',');
      AppendCsvField(out, report.conditions[c].label);
      for (std::size_t slot = 0; slot < 7; ++slot) {
        number(result.computed ? result.difference[slot] : kMissing, 2);
      }
      out.push_back(',');
      if (result.computed) AppendCsvField(out, ShadeWords(result.shade));
      out.append(!result.computed ? ",rejected" : result.pass ? ",pass" : ",fail");
      for (double value : trial.indices) {
        if (c == 0) number(value, 2);
        else out.push_back(',');
      }
      if (report.withStrength) {
        if (c == 0) number(trial.strength, 2);
        else out.push_back(',');
      }
      out.push_back('\n');
    }
  }
  return out;
}

}  // namespace velquor::cli
