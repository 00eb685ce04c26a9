#include "indexer/extract/declared_language.h"

#include <gtest/gtest.h>

#include <string>

namespace vela::indexer {
namespace {

TEST(DeclaredLanguage, Table) {
  const struct {
    const char *what, *markup, *expected;
  } cases[] = {
      {"a language", "<!DOCTYPE html><html lang=\"de\"><body lang=fr>", "de"},
      {"in capitals, with a region", "<HTML LANG=pt-BR>", "pt"},
      {"the old separator", "<html lang='zh_TW'>", "zh"},
      {"as XML has it", "<?xml version='1.0'?>\n<html xmlns='x' xml:lang='ja'>", "ja"},
      {"both", "<html xml:lang=en lang=fr>", "fr"},
      {"an empty one beside the other", "<html lang='' xml:lang=en>", "en"},
      {"blanks", "<html lang=' sv '>", "sv"},
      {"none", "<html><body lang=fr>", ""},
      {"nothing but blanks", "<html lang='  '>", ""},
      {"of another element", "<div lang=fr><html lang=de>", ""},
      {"behind a comment", "<!-- <html lang=fr> --><html lang=de>", "de"},
      {"a tag that does not end", "<html lang=de", ""},
      {"no markup", "plain", ""},
      {"nothing", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(DeclaredLanguage(c.markup), c.expected);
  }
  EXPECT_EQ(DeclaredLanguage(std::string(5000, ' ') + "<html lang=de>"), "");
}

}  // namespace
}  // namespace vela::indexer
