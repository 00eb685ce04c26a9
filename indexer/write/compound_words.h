// compound_words.h: which words of the site are the same one written in another way, or have
// another one as a part.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "indexer/collect/number_table.h"
#include "indexer/collect/vocabulary.h"

namespace vela::indexer {

// The words that pages write, in lower case, by what they are in the vocabulary.
struct FormHash {
  using is_transparent = void;
  size_t operator()(std::string_view form) const { return TextHash(form); }
};
using WordsByForm = std::unordered_map<std::string, uint32_t, FormHash, std::equal_to<>>;
WordsByForm FormsOfSite(const Vocabulary& vocabulary, bool utf8);

// Two words that find each other: "e-mail" and "email", "f-string" and "f-strings".
struct SameWord {
  std::string one;
  std::string other;
};
std::vector<SameWord> SameWords(const WordsByForm& forms);

// A word and the two that make it when written apart: "filename", "file" and "name".
struct ApartWord {
  std::string whole;
  std::string first;
  std::string second;
  bool isJoined = false;  // by a hyphen, so that its parts find it already
};
// Whether pages write them apart is not known yet.
std::vector<ApartWord> ApartWords(const WordsByForm& forms);

// A noun and a word that it is made of, as German writes them: "Kernelmodul" and "Modul"; in lower
// case.
struct CompoundPart {
  std::string part;
  std::string compound;
  uint32_t pages = 0;  // of the compound
};
std::vector<CompoundPart> GermanCompounds(const Vocabulary& vocabulary, const WordsByForm& forms,
                                          bool utf8);

}  // namespace vela::indexer
