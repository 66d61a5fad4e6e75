#include "velquor/frame/options.h"

#include <atomic>

#include "velquor/frame/numeric.h"

namespace velquor {

namespace {
std::atomic<int> hueInDegrees{1};
}  // namespace

int GetHueInDegrees() { return hueInDegrees.load(std::memory_order_relaxed); }

void SetHueInDegrees(int value) { hueInDegrees.store(value, std::memory_order_relaxed); }

double HueToRadians(double h) { return GetHueInDegrees() != 0 ? DegToRad(h) : h; }

double HueFromRadians(double h) { return GetHueInDegrees() != 0 ? RadToDeg(h) : h; }

}  // namespace velquor
