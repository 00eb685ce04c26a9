#include "index/index_files.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;
using support::IndexBuilder;
using support::ScratchDirectory;

constexpr char kCannotFind[] =
    "Can not find one or more of the Vela index files.<br />Please make sure the generated index "
    "files are uploaded to the same path as this search script.<br />Also check file permissions "
    "have been set to allow reading.<br />\n";

std::string CannotOpen(const std::string& name) {
  return "Unable to open " + name + "<br />Check file permissions and that file exists";
}

IndexBuilder OnePage() {
  IndexBuilder builder;
  builder.Set("DictIDLen", "4").Page(support::NewPage("a.html"));
  return builder;
}

struct Outcome {
  bool opened;
  std::string text;
};

Outcome OpenFiles(const IndexBuilder& builder, bool xml) {
  ScratchDirectory scratch;
  builder.WriteTo(scratch.path());
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  Settings settings;
  EXPECT_EQ(ReadSettingsFile(settings, directory), SettingsStatus::kOk);
  IndexFiles files;
  CapturedResponse captured(xml);
  const bool opened = OpenIndexFiles(files, directory, settings, captured.response);
  if (opened) {
    EXPECT_TRUE(files.pageData.isOpen() && files.wordMap.isOpen());
  }
  return {opened, captured.Text()};
}

void ExpectError(const IndexBuilder& builder, const std::string& html, const std::string& xml) {
  const Outcome inHtml = OpenFiles(builder, false);
  EXPECT_FALSE(inHtml.opened);
  EXPECT_EQ(inHtml.text, html);
  const Outcome inXml = OpenFiles(builder, true);
  EXPECT_FALSE(inXml.opened);
  EXPECT_EQ(inXml.text, xml);
}

void ExpectWrappedError(const IndexBuilder& builder, const std::string& message) {
  ExpectError(builder, message, "<vela:error>" + message + "</vela:error>\n");
}

TEST(IndexFiles, AllThere) {
  const Outcome outcome = OpenFiles(OnePage(), false);
  EXPECT_TRUE(outcome.opened);
  EXPECT_EQ(outcome.text, "");
}

TEST(IndexFiles, PageDataMissing) {
  ExpectWrappedError(OnePage().Omit("vela_pagedata.vdat"), CannotOpen("vela_pagedata.vdat"));
}

TEST(IndexFiles, DirectoryInTheFilesPlaceCannotBeOpened) {
  ExpectWrappedError(OnePage().Directory("vela_pagedata.vdat"), CannotOpen("vela_pagedata.vdat"));
  ExpectWrappedError(OnePage().Directory("vela_wordmap.vdat"), kCannotFind);
}

TEST(IndexFiles, PageInfoMissing) {
  ExpectWrappedError(OnePage().Omit("vela_pageinfo.vdat"), CannotOpen("vela_pageinfo.vdat"));
}

TEST(IndexFiles, PageInfoMessageStandsBeforeTheOpeningError) {
  const std::string cannotOpen = CannotOpen("vela_pageinfo.vdat");
  const struct {
    const char* what;
    IndexBuilder builder;
    std::string message;
  } cases[] = {
      {"short", OnePage().Set("PageInfoSize", "18"),
       "Pageinfo file does not match PageInfoSize specified."},
      {"one page too many", OnePage().Set("NumPages", "2"),
       "Pageinfo file and PageInfoSize does not match NumPages specified."},
      {"slack", OnePage().AppendTo("vela_pageinfo.vdat", "x").Set("PageInfoSize", "18"),
       "Warning: Pageinfo file and PageInfoSize does not match NumPages specified."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ExpectError(c.builder, c.message + cannotOpen,
                c.message + "<vela:error>" + cannotOpen + "</vela:error>\n");
  }
}

TEST(IndexFiles, PageTextIsNotNeededWithoutContextAndPhrases) {
  EXPECT_TRUE(OpenFiles(OnePage().Omit("vela_pagetext.vdat"), false).opened);
}

TEST(IndexFiles, PageTextMissing) {
  for (const char* key : {"DisplayContext", "AllowExactPhrase"}) {
    SCOPED_TRACE(key);
    ExpectWrappedError(OnePage().Set(key, "1").Omit("vela_pagetext.vdat"),
                       CannotOpen("vela_pagetext.vdat"));
  }
}

TEST(IndexFiles, PageTextPlaceholderIsNotSeen) {
  const std::string placeholder("T\0h\0i\0s\0", 8);
  EXPECT_TRUE(
      OpenFiles(OnePage().Set("DisplayContext", "1").File("vela_pagetext.vdat", placeholder), false)
          .opened);
}

TEST(IndexFiles, WordMapMissingGivesTheMessageWithLineBreaks) {
  ExpectWrappedError(OnePage().Omit("vela_wordmap.vdat"), kCannotFind);
}

TEST(IndexFiles, SpellingFileIsNotNeededWithoutSpelling) {
  EXPECT_TRUE(OpenFiles(OnePage().Set("Spelling", "0"), false).opened);
}

TEST(IndexFiles, SpellingMissingGivesTheMessageWithoutLineBreaks) {
  ExpectWrappedError(
      OnePage().Set("Spelling", "1"),
      "Can not find one or more of the Vela index files. Please make sure the generated index "
      "files are uploaded to the same path as this search script. Also check file permissions have "
      "been set to allow reading.");
}

TEST(IndexFiles, FilesAreOpenedInOrder) {
  ExpectWrappedError(OnePage().Omit("vela_pagedata.vdat").Omit("vela_pageinfo.vdat"),
                     CannotOpen("vela_pagedata.vdat"));
  ExpectWrappedError(OnePage().Omit("vela_pageinfo.vdat").Omit("vela_wordmap.vdat"),
                     CannotOpen("vela_pageinfo.vdat"));
  ExpectWrappedError(
      OnePage().Set("DisplayContext", "1").Omit("vela_pagetext.vdat").Omit("vela_wordmap.vdat"),
      CannotOpen("vela_pagetext.vdat"));
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
