// web_address.h: an address on the web in its one form, and the parts by which it is asked for.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vela::indexer {

// In bytes; longer addresses are not asked for.
inline constexpr size_t kWebAddressLimit = 2000;

struct WebAddress {
  std::string address;    // whole, in the form of PageAddress; without a fragment
  std::string origin;     // "https://www.example.org", with its port when it is not the usual one
  std::string authority;  // the same without the scheme: "www.example.org", "[::1]:8080"
  std::string path;       // with the query: "/a?b"
};

// Reads an http or https address: letters of scheme and host in lower case, an international name
// in its ASCII form, the usual port left out, "." and ".." steps taken. None for any other address
// and for one with a user's name.
std::optional<WebAddress> ReadWebAddress(std::string_view text);

// The same of a link on the page `page`.
std::optional<WebAddress> ReadWebLink(std::string_view page, std::string_view link);

// "HOST" or "HOST:PORT" in the form of WebAddress::authority; empty when it is none.
std::string ReadAuthority(std::string_view text);

}  // namespace vela::indexer
