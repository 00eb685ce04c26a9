// fetcher.h: asks web servers, several at a time, and trusts none of them: each answer is bounded
// in size and time, and no server of a private network is reached but where that is allowed.
//
// Redirects are not followed: each is an answer, so that whoever asked can judge where it leads.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "indexer/report/reason.h"

namespace vela::indexer {

struct FetchWishes {
  std::chrono::seconds timeout{30};  // for a whole answer; a third of it to connect
  std::string agent;                 // User-Agent
  std::string caFile;                // certificates to trust in the place of the system's; or empty
};

struct FetchRequest {
  int64_t id = 0;  // comes back with the answer
  std::string address;
  std::string userAndPassword;  // "user:password"; empty: none
  std::string etag;             // of the former answer; empty: none
  std::string lastModified;     // the same
  uint64_t limit = 0;           // bytes of the answer, unpacked
  bool cutsLong = false;        // what is longer is cut there, and no fault
  bool allowsPrivate = false;   // servers in private networks
};

struct FetchAnswer {
  int64_t id = 0;
  // kNone: the server answered, with `status`. Else there is nothing but the reason: kNoAnswer,
  // kBadEncoding, kBadCertificate, kFileTooLarge, kPrivateNetwork.
  Reason reason = Reason::kNone;
  long status = 0;
  std::string bytes;
  // The fields of the answer; empty where it has none.
  std::string location;
  std::string contentType;
  std::string etag;
  std::string lastModified;
  std::string retryAfter;
  std::string robotsTag;        // several are joined by line feeds
  bool reachedPrivate = false;  // its server is in a private network
};

class Fetcher {
 public:
  // Throws IndexError when the library cannot be used.
  explicit Fetcher(FetchWishes wishes);
  // Ends what is under way.
  ~Fetcher();
  Fetcher(const Fetcher&) = delete;
  Fetcher& operator=(const Fetcher&) = delete;

  void Start(FetchRequest request);
  // Waits for answers, at most so long; returns those that came.
  std::vector<FetchAnswer> Wait(std::chrono::milliseconds most);

 private:
  class Transfer;
  class Multi;

  FetchWishes wishes_;
  std::unique_ptr<Multi> multi_;
};

}  // namespace vela::indexer
