// Rendering command results: tables (table.h) and the QC report (qc_report.h) as aligned
// text for the terminal, CSV, JSON, or a self-contained HTML page.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "qc_report.h"
#include "table.h"

namespace velquor::cli {

std::string RenderTableText(const Table& table);
std::string RenderTableCsv(const Table& table);
std::string RenderTableJson(const Table& table);
std::string RenderTableHtml(const Table& table);

// The QC report as one table row per trial and condition, plus the batch summary.
Table QcResultTable(const QcReport& report);
// The same table's headers, and its row for `trial` under condition `condition` (into `row`).
std::vector<std::string> QcResultHeaders(const QcReport& report);
void QcResultRow(const QcReport& report, const QcSample& trial, std::size_t condition,
                 std::vector<Cell>& row);
std::string RenderQcText(const QcReport& report);
std::string RenderQcCsv(const QcReport& report);
std::string RenderQcJson(const QcReport& report);
// One self-contained HTML file: no network, no scripts; plots as inline SVG.
std::string RenderQcHtml(const QcReport& report);

// HTML-escapes & < > " '.
std::string EscapeHtml(std::string_view text);

}  // namespace velquor::cli
