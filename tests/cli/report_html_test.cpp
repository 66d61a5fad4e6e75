// The HTML renderers: escaping of hostile texts, a self-contained page (no scripts, no
// references outside the file), pass/fail colouring at the tolerance and the geometry of the
// inline SVG plots (tolerance polygon, trial markers, ΔL* bars, spectral curves).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>
#include <string>
#include <vector>

#include "report.h"
#include "svg_plot.h"
#include "tolerances.h"
#include "velquor/frame/constants.h"

namespace velquor::cli {
namespace {

// An ellipse of semi-axes `a` (along Δa*) and `b` (along Δb*), `count` points.
std::vector<std::array<double, 2>> Ellipse(double a, double b, int count) {
  std::vector<std::array<double, 2>> points;
  for (int k = 0; k < count; ++k) {
    const double t = 2 * 3.14159265358979323846 * k / count;
    points.push_back({a * std::cos(t), b * std::sin(t)});
  }
  return points;
}

QcResult Result(double dl, double da, double db, double total, bool pass) {
  QcResult r;
  r.computed = true;
  r.labDelta = {dl, da, db};
  const double standard[] = {50, 20, 10};
  for (std::size_t k = 0; k < 3; ++k) {
    r.difference[k] = r.labDelta[k];
    r.lab[k] = standard[k] + r.labDelta[k];
  }
  r.difference[6] = total;
  r.pass = pass;
  r.shade = "Lighter,Redder, ";
  return r;
}

QcSample Sample(std::string name, std::vector<QcResult> results) {
  QcSample s;
  s.name = std::move(name);
  for (std::size_t i = 0; i < CKSData::kLength; ++i) s.curve[i] = 20.0 + i;
  s.results = std::move(results);
  return s;
}

// Two conditions; trial 1 passes, trial 2 fails (total 1.75 > 1.00), trial 3 was not computed.
QcReport MakeReport() {
  QcReport report;
  report.standardSource = "std.csv";
  report.trialsSource = "batch.csv";
  report.system.caption = "CMC (L:C) = 2 : 1, cf = 1";
  report.conditions = {{2, 1, "D65/10°"}, {0, 1, "A/10°"}};
  report.columnLabels = {"ΔL*", "Δa*", "Δb*", "ΔL*cmc", "ΔC*cmc", "ΔH*cmc", "ΔE*cmc"};
  report.standard = Sample("standard", {Result(0, 0, 0, 0, true), Result(0, 0, 0, 0, true)});
  report.trials = {
      Sample("good", {Result(0.4, 0.3, 0.2, 0.55, true), Result(0.4, 0.3, 0.2, 0.61, true)}),
      Sample("bad", {Result(-1.2, 1.5, 0.5, 1.75, false), Result(-1.2, 1.5, 0.5, 1.81, false)}),
      Sample("holey", {QcResult{}, QcResult{}})};
  QcSample& rejected = report.trials.back();
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

std::vector<std::string> All(const std::string& text, const std::string& pattern) {
  std::vector<std::string> found;
  const std::regex re(pattern);
  for (std::sregex_iterator it(text.begin(), text.end(), re), end; it != end; ++it) {
    found.push_back(it->str());
  }
  return found;
}

std::vector<double> Numbers(const std::string& text) {
  std::vector<double> values;
  for (const std::string& number : All(text, R"(-?\d+(\.\d+)?)"))
    values.push_back(std::stod(number));
  return values;
}

std::string Attribute(const std::string& element, const std::string& name) {
  std::smatch match;
  return std::regex_search(element, match, std::regex("\\s" + name + "=\"([^\"]*)\""))
             ? match[1].str()
             : "";
}

double Number(const std::string& element, const std::string& name) {
  return std::stod(Attribute(element, name));
}

const char kFailCell[] = R"(<td class="[^"]*\bfail\b[^"]*">([^<]*))";

std::string Differences(const QcReport& report) {
  return Element(RenderQcHtml(report), "class=\"data differences\"", "<table", "</table>");
}

TEST(SvgNumbers, FixedPointWithoutNegativeZeroAndNiceSteps) {
  EXPECT_EQ(FormatFixed(1.5, 2), "1.50");
  EXPECT_EQ(FormatFixed(-0.001, 2), "0.00");
  EXPECT_EQ(FormatFixed(-0.006, 2), "-0.01");
  // One, two or five times a power of ten.
  const struct {
    double span;
    int count;
    double step;
  } kSteps[] = {{10, 5, 2}, {1, 4, 0.2}, {100, 3, 50}, {7, 1, 10}, {0.03, 3, 0.01}, {0, 5, 1}};
  for (const auto& c : kSteps) {
    EXPECT_NEAR(NiceStep(c.span, c.count), c.step, test::kExactFormula) << c.span << "/" << c.count;
  }
}

// The five special characters are escaped wherever a text goes, and only they.
TEST(RenderHtml, EscapesHostileTextsEverywhere) {
  QcReport report = MakeReport();
  report.standard.name = "<script>alert(1)</script>";
  report.trials[0].name = "\"><img src=x onerror=alert(2)>";
  report.trials[2].note = "bad <b>note</b> & more";
  report.standardSource = "a&b's.csv";
  report.system.caption = "<i>caption</i>";
  report.notes = {"<style>body{display:none}</style>", "&amp; ΔE*ab 10°"};
  report.conditions[1].label = "<A>";
  Table table;
  table.title = "<title> & co";
  table.headers = {"Sample"};
  table.rows = {{TextCell("<u>one</u>")}};
  table.notes = {"note <x>"};
  const std::string html = RenderQcHtml(report) + RenderTableHtml(table);
  for (const char* raw : {"<script", "<img", "<b>", "<i>", "<style>body", "<A>", "<u>", "<x>"}) {
    EXPECT_EQ(html.find(raw), std::string::npos) << raw;
  }
  for (const char* escaped : {"&lt;script&gt;alert(1)&lt;/script&gt;", "&quot;&gt;&lt;img src=x",
                              "bad &lt;b&gt;note&lt;/b&gt; &amp; more", "a&amp;b&#39;s.csv",
                              "&lt;i&gt;caption&lt;/i&gt;", "&lt;A&gt;", "&lt;title&gt; &amp; co",
                              "&amp;amp; ΔE*ab 10°"}) {  // escaped again, not passed through
    EXPECT_NE(html.find(escaped), std::string::npos) << escaped;
  }
}

TEST(RenderHtml, IsSelfContained) {
  Table table;
  table.headers = {"a"};
  table.rows = {{TextCell("1")}};
  for (std::string html : {RenderQcHtml(MakeReport()), RenderTableHtml(table)}) {
    EXPECT_EQ(html.rfind("<!DOCTYPE html>", 0), 0u);
    EXPECT_NE(html.find("<meta charset=\"utf-8\">"), std::string::npos);
    std::transform(html.begin(), html.end(), html.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    for (const char* forbidden : {"<script", "javascript:", "src=", "href=", "@import", "url(",
                                  "<link", "<iframe", "<object"}) {
      EXPECT_EQ(html.find(forbidden), std::string::npos) << forbidden;
    }
    // The only address is the SVG namespace.
    EXPECT_EQ(All(html, "http").size(), All(html, "xmlns=\"http://www.w3.org/2000/svg\"").size());
  }
}

// Only failed cells are coloured: the table's failed value, the failing trial's totals.
TEST(RenderHtml, ColoursTheFailedValuesOnly) {
  Table table;
  table.headers = {"Sample", "ΔE"};
  table.rows = {{TextCell("one"), NumberCell(0.5, 2)}, {TextCell("two"), NumberCell(1.5, 2)}};
  table.rows[1][1].fail = true;
  const std::vector<std::string> cells = All(RenderTableHtml(table), kFailCell);
  ASSERT_EQ(cells.size(), 1u);
  EXPECT_NE(cells[0].find("1.50"), std::string::npos);

  const std::string differences = Differences(MakeReport());
  std::vector<std::string> blocks = All(differences, R"(<tbody class="trial">[\s\S]*?</tbody>)");
  ASSERT_EQ(blocks.size(), 3u);
  EXPECT_TRUE(All(blocks[0], kFailCell).empty()) << blocks[0];
  EXPECT_TRUE(All(blocks[2], kFailCell).empty());
  const std::vector<std::string> failed = All(blocks[1], kFailCell);
  ASSERT_EQ(failed.size(), 4u);  // per condition: the total (1.75, 1.81) and the result word
  EXPECT_NE(failed[0].find("1.75"), std::string::npos);
  EXPECT_NE(failed[2].find("1.81"), std::string::npos);
}

// A slot the system leaves unused has no column, and every row keeps to the header's columns.
TEST(RenderQcHtml, LeavesOutUnusedSlotsAndKeepsColumnsAligned) {
  QcReport report = MakeReport();
  report.columnLabels = {"ΔL*", "Δa*", "Δb*", "(slot 4)", "ΔC*", "ΔH*", "ΔE*ab"};
  report.trials[0].results[0].difference[3] = 777.0;  // in the unused slot: not shown
  const std::string table = Differences(report);
  EXPECT_EQ(table.find("(slot 4)"), std::string::npos);
  EXPECT_EQ(table.find("777.00"), std::string::npos);
  const std::size_t columns =
      All(Element(table, "<thead>", "<thead>", "</thead>"), "<th[ >]").size();
  EXPECT_EQ(columns, 3u + 6u + 2u);  // #, trial, condition; six slots; shade, result
  // First rows of a trial carry # and trial (rowspan); later rows do not.
  for (const std::string& row : All(table, "<tr class=\"(pass|fail|rejected)\">.*?</tr>")) {
    std::size_t cells = row.find("rowspan") != std::string::npos ? 0 : 2;
    for (const std::string& cell : All(row, "<td[^>]*>")) {
      const std::string span = Attribute(cell, "colspan");
      cells += span.empty() ? 1 : std::stoul(span);
    }
    EXPECT_EQ(cells, columns) << row;
  }
}

// The batch summary colours a statistic only above the tolerance, not at it.
TEST(RenderQcHtml, SummaryColoursStatisticsAboveTheTolerance) {
  for (const auto& [max, coloured] : {std::pair{0.99, false}, {1.0, false}, {1.01, true}}) {
    QcReport report = MakeReport();
    report.summaries = {QcSummary{3, 3, 0, 0, 0.5, max, 0.9}};
    const std::string table =
        Element(RenderQcHtml(report), "class=\"data summary\"", "<table", "</table>");
    EXPECT_EQ(!All(table, R"(<td class="[^"]*\bfail\b)").empty(), coloured) << max;
  }
}

TEST(RenderQcHtml, ShowsRejectedSamplesWithTheirNote) {
  const std::string html = RenderQcHtml(MakeReport());
  const std::string table = Differences(MakeReport());
  EXPECT_EQ(All(table, "<tr class=\"rejected\">").size(), 2u);  // one row per condition
  EXPECT_EQ(All(table, "missing value at 460 nm").size(), 2u);
  EXPECT_NE(html.find("FAIL"), std::string::npos);
  // Not a marker in the a*b* plot, a cross in the ΔL* bars.
  const std::string ab = Element(html, "id=\"ab-plot\"", "<svg", "</svg>");
  EXPECT_EQ(All(ab, "class=\"trial (pass|fail)\"").size(), 2u);
  const std::string bars = Element(html, "id=\"dl-bars\"", "<svg", "</svg>");
  EXPECT_EQ(All(bars, "class=\"bar rejected\"").size(), 1u);
  EXPECT_EQ(All(bars, "class=\"bar (pass|fail)\"><title>[^<]*</title><rect").size(), 2u);
}

// Swatches in sRGB (IEC 61966-2-1) of neutral greys on both sides of the CIELAB breakpoint:
// L* 50 is sRGB 119 (0x77), L* 5 is sRGB 17 (0x11).
TEST(RenderQcHtml, SwatchesShowTheSrgbColourOfTheCielabValues) {
  QcReport report = MakeReport();
  for (const auto& [result, l] :
       {std::pair{&report.standard.results[0], 50.0}, {&report.trials[0].results[0], 5.0}}) {
    result->lab[0] = l;
    result->lab[1] = result->lab[2] = 0;
  }
  const std::string html = RenderQcHtml(report);
  EXPECT_NE(html.find("background:#777777"), std::string::npos);
  EXPECT_NE(html.find("background:#111111"), std::string::npos);
}

// The tolerance polygon keeps every contour point, and the common scale fits the contour and
// every trial inside the plot, whichever of the two is larger. No contour, no polygon.
TEST(RenderQcHtml, ContourAndTrialsShareOneScaleInsideTheViewBox) {
  const struct {
    double a, b;    // contour semi-axes
    double da, db;  // the failing trial
    int points;
  } kCases[] = {{0.8, 1.2, 1.5, 0.5, 36},
                {0.5, 0.3, -6.0, 4.0, 72},
                {40, 25, 0.2, -0.1, 8},
                {900, 999, 999.99, -999.99, 90},
                {0, 0, 1, 1, 0}};
  for (const auto& c : kCases) {
    QcReport report = MakeReport();
    report.toleranceContour = Ellipse(c.a, c.b, c.points);
    report.trials[1].results[0].labDelta = {0.0, c.da, c.db};
    const std::string svg = Element(RenderQcHtml(report), "id=\"ab-plot\"", "<svg", "</svg>");
    const std::vector<double> box = Numbers(Attribute(svg, "viewBox"));
    ASSERT_EQ(box.size(), 4u);
    const std::string polygon = Element(svg, "class=\"tolerance\"", "<polygon", ">");
    if (c.points == 0) {
      EXPECT_EQ(svg.find("<polygon"), std::string::npos);
      continue;
    }
    std::vector<double> x, y;
    const std::vector<double> xy = Numbers(Attribute(polygon, "points"));
    for (std::size_t k = 0; k + 1 < xy.size(); k += 2) {
      x.push_back(xy[k]);
      y.push_back(xy[k + 1]);
    }
    ASSERT_EQ(x.size(), static_cast<std::size_t>(c.points)) << c.a;
    const auto [minX, maxX] = std::minmax_element(x.begin(), x.end());
    const auto [minY, maxY] = std::minmax_element(y.begin(), y.end());
    EXPECT_TRUE(*minX >= 0 && *maxX <= box[2] && *minY >= 0 && *maxY <= box[3]) << c.a;
    // One scale on both axes: the drawn ellipse keeps the ratio of its semi-axes.
    EXPECT_NEAR((*maxX - *minX) / (*maxY - *minY), c.a / c.b, 0.02 * c.a / c.b);
    for (const std::string& circle : All(svg, "<circle[^>]*>")) {
      const double cx = Number(circle, "cx");
      const double cy = Number(circle, "cy");
      EXPECT_TRUE(cx >= 0 && cx <= box[2] && cy >= 0 && cy <= box[3]) << circle;
    }
    // +Δa* is drawn to the right and +Δb* upwards (SVG y grows downwards).
    const std::string bad =
        Element(Element(svg, "class=\"trial fail\"", "<g", "</g>"), "<circle", "<circle", ">");
    EXPECT_EQ(Number(bad, "cx") > (*minX + *maxX) / 2, c.da > 0);
    EXPECT_EQ(Number(bad, "cy") < (*minY + *maxY) / 2, c.db > 0);
  }
}

// A negative ΔL* hangs below the zero line, a positive one stands on it.
TEST(RenderQcHtml, LightnessBarsStartAtTheZeroLine) {
  const std::string bars = Element(RenderQcHtml(MakeReport()), "id=\"dl-bars\"", "<svg", "</svg>");
  const double zero = Number(Element(bars, "class=\"zero\"", "<line", ">"), "y1");
  const std::string good = Element(Element(bars, "bar pass", "<g", "</g>"), "<rect", "<rect", ">");
  const std::string bad = Element(Element(bars, "bar fail", "<g", "</g>"), "<rect", "<rect", ">");
  ASSERT_FALSE(good.empty() || bad.empty());
  EXPECT_NEAR(Number(good, "y") + Number(good, "height"), zero, 0.15);
  EXPECT_NEAR(Number(bad, "y"), zero, 0.15);
  // ΔL* -1.2 is three times ΔL* 0.4.
  EXPECT_NEAR(Number(bad, "height") / Number(good, "height"), 3.0, 0.05);
}

// Each sample has one curve; a missing point splits the curve into two pieces.
TEST(RenderQcHtml, SpectralCurvesBreakAtMissingPoints) {
  const std::string svg = Element(RenderQcHtml(MakeReport()), "id=\"spectra\"", "<svg", "</svg>");
  const std::vector<std::string> paths = All(svg, "<path class=\"curve [a-z]+\" d=\"[^\"]*\"");
  ASSERT_EQ(paths.size(), 4u);
  EXPECT_EQ(All(svg, "class=\"curve standard\"").size(), 1u);
  std::vector<std::size_t> pieces;
  for (const std::string& path : paths) pieces.push_back(All(path, "M").size());
  std::sort(pieces.begin(), pieces.end());
  EXPECT_EQ(pieces, (std::vector<std::size_t>{1, 1, 1, 2})) << svg;
  // 40 points at 360-750 nm span the plot from left to right, evenly.
  const std::vector<double> standard =
      Numbers(Attribute(Element(svg, "curve standard", "<path", ">"), "d"));
  ASSERT_EQ(standard.size(), 80u);
  EXPECT_LT(standard[0], standard[78]);
  EXPECT_NEAR((standard[78] - standard[0]) / (standard[2] - standard[0]), 39.0, 0.1);
  // Reflectance rises from 20 % to 59 %: the curve climbs (y falls).
  EXPECT_GT(standard[1], standard[79]);
}

}  // namespace
}  // namespace velquor::cli
