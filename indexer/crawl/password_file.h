// password_file.h: names and passwords for servers that ask for them (basic authentication).
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace vela::indexer {

// "user:password" by WebAddress::authority.
using Passwords = std::map<std::string, std::string>;

// Reads the lines "HOST[:PORT] USER:PASSWORD" of the file `path`; empty ones and those that begin
// with "#" say nothing. Nobody but its owner may be able to read the file. Throws IndexError.
Passwords ReadPasswordFile(const std::string& path);

// The same for its text; `path` is for messages.
Passwords ReadPasswords(std::string_view text, const std::string& path);

}  // namespace vela::indexer
