#include "indexer/asked_page.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "indexer/open_source.h"
#include "indexer/site/address.h"
#include "text/percent_code.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

// "https://x.example/" of "https://x.example/a/", "/" of "/a/".
std::string HostOf(const std::string& base) {
  const size_t host = base.find("://");
  if (host == base.npos) return "/";
  return base.substr(0, base.find('/', host + 3) + 1);
}

std::string Decoded(std::string_view address) {
  std::string path;
  for (size_t i = 0; i < address.size(); ++i) {
    const int code = ReadPercentCode(address.substr(i));
    path += code < 0 ? address[i] : static_cast<char>(code);
    if (code >= 0) i += kPercentCodeLength - 1;
  }
  return path;
}

// The path of a file that exists in the folder of the site; empty for anything else.
std::string PathOfFile(const std::string& asked, const std::string& site) {
  std::error_code error;
  const fs::path folder = fs::canonical(site, error);
  if (error) return {};
  // Links in the folder stay: pages may be known by them.
  const fs::path file = fs::absolute(asked, error).lexically_normal();
  if (error || !fs::is_regular_file(fs::symlink_status(file, error))) return {};
  for (const fs::path& from : {folder, fs::absolute(site, error).lexically_normal()}) {
    const fs::path path = file.lexically_relative(from);
    if (!path.empty() && *path.begin() != "..") return path.string();
  }
  return {};
}

std::optional<SourceItem> ItemAt(const std::string& address, const SiteListing& listing) {
  for (const SourceItem& item : listing.items) {
    if (item.address == address) return item;
  }
  if (!address.ends_with('/')) return std::nullopt;
  for (const SourceItem& item : listing.items) {
    if (FolderOfIndexPage(item.address) == address) return item;
  }
  return std::nullopt;
}

// What the list itself says of something that is no item.
Finding WhyLeftOut(const std::string& path, const SiteListing& listing) {
  for (const LeftOut* all : {&listing.leftOut, &listing.otherKinds}) {
    for (const LeftOut::Entry& entry : all->entries) {
      if (entry.path == path) return {entry.reason, entry.where, {}};
    }
  }
  return {};
}

}  // namespace

AskedPage FindAskedPage(const std::string& asked, const Options& options, const std::string& base,
                        const Source& source, const SiteListing& listing) {
  AskedPage page;
  const bool isFolder = !options.site.empty();
  if (isFolder) page.path = PathOfFile(asked, options.site);
  if (page.path.empty() && isFolder && asked.find("://") == asked.npos && !asked.starts_with('/')) {
    page.path = asked;
  }
  std::string address = PageAddress(base, page.path);
  if (page.path.empty()) {
    address = asked.substr(0, asked.find('#'));
    if (address.find("://") == address.npos) {
      address = address.starts_with('/') ? HostOf(base) + address.substr(1) : base + address;
    }
    address = AsEncoded(address);
    if (IsBelow(address, base)) address = InSpellingOf(base, address);
    page.path = address;
    page.why = WhyUnwanted(isFolder ? CrawlRules() : options.crawlRules, base, address);
    if (page.why.reason == Reason::kNotOfSite) return page;
    if (isFolder) {
      address.resize(std::min(address.find('?'), address.size()));
      page.path = Decoded(std::string_view(address).substr(base.size()));
    }
  }
  if (std::optional<SourceItem> item = ItemAt(address, listing); item.has_value()) {
    page.path = item->path;
    page.item = std::move(item);
    return page;
  }
  const Finding leftOut = WhyLeftOut(page.path, listing);
  if (leftOut.reason != Reason::kNone) {
    page.why = leftOut;
  } else if (page.why.reason == Reason::kNone) {
    page.why = source.WhyNotListed(page.path);
  }
  return page;
}

}  // namespace vela::indexer
