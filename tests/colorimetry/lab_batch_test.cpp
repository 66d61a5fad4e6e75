#include "velquor/colorimetry/lab_batch.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "colour_space_references.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::kWhites;
using testing_support::Vector3;

bool SameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// Samples that exercise every path: random colours, the breakpoint, black, a neutral (on-axis
// hues), a hue just under 360 degrees, and missing samples.
std::vector<double> Samples(const testing_support::WhitePoint& w, std::size_t stride) {
  std::mt19937_64 rng(7);
  auto uniform = [&rng] { return static_cast<double>(rng() >> 11) * 0x1p-53; };
  std::vector<std::array<double, 3>> xyz = {{0.008856 * w.x, 0.008856 * w.y, 0.008856 * w.z},
                                            {0, 0, 0},
                                            {w.x / 2, w.y / 2, w.z / 2},
                                            {w.x * 0.5000001, w.y * 0.5, w.z * 0.5},
                                            {kMissing, kMissing, kMissing},
                                            {20, kMissing, 20}};
  for (int i = 0; i < 500; ++i) xyz.push_back({uniform() * w.x, uniform() * w.y, uniform() * w.z});
  std::vector<double> out(xyz.size() * stride, -7.0);
  for (std::size_t i = 0; i < xyz.size(); ++i)
    for (int c = 0; c < 3; ++c) out[i * stride + c] = xyz[i][c];
  return out;
}

TEST(XYZToLabBatch, BitIdenticalToSingleSamples) {
  for (const auto& w : kWhites) {
    const double white[3] = {w.x, w.y, w.z};
    // Input records of 4 doubles (XYZ plus a field), output records of 8.
    const std::vector<double> in = Samples(w, 4);
    const std::size_t count = in.size() / 4;
    std::vector<double> out(count * 8, -9.0);
    ASSERT_EQ(XYZToLabBatch(white, in.data(), 4, out.data(), 8, count), count);
    for (std::size_t i = 0; i < count; ++i) {
      CValueVector5 single;
      XYZToLab(Vector3(w), Vector3(in[i * 4], in[i * 4 + 1], in[i * 4 + 2]), single);
      for (int k = 0; k < 5; ++k)
        ASSERT_TRUE(SameBits(out[i * 8 + k], single[k]))
            << w.name << " sample " << i << " slot " << k;
      for (int k = 5; k < 8; ++k) ASSERT_EQ(out[i * 8 + k], -9.0) << "gap overwritten";
    }
  }
}

TEST(XYZToLabBatch, InPlaceAndRejectedArguments) {
  const auto& w = kWhites[1];
  const double white[3] = {w.x, w.y, w.z};
  std::vector<double> records = Samples(w, 5);
  const std::vector<double> original = records;
  const std::size_t count = records.size() / 5;
  std::vector<double> separate(records.size());
  ASSERT_EQ(XYZToLabBatch(white, original.data(), 5, separate.data(), 5, count), count);
  ASSERT_EQ(XYZToLabBatch(white, records.data(), 5, records.data(), 5, count), count);
  for (std::size_t i = 0; i < records.size(); ++i) ASSERT_TRUE(SameBits(records[i], separate[i]));

  std::vector<double> untouched(records.size(), 3.0);
  EXPECT_EQ(XYZToLabBatch(white, original.data(), 2, untouched.data(), 5, count), 0u);
  EXPECT_EQ(XYZToLabBatch(white, original.data(), 5, untouched.data(), 4, count), 0u);
  EXPECT_EQ(XYZToLabBatch(nullptr, original.data(), 5, untouched.data(), 5, count), 0u);
  for (double v : untouched) ASSERT_EQ(v, 3.0);
  EXPECT_EQ(XYZToLabBatch(white, nullptr, 5, nullptr, 5, 0), 0u);
}

}  // namespace
}  // namespace velquor
