#include "velquor/data/angle_filter.h"

#include "velquor/data/geometry_catalogue.h"

namespace velquor {

namespace {

// Appends " OR Angle = <code>".
void AppendAngleEquals(std::string& clause, unsigned code) {
  clause += " OR Angle = ";
  clause += std::to_string(code);
}

// The code a specular mode brings along in BuildAngleFilter, or -1 for none.
int SpecularPartner(std::uint8_t code) {
  switch (code) {
    case kAngleSCI:
      return kAngleSCI100;
    case kAngleSCE:
      return kAngleSCE100;
    case kAngleSCI100:
    case kAngleSCI0:
    case kAngleSCIAdj:
      return kAngleSCI;
    case kAngleSCE100:
    case kAngleSCE0:
    case kAngleSCEAdj:
      return kAngleSCE;
    default:
      return -1;
  }
}

}  // namespace

// Clauses are built by appending to one string (no temporaries joined with operator+).
std::string BuildStandardAngleFilter() {
  std::string clause = "(Angle BETWEEN ";
  clause += std::to_string(kAngleD8);
  clause += " AND ";
  clause += std::to_string(kAngle0_45);
  AppendAngleEquals(clause, kAngle45Deg);
  clause += ')';
  return clause;
}

std::string BuildSpecularAngleFilter(bool includedSpecular) {
  std::string clause = "(";
  clause += BuildStandardAngleFilter();
  AppendAngleEquals(clause, includedSpecular ? kAngleSCI : kAngleSCE);
  AppendAngleEquals(clause, includedSpecular ? kAngleSCI100 : kAngleSCE100);
  clause += ')';
  return clause;
}

std::string BuildAngleFilter(std::uint8_t code) {
  std::string clause = "(";
  clause += BuildStandardAngleFilter();
  AppendAngleEquals(clause, code);
  const int partner = SpecularPartner(code);
  if (partner >= 0) AppendAngleEquals(clause, static_cast<unsigned>(partner));
  clause += ')';
  return clause;
}

}  // namespace velquor
