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

TEST(KeywordLineFormat, BufferHoldsTwoBytesAtLeast) {
  const struct {
    int32_t setting;
    size_t buffer;
  } cases[] = {{INT32_MIN, 2}, {0, 2}, {1, 2}, {2, 2}, {3, 3}, {256, 256}, {INT32_MAX, INT32_MAX}};
  for (const auto& c : cases) EXPECT_EQ(KeywordBufferSize(c.setting), c.buffer) << c.setting;
}

TEST(KeywordLineFormat, TheBufferForALineReadsItWhole) {
  for (const size_t bytes : {1U, 2U, 255U}) {
    EXPECT_EQ(KeywordLineLimit(KeywordBufferFor(bytes)), bytes);
  }
}

TEST(MetaFieldsFormat, KindsWithAList) {
  for (const MetaKind kind : {kMetaDropDown, kMetaMultiple}) EXPECT_TRUE(HasMetaList(kind));
  for (const int32_t kind : {-1, 0, 1, 4, 5}) EXPECT_FALSE(HasMetaList(kind)) << kind;
  EXPECT_EQ(kMetaChoiceLimit, 255u);
}

}  // namespace
}  // namespace vela
