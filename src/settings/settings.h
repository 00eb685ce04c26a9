// settings.h: everything the site owner configured, as `settings.vdat` holds it.
//
// A field that mirrors a key is spelled as the key; its default is the value of a file without it.
#pragma once

#include <cstdint>
#include <string_view>

#include "format/meta_fields.h"
#include "settings/language_strings.h"
#include "text/fixed_text.h"
#include "text/owned_array.h"
#include "text/stemmer.h"
#include "text/text_list.h"
#include "text/word_compare.h"

namespace vela {

// One text in the list of a custom meta field.
using MetaListText = FixedText<65>;

struct MetaFieldDef {
  FixedText<104> name;  // in request parameters and class names
  int32_t type = 0;     // a MetaKind, or any other number for text
  FixedText<101> label;
  FixedText<103> extraText;
  int32_t method = 0;       // how a request value is compared
  int32_t numValues = 0;    // texts in the list of a drop-down or multiple choice, else as read
  int32_t firstValue = -1;  // the first of them in Settings::metaValues; -1: no list
};

// One accented sequence and what it is folded to; either may be empty.
struct AccentPair {
  FixedText<10> accent;
  FixedText<5> normal;
};

struct Settings {
  int32_t UseUTF8 = 0;
  FixedText<1024> Charset;
  int32_t Codepage = 0;
  int32_t UseStemming = 0;
  int32_t StemmingAlgo = kStemEnglish;
  int32_t NoCharset = 0;
  int32_t MinWordLen = 0;  // bytes
  int32_t Highlighting = 0;
  int32_t HighlightLimit = 30;
  int32_t GotoHighlight = 0;
  int32_t PdfHighlight = 0;
  int32_t FormFormat = 0;  // 0 none, 2 the advanced form, others the basic one
  int32_t DisplayMetaDesc = 0;
  int32_t DisplayMetaFields = 0;
  int32_t DotNetUseFormTags = 1;
  int32_t DotNetUsePostBacks = 0;
  int32_t UseDateTime = 0;
  int32_t DisplayDate = 0;
  int32_t DefaultSort = 0;
  int32_t DateRangeSearch = 0;
  int32_t DateRangeFormat = 0;  // 1 month/day/year, others day/month/year
  int32_t UseAutoComplete = 0;
  int32_t DisplayContext = 0;
  FixedText<2084> DatePickerPath;
  int32_t DisplayNumber = 0;
  int32_t DisplayTitle = 0;
  int32_t DisplayTerms = 0;
  int32_t DisplayScore = 0;
  int32_t DisplayURL = 0;
  int32_t TruncateShowURL = 0;  // bytes; 0 shows the whole address
  int32_t DisplayFilesize = 0;
  int32_t UseVelaImage = 0;
  int32_t DisplayCatSummary = 0;
  FixedText<1024> Version;
  int32_t Logging = 0;
  FixedText<256> LogFileName = {".//logs//searchwords.log"};
  int32_t MaxKeyWordLineLen = 32;  // bytes
  int32_t OutputVariantBufferSize = 0;
  int32_t OutputBasewordBufferSize = 0;
  int32_t DictIDLen = 0;  // bytes of a page text token, its variant byte included; 1 to 5
  int32_t DictReservedLimit = 0;
  int32_t DictReservedPrefixes = 0;
  int32_t DictReservedSuffixes = 0;
  int32_t DictReservedNoSpaces = 0;
  int32_t UseBigPageInfoData = 0;
  int32_t PluginOpenNewWindow = 0;
  int32_t FileTypePluginStart = 4;
  int32_t WordSplit = 0;
  int32_t VelaInfo = 1;
  int32_t Timing = 0;
  int32_t SearchAsSubstring = 0;
  int32_t ToLowerSearchWords = 0;
  int32_t ContextSize = 0;  // words
  int32_t MaxContextKeywords = 0;
  int32_t MaxResultsPerQuery = 1000;
  int32_t WeightProximity = 0;
  int32_t AllowExactPhrase = 0;
  int32_t MaxContextSeeks = 0;
  int32_t PhraseSigns = 0;  // tokens
  int32_t MaxMatches = 0;
  int32_t MaxSearchTime = 30;  // seconds
  int32_t UseLinkTarget = 0;
  FixedText<2048> LinkTarget;
  FixedText<1024> WordJoinChars;
  int32_t Spelling = 0;
  int32_t SpellingWhenLessThan = 0;
  int32_t NumSpellings = 0;
  int32_t Recommended = 0;
  int32_t NumRecommended = 0;
  int32_t RecommendedMax = 0;
  int32_t UseCats = 0;
  int32_t SearchMultiCats = 0;
  int32_t NumKeywords = 0;
  int32_t NumPages = 0;
  int32_t NumVariants = 0;
  int32_t PageInfoSize = 0;      // bytes
  int32_t LookupGeneration = 0;  // of the lookup file; below 1: none is used
  FixedText<2048> LinkBackURL;   // preset to the program's own file name
  int32_t DefaultToAnd = 0;
  int32_t UseXML = 0;
  FixedText<1025> XMLTitle;
  FixedText<2001> XMLDesc;
  FixedText<2084> XMLURL;
  FixedText<2084> XMLXSLTURL;
  FixedText<2084> XMLOpenSearchDescURL;
  int32_t XMLHighlight = 0;
  int32_t NumCats = 0;
  int32_t NumCatBytes = 0;
  int32_t UseMetaFields = 0;
  int32_t NumMetaFields = 0;
  int32_t MetaMoneyShowDec = 0;
  FixedText<64> MetaMoneyCurrency = {"&#36;"};
  int32_t MapAccents = 0;

  // The extensions, each off while its key is 0 or empty (docs/settings.md).
  int32_t CutSigns = 0;
  int32_t PlainQueries = 0;
  FixedText<2001> StopWords;  // blanks between them
  int32_t Synonyms = 0;       // lines of the synonyms file
  int32_t OfferWords = 0;
  int32_t Ranking = 0;
  int32_t SpellingDistance = 0;
  int32_t ShowCorrected = 0;
  int32_t Passages = 0;
  int32_t SectionLinks = 0;
  int32_t CompleteAnyWord = 0;
  int32_t CutRuns = 0;
  int32_t AmendedAnswers = 0;

  // Stands between LinkBackURL and the parameters of a link: "?" or "&amp;".
  FixedText<8> linkBackSeparator = {"?"};

  // The category names really read, in category order; at most NumCats.
  TextList categoryNames;

  // The definitions really read, in the order of the file; at most NumMetaFields.
  OwnedArray<MetaFieldDef> metaFields;
  TextList metaValues;  // the list values of all fields, one field after another

  bool hasAccentTable = false;
  OwnedArray<AccentPair> accents;

  LanguageStrings language;
};

// Text number `value` of the field's list; null when the list has no such value.
const char* MetaListValue(const Settings& settings, const MetaFieldDef& field, int32_t value);

// How words of this index compare.
TextMode WordMode(const Settings& settings);

// What the settings say, where more than one place asks. Some keys are asked in two ways that tell
// values apart which no indexer writes; both ways stand here.
inline bool UsesCategories(const Settings& s) { return s.UseCats != 0; }
// Kept: whether the records of the pages hold category sets, and the summary counts them: only with
// UseCats 1, while any number but 0 shows and searches categories (golden index/cats_mode_two).
inline bool HasCategorySets(const Settings& s) { return s.UseCats == 1; }
inline bool UsesMetaFields(const Settings& s) { return s.UseMetaFields != 0; }
// Kept: shown only with UseMetaFields 1, searched with any number but 0 (golden
// output/meta_mode_two).
inline bool ShowsMetaFields(const Settings& s) {
  return s.UseMetaFields == 1 && s.DisplayMetaFields == 1;
}
inline bool IsUtf8(const Settings& s) { return s.UseUTF8 == 1; }
// Kept: the stemmer takes any number but 0 for UTF-8, all else only 1 (golden
// search/stemmer_utf8_mode_two).
inline bool StemsUtf8(const Settings& s) { return s.UseUTF8 != 0; }
inline bool StemsWords(const Settings& s) { return s.UseStemming == 1; }
// Kept: the query is lower-cased only with 1, words are compared without case with any number but 0
// (golden output/lower_case_mode_two).
inline bool LowersQueries(const Settings& s) { return s.ToLowerSearchWords == 1; }
inline bool SearchesSubstrings(const Settings& s) { return s.SearchAsSubstring == 1; }
// Only 1 lets quotes make phrases; with any other number but 0 they only group words.
inline bool AllowsPhrases(const Settings& s) { return s.AllowExactPhrase == 1; }
// UTF-8 alone has the scripts that are written without blanks.
inline bool CutsRuns(const Settings& s) { return s.CutRuns == 1 && IsUtf8(s); }
// Whether several words in one term stand one after another.
inline bool SearchesPhrases(const Settings& s) { return AllowsPhrases(s) || CutsRuns(s); }
inline bool ShowsCorrected(const Settings& s) { return s.ShowCorrected == 1; }
// Offers are the words that stand on pages, not what they are looked up as.
inline bool OffersWords(const Settings& s) { return s.OfferWords == 1; }
inline bool NeedsPageText(const Settings& s) { return s.DisplayContext == 1 || SearchesPhrases(s); }
inline bool SearchesDates(const Settings& s) { return s.DateRangeSearch == 1; }
inline bool ShowsImages(const Settings& s) { return s.UseVelaImage == 1; }
inline bool MarksWords(const Settings& s) { return s.Highlighting == 1; }
// Kept: titles and descriptions pass through the marking with any number but 0, which ends a word
// of 400 bytes also where nothing is marked (unit highlighted_test).
inline bool PassesTextsThroughMarking(const Settings& s) { return s.Highlighting != 0; }
// Whether links carry the query, so that the page shown scrolls to its words.
inline bool PointsToWords(const Settings& s) { return s.GotoHighlight == 1; }

}  // namespace vela
