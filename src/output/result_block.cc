#include "output/result_block.h"

#include <algorithm>

#include "output/result_html.h"
#include "output/result_xml.h"
#include "output/section_links.h"
#include "output/target_url.h"

namespace vela {

namespace {

// Settles which passages of the page are shown. Beside a description the beginning of a page that
// holds the words only in its title says nothing more.
void PlanContext(const ResultBlocks& blocks, Result& result, PassagePlan& plan) {
  PlanPassages({.settings = blocks.settings,
                .dictionary = blocks.dictionary,
                .pageText = blocks.files.pageText.bytes(),
                .words = *blocks.passageWords},
               result.entry, plan);
  if (!plan.isInText && ShowsDescription(blocks.settings, result.texts)) plan.count = 0;
  result.plan = &plan;
}

}  // namespace

BlockStatus WriteResultBlocks(Response& response, OutputSections& sections,
                              const ResultBlocks& blocks, const ResultList& results) {
  const int64_t perPage = EffectivePerPage(blocks.request);
  const int64_t first = blocks.request.page > 1 ? perPage * (blocks.request.page - 1) : 0;
  const int64_t end = std::min<int64_t>(results.size(), first + perPage);
  const LinkAttribute configuredAttribute = ConfiguredLinkAttribute(blocks.settings);
  const PageTable& pages = blocks.files.pages;
  for (int64_t i = first; i < end; ++i) {
    Result result = {.entry = ShownEntry(results.entries[static_cast<size_t>(i)], blocks.matches),
                     .index = static_cast<int32_t>(i),
                     .texts = {},
                     .target = {},
                     .attribute = configuredAttribute.bytes};
    const uint32_t page = result.entry.page;
    if (!ReadPageData(blocks.files.pageData.bytes(), PageDataOffset(pages, page), result.texts)) {
      return BlockStatus::kCorruptPageData;
    }
    PassagePlan plan;
    if (blocks.passageWords != nullptr) PlanContext(blocks, result, plan);
    result.target = ResultTarget(blocks.settings, result.texts.url, View(blocks.links.query),
                                 View(blocks.query.text));
    if (blocks.settings.SectionLinks == 1 && blocks.showsContext) LeadToSection(blocks, result);
    if (blocks.settings.PluginOpenNewWindow == 1 &&
        PageFileType(pages, page) >= blocks.settings.FileTypePluginStart) {
      result.attribute = "target=\"_blank\"";
    }
    const BlockStatus status = response.xml ? WriteResultXml(response, blocks, result)
                                            : AppendResultHtml(sections, blocks, result);
    if (status != BlockStatus::kOk) return status;
  }
  return BlockStatus::kOk;
}

}  // namespace vela
