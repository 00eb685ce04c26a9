// text_files_test.cc: names and limits of the text files of an index.

#include <gtest/gtest.h>

#include "format/dictionary.h"
#include "format/index_directory.h"
#include "format/keyword_line.h"
#include "format/meta_fields.h"

namespace vela {
namespace {

TEST(IndexDirectoryFormat, WhichFilesBelongToAnIndex) {
  for (const std::string_view name : kIndexFileNames) EXPECT_TRUE(IsIndexFileName(name)) << name;
  EXPECT_TRUE(IsIndexFileName("vela_of_another_version.vdat"));
  for (const std::string_view name :
       {"search_template.html", "vela_results.xsl", "vela_autocomplete.js", "search.cgi",
        "old_settings.vdat", "logs", ""}) {
    EXPECT_FALSE(IsIndexFileName(name)) << name;
  }
}

TEST(DictionaryFormat, WhatWordsTakeOfTheBuffers) {
  EXPECT_EQ(BasewordBufferBytes(3), 4);
  EXPECT_EQ(VariantBufferBytes(4), 6);
}

TEST(KeywordLineFormat, LinesOfOneByteAreReadWhole) {
  const struct {
    int32_t setting;
    size_t limit;
  } cases[] = {{INT32_MIN, 1}, {0, 1}, {1, 1}, {2, 1}, {3, 2}, {256, 255}, {INT32_MAX, 2147483646}};
  for (const auto& c : cases) EXPECT_EQ(KeywordLineLimit(c.setting), c.limit) << c.setting;
}

TEST(KeywordLineFormat, TheSettingForALineReadsItWhole) {
  for (const int64_t bytes : {1, 2, 255}) {
    const size_t setting = KeywordLineLenFor(static_cast<size_t>(bytes));
    EXPECT_EQ(KeywordLineLimit(static_cast<int64_t>(setting)), static_cast<size_t>(bytes));
  }
}

TEST(MetaFieldsFormat, KindsWithAList) {
  for (const MetaKind kind : {kMetaDropDown, kMetaMultiple}) EXPECT_TRUE(HasMetaList(kind));
  for (const int32_t kind : {-1, 0, 1, 4, 5}) EXPECT_FALSE(HasMetaList(kind)) << kind;
  EXPECT_EQ(kMetaChoiceLimit, 255u);
}

}  // namespace
}  // namespace vela
