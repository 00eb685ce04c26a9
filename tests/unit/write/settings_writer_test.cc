#include "indexer/write/settings_writer.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"
#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

TEST(SettingsWriter, RefusesNumbersThatTheSearchCannotRead) {
  const support::ScratchDirectory scratch;
  IndexFacts facts;
  facts.pages = uint64_t{1} << 31;
  EXPECT_THROW(WriteSettings(scratch.path() / "settings.vdat", facts, {}, {}, ""), IndexError);
}

}  // namespace
}  // namespace vela::indexer
