// The C interface of the one-dimensional searches: the bracketing walks, the golden-section
// searches and the bracketed root finder, with the caller's C function as the objective.
#include <algorithm>

#include "velquor/c_api/c_api_support.h"
#include "velquor/strength/minimisers.h"
#include "velquor/strength/root_finder.h"

using namespace velquor;
using namespace velquor::capi;

static_assert(VQ_SEARCH_FAILED == kSearchFailed && VQ_SEARCH_FOUND == kSearchFound &&
              VQ_SEARCH_ROOT == kSearchRoot && VQ_SEARCH_ROOT_FAILED == kSearchRootFailed &&
              VQ_SEARCH_ABANDONED == kSearchAbandoned &&
              VQ_SEARCH_FOUND_SLOWLY == kSearchFoundSlowly);

namespace {

constexpr std::size_t kPointCount = 6;

// Runs a search on a copy of the caller's six points and copies them back. The copy is local
// (not per-thread scratch): the objective may itself start a search.
template <class Search>
int RunSearch(vq_objective objective, double* points, Search&& search) {
  if (objective == nullptr || points == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    CValueArray vector;
    vector.SetSize(kPointCount);
    std::copy_n(points, kPointCount, vector.GetData());
    const int result = search(vector);
    std::copy_n(vector.GetData(), kPointCount, points);
    return result;
  });
}

void CopyRoot(const RootResult& from, vq_root_result& to) {
  to.found = from.found ? 1 : 0;
  to.root = from.root;
  to.a = from.interval.a;
  to.b = from.interval.b;
  to.fa = from.interval.fa;
  to.fb = from.interval.fb;
}

}  // namespace

extern "C" {

int vq_bracket_minimum(vq_objective objective, void* context, double points[6]) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    return BracketMinimum(context, objective, vector);
  });
}

int vq_bracket_extremum_or_root(vq_objective objective, void* context,
                                double points[6]) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    return BracketExtremumOrRoot(context, objective, vector);
  });
}

int vq_golden_section(vq_objective objective, void* context, double points[6],
                      double tolerance) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    GoldenSectionSearch(context, objective, vector, tolerance);
    return VQ_SEARCH_FOUND;
  });
}

int vq_golden_section_or_root(vq_objective objective, void* context, double points[6],
                              double tolerance) noexcept {
  return RunSearch(objective, points, [&](CValueArray& vector) {
    return GoldenSectionSearchOrRoot(context, objective, vector, tolerance);
  });
}

int vq_find_root(vq_objective objective, void* context, double a, double b, double tolerance,
                 vq_root_result* result) noexcept {
  if (objective == nullptr || result == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    CopyRoot(FindBracketedRoot(context, objective, a, b, tolerance), *result);
    return VQ_OK;
  });
}

int vq_find_root_bracketed(vq_objective objective, void* context, double a, double b, double fa,
                           double fb, double tolerance, vq_root_result* result) noexcept {
  if (objective == nullptr || result == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    CopyRoot(FindBracketedRoot(context, objective, RootInterval{a, b, fa, fb}, tolerance),
             *result);
    return VQ_OK;
  });
}

}  // extern "C"
