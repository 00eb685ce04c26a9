#include "indexer/collect/meta_values.h"

#include <gtest/gtest.h>

#include "settings/settings.h"

namespace vela::indexer {
namespace {

using namespace std::string_literals;

FieldRule Field(const char* name, int32_t kind, std::vector<std::string> values = {}) {
  FieldRule rule;
  rule.name = name;
  rule.meta = name;
  rule.kind = kind;
  rule.values = std::move(values);
  return rule;
}

std::string Encoded(const FieldRule& field, const std::vector<MetaElement>& elements,
                    std::vector<Finding>& findings) {
  return EncodeMetaValues({field}, IndexCharset(), elements, findings);
}

TEST(MetaValues, EveryKindAsTheSearchReadsIt) {
  const FieldRule text = Field("author", kMetaText);
  const FieldRule number = Field("pages", kMetaNumeric);
  const FieldRule money = Field("price", kMetaMoney);
  const FieldRule choice = Field("level", kMetaDropDown, {"Easy", "Hard"});
  const FieldRule choices = Field("topic", kMetaMultiple, {"Art", "Sport", "Music"});
  const struct {
    const char* what;
    const FieldRule& field;
    const char* content;
    std::string bytes;
    size_t leftOut;
  } kCases[] = {
      {"text", text, "O'Brien & co", "O'Brien &#38; co\0"s, 0},
      {"no text", text, "", "\0"s, 0},
      {"number", number, "258", "\x02\x01\0\0"s, 0},
      {"below zero", number, "-1", "\xFF\xFF\xFF\xFF", 0},
      {"no number", number, "", "\0\0\0\x80"s, 0},
      {"not whole", number, "2.5", "\0\0\0\x80"s, 1},
      {"money", money, "4.50", "\xC2\x01\0\0"s, 0},  // 450
      {"money with its sign", money, "\u00A34", "\x90\x01\0\0"s, 0},
      {"money with its code", money, "EUR 1,05", "\x69\0\0\0"s, 0},
      {"cheap", money, "cheap", "\0\0\0\x80"s, 1},
      {"choice", choice, "hard", "\x01", 0},
      {"no choice", choice, "", "\xFF", 0},
      {"unknown choice", choice, "odd", "\xFF", 1},
      {"choices", choices, "Music, art; music", "\x02\x02\0"s, 0},
      {"no choices", choices, "", "\0"s, 0},
      {"one unknown", choices, "Chess,Sport", "\x01\x01", 1},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    std::vector<Finding> findings;
    EXPECT_EQ(Encoded(c.field, {{c.field.meta, c.content}}, findings), c.bytes);
    EXPECT_EQ(findings.size(), c.leftOut);
  }
}

TEST(MetaValues, ElementsAreFoundByTheirNames) {
  std::vector<Finding> findings;
  FieldRule topic = Field("topic", kMetaMultiple, {"Art", "Sport"});
  topic.meta = "DC.Subject";
  EXPECT_EQ(
      Encoded(topic, {{"dc.subject", "Sport"}, {"topic", "x"}, {"dc.subject", "Art"}}, findings),
      "\x02\x01\0"s);
  const FieldRule text = Field("a", kMetaText);
  EXPECT_EQ(Encoded(text, {{"a", " "}, {"a", "first"}, {"a", "second"}}, findings), "first\0"s);
  EXPECT_TRUE(findings.empty());
  EXPECT_EQ(EncodeMetaValues({text, Field("n", kMetaNumeric)}, IndexCharset(),
                             std::vector<MetaElement>{{"n", "many"}}, findings),
            "\0\0\0\0\x80"s);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].reason, Reason::kNoWholeNumber);
  EXPECT_EQ(findings[0].where, "n");
  EXPECT_EQ(findings[0].subject, "many");
}

TEST(MetaValues, AmountsStayWithin32Bits) {
  int32_t hundredths = 0;
  EXPECT_TRUE(ReadAmount("21474836.47", hundredths));
  EXPECT_EQ(hundredths, 2147483647);
  EXPECT_FALSE(ReadAmount("21474836.48", hundredths));
  EXPECT_TRUE(ReadAmount("-$3.2", hundredths));
  EXPECT_EQ(hundredths, -320);
  for (const char* text : {"", "-", "1.", "1.234", "1 2", "1.2.3", "1/2"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(ReadAmount(text, hundredths));
  }
}

}  // namespace
}  // namespace vela::indexer
