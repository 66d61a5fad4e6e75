// velquor: the library's command-line tool.
//   velquor --version     prints the library version
//   velquor demo          worked example on the embedded sample spectra
#include <cstdio>
#include <string>
#include <string_view>

#include "demo_samples.h"
#include "velquor/colorimetry/illuminants.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/ks_data.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/version.h"

namespace {

using velquor::CKSData;
using velquor::CReflMode;

constexpr int kUsageError = 2;

void PrintUsage(std::FILE* out) {
  std::fprintf(out,
               "usage: velquor <command>\n"
               "  demo        worked example on embedded sample spectra\n"
               "  --version   print the library version\n"
               "  --help      show this text\n");
}

CKSData CurveOf(const velquor::cli::DemoSample& sample) {
  CKSData curve;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) curve[i] = sample.reflectance[i];
  return curve;
}

void PrintValue(double value) {
  if (velquor::IsMissing(value)) {
    std::printf(" %8s", "missing");
  } else {
    std::printf(" %8.4f", value);
  }
}

void PrintRow(const char* label, const CKSData& curve) {
  std::printf("  %-12s", label);
  for (std::size_t i = 4; i < CKSData::kLength; i += 5) PrintValue(curve[i]);
  std::printf("\n");
}

// Tristimulus values and CIELAB of every sample under one illuminant and observer.
void PrintColorimetry(int illuminant, int observer) {
  std::string code;
  std::string degrees;
  velquor::EnsureWeightTable(illuminant, observer);
  velquor::LoadIlluminantCode(illuminant, code);
  velquor::LoadObserverText(observer, velquor::ObserverTextForm::kSlash, degrees);
  std::printf("\nTristimulus values and CIELAB, %s%s:\n", code.c_str(), degrees.c_str());
  std::printf("  %-18s %8s %8s %8s %8s %8s %8s %8s %8s\n", "sample", "X", "Y", "Z", "L*", "a*",
              "b*", "C*ab", "hab");
  for (const auto& sample : velquor::cli::kDemoSamples) {
    velquor::CValueVector3 xyz;
    velquor::CValueVector5 lab;
    velquor::ComputeXYZ(CurveOf(sample), illuminant, observer, xyz);
    velquor::XYZToLab(illuminant, observer, xyz, lab);
    std::printf("  %-18s %8.3f %8.3f %8.3f %8.3f %8.3f %8.3f %8.3f %8.3f\n", sample.name, xyz[0],
                xyz[1], xyz[2], lab[0], lab[1], lab[2], lab[3], lab[4]);
  }
}

int RunDemo() {
  std::printf("velquor %s: reflectance, Kubelka-Munk K/S and optical density\n",
              velquor::GetVersionString());
  std::printf("Samples: ColorChecker Classic patches (N. Ohta, 1997), 360-750 nm at 10 nm.\n\n");
  std::printf("  %-12s", "nm");
  for (std::size_t i = 4; i < CKSData::kLength; i += 5) {
    std::printf(" %8d", velquor::kFirstWavelength + velquor::kWavelengthStep * static_cast<int>(i));
  }
  std::printf("\n");
  for (const auto& sample : velquor::cli::kDemoSamples) {
    std::printf("%s\n", sample.name);
    const CKSData reflectance = CurveOf(sample);
    PrintRow("R %", reflectance);
    CKSData ks = reflectance;
    ks.ConvertRefl(CReflMode{1, 0});
    PrintRow("K/S", ks);
    CKSData density = reflectance;
    density.ConvertRefl(CReflMode{1, 1});
    PrintRow("density", density);
  }

  PrintColorimetry(2, 1);
  PrintColorimetry(0, 0);

  // A missing point is carried through arithmetic instead of being computed with.
  CKSData mix = CurveOf(velquor::cli::kDemoSamples[0]);
  CKSData other = CurveOf(velquor::cli::kDemoSamples[1]);
  other[14] = velquor::kMissing;  // 500 nm not measured
  mix.Add(other);
  mix.Scale(0.5);
  std::printf("\nMean of the first two curves, 500 nm missing in one of them:\n");
  PrintRow("R %", mix);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    PrintUsage(stderr);
    return kUsageError;
  }
  const std::string_view command = argv[1];
  if (command == "--version" || command == "version") {
    std::printf("velquor %s\n", velquor::GetVersionString());
    return 0;
  }
  if (command == "--help" || command == "-h" || command == "help") {
    PrintUsage(stdout);
    return 0;
  }
  if (command == "demo") return RunDemo();
  std::fprintf(stderr, "velquor: unknown command '%s'\n", argv[1]);
  PrintUsage(stderr);
  return kUsageError;
}
