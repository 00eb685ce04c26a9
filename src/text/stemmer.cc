#include "text/stemmer.h"

#include <libstemmer.h>

#include <algorithm>
#include <iterator>

namespace vela {

namespace {

// In the order of StemmingAlgorithm, as the library names them.
constexpr const char* kAlgorithms[kStemmingAlgorithmCount] = {
    "danish",    "dutch",  "english",    "finnish",  "french",  "german",  "hungarian", "italian",
    "norwegian", "porter", "portuguese", "romanian", "russian", "spanish", "swedish",   "turkish",
};

constexpr size_t kStemLimit = 2084;

// A word with one of these is a name or a number rather than a form of something else.
constexpr std::string_view kNotStemmed = "`0123456789-=[]\\;',./~!@#$%^&*_+|:\"<>?";

const char* EncodingOf(int32_t algorithm, bool utf8) {
  if (utf8) return "UTF_8";
  if (algorithm == kStemRomanian) return "ISO_8859_2";
  if (algorithm == kStemRussian) return "KOI8_R";
  return "ISO_8859_1";
}

}  // namespace

const char* StemmingAlgorithmName(int32_t algorithm) { return kAlgorithms[algorithm]; }

StemmerStatus Stemmer::Create(int32_t algorithm, bool utf8) {
  Release();
  if (algorithm < 0 || algorithm >= kStemmingAlgorithmCount) {
    return StemmerStatus::kInvalidAlgorithm;
  }
  stemmer_ = sb_stemmer_new(kAlgorithms[algorithm], EncodingOf(algorithm, utf8));
  if (stemmer_ == nullptr && algorithm == kStemHungarian) {
    // The letters concerned stand at the same byte values in both sets.
    stemmer_ = sb_stemmer_new(kAlgorithms[algorithm], "ISO_8859_2");
  }
  return stemmer_ == nullptr ? StemmerStatus::kUnavailable : StemmerStatus::kOk;
}

void Stemmer::Release() {
  if (stemmer_ != nullptr) sb_stemmer_delete(stemmer_);
  stemmer_ = nullptr;
}

bool Stemmer::StemWord(FixedText<2086>& word) {
  const std::string_view text = View(word);
  if (text.find_first_of(kNotStemmed) != text.npos) return false;
  const auto* stem = sb_stemmer_stem(stemmer_, reinterpret_cast<const sb_symbol*>(text.data()),
                                     static_cast<int>(text.size()));
  if (stem == nullptr) return false;
  const std::string_view stemmed = reinterpret_cast<const char*>(stem);
  if (stemmed.empty() || stemmed.size() > kStemLimit) return false;
  Set(word, stemmed);
  return true;
}

}  // namespace vela
