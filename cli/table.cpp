#include "table.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "velquor/frame/numeric.h"

namespace velquor::cli {

Cell TextCell(std::string text) {
  Cell cell;
  cell.text = std::move(text);
  return cell;
}

Cell NumberCell(double value, int decimals) {
  Cell cell;
  cell.number = true;
  cell.value = value;
  if (IsMissing(value) || !std::isfinite(value)) {
    cell.missing = true;
    cell.text = "missing";
    return cell;
  }
  AppendFixed(cell.text, value, decimals);
  return cell;
}

void AppendFixed(std::string& out, double value, int decimals) {
  // Fixed notation as printf's "%.*f" writes it (to_chars with a precision rounds the exact
  // binary value the same way); 1e308 takes 309 digits before the point.
  char buffer[400];
  const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
  if (ec != std::errc()) return;
  const char* begin = buffer;
  const char* const stop = end;
  if (*begin == '-' && std::find_if(begin, stop, [](char c) { return c >= '1' && c <= '9'; }) == stop) {
    ++begin;  // "-0.00" reads as a sign where there is no difference
  }
  out.append(begin, stop);
}

}  // namespace velquor::cli
