// fake_request.h: the environment and the body of one request, as a web server would hand them
// over.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

#include "request/cgi_form.h"

namespace vela {

// There is one at a time: the environment is asked through a plain function.
class FakeRequest {
 public:
  FakeRequest() { Environment().clear(); }
  // A GET request.
  explicit FakeRequest(const std::string& queryString) : FakeRequest() {
    Set("REQUEST_METHOD", "GET");
    Set("QUERY_STRING", queryString);
  }
  FakeRequest(const FakeRequest&) = delete;
  FakeRequest& operator=(const FakeRequest&) = delete;
  ~FakeRequest() {
    // The reading end goes first, so that a writer whose body nobody reads comes to its end.
    if (readingEnd_ >= 0) close(readingEnd_);
    if (writer_.joinable()) writer_.join();
    Environment().clear();
  }

  void Set(const std::string& name, const std::string& value) { Environment()[name] = value; }

  // Makes it a POST request whose body comes through a pipe, `pieceSize` bytes at a time.
  void Post(const std::string& body, const std::string& contentLength,
            size_t pieceSize = std::string::npos) {
    Set("REQUEST_METHOD", "POST");
    Set("CONTENT_TYPE", "application/x-www-form-urlencoded");
    Set("CONTENT_LENGTH", contentLength);
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("cannot make a pipe");
    readingEnd_ = ends[0];
    writer_ = std::thread([body, pieceSize, writingEnd = ends[1]] {
      for (size_t at = 0; at < body.size();) {
        const std::string_view piece = std::string_view(body).substr(at, pieceSize);
        const ssize_t written = write(writingEnd, piece.data(), piece.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        at += static_cast<size_t>(written);
      }
      close(writingEnd);
    });
  }
  void Post(const std::string& body) { Post(body, std::to_string(body.size())); }

  CgiSource source() const { return {Look, readingEnd_}; }

 private:
  static std::map<std::string, std::string>& Environment() {
    static std::map<std::string, std::string> environment;
    return environment;
  }
  static const char* Look(const char* name) {
    const auto found = Environment().find(name);
    return found == Environment().end() ? nullptr : found->second.c_str();
  }

  int readingEnd_ = -1;
  std::thread writer_;
};

}  // namespace vela
