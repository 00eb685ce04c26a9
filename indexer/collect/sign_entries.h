// sign_entries.h: what stands between two words of a page, as one reserved entry of the dictionary.
//
// The search looks for a phrase a few tokens ahead of where its words first stand. So all the signs
// between two words are one token, and the dictionary has a reserved entry for each run of signs in
// use. The entries fill the classes of format/page_text.h: a run with a blank only behind it
// ("word,") and one between blanks are suffixes, the latter with the blank in its text; a run with
// a blank only before it ("(word") is a prefix; one with neither ("and/or") stands between.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/collect/number_table.h"

namespace vela::indexer {

// The signs between two words, as they are read. The start and the end of a text are blanks.
struct SignGap {
  std::string text;      // safe in HTML; blanks between signs as "&#32;"
  uint32_t signs = 0;    // written in it
  bool opens = true;     // a blank stands before the first sign
  bool isBlank = false;  // a blank stands behind what was read last

  void Clear(bool blankBefore);
  void AddBlank();
  // `sign` is a character in UTF-8, or the several of one picture. What goes beyond a few signs is
  // a ruler or a drawing, and dropped.
  void AddSign(std::string_view sign);
  // Makes a blank that was read without a sign one that is written, of an entry of its own.
  void ShowBlank();
  bool IsEmpty() const { return signs == 0; }
};

// In the order of the classes in the dictionary.
enum SignForm : uint8_t { kSuffix, kAlone, kPrefix, kBetween };
constexpr size_t kSignFormCount = 4;

// That of a gap that is not empty, followed by a blank or by a word.
SignForm FormOf(const SignGap& gap, bool blankBehind);

// The settings DictReservedSuffixes (S), DictReservedPrefixes (P), DictReservedNoSpaces and
// DictReservedLimit (N).
struct ReservedNumbers {
  uint32_t suffixes = 0;
  uint32_t prefixes = 0;
  uint32_t noSpaces = 0;
  uint32_t limit = 0;
};

// The reserved entries of a finished index.
struct ReservedEntries {
  ReservedNumbers numbers;
  std::vector<std::string> texts;  // of the entries 0 to N; safe in HTML, without blanks
  std::vector<uint32_t> finals;    // the reserved number, by the number that SignEntries gave
};

class SignEntries {
 public:
  // Counts a run of signs, the text of a gap, that was met `count` times. Returns a number for it:
  // below kSignNumberLimit, never that of an end of a run or page. It becomes a reserved number
  // with Finish.
  uint32_t Add(SignForm form, std::string_view text, uint64_t count);

  // Chooses the runs of signs that get an entry: those that stand most often in the site. Of any
  // other only the first sign is kept.
  ReservedEntries Finish() const;

 private:
  struct Run {
    std::string text;
    SignForm form = kSuffix;
    uint64_t count = 0;
  };
  uint32_t Find(SignForm form, std::string_view text) const;

  std::vector<Run> runs_;
  NumberTable numbers_;  // of `runs_`
};

constexpr uint32_t kSignNumberLimit = 1 << 20;

}  // namespace vela::indexer
