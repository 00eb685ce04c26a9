#include "indexer/words/word_forms.h"

#include "indexer/report/index_error.h"
#include "indexer/words/eight_bytes.h"
#include "indexer/words/query_folding.h"

namespace vela::indexer {

namespace {

constexpr size_t kStoredBytesLimit = 250;  // of a word in the vocabulary

// The stemmer reads bytes; in a set where its letters stand elsewhere it would cut at random.
bool SetFitsStemmer(const std::string& set, int32_t algorithm) {
  if (set == "utf-8") return true;
  switch (algorithm) {
    case kStemHungarian:
    case kStemRomanian:
      return set == "iso-8859-2";
    case kStemRussian:
      return set == "koi8-r";
    case kStemTurkish:
      return false;
    default:
      return set == "iso-8859-1" || set == "iso-8859-15" || set == "windows-1252";
  }
}

}  // namespace

bool HasStemmer(const IndexCharset& charset, int32_t algorithm) {
  Stemmer stemmer;
  return SetFitsStemmer(charset.name(), algorithm) &&
         stemmer.Create(algorithm, charset.utf8()) == StemmerStatus::kOk;
}

WordForms::WordForms(const IndexCharset& charset, int32_t stemming) : charset_(charset) {
  if (stemming < 0) return;
  const std::string name = StemmingAlgorithmName(stemming);
  if (!SetFitsStemmer(charset.name(), stemming)) {
    throw IndexError(ExitStatus::kUsage, "Words cannot be stemmed as " + name +
                                             " in the character set " + charset.name() +
                                             ". Set charset = \"utf-8\", or leave stemming out.");
  }
  if (stemmer_.Create(stemming, charset.utf8()) != StemmerStatus::kOk) {
    throw IndexError(ExitStatus::kUsage, "The stemming library has no " + name +
                                             " for the character set " + charset.name() + ".");
  }
  stems_ = true;
  isTurkish_ = stemming == kStemTurkish;
}

std::string_view WordForms::Stemmed(std::string_view word) {
  if (!stems_) return word;
  Set(stem_, word);
  stemmer_.StemWord(stem_);
  const std::string_view stem = View(stem_);
  return stem.size() <= kStoredBytesLimit ? stem : word;
}

// ASCII is folded already. The view holds until the next call.
std::string_view WordForms::Folded(std::string_view lower) {
  if (IsAsciiText(lower)) return lower;
  folded_ = FoldedWord(lower, isTurkish_);
  return folded_;
}

std::string_view WordForms::Base(std::string_view lower) {
  const std::string_view folded = Folded(lower);
  if (charset_.utf8()) return Stemmed(folded);
  if (charset_.Exactly(folded, base_)) return Stemmed(base_);
  base_ = charset_.WithReferences(lower);
  if (base_.size() > kStoredBytesLimit) base_.clear();
  return base_;
}

std::string_view WordForms::Surface(std::string_view surface) {
  if (charset_.utf8()) return surface;
  surface_ = charset_.WithReferences(surface);
  return surface_;
}

std::string_view WordForms::FoundBase(std::string_view lower) {
  const std::string_view folded = Folded(lower);
  if (charset_.utf8()) return Stemmed(folded);
  if (!charset_.Exactly(folded, base_)) return {};
  return Stemmed(base_);
}

}  // namespace vela::indexer
