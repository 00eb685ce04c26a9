#include "indexer/collect/page_tokens.h"

#include <algorithm>
#include <string_view>

namespace vela::indexer {

namespace {

constexpr uint8_t kCountLimit = 255;

// Walks through texts that stand one behind the other.
class Texts {
 public:
  explicit Texts(std::string_view all) : rest_(all) {}
  std::string_view Next(size_t bytes) {
    const std::string_view text = rest_.substr(0, bytes);
    rest_.remove_prefix(text.size());
    return text;
  }

 private:
  std::string_view rest_;
};

// `more` words of the page, whose tokens begin at `firstToken`.
struct Joining {
  const PageWords& more;
  uint32_t pageNumber = 0;
  uint32_t firstToken = 0;
  const SiteWords& site;
  PageTokens& out;
};

void AddTo(uint8_t& count, uint8_t more) {
  count = static_cast<uint8_t>(std::min<uint32_t>(uint32_t{count} + more, kCountLimit));
}

// The posting of the word on this page.
Posting& PostingOf(const Joining& joining, uint32_t number, uint32_t token) {
  Word& word = joining.site.vocabulary.words[number];
  if (word.lastPage == joining.pageNumber) {
    // One of the few words of its address, or of another stretch, that stand on the page too.
    return *std::ranges::find(joining.out.postings, number, &Posting::word);
  }
  word.lastPage = joining.pageNumber;
  ++word.pageCount;
  return joining.out.postings.emplace_back(
      Posting{.word = number, .page = joining.pageNumber, .token = token});
}

void JoinWordList(const Joining& joining) {
  PageTokens& out = joining.out;
  const std::vector<WordOfPage>& words = joining.more.words;
  Vocabulary& vocabulary = joining.site.vocabulary;
  // Table and words of the site are far too large for the processor's cache: all places of the
  // page's words are asked for before the first one is needed, then their words, then their texts.
  out.hashes.clear();
  Texts texts(joining.more.wordTexts);
  for (const WordOfPage& word : words) {
    out.hashes.push_back(TextHash(texts.Next(word.bytes)));
    vocabulary.table.Prefetch(out.hashes.back());
  }
  for (const uint64_t hash : out.hashes) {
    const uint32_t likely = vocabulary.table.Guess(hash);
    if (likely != NumberTable::kNone) __builtin_prefetch(&vocabulary.words[likely], 1);
  }
  for (const uint64_t hash : out.hashes) {
    const uint32_t likely = vocabulary.table.Guess(hash);
    if (likely == NumberTable::kNone) continue;
    __builtin_prefetch(TextOf(vocabulary.words[likely], vocabulary).data());
  }
  out.numbers.clear();
  texts = Texts(joining.more.wordTexts);
  for (size_t i = 0; i < words.size(); ++i) {
    const WordOfPage& word = words[i];
    const uint32_t number = FindOrAddWord(vocabulary, texts.Next(word.bytes), out.hashes[i]);
    out.numbers.push_back(number);
    Posting& posting = PostingOf(joining, number, joining.firstToken + word.token);
    AddTo(posting.total, word.total);
    AddTo(posting.body, word.body);
    posting.zones |= word.zones;
    posting.blocks |= word.blocks;
    Word& known = vocabulary.words[number];
    known.inTitle = known.inTitle || (word.zones & kInTitle) != 0;
    known.isWritten = known.isWritten || word.isWritten;
    known.isOwnForm = known.isOwnForm || word.isOwnForm;
  }
}

void JoinForms(const Joining& joining) {
  PageTokens& out = joining.out;
  out.ofForms.clear();
  Texts texts(joining.more.formTexts);
  for (const FormOfPage& form : joining.more.forms) {
    const uint32_t number = out.numbers[form.word];
    const std::string_view text = texts.Next(form.bytes);
    const uint8_t variant =
        text.empty() ? 0 : FindOrAddVariant(joining.site.vocabulary, number, text);
    out.ofForms.push_back({kWordBase + number, variant});
  }
}

void JoinSigns(const Joining& joining) {
  PageTokens& out = joining.out;
  out.ofSigns.clear();
  Texts texts(joining.more.signTexts);
  for (const SignsOfPage& signs : joining.more.signs) {
    const std::string_view text = texts.Next(signs.bytes);
    out.ofSigns.push_back({joining.site.signs.Add(signs.form, text, signs.count), 0});
  }
}

// `end` is the token behind the stretch, or kNone32.
void Join(const Joining& joining, uint32_t end) {
  PageTokens& out = joining.out;
  JoinWordList(joining);
  JoinForms(joining);
  JoinSigns(joining);
  joining.site.sink({.tokens = joining.more.tokens,
                     .tokenCount = joining.more.tokenCount,
                     .forms = out.ofForms,
                     .signs = out.ofSigns,
                     .end = end});
  out.tokenCount += joining.more.tokenCount + (end != kNone32 ? 1 : 0);
}

}  // namespace

void JoinWords(std::initializer_list<const PageWords*> stretches, uint32_t pageNumber,
               const SiteWords& site, PageTokens& out) {
  out.postings.clear();
  out.tokenCount = 0;
  for (const PageWords* const* at = stretches.begin(); at != stretches.end(); ++at) {
    const bool isLast = at + 1 == stretches.end();
    const bool isRun = (*at)->tokenCount != 0 &&
                       std::any_of(at + 1, stretches.end(),
                                   [](const PageWords* words) { return words->tokenCount != 0; });
    Join({.more = **at,
          .pageNumber = pageNumber,
          .firstToken = out.tokenCount,
          .site = site,
          .out = out},
         isLast ? kPageEndWord : (isRun ? kRunEndWord : kNone32));
  }
  for (const Posting& posting : out.postings) {
    Word& word = site.vocabulary.words[posting.word];
    word.mostOnPage = std::max(word.mostOnPage, posting.total);
    if (posting.zones == kInAddress && posting.body == 0) ++word.addressOnlyPages;
  }
}

}  // namespace vela::indexer
