// Tables and the QC report as JSON (RFC 8259): numbers as numbers, missing values as null.
// Everything is appended to one string in place: a batch may hold a million trials.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "report.h"
#include "velquor/frame/numeric.h"

namespace velquor::cli {

namespace {

void Quote(std::string& out, std::string_view text) {
  out.push_back('"');
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out.push_back('\\');
      out.push_back(c);
    } else if (u < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", u);
      out.append(escape);
    } else {
      out.push_back(c);
    }
  }
  out.push_back('"');
}

// Shortest round-trip form; null for the missing value and anything not finite.
void Number(std::string& out, double value) {
  if (IsMissing(value) || !std::isfinite(value)) {
    out.append("null");
    return;
  }
  char buffer[32];
  out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

// `"key": ` (after a ", " unless `first`).
void Key(std::string& out, std::string_view key, bool first = false) {
  if (!first) out.append(", ");
  Quote(out, key);
  out.append(": ");
}

template <typename Each>
void Array(std::string& out, std::size_t count, Each each) {
  out.push_back('[');
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) out.append(", ");
    each(i);
  }
  out.push_back(']');
}

void Values(std::string& out, const CValueArray& values, std::size_t count) {
  Array(out, std::min(count, values.GetSize()), [&](std::size_t i) { Number(out, values[i]); });
}

void Texts(std::string& out, const std::vector<std::string>& texts) {
  Array(out, texts.size(), [&](std::size_t i) { Quote(out, texts[i]); });
}

void Sample(std::string& out, const QcReport& report, const QcSample& sample, bool standard) {
  out.push_back('{');
  Key(out, "name", true);
  Quote(out, sample.name);
  Key(out, "line");
  out.append(std::to_string(sample.line));
  if (!sample.note.empty()) {
    Key(out, "note");
    Quote(out, sample.note);
  }
  Key(out, "results");
  Array(out, sample.results.size(), [&](std::size_t c) {
    const QcResult& r = sample.results[c];
    out.push_back('{');
    Key(out, "condition", true);
    Quote(out, report.conditions[c].label);
    Key(out, "xyz");
    Values(out, r.xyz, 3);
    Key(out, "lab");
    Values(out, r.lab, 5);
    if (standard) {
      out.push_back('}');
      return;
    }
    Key(out, "computed");
    out.append(r.computed ? "true" : "false");
    if (r.computed) {
      Key(out, "difference");
      Array(out, 7, [&](std::size_t s) {
        out.push_back('{');
        Key(out, "label", true);
        Quote(out, report.columnLabels[s]);
        Key(out, "value");
        Number(out, r.difference[s]);
        out.push_back('}');
      });
      Key(out, "total");
      Number(out, r.difference[6]);
      Key(out, "shade");
      Quote(out, ShadeWords(r.shade));
      Key(out, "pass");
      out.append(r.pass ? "true" : "false");
    }
    out.push_back('}');
  });
  if (!report.indices.empty()) {
    Key(out, "indices");
    Array(out, std::min(report.indices.size(), sample.indices.size()), [&](std::size_t i) {
      out.push_back('{');
      Key(out, "name", true);
      Quote(out, report.indices[i].name);
      Key(out, "value");
      Number(out, sample.indices[i]);
      out.push_back('}');
    });
  }
  if (report.withStrength && !standard) {
    Key(out, "strength");
    Number(out, sample.strength);
  }
  Key(out, "reflectance");
  Values(out, sample.curve, CKSData::kLength);
  out.push_back('}');
}

}  // namespace

std::string RenderTableJson(const Table& table) {
  std::string out = "{";
  Key(out, "title", true);
  Quote(out, table.title);
  Key(out, "rows");
  out.append("[\n");
  for (std::size_t r = 0; r < table.rows.size(); ++r) {
    out.append(r > 0 ? ",\n  {" : "  {");
    for (std::size_t c = 0; c < table.rows[r].size() && c < table.headers.size(); ++c) {
      const Cell& cell = table.rows[r][c];
      Key(out, table.headers[c], c == 0);
      if (cell.number) {
        Number(out, cell.value);
      } else {
        Quote(out, cell.text);
      }
    }
    out.push_back('}');
  }
  out.append("\n]");
  Key(out, "notes");
  Texts(out, table.notes);
  out.append("}\n");
  return out;
}

std::string RenderQcJson(const QcReport& report) {
  std::string out = "{\n";
  Key(out, "standardFile", true);
  Quote(out, report.standardSource);
  Key(out, "trialsFile");
  Quote(out, report.trialsSource);
  Key(out, "system");
  Quote(out, report.system.caption);
  Key(out, "tolerance");
  Number(out, report.tolerance);
  Key(out, "conditions");
  Array(out, report.conditions.size(),
        [&](std::size_t c) { Quote(out, report.conditions[c].label); });
  if (report.withStrength) {
    Key(out, "strengthMethod");
    Quote(out, report.strength.name);
  }
  Key(out, "wavelengths");
  out.append("{\"first\": 360, \"step\": 10, \"count\": 40}");
  Key(out, "standard");
  Sample(out, report, report.standard, true);
  out.append(",\n\"trials\": [\n");
  for (std::size_t t = 0; t < report.trials.size(); ++t) {
    out.append(t > 0 ? ",\n  " : "  ");
    Sample(out, report, report.trials[t], false);
  }
  out.append("\n]");
  Key(out, "summary");
  Array(out, report.summaries.size(), [&](std::size_t c) {
    const QcSummary& s = report.summaries[c];
    out.push_back('{');
    Key(out, "condition", true);
    Quote(out, report.conditions[c].label);
    const std::pair<const char*, std::size_t> counts[] = {
        {"trials", s.trials}, {"passed", s.passed}, {"failed", s.failed}, {"rejected", s.rejected}};
    for (const auto& [name, value] : counts) {
      Key(out, name);
      out.append(std::to_string(value));
    }
    const std::pair<const char*, double> statistics[] = {
        {"mean", s.mean}, {"max", s.max}, {"worst10", s.worst10}};
    for (const auto& [name, value] : statistics) {
      Key(out, name);
      Number(out, value);
    }
    out.push_back('}');
  });
  Key(out, "notes");
  Texts(out, report.notes);
  Key(out, "accepted");
  out.append(report.AllPassed() ? "true" : "false");
  out.append("\n}\n");
  return out;
}

}  // namespace velquor::cli
