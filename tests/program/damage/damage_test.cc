// damage_test.cc: whatever bytes an index directory holds, a request ends with an answer.
//
// One file of a small valid directory at a time is cut, changed byte by byte, or has its numbers
// replaced; the program must write something, end by itself with status 0 or 1, in time, and
// without taking more memory than such small files call for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "format/index_directory.h"
#include "support/index_builder.h"
#include "support/recipe.h"
#include "support/run_program.h"
#include "support/scratch_directory.h"
#include "support/with_extensions.h"
#include "support/with_lookup.h"

namespace vela::support {
namespace {

const std::filesystem::path kProgram = VELA_SEARCH_PROGRAM;
const std::filesystem::path kRecipe = VELA_DAMAGE_RECIPE;

// A process under the sanitizers takes much longer to start.
const size_t kMostRuns = IsSanitized() ? 120 : 700;  // of one kind of damage to one file
constexpr int64_t kMostKilobytes = 96 * 1024;

// They take turns, so that each kind of damage meets each of them.
constexpr const char* kQueries[] = {
    "vela_query=apple+%22pear+plum%22+pea*&vela_cat[]=0&vela_cat[]=1",
    "vela_query=apple+pear&vela_xml=1&masternode=1&vela_sort=1",
    "vela_query=plam&vela_datefrom=1/1/2000&vela_dateto=1/1/2010",
    "vela_query=&year=1999&colour=0",
    "vela_query=big+-plum+site:a&vela_and=1&vela_sort=2",
    "vela_query=pl*+aple&vela_cat=2&vela_and=1",
    "vela_query=%22plum+apples%22+aple&vela_xml=1",
    "vela_query=the+aplpe&vela_sort=0",
};
constexpr const char* kSuggestionQuery = "vela_ac=1&vela_query=ap";

IndexBuilder Everything() {
  IndexBuilder index;
  ApplyRecipe(ReadWholeFile(kRecipe), kRecipe.parent_path(), index);
  return index;
}

// A valid directory in which one file at a time is replaced.
class DamagedIndex {
 public:
  explicit DamagedIndex(std::string name, bool withExtensions = false) : name_(std::move(name)) {
    Everything().WriteTo(scratch_.path());
    EXPECT_TRUE(!withExtensions || SwitchExtensionsOn(scratch_.path()));
    whole_ = ReadWholeFile(scratch_.path() / name_);
  }

  const std::string& whole() const { return whole_; }

  // Answers one request with `bytes` in the file's place.
  void Try(std::string_view bytes, const std::string& what) {
    std::ofstream(scratch_.path() / name_, std::ios::binary | std::ios::trunc) << bytes;
    const bool suggestions = name_ == kAutoCompleteFileName || name_ == kCompletionsFileName;
    const char* query = suggestions ? kSuggestionQuery : kQueries[runs_ % std::size(kQueries)];
    ++runs_;
    const Outcome outcome = RunProgram(kProgram, GetRequest(scratch_.path(), query));
    SCOPED_TRACE(name_ + ": " + what + ", asked for " + query);
    EXPECT_TRUE(outcome.exitStatus == 0 || outcome.exitStatus == 1) << DescribeEnd(outcome);
    EXPECT_FALSE(outcome.output.empty());
    EXPECT_EQ(outcome.errorOutput, "");
    if (!IsSanitized()) {
      EXPECT_LT(outcome.residentKilobytes, kMostKilobytes);
    }
  }

 private:
  std::string name_;
  std::string whole_;
  ScratchDirectory scratch_;
  size_t runs_ = 0;
};

// The damage is worth little where the undamaged directory leaves a reader unused.
TEST(WholeIndex, EveryFeatureShows) {
  constexpr const char* kTraces[] = {
      "<span class=\"highlight\">",  // highlighted HTML
      "<vela:highlight>",            // highlighted XML
      "<div class=\"context\">\n <b>...</b>",
      "<vela:context> ...",
      "<div class=\"recommended\">",
      "<vela:recommended>",
      "Perhaps <a href=",
      "<vela:spelling>",
      "<div class=\"cat_summary\">",
      "<vela:categorySummary>",
      "<div class=\"result_custommeta\">",
      "<vela:price>EUR 12.34</vela:price>",
      "<div class=\"description\">",
      "<div class=\"result_image\">",
      "<div class=\"sorting\">",
      "<div class=\"searchtime\">",
      "<vela:searchtime>",
      "<vela:setting name=\"AccentChars\">",
      "vela_highlight=",
      "#search=",
      "target=\"_blank\"",
      "target=\"_top\"",
      "suggest();",
      "pick();",
      "<form method=",
  };
  const ScratchDirectory scratch;
  Everything().WriteTo(scratch.path());
  std::string answers;
  for (const char* query : kQueries) {
    answers += RunProgram(kProgram, GetRequest(scratch.path(), query)).output;
  }
  for (const char* trace : kTraces) EXPECT_NE(answers.find(trace), answers.npos) << trace;
  EXPECT_TRUE(std::filesystem::exists(scratch.path() / "logs" / "searchwords.log"));
  const Outcome suggestions = RunProgram(kProgram, GetRequest(scratch.path(), kSuggestionQuery));
  EXPECT_NE(suggestions.output.find("VelaAutoComplete_UseSuggestion"), std::string::npos);
}

// The distance between two tries that keeps `tries` of them within the limit; odd, so that it does
// not fall into step with records and lines.
size_t Stride(size_t tries) { return tries / kMostRuns < 1 ? 1 : tries / kMostRuns * 2 + 1; }

std::vector<std::string> FileNames() {
  std::vector<std::string> names;
  for (const auto& [name, bytes] : Everything().Files()) {
    if (name.ends_with(".vdat") || name == "search_template.html") names.push_back(name);
  }
  return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
  return info.param.substr(0, info.param.find('.'));
}

class Damage : public ::testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Files, Damage, ::testing::ValuesIn(FileNames()), TestName);

TEST_P(Damage, WholeFileIsAnswered) {
  DamagedIndex index(GetParam());
  for (size_t i = 0; i < std::size(kQueries); ++i) index.Try(index.whole(), "nothing changed");
}

const std::string kExtensionFiles[] = {
    kPageTextFileName,     kDictionaryFileName,  kWordMapFileName,
    kPageInfoFileName,     kSectionsFileName,    kCompletionsFileName,
    kAutoCompleteFileName, kCorrectionsFileName, kSynonymsFileName};

class ExtensionDamage : public ::testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Files, ExtensionDamage, ::testing::ValuesIn(kExtensionFiles), TestName);

TEST_P(ExtensionDamage, CutAtEveryLength) {
  DamagedIndex index(GetParam(), true);
  const std::string& whole = index.whole();
  for (size_t length = 0; length <= whole.size(); length += Stride(whole.size())) {
    index.Try(std::string_view(whole).substr(0, length), "cut to " + std::to_string(length));
  }
}

TEST_P(ExtensionDamage, EveryByteChanged) {
  DamagedIndex index(GetParam(), true);
  const std::string& whole = index.whole();
  constexpr char kMasks[] = {'\x01', '\x80', '\xFF'};
  for (size_t at = 0; at < whole.size(); at += Stride(whole.size())) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(bytes[at] ^ kMasks[at % std::size(kMasks)]);
    index.Try(bytes, "byte " + std::to_string(at));
  }
}

// The files are used where they are whole.
TEST(WholeIndex, EveryExtensionShows) {
  const ScratchDirectory scratch;
  Everything().WriteTo(scratch.path());
  ASSERT_TRUE(SwitchExtensionsOn(scratch.path()));
  std::string answers;
  for (const char* query : kQueries) {
    answers += RunProgram(kProgram, GetRequest(scratch.path(), query)).output;
  }
  for (const char* trace : {
           "#one",
           "These are the results for <b>the apple</b>",
           "<vela:spelling>&#34;plum apples&#34; apple</vela:spelling>",
       }) {
    EXPECT_NE(answers.find(trace), answers.npos) << trace;
  }
  EXPECT_NE(answers.find("<span class=\"result_section\">&#8250; First</span>"), answers.npos);
  const std::string whole =
      RunProgram(kProgram, GetRequest(scratch.path(), "vela_ac=1&vela_query=pie")).output;
  EXPECT_NE(whole.find("vela_ac_item"), whole.npos) << whole;
}

TEST_P(Damage, CutAtEveryLength) {
  DamagedIndex index(GetParam());
  const std::string& whole = index.whole();
  const size_t stride = Stride(whole.size());
  for (size_t length = 0; length < whole.size(); length += stride) {
    index.Try(std::string_view(whole).substr(0, length), "cut to " + std::to_string(length));
  }
}

TEST_P(Damage, EveryByteChanged) {
  constexpr unsigned char kMasks[] = {0x01, 0x80, 0xFF, 0x20};
  DamagedIndex index(GetParam());
  const std::string& whole = index.whole();
  const size_t tries = whole.size() * (std::size(kMasks) + 1);
  for (size_t i = 0; i < tries; i += Stride(tries)) {
    const size_t at = i / (std::size(kMasks) + 1);
    const size_t kind = i % (std::size(kMasks) + 1);
    std::string bytes = whole;
    const auto old = static_cast<unsigned char>(bytes[at]);
    bytes[at] = kind < std::size(kMasks) ? static_cast<char>(old ^ kMasks[kind]) : '\0';
    index.Try(bytes, "byte " + std::to_string(at) + ", change " + std::to_string(kind));
  }
}

TEST_P(Damage, EveryWordOfBytesHuge) {
  const std::string huge[] = {"\xFF\xFF\xFF\x7F", "\xFF\xFF\xFF\xFF", std::string(4, '\0')};
  DamagedIndex index(GetParam());
  const std::string& whole = index.whole();
  if (whole.size() < 4) return;
  const size_t tries = (whole.size() - 3) * std::size(huge);
  for (size_t i = 0; i < tries; i += Stride(tries)) {
    std::string bytes = whole;
    bytes.replace(i / std::size(huge), 4, huge[i % std::size(huge)]);
    index.Try(bytes, "four bytes at " + std::to_string(i / std::size(huge)));
  }
}

// Text files: every run of digits becomes a number nobody would write.
TEST_P(Damage, EveryNumberReplaced) {
  constexpr const char* kNumbers[] = {
      "-1", "0", "-2147483648", "2147483647", "99999999999", "18446744073709551615", "65536", "x"};
  DamagedIndex index(GetParam());
  const std::string& whole = index.whole();
  struct Run {
    size_t at;
    size_t length;
  };
  std::vector<Run> digits;
  const auto isDigit = [&whole](size_t i) {
    return isdigit(static_cast<unsigned char>(whole[i])) != 0;
  };
  for (size_t i = 0; i < whole.size(); ++i) {
    if (!isDigit(i)) continue;
    size_t end = i;
    while (end < whole.size() && isDigit(end)) ++end;
    digits.push_back({i, end - i});
    i = end;
  }
  const size_t tries = digits.size() * std::size(kNumbers);
  for (size_t i = 0; i < tries; i += Stride(tries)) {
    const Run& run = digits[i / std::size(kNumbers)];
    std::string bytes = whole;
    bytes.replace(run.at, run.length, kNumbers[i % std::size(kNumbers)]);
    index.Try(bytes, std::string("number at ") + std::to_string(run.at) + " becomes " +
                         kNumbers[i % std::size(kNumbers)]);
  }
}

// The lookup file only says what the others say: damaged, cut or of another index it changes no
// answer.
class DamagedLookup : public ::testing::Test {
 protected:
  void SetUp() override {
    IndexBuilder index = Everything();
    index.Set("Timing", "0").Set("Logging", "0");
    index.WriteTo(scratch_.path());
    for (const char* query : kQueries) answers_.push_back(Answer(query));
    ASSERT_TRUE(AddLookup(scratch_.path()));
    whole_ = ReadWholeFile(File());
    for (size_t i = 0; i < std::size(kQueries); ++i) Try(whole_, "nothing changed");
  }

  std::filesystem::path File() const { return scratch_.path() / kLookupFileName; }

  std::string Answer(const char* query) const {
    return RunProgram(kProgram, GetRequest(scratch_.path(), query)).output;
  }

  void Try(std::string_view bytes, const std::string& what) {
    std::ofstream(File(), std::ios::binary | std::ios::trunc) << bytes;
    const size_t query = runs_++ % std::size(kQueries);
    EXPECT_EQ(Answer(kQueries[query]), answers_[query]) << what << ", " << kQueries[query];
  }

  // How far apart tries are so that there are kMostRuns.
  size_t Step() const { return std::max<size_t>(1, whole_.size() / kMostRuns); }

  std::string whole_;
  ScratchDirectory scratch_;

 private:
  std::vector<std::string> answers_;  // without the file
  size_t runs_ = 0;
};

TEST_F(DamagedLookup, Cut) {
  for (size_t length = 0; length < whole_.size(); length += Step()) {
    Try(std::string_view(whole_).substr(0, length), "cut to " + std::to_string(length));
  }
}

TEST_F(DamagedLookup, BytesChanged) {
  for (size_t at = 0; at < whole_.size(); at += Step()) {
    std::string bytes = whole_;
    bytes[at] = static_cast<char>(bytes[at] ^ 0x11);
    Try(bytes, "byte " + std::to_string(at));
  }
}

// A block with a checksum that is right, and numbers that no indexer writes: positions and counts
// beyond everything, on every place of eight bytes. The answer may then be another one, as with any
// file that somebody has made up, but there is one.
TEST_F(DamagedLookup, MadeUpNumbers) {
  constexpr uint64_t kNumbers[] = {~uint64_t{0}, uint64_t{1} << 63, 0x00FF'FFFF'00FF'FFFF, 1};
  for (size_t at = 0; at < whole_.size(); at += sizeof(uint64_t)) {
    const size_t block = at / kLookupBlockSize;
    if (at % kLookupBlockSize >= kLookupBlockRoom) continue;
    std::string bytes = whole_;
    memcpy(bytes.data() + at, &kNumbers[at / sizeof(uint64_t) % std::size(kNumbers)],
           sizeof(uint64_t));
    const std::string_view room =
        std::string_view(bytes).substr(block * kLookupBlockSize, kLookupBlockRoom);
    const uint64_t sum = Checksum(room, block);
    memcpy(bytes.data() + block * kLookupBlockSize + kLookupBlockRoom, &sum, sizeof sum);
    std::ofstream(File(), std::ios::binary | std::ios::trunc) << bytes;
    const char* query = kQueries[at / sizeof(uint64_t) % std::size(kQueries)];
    const Outcome outcome = RunProgram(kProgram, GetRequest(scratch_.path(), query));
    EXPECT_EQ(outcome.exitStatus, 0) << at << " " << query << DescribeEnd(outcome);
    EXPECT_FALSE(outcome.output.empty());
    EXPECT_EQ(outcome.errorOutput, "");
  }
}

TEST_F(DamagedLookup, OfAnotherIndexWithTheSameGeneration) {
  IndexBuilder other = Everything();
  other.Word("zebra", {{.page = 0, .score = 9}});
  const ScratchDirectory folder;
  other.WriteTo(folder.path());
  ASSERT_TRUE(AddLookup(folder.path()));
  std::string bytes = ReadWholeFile(folder.path() / kLookupFileName);
  const size_t generation = offsetof(LookupHeader, generation);
  bytes.replace(generation, sizeof(uint64_t), whole_.substr(generation, sizeof(uint64_t)));
  const uint64_t sum = Checksum(std::string_view(bytes).substr(0, kLookupBlockRoom), 0);
  memcpy(bytes.data() + kLookupBlockRoom, &sum, sizeof sum);
  for (size_t i = 0; i < std::size(kQueries); ++i) Try(bytes, "of another index");
}

}  // namespace
}  // namespace vela::support
