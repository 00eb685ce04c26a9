#include "output/recommended_xml.h"

#include "output/result_xml.h"

namespace vela {

void WriteRecommendedXml(Response& response, const Settings& settings, const PageTexts& texts,
                         const LinkText& target) {
  WriteRaw(response, "<vela:recommended>\n");
  WritePageXml(response, settings, texts, target);
  WriteDescriptionXml(response, texts);
  WriteRaw(response, "</vela:recommended>\n");
}

}  // namespace vela
