#include "indexer/write/compound_words.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "text/ascii.h"
#include "text/lower.h"

namespace vela::indexer {

namespace {

// In bytes. Shorter pieces are parts of too many words by chance.
constexpr size_t kApartPieceLeast = 3;
constexpr size_t kApartWholeLeast = 7;
constexpr size_t kGermanPieceLeast = 4;
// A word on one page is as often a slip as a word.
constexpr uint32_t kPagesLeast = 2;

// Words that stand before or behind others without making one word with them ("not able").
constexpr std::string_view kLoneWords[] = {
    "all",  "and",  "any", "are",  "been", "but",  "can",  "for", "from", "had",
    "has",  "have", "her", "here", "him",  "his",  "its",  "may", "not",  "now",
    "one",  "our",  "out", "own",  "she",  "than", "that", "the", "then", "there",
    "they", "this", "was", "were", "when", "will", "with", "you", "your"};

// What German puts between the parts of a compound.
constexpr std::string_view kGermanJoints[] = {"", "s", "es", "n", "en", "er", "e"};

bool IsOfLetters(std::string_view text) {
  return std::ranges::all_of(
      text, [](char c) { return IsLower(c) || static_cast<unsigned char>(c) >= 0x80; });
}

bool StartsCharacter(std::string_view text, size_t at) {
  return (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

bool IsLone(std::string_view word) {
  return std::ranges::find(kLoneWords, word) != std::end(kLoneWords);
}

// German nouns are written with a capital; what a page has in small letters is a verb as often.
bool IsNoun(const Vocabulary& vocabulary, const Word& word, bool utf8) {
  for (uint32_t v = word.firstVariant; v != kNone32; v = vocabulary.variants[v].next) {
    const std::string_view written = TextOf(vocabulary.variants[v], vocabulary);
    std::string form(written);
    LowerText(form.data(), form.size(), utf8);
    if (form == written) return false;
  }
  return !word.isOwnForm;
}

// Tells most texts that no page writes from the forms by a bit that their hash points at.
class KnownForms {
 public:
  explicit KnownForms(const WordsByForm& forms) : forms_(forms), bits_(kBits / 64) {
    for (const auto& [form, number] : forms) {
      const uint64_t bit = TextHash(form) % kBits;
      bits_[bit / 64] |= uint64_t{1} << bit % 64;
    }
  }
  bool Has(std::string_view text) const {
    const uint64_t bit = TextHash(text) % kBits;
    return (bits_[bit / 64] >> bit % 64 & 1) != 0 && forms_.contains(text);
  }

 private:
  // Half a megabyte, which stays in the processor's cache.
  static constexpr uint64_t kBits = uint64_t{1} << 22;
  const WordsByForm& forms_;
  std::vector<uint64_t> bits_;
};

}  // namespace

WordsByForm FormsOfSite(const Vocabulary& vocabulary, bool utf8) {
  WordsByForm forms;
  for (uint32_t number = 0; number < vocabulary.words.size(); ++number) {
    const Word& word = vocabulary.words[number];
    if (!(word.isWritten || word.isOwnForm) || word.pageCount < kPagesLeast) continue;
    if (word.isOwnForm) forms.emplace(TextOf(word, vocabulary), number);
    for (uint32_t v = word.firstVariant; v != kNone32; v = vocabulary.variants[v].next) {
      std::string form(TextOf(vocabulary.variants[v], vocabulary));
      LowerText(form.data(), form.size(), utf8);
      forms.emplace(std::move(form), number);
    }
  }
  return forms;
}

std::vector<SameWord> SameWords(const WordsByForm& forms) {
  std::vector<SameWord> same;
  for (const auto& [form, number] : forms) {
    if (form.find('-') == form.npos || form.starts_with('-') || form.ends_with('-')) continue;
    std::string closed = form;
    std::erase(closed, '-');
    for (const std::string& other : {closed, form + "s"}) {
      const auto found = forms.find(other);
      if (found != forms.end() && found->second != number) same.push_back({form, other});
    }
  }
  std::ranges::sort(same, {}, [](const SameWord& each) { return std::pair(each.one, each.other); });
  return same;
}

std::vector<ApartWord> ApartWords(const WordsByForm& forms) {
  std::vector<ApartWord> apart;
  const KnownForms known(forms);
  const auto add = [&](const std::string& whole, std::string_view first, std::string_view second,
                       bool isJoined) {
    if (first.size() < kApartPieceLeast || second.size() < kApartPieceLeast || IsLone(first) ||
        IsLone(second) || !known.Has(first) || !known.Has(second)) {
      return;
    }
    apart.push_back({whole, std::string(first), std::string(second), isJoined});
  };
  for (const auto& [form, number] : forms) {
    const std::string_view text = form;
    const size_t hyphen = text.find('-');
    if (hyphen != text.npos) {
      const std::string_view second = text.substr(hyphen + 1);
      if (second.find('-') == second.npos) add(form, text.substr(0, hyphen), second, true);
    } else if (text.size() >= kApartWholeLeast && IsOfLetters(text)) {
      for (size_t at = kApartPieceLeast; at + kApartPieceLeast <= text.size(); ++at) {
        if (StartsCharacter(text, at)) add(form, text.substr(0, at), text.substr(at), false);
      }
    }
  }
  std::ranges::sort(apart, {},
                    [](const ApartWord& each) { return std::pair(each.whole, each.first); });
  return apart;
}

std::vector<CompoundPart> GermanCompounds(const Vocabulary& vocabulary, const WordsByForm& forms,
                                          bool utf8) {
  std::vector<CompoundPart> parts;
  const KnownForms known(forms);
  for (const auto& [form, number] : forms) {
    const std::string_view text = form;
    if (text.size() < 2 * kGermanPieceLeast || !IsOfLetters(text) ||
        !IsNoun(vocabulary, vocabulary.words[number], utf8)) {
      continue;
    }
    std::set<std::string> found;
    for (size_t at = kGermanPieceLeast; at + kGermanPieceLeast <= text.size(); ++at) {
      if (!StartsCharacter(text, at)) continue;
      const std::string_view second = text.substr(at);
      if (IsLone(second) || !known.Has(second)) continue;
      for (const std::string_view joint : kGermanJoints) {
        const std::string_view before = text.substr(0, at);
        if (!before.ends_with(joint)) continue;
        const std::string_view first = before.substr(0, before.size() - joint.size());
        if (first.size() < kGermanPieceLeast || !known.Has(first)) continue;
        found.emplace(first);
        found.emplace(second);
      }
    }
    for (const std::string& part : found) {
      parts.push_back({part, form, vocabulary.words[number].pageCount});
    }
  }
  // Where there are too many compounds, those on more pages stay.
  std::ranges::sort(parts, [](const CompoundPart& a, const CompoundPart& b) {
    return std::tuple(std::string_view(a.part), b.pages, std::string_view(a.compound)) <
           std::tuple(std::string_view(b.part), a.pages, std::string_view(b.compound));
  });
  return parts;
}

}  // namespace vela::indexer
