#include "index/index_files.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::IndexBuilder;
using support::ScratchDirectory;

IndexBuilder OnePage() {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Page(support::NewPage("a.html"));
  return builder;
}

OpenResult OpenFiles(const IndexBuilder& builder) {
  ScratchDirectory scratch;
  builder.WriteTo(scratch.path());
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  Settings settings;
  EXPECT_EQ(ReadSettingsFile(settings, directory), SettingsStatus::kOk);
  IndexFiles files;
  return OpenIndexFiles(files, directory, settings);
}

TEST(IndexFiles, Table) {
  const struct {
    const char* what;
    IndexBuilder builder;
    LoadStatus status;
    IndexFile file;  // the one at fault
  } cases[] = {
      {"all there", OnePage(), LoadStatus::kOk, {}},
      {"no page data", OnePage().Omit("vela_pagedata.vdat"), LoadStatus::kCannotOpen,
       IndexFile::kPageData},
      {"a directory in its place", OnePage().Directory("vela_pagedata.vdat"),
       LoadStatus::kCannotOpen, IndexFile::kPageData},
      {"no recommended links", OnePage().Set("Recommended", "1"), LoadStatus::kCannotOpen,
       IndexFile::kRecommended},
      {"none asked for", OnePage().Set("Recommended", "2"), LoadStatus::kOk, {}},
      {"too many of them",
       OnePage()
           .Set("Recommended", "1")
           .Set("NumRecommended", "-1")
           .File("vela_recommended.vdat", "a 0\n"),
       LoadStatus::kNoMemory, IndexFile::kRecommended},
      {"no page info", OnePage().Omit("vela_pageinfo.vdat"), LoadStatus::kCannotOpen,
       IndexFile::kPageInfo},
      {"page info too short", OnePage().Set("PageInfoSize", "18"), LoadStatus::kTooShort,
       IndexFile::kPageInfo},
      {"one page too many", OnePage().Set("NumPages", "2"), LoadStatus::kRecordBeyondEnd,
       IndexFile::kPageInfo},
      {"slack behind the pages",
       OnePage().AppendTo("vela_pageinfo.vdat", "x").Set("PageInfoSize", "18"),
       LoadStatus::kSlackAtEnd, IndexFile::kPageInfo},
      {"no page text, none needed", OnePage().Omit("vela_pagetext.vdat"), LoadStatus::kOk, {}},
      {"no page text for context", OnePage().Set("DisplayContext", "1").Omit("vela_pagetext.vdat"),
       LoadStatus::kCannotOpen, IndexFile::kPageText},
      {"no page text for phrases",
       OnePage().Set("AllowExactPhrase", "1").Omit("vela_pagetext.vdat"), LoadStatus::kCannotOpen,
       IndexFile::kPageText},
      {"the placeholder is not seen",
       OnePage()
           .Set("DisplayContext", "1")
           .File("vela_pagetext.vdat", std::string("T\0h\0i\0s\0", 8)),
       LoadStatus::kOk,
       {}},
      {"no word map", OnePage().Omit("vela_wordmap.vdat"), LoadStatus::kCannotOpen,
       IndexFile::kWordMap},
      {"a directory in the word map's place", OnePage().Directory("vela_wordmap.vdat"),
       LoadStatus::kCannotOpen, IndexFile::kWordMap},
      {"no spelling, none asked for", OnePage().Set("Spelling", "0"), LoadStatus::kOk, {}},
      {"no spelling", OnePage().Set("Spelling", "1"), LoadStatus::kCannotOpen,
       IndexFile::kSpelling},
      {"page data comes before page info",
       OnePage().Omit("vela_pagedata.vdat").Omit("vela_pageinfo.vdat"), LoadStatus::kCannotOpen,
       IndexFile::kPageData},
      {"page info before the word map",
       OnePage().Omit("vela_pageinfo.vdat").Omit("vela_wordmap.vdat"), LoadStatus::kCannotOpen,
       IndexFile::kPageInfo},
      {"page text before the word map",
       OnePage().Set("DisplayContext", "1").Omit("vela_pagetext.vdat").Omit("vela_wordmap.vdat"),
       LoadStatus::kCannotOpen, IndexFile::kPageText},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const OpenResult result = OpenFiles(c.builder);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.file, c.file);
  }
}

TEST(IndexFiles, CloseIsHarmlessTwice) {
  support::LoadedSite site(OnePage());
  CloseIndexFiles(site.files);
  EXPECT_FALSE(site.files.pageData.isOpen());
  CloseIndexFiles(site.files);
  EXPECT_FALSE(site.files.wordMap.isOpen());
}

}  // namespace
}  // namespace vela
