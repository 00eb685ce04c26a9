#include "indexer/open_source.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <iterator>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "indexer/config/owner_file.h"
#include "indexer/crawl/crawler.h"
#include "indexer/crawl/password_file.h"
#include "indexer/crawl/robots.h"
#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/site/address_pattern.h"
#include "indexer/source/folder_source.h"
#include "indexer/source/page_store.h"
#include "indexer/source/store_source.h"
#include "indexer/source/warc_reader.h"
#include "text/edit.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kMegabyte = uint64_t{1} << 20;
constexpr size_t kListBytesLimit = size_t{64} << 20;
constexpr char kCrawlStoreName[] = "vela_crawl.db";
constexpr char kArchiveStoreName[] = "vela_archive.db";

// What every way of opening needs.
struct Opening {
  const Options& options;
  const std::string& base;
  const fs::path& indexFolder;
  Progress& progress;
  const volatile std::sig_atomic_t& stop;

  uint64_t pageLimit() const { return options.maxFileMegabytes * kMegabyte; }
};

// True when `inner` is `outer` or lies in it; both absolute and resolved. Nothing lies in an empty
// path.
bool IsWithin(const fs::path& inner, const fs::path& outer) {
  return !outer.empty() && std::ranges::mismatch(outer, inner).in1 == outer.end();
}

fs::path ResolvedSite(const std::string& site) {
  std::error_code error;
  fs::path resolved = fs::canonical(site, error);
  if (error || !fs::is_directory(resolved)) {
    throw IndexError(ExitStatus::kFailed, "Cannot read the site folder " + site + ": " +
                                              (error ? error.message() : "it is no folder") +
                                              ". Check --site.");
  }
  return resolved;
}

// The lines of the list, without blanks at their ends and without empty ones.
std::vector<std::string> ReadList(const std::string& file) {
  std::string text;
  if (file == "-") {
    std::vector<char> piece(size_t{1} << 16);
    while (std::cin && text.size() <= kListBytesLimit) {
      std::cin.read(piece.data(), static_cast<std::streamsize>(piece.size()));
      text.append(piece.data(), static_cast<size_t>(std::cin.gcount()));
    }
  } else {
    text = ReadOwnersFile(file, "--list");
  }
  if (text.size() > kListBytesLimit) {
    throw IndexError(ExitStatus::kFailed, "The list (--list) is longer than " +
                                              std::to_string(kListBytesLimit / kMegabyte) + " MB.");
  }
  std::vector<std::string> lines;
  std::string_view rest = text;
  while (!rest.empty()) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    const std::string_view line = TrimAll(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!line.empty()) lines.emplace_back(line);
  }
  return lines;
}

OpenedSource OpenFolder(const Opening& opening, std::optional<std::vector<std::string>> only) {
  const Options& options = opening.options;
  const fs::path site = ResolvedSite(options.site);
  if (IsWithin(site, opening.indexFolder)) {
    throw IndexError(ExitStatus::kUsage,
                     "--out is replaced as a whole and must not hold the site "
                     "itself. Give a folder of its own for the index.");
  }
  OpenedSource opened;
  opened.base = opening.base;
  if (!options.state.empty()) {
    opened.state = OpenStateFolder(options.state, opening.indexFolder);
    if (IsWithin(opened.state.path, site)) {
      throw IndexError(ExitStatus::kUsage,
                       "--state must not lie in the site's folder, which is open to visitors.");
    }
  }
  opened.source = std::make_unique<FolderSource>(SiteFolder{.folder = site,
                                                            .base = opening.base,
                                                            .excluded = options.exclude,
                                                            .excludedFolder = opening.indexFolder,
                                                            .endings = options.config.endings,
                                                            .fileLimit = opening.pageLimit(),
                                                            .followLinks = options.followLinks,
                                                            .only = std::move(only)});
  return opened;
}

// Where a crawl begins, and whether it goes on from there.
struct CrawlStart {
  std::vector<std::string> pages;
  std::vector<std::string> sitemaps;
  bool followsLinks = true;
};

CrawlPlan PlanOf(const Opening& opening, CrawlStart start) {
  const Options& options = opening.options;
  const CrawlRules& rules = options.crawlRules;
  std::vector<std::string> first = start.pages;
  first.insert(first.end(), start.sitemaps.begin(), start.sitemaps.end());
  const auto milliseconds = [](double seconds) {
    return std::chrono::milliseconds(std::llround(seconds * 1000));
  };
  std::string agent(kCrawlerName);
  agent += "/" VELA_VERSION " (vela_index";
  if (!rules.contact.empty()) agent += "; +" + rules.contact;
  CrawlPlan plan = {
      .scope = CrawlScope({.base = opening.base,
                           .start = first,
                           .hosts = rules.hosts,
                           .include = rules.include,
                           .exclude = rules.exclude,
                           .endings = options.config.endings}),
      .pages = std::move(start.pages),
      .sitemaps = {},
      .followsLinks = start.followsLinks,
      .findsSitemaps = start.followsLinks && rules.usesSitemaps,
      .endings = options.config.endings,
      .depthLimit = rules.depth,
      .pagesLimit = rules.pages,
      .bytesLimit = rules.megabytes * kMegabyte,
      .pageBytesLimit = opening.pageLimit(),
      .timeLimit = milliseconds(rules.minutes * 60),
      .delay = milliseconds(rules.delay),
      .connections = rules.connections,
      .retries = rules.retries,
      .passwords = rules.authFile.empty() ? Passwords() : ReadPasswordFile(rules.authFile),
      .fetch = {.timeout = std::chrono::seconds(rules.timeout),
                .agent = agent + ")",
                .caFile = rules.caFile}};
  // In the form in which the store has them; the scope has refused what is no address.
  for (const std::string& sitemap : start.sitemaps) {
    plan.sitemaps.push_back(ReadWebAddress(sitemap)->address);
  }
  return plan;
}

// The site's address with the scheme that its pages have: a server may send all who ask by http on
// to https.
std::string BaseOf(const std::string& base, PageStore& store) {
  constexpr std::string_view kHttp = "http://";
  constexpr std::string_view kHttps = "https://";
  const bool isPlain = base.starts_with(kHttp);
  if (!isPlain && !base.starts_with(kHttps)) return base;
  std::string other(isPlain ? kHttps : kHttp);
  other += base.substr((isPlain ? kHttp : kHttps).size());
  bool hasOther = false;
  for (const StoredPage& page : store.List()) {
    if (page.reason != Reason::kNone) continue;
    if (page.address.starts_with(base)) return base;
    hasOther = hasOther || page.address.starts_with(other);
  }
  return hasOther ? other : base;
}

OpenedSource OpenCrawl(const Opening& opening, CrawlStart start) {
  OpenedSource opened;
  const std::string first = start.pages.empty() ? start.sitemaps[0] : start.pages[0];
  const CrawlPlan plan = PlanOf(opening, std::move(start));
  opened.state = OpenStateFolder(opening.options.state, opening.indexFolder);
  const fs::path file = opened.state.path / kCrawlStoreName;
  auto store = std::make_unique<PageStore>(file);
  opened.findings = Crawl(plan, *store, opening.progress, opening.stop);
  opened.base = BaseOf(opening.base, *store);
  std::string sought = "on the web from " + first + " on.";
  for (const Finding& finding : opened.findings) sought += "\n  " + FindingText(finding);
  opened.source =
      std::make_unique<StoreSource>(std::move(store), file,
                                    StoreSource::Wishes{.endings = opening.options.config.endings,
                                                        .pageLimit = opening.pageLimit(),
                                                        .sought = std::move(sought)});
  return opened;
}

// Brings the pages of the archives into a store, of each address the one that was fetched last.
OpenedSource OpenArchives(const Opening& opening, OpenedSource opened) {
  if (opening.base.starts_with('/')) {
    throw IndexError(ExitStatus::kUsage,
                     "--warc needs the whole address of the site, as the archive has it: "
                     "--base-url https://www.example.org/.");
  }
  opened.base = opening.base;
  const fs::path file =
      (opened.passing.path().empty() ? opened.state.path : opened.passing.path()) /
      kArchiveStoreName;
  RemoveDatabase(file);
  auto store = std::make_unique<PageStore>(file);
  store->BeginPass("");
  struct Known {
    int64_t id = 0;
    std::string date;
  };
  std::unordered_map<std::string, Known> known;
  opening.progress.Begin("Reading archives", 0);
  uint64_t count = 0;
  for (const std::string& path : opening.options.warc) {
    WarcReader archive(OpenArchive(path), opening.pageLimit());
    ArchivedPage page;
    while (opening.stop == 0 && archive.Next(page)) {
      const std::optional<WebAddress> read = ReadWebAddress(page.address);
      if (!read.has_value() ||
          WhyUnwanted(opening.options.crawlRules, opening.base, read->address).reason !=
              Reason::kNone) {
        continue;
      }
      const std::string address = InSpellingOf(opening.base, read->address);
      const auto [place, isNew] = known.try_emplace(address);
      if (isNew) {
        place->second.id = store->AddFound({.address = address, .origin = read->origin})->id;
      } else if (page.date < place->second.date) {
        continue;
      }
      place->second.date = page.date;
      if (ReadRobotsTag(page.robotsTag).noIndex) {
        store->SettleLeftOut(place->second.id, Reason::kNoindex, page.answer.mediaType);
      } else {
        store->SettlePage(place->second.id, page.answer);
      }
      opening.progress.Step(++count);
    }
    if (archive.isDamaged()) opened.findings.push_back({Reason::kArchiveDamaged, {}, path});
  }
  store->Commit();
  opened.source = std::make_unique<StoreSource>(
      std::move(store), file,
      StoreSource::Wishes{.endings = opening.options.config.endings,
                          .pageLimit = opening.pageLimit(),
                          .sought = "below " + opening.base + " in the archives (--warc).",
                          .isTemporary = true});
  return opened;
}

// The store of the last crawl, as it is.
OpenedSource OpenLastCrawl(const Opening& opening) {
  const std::string& state = opening.options.state;
  if (state.empty() && opening.indexFolder.empty()) {
    throw IndexError(ExitStatus::kUsage,
                     "What was fetched lies in the folder of --state, or else beside the index: "
                     "give --state DIR or --out INDEXDIR.");
  }
  const fs::path folder = state.empty() ? DefaultStateFolder(opening.indexFolder) : fs::path(state);
  const fs::path file = folder / kCrawlStoreName;
  std::error_code error;
  if (!fs::exists(file, error)) {
    throw IndexError(ExitStatus::kFailed, "No page of the site has been fetched yet: there is no " +
                                              file.string() +
                                              ". Run vela_index once without "
                                              "--explain-page.");
  }
  OpenedSource opened;
  auto store = std::make_unique<PageStore>(file, StoreUse::kRead);
  opened.base = BaseOf(opening.base, *store);
  opened.source =
      std::make_unique<StoreSource>(std::move(store), file,
                                    StoreSource::Wishes{.endings = opening.options.config.endings,
                                                        .pageLimit = opening.pageLimit()});
  return opened;
}

}  // namespace

Finding WhyUnwanted(const CrawlRules& rules, const std::string& base, const std::string& address) {
  if (!IsBelow(address, base)) return {Reason::kNotOfSite, {}, base};
  for (const std::string& pattern : rules.exclude) {
    if (FitsAddressPattern(address, base, pattern)) return {Reason::kExcluded, {}, pattern};
  }
  const bool isIncluded =
      rules.include.empty() || std::ranges::any_of(rules.include, [&](const std::string& pattern) {
        return FitsAddressPattern(address, base, pattern);
      });
  return {isIncluded ? Reason::kNone : Reason::kNotIncluded, {}, {}};
}

OpenedSource OpenKeptSource(const Options& options, const std::string& base,
                            const fs::path& indexFolder, Progress& progress,
                            const volatile std::sig_atomic_t& stop) {
  Options looking = options;
  if (!options.site.empty()) looking.state.clear();  // nothing is kept of the pages
  const Opening opening = {.options = looking,
                           .base = base,
                           .indexFolder = indexFolder,
                           .progress = progress,
                           .stop = stop};
  if (!options.warc.empty()) {
    OpenedSource opened;
    opened.passing = PassingFolder::Make();
    return OpenArchives(opening, std::move(opened));
  }
  const bool lists = !options.list.empty();
  if (options.site.empty()) return OpenLastCrawl(opening);
  std::optional<std::vector<std::string>> only;
  if (lists) only = ReadList(options.list);
  return OpenFolder(opening, std::move(only));
}

OpenedSource OpenSource(const Options& options, const std::string& base,
                        const fs::path& indexFolder, Progress& progress,
                        const volatile std::sig_atomic_t& stop) {
  const Opening opening = {.options = options,
                           .base = base,
                           .indexFolder = indexFolder,
                           .progress = progress,
                           .stop = stop};
  if (!options.warc.empty()) {
    OpenedSource opened;
    opened.state = OpenStateFolder(options.state, indexFolder);
    return OpenArchives(opening, std::move(opened));
  }
  if (!options.crawl.empty() || !options.sitemaps.empty()) {
    return OpenCrawl(opening, {.pages = options.crawl,
                               .sitemaps = options.sitemaps,
                               .followsLinks = !options.crawl.empty()});
  }
  if (options.list.empty()) return OpenFolder(opening, {});
  std::vector<std::string> lines = ReadList(options.list);
  if (!options.site.empty()) return OpenFolder(opening, std::move(lines));
  if (lines.empty()) throw IndexError(ExitStatus::kNothing, "The list (--list) is empty.");
  return OpenCrawl(opening, {.pages = std::move(lines), .sitemaps = {}, .followsLinks = false});
}

SiteSource OpenSite(const Options& options, const std::string& base, const fs::path& indexFolder,
                    Progress& progress, const volatile std::sig_atomic_t& stop) {
  SiteSource site;
  if (options.merge.empty()) {
    site.opened = OpenSource(options, base, indexFolder, progress, stop);
    return site;
  }
  auto parts = std::make_unique<MergedParts>(options.merge);
  site.parts = parts.get();
  site.opened.source = std::move(parts);
  site.opened.base = base;
  return site;
}

}  // namespace vela::indexer
