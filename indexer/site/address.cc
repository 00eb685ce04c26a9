#include "indexer/site/address.h"

#include <algorithm>
#include <array>
#include <vector>

#include "indexer/report/index_error.h"
#include "indexer/words/clean_text.h"
#include "text/ascii.h"
#include "text/percent_code.h"

namespace vela::indexer {

namespace {

constexpr auto kPlainBytes = [] {
  std::array<bool, 256> plain{};
  for (int byte = 0; byte < 256; ++byte) {
    plain[static_cast<size_t>(byte)] = IsAlphaNumeric(static_cast<char>(byte));
  }
  for (const char c : std::string_view("-._~/@:,;=+$!*()"))
    plain[static_cast<unsigned char>(c)] = true;
  return plain;
}();

// What stands in an address as it is.
bool IsPlain(char c) { return kPlainBytes[static_cast<unsigned char>(c)]; }

struct AddressParts {
  std::string_view root;  // "https://host" or, for a rooted address, empty
  std::string_view path;  // from its "/" to before "?" or "#"
  std::string_view rest;  // "?..." without a fragment
};

AddressParts SplitAddress(std::string_view address) {
  AddressParts parts;
  address = address.substr(0, address.find('#'));
  const size_t question = std::min(address.find('?'), address.size());
  parts.rest = address.substr(question);
  address = address.substr(0, question);
  const size_t scheme = address.find("://");
  size_t pathBegin = 0;
  // Behind a "/" it is part of the path: "/to/https://x.example/".
  if (scheme != address.npos && address.find('/') == scheme + 1) {
    pathBegin = std::min(address.find('/', scheme + 3), address.size());
  }
  parts.root = address.substr(0, pathBegin);
  parts.path = address.substr(pathBegin);
  return parts;
}

// Takes "." and ".." steps out of an absolute path.
std::string RemoveDotSegments(std::string_view path) {
  std::vector<std::string_view> kept;
  bool endsInFolder = false;
  size_t begin = path.starts_with('/') ? 1 : 0;
  while (begin <= path.size()) {
    const size_t end = std::min(path.find('/', begin), path.size());
    const std::string_view step = path.substr(begin, end - begin);
    const bool last = end == path.size();
    if (step == "." || step == "..") {
      if (step == ".." && !kept.empty()) kept.pop_back();
      endsInFolder = last;
    } else if (last && step.empty()) {
      endsInFolder = true;
    } else {
      kept.push_back(step);
    }
    begin = end + 1;
  }
  std::string out;
  for (const std::string_view step : kept) {
    out += '/';
    out += step;
  }
  if (endsInFolder || out.empty()) out += '/';
  return out;
}

bool StartsWithNoCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() &&
         std::equal(start.begin(), start.end(), text.begin(),
                    [](char a, char b) { return ToLowerAscii(a) == ToLowerAscii(b); });
}

// Behind the scheme, in lower case up to the path: what two spellings of one address share.
std::string Comparable(std::string_view address) {
  const AddressParts parts = SplitAddress(address);
  std::string out(parts.root.substr(std::min(parts.root.find("://"), parts.root.size())));
  std::ranges::transform(out, out.begin(), ToLowerAscii);
  return out.append(parts.path).append(parts.rest);
}

}  // namespace

std::string CheckedBaseUrl(const std::string& base) {
  const bool http = StartsWithNoCase(base, "http://") || StartsWithNoCase(base, "https://");
  const size_t host = base.find("//") + 2;
  const bool rooted = base.starts_with('/') && !base.starts_with("//");
  if (!(http && base.size() > host && base[host] != '/') && !rooted) {
    throw IndexError(
        ExitStatus::kUsage,
        "base_url (--base-url) must begin with http:// or https:// and a host, or with \"/\" for "
        "addresses on the server that runs the search: \"" +
            base + "\" does not.");
  }
  std::string checked = base;
  for (const char c : base) {
    if (c == '?' || c == '#' || static_cast<unsigned char>(c) <= 0x20 || c == '"' || c == '<' ||
        c == '>' || c == '|') {
      throw IndexError(ExitStatus::kUsage,
                       "base_url (--base-url) may not hold blanks, quotes or any of ? # < > |: \"" +
                           base + "\". Give the address of the site's top folder.");
    }
  }
  if (!checked.ends_with('/')) checked += '/';
  return AsEncoded(checked);
}

std::string PageAddress(std::string_view base, std::string_view path) {
  std::string address(base);
  for (const char c : path) {
    if (IsPlain(c)) {
      address += c;
    } else {
      address += PercentCode(c).view();
    }
  }
  return address;
}

std::string AsEncoded(std::string_view address) {
  const size_t scheme = address.find("://");
  const bool hasHost = scheme != address.npos && address.find_first_of("/?#") == scheme + 1;
  std::string out(address.substr(0, hasHost ? address.find_first_of("/?#", scheme + 3) : 0));
  bool inPath = true;
  for (size_t i = out.size(); i < address.size(); ++i) {
    const size_t plain = i;
    while (i < address.size() && IsPlain(address[i])) ++i;
    out.append(address, plain, i - plain);
    if (i == address.size()) break;
    const char c = address[i];
    if (c == '?') inPath = false;
    const int code = ReadPercentCode(address.substr(i));
    if (code >= 0) {
      const char decoded = static_cast<char>(code);
      i += kPercentCodeLength - 1;
      // An escaped "/" or "*" divides and matches nothing; a query keeps its escapes.
      if (inPath && IsPlain(decoded) && decoded != '/' && decoded != '*') {
        out += decoded;
      } else {
        out += PercentCode(decoded).view();
      }
    } else if (c == '?' || c == '#' || (!inPath && c == '&')) {
      out += c;
    } else {
      out += PercentCode(c).view();
    }
  }
  return out;
}

std::string ResolveAddress(std::string_view page, std::string_view reference) {
  while (!reference.empty() && static_cast<unsigned char>(reference.front()) <= 0x20) {
    reference.remove_prefix(1);
  }
  while (!reference.empty() && static_cast<unsigned char>(reference.back()) <= 0x20) {
    reference.remove_suffix(1);
  }
  const AddressParts from = SplitAddress(page);
  if (StartsWithNoCase(reference, "http://") || StartsWithNoCase(reference, "https://")) {
    const AddressParts to = SplitAddress(reference);
    return std::string(to.root) + RemoveDotSegments(to.path) + std::string(to.rest);
  }
  const size_t colon = reference.find(':');
  if (colon < reference.find_first_of("/?#")) return {};  // another scheme
  if (reference.starts_with("//")) {
    if (from.root.empty()) return {};
    std::string absolute(from.root.substr(0, from.root.find("//")));
    absolute += reference;
    const AddressParts to = SplitAddress(absolute);
    return std::string(to.root) + RemoveDotSegments(to.path) + std::string(to.rest);
  }
  const AddressParts to = SplitAddress(reference);
  std::string path(from.path);
  std::string rest(to.rest);
  if (to.path.starts_with('/')) {
    path = to.path;
  } else if (!to.path.empty()) {
    path = path.substr(0, path.rfind('/') + 1) + std::string(to.path);
  } else if (rest.empty()) {
    rest = from.rest;
  }
  path = RemoveDotSegments(path);
  if (from.root.empty() && path.starts_with("//")) return {};  // would name another host
  return std::string(from.root) + path + rest;
}

bool IsBelow(std::string_view address, std::string_view base) {
  return Comparable(address).starts_with(Comparable(base));
}

std::string InSpellingOf(std::string_view base, std::string_view address) {
  std::string out(SplitAddress(base).root);
  return out.append(address.substr(SplitAddress(address).root.size()));
}

std::string StoredAddress(std::string_view address) {
  std::string out;
  for (const char c : address) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '&') {
      out += "&amp;";
    } else if (byte <= 0x20 || byte >= 0x7F || c == '|' || c == '"' || c == '\'' || c == '<' ||
               c == '>' || c == '\\' || c == '`') {
      out += PercentCode(c).view();
    } else {
      out += c;
    }
  }
  return out;
}

std::string PlainAddress(std::string_view stored) {
  constexpr std::string_view kAnd = "&amp;";
  std::string address(stored);
  for (size_t at = address.find(kAnd); at != address.npos; at = address.find(kAnd, at + 1)) {
    address.replace(at, kAnd.size(), "&");
  }
  return address;
}

std::string FolderOfIndexPage(const std::string& address) {
  const size_t name = address.rfind('/') + 1;
  const bool isIndexPage = std::string_view(address).substr(name).starts_with("index.");
  return isIndexPage ? address.substr(0, name) : std::string();
}

std::string SectionAddress(std::string_view page, std::string_view anchor) {
  return PageAddress(std::string(page) + "#", anchor);
}

std::string AddressText(std::string_view address, std::string_view base) {
  const std::string_view fullPath = SplitAddress(address).path;
  const std::string_view basePath = SplitAddress(base).path;
  std::string_view path = fullPath;
  if (path.starts_with(basePath)) path.remove_prefix(basePath.size());
  const size_t name = path.rfind('/') + 1;  // 0 when there is none
  const size_t dot = path.rfind('.');
  if (dot != path.npos && dot > name) path = path.substr(0, dot);
  std::string text;
  for (size_t i = 0; i < path.size(); ++i) {
    const int code = ReadPercentCode(path.substr(i));
    if (code >= 0) {
      text += static_cast<char>(code);
      i += kPercentCodeLength - 1;
    } else {
      text += path[i] == '/' ? ' ' : path[i];
    }
  }
  CleanText(text);
  return CollapseBlanks(text);
}

}  // namespace vela::indexer
