// A result table as the commands produce it (one row per sample), before it is rendered as
// aligned text, CSV, JSON or HTML (report.h).
#pragma once

#include <string>
#include <vector>

namespace velquor::cli {

struct Cell {
  std::string text;     // as shown in text, CSV and HTML
  bool number = false;  // JSON writes `value` as a number (null when missing)
  bool missing = false;
  double value = 0.0;
  bool fail = false;  // highlighted as a failed value (HTML colouring, JSON flag)
};

struct Table {
  std::string title;  // e.g. "CIELAB, D65/10°"
  std::vector<std::string> headers;
  std::vector<std::vector<Cell>> rows;  // each row has headers.size() cells
  std::vector<std::string> notes;       // how the input was read, rejected samples ...
};

// A text cell.
Cell TextCell(std::string text);
// A number with `decimals` digits after the point; the missing value gives "missing".
Cell NumberCell(double value, int decimals);

// Appends the text of NumberCell(value, decimals) for a finite value that is not the missing
// value (the caller handles those), without a temporary string: the renderers of large
// batches call it per value.
void AppendFixed(std::string& out, double value, int decimals);

}  // namespace velquor::cli
