// result_xml.h: the item of one result in the XML document.
#pragma once

#include "output/response.h"
#include "output/result_facts.h"

namespace vela {

// Writes the item. kInvalidCategory: it stands there without its end.
[[nodiscard]] BlockStatus WriteResultXml(Response& response, const ResultBlocks& blocks,
                                         const Result& result);

// What the item of a result shares with that of a recommended link: image, title and link; the
// description, which may be empty. The texts go out raw, as the indexer stored them.
void WritePageXml(Response& response, const Settings& settings, const PageTexts& texts,
                  const LinkText& target);
void WriteDescriptionXml(Response& response, const PageTexts& texts);

}  // namespace vela
