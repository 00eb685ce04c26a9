#include "indexer/config/language_file.h"

#include <gtest/gtest.h>

#include "indexer/config/embedded_files.h"
#include "indexer/report/index_error.h"
#include "settings/language_strings.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(LanguageFile, EveryBuiltInLanguageIsComplete) {
  size_t languages = 0;
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (!file.name.ends_with(".vlang")) continue;
    SCOPED_TRACE(file.name);
    const Language language = ReadLanguage(file.content, std::string(file.name));
    for (const char* key : {"TEMPLATE_LANG", "TEMPLATE_DIR", "TEMPLATE_SEARCH", "TEMPLATE_OPTIONS",
                            "TEMPLATE_REMOVE", "TEMPLATE_NO_SUCH_PAGE", "TEMPLATE_FIRST_PAGE"}) {
      EXPECT_TRUE(language.templateWords.contains(key)) << key;
    }
    ++languages;
  }
  EXPECT_GE(languages, 1u);
}

std::string AllTexts() {
  std::string content;
  for (const std::string_view key : kLanguageKeys) {
    content.append(key).append(" = \"text\"\n");
  }
  return content;
}

TEST(LanguageFile, PutsTextsIntoTheOrderOfTheKeys) {
  std::string content = "; a remark\n\nSTR_OR = \"first\"\r\n" + AllTexts();
  content = "\xEF\xBB\xBF" + content;
  const Language language = ReadLanguage(content, "x");
  EXPECT_EQ(language.strings, AllTexts());  // the later line of a key holds
  EXPECT_TRUE(language.templateWords.empty());
}

TEST(LanguageFile, KeepsTheWordsOfTheTemplatesApart) {
  const Language language = ReadLanguage(
      "TEMPLATE_SEARCH = \"Serch\"\n" + AllTexts() + "TEMPLATE_OTHER=\"&lt;\"\nREMARK = x\n", "x");
  EXPECT_EQ(language.strings, AllTexts());
  EXPECT_EQ(language.templateWords,
            (TemplateWords{{"TEMPLATE_SEARCH", "Serch"}, {"TEMPLATE_OTHER", "&lt;"}}));
}

TEST(LanguageFile, TemplateWordsThatItLacksAreEnglish) {
  const support::ScratchDirectory scratch;
  const std::string path = (scratch.path() / "mine.vlang").string();
  WriteFile(path, AllTexts() + "TEMPLATE_LANG = \"eo\"\n");
  const TemplateWords words = LoadLanguage(path).templateWords;
  EXPECT_EQ(words.at("TEMPLATE_LANG"), "eo");
  EXPECT_EQ(words.at("TEMPLATE_SEARCH"), "Search");
  EXPECT_EQ(words.at("TEMPLATE_OPTIONS"), "Options");
}

TEST(LanguageFile, NamesWhatIsWrongWithALanguage) {
  std::string lacking = AllTexts();
  const size_t at = lacking.find("STR_OR ");
  lacking.erase(at, lacking.find('\n', at) - at);
  const auto messageOf = [](const std::string& content) -> std::string {
    try {
      ReadLanguage(content, "mine.vlang");
    } catch (const IndexError& error) {
      return error.what();
    }
    return "no error";
  };
  EXPECT_NE(messageOf(lacking).find("lacks the text STR_OR"), std::string::npos);
  for (const char* line : {"STR_OR = text\n", "STR_OR = \"open\n", "STR_OR = \"a\" b\n",
                           "STR_OR = \"a\"b\"\n", "TEMPLATE_LANG = en\n"}) {
    SCOPED_TRACE(line);
    EXPECT_NE(messageOf(line + AllTexts()).find("not of the form"), std::string::npos);
  }
  EXPECT_NE(messageOf("").find("mine.vlang"), std::string::npos);
}

}  // namespace
}  // namespace vela::indexer
