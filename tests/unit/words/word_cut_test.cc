#include "indexer/words/word_cut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "indexer/words/clean_text.h"
#include "indexer/words/query_folding.h"
#include "search/highlight_terms.h"
#include "search/run_terms.h"
#include "text/lower.h"
#include "text/run_cut.h"
#include "text/word_split.h"

namespace vela::indexer {
namespace {

// The tokens of a chunk on one line, signs as in HTML, "+" where words touch. A word is its base
// form, with "/" and its surface where that differs, and "'" before a piece; "_" is a blank that
// has to be written. Further forms stand in braces, sorted, each
// once.
std::string Cut(std::string_view chunk, RunCut runs = RunCut::kWords) {
  ChunkTokens cut;
  CutChunk(chunk, cut, runs);
  std::string line;
  for (const TextToken& token : cut.tokens) {
    if (!line.empty()) line += ' ';
    if (token.sign != 0) {
      if (token.sign == kWordBreakSign) {
        line += '+';
      } else if (token.sign == kBlankSign) {
        line += '_';
      } else {
        line += token.surface.size() == 1 ? HtmlText(token.sign) : std::string(token.surface);
      }
      continue;
    }
    line += token.isPiece ? "'" : "";
    line += token.base;
    if (token.base != token.surface) line.append("/").append(token.surface);
  }
  std::set<std::string> forms;
  for (const FoundForm& form : cut.forms) forms.insert(form.text);
  std::string all;
  for (const std::string& form : forms) all += (all.empty() ? " {" : " ") + form;
  return all.empty() ? line : line + all + "}";
}

TEST(WordCut, CutsChunks) {
  const struct {
    const char *what, *chunk, *expected;
  } kCases[] = {
      {"a plain word", "cat", "cat"},
      {"a capital letter", "Cat", "cat/Cat"},
      {"other alphabets", "ЖУК", "жук/ЖУК"},
      {"punctuation behind", "cat,", "cat ,"},
      {"several signs behind", "cat).", "cat ) ."},
      {"a bracket before", "(see", "( see"},
      {"two signs before", "(\"see", "( &#34; see"},
      {"quotes around", "\"Cat\"", "&#34; cat/Cat &#34;"},
      {"curly quotes around", "“Cat”", "“ cat/Cat ”"},
      {"a joined word by its parts", "Node.js,", "node.js/Node.js , {js node}"},
      {"a hyphen joins", "e-mail", "e-mail {e mail}"},
      {"an underscore joins", "snake_case", "snake_case {case snake}"},
      {"a version", "3.11", "3.11 {11 3}"},
      {"an abbreviation", "U.S.A.", "u.s.a/U.S.A . {a s u}"},
      {"a name with a dot before", ".net", ".net {net}"},
      {"an ellipsis before", "...and", ". . . and"},
      {"an ellipsis behind", "etc...", "etc . . ."},
      {"a slash separates", "and/or", "and / or"},
      {"an apostrophe separates", "don't", "don &#39; t"},
      {"a curly apostrophe is the same word", "don’t", "don ’ t"},
      {"several apostrophes", "rock'n'roll", "rock &#39; n &#39; roll"},
      {"single quotes around", "'cat'", "&#39; cat &#39;"},
      {"plus signs at the end", "C++", "c++/C++ {c}"},
      {"plus signs before punctuation", "C++,", "c++/C++ , {c}"},
      {"one plus is no part of a word", "c+", "c +"},
      {"a hash at the end", "C#", "c#/C# {c}"},
      {"a hash in brackets", "(C#)", "( c#/C# ) {c}"},
      {"a hash before a word", "#tag", "# tag"},
      {"a hyphen before a word would exclude it", "-x", "- x"},
      {"an option", "--help", "- - help"},
      {"a hyphen behind", "pre-", "pre - {pre-}"},
      {"a dunder name", "__init__", "__init _ _ {init}"},
      {"a dunder name of a module", "(a.__b__)", "( a.__b _ _ ) {a b}"},
      {"an underscore behind, and a dot", "x_.", "x _ ."},
      {"underscores before no letter", "_(\"x\")", "_ ( &#34; x &#34; )"},
      {"a line to write on", "Name:______", "name/Name : _ _ _ _"},
      {"a sign that a query keeps inside", "a<b", "a &#60; b"},
      {"a semicolon behind", "foo;", "foo ;"},
      {"marks are never part of the dictionary", "vector<int>", "vector &#60; int &#62;"},
      {"a question", "what?", "what ?"},
      {"patterns are no forms", "a*b", "a * b"},
      {"a range with a dash", "2010–2012", "2010 – 2012"},
      {"a dash alone", "—", "—"},
      {"two hyphens alone", "--", "- -"},
      {"a ruler is cut short", "===========", "= = = ="},
      {"of several signs, too", "+-+-+-+-+-+-+-+-+-", "+ - + - + - + - + - + -"},
      {"signs in quotes and brackets stay", "('~',", "( &#39; ~ &#39; ,"},
      {"an address for letters", "user@example.com", "user @ example.com {com example}"},
      {"an address", "https://x.example/a", "https : / / x.example / a {example x}"},
      {"a restriction is no form", "site:foo", "site : foo"},
      {"an umlaut", "Öl", "öl/Öl {oel ol}"},
      {"a sharp s", "straße", "straße {strasse}"},
      {"accents", "Café", "café/Café {cafe}"},
      {"accents in a part", "café-bar", "café-bar {bar cafe cafe-bar café}"},
      {"a dotted capital I", "İzmir", "i\xB0zmir/İzmir {izmir}"},
      {"a dotted capital I in a part", "İzmir-x", "i\xB0zmir-x/İzmir-x {izmir izmir-x x}"},
      {"signs around words that are joined", "(a-b_c.1);", "( a-b_c.1 ) ; {1 a b c}"},
      {"two that join in a row", "a--b", "a--b {a b}"},
      {"Greek accents", "Αθήνα", "αθήνα/Αθήνα {αθηνα}"},
      {"marks that are vowels stay", "हिन्दी", "हिन्दी"},
      {"a percentage", "50%", "50 %"},
      {"a price", "€50", "€ 50"},
      {"a temperature", "20°C", "20 ° c/C"},
      {"a full stop of another script", "図書館。", "図書館 。"},
      {"an arrow behind", "Download⬇", "download/Download ⬇"},
      {"an arrow before", "→next", "→ next"},
      {"a star", "Star★", "star/Star ★"},
      {"an emoji, which a query keeps", "Great😀", "great/Great 😀 {great😀}"},
      {"emoji between words", "a😀😁b", "a 😀 😁 b {a😀😁b}"},
      {"an emoji behind a sign", "ok!😀", "ok ! 😀 {😀}"},
      {"an emoji alone is a word", "😀", "😀"},
      {"an emoji in brackets", "(😀)", "( 😀 )"},
      {"a sign in its emoji form", "go➡️", "go ➡️"},
      {"a picture joined of several", "us👨‍👩‍👧‍👦!",
       "us 👨‍👩‍👧‍👦 ! {us👨‍👩‍👧‍👦}"},
      {"a skin tone", "hi👋🏽", "hi 👋🏽 {hi👋🏽}"},
      {"two flags", "EU🇩🇪🇫🇷", "eu/EU 🇩🇪 🇫🇷 {eu🇩🇪🇫🇷}"},
      {"a key's cap", "1️⃣", "1 ️⃣ {1️⃣}"},
      {"a cap on a sign", "a#️⃣", "a# ️⃣ {a ️⃣}"},
      {"a joiner inside a word", "क्‍ष", "क्‍ष"},
      {"a currency", "₹500", "₹ 500"},
      {"a superscript", "m²", "m² {m2}"},
      {"a circled digit", "①", "① {1}"},
      {"a Roman numeral", "Ⅳ", "ⅳ/Ⅳ {iv}"},
      {"a trade mark", "Word™", "word/Word ™"},
      {"a degree in one character", "20℃", "20℃ {20 c}"},
      {"half-width katakana", "ｶﾞﾗｽ", "ｶﾞﾗｽ {ガラス}"},
      {"a unit in one character", "㌔", "㌔ {キロ}"},
      {"a sign that is not shown", "word¶", "word"},
      {"damage in the text cuts",
       "a\xEF\xBF\xBD"
       "b",
       "a b {a\xEF\xBF\xBD"
       "b}"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Cut(c.chunk), c.expected);
  }
}

TEST(WordCut, LongWordsAreFoundByTheirParts) {
  const std::string word(kWordBytesLimit, 'a');
  EXPECT_EQ(Cut(word), word);
  EXPECT_EQ(Cut(word + "a"), "");
  EXPECT_EQ(Cut(word + ".b"), word + " . b");
  EXPECT_EQ(Cut(word + "a.b"), ". b");
}

// Dictionary words: 東京 図書館 は ; ภาษา ไทย.
TEST(WordCut, FindsWordsThatNoBlanksPart) {
  EXPECT_EQ(Cut("東京図書館"), "東京 + 図書館 {東京図書館}");
  EXPECT_EQ(Cut("ภาษาไทย"), "ภาษา + ไทย {ภาษาไทย}");
  EXPECT_EQ(Cut("「Linux入門」"), "「 linux/Linux + 入門 」 {linux入門}");
  EXPECT_EQ(Cut("東京.jp"), "東京 . jp {東京.jp}");
  EXPECT_EQ(Cut("한국어"), "한국어");
}

TEST(WordCut, LongTextWithoutBlanksIsCut) {
  std::string chunk;
  std::string tokens;
  for (int i = 0; i < 50; ++i) {
    chunk += "東京図書館";
    tokens += i == 0 ? "東京 + 図書館" : " + 東京 + 図書館";
  }
  EXPECT_EQ(Cut(chunk), tokens + " {図書館東京 東京図書館}");
}

TEST(WordCut, ChunksAreWhatBlanksLeave) {
  std::string_view text = "  one two,  three";
  EXPECT_EQ(NextChunk(text), "one");
  EXPECT_EQ(NextChunk(text), "two,");
  EXPECT_EQ(NextChunk(text), "three");
  EXPECT_EQ(NextChunk(text), "");
  EXPECT_EQ(NextChunk(text), "");
}

// Where the chunks of a text without blanks end.
std::vector<size_t> EndsOfChunks(std::string_view text) {
  std::vector<size_t> ends;
  size_t end = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view chunk = NextChunk(rest);
    EXPECT_LE(chunk.size(), kChunkBytesLimit);
    EXPECT_EQ(chunk, text.substr(end, chunk.size()));
    if (chunk.empty()) break;
    end += chunk.size();
    ends.push_back(end);
  }
  EXPECT_EQ(end, text.size());
  return ends;
}

std::string Repeated(std::string_view piece, size_t count) {
  std::string text;
  for (size_t i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(WordCut, AChunkOfUnusualLengthIsCutBehindASign) {
  EXPECT_EQ(EndsOfChunks(Repeated("abc;", kChunkBytesLimit / 4)).size(), 1u);
  const struct {
    const char* what;
    std::string piece;
    size_t cutBehind;  // so many bytes of a piece
  } kCases[] = {
      {"behind a semicolon rather than a hyphen", "a-b;c.", 4},
      {"behind a hyphen where there is nothing better", "ab-", 3},
      {"behind a comma", "12,", 3},
      {"behind the last of several signs", "word\"},\n{\"", 10},
      {"behind a full stop of another script", "図書館。", 12},
      {"behind a picture, and not inside of it", "a👨‍👩‍👧", 19},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const std::string text = Repeated(c.piece, 30000 / c.piece.size());
    const std::vector<size_t> ends = EndsOfChunks(text);
    EXPECT_GT(ends.size(), 3u);
    EXPECT_LT(ends.size(), 6u);
    for (size_t i = 0; i + 1 < ends.size(); ++i) {
      EXPECT_EQ(ends[i] % c.piece.size(), c.cutBehind % c.piece.size());
    }
  }
}

TEST(WordCut, NoPartOfATooLongWordIsAWord) {
  for (size_t length = kChunkBytesLimit - 300; length < kChunkBytesLimit + 300; ++length) {
    const std::string text = std::string(length, 'x') + ";b";
    std::string words;
    std::string_view rest = text;
    for (std::string_view chunk; !(chunk = NextChunk(rest)).empty();) words += Cut(chunk);
    ASSERT_EQ(words, "; b") << length;
  }
}

TEST(WordCut, NoCharacterOfALongChunkIsCut) {
  const struct {
    const char *what, *piece;
  } kCases[] = {{"two bytes", "é"}, {"three bytes", "東"}, {"four bytes", "😀"}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    const std::string_view piece = c.piece;
    for (size_t shift = 0; shift < piece.size(); ++shift) {
      const std::string text = std::string(shift, 'a') + Repeated(piece, 10000);
      for (const size_t end : EndsOfChunks(text)) EXPECT_EQ((end - shift) % piece.size(), 0u);
    }
  }
}

// The terms that a query of this text has, without exclusion marks.
std::vector<std::string> QueryTerms(std::string text, bool cutsSigns) {
  text = FoldedQuery(text, cutsSigns);
  LowerUtf8(text.data(), text.size());
  text += ' ';
  text.resize(SeparateWords(text.data(), text.size(), kWordJoinChars));
  std::vector<std::string> terms;
  for (size_t at = text.find_first_not_of(' '); at != text.npos;) {
    const size_t end = std::min(text.find(' ', at), text.size());
    terms.push_back(text.substr(at, end - at));
    at = text.find_first_not_of(' ', end);
  }
  return terms;
}

// The term, and what is left of it when signs that belong to no word are taken off its ends one by
// one. An index that has any of these has the term as a visitor means it.
std::vector<std::string> AsMeant(const std::string& term) {
  std::vector<size_t> bounds;  // of characters
  size_t length = 0;
  for (size_t at = 0; at < term.size(); at += length) {
    bounds.push_back(at);
    DecodeCharacter(term, at, length);
  }
  bounds.push_back(term.size());
  const auto isSign = [&](size_t character, std::string_view kept) {
    const char32_t c = DecodeCharacter(term, bounds[character], length);
    if (c < 0x80 && kept.find(static_cast<char>(c)) != kept.npos) return false;
    return ClassifyCharacter(c) != CharacterKind::kWord;
  };
  std::vector<std::string> meant;
  const size_t count = bounds.size() - 1;
  for (size_t first = 0; first < count; ++first) {
    for (size_t last = count; last > first; --last) {
      meant.push_back(term.substr(bounds[first], bounds[last] - bounds[first]));
      if (!isSign(last - 1, "#+_")) break;
    }
    if (!isSign(first, "._")) break;
  }
  return meant;
}

TEST(WordCut, CutsPieces) {
  const struct {
    const char *what, *chunk, *expected;
  } kCases[] = {
      {"a run", "暗号化", "'暗 '号 '化"},
      {"a sign between pieces", "日、本。", "'日 、 '本 。"},
      {"a sign that is not shown", "日※本", "'日 _ '本"},
      {"a word before a run", "Debianパッ", "debian/Debian + 'パ 'ッ"},
      {"a word behind a run", "日本GNU", "'日 '本 + gnu/GNU"},
      {"a number between", "第7章", "'第 + 7 + '章"},
      {"a joined word beside a run", "node.jsを", "node.js + 'を {js node}"},
      {"joining signs beside a run", "版-1.2", "'版 - 1.2 {1 2}"},
      {"joining signs between runs", "日-本", "'日 - '本"},
      {"half-width kana", "ｶﾞｽ", "'ガ/ｶﾞ 'ス/ｽ"},
      {"full-width letters are a word", "ＳＳＨを", "ｓｓｈ/ＳＳＨ + 'を {ssh}"},
      {"accents of a word beside a run", "caféへ", "café + 'へ {cafe}"},
      {"marks of Thai", "ที่นั่ง", "'ที่ 'นั่ 'ง"},
      {"brackets", "（東京）", "（ '東 '京 ）"},
      {"a character that stands for a piece", "㊗日", "'祝/㊗ '日 {㊗}"},
      {"one that stands for several", "5㌔、", "5 + 'キ/㌔ 'ロ/\u200B 、 {㌔}"},
      {"one that stands for other letters", "㎏", "㎏ {kg}"},
      {"no run", "e-mail", "e-mail {e mail}"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Cut(c.chunk, RunCut::kPieces), c.expected);
  }
}

bool HasWordCharacter(std::string_view text) {
  size_t length = 0;
  for (size_t at = 0; at < text.size(); at += length) {
    if (ClassifyCharacter(DecodeCharacter(text, at, length)) == CharacterKind::kWord) {
      return true;
    }
  }
  return false;
}

TEST(WordCut, WhatAQueryHoldsTheIndexHolds) {
  const std::vector<std::string> pieces = {
      "a", "B", "c7", "word", "ö", "É",  "图",    ".",     "-", "_", "#",      "+", "'",      "’",
      ",", ";", ":",  "=",    "/", "\\", "@",     "&",     "$", "!", "(",      ")", "[",      "]",
      "{", "}", "|",  "%",    "^", "~",  "`",     "–",     "—", "…", "°",      "€", "¶",      ".",
      "-", "_", "+",  "#",    "a", "b",  "site:", "[#@!]", "⬇", "😀", "➡️", "_", "1️⃣"};
  std::mt19937 random(20240229);
  size_t terms = 0;
  for (int round = 0; round < 200000; ++round) {
    std::string chunk;
    const size_t count = 1 + random() % 9;
    for (size_t i = 0; i < count; ++i) chunk += pieces[random() % pieces.size()];
    ChunkTokens cut;
    CutChunk(chunk, cut);
    std::set<std::string> found;
    for (const TextToken& token : cut.tokens) {
      if (token.sign == 0) found.insert(FoldedWord(token.base));
    }
    for (const FoundForm& form : cut.forms) {
      ASSERT_LT(form.token, cut.tokens.size()) << chunk;
      ASSERT_EQ(cut.tokens[form.token].sign, 0u) << chunk;
      found.insert(FoldedWord(form.text));
    }
    for (const std::string& text : found) {
      ASSERT_NE(text[0], '-') << chunk;
      ASSERT_EQ(text.find_first_of(" <>\"&|"), std::string::npos) << chunk;
    }
    for (const bool cutsSigns : {false, true}) {
      for (const std::string& term : QueryTerms(chunk, cutsSigns)) {
        // "site:x" restricts a search; it looks for no word.
        if (!HasWordCharacter(term) || term.find(':') != term.npos) continue;
        ASSERT_TRUE(std::ranges::any_of(
            AsMeant(term), [&](const std::string& text) { return found.contains(text); }))
            << chunk << " lacks " << term << ": " << Cut(chunk);
        ++terms;
      }
    }
  }
  EXPECT_GT(terms, 200000u);
}

// Whether composing makes another word or a sign and a mark of a character. Queries are not
// composed.
bool IsComposed(char32_t c) {
  std::string text = "q" + Utf8Text(c) + "q";
  const std::string before = text;
  CleanText(text);
  const CharacterKind kind = KindOf(c);
  return text != before && (kind == CharacterKind::kWord || kind == CharacterKind::kPicture);
}

// Every character is tried between letters, and all but ideographs and what no text uses before and
// behind letters and alone, too.
TEST(WordCut, PagesAndQueriesAreCutAlikeAtEveryCharacter) {
  size_t cuts = 0;
  for (char32_t c = 0; c < 0x110000; ++c) {
    const bool isSurrogate = c >= 0xD800 && c < 0xE000;
    // These have a meaning in a query, and are cut by the code that cuts pages.
    const bool hasMeaning = c == U'"' || c == U'*' || c == U'?';
    if (c == 0 || isSurrogate || hasMeaning || IsComposed(c)) continue;
    const bool isWord = KindOf(c) == CharacterKind::kWord;
    if (isWord && c >= 0x40000 && c % 251 != 0) continue;  // no text uses them
    const std::string sign = Utf8Text(c);
    std::vector<std::string> texts = {"xq" + sign + "qx"};
    if (!isWord || c < 0x3400) {
      for (const std::string& other : {sign + "qx", "xq" + sign, sign}) texts.push_back(other);
    }
    for (const std::string& text : texts) {
      std::string page = text;
      CleanText(page);
      std::set<std::string> found;
      std::string_view rest = page;
      ChunkTokens cut;
      for (std::string_view chunk = NextChunk(rest); !chunk.empty(); chunk = NextChunk(rest)) {
        CutChunk(chunk, cut);
        for (const TextToken& token : cut.tokens) {
          if (token.sign == 0) found.insert(FoldedWord(token.base));
        }
        for (const FoundForm& form : cut.forms) found.insert(FoldedWord(form.text));
      }
      for (std::string term : QueryTerms(text, true)) {
        std::erase(term, '"');
        if (term.starts_with('-')) term.erase(0, 1);  // an exclusion
        if (term.find_first_not_of("#+-") == term.npos) continue;
        ASSERT_TRUE(found.contains(term))
            << std::hex << static_cast<uint32_t>(c) << " in " << text << " lacks " << term;
      }
      if (text != sign && !isWord && c > 0x80) {
        // What cuts or vanishes leaves the words that are in the text without it.
        ASSERT_TRUE(found.contains("qx") || found.contains("xq") || found.contains("xqqx"))
            << std::hex << uint32_t{c};
        ++cuts;
      }
    }
  }
  EXPECT_GT(cuts, 10000u);
}

// Whether the words stand one after another among the tokens, signs passed over, each as a token or
// a form of one.
bool HoldsPhrase(const ChunkTokens& cut, std::string_view phrase) {
  std::vector<std::set<std::string>> found;
  std::vector<size_t> places(cut.tokens.size());
  for (size_t i = 0; i < cut.tokens.size(); ++i) {
    places[i] = found.size();
    if (cut.tokens[i].sign == 0) found.push_back({FoldedWord(cut.tokens[i].base)});
  }
  for (const FoundForm& form : cut.forms) found[places[form.token]].insert(FoldedWord(form.text));
  std::vector<std::string> words;
  for (std::string_view word; NextPhraseWord(phrase, word);) words.emplace_back(word);
  for (size_t begin = 0; begin + words.size() <= found.size(); ++begin) {
    size_t k = 0;
    while (k < words.size() && found[begin + k].contains(words[k])) ++k;
    if (k == words.size()) return true;
  }
  return false;
}

TEST(WordCut, TheIndexHoldsTheRunsOfAQueryAsPhrases) {
  const std::vector<std::string> pieces = {"a",  "Bc", "7",  "図", "書",   "ガ", "ｶﾞ", "か\u3099",
                                           "ー", "ท",  "ที่",  ".",  "-",    "_",  "、", "'",
                                           "/",  "é",  "中", "的", "ＳＳ", "(",  "①"};
  Settings settings;
  settings.UseUTF8 = settings.CutRuns = settings.AllowExactPhrase = 1;
  std::mt19937 random(20251122);
  size_t phrases = 0;
  for (int round = 0; round < 100000; ++round) {
    std::string chunk;
    const size_t count = 1 + random() % 9;
    for (size_t i = 0; i < count; ++i) chunk += pieces[random() % pieces.size()];
    ChunkTokens cut;
    CutChunk(chunk, cut, RunCut::kPieces);
    for (const std::string& term : QueryTerms(chunk, round % 2 != 0)) {
      if (!HasRunPiece(term) || term.starts_with('-')) continue;
      TermList terms;
      bool hasPhrase = false;
      ASSERT_TRUE(SplitQuery(term, terms, hasPhrase));
      ASSERT_TRUE(CutRunsOfTerms(terms, settings));
      ASSERT_TRUE(HoldsPhrase(cut, terms[0]))
          << chunk << " lacks " << terms[0] << ": " << Cut(chunk, RunCut::kPieces);
      ++phrases;
    }
  }
  EXPECT_GT(phrases, 50000u);
}

TEST(WordCut, SurvivesAnyBytes) {
  std::mt19937 random(7);
  for (int round = 0; round < 100000; ++round) {
    std::string text(1 + random() % 12, ' ');
    for (char& c : text) c = static_cast<char>(0x21 + random() % 0xDF);
    ChunkTokens cut;
    const bool inPieces = round % 2 != 0;
    CutChunk(text, cut, inPieces ? RunCut::kPieces : RunCut::kWords);
    for (const TextToken& token : cut.tokens) {
      ASSERT_EQ(token.base.empty(), token.sign != 0);
      if (token.sign != 0) continue;
      if (!token.isPiece) {
        ASSERT_EQ(token.base.size(), token.surface.size());
      }
      ASSERT_LE(token.base.size(), kWordBytesLimit);
    }
  }
}

}  // namespace
}  // namespace vela::indexer
