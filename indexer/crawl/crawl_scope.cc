#include "indexer/crawl/crawl_scope.h"

#include <algorithm>
#include <iterator>

#include "indexer/report/index_error.h"
#include "indexer/site/address_pattern.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

// Endings of names behind which no page is: not worth the request.
constexpr std::string_view kNoPages[] = {
    "7z",   "apk",  "avi", "avif", "bin",   "bmp", "bz2",  "css", "deb",  "dmg",  "eot",  "exe",
    "flac", "gif",  "gz",  "ico",  "iso",   "jar", "jpeg", "jpg", "js",   "json", "m4a",  "m4v",
    "map",  "mjs",  "mkv", "mov",  "mp3",   "mp4", "mpeg", "mpg", "msi",  "ogg",  "ogv",  "otf",
    "png",  "rar",  "rpm", "svg",  "svgz",  "tar", "tgz",  "tif", "tiff", "ttf",  "wasm", "wav",
    "webm", "webp", "wmv", "woff", "woff2", "xz",  "zip",  "zst",
};

// "gz" of "/a/b.tar.gz?x"; empty for a name without an ending.
std::string EndingOf(std::string_view path) {
  path = path.substr(0, path.find('?'));
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const size_t dot = name.rfind('.');
  return dot == name.npos ? std::string() : LowerAsciiCopy(name.substr(dot + 1));
}

bool FitsOne(std::string_view address, const std::string& base,
             const std::vector<std::string>& patterns) {
  return std::ranges::any_of(patterns, [&](const std::string& pattern) {
    return FitsAddressPattern(address, base, pattern);
  });
}

}  // namespace

CrawlScope::CrawlScope(Rules rules) : rules_(std::move(rules)) {
  for (const std::string& start : rules_.start) {
    const auto address = ReadWebAddress(start);
    if (!address.has_value()) {
      throw IndexError(ExitStatus::kUsage,
                       "A crawl begins at addresses with http:// or https:// and a host, without a "
                       "user's name: \"" +
                           start + "\" is none.");
    }
    named_.push_back(address->authority);
  }
  for (const std::string& host : rules_.hosts) {
    const bool isPattern = host.starts_with("*.");
    const std::string authority = ReadAuthority(isPattern ? host.substr(2) : host);
    if (authority.empty()) {
      throw IndexError(ExitStatus::kUsage,
                       "hosts in [crawl] holds names such as \"www.example.org\", "
                       "\"example.org:8080\" and \"*.example.org\": \"" +
                           host + "\" is none.");
    }
    if (isPattern) {
      patterns_.push_back("." + authority);
    } else {
      named_.push_back(authority);
    }
  }
}

bool CrawlScope::IsNamed(std::string_view authority) const {
  return std::ranges::find(named_, authority) != named_.end();
}

bool CrawlScope::HoldsServer(const WebAddress& address) const {
  return IsNamed(address.authority) ||
         std::ranges::any_of(patterns_, [&](const std::string& pattern) {
           return address.authority.ends_with(pattern);
         });
}

bool CrawlScope::Holds(const WebAddress& address) const {
  if (!HoldsServer(address)) return false;
  if (!rules_.include.empty() && !FitsOne(address.address, rules_.base, rules_.include)) {
    return false;
  }
  if (FitsOne(address.address, rules_.base, rules_.exclude)) return false;
  const std::string ending = EndingOf(address.path);
  const bool isPage = std::ranges::any_of(rules_.endings, [&](const auto& ofType) {
    return std::ranges::find(ofType, ending) != ofType.end();
  });
  return isPage || std::ranges::find(kNoPages, ending) == std::end(kNoPages);
}

std::string CrawlScope::Text() const {
  std::string text;
  const auto add = [&text](std::string_view what, const std::vector<std::string>& values) {
    for (const std::string& value : values) text.append(what).append(" ").append(value) += '\n';
  };
  add("start", rules_.start);
  add("host", rules_.hosts);
  add("include", rules_.include);
  add("exclude", rules_.exclude);
  return text;
}

}  // namespace vela::indexer
