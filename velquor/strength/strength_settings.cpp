#include "velquor/strength/strength_settings.h"

#include <ostream>

#include "velquor/frame/archive.h"

namespace velquor {

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CStrengthSettings, CObject, 1)

void CStrengthSettings::Serialize(CArchive& archive) {
  if (archive.IsStoring()) {
    archive << method << userWavelength << targetPercent << saundersonOn << k1 << k2;
  } else {
    archive >> method >> userWavelength >> targetPercent >> saundersonOn >> k1 >> k2;
  }
}

void CStrengthSettings::Dump(std::ostream& out) const {
  out << "CStrengthSettings{method=" << method << ", userWavelength=" << userWavelength
      << ", targetPercent=" << targetPercent << ", saundersonOn=" << saundersonOn << ", k1=" << k1
      << ", k2=" << k2 << "}";
}

bool operator==(const CStrengthSettings& a, const CStrengthSettings& b) {
  return a.method == b.method && a.userWavelength == b.userWavelength &&
         a.targetPercent == b.targetPercent && a.saundersonOn == b.saundersonOn && a.k1 == b.k1 &&
         a.k2 == b.k2;
}

}  // namespace velquor
