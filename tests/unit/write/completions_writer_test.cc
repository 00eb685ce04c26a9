#include "indexer/write/completions_writer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "index/completions.h"
#include "indexer/write/autocomplete_writer.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

using Texts = std::vector<std::string>;

// The files of suggestions, as the indexer writes them.
struct Made {
  support::ScratchDirectory scratch;
  std::string autocomplete;
  std::string completions;

  explicit Made(const Texts& texts) {
    const AutocompleteSizes sizes = WriteAutocomplete(scratch.path() / "vela_autocomplete.vdat",
                                                      texts, 100000, 256, IndexCharset());
    EXPECT_EQ(WriteCompletions(scratch.path(), sizes.texts) == 0, texts.empty());
    autocomplete = ReadFile(scratch.path() / "vela_autocomplete.vdat");
    completions = ReadFile(scratch.path() / "vela_completions.vdat");
  }
  Texts Find(std::string_view typed) const {
    Completions reader;
    EXPECT_TRUE(reader.Open(completions, autocomplete));
    std::array<std::string_view, 2 * Completions::kMostOfEach> found;
    const size_t count = reader.Find(typed, found);
    return {found.begin(), found.begin() + static_cast<ptrdiff_t>(count)};
  }
};

TEST(Completions, AtTheBeginningOfAnyWord) {
  const Made made(
      {"Die elementare Netzwerkinfrastruktur", "Netze", "Das Benetzen", "R&D: net.zip"});
  EXPECT_EQ(made.Find("netz"), (Texts{"Netze", "Die elementare Netzwerkinfrastruktur"}));
  EXPECT_EQ(made.Find("zip"), Texts{"R&#38;D: net.zip"});
  EXPECT_EQ(made.Find("d"),
            (Texts{"Die elementare Netzwerkinfrastruktur", "Das Benetzen", "R&#38;D: net.zip"}));
  EXPECT_EQ(made.Find("netzwerke"), Texts());
}

TEST(Completions, EveryWordThatIsTyped) {
  const Made made({"Files that you read", "Read a file", "Read and write", "Reading files"});
  EXPECT_EQ(made.Find("read f"), (Texts{"Files that you read", "Read a file", "Reading files"}));
  // What begins with all of it is first.
  EXPECT_EQ(made.Find("read a"), (Texts{"Read a file", "Read and write"}));
  EXPECT_EQ(made.Find("read x"), Texts());
}

TEST(Completions, WithAndWithoutAccents) {
  const Made made({"Caf\u00E9 am Fluss", "Cafeteria", "\u00DCber uns"});
  EXPECT_EQ(made.Find("cafe"), (Texts{"Caf\u00E9 am Fluss", "Cafeteria"}));
  EXPECT_EQ(made.Find("caf\u00E9"), Texts{"Caf\u00E9 am Fluss"});
  EXPECT_EQ(made.Find("uber"), Texts{"\u00DCber uns"});
}

TEST(Completions, JapaneseFromOneCharacterOn) {
  const Made made({"\u521D\u671F\u8A2D\u5B9A", "\u8A2D\u8A08"});
  EXPECT_EQ(made.Find("\u8A2D"), (Texts{"\u8A2D\u8A08", "\u521D\u671F\u8A2D\u5B9A"}));
}

TEST(Completions, TheFirstOfMany) {
  Texts texts;
  for (int i = 0; i < 500; ++i) {
    texts.push_back((i % 2 == 0 ? "town " : "the town ") + std::to_string(1000 + i));
  }
  const Texts found = Made(texts).Find("to");
  ASSERT_EQ(found.size(), 2 * Completions::kMostOfEach);
  for (size_t i = 0; i < Completions::kMostOfEach; ++i) {
    EXPECT_EQ(found[i], texts[2 * i]);
    EXPECT_EQ(found[Completions::kMostOfEach + i], texts[2 * i + 1]);
  }
}

TEST(Completions, BelongToTheirFileAlone) {
  const Made made({"one", "two"});
  Completions reader;
  EXPECT_FALSE(reader.Open(made.completions, made.autocomplete + "x"));
  EXPECT_FALSE(reader.Open(made.completions, "two\none\n"));
  for (size_t length = 0; length < made.completions.size(); ++length) {
    EXPECT_FALSE(reader.Open(made.completions.substr(0, length), made.autocomplete)) << length;
  }
  EXPECT_EQ(Made(Texts()).completions, "");
}

TEST(Completions, DamageNeverLeadsOutOfTheFiles) {
  const Made made({"one town", "two towns", "caf\u00E9"});
  for (size_t at = sizeof(CompletionsHeader); at < made.completions.size(); ++at) {
    for (const char change : {'\x01', '\x7F', '\xFF'}) {
      std::string bytes = made.completions;
      bytes[at] = static_cast<char>(bytes[at] ^ change);
      Completions reader;
      ASSERT_TRUE(reader.Open(bytes, made.autocomplete));
      std::array<std::string_view, 2 * Completions::kMostOfEach> found;
      for (const char* typed : {"t", "to", "one t", "cafe"}) {
        const size_t count = reader.Find(typed, found);
        for (size_t i = 0; i < count; ++i) {
          // A line of the file, never a part of one.
          EXPECT_NE(("\n" + made.autocomplete).find("\n" + std::string(found[i]) + "\n"),
                    std::string::npos);
        }
      }
    }
  }
}

}  // namespace
}  // namespace vela::indexer
