#include "indexer/crawl/web_address.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"
#include "text/ascii.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

struct UrlCloser {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};

// A part of the URL in lower case; empty when it has none.
std::string PartOf(CURLU* url, CURLUPart part, unsigned flags) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, flags) != CURLUE_OK) return {};
  std::string lower = LowerAsciiCopy(text);
  curl_free(text);
  return lower;
}

bool IsHostName(std::string_view host) {
  return !host.empty() && std::ranges::all_of(host, [](char c) {
    return IsAlphaNumeric(c) || std::string_view("-._:[]").find(c) != std::string_view::npos;
  });
}

}  // namespace

std::optional<WebAddress> ReadWebAddress(std::string_view text) {
  text = TrimAll(text);
  text = text.substr(0, text.find('#'));
  const size_t scheme = text.find("://");
  if (scheme == text.npos || text.size() > kWebAddressLimit) return {};
  const std::string_view rest = text.substr(scheme + 3);
  const size_t pathAt = std::min(rest.find_first_of("/?"), rest.size());
  const std::string root(text.substr(0, scheme + 3 + pathAt));
  if (root.find('@') != root.npos) return {};

  const std::unique_ptr<CURLU, UrlCloser> url(curl_url());
  if (url == nullptr || curl_url_set(url.get(), CURLUPART_URL, root.c_str(), 0) != CURLUE_OK) {
    return {};
  }
  const std::string kind = PartOf(url.get(), CURLUPART_SCHEME, 0);
  const std::string host = PartOf(url.get(), CURLUPART_HOST, CURLU_PUNYCODE);
  if ((kind != "http" && kind != "https") || !IsHostName(host)) return {};
  const std::string port = PartOf(url.get(), CURLUPART_PORT, CURLU_NO_DEFAULT_PORT);

  WebAddress read;
  read.authority = port.empty() ? host : host + ":" + port;
  read.origin = kind + "://" + read.authority;
  // Escaped steps are steps as well, so they are taken when nothing is escaped without need.
  std::string address = read.origin;
  if (rest.substr(pathAt).empty() || rest[pathAt] != '/') address += '/';
  address += rest.substr(pathAt);
  read.address = ResolveAddress(read.origin, AsEncoded(address));
  if (read.address.size() > kWebAddressLimit) return {};
  read.path = read.address.substr(read.origin.size());
  return read;
}

std::optional<WebAddress> ReadWebLink(std::string_view page, std::string_view link) {
  const std::string address = ResolveAddress(page, link);
  if (address.empty()) return {};
  return ReadWebAddress(address);
}

std::string ReadAuthority(std::string_view text) {
  if (text.find_first_of("/?#") != text.npos) return {};
  const auto read = ReadWebAddress("http://" + std::string(text) + "/");
  return read.has_value() ? read->authority : std::string();
}

}  // namespace vela::indexer
