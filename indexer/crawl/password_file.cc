#include "indexer/crawl/password_file.h"

#include <sys/stat.h>

#include <algorithm>

#include "indexer/config/owner_file.h"
#include "indexer/crawl/web_address.h"
#include "indexer/report/index_error.h"
#include "text/edit.h"

namespace vela::indexer {

Passwords ReadPasswords(std::string_view text, const std::string& path) {
  Passwords passwords;
  for (size_t number = 1; !text.empty(); ++number) {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = TrimAll(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    const size_t blank = std::min(line.find_first_of(" \t"), line.size());
    const std::string authority = ReadAuthority(line.substr(0, blank));
    const std::string_view password = TrimAll(line.substr(blank));
    if (authority.empty() || password.find(':') == password.npos) {
      // The line itself stays unsaid: messages end in logs.
      throw IndexError(ExitStatus::kUsage, path + ", line " + std::to_string(number) +
                                               ": a line must be HOST USER:PASSWORD, as in "
                                               "\"www.example.org indexer:secret\".");
    }
    passwords[authority] = password;
  }
  return passwords;
}

Passwords ReadPasswordFile(const std::string& path) {
  const std::string text = ReadOwnersFile(path, "auth_file in [crawl]");
  struct stat info = {};
  if (stat(path.c_str(), &info) != 0 || (info.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
    throw IndexError(ExitStatus::kUsage, path +
                                             " holds passwords, and others than its owner can "
                                             "reach it. Run: chmod 600 " +
                                             path);
  }
  return ReadPasswords(text, path);
}

}  // namespace vela::indexer
