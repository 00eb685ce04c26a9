#include "indexer/explanation/explain_words.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "indexer/collect/site_habits.h"
#include "indexer/explanation/wording.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/word_cut.h"
#include "indexer/words/word_forms.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace {

void ExplainCounts(const Page& seen, const PageBlock& block, const std::string& pictureTexts,
                   WordCounter& counter, Explanation& said) {
  std::map<uint8_t, std::string> byLevel;
  for (const TextRun& run : seen.content.body) {
    if (WeightLevel(run) != 0) byLevel[WeightLevel(run)].append(run.text).append(" ");
  }
  std::vector<std::string> details;
  details.reserve(byLevel.size());
  for (const auto& [level, text] : byLevel) {
    details.push_back(Words(counter.Of(text)) + " of the text weigh as a heading of level " +
                      std::to_string(level));
  }
  if (const uint32_t words = counter.Of(pictureTexts); words != 0) {
    details.push_back(Words(words) + " of the text: alternative texts of pictures");
  }
  details.push_back(Words(counter.Of(seen.facts.title)) + " in the title");
  details.push_back(Words(counter.Of(seen.content.description)) + " in the description");
  uint32_t inAddress = 0;
  for (const WordOfPage& word : block.addresses.front().words.words) inAddress += word.total;
  details.push_back(Words(inAddress) + " in the address");
  said.Add("Text", Words(block.words.bodyWords), std::move(details));
}

void ExplainWordList(const PageBlock& block, Explanation& said) {
  std::vector<std::string> words;
  size_t at = 0;
  std::string line;
  constexpr size_t kLineBytes = 70;
  for (const WordOfPage& word : block.words.words) {
    line += block.words.wordTexts.substr(at, word.bytes);
    at += word.bytes;
    if (word.total > 1) line += " (" + std::to_string(word.total) + ")";
    line += " ";
    if (line.size() < kLineBytes) continue;
    words.push_back(RepairedUtf8(std::exchange(line, {})));
  }
  if (!line.empty()) words.push_back(RepairedUtf8(line));
  said.Add("Words", CountText(block.words.words.size()) + " different, with how often they occur",
           std::move(words));
}

// What stands where words do and is none for the index.
void ExplainUntaken(const Page& page, const IndexCharset& charset, int32_t stemming,
                    Explanation& said) {
  std::vector<std::string> details;
  WordForms forms(charset, stemming);
  ChunkTokens tokens;
  const auto look = [&](std::string_view text) {
    for (std::string_view chunk = NextChunk(text); !chunk.empty(); chunk = NextChunk(text)) {
      CutChunk(chunk, tokens);
      size_t written = 0;
      for (const TextToken& token : tokens.tokens) {
        written += token.surface.size();
        if (token.sign == 0 && forms.Base(token.base).empty()) {
          details.push_back(Quoted(std::string(token.surface)) + ": " + charset.name() +
                            " cannot write it");
        }
      }
      if (written + kWordBytesLimit < chunk.size()) {
        details.push_back(Quoted(Excerpt(std::string(chunk))) + ": longer than " +
                          std::to_string(kWordBytesLimit) + " bytes" +
                          (tokens.tokens.empty() ? "" : "; its parts are taken"));
      }
    }
  };
  for (const TextRun& run : page.content.body) look(run.text);
  look(page.facts.title);
  look(page.content.description);
  if (page.facts.title.size() > kPageTitleLimit) {
    details.push_back("of the title " + std::to_string(kPageTitleLimit) +
                      " bytes are shown; all of it is found");
  }
  if (page.content.description.size() > kPageDescriptionLimit) {
    details.push_back("of the description " + std::to_string(kPageDescriptionLimit) +
                      " bytes are shown; all of it is found");
  }
  said.AddList("Not taken", "", std::move(details));
}

void ExplainSections(const PageBlock& block, Explanation& said) {
  std::vector<std::string> sections;
  for (const PageSection& section : block.sections) {
    sections.push_back("#" + section.anchor + " " + section.heading);
  }
  said.AddList("Sections", " that results lead to", std::move(sections));
  std::vector<std::string> pieces;
  for (const PageBlock& piece : block.pieces) {
    pieces.push_back("#" + piece.anchor + " " + RepairedUtf8(piece.facts.title) + ": " +
                     Words(piece.words.bodyWords));
  }
  said.AddList("Own results", " sections, beside what comes before them (section_pages)",
               std::move(pieces));
}

}  // namespace

void ExplainWords(const Page& page, const PageBlock& block, const std::string& pictureTexts,
                  const SiteConfig& config, const IndexCharset& charset, WordCounter& counter,
                  Explanation& said) {
  const Page seen = AsSeen(config.habits, page);
  ExplainCounts(seen, block, pictureTexts, counter, said);
  ExplainWordList(block, said);
  ExplainUntaken(seen, charset, config.stemming, said);
  ExplainSections(block, said);
}

}  // namespace vela::indexer
