// index_charset.h: the character set that the index is written in: UTF-8, or a single-byte set.
//
// Pages are read and cut as UTF-8 whatever the set is; every text is brought into it where it is
// written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vela::indexer {

class IndexCharset {
 public:
  // UTF-8.
  IndexCharset() = default;
  // The set of that name; case and punctuation do not matter. Throws IndexError (usage) for a name
  // that is not known and for a set in which a character takes several bytes.
  explicit IndexCharset(const std::string& name);

  bool utf8() const { return utf8_; }
  // As it stands in the settings and in the header of an answer.
  const std::string& name() const { return name_; }
  // Windows' number of the set; 0 where there is none.
  int32_t codepage() const { return codepage_; }

  // Appends the character; false, and nothing is appended, when the set does not have it.
  bool Append(char32_t c, std::string& out) const;
  // Characters that the set does not have become references, "&#321;".
  std::string WithReferences(std::string_view text) const;
  // False when the set lacks one of the characters. Stray bytes are passed over.
  bool Exactly(std::string_view text, std::string& out) const;

  // Capital letters beyond ASCII, and beside each its small form: in a single-byte index the search
  // program folds the case of ASCII alone and needs a table of the others. Empty for UTF-8.
  std::string_view uppers() const { return uppers_; }
  std::string_view lowers() const { return lowers_; }

 private:
  bool utf8_ = true;
  std::string name_ = "utf-8";
  int32_t codepage_ = 65001;
  std::unordered_map<char32_t, char> bytes_;  // of the characters from U+00A0 on
  std::string uppers_;
  std::string lowers_;  // beside `uppers_`
};

}  // namespace vela::indexer
