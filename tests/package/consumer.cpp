// Uses the installed headers and library: version macros agree with the run-time version, and
// the embedded resources are reachable.
#include <cstdio>
#include <cstring>

#include "velquor/data/ks_data.h"
#include "velquor/frame/resources.h"
#include "velquor/frame/version.h"
#include "velquor/version.h"

int main() {
  if (std::strcmp(velquor::GetVersionString(), VELQUOR_VERSION_STRING) != 0) return 1;
  velquor::CKSData curve;
  curve.Fill(50.0);
  curve.ConvertRefl(velquor::CReflMode{1, 0});
  if (curve[0] != 0.25) return 2;
  if (!velquor::FindCustomResource("PWD", "ILL02_02")) return 3;
  std::printf("velquor %s consumer ok\n", velquor::GetVersionString());
  return 0;
}
