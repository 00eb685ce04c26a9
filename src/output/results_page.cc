#include "output/results_page.h"

#include "output/results_page_html.h"
#include "output/results_page_xml.h"

namespace vela {

void WriteHeading(Response& response, OutputSections& sections, const Settings& settings,
                  const SearchRequest& request, const Query& query) {
  if (response.xml) {
    WriteHeadingXml(response, settings, request, query);
  } else {
    AppendHeadingHtml(sections, settings, request, query);
  }
}

void WriteResultsHead(Response& response, OutputSections& sections, const ResultsPage& page) {
  if (response.xml) {
    WriteResultsHeadXml(response, page);
  } else {
    AppendResultsHeadHtml(sections, page);
  }
}

void WriteResultsFoot(Response& response, OutputSections& sections, const ResultsPage& page) {
  // The XML document has nothing behind its items.
  if (!response.xml) AppendResultsFootHtml(sections, page);
}

void WriteSearchTime(Response& response, OutputSections& sections, const Settings& settings,
                     double seconds) {
  if (settings.Timing != 1) return;
  if (response.xml) {
    WriteSearchTimeXml(response, seconds);
  } else {
    AppendSearchTimeHtml(sections, settings, seconds);
  }
}

}  // namespace vela
