#include "index/page_data.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using namespace std::string_literals;
using support::Repeat;

struct Texts {
  bool read;
  std::string url;
  std::string title;
  std::string description;
  std::string image;
  bool operator==(const Texts&) const = default;
};

Texts ReadAt(const std::string& file, uint64_t offset) {
  PageTexts texts = {"old", "old", "old", "old"};
  const bool read = ReadPageData(file, offset, texts);
  return {read, std::string(texts.url), std::string(texts.title), std::string(texts.description),
          std::string(texts.image)};
}

TEST(PageData, LineWithOnlyThreeSeparatorsYieldsNoTexts) {
  EXPECT_EQ(ReadAt("a.html|A|about|image\n", 0), (Texts{false, "", "", "", ""}));
}

TEST(PageData, LinesTable) {
  const Texts none = {false, "", "", "", ""};
  const struct {
    const char* what;
    std::string file;
    uint64_t offset;
    Texts expected;
  } cases[] = {
      {"four fields", "a.html|A|about|i.png|\n", 0, {true, "a.html", "A", "about", "i.png"}},
      {"empty fields", "||||\n", 0, {true, "", "", "", ""}},
      {"some empty fields", "a.html||about||\n", 0, {true, "a.html", "", "about", ""}},
      {"a line further on", "a|b|c|d|\ne|f|g|h|\n", 9, {true, "e", "f", "g", "h"}},
      {"the middle of a line", "aaa|b|c|d|\n", 2, {true, "a", "b", "c", "d"}},
      {"text behind the fourth separator", "a|b|c|d|e|f\n", 0, {true, "a", "b", "c", "d"}},
      {"no line feed at the end of the file", "a|b|c|d|", 0, {true, "a", "b", "c", "d"}},
      {"a carriage return at the end", "a|b|c|d|\r\n", 0, {true, "a", "b", "c", "d"}},
      {"separators do not reach into the next line", "a|b|c\nd|e|\n", 0, none},
      {"an empty line", "\na|b|c|d|\n", 0, none},
      {"a NUL ends the line", "a|b\0|c|d|\n"s, 0, none},
      {"at the end of the file", "a|b|c|d|\n", 9, none},
      {"behind the end of the file", "a|b|c|d|\n", 1000, none},
      {"the last 40-bit position", "a|b|c|d|\n", 1099511627775, none},
      {"an empty file", "", 0, none},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(ReadAt(c.file, c.offset), c.expected);
  }
}

TEST(PageData, LineIsReadUpTo7260Bytes) {
  // "a|T|" and the description, then "|" "d" "|": 7260 bytes with the last separator.
  const std::string fits = Repeat("x", 7253);
  const std::string longer = fits + "x";
  EXPECT_EQ(ReadAt("a|T|" + fits + "|d|\n", 0), (Texts{true, "a", "T", fits, "d"}));
  EXPECT_EQ(ReadAt("a|T|" + longer + "|d|\n", 0), (Texts{false, "", "", "", ""}));
}

TEST(PageData, AddressesAreCutAt2083Bytes) {
  const std::string address = Repeat("u", 2084);
  const Texts texts = ReadAt(address + "|T|D|" + address + "|\n", 0);
  EXPECT_TRUE(texts.read);
  EXPECT_EQ(texts.url, address.substr(1));
  EXPECT_EQ(texts.image, address.substr(1));
}

TEST(PageUrl, Table) {
  const struct {
    const char* what;
    std::string file;
    uint64_t offset;
    bool read;
    std::string url;
  } cases[] = {
      {"the first field", "a.html|A|b|c|\n", 0, true, "a.html"},
      {"the other fields do not matter", "a.html|rest\n", 0, true, "a.html"},
      {"an empty address", "|A|b|c|\n", 0, false, ""},
      {"no separator", "a.html\n", 0, false, ""},
      {"behind the end", "a.html|\n", 8, false, ""},
      {"cut at 2083 bytes", Repeat("u", 3000) + "|\n", 0, true, Repeat("u", 2083)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::string_view url = "old";
    EXPECT_EQ(ReadPageUrl(c.file, c.offset, url), c.read);
    EXPECT_EQ(url, c.url);
  }
}

}  // namespace
}  // namespace vela
