#include "indexer/words/plain_forms.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(PlainForms, AreWhatAVisitorTypesWithoutAccents) {
  EXPECT_TRUE(PlainForms("Plain").empty());
  EXPECT_EQ(PlainForms("Ærø"), (std::vector<std::string>{"aero", "aeroe"}));
  EXPECT_EQ(PlainForms("Łódź"), std::vector<std::string>{"lodz"});
  EXPECT_EQ(PlainForms("ёлка"), std::vector<std::string>{"елка"});
  EXPECT_TRUE(PlainForms("й").empty());
  EXPECT_EQ(PlainForms("Größe"), (std::vector<std::string>{"grosse", "groesse", "grösse"}));
  EXPECT_EQ(PlainForms("GRÖẞE"), (std::vector<std::string>{"grosse", "groesse", "grösse"}));
  EXPECT_EQ(PlainForms("Straße"), std::vector<std::string>{"strasse"});
  EXPECT_TRUE(PlainForms("한국").empty());
}

}  // namespace
}  // namespace vela::indexer
