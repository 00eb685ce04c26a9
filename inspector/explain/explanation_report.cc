#include "inspector/explain/explanation_report.h"

#include <algorithm>
#include <memory>

#include "index/page_data.h"
#include "inspector/explain/page_explanation.h"
#include "inspector/findings/plain_text.h"

namespace vela::inspector {

namespace {

std::string_view AddressOf(const SearchedIndex& index, uint32_t page) {
  std::string_view address;
  static_cast<void>(
      ReadPageUrl(index.files.pageData.bytes(), PageDataOffset(index.files.pages, page), address));
  return address;
}

std::string HeadText(const ExplainedSearch& search) {
  const SearchRun& run = search.run();
  std::string text = "Searched for " + Quoted(View(search.query().text), 200) + ": " +
                     CountOfText(static_cast<uint64_t>(std::max(run.matches.resultCount, 0)),
                                 "page found", "pages found") +
                     "\n";
  for (const DroppedWord& dropped : search.query().dropped) {
    text += "  " + Printable(dropped.word) + " is passed over beside the other words (StopWords)\n";
  }
  for (int32_t i = 0; i < run.terms.skipped.count; ++i) {
    text += "  " + Printable(run.terms.skipped.terms[static_cast<size_t>(i)]) +
            " is passed over: too short, or on no page\n";
  }
  if (run.matches.limitReached) {
    text +=
        "  the search ended at a limit (MaxMatches, MaxContextSeeks, MaxSearchTime), so that "
        "there may be more\n";
  }
  return text;
}

void WriteHead(const ExplainedSearch& search, const std::optional<std::string>& corrected,
               size_t listed, JsonText& json) {
  const SearchRun& run = search.run();
  json.Text("query", View(search.query().text));
  if (corrected.has_value()) json.Text("corrected", *corrected);
  json.Number("found", std::max(run.matches.resultCount, 0));
  json.Flag("limit_reached", run.matches.limitReached).BeginArray("passed_over");
  for (const DroppedWord& dropped : search.query().dropped) json.Text({}, dropped.word);
  json.EndArray().BeginArray("results");
  for (size_t i = 0; i < std::min<size_t>(run.results.entries.size(), listed); ++i) {
    const RankedPage& row = run.results.entries[i];
    json.BeginObject().Number("page", row.page).Number("score", row.score);
    json.Text("address", AddressOf(search.index(), row.page)).EndObject();
  }
  json.EndArray();
}

}  // namespace

ExplanationReport Explain(SearchedIndex& index, const Question& question,
                          std::optional<uint32_t> page, size_t listed) {
  ExplanationReport report;
  auto search = std::make_unique<ExplainedSearch>(index, question);
  std::optional<std::string> corrected = search->Corrected();
  Question again = question;
  if (corrected.has_value()) {
    again.query = *corrected;
    auto other = std::make_unique<ExplainedSearch>(index, again);
    if (other->run().matches.resultCount > 0) {
      report.text = "Nothing is found as it was typed. The search program searches for " +
                    Quoted(*corrected, 200) + " instead.\n";
      search = std::move(other);
    } else {
      corrected.reset();
    }
  }
  const ResultList& results = search->run().results;
  report.text += HeadText(*search);
  report.json.BeginObject();
  WriteHead(*search, corrected, listed, report.json);
  if (!page.has_value() && results.size() > 0) page = results.entries[0].page;
  if (page.has_value()) {
    const PageExplanation explanation = ExplainPage(*search, *page);
    report.isFound = explanation.rank != 0;
    report.text += ExplanationText(*search, explanation);
    report.json.BeginObject("page");
    WriteExplanation(*search, explanation, report.json);
    report.json.EndObject();
    if (explanation.rank > 1) {
      const uint32_t pageBefore = results.entries[explanation.rank - 2].page;
      const PageExplanation before = ExplainPage(*search, pageBefore);
      const std::string order = OrderText(*search, before, explanation);
      report.text += "Right before it, as " + order + "\n" + ExplanationText(*search, before);
      report.json.BeginObject("before").Text("order", order);
      WriteExplanation(*search, before, report.json);
      report.json.EndObject();
    }
  }
  report.json.EndObject();
  return report;
}

}  // namespace vela::inspector
