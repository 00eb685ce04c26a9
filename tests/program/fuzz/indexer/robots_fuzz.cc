// robots_fuzz.cc: the rules of a server. Input: a path on the first line, robots.txt behind it.
#include "indexer/crawl/robots.h"
#include "program/fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  std::string_view text = fuzz::Text(data, size);
  const std::string path = "/" + std::string(fuzz::TakeLine(text));
  const indexer::RobotsRules robots = indexer::ParseRobots(text);
  VELA_CHECK(robots.delay >= 0 && robots.delay <= 120);
  VELA_CHECK(indexer::Allows(robots, "/robots.txt"));
  for (size_t i = 1; i < robots.rules.size(); ++i) {
    VELA_CHECK(robots.rules[i - 1].pattern.size() + 1 >= robots.rules[i].pattern.size());
  }
  const bool allowed = indexer::Allows(robots, path);
  VELA_CHECK(allowed || !robots.rules.empty());
  // Lines that mean nothing change nothing.
  const indexer::RobotsRules again = indexer::ParseRobots("# remark\n" + std::string(text));
  if (size < 1000 && !text.starts_with("\xEF\xBB\xBF")) {
    VELA_CHECK(indexer::Allows(again, path) == allowed);
  }
  (void)indexer::ReadRobotsTag(text);
  return 0;
}
