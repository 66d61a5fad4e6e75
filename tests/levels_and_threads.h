// Batch tests run at every SIMD level the machine has (frame/simd_dispatch.h) and at 1, 2 and 8
// batch threads: derive the suite's fixture from LevelsAndThreadsTest and instantiate it with
//   INSTANTIATE_TEST_SUITE_P(LevelsAndThreads, Suite, test::LevelsAndThreads(),
//                            test::LevelsAndThreadsName);
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "velquor/frame/batch_threads.h"
#include "velquor/frame/simd_dispatch.h"

namespace velquor::test {

using LevelAndThreads = std::tuple<int, int>;

class LevelsAndThreadsTest : public ::testing::TestWithParam<LevelAndThreads> {
 protected:
  void SetUp() override {
    SetSimdLevelForTesting(std::get<0>(GetParam()));
    SetBatchThreads(std::get<1>(GetParam()));
  }
  void TearDown() override {
    SetSimdLevelForTesting(-1);
    SetBatchThreads(0);
  }
};

inline auto LevelsAndThreads() {
  return ::testing::Combine(::testing::Range(0, SimdLevelCount()), ::testing::Values(1, 2, 8));
}

inline std::string LevelsAndThreadsName(const ::testing::TestParamInfo<LevelAndThreads>& info) {
  return std::string(SimdLevelName(std::get<0>(info.param))) + "_" +
         std::to_string(std::get<1>(info.param)) + "threads";
}

}  // namespace velquor::test
