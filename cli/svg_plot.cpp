#include "svg_plot.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "report.h"
#include "velquor/frame/numeric.h"

namespace velquor::cli {
namespace {

constexpr const char* kPassColour = "#1a7f37";
constexpr const char* kFailColour = "#cf222e";
constexpr const char* kInkColour = "#1f2328";
constexpr const char* kMutedColour = "#6e7781";
constexpr const char* kGridColour = "#e4e8ec";
constexpr const char* kAxisColour = "#8c959f";

// The plotting area inside an SVG of `width` x `height` user units.
struct Frame {
  double width;
  double height;
  double left;
  double top;
  double right;
  double bottom;
};

// Linear map from data [low, high] to pixels [from, to] (to < from for a vertical axis).
struct Scale {
  double low;
  double high;
  double from;
  double to;
  double operator()(double v) const { return from + (v - low) * (to - from) / (high - low); }
};

bool Usable(double v) {
  return std::isfinite(v) && !IsMissing(v);
}

// A tick label, negative values with the typographic minus sign U+2212.
std::string TickLabel(double v, int decimals) {
  std::string text = FormatFixed(v, decimals);
  if (!text.empty() && text[0] == '-') text.replace(0, 1, "\u2212");
  return text;
}

std::string Px(double v) {
  return FormatFixed(v, 1);
}

// Digits after the point that show every multiple of `step` exactly (step 0.5 -> 1, 5 -> 0).
int StepDecimals(double step) {
  const int decimals = static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
  return std::clamp(decimals, 0, 6);
}

// Multiples of `step` in [low, high], at most 101 of them.
std::vector<double> Ticks(double low, double high, double step) {
  std::vector<double> ticks;
  const double first = std::ceil(low / step - 1e-9);
  for (int k = 0; k <= 100; ++k) {
    const double tick = (first + k) * step;
    if (tick > high + 1e-9 * step) break;
    ticks.push_back(std::abs(tick) < 1e-12 * step ? 0.0 : tick);
  }
  return ticks;
}

// A symmetric range [-r, r] with r a multiple of a nice step, holding `extent` with a small
// margin. Returns r and sets `step`.
double SymmetricRange(double extent, double& step) {
  if (!(extent > 0.0) || !std::isfinite(extent)) extent = 1.0;
  step = NiceStep(extent, 3);
  return std::ceil(extent * 1.06 / step) * step;
}

// The first `count` characters (code points) of UTF-8 text, with an ellipsis when cut.
std::string Shorten(std::string_view text, std::size_t count) {
  std::size_t seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) == 0x80) continue;  // a continuation byte
    if (seen == count) return std::string(text.substr(0, i)) + "…";
    ++seen;
  }
  return std::string(text);
}

void OpenSvg(std::string& out, const char* id, const Frame& frame, std::string_view title) {
  out += "<svg xmlns=\"http://www.w3.org/2000/svg\" id=\"";
  out += id;
  out += "\" class=\"plot\" viewBox=\"0 0 " + Px(frame.width) + " " + Px(frame.height) +
         "\" width=\"" + Px(frame.width) + "\" height=\"" + Px(frame.height) +
         "\" role=\"img\" font-size=\"12\" fill=\"" + kInkColour + "\"><title>" +
         EscapeHtml(title) + "</title>\n";
  out += "<rect class=\"plot-area\" x=\"" + Px(frame.left) + "\" y=\"" + Px(frame.top) +
         "\" width=\"" + Px(frame.right - frame.left) + "\" height=\"" +
         Px(frame.bottom - frame.top) + "\" fill=\"#ffffff\" stroke=\"" + kAxisColour + "\"/>\n";
}

void Line(std::string& out, double x1, double y1, double x2, double y2, const char* colour,
          double width, std::string_view extra = {}) {
  out += "<line x1=\"" + Px(x1) + "\" y1=\"" + Px(y1) + "\" x2=\"" + Px(x2) + "\" y2=\"" + Px(y2) +
         "\" stroke=\"" + colour + "\" stroke-width=\"" + FormatFixed(width, 1) + "\"";
  out += extra;
  out += "/>\n";
}

void Text(std::string& out, double x, double y, std::string_view text, std::string_view anchor,
          std::string_view extra = {}) {
  out += "<text x=\"" + Px(x) + "\" y=\"" + Px(y) + "\" text-anchor=\"";
  out += anchor;
  out += "\"";
  out += extra;
  out += '>';
  out += EscapeHtml(text);
  out += "</text>\n";
}

// Grid lines and tick labels of a horizontal value axis along the bottom of the frame.
void BottomAxis(std::string& out, const Frame& frame, const Scale& x, double step,
                std::string_view title) {
  const int decimals = StepDecimals(step);
  for (double tick : Ticks(x.low, x.high, step)) {
    const double px = x(tick);
    Line(out, px, frame.top, px, frame.bottom, kGridColour, 1);
    Line(out, px, frame.bottom, px, frame.bottom + 5, kAxisColour, 1);
    Text(out, px, frame.bottom + 18, TickLabel(tick, decimals), "middle");
  }
  Text(out, (frame.left + frame.right) / 2, frame.bottom + 38, title, "middle",
       " font-weight=\"600\"");
}

// Grid lines and tick labels of a vertical value axis along the left of the frame.
void LeftAxis(std::string& out, const Frame& frame, const Scale& y, double step,
              std::string_view title) {
  const int decimals = StepDecimals(step);
  for (double tick : Ticks(y.low, y.high, step)) {
    const double py = y(tick);
    Line(out, frame.left, py, frame.right, py, kGridColour, 1);
    Line(out, frame.left - 5, py, frame.left, py, kAxisColour, 1);
    Text(out, frame.left - 8, py + 4, TickLabel(tick, decimals), "end");
  }
  const double middle = (frame.top + frame.bottom) / 2;
  out += "<text x=\"16\" y=\"" + Px(middle) + "\" text-anchor=\"middle\" font-weight=\"600\" " +
         "transform=\"rotate(-90 16 " + Px(middle) + ")\">" + EscapeHtml(title) + "</text>\n";
}

// The frame drawn again on top of the grid, so grid lines do not cover its edge.
void FrameBorder(std::string& out, const Frame& frame) {
  out += "<rect x=\"" + Px(frame.left) + "\" y=\"" + Px(frame.top) + "\" width=\"" +
         Px(frame.right - frame.left) + "\" height=\"" + Px(frame.bottom - frame.top) +
         "\" fill=\"none\" stroke=\"" + kAxisColour + "\"/>\n";
}

}  // namespace

std::string FormatFixed(double value, int decimals) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  std::array<char, 400> buffer{};
  std::to_chars_result written =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed,
                    std::clamp(decimals, 0, 17));
  if (written.ec != std::errc()) {
    written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  }
  const char* end = written.ptr;
  std::string text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  if (!text.empty() && text[0] == '-' && text.find_first_not_of("0.", 1) == std::string::npos) {
    text.erase(0, 1);
  }
  return text;
}

double NiceStep(double span, int count) {
  if (!(span > 0.0) || !std::isfinite(span) || count < 1) return 1.0;
  const double raw = span / count;
  const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
  const double fraction = raw / magnitude;
  const double nice = fraction < 1.5 ? 1.0 : fraction < 3.0 ? 2.0 : fraction < 7.0 ? 5.0 : 10.0;
  return nice * magnitude;
}

const char* TrialColour(std::size_t i) {
  // Tableau 10, with its green and red moved last so the first trials do not read as
  // pass/fail colours.
  static constexpr std::array<const char*, 10> kPalette = {
      "#1f77b4", "#ff7f0e", "#9467bd", "#8c564b", "#e377c2",
      "#17becf", "#bcbd22", "#7f7f7f", "#2ca02c", "#d62728"};
  return kPalette[i % kPalette.size()];
}

std::string RenderAbPlot(const std::vector<AbMarker>& markers,
                         const std::vector<std::array<double, 2>>& contour) {
  const Frame frame{420, 420, 62, 20, 402, 360};
  double extent = 0.0;
  for (const AbMarker& m : markers) {
    if (Usable(m.da)) extent = std::max(extent, std::abs(m.da));
    if (Usable(m.db)) extent = std::max(extent, std::abs(m.db));
  }
  for (const auto& point : contour) {
    if (Usable(point[0])) extent = std::max(extent, std::abs(point[0]));
    if (Usable(point[1])) extent = std::max(extent, std::abs(point[1]));
  }
  double step = 1.0;
  const double range = SymmetricRange(extent, step);
  const Scale x{-range, range, frame.left, frame.right};
  const Scale y{-range, range, frame.bottom, frame.top};

  std::string out;
  OpenSvg(out, "ab-plot", frame, "Trials in the a*b* plane relative to the standard");
  BottomAxis(out, frame, x, step, "Δa*");
  LeftAxis(out, frame, y, step, "Δb*");
  const double cx = x(0.0);
  const double cy = y(0.0);
  Line(out, frame.left, cy, frame.right, cy, kAxisColour, 1.2);
  Line(out, cx, frame.top, cx, frame.bottom, kAxisColour, 1.2);
  FrameBorder(out, frame);

  const std::string hint = std::string(" font-size=\"10\" fill=\"") + kMutedColour + "\"";
  Text(out, frame.right - 5, cy - 6, "+a* red", "end", hint);
  Text(out, frame.left + 5, cy - 6, "−a* green", "start", hint);
  Text(out, cx + 6, frame.top + 13, "+b* yellow", "start", hint);
  Text(out, cx + 6, frame.bottom - 7, "−b* blue", "start", hint);

  std::string points;
  std::size_t pointCount = 0;
  for (const auto& point : contour) {
    if (!Usable(point[0]) || !Usable(point[1])) continue;
    if (!points.empty()) points += ' ';
    points += Px(x(point[0])) + "," + Px(y(point[1]));
    ++pointCount;
  }
  if (pointCount >= 3) {
    out += "<polygon class=\"tolerance\" points=\"" + points +
           "\" fill=\"#0969da\" fill-opacity=\"0.08\" stroke=\"#0969da\" stroke-width=\"1.5\" "
           "stroke-linejoin=\"round\"><title>Tolerance at ΔL* = 0</title></polygon>\n";
  }

  out += "<g class=\"standard\"><title>Standard</title><path d=\"M" + Px(cx - 7) + " " + Px(cy) +
         "h14M" + Px(cx) + " " + Px(cy - 7) + "v14\" stroke=\"" + kInkColour +
         "\" stroke-width=\"2.2\"/></g>\n";

  for (const AbMarker& m : markers) {
    if (!Usable(m.da) || !Usable(m.db)) continue;
    const double px = x(m.da);
    const double py = y(m.db);
    out += std::string("<g class=\"trial ") + (m.pass ? "pass" : "fail") + "\"><title>" +
           EscapeHtml(m.title) + "</title><circle cx=\"" + Px(px) + "\" cy=\"" + Px(py) +
           "\" r=\"5.5\" fill=\"" + (m.pass ? kPassColour : kFailColour) +
           "\" stroke=\"#ffffff\" stroke-width=\"1.5\"/>";
    out += "<text x=\"" + Px(px + 8) + "\" y=\"" + Px(py - 7) +
           "\" font-size=\"11\" font-weight=\"600\">" + EscapeHtml(m.label) + "</text></g>\n";
  }
  out += "</svg>";
  return out;
}

std::string RenderDeltaLBars(const std::vector<DeltaBar>& bars) {
  const Frame frame{420, 420, 62, 20, 402, 360};
  double extent = 0.0;
  for (const DeltaBar& bar : bars) {
    if (bar.computed && Usable(bar.value)) extent = std::max(extent, std::abs(bar.value));
  }
  double step = 1.0;
  const double range = SymmetricRange(extent, step);
  const Scale y{-range, range, frame.bottom, frame.top};

  std::string out;
  OpenSvg(out, "dl-bars", frame, "Lightness difference ΔL* of each trial");
  LeftAxis(out, frame, y, step, "ΔL*");
  Text(out, (frame.left + frame.right) / 2, frame.bottom + 38, "Trial", "middle",
       " font-weight=\"600\"");
  const std::string hint = std::string(" font-size=\"10\" fill=\"") + kMutedColour + "\"";
  Text(out, frame.left + 5, frame.top + 13, "lighter", "start", hint);
  Text(out, frame.left + 5, frame.bottom - 7, "darker", "start", hint);
  FrameBorder(out, frame);

  const double zero = y(0.0);
  const std::size_t n = bars.size();
  if (n > 0) {
    const double slot = (frame.right - frame.left) / static_cast<double>(n);
    const double width = std::min(36.0, slot * 0.64);
    // Every k-th trial is labelled so that labels of the widest number do not touch.
    const double labelWidth = 7.0 * static_cast<double>(std::to_string(n).size()) + 6.0;
    const auto labelEvery = static_cast<std::size_t>(std::max(1.0, std::ceil(labelWidth / slot)));
    for (std::size_t i = 0; i < n; ++i) {
      const DeltaBar& bar = bars[i];
      const double centre = frame.left + slot * (static_cast<double>(i) + 0.5);
      if ((i + 1) % labelEvery == 0 || labelEvery == 1) {
        Text(out, centre, frame.bottom + 18, bar.label, "middle");
      }
      if (!bar.computed || !Usable(bar.value)) {
        out += "<g class=\"bar rejected\"><title>" + EscapeHtml(bar.title) + "</title><path d=\"M" +
               Px(centre - 4) + " " + Px(zero - 4) + "l8 8m0 -8l-8 8\" stroke=\"" + kMutedColour +
               "\" stroke-width=\"1.8\"/></g>\n";
        continue;
      }
      const double top = std::min(zero, y(bar.value));
      const double height = std::max(std::abs(y(bar.value) - zero), 1.0);
      out += std::string("<g class=\"bar ") + (bar.pass ? "pass" : "fail") + "\"><title>" +
             EscapeHtml(bar.title) + "</title><rect x=\"" + Px(centre - width / 2) + "\" y=\"" +
             Px(bar.value < 0 ? zero : top) + "\" width=\"" + Px(width) + "\" height=\"" +
             Px(height) + "\" fill=\"" + (bar.pass ? kPassColour : kFailColour) + "\"/>";
      if (n <= 15) {
        const double labelY = bar.value < 0 ? zero + height + 13 : zero - height - 5;
        out += "<text x=\"" + Px(centre) + "\" y=\"" + Px(labelY) +
               "\" text-anchor=\"middle\" font-size=\"10\">" + TickLabel(bar.value, 2) + "</text>";
      }
      out += "</g>\n";
    }
  }
  Line(out, frame.left, zero, frame.right, zero, kInkColour, 1.4, " class=\"zero\"");
  out += "</svg>";
  return out;
}

std::string RenderSpectra(const std::vector<SpectrumLine>& lines) {
  const Frame frame{900, 380, 62, 20, 682, 320};
  double low = 0.0;
  double high = 100.0;
  for (const SpectrumLine& line : lines) {
    if (line.curve == nullptr) continue;
    const std::size_t count = std::min(line.curve->GetSize(), kSpectrumPoints);
    for (std::size_t i = 0; i < count; ++i) {
      const double v = (*line.curve)[i];
      if (!Usable(v)) continue;
      low = std::min(low, v);
      high = std::max(high, v);
    }
  }
  const double yStep = NiceStep(high - low, 5);
  low = std::floor(low / yStep + 1e-9) * yStep;
  high = std::ceil(high / yStep - 1e-9) * yStep;
  const double lastWavelength = kFirstWavelength + kWavelengthStep * (kSpectrumPoints - 1.0);
  const Scale x{static_cast<double>(kFirstWavelength), lastWavelength, frame.left, frame.right};
  const Scale y{low, high, frame.bottom, frame.top};

  std::string out;
  OpenSvg(out, "spectra", frame, "Spectral reflectance of the standard and the trials");
  BottomAxis(out, frame, x, 50.0, "Wavelength (nm)");
  LeftAxis(out, frame, y, yStep, "Reflectance (%)");
  FrameBorder(out, frame);

  // Trials first, the standard last so that it stays on top.
  std::vector<const SpectrumLine*> order;
  for (const SpectrumLine& line : lines) {
    if (!line.standard) order.push_back(&line);
  }
  for (const SpectrumLine& line : lines) {
    if (line.standard) order.push_back(&line);
  }
  for (const SpectrumLine* line : order) {
    if (line->curve == nullptr) continue;
    std::string path;
    bool open = false;      // the previous point was drawn
    bool isolated = false;  // the current sub-path holds one point so far
    const std::size_t count = std::min(line->curve->GetSize(), kSpectrumPoints);
    for (std::size_t i = 0; i < count; ++i) {
      const double v = (*line->curve)[i];
      if (!Usable(v)) {
        if (open && isolated) path += "l0 0";  // a lone point shows as a round dot
        open = false;
        continue;
      }
      const double wavelength = kFirstWavelength + kWavelengthStep * static_cast<double>(i);
      path += open ? 'L' : 'M';
      path += Px(x(wavelength));
      path += ' ';
      path += Px(y(v));
      isolated = !open;
      open = true;
    }
    if (open && isolated) path += "l0 0";
    if (path.empty()) continue;
    out += std::string("<path class=\"") + (line->standard ? "curve standard" : "curve trial") +
           "\" d=\"" + path + "\" fill=\"none\" stroke=\"" + EscapeHtml(line->colour) +
           "\" stroke-width=\"" + (line->standard ? "3.2" : "1.7") +
           "\" stroke-linejoin=\"round\" stroke-linecap=\"round\"" +
           (line->rejected ? " stroke-dasharray=\"6 4\"" : "") + "><title>" +
           EscapeHtml(line->name) + "</title></path>\n";
  }

  // Legend to the right of the plot, the standard first.
  const double legendX = frame.right + 18;
  const std::size_t capacity = static_cast<std::size_t>((frame.bottom - frame.top) / 18.0);
  std::vector<const SpectrumLine*> legend;
  for (const SpectrumLine& line : lines) {
    if (line.standard) legend.push_back(&line);
  }
  for (const SpectrumLine& line : lines) {
    if (!line.standard) legend.push_back(&line);
  }
  out += "<g class=\"legend\" font-size=\"11\">\n";
  for (std::size_t k = 0; k < legend.size(); ++k) {
    const double rowY = frame.top + 10 + 18.0 * static_cast<double>(k);
    if (k + 1 == capacity && legend.size() > capacity) {
      Text(out, legendX, rowY + 4, "+ " + std::to_string(legend.size() - k) + " more", "start",
           std::string(" fill=\"") + kMutedColour + "\"");
      break;
    }
    const SpectrumLine& line = *legend[k];
    const std::string colour = EscapeHtml(line.colour);
    Line(out, legendX, rowY, legendX + 24, rowY, colour.c_str(), line.standard ? 3.2 : 1.7,
         line.rejected ? " stroke-dasharray=\"6 4\"" : "");
    Text(out, legendX + 30, rowY + 4, Shorten(line.name, 24), "start",
         line.standard ? " font-weight=\"600\"" : "");
  }
  out += "</g>\n</svg>";
  return out;
}

}  // namespace velquor::cli
