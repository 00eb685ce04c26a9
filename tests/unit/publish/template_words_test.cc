#include "indexer/publish/template_words.h"

#include <gtest/gtest.h>

#include "indexer/config/embedded_files.h"

namespace vela::indexer {
namespace {

constexpr char kPage[] =
    "<html lang=\"en\" class=\"x\"><title>Search <!--VELA_SHOW_QUERY--></title>"
    "<link title=\"Search\"><h1><a href=\"?\">Search</a></h1><summary>Options</summary>";

TEST(TranslateTemplate, EveryWordOfTheTemplateTurnsGerman) {
  std::string page = kPage;
  TranslateTemplate(page, "german");
  EXPECT_EQ(page,
            "<html lang=\"de\" class=\"x\"><title>Suche <!--VELA_SHOW_QUERY--></title>"
            "<link title=\"Suche\"><h1><a href=\"?\">Suche</a></h1><summary>Optionen</summary>");
}

TEST(TranslateTemplate, EnglishAndOtherLanguagesStayEnglish) {
  for (const char* language : {"english", "own.vlang", ""}) {
    std::string page = kPage;
    TranslateTemplate(page, language);
    EXPECT_EQ(page, kPage);
  }
}

// A built-in language without words here would be served with an English heading.
TEST(TranslateTemplate, EveryBuiltInLanguageHasItsWords) {
  const EmbeddedFile* file = FindEmbeddedFile("search_template.html");
  ASSERT_NE(file, nullptr);
  int languages = 0;
  for (const EmbeddedFile& each : EmbeddedFiles()) {
    if (!each.name.ends_with(".vlang") || each.name == "english.vlang") continue;
    SCOPED_TRACE(each.name);
    std::string page(file->content);
    TranslateTemplate(page, each.name.substr(0, each.name.size() - 6));
    EXPECT_EQ(page.find("lang=\"en\""), page.npos);
    EXPECT_EQ(page.find("Search<"), page.npos);
    ++languages;
  }
  EXPECT_EQ(languages, 9);
}

}  // namespace
}  // namespace vela::indexer
