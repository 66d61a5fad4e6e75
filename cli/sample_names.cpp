#include "sample_names.h"

#include <algorithm>

namespace velquor::cli {

namespace {

char Fold(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualIgnoringCase(const std::string& a, const std::string& b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Fold(x) == Fold(y); });
}

// Levenshtein distance with ASCII case folded.
std::size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      const std::size_t substitute = diagonal + (Fold(a[i - 1]) == Fold(b[j - 1]) ? 0 : 1);
      row[j] = std::min({above + 1, row[j - 1] + 1, substitute});
      diagonal = above;
    }
  }
  return row[b.size()];
}

constexpr std::size_t kListedNames = 20;

std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < kListedNames; ++i) {
    text += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > kListedNames) {
    text += " and " + std::to_string(names.size() - kListedNames) + " more";
  }
  return text;
}

}  // namespace

std::size_t FindSampleName(const std::vector<std::string>& names, const std::string& name) {
  const auto exact = std::find(names.begin(), names.end(), name);
  if (exact != names.end()) return static_cast<std::size_t>(exact - names.begin());
  std::size_t found = kNoSample;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!EqualIgnoringCase(names[i], name)) continue;
    if (found != kNoSample) return kNoSample;  // ambiguous
    found = i;
  }
  return found;
}

std::string MissingNameHelp(const std::vector<std::string>& names, const std::string& name) {
  std::vector<std::string> folded;
  for (const std::string& candidate : names) {
    if (EqualIgnoringCase(candidate, name)) folded.push_back(candidate);
  }
  if (folded.size() > 1) return ". Several samples match ignoring case: " + Listed(folded);
  std::string help;
  const std::size_t limit = std::max<std::size_t>(2, name.size() / 3);
  std::size_t best = limit + 1;
  const std::string* closest = nullptr;
  for (const std::string& candidate : names) {
    const std::size_t distance = EditDistance(candidate, name);
    if (distance < best) {
      best = distance;
      closest = &candidate;
    }
  }
  if (closest != nullptr) help += ". Did you mean '" + *closest + "'?";
  help += closest != nullptr ? " " : ". ";
  return help + (names.empty() ? "The file has no samples" : "The samples are: " + Listed(names));
}

}  // namespace velquor::cli
