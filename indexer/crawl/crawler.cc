#include "indexer/crawl/crawler.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <ctime>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "indexer/crawl/page_links.h"
#include "indexer/crawl/robots.h"
#include "indexer/crawl/sitemap.h"
#include "indexer/crawl/web_address.h"
#include "indexer/extract/decoding.h"
#include "indexer/report/index_error.h"
#include "indexer/source/media_type.h"
#include "text/ascii.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t kHopLimit = 5;
constexpr uint32_t kSitemapNestingLimit = 3;
constexpr size_t kTransferLimit = 16;    // at once, to all servers together
constexpr int kServerFaultLimit = 20;    // in a row, before a server is given up
constexpr uint64_t kFoundPerAsked = 20;  // addresses kept in mind for each that may be asked for
constexpr std::chrono::seconds kFirstBackoff(1);
constexpr std::chrono::seconds kLongestBackoff(60);
constexpr std::chrono::seconds kLongestWait(600);  // that a server may ask for
constexpr std::chrono::milliseconds kPatience(20);
constexpr std::chrono::seconds kCommitInterval(1);

// An address to ask for, and how often that went wrong.
struct Job {
  WaitingAddress waiting;
  uint64_t attempts = 0;
};

using Place = std::tuple<uint32_t, std::string, StoredKind>;  // depth, address, kind

struct Server {
  enum class Rules : uint8_t { kUnknown, kAsked, kKnown };
  enum class Network : uint8_t { kUnknown, kPublic, kPrivate };

  std::string authority;
  Rules rulesState = Rules::kUnknown;
  RobotsRules robots;
  std::string robotsAddress;
  uint32_t robotsHops = 0;
  uint64_t robotsAttempts = 0;
  // Why nothing of it can be had; kNone while it can.
  Reason fault = Reason::kNone;
  // A name that the owner gave for a public server must not lead into a private network later.
  Network network = Network::kUnknown;
  int faults = 0;  // in a row
  uint64_t underWay = 0;
  Clock::time_point next;  // no request before that
  std::map<Place, Job> queue;
  std::multimap<Clock::time_point, Job> retries;
};

// What may be gone the next time.
bool IsPassing(const FetchAnswer& answer) {
  constexpr long kTooManyRequests = 429;
  if (answer.reason != Reason::kNone) return answer.reason == Reason::kNoAnswer;
  return answer.status == kTooManyRequests || answer.status == 408 || answer.status >= 500;
}

Reason ReasonOfStatus(long status) {
  switch (status) {
    case 404:
    case 410:
      return Reason::kPageGone;
    case 401:
    case 403:
    case 407:
    case 451:
      return Reason::kAccessRefused;
    default:
      return Reason::kServerError;
  }
}

bool IsRedirect(long status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

// A field to send back as it came; empty when it holds what no field may.
std::string Sendable(const std::string& field) {
  return std::ranges::any_of(field, IsControl) ? std::string() : field;
}

// How long the server asks to wait: seconds, or a date.
std::chrono::seconds RetryAfter(const std::string& field) {
  int64_t seconds = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), seconds);
  if (error != std::errc() || end != field.data() + field.size()) {
    const time_t date = curl_getdate(field.c_str(), nullptr);
    seconds = date < 0 ? 0 : int64_t{date} - int64_t{std::time(nullptr)};
  }
  return std::clamp(std::chrono::seconds(seconds), std::chrono::seconds(0), kLongestWait);
}

std::chrono::seconds Backoff(uint64_t attempts) {
  std::chrono::seconds wait = kFirstBackoff;
  for (uint64_t i = 1; i < attempts && wait < kLongestBackoff; ++i) wait *= 2;
  return std::min(wait, kLongestBackoff);
}

class Crawler {
 public:
  Crawler(const CrawlPlan& plan, PageStore& store, Progress& progress,
          const volatile std::sig_atomic_t& stop)
      : plan_(plan), store_(store), progress_(progress), stop_(stop), fetcher_(plan.fetch) {}

  std::vector<Finding> Run();

 private:
  void Seed();
  void Enqueue(WaitingAddress waiting);
  void Find(const std::optional<WebAddress>& address, FoundAddress found);
  bool IsOver();
  void StartAll();
  bool StartNext(Server& server, uint32_t level);
  void StartRobots(Server& server, const std::string& origin);
  void Start(Server& server, Job job);
  void Take(FetchAnswer answer);
  void TakeRobots(Server& server, const FetchAnswer& answer);
  void TakePage(Server& server, Job job, FetchAnswer answer);
  void TakeRedirect(const Job& job, const FetchAnswer& answer);
  void TakeContent(const Job& job, FetchAnswer answer);
  void TakeUnchanged(Server& server, Job job);
  void Follow(const WaitingAddress& from, const PageAnswer& answer);
  void FollowSitemap(const WaitingAddress& from, const std::string& bytes);
  void GiveUp(const Job& job, Reason reason);
  void GiveUpServer(Server& server, Reason reason);
  void Reach(const char* limit) { reached_.insert(limit); }
  uint32_t Level() const;

  const CrawlPlan& plan_;
  PageStore& store_;
  Progress& progress_;
  const volatile std::sig_atomic_t& stop_;
  Fetcher fetcher_;

  std::map<std::string, Server> servers_;  // by WebAddress::origin
  std::unordered_map<int64_t, Job> underWay_;
  std::unordered_map<int64_t, Server*> robotsUnderWay_;  // by an id below 0
  int64_t lastRobots_ = 0;
  uint64_t waiting_ = 0;  // in queues and among retries
  uint64_t asked_ = 0;
  uint64_t bytes_ = 0;
  bool isCut_ = false;  // nothing further is asked for
  Clock::time_point begun_;
  std::set<std::string> reached_;  // keys of limits
  std::vector<Finding> findings_;
};

void Crawler::Find(const std::optional<WebAddress>& address, FoundAddress found) {
  if (!address.has_value()) return;
  if (waiting_ > kFoundPerAsked * plan_.pagesLimit) {
    Reach("pages");
    return;
  }
  found.address = address->address;
  found.origin = address->origin;
  std::optional<WaitingAddress> waiting = store_.AddFound(found);
  if (waiting.has_value()) Enqueue(std::move(*waiting));
}

void Crawler::Enqueue(WaitingAddress waiting) {
  Server& server = servers_[waiting.found.origin];
  if (server.authority.empty()) {
    server.authority = waiting.found.origin.substr(waiting.found.origin.find("://") + 3);
  }
  Place place(waiting.found.depth, waiting.found.address, waiting.found.kind);
  server.queue.insert_or_assign(std::move(place), Job{.waiting = std::move(waiting)});
  ++waiting_;
}

void Crawler::Seed() {
  std::string rules = plan_.scope.Text();
  for (const std::string& page : plan_.pages) rules += "page " + page + '\n';
  for (const std::string& sitemap : plan_.sitemaps) rules += "sitemap " + sitemap + '\n';
  store_.BeginPass(rules + (plan_.followsLinks ? "links" : "no links"));
  asked_ = store_.settledCount();
  for (WaitingAddress& waiting : store_.Waiting()) Enqueue(std::move(waiting));
  for (const std::string& page : plan_.pages) {
    const std::optional<WebAddress> address = ReadWebAddress(page);
    if (!address.has_value() || !plan_.scope.HoldsServer(*address)) continue;
    Find(address, {});
    if (!plan_.findsSitemaps) continue;
    Find(ReadWebAddress(address->origin + "/sitemap.xml"),
         {.address = {}, .origin = {}, .kind = StoredKind::kSitemap});
  }
  for (const std::string& sitemap : plan_.sitemaps) {
    Find(ReadWebAddress(sitemap), {.address = {}, .origin = {}, .kind = StoredKind::kSitemap});
  }
}

// The least depth of what waits for the first time, or is under way so.
uint32_t Crawler::Level() const {
  uint32_t level = UINT32_MAX;
  for (const auto& [origin, server] : servers_) {
    if (!server.queue.empty()) level = std::min(level, std::get<0>(server.queue.begin()->first));
  }
  for (const auto& [id, job] : underWay_) {
    if (job.attempts == 0) level = std::min(level, job.waiting.found.depth);
  }
  return level;
}

void Crawler::StartRobots(Server& server, const std::string& origin) {
  if (server.robotsAddress.empty()) server.robotsAddress = origin + "/robots.txt";
  server.rulesState = Server::Rules::kAsked;
  const int64_t id = --lastRobots_;
  robotsUnderWay_[id] = &server;
  const std::optional<WebAddress> address = ReadWebAddress(server.robotsAddress);
  const std::string& authority = address.has_value() ? address->authority : server.authority;
  const auto password = plan_.passwords.find(authority);
  ++server.underWay;
  fetcher_.Start({.id = id,
                  .address = server.robotsAddress,
                  .userAndPassword = password == plan_.passwords.end() ? "" : password->second,
                  .etag = {},
                  .lastModified = {},
                  .limit = kRobotsBytesLimit,
                  .cutsLong = true,
                  .allowsPrivate = plan_.scope.IsNamed(authority) &&
                                   server.network != Server::Network::kPublic});
}

void Crawler::Start(Server& server, Job job) {
  const int64_t id = job.waiting.id;
  const auto password = plan_.passwords.find(server.authority);
  if (job.attempts == 0) ++asked_;
  ++server.underWay;
  const uint64_t limit = job.waiting.found.kind == StoredKind::kSitemap
                             ? std::max<uint64_t>(kSitemapBytesLimit, plan_.pageBytesLimit)
                             : plan_.pageBytesLimit;
  fetcher_.Start({.id = id,
                  .address = job.waiting.found.address,
                  .userAndPassword = password == plan_.passwords.end() ? "" : password->second,
                  .etag = Sendable(job.waiting.etag),
                  .lastModified = Sendable(job.waiting.lastModified),
                  .limit = limit,
                  .allowsPrivate = plan_.scope.IsNamed(server.authority) &&
                                   server.network != Server::Network::kPublic});
  underWay_.emplace(id, std::move(job));
}

// Starts what the server may be asked for now, if there is something. Whether there was.
bool Crawler::StartNext(Server& server, uint32_t level) {
  const Clock::time_point now = Clock::now();
  if (now < server.next || (server.queue.empty() && server.retries.empty())) return false;
  const bool isRetry = !server.retries.empty() && server.retries.begin()->first <= now;
  if (!isRetry && (server.queue.empty() || std::get<0>(server.queue.begin()->first) > level))
    return false;
  const double delay = server.robots.delay;
  const uint64_t most = delay > 0 ? 1 : plan_.connections;
  if (server.underWay >= most || server.rulesState == Server::Rules::kAsked) return false;
  const auto asked =
      std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(delay));
  if (server.rulesState == Server::Rules::kUnknown) {
    const Job& first = isRetry ? server.retries.begin()->second : server.queue.begin()->second;
    StartRobots(server, first.waiting.found.origin);
    server.next = now + plan_.delay;
    return true;
  }
  Job job;
  if (isRetry) {
    job = std::move(server.retries.begin()->second);
    server.retries.erase(server.retries.begin());
  } else {
    job = std::move(server.queue.begin()->second);
    server.queue.erase(server.queue.begin());
  }
  --waiting_;
  if (server.fault != Reason::kNone) {
    GiveUp(job, server.fault);
    return true;
  }
  const FoundAddress& found = job.waiting.found;
  if (found.kind == StoredKind::kPage &&
      !Allows(server.robots, std::string_view(found.address).substr(found.origin.size()))) {
    store_.SettleLeftOut(job.waiting.id, Reason::kRobotsRefused);
    return true;
  }
  Start(server, std::move(job));
  server.next = now + std::max<Clock::duration>(plan_.delay, asked);
  return true;
}

void Crawler::StartAll() {
  bool isStarted = true;
  while (isStarted && !isCut_) {
    isStarted = false;
    // The level stays while anything of it waits, so that it is found once for a round.
    const uint32_t level = Level();
    for (auto& [origin, server] : servers_) {
      if (underWay_.size() + robotsUnderWay_.size() >= kTransferLimit) return;
      if (asked_ >= plan_.pagesLimit && waiting_ != 0) {
        Reach("pages");
        isCut_ = true;
        return;
      }
      isStarted = StartNext(server, level) || isStarted;
    }
  }
}

void Crawler::GiveUpServer(Server& server, Reason reason) {
  server.fault = reason;
  server.rulesState = Server::Rules::kKnown;
  // Pages that stay may bring further ones into the queue, which StartNext then gives up.
  const std::map<Place, Job> queue = std::exchange(server.queue, {});
  const std::multimap<Clock::time_point, Job> retries = std::exchange(server.retries, {});
  waiting_ -= queue.size() + retries.size();
  for (const auto& [place, job] : queue) GiveUp(job, reason);
  for (const auto& [due, job] : retries) GiveUp(job, reason);
}

// After passing faults a page that was fetched earlier stays as it was.
void Crawler::GiveUp(const Job& job, Reason reason) {
  PageAnswer former;
  if (reason != Reason::kPrivateNetwork && store_.SettleUnchanged(job.waiting.id, former)) {
    Follow(job.waiting, former);
    return;
  }
  store_.SettleLeftOut(job.waiting.id, reason);
}

void Crawler::TakeRobots(Server& server, const FetchAnswer& answer) {
  server.rulesState = Server::Rules::kKnown;
  if (IsPassing(answer)) {
    if (server.robotsAttempts++ < plan_.retries) {
      server.rulesState = Server::Rules::kUnknown;
      const auto wait = std::max(RetryAfter(answer.retryAfter), Backoff(server.robotsAttempts));
      server.next = Clock::now() + wait;
      return;
    }
    // A server that cannot say what it allows, allows nothing.
    server.robots.refusesAll = true;
    GiveUpServer(server, answer.reason == Reason::kNone ? Reason::kServerError : Reason::kNoAnswer);
    return;
  }
  if (answer.reason != Reason::kNone) {
    server.robots.refusesAll = true;
    GiveUpServer(server, answer.reason);
    return;
  }
  if (IsRedirect(answer.status)) {
    const auto target = ReadWebLink(server.robotsAddress, answer.location);
    if (++server.robotsHops > kHopLimit || !target.has_value() ||
        !plan_.scope.HoldsServer(*target)) {
      return;  // not to be had, so there are no rules
    }
    server.robotsAddress = target->address;
    server.rulesState = Server::Rules::kUnknown;
    return;
  }
  if (answer.status >= 200 && answer.status < 300) server.robots = ParseRobots(answer.bytes);
  if (!plan_.findsSitemaps) return;
  for (const std::string& sitemap : server.robots.sitemaps) {
    const auto address = ReadWebLink(server.robotsAddress, sitemap);
    if (!address.has_value() || !plan_.scope.HoldsServer(*address)) continue;
    Find(address, {.address = {}, .origin = {}, .kind = StoredKind::kSitemap});
  }
}

void Crawler::Take(FetchAnswer answer) {
  bytes_ += answer.bytes.size();
  const auto robots = robotsUnderWay_.find(answer.id);
  const auto page = underWay_.find(answer.id);
  Job job;
  Server* server = nullptr;
  if (robots != robotsUnderWay_.end()) {
    server = robots->second;
    robotsUnderWay_.erase(robots);
  } else {
    job = std::move(page->second);
    underWay_.erase(page);
    server = &servers_[job.waiting.found.origin];
  }
  --server->underWay;
  if (answer.reachedPrivate) {
    server->network = Server::Network::kPrivate;
  } else if (answer.reason == Reason::kNone && server->network == Server::Network::kUnknown) {
    server->network = Server::Network::kPublic;
  }
  if (answer.id < 0) {
    TakeRobots(*server, answer);
  } else {
    TakePage(*server, std::move(job), std::move(answer));
  }
}

void Crawler::TakePage(Server& server, Job job, FetchAnswer answer) {
  if (IsPassing(answer)) {
    const bool isSilent = answer.reason != Reason::kNone;
    // One that begins to answer is there, however it ends.
    server.faults = isSilent && answer.status == 0 ? server.faults + 1 : 0;
    const auto asked = RetryAfter(answer.retryAfter);
    if (asked.count() != 0) server.next = std::max(server.next, Clock::now() + asked);
    const Reason reason = isSilent ? Reason::kNoAnswer : Reason::kServerError;
    if (++job.attempts > plan_.retries || server.fault != Reason::kNone) {
      GiveUp(job, reason);
    } else {
      server.retries.emplace(Clock::now() + std::max(asked, Backoff(job.attempts)), std::move(job));
      ++waiting_;
    }
    if (server.faults >= kServerFaultLimit) GiveUpServer(server, Reason::kNoAnswer);
    return;
  }
  server.faults = 0;
  if (answer.reason != Reason::kNone) {
    store_.SettleLeftOut(job.waiting.id, answer.reason);
  } else if (answer.status == 304) {
    TakeUnchanged(server, std::move(job));
  } else if (IsRedirect(answer.status)) {
    TakeRedirect(job, answer);
  } else if (answer.status == 200 || answer.status == 203) {
    TakeContent(job, std::move(answer));
  } else {
    store_.SettleLeftOut(job.waiting.id, ReasonOfStatus(answer.status));
  }
}

void Crawler::TakeUnchanged(Server& server, Job job) {
  PageAnswer former;
  if (store_.SettleUnchanged(job.waiting.id, former)) {
    Follow(job.waiting, former);
    return;
  }
  // Nobody asked whether it has changed, or what it was is lost.
  job.waiting.etag.clear();
  job.waiting.lastModified.clear();
  if (++job.attempts > plan_.retries) {
    store_.SettleLeftOut(job.waiting.id, Reason::kServerError);
    return;
  }
  server.retries.emplace(Clock::now(), std::move(job));
  ++waiting_;
}

void Crawler::TakeRedirect(const Job& job, const FetchAnswer& answer) {
  const FoundAddress& from = job.waiting.found;
  const std::optional<WebAddress> target = ReadWebLink(from.address, answer.location);
  if (from.hops + 1 > kHopLimit) {
    store_.SettleLeftOut(job.waiting.id, Reason::kRedirectedTooOften);
    return;
  }
  // Patterns choose among links; where the owner's own first addresses lead to, he wants to go.
  const bool isWanted = target.has_value() && (from.depth == 0 ? plan_.scope.HoldsServer(*target)
                                                               : plan_.scope.Holds(*target));
  if (!isWanted) {
    store_.SettleLeftOut(job.waiting.id, Reason::kRedirectedOutside);
    const bool isFirst = std::ranges::any_of(plan_.pages, [&from](const std::string& page) {
      const auto first = ReadWebAddress(page);
      return first.has_value() && first->address == from.address;
    });
    // Nothing is worse for a crawl than to end where it begins.
    if (isFirst && target.has_value()) {
      findings_.push_back({Reason::kStartRedirected, from.address, target->address});
    }
    return;
  }
  store_.SettleRedirect(job.waiting.id);
  Find(
      target,
      {.address = {}, .origin = {}, .kind = from.kind, .depth = from.depth, .hops = from.hops + 1});
}

void Crawler::TakeContent(const Job& job, FetchAnswer answer) {
  const WaitingAddress& waiting = job.waiting;
  const MediaType type = ReadMediaType(answer.contentType);
  const time_t modified = curl_getdate(answer.lastModified.c_str(), nullptr);
  const PageRobots robots = ReadRobotsTag(answer.robotsTag);
  const PageAnswer page = {.bytes = std::move(answer.bytes),
                           .mediaType = type.name,
                           .charset = type.charset,
                           .etag = answer.etag,
                           .lastModified = answer.lastModified,
                           .modifiedTime = std::max<int64_t>(modified, 0),
                           .noFollow = robots.noFollow};
  if (waiting.found.kind == StoredKind::kSitemap) {
    store_.SettleSitemap(waiting.id, page);
    FollowSitemap(waiting, page.bytes);
    return;
  }
  const std::string_view path =
      std::string_view(waiting.found.address).substr(0, waiting.found.address.find('?'));
  if (!PageType(page.mediaType, path, plan_.endings).has_value()) {
    store_.SettleLeftOut(waiting.id, Reason::kOtherKind, page.mediaType);
    return;
  }
  if (robots.noIndex) {
    store_.SettleLeftOut(waiting.id, Reason::kNoindex, page.mediaType);
  } else {
    store_.SettlePage(waiting.id, page);
  }
  Follow(waiting, page);
}

void Crawler::Follow(const WaitingAddress& from, const PageAnswer& answer) {
  if (from.found.kind == StoredKind::kSitemap) {
    FollowSitemap(from, answer.bytes);
    return;
  }
  if (!plan_.followsLinks || answer.noFollow) return;
  const std::string_view path =
      std::string_view(from.found.address).substr(0, from.found.address.find('?'));
  if (PageType(answer.mediaType, path, plan_.endings) != FileType::kHtml) return;
  ReadingLimits limits;
  limits.stop = &stop_;
  ReadingBudget budget = StartReading(limits, answer.bytes.size());
  std::string html;
  if (ConvertToUtf8(answer.bytes, true, budget, html, answer.charset) != Reason::kNone) return;
  for (const std::string& link : LinksOf(html, from.found.address, budget)) {
    const std::optional<WebAddress> address = ReadWebAddress(link);
    if (!address.has_value() || !plan_.scope.Holds(*address)) continue;
    if (from.found.depth + 1 > plan_.depthLimit) {
      Reach("depth");
      return;
    }
    Find(address,
         {.address = {}, .origin = {}, .kind = StoredKind::kPage, .depth = from.found.depth + 1});
  }
}

void Crawler::FollowSitemap(const WaitingAddress& from, const std::string& bytes) {
  Sitemap sitemap;
  const bool isOwners =
      std::ranges::find(plan_.sitemaps, from.found.address) != plan_.sitemaps.end();
  if (!ReadSitemap(bytes, sitemap) && (isOwners || !sitemap.pages.empty())) {
    findings_.push_back({Reason::kSitemapDamaged, {}, from.found.address});
  }
  for (const std::string& page : sitemap.pages) {
    const std::optional<WebAddress> address = ReadWebAddress(page);
    if (address.has_value() && plan_.scope.Holds(*address)) Find(address, {});
  }
  if (from.found.hops + 1 > kSitemapNestingLimit) return;
  for (const std::string& further : sitemap.sitemaps) {
    const std::optional<WebAddress> address = ReadWebAddress(further);
    if (!address.has_value() || !plan_.scope.HoldsServer(*address)) continue;
    Find(address, {.address = {},
                   .origin = {},
                   .kind = StoredKind::kSitemap,
                   .depth = 0,
                   .hops = from.found.hops + 1});
  }
}

bool Crawler::IsOver() {
  if (bytes_ >= plan_.bytesLimit && waiting_ != 0 && !isCut_) {
    Reach("max_size");
    isCut_ = true;
  }
  return underWay_.empty() && robotsUnderWay_.empty() && (isCut_ || waiting_ == 0);
}

std::vector<Finding> Crawler::Run() {
  begun_ = Clock::now();
  Seed();
  progress_.Begin("Fetching pages", 0);
  Clock::time_point committed = begun_;
  bool isLate = false;
  while (!IsOver() && !isLate) {
    StartAll();
    for (FetchAnswer& answer : fetcher_.Wait(kPatience)) Take(std::move(answer));
    const Clock::time_point now = Clock::now();
    if (now - committed >= kCommitInterval || stop_ != 0) {
      store_.Commit();
      committed = now;
    }
    if (stop_ != 0) {
      throw IndexError(ExitStatus::kInterrupted,
                       "Interrupted: the index was not changed. The next run goes on with the "
                       "crawl where this one stopped.");
    }
    progress_.Step(store_.settledCount(), store_.settledCount() + waiting_ + underWay_.size());
    isLate = plan_.timeLimit.count() != 0 && now - begun_ >= plan_.timeLimit;
  }
  if (isLate && !IsOver()) {
    Reach("minutes");
    store_.Commit();
  } else {
    store_.FinishPass();
  }
  for (const std::string& limit : reached_) {
    findings_.push_back({Reason::kCrawlStopped, {}, limit});
  }
  return std::move(findings_);
}

}  // namespace

std::vector<Finding> Crawl(const CrawlPlan& plan, PageStore& store, Progress& progress,
                           const volatile std::sig_atomic_t& stop) {
  return Crawler(plan, store, progress, stop).Run();
}

}  // namespace vela::indexer
