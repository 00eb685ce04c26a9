// xhtml_page_fuzz.cc: the reader of pages that are XML. Input: the markup, in any character set.
#include <string>

#include "indexer/extract/decoding.h"
#include "indexer/extract/xhtml_page.h"
#include "program/fuzz/check.h"
#include "program/fuzz/indexer/page_content.h"

namespace vela::fuzz {
namespace {

struct Reading {
  indexer::Reason reason = indexer::Reason::kNone;
  indexer::PageContent page;
  std::string fault;
};

Reading Read(std::string_view xml) {
  Reading reading;
  indexer::ReadingBudget budget = indexer::StartReading({}, xml.size());
  reading.reason = indexer::ParseXhtmlPage(xml, budget, reading.page, reading.fault);
  return reading;
}

}  // namespace
}  // namespace vela::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vela;
  using namespace vela::fuzz;
  std::string xml;
  indexer::ReadingBudget budget;
  if (indexer::ConvertToUtf8(Text(data, size), true, budget, xml) != indexer::Reason::kNone)
    return 0;
  const Reading first = Read(xml);
  const Reading second = Read(xml);
  VELA_CHECK(first.reason == second.reason && first.fault == second.fault);
  VELA_CHECK(Listing(first.page) == Listing(second.page));
  if (first.reason == indexer::Reason::kNone && first.fault.empty()) {
    CheckPage(first.page);
  } else {
    VELA_CHECK(first.page.title.empty());
    VELA_CHECK(first.page.body.empty() || first.reason == indexer::Reason::kNoindex);
  }
  return 0;
}
