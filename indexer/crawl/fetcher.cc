#include "indexer/crawl/fetcher.h"

#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "indexer/crawl/network.h"
#include "indexer/report/index_error.h"
#include "indexer/words/lower_copy.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

constexpr size_t kHeadBytesLimit = size_t{64} << 10;
constexpr size_t kFieldBytesLimit = 4096;
constexpr long kConnectionLimit = 64;  // kept open

// Whoever drips bytes keeps a connection for no longer than this.
constexpr long kSlowBytesASecond = 100;
constexpr long kSlowSeconds = 15;

void CheckLibrary(bool isGood) {
  if (!isGood) {
    throw IndexError(ExitStatus::kFailed, "Cannot use libcurl, by which pages are fetched.");
  }
}

class Curl {
 public:
  Curl() { CheckLibrary(curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK); }
  Curl(const Curl&) = delete;
  Curl& operator=(const Curl&) = delete;
  ~Curl() { curl_global_cleanup(); }
};

struct ListCloser {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
struct EasyCloser {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};

}  // namespace

// One request under way.
class Fetcher::Transfer {
 public:
  Transfer(FetchRequest request, const FetchWishes& wishes);
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;
  ~Transfer() = default;

  CURL* easy() const { return easy_.get(); }
  FetchAnswer Finish(CURLcode result);

 private:
  template <typename Value>
  void Set(CURLoption option, Value value) {
    CheckLibrary(curl_easy_setopt(easy_.get(), option, value) == CURLE_OK);
  }
  void AddField(const std::string& field);

  // The functions that the library calls have the types that it asks for.
  static size_t OnHead(char* bytes, size_t size, size_t count, void* user);
  static size_t OnBytes(char* bytes, size_t size, size_t count, void* user);
  static curl_socket_t OnSocket(void* user, curlsocktype purpose, curl_sockaddr* address);
  void TakeField(std::string_view line);

  FetchRequest request_;
  FetchAnswer answer_;
  size_t headBytes_ = 0;
  bool isCut_ = false;  // longer than its limit
  std::unique_ptr<curl_slist, ListCloser> fields_;
  std::unique_ptr<CURL, EasyCloser> easy_;
};

Fetcher::Transfer::Transfer(FetchRequest request, const FetchWishes& wishes)
    : request_(std::move(request)), easy_(curl_easy_init()) {
  CheckLibrary(easy_ != nullptr);
  answer_.id = request_.id;
  const auto timeout = std::chrono::milliseconds(wishes.timeout).count();
  Set(CURLOPT_URL, request_.address.c_str());
  Set(CURLOPT_PATH_AS_IS, 1L);  // it was brought into its form, for which the rules were asked
  Set(CURLOPT_PROTOCOLS_STR, "http,https");
  Set(CURLOPT_FOLLOWLOCATION, 0L);
  Set(CURLOPT_NOPROXY, "*");  // a proxy would connect to servers that are not allowed here
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_ACCEPT_ENCODING, "gzip, br");
  Set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_2TLS});
  Set(CURLOPT_USERAGENT, wishes.agent.c_str());
  Set(CURLOPT_TIMEOUT_MS, static_cast<long>(timeout));
  Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(std::max<int64_t>(timeout / 3, 1000)));
  Set(CURLOPT_LOW_SPEED_LIMIT, kSlowBytesASecond);
  Set(CURLOPT_LOW_SPEED_TIME, kSlowSeconds);
  if (!request_.cutsLong) {
    Set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(request_.limit));
  }
  if (!wishes.caFile.empty()) Set(CURLOPT_CAINFO, wishes.caFile.c_str());
  if (!request_.userAndPassword.empty()) {
    Set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    Set(CURLOPT_USERPWD, request_.userAndPassword.c_str());
  }
  AddField("Accept: text/html, application/xhtml+xml, text/plain, */*;q=0.5");
  if (!request_.etag.empty()) AddField("If-None-Match: " + request_.etag);
  if (!request_.lastModified.empty()) AddField("If-Modified-Since: " + request_.lastModified);
  Set(CURLOPT_HTTPHEADER, fields_.get());
  Set(CURLOPT_HEADERFUNCTION, &OnHead);
  Set(CURLOPT_HEADERDATA, this);
  Set(CURLOPT_WRITEFUNCTION, &OnBytes);
  Set(CURLOPT_WRITEDATA, this);
  Set(CURLOPT_OPENSOCKETFUNCTION, &OnSocket);
  Set(CURLOPT_OPENSOCKETDATA, this);
  Set(CURLOPT_PRIVATE, this);
}

void Fetcher::Transfer::AddField(const std::string& field) {
  curl_slist* longer = curl_slist_append(fields_.get(), field.c_str());
  if (longer == nullptr) throw std::bad_alloc();
  (void)fields_.release();
  fields_.reset(longer);
}

void Fetcher::Transfer::TakeField(std::string_view line) {
  constexpr struct {
    std::string_view name;
    std::string FetchAnswer::*place;
  } kFields[] = {
      {"location", &FetchAnswer::location},
      {"content-type", &FetchAnswer::contentType},
      {"etag", &FetchAnswer::etag},
      {"last-modified", &FetchAnswer::lastModified},
      {"retry-after", &FetchAnswer::retryAfter},
      {"x-robots-tag", &FetchAnswer::robotsTag},
  };
  if (line.starts_with("HTTP/")) {
    // The answer begins, perhaps behind one that only said to wait.
    for (const auto& field : kFields) (answer_.*field.place).clear();
    return;
  }
  const size_t colon = line.find(':');
  if (colon == line.npos) return;
  const std::string name = LowerAsciiCopy(line.substr(0, colon));
  const std::string_view value = TrimAll(line.substr(colon + 1));
  for (const auto& field : kFields) {
    std::string& place = answer_.*field.place;
    if (field.name != name || place.size() + value.size() > kFieldBytesLimit) continue;
    if (field.name != "x-robots-tag" || place.empty()) {
      place = value;
    } else {
      place.append("\n").append(value);
    }
  }
}

size_t Fetcher::Transfer::OnHead(char* bytes, size_t size, size_t count, void* user) try {
  auto& transfer = *static_cast<Transfer*>(user);
  const size_t length = size * count;
  transfer.headBytes_ += length;
  if (transfer.headBytes_ > kHeadBytesLimit) return 0;  // ends the transfer
  transfer.TakeField({bytes, length});
  return length;
} catch (const std::bad_alloc&) {
  return 0;
}

size_t Fetcher::Transfer::OnBytes(char* bytes, size_t size, size_t count, void* user) try {
  auto& transfer = *static_cast<Transfer*>(user);
  const size_t length = size * count;
  std::string& all = transfer.answer_.bytes;
  const size_t room = transfer.request_.limit - all.size();
  if (length > room) {
    transfer.isCut_ = true;
    if (transfer.request_.cutsLong) all.append(bytes, room);
    return 0;
  }
  all.append(bytes, length);
  return length;
} catch (const std::bad_alloc&) {
  return 0;
}

curl_socket_t Fetcher::Transfer::OnSocket(void* user, curlsocktype purpose,
                                          curl_sockaddr* address) {
  (void)purpose;
  auto& transfer = *static_cast<Transfer*>(user);
  // This is the very address that will be connected to, whatever a name was resolved to before.
  if (!IsPublicAddress(address->addr)) {
    if (!transfer.request_.allowsPrivate) {
      transfer.answer_.reason = Reason::kPrivateNetwork;
      return CURL_SOCKET_BAD;
    }
    transfer.answer_.reachedPrivate = true;
  }
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

FetchAnswer Fetcher::Transfer::Finish(CURLcode result) {
  curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &answer_.status);
  if (result == CURLE_OK || (isCut_ && request_.cutsLong)) {
    answer_.reason = Reason::kNone;  // another address of the server was allowed
    return std::move(answer_);
  }
  if (result == CURLE_SSL_CACERT_BADFILE) {
    throw IndexError(ExitStatus::kUsage,
                     "Cannot read the certificates to trust. Check ca_file in "
                     "[crawl], or install the package ca-certificates.");
  }
  if (answer_.reason == Reason::kNone) {
    answer_.reason = isCut_ || result == CURLE_FILESIZE_EXCEEDED ? Reason::kFileTooLarge
                     : result == CURLE_BAD_CONTENT_ENCODING      ? Reason::kBadEncoding
                     : result == CURLE_PEER_FAILED_VERIFICATION  ? Reason::kBadCertificate
                                                                 : Reason::kNoAnswer;
  }
  answer_.bytes = {};
  return std::move(answer_);
}

class Fetcher::Multi {
 public:
  Multi() : handle(curl_multi_init()) {
    CheckLibrary(handle != nullptr);
    CheckLibrary(curl_multi_setopt(handle, CURLMOPT_MAXCONNECTS, kConnectionLimit) == CURLM_OK);
  }
  Multi(const Multi&) = delete;
  Multi& operator=(const Multi&) = delete;
  ~Multi() {
    for (const auto& [easy, transfer] : transfers) curl_multi_remove_handle(handle, easy);
    transfers.clear();
    curl_multi_cleanup(handle);
  }

 private:
  Curl library;  // outlives the handle

 public:
  CURLM* handle;
  std::unordered_map<CURL*, std::unique_ptr<Transfer>> transfers;
};

Fetcher::Fetcher(FetchWishes wishes)
    : wishes_(std::move(wishes)), multi_(std::make_unique<Multi>()) {}

Fetcher::~Fetcher() = default;

void Fetcher::Start(FetchRequest request) {
  auto transfer = std::make_unique<Transfer>(std::move(request), wishes_);
  CURL* easy = transfer->easy();
  multi_->transfers.emplace(easy, std::move(transfer));
  CheckLibrary(curl_multi_add_handle(multi_->handle, easy) == CURLM_OK);
}

std::vector<FetchAnswer> Fetcher::Wait(std::chrono::milliseconds most) {
  std::vector<FetchAnswer> answers;
  int running = 0;
  CheckLibrary(curl_multi_perform(multi_->handle, &running) == CURLM_OK);
  for (int pass = 0; pass < 2; ++pass) {
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_->handle, &left)) {
      if (message->msg != CURLMSG_DONE) continue;
      CURL* easy = message->easy_handle;
      const CURLcode result = message->data.result;
      const auto found = multi_->transfers.find(easy);
      answers.push_back(found->second->Finish(result));
      curl_multi_remove_handle(multi_->handle, easy);
      multi_->transfers.erase(found);
    }
    if (pass == 1 || !answers.empty()) break;
    // Waits also when nothing is under way.
    CheckLibrary(curl_multi_poll(multi_->handle, nullptr, 0, static_cast<int>(most.count()),
                                 nullptr) == CURLM_OK);
    CheckLibrary(curl_multi_perform(multi_->handle, &running) == CURLM_OK);
  }
  return answers;
}

}  // namespace vela::indexer
