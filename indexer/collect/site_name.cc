#include "indexer/collect/site_name.h"

#include <algorithm>
#include <utility>

namespace vela::indexer {

namespace {

constexpr size_t kLeastPages = 5;
constexpr size_t kLeastPercent = 60;
constexpr size_t kNameLimit = 3;

// Between a page's own title and the name of its site.
constexpr std::string_view kSigns[] = {" | ",      " - ",  " \u2013 ", " \u2014 ",
                                       " \u00B7 ", " :: ", " \u00BB ", " \u2022 "};

// Where the last sign of the title begins and ends, or the first one; npos when there is none.
std::pair<size_t, size_t> SignOf(std::string_view title, bool isLast) {
  std::pair<size_t, size_t> found = {title.npos, title.npos};
  for (const std::string_view sign : kSigns) {
    const size_t at = isLast ? title.rfind(sign) : title.find(sign);
    if (at == title.npos) continue;
    if (found.first == title.npos || (isLast ? at > found.first : at < found.first)) {
      found = {at, at + sign.size()};
    }
  }
  return found;
}

// What may be the site's name: what stands behind the last sign, or before the first one.
std::string_view EdgeOf(std::string_view title, bool isLast) {
  const auto [begin, end] = SignOf(title, isLast);
  if (begin == title.npos) return {};
  return isLast ? title.substr(end) : title.substr(0, begin);
}

using Counts = std::map<std::string, size_t, std::less<>>;

Counts::const_iterator MostFrequent(const Counts& counts) {
  return std::ranges::max_element(counts, {}, [](const auto& each) { return each.second; });
}

}  // namespace

std::string WithoutSiteName(std::string_view title, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    for (const std::string_view sign : kSigns) {
      const size_t cut = sign.size() + name.size();
      if (title.size() <= cut) continue;
      const size_t rest = title.size() - cut;
      if (title.ends_with(name) && title.substr(rest, sign.size()) == sign) {
        title.remove_suffix(cut);
      } else if (title.starts_with(name) && title.substr(name.size(), sign.size()) == sign) {
        title.remove_prefix(cut);
      } else {
        continue;
      }
      break;
    }
  }
  return std::string(title);
}

std::vector<std::string> SiteTitles::Names() const {
  std::vector<std::string> names;
  std::vector<std::string> titles = titles_;
  while (names.size() < kNameLimit) {
    std::string name;
    for (const bool isLast : {true, false}) {
      Counts counts;
      for (const std::string& title : titles) {
        const std::string_view edge = EdgeOf(title, isLast);
        if (!edge.empty()) ++counts[std::string(edge)];
      }
      const auto most = MostFrequent(counts);
      if (most == counts.end()) break;
      // The page that is called as the site has it as well.
      const size_t pages =
          most->second + static_cast<size_t>(std::ranges::count(titles, most->first));
      if (most->second < kLeastPages || pages * 100 < titles.size() * kLeastPercent) continue;
      name = most->first;
      break;
    }
    if (name.empty()) break;
    for (std::string& title : titles) title = WithoutSiteName(title, {name});
    names.push_back(std::move(name));
  }
  return names;
}

std::string SiteTitles::SharedTitle() const {
  Counts counts;
  for (const std::string& title : titles_) ++counts[title];
  const auto most = MostFrequent(counts);
  if (most == counts.end() || most->second < kLeastPages || most->second * 2 <= titles_.size()) {
    return {};
  }
  return most->first;
}

}  // namespace vela::indexer
