// A site that is read in parts: the index that is merged from them is that of one run.
#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <vector>

#include "indexer/build_index.h"
#include "indexer/report/index_error.h"
#include "indexer/source/database.h"
#include "indexer/state/site_part.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string> FilesOf(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      files[entry.path().lexically_relative(folder).string()] = ReadFile(entry.path());
    }
  }
  return files;
}

struct PartedSite : TestSite {
  PartedSite() {
    const std::string same = "<title>Same</title><p>" + std::string(300, 'x') + " the same words";
    for (int i = 0; i < 20; ++i) {
      const std::string number = std::to_string(i);
      Add("f" + std::to_string(i % 3) + "/p" + number + ".html",
          "<html lang=de><title>Seite " + number +
              "</title><a href=../f1/p1.html>der Hund</a> und " + number + " Katzen",
          1000000000 + i * 200000);
    }
    Add("c.html", "<title>C</title><link rel=canonical href=f1/p1.html><p>a copy");
    Add("d.html", same);
    Add("e.html", same);
    std::string words;
    for (int i = 0; i < 40; ++i) words += "Wort" + std::to_string(i) + " ";
    Add("long.html", "<title>Lang</title><p>" + words + "<h2 id=a>Eins</h2><p>" + words +
                         "<h2 id=b>Zwei</h2><p>" + words);
    options.config.content.sectionWords = 100;
    Add("hidden.html", "<meta name=robots content=noindex><title>H</title>h");
    Add("picture.pdfx", "other");
    options.config.trustsFileDates = false;
    options.config.stemming = kStemmingByPages;
    options.exclude = {"nothing"};
    options.config.siteName = kAutoSiteName;
    options.config.leavesOutRepeatedText = true;
    options.config.languageCategories = true;
  }
  std::string Folder(uint32_t number) const {
    return (scratch.path() / ("part" + std::to_string(number))).string();
  }
  IndexSummary Run(const Options& wanted) const {
    Progress progress(false);
    const volatile std::sig_atomic_t stop = 0;
    return BuildIndex(wanted, progress, stop);
  }
  IndexSummary Read(uint32_t number, uint32_t count) const {
    Options part = options;
    part.out.clear();
    part.state = Folder(number);
    part.part = std::to_string(number) + "/" + std::to_string(count);
    return Run(part);
  }
  void ReadAll(uint32_t count) const {
    for (uint32_t i = 1; i <= count; ++i) Read(i, count);
  }
  Options Merging(const std::vector<uint32_t>& numbers) const {
    Options merging = options;
    merging.site.clear();
    merging.out = (scratch.path() / "merged").string();
    for (const uint32_t number : numbers) merging.merge.push_back(Folder(number));
    return merging;
  }
  // What is said of a merge that is refused.
  std::string Refused(const Options& merging, ExitStatus status = ExitStatus::kUsage) const {
    try {
      Run(merging);
    } catch (const IndexError& error) {
      EXPECT_EQ(error.status, status) << error.what();
      return error.what();
    }
    return "merged";
  }
};

TEST(Parts, MakeTheIndexOfOneRun) {
  PartedSite site;
  const IndexSummary whole = site.Build();
  for (const uint32_t count : {1U, 2U, 3U, 7U}) {
    SCOPED_TRACE(count);
    std::vector<uint32_t> numbers;
    uint64_t pages = 0;
    uint64_t leftOut = 0;
    for (uint32_t i = count; i >= 1; --i) {  // the last first: their order does not count
      const IndexSummary part = site.Read(i, count);
      EXPECT_EQ(part.siteItems, 25u);
      pages += part.pages;
      leftOut += part.files.total;
      numbers.push_back(i);
    }
    EXPECT_EQ(pages, 24u);  // with the copies, which no part knows of
    EXPECT_EQ(leftOut, 1u);
    const IndexSummary merged = site.Run(site.Merging(numbers));
    EXPECT_EQ(FilesOf(site.scratch.path() / "merged"), FilesOf(site.index));
    EXPECT_EQ(support::FaultsOf((site.scratch.path() / "merged").string()), "");
    EXPECT_EQ(merged.pages, whole.pages);
    EXPECT_EQ(merged.sectionPages, 2u);
    EXPECT_EQ(merged.stemming, whole.stemming);
    EXPECT_EQ(merged.files.total, whole.files.total);
    EXPECT_EQ(merged.otherKinds.total, whole.otherKinds.total);
    EXPECT_EQ(merged.warnings.size(), whole.warnings.size());
    EXPECT_EQ(merged.sourceBytes, whole.sourceBytes);
  }
}

TEST(Parts, ReadOnlyWhatHasChanged) {
  PartedSite site;
  site.ReadAll(3);
  site.Add("b.html", "<title>New</title>new");
  fs::remove(site.folder / "f0/p0.html");
  uint64_t kept = 0;
  for (uint32_t i = 1; i <= 3; ++i) kept += site.Read(i, 3).keptPages;
  EXPECT_EQ(kept, 24u);
  site.Build();
  site.Run(site.Merging({1, 2, 3}));
  EXPECT_EQ(FilesOf(site.scratch.path() / "merged"), FilesOf(site.index));
}

TEST(Parts, WhatIsNoWholeSiteIsRefused) {
  PartedSite site;
  site.ReadAll(3);
  EXPECT_NE(site.Refused(site.Merging({1, 3})).find("Part 2/3 is missing"), std::string::npos);
  EXPECT_NE(site.Refused(site.Merging({1, 2, 3, 2})).find("given twice"), std::string::npos);
  fs::copy(site.Folder(2), site.Folder(9));
  EXPECT_NE(site.Refused(site.Merging({1, 2, 3, 9})).find("part 2/3, as "), std::string::npos);
  EXPECT_NE(site.Refused(site.Merging({1, 2, 4})).find("holds no part"), std::string::npos);
  site.Read(2, 4);
  EXPECT_NE(site.Refused(site.Merging({1, 2, 3})).find("is part 2/4"), std::string::npos);
  site.Read(2, 3);
  EXPECT_EQ(site.Refused(site.Merging({1, 2, 3})), "merged");
}

TEST(Parts, OfOtherFilesOrWishesAreRefused) {
  PartedSite site;
  site.ReadAll(3);
  Options other = site.Merging({1, 2, 3});
  other.config.charset = "iso-8859-1";
  EXPECT_NE(site.Refused(other).find("another configuration"), std::string::npos);
  other = site.Merging({1, 2, 3});
  other.baseUrl = "https://y.example/";
  EXPECT_NE(site.Refused(other).find("another configuration"), std::string::npos);

  site.options.config.dates = {DateSource::kMeta};
  site.Read(3, 3);
  EXPECT_NE(site.Refused(site.Merging({1, 2, 3})).find("another configuration"), std::string::npos);
  site.options.config.dates = Options().config.dates;
  site.Read(3, 3);
  EXPECT_EQ(site.Refused(site.Merging({1, 2, 3})), "merged");

  site.Add("new.html", "<title>New</title>new");
  site.Read(1, 3);
  EXPECT_NE(site.Refused(site.Merging({1, 2, 3})).find("other files"), std::string::npos);
  site.Read(2, 3);
  site.Read(3, 3);
  EXPECT_EQ(site.Refused(site.Merging({1, 2, 3})), "merged");
}

TEST(Parts, DamagedOnesAreRefused) {
  const struct {
    const char* what;
    const char* sql;
    const char* said;
  } cases[] = {
      {"a row less", "DELETE FROM page WHERE path = (SELECT max(path) FROM page)", "all pages"},
      {"another row", "UPDATE page SET modified = modified + 1", "damaged"},
      {"other blocks", "UPDATE block SET bytes = x'00'", "damaged"},
      {"no blocks", "DELETE FROM block", "damaged"},
      {"no notes", "DELETE FROM state WHERE name = 'part'", "no complete part"},
      {"other notes", "UPDATE state SET value = substr(value, 9) WHERE name = 'part'", "complete"},
      {"another program", "UPDATE state SET value = '1 0' WHERE name = 'form'", "another"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    PartedSite site;
    site.ReadAll(2);
    Database(fs::path(site.Folder(2)) / "vela_pages.db", true, {.holds = "a", .afterLoss = "b"})
        .Run(c.sql);
    const std::string said = site.Refused(site.Merging({1, 2}));
    EXPECT_NE(said.find(c.said), std::string::npos) << said;
    EXPECT_FALSE(fs::exists(site.scratch.path() / "merged"));
  }
  PartedSite site;
  site.ReadAll(2);
  WriteFile(fs::path(site.Folder(2)) / "vela_pages.db", "no database");
  EXPECT_NE(site.Refused(site.Merging({1, 2}), ExitStatus::kFailed).find("not a database"),
            std::string::npos);
}

TEST(Parts, NumbersAreTakenInOneForm) {
  for (const char* text : {"", "1", "/", "1/", "/2", "0/2", "3/2", "1/2/3", "-1/2", "1/2x", " 1/2",
                           "1/1001", "99999999999/99999999999"}) {
    EXPECT_FALSE(ReadPartNumber(text).has_value()) << text;
  }
  EXPECT_EQ(ReadPartNumber("1000/1000")->number, 1000u);
  EXPECT_EQ(ReadPartNumber("2/7")->count, 7u);
  PartedSite site;
  site.options.part = "3/2";
  site.options.state = site.Folder(1);
  EXPECT_NE(site.Refused(site.options).find("--part 2/7"), std::string::npos);
}

TEST(Parts, NotesComeBack) {
  PartNotes notes;
  notes.part = {.number = 2, .count = 7};
  notes.list = {.high = 0xFFFFFFFFFFFFFFFF, .low = 5};
  notes.base = "https://x.example/";
  notes.look.languages = {{"de", 3}, {"pt-BR", 1}};
  notes.look.habits = {{"Name", "x"}, "Shared", {7, 0xFFFFFFFFFFFFFFFF}};
  notes.look.repeatedTexts = {"the same on each page"};
  notes.listing.sought = "in: here";
  AddLeftOut(notes.listing.leftOut, Reason::kNotRegular, "a:b");
  AddLeftOut(notes.listing.otherKinds, Reason::kOtherKind, "c.x", ".x");
  notes.listing.unused = {{Reason::kUnusedExclude, "", "drafts"}};
  const std::string text = PartText(notes);
  PartNotes read;
  ASSERT_TRUE(ReadPartText(text, read));
  EXPECT_EQ(PartText(read), text);
  EXPECT_EQ(read.list, notes.list);
  EXPECT_EQ(read.look.languages, notes.look.languages);
  EXPECT_EQ(read.look.habits.repeatedTexts, notes.look.habits.repeatedTexts);
  EXPECT_EQ(read.listing.otherKinds.entries[0].where, ".x");
  for (size_t size = 0; size < text.size(); ++size) {
    PartNotes cut;
    const bool isWhole = ReadPartText(text.substr(0, size), cut);
    EXPECT_TRUE(!isWhole || cut.listing.unused.empty()) << size;
  }
}

}  // namespace
}  // namespace vela::indexer
