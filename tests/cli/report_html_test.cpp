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
#include "velquor/frame/constants.h"

namespace velquor::cli {
namespace {

constexpr double kPi = 3.14159265358979323846;

// An ellipse of semi-axes `a` (along Δa*) and `b` (along Δb*), `count` points.
std::vector<std::array<double, 2>> Ellipse(double a, double b, int count) {
  std::vector<std::array<double, 2>> points;
  for (int k = 0; k < count; ++k) {
    const double t = 2 * kPi * k / count;
    points.push_back({a * std::cos(t), b * std::sin(t)});
  }
  return points;
}

QcResult Result(double dl, double da, double db, double total, bool pass) {
  QcResult r;
  r.computed = true;
  r.labDelta = {dl, da, db};
  r.difference[0] = dl;
  r.difference[1] = da;
  r.difference[2] = db;
  r.difference[6] = total;
  r.lab[0] = 50 + dl;
  r.lab[1] = 20 + da;
  r.lab[2] = 10 + db;
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
  report.tolerance = 1.0;
  report.conditions = {{2, 1, "D65/10°"}, {0, 1, "A/10°"}};
  report.columnLabels = {"ΔL*", "Δa*", "Δb*", "ΔL*cmc", "ΔC*cmc", "ΔH*cmc", "ΔE*cmc"};
  report.standard = Sample("standard", {Result(0, 0, 0, 0, true), Result(0, 0, 0, 0, true)});
  report.trials.push_back(
      Sample("good", {Result(0.4, 0.3, 0.2, 0.55, true), Result(0.4, 0.3, 0.2, 0.61, true)}));
  report.trials.push_back(
      Sample("bad", {Result(-1.2, 1.5, 0.5, 1.75, false), Result(-1.2, 1.5, 0.5, 1.81, false)}));
  QcSample rejected = Sample("holey", {QcResult{}, QcResult{}});
  rejected.curve[10] = kMissing;
  rejected.hasMissing = true;
  rejected.note = "missing value at 460 nm";
  report.trials.push_back(rejected);
  QcSummary summary;
  summary.trials = 3;
  summary.passed = 1;
  summary.failed = 1;
  summary.rejected = 1;
  summary.mean = 1.15;
  summary.max = 1.75;
  summary.worst10 = 1.75;
  report.summaries = {summary, summary};
  report.toleranceContour = Ellipse(0.8, 1.2, 36);
  return report;
}

// The text of the element that starts with `open` (e.g. "<svg" ... id="ab-plot") up to and
// including `close`.
std::string Element(const std::string& html, const std::string& marker, const std::string& open,
                    const std::string& close) {
  const std::size_t at = html.find(marker);
  if (at == std::string::npos) return "";
  const std::size_t start = html.rfind(open, at);
  const std::size_t end = html.find(close, at);
  if (start == std::string::npos || end == std::string::npos) return "";
  return html.substr(start, end + close.size() - start);
}

std::vector<double> Numbers(const std::string& text) {
  std::vector<double> values;
  static const std::regex kNumber(R"(-?\d+(\.\d+)?)");
  for (std::sregex_iterator it(text.begin(), text.end(), kNumber), end; it != end; ++it) {
    values.push_back(std::stod(it->str()));
  }
  return values;
}

std::string Attribute(const std::string& element, const std::string& name) {
  const std::regex pattern("\\s" + name + "=\"([^\"]*)\"");
  std::smatch match;
  return std::regex_search(element, match, pattern) ? match[1].str() : "";
}

std::vector<std::string> All(const std::string& text, const std::string& pattern) {
  std::vector<std::string> found;
  const std::regex re(pattern);
  for (std::sregex_iterator it(text.begin(), text.end(), re), end; it != end; ++it) {
    found.push_back(it->str());
  }
  return found;
}

struct Box {
  double width;
  double height;
};

Box ViewBox(const std::string& svg) {
  const std::vector<double> v = Numbers(Attribute(svg, "viewBox"));
  return v.size() == 4 ? Box{v[2], v[3]} : Box{0, 0};
}

TEST(EscapeHtml, EscapesTheFiveSpecialCharactersOnly) {
  const struct {
    const char* in;
    const char* out;
  } cases[] = {
      {"", ""},
      {"plain ΔE*ab 10°", "plain ΔE*ab 10°"},
      {"<script>", "&lt;script&gt;"},
      {"a & b", "a &amp; b"},
      {"&amp;", "&amp;amp;"},  // escaped again, not passed through
      {"\"x\" 'y'", "&quot;x&quot; &#39;y&#39;"},
  };
  for (const auto& c : cases) EXPECT_EQ(EscapeHtml(c.in), c.out) << c.in;
}

TEST(FormatFixed, WritesPointAndNoNegativeZero) {
  EXPECT_EQ(FormatFixed(1.5, 2), "1.50");
  EXPECT_EQ(FormatFixed(-0.001, 2), "0.00");
  EXPECT_EQ(FormatFixed(-0.006, 2), "-0.01");
}

TEST(NiceStep, PicksOneTwoOrFiveTimesAPowerOfTen) {
  const struct {
    double span;
    int count;
    double step;
  } cases[] = {{10, 5, 2}, {1, 4, 0.2}, {100, 3, 50}, {7, 1, 10}, {0.03, 3, 0.01}, {0, 5, 1}};
  for (const auto& c : cases) {
    EXPECT_NEAR(NiceStep(c.span, c.count), c.step, 1e-12) << c.span << " / " << c.count;
  }
}

TEST(RenderQcHtml, EscapesHostileNamesEverywhere) {
  QcReport report = MakeReport();
  report.standard.name = "<script>alert(1)</script>";
  report.trials[0].name = "\"><img src=x onerror=alert(2)>";
  report.trials[2].note = "bad <b>note</b> & more";
  report.standardSource = "a&b's.csv";
  report.system.caption = "<i>caption</i>";
  report.notes = {"<style>body{display:none}</style>"};
  report.conditions[1].label = "<A>";
  const std::string html = RenderQcHtml(report);
  for (const char* raw : {"<script", "<img", "<b>", "<i>", "<style>body", "<A>"}) {
    EXPECT_EQ(html.find(raw), std::string::npos) << raw;
  }
  for (const char* escaped : {"&lt;script&gt;alert(1)&lt;/script&gt;", "&quot;&gt;&lt;img src=x",
                              "bad &lt;b&gt;note&lt;/b&gt; &amp; more", "a&amp;b&#39;s.csv",
                              "&lt;i&gt;caption&lt;/i&gt;", "&lt;A&gt;"}) {
    EXPECT_NE(html.find(escaped), std::string::npos) << escaped;
  }
}

Cell Text(std::string text) {
  Cell cell;
  cell.text = std::move(text);
  return cell;
}

Cell Number(std::string text, double value, bool fail) {
  Cell cell = Text(std::move(text));
  cell.number = true;
  cell.value = value;
  cell.fail = fail;
  return cell;
}

TEST(RenderTableHtml, EscapesAndColoursOnlyFailedCells) {
  Table table;
  table.title = "<title> & co";
  table.headers = {"Sample", "ΔE"};
  table.rows = {{Text("<b>one</b>"), Number("0.50", 0.5, false)},
                {Text("two"), Number("1.50", 1.5, true)}};
  table.notes = {"note <x>"};
  const std::string html = RenderTableHtml(table);
  EXPECT_EQ(html.find("<b>"), std::string::npos);
  EXPECT_EQ(html.find("<x>"), std::string::npos);
  EXPECT_NE(html.find("&lt;title&gt; &amp; co"), std::string::npos);
  const std::vector<std::string> failCells = All(html, R"(<td class="[^"]*\bfail\b[^"]*">[^<]*)");
  ASSERT_EQ(failCells.size(), 1u);
  EXPECT_NE(failCells[0].find("1.50"), std::string::npos);
}

TEST(RenderHtml, IsSelfContained) {
  QcReport report = MakeReport();
  Table table;
  table.title = "t";
  table.headers = {"a"};
  table.rows = {{Text("1")}};
  for (const std::string& html : {RenderQcHtml(report), RenderTableHtml(table)}) {
    EXPECT_EQ(html.rfind("<!DOCTYPE html>", 0), 0u);
    EXPECT_NE(html.find("<meta charset=\"utf-8\">"), std::string::npos);
    const std::string lower = [&] {
      std::string s = html;
      std::transform(s.begin(), s.end(), s.begin(),
                     [](unsigned char c) { return std::tolower(c); });
      return s;
    }();
    for (const char* forbidden : {"<script", "javascript:", "src=", "href=", "@import", "url(",
                                  "<link", "<iframe", "<object"}) {
      EXPECT_EQ(lower.find(forbidden), std::string::npos) << forbidden;
    }
    // The only address is the SVG namespace.
    for (std::size_t at = lower.find("http"); at != std::string::npos;
         at = lower.find("http", at + 1)) {
      EXPECT_EQ(lower.compare(at - 7, 34, "xmlns=\"http://www.w3.org/2000/svg\""), 0)
          << lower.substr(at, 40);
    }
  }
}

// The failing trial's total is coloured as a failure, the passing trial has no failed cell.
TEST(RenderQcHtml, ColoursTheFailedTotalOnly) {
  const std::string html = RenderQcHtml(MakeReport());
  const std::string table = Element(html, "class=\"data differences\"", "<table", "</table>");
  ASSERT_FALSE(table.empty());
  std::vector<std::string> blocks;
  for (std::size_t at = table.find("<tbody class=\"trial\">"); at != std::string::npos;) {
    const std::size_t end = table.find("</tbody>", at);
    blocks.push_back(table.substr(at, end - at));
    at = table.find("<tbody class=\"trial\">", end);
  }
  ASSERT_EQ(blocks.size(), 3u);
  const std::string failCell = R"(<td class="[^"]*\bfail\b[^"]*">([^<]*))";
  EXPECT_TRUE(All(blocks[0], failCell).empty()) << blocks[0];
  const std::vector<std::string> failed = All(blocks[1], failCell);
  // Per condition: the total (1.75, 1.81) and the result word.
  ASSERT_EQ(failed.size(), 4u);
  EXPECT_NE(failed[0].find("1.75"), std::string::npos);
  EXPECT_NE(failed[2].find("1.81"), std::string::npos);
  EXPECT_TRUE(All(blocks[2], failCell).empty());
}

// A slot the system leaves unused has no column, and every row keeps to the header's columns.
TEST(RenderQcHtml, LeavesOutUnusedSlotsAndKeepsColumnsAligned) {
  QcReport report = MakeReport();
  report.columnLabels = {"ΔL*", "Δa*", "Δb*", "(slot 4)", "ΔC*", "ΔH*", "ΔE*ab"};
  report.trials[0].results[0].difference[3] = 777.0;  // in the unused slot: not shown
  const std::string table =
      Element(RenderQcHtml(report), "class=\"data differences\"", "<table", "</table>");
  EXPECT_EQ(table.find("(slot 4)"), std::string::npos);
  EXPECT_EQ(table.find("777.00"), std::string::npos);
  const std::size_t columns =
      All(Element(table, "<thead>", "<thead>", "</thead>"), "<th[ >]").size();
  EXPECT_EQ(columns, 3u + 6u + 2u);  // #, trial, condition; six slots; shade, result
  // First rows of a trial carry # and trial (rowspan); later rows do not.
  for (const std::string& row : All(table, "<tr class=\"(pass|fail|rejected)\">.*?</tr>")) {
    std::size_t cells = 0;
    for (const std::string& cell : All(row, "<td[^>]*>")) {
      const std::string span = Attribute(cell, "colspan");
      cells += span.empty() ? 1 : std::stoul(span);
    }
    const bool first = row.find("rowspan") != std::string::npos;
    EXPECT_EQ(cells + (first ? 0 : 2), columns) << row;
  }
}

// The batch summary colours a statistic only above the tolerance, not at it.
TEST(RenderQcHtml, SummaryColoursStatisticsAboveTheTolerance) {
  const struct {
    double max;
    bool coloured;
  } cases[] = {{0.99, false}, {1.0, false}, {1.01, true}};
  for (const auto& c : cases) {
    QcReport report = MakeReport();
    report.summaries.resize(1);
    report.summaries[0].failed = 0;
    report.summaries[0].mean = 0.5;
    report.summaries[0].max = c.max;
    report.summaries[0].worst10 = 0.9;
    const std::string table =
        Element(RenderQcHtml(report), "class=\"data summary\"", "<table", "</table>");
    EXPECT_EQ(!All(table, R"(<td class="[^"]*\bfail\b)").empty(), c.coloured) << c.max;
  }
}

TEST(RenderQcHtml, ShowsRejectedSamplesWithTheirNote) {
  const std::string html = RenderQcHtml(MakeReport());
  const std::string table = Element(html, "class=\"data differences\"", "<table", "</table>");
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

// The tolerance polygon keeps every contour point, and the common scale fits the contour and
// every trial inside the plot, whichever of the two is larger.
TEST(RenderQcHtml, ContourAndTrialsShareOneScaleInsideTheViewBox) {
  const struct {
    double a, b;    // contour semi-axes
    double da, db;  // the failing trial
    int points;
  } cases[] = {{0.8, 1.2, 1.5, 0.5, 36},
               {0.5, 0.3, -6.0, 4.0, 72},
               {40, 25, 0.2, -0.1, 8},
               {900, 999, 999.99, -999.99, 90}};
  for (const auto& c : cases) {
    QcReport report = MakeReport();
    report.toleranceContour = Ellipse(c.a, c.b, c.points);
    report.trials[1].results[0].labDelta = {0.0, c.da, c.db};
    const std::string svg = Element(RenderQcHtml(report), "id=\"ab-plot\"", "<svg", "</svg>");
    const Box box = ViewBox(svg);
    ASSERT_GT(box.width, 0);
    const std::string polygon = Element(svg, "class=\"tolerance\"", "<polygon", ">");
    const std::vector<double> xy = Numbers(Attribute(polygon, "points"));
    ASSERT_EQ(xy.size(), 2u * c.points) << c.a;
    double minX = 1e9, maxX = -1e9, minY = 1e9, maxY = -1e9;
    for (std::size_t k = 0; k < xy.size(); k += 2) {
      minX = std::min(minX, xy[k]);
      maxX = std::max(maxX, xy[k]);
      minY = std::min(minY, xy[k + 1]);
      maxY = std::max(maxY, xy[k + 1]);
    }
    EXPECT_GE(minX, 0);
    EXPECT_LE(maxX, box.width);
    EXPECT_GE(minY, 0);
    EXPECT_LE(maxY, box.height);
    // One scale on both axes: the drawn ellipse keeps the ratio of its semi-axes.
    EXPECT_NEAR((maxX - minX) / (maxY - minY), c.a / c.b, 0.02 * c.a / c.b);
    const double centreX = (minX + maxX) / 2;
    const double centreY = (minY + maxY) / 2;
    for (const std::string& circle : All(svg, "<circle[^>]*>")) {
      const double cx = std::stod(Attribute(circle, "cx"));
      const double cy = std::stod(Attribute(circle, "cy"));
      EXPECT_GE(cx, 0);
      EXPECT_LE(cx, box.width);
      EXPECT_GE(cy, 0);
      EXPECT_LE(cy, box.height);
    }
    // +Δa* is drawn to the right and +Δb* upwards (SVG y grows downwards).
    const std::string bad = Element(svg, "class=\"trial fail\"", "<g", "</g>");
    const std::string circle = Element(bad, "<circle", "<circle", ">");
    EXPECT_EQ(std::stod(Attribute(circle, "cx")) > centreX, c.da > 0);
    EXPECT_EQ(std::stod(Attribute(circle, "cy")) < centreY, c.db > 0);
  }
}

TEST(RenderQcHtml, DrawsNoPolygonWithoutContour) {
  QcReport report = MakeReport();
  report.toleranceContour.clear();
  report.trials.clear();
  report.summaries.clear();
  const std::string html = RenderQcHtml(report);
  EXPECT_EQ(html.find("<polygon"), std::string::npos);
  EXPECT_NE(html.find("id=\"ab-plot\""), std::string::npos);
}

// A negative ΔL* hangs below the zero line, a positive one stands on it.
TEST(RenderQcHtml, LightnessBarsStartAtTheZeroLine) {
  const std::string bars = Element(RenderQcHtml(MakeReport()), "id=\"dl-bars\"", "<svg", "</svg>");
  const std::string zero = Element(bars, "class=\"zero\"", "<line", ">");
  const double zeroY = std::stod(Attribute(zero, "y1"));
  const std::string good = Element(Element(bars, "bar pass", "<g", "</g>"), "<rect", "<rect", ">");
  const std::string bad = Element(Element(bars, "bar fail", "<g", "</g>"), "<rect", "<rect", ">");
  ASSERT_FALSE(good.empty());
  ASSERT_FALSE(bad.empty());
  const double goodY = std::stod(Attribute(good, "y"));
  const double goodH = std::stod(Attribute(good, "height"));
  EXPECT_NEAR(goodY + goodH, zeroY, 0.15);
  EXPECT_NEAR(std::stod(Attribute(bad, "y")), zeroY, 0.15);
  // ΔL* -1.2 is three times ΔL* 0.4.
  EXPECT_NEAR(std::stod(Attribute(bad, "height")) / goodH, 3.0, 0.05);
}

// Each sample has one curve; a missing point splits the curve into two pieces.
TEST(RenderQcHtml, SpectralCurvesBreakAtMissingPoints) {
  const std::string svg = Element(RenderQcHtml(MakeReport()), "id=\"spectra\"", "<svg", "</svg>");
  const std::vector<std::string> paths = All(svg, "<path class=\"curve [a-z]+\" d=\"[^\"]*\"");
  ASSERT_EQ(paths.size(), 4u);
  EXPECT_EQ(All(svg, "class=\"curve standard\"").size(), 1u);
  std::vector<std::size_t> pieces;
  for (const std::string& path : paths) pieces.push_back(All(path, "M").size());
  EXPECT_EQ(std::count(pieces.begin(), pieces.end(), 2u), 1) << svg;
  EXPECT_EQ(std::count(pieces.begin(), pieces.end(), 1u), 3);
  // 40 points at 360-750 nm span the plot from left to right: the first and last x.
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
