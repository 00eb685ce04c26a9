#include "indexer/publish/search_template.h"

#include <gtest/gtest.h>

#include "indexer/config/built_in_template.h"
#include "indexer/config/embedded_files.h"
#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(SearchTemplate, WordsStandWhereTheirKeysWere) {
  const TemplateWords words = {{"TEMPLATE_A", "one"}, {"TEMPLATE_B", "{{TEMPLATE_A}}"}};
  const struct {
    const char* what;
    const char* page;
    const char* filled;
  } kCases[] = {
      {"nothing", "", ""},
      {"several, side by side", "x{{TEMPLATE_A}}{{TEMPLATE_A}}y", "xoneoney"},
      {"a word is not looked into", "{{TEMPLATE_B}}", "{{TEMPLATE_A}}"},
      {"an unknown key", "{{TEMPLATE_C}} {{TEMPLATE_A}}", "{{TEMPLATE_C}} one"},
      {"other keys", "{{template_a}} {{ TEMPLATE_A }}", "{{template_a}} {{ TEMPLATE_A }}"},
      {"a script", "{a: {b: {{TEMPLATE_A}}}}", "{a: {b: one}}"},
      {"one more brace", "{{{TEMPLATE_A}}}", "{{{TEMPLATE_A}}}"},
      {"not closed", "{{TEMPLATE_A}", "{{TEMPLATE_A}"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(FillTemplateWords(c.page, words), c.filled);
  }
}

TEST(SearchTemplate, EveryKeyOfTheBuiltInTemplatesHasAWordInEveryLanguage) {
  for (const std::string_view language : BuiltInLanguages()) {
    const std::string file = std::string(language) + ".vlang";
    const TemplateWords words = ReadLanguage(FindEmbeddedFile(file)->content, file).templateWords;
    for (const std::string_view name : BuiltInTemplates()) {
      SCOPED_TRACE(std::string(name) + " in " + std::string(language));
      const EmbeddedFile* page = FindEmbeddedFile(BuiltInTemplateFile(name));
      ASSERT_NE(page, nullptr);
      EXPECT_EQ(FillTemplateWords(page->content, words).find("{{"), std::string::npos);
    }
  }
}

TEST(SearchTemplate, TheDefaultPageIsInTheLanguage) {
  const std::string page =
      LoadTemplate("default", LoadLanguage("german").templateWords, true, IndexCharset());
  for (const char* piece : {"<html lang=\"de\" dir=\"ltr\" class=\"vela_page\">",
                            "<title>Suche <!--VELA_SHOW_QUERY--></title>",
                            "href=\"vela_opensearch.xml\" title=\"Suche\">",
                            "<h1><a href=\"?\">Suche</a></h1>", "<summary>Optionen</summary>"}) {
    EXPECT_NE(page.find(piece), page.npos) << piece;
  }
}

TEST(SearchTemplate, TheOwnersTemplateIsTakenAsItStands) {
  const support::ScratchDirectory scratch;
  const std::string path = (scratch.path() / "own.html").string();
  const std::string own = "<title>Search </title>{{TEMPLATE_SEARCH}}<!--VELASEARCH-->\n";
  WriteFile(path, own);
  EXPECT_EQ(LoadTemplate(path, LoadLanguage("german").templateWords, true, IndexCharset()), own);
}

TEST(SearchTemplate, AnUnknownNameTellsTheKnownOnes) {
  try {
    LoadTemplate("nice", {}, false, IndexCharset());
    ADD_FAILURE();
  } catch (const IndexError& error) {
    EXPECT_STREQ(error.what(),
                 "There is no template nice. Give one of default, minimal, embed, or the path of a "
                 "file that can be read.");
  }
}

}  // namespace
}  // namespace vela::indexer
