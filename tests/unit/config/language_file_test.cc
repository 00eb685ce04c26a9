#include "indexer/config/language_file.h"

#include <gtest/gtest.h>

#include "indexer/config/embedded_files.h"
#include "indexer/report/index_error.h"
#include "settings/language_strings.h"

namespace vela::indexer {
namespace {

TEST(LanguageFile, EveryBuiltInLanguageIsComplete) {
  size_t languages = 0;
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (!file.name.ends_with(".vlang")) continue;
    SCOPED_TRACE(file.name);
    EXPECT_NO_THROW(CheckedLanguage(file.content, std::string(file.name)));
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
  const std::string checked = CheckedLanguage(content, "x");
  EXPECT_EQ(checked, AllTexts());  // the later line of a key holds
}

TEST(LanguageFile, NamesWhatIsWrongWithALanguage) {
  std::string lacking = AllTexts();
  const size_t at = lacking.find("STR_OR ");
  lacking.erase(at, lacking.find('\n', at) - at);
  const auto messageOf = [](const std::string& content) -> std::string {
    try {
      CheckedLanguage(content, "mine.vlang");
    } catch (const IndexError& error) {
      return error.what();
    }
    return "no error";
  };
  EXPECT_NE(messageOf(lacking).find("lacks the text STR_OR"), std::string::npos);
  for (const char* line :
       {"STR_OR = text\n", "STR_OR = \"open\n", "STR_OR = \"a\" b\n", "STR_OR = \"a\"b\"\n"}) {
    SCOPED_TRACE(line);
    EXPECT_NE(messageOf(line + AllTexts()).find("not of the form"), std::string::npos);
  }
  EXPECT_NE(messageOf("").find("mine.vlang"), std::string::npos);
}

}  // namespace
}  // namespace vela::indexer
