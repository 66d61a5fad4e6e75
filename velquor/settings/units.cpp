#include "velquor/settings/units.h"

#include "velquor/frame/resources.h"

namespace velquor {

std::string LoadWeightUnitString(std::uint32_t unit) {
  return LoadStringResource(GetWeightUnitStringId(unit));
}

std::string LoadVolumeUnitString(std::uint32_t unit) {
  return LoadStringResource(GetVolumeUnitStringId(unit));
}

}  // namespace velquor
