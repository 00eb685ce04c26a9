#include "output/powered_by.h"

#include <gtest/gtest.h>

#include "support/loaded_site.h"

namespace vela {
namespace {

TEST(PoweredBy, OnlyWhenTheSettingsWantIt) {
  for (int32_t wanted : {0, 1, 2}) {
    Settings settings;
    support::SetLanguageTexts(settings);
    settings.VelaInfo = wanted;
    OutputSections sections;
    ASSERT_TRUE(AllocateSections(sections, 10));
    AppendPoweredBy(sections, settings);
    EXPECT_EQ(SectionText(sections, Section::kPageNumbers),
              wanted != 1
                  ? ""
                  : "\n<center><p><small>Run by <a href=\"https://vela-search.example/\" "
                    "target=\"_blank\"><b>Vela Search Engine</b></a></small></p></center>\n");
  }
}

}  // namespace
}  // namespace vela
