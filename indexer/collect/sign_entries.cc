#include "indexer/collect/sign_entries.h"

#include <algorithm>
#include <map>
#include <numeric>

#include "format/page_text.h"
#include "indexer/words/symbols.h"

namespace vela::indexer {

namespace {

constexpr std::string_view kBlankText = "&#32;";

// Signs between two words that are shown.
constexpr uint32_t kGapSignLimit = 12;
// Different runs of signs that are counted, and those that become entries. A search passes all
// entries on its way to a word.
constexpr size_t kRunLimit = size_t{1} << 16;
constexpr size_t kEntryLimit = 1000;

std::string_view FirstSign(std::string_view text) {
  if (text.starts_with('&')) return text.substr(0, text.find(';') + 1);
  size_t length = 0;
  DecodeCharacter(text, 0, length);
  return text.substr(0, length);
}

uint64_t HashOf(SignForm form, std::string_view text) { return TextHash(text) + form; }

// Alike for equal runs alone.
std::string KeyOf(SignForm form, std::string_view text) {
  return std::string(1, static_cast<char>(form)).append(text);
}

}  // namespace

void SignGap::Clear(bool blankBefore) {
  text.clear();
  signs = 0;
  opens = blankBefore;
  isBlank = false;
}

void SignGap::AddBlank() {
  if (signs == 0) {
    opens = true;
  } else {
    isBlank = true;
  }
}

void SignGap::AddSign(std::string_view sign) {
  if (signs == kGapSignLimit) return;
  if (isBlank) text += kBlankText;
  isBlank = false;
  if (sign.size() == 1) {
    text += HtmlText(static_cast<unsigned char>(sign[0]));
  } else {
    text += sign;
  }
  ++signs;
}

void SignGap::ShowBlank() {
  text = kBlankText;
  signs = 1;
  opens = isBlank = false;
}

SignForm FormOf(const SignGap& gap, bool blankBehind) {
  blankBehind = blankBehind || gap.isBlank;
  if (gap.opens) return blankBehind ? kAlone : kPrefix;
  return blankBehind ? kSuffix : kBetween;
}

uint32_t SignEntries::Find(SignForm form, std::string_view text) const {
  return numbers_.Find(HashOf(form, text), [&](uint32_t number) {
    return runs_[number].form == form && runs_[number].text == text;
  });
}

uint32_t SignEntries::Add(SignForm form, std::string_view text, uint64_t count) {
  uint32_t number = Find(form, text);
  if (number == NumberTable::kNone && runs_.size() >= kRunLimit) {
    text = FirstSign(text);
    number = Find(form, text);
  }
  if (number == NumberTable::kNone) {
    number = static_cast<uint32_t>(runs_.size());
    numbers_.FindOrAdd(HashOf(form, text), number, [](uint32_t) { return false; });
    runs_.push_back({std::string(text), form, 0});
  }
  runs_[number].count += count;
  return kFirstSignWord + number;
}

ReservedEntries SignEntries::Finish() const {
  std::vector<uint32_t> order(runs_.size());
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::sort(order, [&](uint32_t a, uint32_t b) {
    const Run& left = runs_[a];
    const Run& right = runs_[b];
    if (left.count != right.count) return left.count > right.count;
    return KeyOf(left.form, left.text) < KeyOf(right.form, right.text);
  });
  // By form, in the order of their numbers.
  std::vector<std::string> chosen[kSignFormCount];
  std::map<std::string, uint32_t> places;  // within the form, by KeyOf
  const auto choose = [&](SignForm form, std::string_view text) {
    const auto [place, isNew] =
        places.try_emplace(KeyOf(form, text), static_cast<uint32_t>(chosen[form].size()));
    if (isNew) chosen[form].emplace_back(text);
    return place->second;
  };
  std::vector<uint32_t> placeOf(runs_.size());
  for (size_t i = 0; i < order.size(); ++i) {
    const Run& run = runs_[order[i]];
    placeOf[order[i]] = choose(run.form, i < kEntryLimit ? run.text : FirstSign(run.text));
  }

  ReservedEntries entries;
  // The two marks are never shown; no query holds a bracket, so no phrase finds them.
  entries.texts = {"(page)", "(run)"};
  uint32_t firstOf[kSignFormCount] = {};
  for (const SignForm form : {kSuffix, kAlone, kPrefix, kBetween}) {
    firstOf[form] = static_cast<uint32_t>(entries.texts.size());
    for (const std::string& text : chosen[form]) {
      entries.texts.push_back(form == kAlone ? std::string(kBlankText) + text : text);
    }
  }
  entries.numbers.suffixes = firstOf[kPrefix] - 1;
  entries.numbers.prefixes = firstOf[kBetween] - 1;
  entries.numbers.noSpaces = static_cast<uint32_t>(entries.texts.size()) - 1;
  entries.numbers.limit = entries.numbers.noSpaces;
  entries.finals = {kPageEndWord, kRunEndWord};
  for (size_t i = 0; i < runs_.size(); ++i) {
    entries.finals.push_back(firstOf[runs_[i].form] + placeOf[i]);
  }
  return entries;
}

}  // namespace vela::indexer
