#include "table.h"

#include <cmath>
#include <cstdio>

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
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  cell.text = buffer;
  if (cell.text.starts_with("-") && cell.text.find_first_of("123456789") == std::string::npos) {
    cell.text.erase(0, 1);  // "-0.00" reads as a sign where there is no difference
  }
  return cell;
}

}  // namespace velquor::cli
