#include "indexer/crawl/robots.h"

#include <algorithm>
#include <charconv>
#include <functional>

#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

// A longer pattern fits no address that is ever asked for; it only costs time to try.
constexpr size_t kPatternLimit = 4096;
constexpr size_t kRuleLimit = 10000;
constexpr size_t kSitemapLimit = 1000;
constexpr double kDelayLimit = 120;  // seconds; who asks for more does not want to be visited
constexpr std::string_view kRobotsPath = "/robots.txt";

// The rules of one group, or of all that speak to the same crawlers.
struct Group {
  bool isThere = false;
  std::vector<RobotsRule> rules;
  double delay = 0;
};

// "velabot" of "VelaBot/1.0".
std::string ProductToken(std::string_view agent) {
  const auto isOfToken = [](char c) { return IsAlpha(c) || c == '-' || c == '_'; };
  const auto* end = std::ranges::find_if_not(agent, isOfToken);
  return LowerAsciiCopy(agent.substr(0, static_cast<size_t>(end - agent.begin())));
}

void AddRule(std::string_view path, bool allows, Group& group) {
  if (path.empty() || path.size() > kPatternLimit || group.rules.size() == kRuleLimit) return;
  RobotsRule rule = {.pattern = {}, .allows = allows, .isAnchored = path.ends_with('$')};
  if (rule.isAnchored) path.remove_suffix(1);
  rule.pattern = AsEncoded(path);
  group.rules.push_back(std::move(rule));
}

void SetDelay(std::string_view text, Group& group) {
  double seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  (void)end;
  if (error != std::errc() || !(seconds >= 0)) return;
  group.delay = std::min(seconds, kDelayLimit);
}

// The line that begins `text`, which is taken off.
std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find_first_of("\r\n"), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

// Whether `text` begins with what fits the pattern; in it "*" is any run. The text of an address
// has no "*" of its own, as that is written in its code.
bool FitsRule(std::string_view text, const RobotsRule& rule) {
  const std::string_view pattern = rule.pattern;
  size_t at = 0;
  size_t in = 0;
  size_t star = pattern.npos;  // behind the last "*"
  size_t starAt = 0;           // what it has taken ends here
  while (true) {
    if (in == pattern.size() && (!rule.isAnchored || at == text.size())) return true;
    if (in < pattern.size() && pattern[in] == '*') {
      star = ++in;
      starAt = at;
    } else if (in < pattern.size() && at < text.size() && pattern[in] == text[at]) {
      ++in;
      ++at;
    } else if (star != pattern.npos && starAt < text.size()) {
      in = star;
      at = ++starAt;
    } else {
      return false;
    }
  }
}

}  // namespace

RobotsRules ParseRobots(std::string_view text) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  text = text.substr(0, kRobotsBytesLimit);
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  RobotsRules robots;
  Group own;
  Group all;
  bool isForOwn = false;
  bool isForAll = false;
  bool isHead = false;  // the lines before were those that name crawlers
  while (!text.empty()) {
    std::string_view line = TakeLine(text);
    line = line.substr(0, line.find('#'));
    const size_t colon = line.find(':');
    if (colon == line.npos) continue;
    const std::string key = LowerAsciiCopy(TrimAll(line.substr(0, colon)));
    const std::string_view value = TrimAll(line.substr(colon + 1));
    if (key == "sitemap") {
      if (robots.sitemaps.size() < kSitemapLimit) robots.sitemaps.emplace_back(value);
    } else if (key == "user-agent") {
      if (!isHead) isForOwn = isForAll = false;
      isHead = true;
      if (value == "*") isForAll = true;
      if (ProductToken(value) == kCrawlerName) isForOwn = true;
      own.isThere = own.isThere || isForOwn;
    } else if (key == "allow" || key == "disallow" || key == "crawl-delay") {
      isHead = false;
      for (Group* group : {isForOwn ? &own : nullptr, isForAll ? &all : nullptr}) {
        if (group == nullptr) continue;
        if (key == "crawl-delay") {
          SetDelay(value, *group);
        } else {
          AddRule(value, key == "allow", *group);
        }
      }
    }
  }
  Group& chosen = own.isThere ? own : all;
  robots.rules = std::move(chosen.rules);
  robots.delay = chosen.delay;
  std::ranges::stable_sort(robots.rules, std::greater(), [](const RobotsRule& rule) {
    return std::pair(rule.pattern.size() + (rule.isAnchored ? 1 : 0), rule.allows);
  });
  return robots;
}

bool Allows(const RobotsRules& robots, std::string_view pathAndQuery) {
  if (pathAndQuery == kRobotsPath) return true;
  if (robots.refusesAll) return false;
  if (robots.rules.empty()) return true;
  std::string text;
  for (const char c : pathAndQuery) {
    if (c == '*') {
      text += "%2A";
    } else {
      text += c;
    }
  }
  for (const RobotsRule& rule : robots.rules) {
    if (FitsRule(text, rule)) return rule.allows;
  }
  return true;
}

PageRobots ReadRobotsTag(std::string_view fields) {
  // Words that have a value behind a colon of their own.
  constexpr std::string_view kWithValue[] = {"unavailable_after", "max-snippet",
                                             "max-image-preview", "max-video-preview"};
  PageRobots robots;
  while (!fields.empty()) {
    std::string_view line = TakeLine(fields);
    bool isMeant = true;
    while (!line.empty()) {
      const size_t end = std::min(line.find(','), line.size());
      std::string word = LowerAsciiCopy(TrimAll(line.substr(0, end)));
      line.remove_prefix(std::min(end + 1, line.size()));
      const size_t colon = word.find(':');
      if (colon != word.npos) {
        const std::string name(TrimAll(std::string_view(word).substr(0, colon)));
        if (std::ranges::find(kWithValue, name) != std::end(kWithValue)) continue;
        isMeant = name == kCrawlerName;
        word = TrimAll(std::string_view(word).substr(colon + 1));
      }
      if (!isMeant) continue;
      if (word == "noindex" || word == "none") robots.noIndex = true;
      if (word == "nofollow" || word == "none") robots.noFollow = true;
    }
  }
  return robots;
}

}  // namespace vela::indexer
