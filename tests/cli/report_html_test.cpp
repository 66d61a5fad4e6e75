// The HTML renderers: escaping of hostile texts, a self-contained page (no scripts, no
// references outside the file), pass/fail colouring at the tolerance and the geometry of the
// inline SVG plots (tolerance polygon, trial markers, ΔL* bars, spectral curves).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <regex>
#include <string>
#include <vector>

#include "report.h"
#include "svg_plot.h"
#include "tolerances.h"
#include "velquor/frame/constants.h"

namespace velquor::cli {
namespace {

using Strings = std::vector<std::string>;

// An ellipse of semi-axes `a` (along Δa*) and `b` (along Δb*), `count` points.
std::vector<std::array<double, 2>> Ellipse(double a, double b, int count) {
  std::vector<std::array<double, 2>> points;
  for (double t = 0; points.size() < static_cast<std::size_t>(count);
       t += 2 * std::numbers::pi / count) {
    points.push_back({a * std::cos(t), b * std::sin(t)});
  }
  return points;
}

// A sample at CIELAB (50, 0, 0) + Δ with the total difference `total` under the first
// condition and `total` + 0.06 under the second; it passes up to 1.
QcSample Sample(std::string name, double dl, double da, double db, double total) {
  QcSample s;
  s.name = std::move(name);
  for (std::size_t i = 0; i < CKSData::kLength; ++i) s.curve[i] = 20.0 + i;
  QcResult r;
  r.computed = true;
  r.labDelta = {dl, da, db};
  const double values[] = {dl, da, db, 50 + dl, da, db};
  for (std::size_t k = 0; k < 3; ++k) r.difference[k] = values[k], r.lab[k] = values[k + 3];
  r.difference[6] = total;
  r.pass = total <= 1;
  r.shade = "Lighter,Redder, ";
  s.results = {r, r};
  s.results[1].difference[6] += 0.06;
  return s;
}

// Two conditions; trial "good" passes, "bad" fails (totals 1.75, 1.81), "holey" was rejected.
QcReport MakeReport() {
  QcReport report;
  report.system.caption = "CMC (L:C) = 2 : 1, cf = 1";
  report.conditions = {{2, 1, "D65/10°"}, {0, 1, "A/10°"}};
  report.columnLabels = {"ΔL*", "Δa*", "Δb*", "ΔL*cmc", "ΔC*cmc", "ΔH*cmc", "ΔE*cmc"};
  report.standard = Sample("standard", 0, 0, 0, 0);
  report.trials = {Sample("good", 0.4, 0.3, 0.2, 0.55), Sample("bad", -1.2, 1.5, 0.5, 1.75),
                   Sample("holey", 0, 0, 0, 0)};
  QcSample& rejected = report.trials.back();
  rejected.results = {QcResult{}, QcResult{}};
  rejected.curve[10] = kMissing;
  rejected.hasMissing = true;
  rejected.note = "missing value at 460 nm";
  report.summaries.assign(2, QcSummary{3, 1, 1, 1, 1.15, 1.75, 1.75});
  report.toleranceContour = Ellipse(0.8, 1.2, 36);
  return report;
}

// The element that starts with the last `open` before `marker`, up to and including `close`.
std::string Element(const std::string& html, const std::string& marker, const std::string& open,
                    const std::string& close) {
  const std::size_t at = html.find(marker);
  const std::size_t start = at == std::string::npos ? at : html.rfind(open, at);
  const std::size_t end = at == std::string::npos ? at : html.find(close, at);
  if (start == std::string::npos || end == std::string::npos) return "";
  return html.substr(start, end + close.size() - start);
}

Strings All(const std::string& text, const std::string& pattern) {
  Strings found;
  const std::regex re(pattern);
  for (std::sregex_iterator it(text.begin(), text.end(), re), end; it != end; ++it) {
    found.push_back(it->str());
  }
  return found;
}

std::string Attribute(const std::string& element, const std::string& name) {
  std::smatch match;
  const std::regex re("\\s" + name + "=\"([^\"]*)\"");
  return std::regex_search(element, match, re) ? match[1].str() : "";
}

// The numbers of an attribute: one for "x", four for "viewBox", every coordinate for "d".
std::vector<double> Numbers(const std::string& element, const std::string& name) {
  std::vector<double> values;
  for (const std::string& n : All(Attribute(element, name), R"(-?\d+(\.\d+)?)")) {
    values.push_back(std::stod(n));
  }
  return values;
}

std::string Svg(const QcReport& report, const char* id) {
  return Element(RenderQcHtml(report), std::string("id=\"") + id + "\"", "<svg", "</svg>");
}

const char kFailCell[] = R"(<td class="[^"]*\bfail\b[^"]*">([^<]*))";

TEST(SvgNumbers, FixedPointWithoutNegativeZeroAndNiceSteps) {
  EXPECT_EQ(FormatFixed(1.5, 2) + FormatFixed(-0.001, 2) + FormatFixed(-0.006, 2), "1.500.00-0.01");
  // One, two or five times a power of ten.
  const double kSteps[][3] = {{10, 5, 2}, {1, 4, 0.2}, {100, 3, 50}, {7, 1, 10}, {0.03, 3, 0.01}};
  for (const auto& c : kSteps) {
    EXPECT_NEAR(NiceStep(c[0], static_cast<int>(c[1])), c[2], test::kExactFormula) << c[0];
  }
  EXPECT_EQ(NiceStep(0, 5), 1);
}

// The five special characters are escaped wherever a text goes, and only they; the page has no
// script and no address but the SVG namespace.
TEST(RenderHtml, EscapesHostileTextsAndIsSelfContained) {
  QcReport report = MakeReport();
  report.standard.name = "<script>alert(1)</script>";
  report.trials[0].name = "\"><img onerror=alert(2)>";
  report.trials[2].note = "bad <b>note</b> & more";
  report.standardSource = "a&b's.csv";
  report.system.caption = "<i>caption</i>";
  report.notes = {"<style>body{display:none}</style>", "&amp; ΔE*ab 10°"};
  report.conditions[1].label = "<A>";
  Table table{"<title> & co", {"Sample"}, {{TextCell("<u>one</u>")}}, {"note <x>"}};
  const std::string qc = RenderQcHtml(report), plain = RenderTableHtml(table);
  for (const std::string& page : {qc, plain}) {
    EXPECT_EQ(page.rfind("<!DOCTYPE html>\n<html", 0), 0u);
    EXPECT_NE(page.find("<meta charset=\"utf-8\">"), std::string::npos);
  }
  std::string html = qc + plain;
  for (const char* escaped : {"&lt;script&gt;alert(1)&lt;/script&gt;", "&quot;&gt;&lt;img on",
                              "bad &lt;b&gt;note&lt;/b&gt; &amp; more", "a&amp;b&#39;s.csv",
                              "&lt;i&gt;caption&lt;/i&gt;", "&lt;A&gt;", "&lt;title&gt; &amp; co",
                              "&amp;amp; ΔE*ab 10°"}) {  // escaped again, not passed through
    EXPECT_NE(html.find(escaped), std::string::npos) << escaped;
  }
  std::transform(html.begin(), html.end(), html.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  for (const char* raw :
       {"<script", "<img", "<b>", "<i>", "<style>body", "<a>", "<u>", "<x>",
        "javascript:", "src=", "href=", "@import", "url(", "<link", "<iframe", "<object"}) {
    EXPECT_EQ(html.find(raw), std::string::npos) << raw;
  }
  EXPECT_EQ(All(html, "http").size(), All(html, "xmlns=\"http://www.w3.org/2000/svg\"").size());
}

// Only failed cells are coloured: the table's failed value, the failing trial's totals and
// result; the summary's statistics only above the tolerance, not at it.
TEST(RenderHtml, ColoursTheFailedValuesOnly) {
  Table table{"",
              {"Sample", "ΔE"},
              {{TextCell("one"), NumberCell(0.5, 2)}, {TextCell("two"), NumberCell(1.5, 2)}},
              {}};
  table.rows[1][1].fail = true;
  EXPECT_EQ(All(RenderTableHtml(table), kFailCell), Strings{R"(<td class="num fail">1.50)"});
  const std::string html = RenderQcHtml(MakeReport());
  const Strings blocks = All(Element(html, "class=\"data differences\"", "<table", "</table>"),
                             R"(<tbody class="trial">[\s\S]*?</tbody>)");
  ASSERT_EQ(blocks.size(), 3u);
  EXPECT_TRUE(All(blocks[0] + blocks[2], kFailCell).empty());
  const Strings failed = All(blocks[1], kFailCell);
  ASSERT_EQ(failed.size(), 4u);
  EXPECT_TRUE(std::regex_search(failed[0] + failed[2], std::regex(R"(>1\.75[\s\S]*>1\.81)")));
  for (const auto& [max, coloured] : {std::pair{1.0, false}, {1.01, true}}) {
    QcReport report = MakeReport();
    report.summaries = {QcSummary{3, 3, 0, 0, 0.5, max, 0.9}};
    const std::string summary =
        Element(RenderQcHtml(report), "class=\"data summary\"", "<table", "</table>");
    EXPECT_EQ(!All(summary, kFailCell).empty(), coloured) << max;
  }
}

// A slot the system leaves unused has no column, and every row keeps to the header's columns;
// a rejected trial has a row per condition with its note, no a*b* marker and a crossed ΔL* bar.
// Swatches in sRGB (IEC 61966-2-1) of neutral greys on both sides of the CIELAB breakpoint:
// L* 50 is sRGB 119 (0x77), L* 5 is sRGB 17 (0x11).
TEST(RenderQcHtml, ColumnsRejectedTrialsAndSwatches) {
  QcReport report = MakeReport();
  report.columnLabels = {"ΔL*", "Δa*", "Δb*", "(slot 4)", "ΔC*", "ΔH*", "ΔE*ab"};
  report.trials[0].results[0].difference[3] = 777.0;
  CValueVector5& lab = report.trials[0].results[0].lab;
  lab[0] = 5, lab[1] = lab[2] = 0;
  const std::string html = RenderQcHtml(report);
  EXPECT_NE(html.find("background:#777777"), std::string::npos);
  EXPECT_NE(html.find("background:#111111"), std::string::npos);
  const std::string table = Element(html, "class=\"data differences\"", "<table", "</table>");
  EXPECT_EQ(table.find("(slot 4)"), std::string::npos);
  EXPECT_EQ(table.find("777.00"), std::string::npos);
  const std::size_t columns =
      All(Element(table, "<thead>", "<thead>", "</thead>"), "<th[ >]").size();
  EXPECT_EQ(columns, 3u + 6u + 2u);  // #, trial, condition; six slots; shade, result
  for (const std::string& row : All(table, "<tr class=\"(pass|fail|rejected)\">.*?</tr>")) {
    std::size_t cells = row.find("rowspan") != std::string::npos ? 0 : 2;
    for (const std::string& cell : All(row, "<td[^>]*>")) {
      cells += Attribute(cell, "colspan").empty() ? 1 : Numbers(cell, "colspan")[0];
    }
    EXPECT_EQ(cells, columns) << row;
  }
  EXPECT_EQ(All(table, "<tr class=\"rejected\">").size(), 2u);
  EXPECT_EQ(All(table, "missing value at 460 nm").size(), 2u);
  EXPECT_NE(html.find("FAIL"), std::string::npos);
  EXPECT_EQ(All(Svg(report, "ab-plot"), "class=\"trial (pass|fail)\"").size(), 2u);
  const std::string bars = Svg(report, "dl-bars");
  EXPECT_EQ(All(bars, "class=\"bar rejected\"").size(), 1u);
  EXPECT_EQ(All(bars, "class=\"bar (pass|fail)\"><title>[^<]*</title><rect").size(), 2u);
}

// The tolerance polygon keeps every contour point, and the common scale fits the contour and
// every trial inside the plot, whichever of the two is larger. No contour, no polygon.
TEST(RenderQcHtml, ContourAndTrialsShareOneScaleInsideTheViewBox) {
  // Contour semi-axes a, b and points; the failing trial's Δa*, Δb*.
  const double kCases[][5] = {
      {0.8, 1.2, 36, 1.5, 0.5}, {0.5, 0.3, 72, -6.0, 4.0}, {40, 25, 8, 0.2, -0.1}, {0, 0, 0, 1, 1}};
  for (const auto& [a, b, points, da, db] : kCases) {
    QcReport report = MakeReport();
    report.toleranceContour = Ellipse(a, b, static_cast<int>(points));
    report.trials[1].results[0].labDelta = {0.0, da, db};
    const std::string svg = Svg(report, "ab-plot");
    const std::vector<double> box = Numbers(svg, "viewBox");
    ASSERT_EQ(box.size(), 4u);
    const auto inside = [&](double x, double y) {
      return x >= 0 && x <= box[2] && y >= 0 && y <= box[3];
    };
    const std::vector<double> xy =
        Numbers(Element(svg, "class=\"tolerance\"", "<polygon", ">"), "points");
    ASSERT_EQ(xy.size(), 2 * points) << a;
    EXPECT_EQ(svg.find("<polygon") == std::string::npos, points == 0);
    if (points == 0) continue;
    std::vector<double> x, y;
    for (std::size_t k = 0; k < xy.size(); ++k) (k % 2 ? y : x).push_back(xy[k]);
    const auto [minX, maxX] = std::minmax_element(x.begin(), x.end());
    const auto [minY, maxY] = std::minmax_element(y.begin(), y.end());
    EXPECT_TRUE(inside(*minX, *minY) && inside(*maxX, *maxY)) << a;
    // One scale on both axes: the drawn ellipse keeps the ratio of its semi-axes.
    EXPECT_NEAR((*maxX - *minX) / (*maxY - *minY), a / b, 0.02 * a / b);
    for (const std::string& circle : All(svg, "<circle[^>]*>")) {
      EXPECT_TRUE(inside(Numbers(circle, "cx")[0], Numbers(circle, "cy")[0])) << circle;
    }
    // +Δa* is drawn to the right and +Δb* upwards (SVG y grows downwards).
    const std::string bad =
        Element(Element(svg, "class=\"trial fail\"", "<g", "</g>"), "<circle", "<circle", ">");
    EXPECT_EQ(Numbers(bad, "cx")[0] > (*minX + *maxX) / 2, da > 0);
    EXPECT_EQ(Numbers(bad, "cy")[0]<(*minY + *maxY) / 2, db> 0);
  }
}

// A negative ΔL* hangs below the zero line, a positive one stands on it; each sample has one
// spectral curve, split in two by a missing point.
TEST(RenderQcHtml, LightnessBarsAndSpectralCurves) {
  const std::string bars = Svg(MakeReport(), "dl-bars");
  const double zero = Numbers(Element(bars, "class=\"zero\"", "<line", ">"), "y1").at(0);
  const auto rect = [&](const char* bar) {
    const std::string r = Element(Element(bars, bar, "<g", "</g>"), "<rect", "<rect", ">");
    return std::array{Numbers(r, "y").at(0), Numbers(r, "height").at(0)};
  };
  const auto good = rect("bar pass"), bad = rect("bar fail");
  EXPECT_NEAR(good[0] + good[1], zero, 0.15);
  EXPECT_NEAR(bad[0], zero, 0.15);
  EXPECT_NEAR(bad[1] / good[1], 3.0, 0.05);  // ΔL* -1.2 against 0.4
  const std::string svg = Svg(MakeReport(), "spectra");
  std::vector<std::size_t> pieces;
  for (const std::string& path : All(svg, "<path class=\"curve [a-z]+\" d=\"[^\"]*\"")) {
    pieces.push_back(All(path, "M").size());
  }
  std::sort(pieces.begin(), pieces.end());
  EXPECT_EQ(pieces, (std::vector<std::size_t>{1, 1, 1, 2})) << svg;
  EXPECT_EQ(All(svg, "class=\"curve standard\"").size(), 1u);
  // 40 points at 360-750 nm span the plot from left to right, evenly; 20 % to 59 % climbs.
  const std::vector<double> s = Numbers(Element(svg, "curve standard", "<path", ">"), "d");
  ASSERT_EQ(s.size(), 80u);
  EXPECT_NEAR((s[78] - s[0]) / (s[2] - s[0]), 39.0, 0.1);
  EXPECT_GT(s[1], s[79]);
}

}  // namespace
}  // namespace velquor::cli
