// recommended_xml.h: a recommended link as an element of the XML document.
#pragma once

#include "index/page_data.h"
#include "output/links.h"
#include "output/response.h"
#include "settings/settings.h"

namespace vela {

// Writes the element. The texts of the page go out raw: the indexer stored them safe for XML.
void WriteRecommendedXml(Response& response, const Settings& settings, const PageTexts& texts,
                         const LinkText& target);

}  // namespace vela
