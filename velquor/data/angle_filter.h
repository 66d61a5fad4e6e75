// Database filter clauses that select stored measurements of compatible geometry by their
// angle code (column `Angle`). The texts are part of the library's interface: hosts splice
// them into their queries unchanged.
#pragma once

#include <cstdint>
#include <string>

namespace velquor {

// The standard geometries (codes 0 to 3, and 8):
// "(Angle BETWEEN 0 AND 3 OR Angle = 8)".
std::string BuildStandardAngleFilter();

// The standard clause plus the specular-included pair SCI, SCI/100 (codes 12, 14) when
// `includedSpecular` is true, else the specular-excluded pair SCE, SCE/100 (13, 15):
// "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 12 OR Angle = 14)".
std::string BuildSpecularAngleFilter(bool includedSpecular);

// The standard clause plus `code` and, for the specular modes, one partner code:
// 12 -> 14, 13 -> 15, 14/16/18 -> 12, 15/17/19 -> 13 (12 pulls in only SCI/100 while the other
// SCI variants pull in SCI: the relation is deliberately not symmetric). Example for 16:
// "((Angle BETWEEN 0 AND 3 OR Angle = 8) OR Angle = 16 OR Angle = 12)".
std::string BuildAngleFilter(std::uint8_t code);

}  // namespace velquor
