#include "velquor/frame/simd_dispatch.h"

#include <atomic>
#include <vector>

#if defined(VELQUOR_HAVE_HWY)
#include "hwy/targets.h"
#endif

namespace velquor {

#if defined(VELQUOR_HAVE_HWY)

namespace {

// 0: the best level (Highway's own choice); -1: the portable loop; otherwise one target.
std::atomic<std::int64_t> forcedTarget{0};

// Level 0 is the portable loop; levels 1.. are the targets compiled here that the CPU has,
// worst first.
std::vector<std::int64_t> Targets() {
  std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();  // best first
  return {targets.rbegin(), targets.rend()};
}

}  // namespace

int SimdLevelCount() { return 1 + static_cast<int>(Targets().size()); }

const char* SimdLevelName(int level) {
  if (level == 0) return "portable";
  const std::vector<std::int64_t> targets = Targets();
  if (level < 0 || static_cast<std::size_t>(level) > targets.size()) return "";
  return hwy::TargetName(targets[static_cast<std::size_t>(level) - 1]);
}

void SetSimdLevelForTesting(int level) {
  if (level == -1) {
    forcedTarget.store(0);
  } else if (level == 0) {
    forcedTarget.store(-1);
  } else if (level > 0 && level < SimdLevelCount()) {
    forcedTarget.store(Targets()[static_cast<std::size_t>(level) - 1]);
  }
}

const char* ActiveSimdLevelName() {
  const std::int64_t forced = forcedTarget.load();
  if (forced < 0) return "portable";
  return hwy::TargetName(forced != 0 ? forced : hwy::SupportedAndGeneratedTargets().front());
}

std::int64_t ForcedSimdTarget() { return forcedTarget.load(std::memory_order_relaxed); }

std::size_t SimdTargetIndex(std::int64_t target) {
  // The table entry of one target, without touching Highway's process-wide choice.
  hwy::ChosenTarget chosen;
  chosen.Update(target);
  return chosen.GetIndex();
}

#else  // no Highway: the portable loops only

int SimdLevelCount() { return 1; }

const char* SimdLevelName(int level) { return level == 0 ? "portable" : ""; }

void SetSimdLevelForTesting(int /*level*/) {}

const char* ActiveSimdLevelName() { return "portable"; }

std::int64_t ForcedSimdTarget() { return -1; }

std::size_t SimdTargetIndex(std::int64_t /*target*/) { return 0; }

#endif  // VELQUOR_HAVE_HWY

}  // namespace velquor
