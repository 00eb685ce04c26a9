// page_cutter.h: one page becomes words and tokens.
//
// Most of a site is written with the same few thousand words. What a run of signs between blanks
// was cut into is kept, up to a limit, so that the next page has it at the cost of one look.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/collect/number_table.h"
#include "indexer/collect/page_words.h"
#include "indexer/collect/running_text.h"
#include "indexer/collect/sign_entries.h"
#include "indexer/collect/text_store.h"
#include "indexer/collect/word_places.h"
#include "indexer/collect/zone.h"
#include "indexer/extract/page.h"
#include "indexer/words/word_cut.h"
#include "indexer/words/word_forms.h"

namespace vela::indexer {

// Where a run of text begins that an address leads to.
struct SectionStart {
  uint32_t token = 0;  // among the page's tokens
  uint32_t run = 0;    // of the body
};

// The texts of a page that its words are cut from.
struct PageTexts {
  const PageContent& content;
  std::string_view title;  // the one shown for the page
};

struct CutRules {
  RunCut runs = RunCut::kWords;
  bool endsHeadings = false;         // with a full stop, where they end with no sign of their own
  size_t memory = size_t{30} << 20;  // bytes that what is kept of the pages before may take, nearly
  const volatile std::sig_atomic_t* stop = nullptr;  // not owned; null: nobody can stop it
};

class PageCutter {
 public:
  // `stemming` as for WordForms.
  PageCutter(const IndexCharset& charset, int32_t stemming, const CutRules& rules);

  // Cuts the body, then title and description; each of the two stands behind a kRunEndToken, where
  // anything is before it. Fills `running` as well, unless it is null. False: it was stopped, and
  // what was filled is of half a page. After std::bad_alloc the cutter can be used on.
  [[nodiscard]] bool Cut(const PageTexts& page, PageWords& out, RunningText* running);
  // Cuts what others say of a page, as far as it is not stopped: a title, and in kInDescription
  // `texts`; each a run by itself, empty ones none.
  void CutNames(std::string_view title, std::span<const std::string> texts, PageWords& out);
  // Cuts the words of an address, all of them in kInAddress.
  [[nodiscard]] bool CutAddress(std::string_view text, PageWords& out);

  // Of the page that was cut last: its runs with an anchor.
  const std::vector<SectionStart>& sections() const { return sections_; }

 private:
  // Where something known stands in the page that is cut.
  struct InPage {
    uint32_t page = 0;  // the last one that has it, by `page_`
    uint32_t number = 0;
  };
  struct KnownWord {
    InPage inPage;
    uint32_t ownForm = 0;  // 1 more than the known form that has its text; 0: none is known yet
  };
  struct KnownForm {
    uint32_t word = 0;
    uint8_t bytes = 0;    // of the text; see FormOfPage
    bool isWord = false;  // its text is that of the word
    InPage inPage;
  };
  struct KnownRunningWord {
    uint64_t hash = 0;
    InPage inPage;
  };
  // A token of a chunk.
  enum class Kind : uint8_t { kWord, kNoWord, kSign, kBlank };
  struct ChunkToken {
    uint32_t number = 0;  // of a known form, or a sign
    Kind kind = Kind::kBlank;
    bool isPiece = false;
  };
  // A further form by which a word of the chunk is found.
  struct ChunkForm {
    uint32_t token = 0;  // of the chunk
    uint32_t form = 0;
    bool isOwnForm = false;
    bool isPart = false;  // shorter than the word
  };
  // What a chunk was cut into; its plain word is for the running text.
  struct Chunk {
    uint32_t firstToken = 0;
    uint32_t tokens = 0;
    uint32_t firstForm = 0;
    uint32_t forms = 0;
    uint32_t plainWord = 0;   // 1 more than its number; 0 for none
    uint32_t onlyForm = 0;    // of a chunk that is one word, 1 more than its known form; else 0
    bool plainBegins = true;  // signs stand before the plain word, or there is none
    bool plainEnds = true;    // and behind it
    bool startsWithPiece = false;
    bool isKept = false;
  };
  // Longer ones hardly come again.
  static constexpr size_t kKeptChunkBytes = 34;
  // All that is looked at first lies in the 64 bytes that a processor brings into its cache at
  // once.
  struct alignas(64) KnownChunk {
    Chunk chunk;
    bool cameAgain = false;  // since the list was thinned out last
    uint8_t bytes = 0;       // of its text
    std::array<char, kKeptChunkBytes> text = {};
  };
  static_assert(sizeof(KnownChunk) == 64);
  static std::string_view TextOf(const KnownChunk& known) {
    return {known.text.data(), known.bytes};
  }
  // A chunk of the text that is cut, before its turn.
  struct ChunkAhead {
    std::string_view text;
    uint64_t hash = 0;  // TextHash of it
    bool followsBlank = false;
  };
  class ChunksAhead;
  // Where a token of the chunk went. A sign, and a word that could not be written, has no token.
  struct Written {
    uint32_t token = 0xFFFFFFFF;
    uint32_t place = 0;  // among the body's words
    uint32_t word = 0;   // of the page
  };
  // What is known of a word of the page beside what stands in PageWords.
  struct PageWord {
    uint32_t lastToken = 0xFFFFFFFF;  // the one counted last
    LastPlaces places;
    bool isTitleWord = false;
  };
  // Where a word stands.
  struct Spot {
    uint32_t token = 0;
    uint32_t place = 0;  // among the body's words
    uint8_t zone = 0;    // one Zone bit, 0 for plain text
    bool inBody = false;
  };
  void BeginPage(PageWords& out);
  void Forget();
  void ForgetChunks();
  void ThinOutChunks();
  uint32_t KnownFormOf(uint32_t word, std::string_view surface);
  Chunk CutNewChunk(std::string_view chunk);
  Chunk ChunkOf(const ChunkAhead& ahead);
  void DropPassing(const Chunk& chunk);
  uint32_t InPageForm(uint32_t form);
  uint32_t InPageWord(uint32_t word);
  void WriteToken(uint32_t token);
  void CloseGap(bool blankBehind);
  PageWord& Count(uint32_t pageWord, const Spot& spot);
  Written WriteWord(uint32_t form, bool isPiece, uint8_t zone, bool inBody);
  uint32_t WriteWords(const Chunk& chunk, uint8_t zone, bool inBody);
  void CountForms(const Chunk& chunk, uint8_t zone, bool inBody);
  void EndPhrase(RunningText& running);
  void AddRunning(const Chunk& chunk, RunningText& running);
  bool IsStopped() const { return rules_.stop != nullptr && *rules_.stop != 0; }
  void EndHeading();
  uint32_t CutRun(std::string_view text, uint8_t zone, bool inBody, bool isHeading,
                  RunningText* running);
  void AddRun(std::string_view text, Zone zone);
  void SetBlocks();

  WordForms wordForms_;
  CutRules rules_;
  size_t mostChunks_;  // that are kept

  // Known from the pages before.
  TextNumbers words_;
  std::vector<KnownWord> knownWords_;  // beside words_
  TextNumbers formKeys_;
  std::vector<KnownForm> forms_;  // beside formKeys_
  TextNumbers signs_;
  std::vector<InPage> signsInPage_;  // beside signs_
  TextNumbers signTexts_;
  TextNumbers runningWords_;
  std::vector<KnownRunningWord> knownRunning_;  // beside runningWords_
  NumberTable chunkTable_;                      // of chunks_
  std::vector<KnownChunk> chunks_;
  bool addsChunk_ = false;  // one is there that is not cut yet
  std::vector<ChunkToken> chunkTokens_;
  std::vector<ChunkForm> chunkForms_;

  // Of the page that is cut.
  uint32_t page_ = 0;  // counts them
  PageWords* out_ = nullptr;
  std::vector<PageWord> pageWords_;  // beside out_->words
  std::vector<PlaceOfWord> places_;  // the older ones kept
  std::vector<Written> written_;     // beside the chunk's tokens
  std::vector<SectionStart> sections_;
  ChunkTokens chunk_;
  SignGap gap_;
  bool inPhrase_ = false;    // the running text ends in a word
  bool afterPiece_ = false;  // the token written last is a piece of a script without blanks
  std::string scratch_;
};

}  // namespace vela::indexer
