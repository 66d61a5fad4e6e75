// Tables and the QC report as JSON (RFC 8259): numbers as numbers, missing values as null.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "report.h"
#include "velquor/frame/numeric.h"

namespace velquor::cli {

namespace {

std::string Quote(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out.push_back('\\');
      out.push_back(c);
    } else if (u < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", u);
      out += escape;
    } else {
      out.push_back(c);
    }
  }
  return out + "\"";
}

// Shortest round-trip form; null for the missing value and anything not finite.
std::string Number(double value) {
  if (IsMissing(value) || !std::isfinite(value)) return "null";
  char buffer[32];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return std::string(buffer, end);
}

std::string CellJson(const Cell& cell) {
  if (!cell.number) return Quote(cell.text);
  return Number(cell.value);
}

std::string Array(const std::vector<std::string>& items) {
  std::string out = "[";
  for (std::size_t i = 0; i < items.size(); ++i) out += (i > 0 ? ", " : "") + items[i];
  return out + "]";
}

std::string Vector(const CValueArray& values, std::size_t count) {
  std::vector<std::string> items;
  for (std::size_t i = 0; i < count && i < values.GetSize(); ++i) items.push_back(Number(values[i]));
  return Array(items);
}

std::string Curve(const CKSData& curve) {
  std::vector<std::string> items;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) items.push_back(Number(curve[i]));
  return Array(items);
}

std::string SampleJson(const QcReport& report, const QcSample& sample, bool standard) {
  std::string out = "{\"name\": " + Quote(sample.name) + ", \"line\": " + std::to_string(sample.line);
  if (!sample.note.empty()) out += ", \"note\": " + Quote(sample.note);
  out += ", \"results\": [";
  for (std::size_t c = 0; c < sample.results.size(); ++c) {
    const QcResult& r = sample.results[c];
    out += c > 0 ? ", " : "";
    out += "{\"condition\": " + Quote(report.conditions[c].label) +
           ", \"xyz\": " + Vector(r.xyz, 3) + ", \"lab\": " + Vector(r.lab, 5);
    if (!standard) {
      out += ", \"computed\": " + std::string(r.computed ? "true" : "false");
      if (r.computed) {
        std::vector<std::string> slots;
        for (std::size_t s = 0; s < 7; ++s) {
          slots.push_back("{\"label\": " + Quote(report.columnLabels[s]) +
                          ", \"value\": " + Number(r.difference[s]) + "}");
        }
        out += ", \"difference\": " + Array(slots) + ", \"total\": " + Number(r.difference[6]) +
               ", \"shade\": " + Quote(ShadeWords(r.shade)) + ", \"pass\": " + (r.pass ? "true" : "false");
      }
    }
    out += "}";
  }
  out += "]";
  if (!report.indices.empty()) {
    std::vector<std::string> items;
    for (std::size_t i = 0; i < report.indices.size() && i < sample.indices.size(); ++i) {
      items.push_back("{\"name\": " + Quote(report.indices[i].name) +
                      ", \"value\": " + Number(sample.indices[i]) + "}");
    }
    out += ", \"indices\": " + Array(items);
  }
  if (report.withStrength && !standard) out += ", \"strength\": " + Number(sample.strength);
  out += ", \"reflectance\": " + Curve(sample.curve);
  return out + "}";
}

}  // namespace

std::string RenderTableJson(const Table& table) {
  std::string out = "{\"title\": " + Quote(table.title) + ", \"rows\": [\n";
  for (std::size_t r = 0; r < table.rows.size(); ++r) {
    out += r > 0 ? ",\n  {" : "  {";
    for (std::size_t c = 0; c < table.rows[r].size() && c < table.headers.size(); ++c) {
      out += (c > 0 ? ", " : "") + Quote(table.headers[c]) + ": " + CellJson(table.rows[r][c]);
    }
    out += "}";
  }
  std::vector<std::string> notes;
  for (const std::string& note : table.notes) notes.push_back(Quote(note));
  return out + "\n], \"notes\": " + Array(notes) + "}\n";
}

std::string RenderQcJson(const QcReport& report) {
  std::string out = "{\n";
  out += "\"standardFile\": " + Quote(report.standardSource) + ",\n";
  out += "\"trialsFile\": " + Quote(report.trialsSource) + ",\n";
  out += "\"system\": " + Quote(report.system.caption) + ",\n";
  out += "\"tolerance\": " + Number(report.tolerance) + ",\n";
  std::vector<std::string> conditions;
  for (const Condition& condition : report.conditions) conditions.push_back(Quote(condition.label));
  out += "\"conditions\": " + Array(conditions) + ",\n";
  if (report.withStrength) out += "\"strengthMethod\": " + Quote(report.strength.name) + ",\n";
  out += "\"wavelengths\": {\"first\": 360, \"step\": 10, \"count\": 40},\n";
  out += "\"standard\": " + SampleJson(report, report.standard, true) + ",\n";
  out += "\"trials\": [\n";
  for (std::size_t t = 0; t < report.trials.size(); ++t) {
    out += (t > 0 ? ",\n  " : "  ") + SampleJson(report, report.trials[t], false);
  }
  out += "\n],\n\"summary\": [";
  for (std::size_t c = 0; c < report.summaries.size(); ++c) {
    const QcSummary& s = report.summaries[c];
    out += (c > 0 ? ", " : "") + std::string("{\"condition\": ") + Quote(report.conditions[c].label) +
           ", \"trials\": " + std::to_string(s.trials) + ", \"passed\": " + std::to_string(s.passed) +
           ", \"failed\": " + std::to_string(s.failed) + ", \"rejected\": " + std::to_string(s.rejected) +
           ", \"mean\": " + Number(s.mean) + ", \"max\": " + Number(s.max) +
           ", \"worst10\": " + Number(s.worst10) + "}";
  }
  std::vector<std::string> notes;
  for (const std::string& note : report.notes) notes.push_back(Quote(note));
  out += "],\n\"notes\": " + Array(notes) + ",\n";
  out += "\"accepted\": " + std::string(report.AllPassed() ? "true" : "false") + "\n}\n";
  return out;
}

}  // namespace velquor::cli
