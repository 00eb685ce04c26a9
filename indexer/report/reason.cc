#include "indexer/report/reason.h"

namespace vela::indexer {

namespace {

struct ReasonWords {
  Reason reason;
  std::string_view text;
};

constexpr ReasonWords kReasonWords[] = {
    {Reason::kNone, ""},
    {Reason::kFolderNotRead, "folder cannot be read"},
    {Reason::kFileNotRead, "file cannot be read"},
    {Reason::kFileNotFound, "no such file"},
    {Reason::kFileNotOpened, "file cannot be opened"},
    {Reason::kNoPermission, "no permission to read"},
    {Reason::kNotRegular, "not a regular file"},
    {Reason::kSymbolicLink, "symbolic link"},
    {Reason::kFileTooLarge, "larger than the limit (--max-file-size)"},
    {Reason::kReadError, "read error"},
    {Reason::kBinary, "binary file"},
    {Reason::kNotConverted, "character set cannot be converted"},
    {Reason::kMarkupTooDeep, "markup nests too deep"},
    {Reason::kMarkupTooLarge, "markup grows too large"},
    {Reason::kNoindex, "noindex"},
    {Reason::kNoText, "no text"},
    {Reason::kCopy, "copy of another page (canonical address)"},
    {Reason::kAddressTooLong, "address too long"},
    {Reason::kNotInList, "not in the list of values"},
    {Reason::kNoAmount, "no amount"},
    {Reason::kNoWholeNumber, "no whole number"},
    {Reason::kUnusedCategory, "the category \"%\" fits no page"},
    {Reason::kUnusedBoost, "this [[boost]] fits no page"},
    {Reason::kNoPageToRecommend, "there is no page % to recommend"},
    {Reason::kNoKeyword, "the keywords of % hold no word"},
    {Reason::kKeywordsTooLong, "the keywords of % are too long"},
    {Reason::kTemplateLanguage,
     "the template is in another language than the search (%): change its words and its lang, or "
     "take a built-in one (--template default)"},
    {Reason::kTemplateWithoutResults,
     "the template % shows no results: it has neither <!--VELASEARCH--> nor "
     "<!--VELA_SHOW_RESULTS-->"},
};

constexpr bool EachReasonHasItsPlace() {
  for (size_t i = 0; i < std::size(kReasonWords); ++i) {
    if (kReasonWords[i].reason != static_cast<Reason>(i)) return false;
  }
  return std::size(kReasonWords) == static_cast<size_t>(Reason::kTemplateWithoutResults) + 1;
}
static_assert(EachReasonHasItsPlace());

}  // namespace

std::string_view ReasonText(Reason reason) {
  return kReasonWords[static_cast<size_t>(reason)].text;
}

std::string FindingText(const Finding& finding) {
  std::string text(ReasonText(finding.reason));
  const size_t at = text.find('%');
  if (at != text.npos) text.replace(at, 1, finding.subject);
  return finding.where.empty() ? text : finding.where + ": " + text;
}

}  // namespace vela::indexer
