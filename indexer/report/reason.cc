#include "indexer/report/reason.h"

namespace vela::indexer {

namespace {

struct ReasonWords {
  Reason reason;
  std::string_view code;
  std::string_view text;
};

constexpr ReasonWords kReasonWords[] = {
    {Reason::kNone, "", ""},
    {Reason::kFolderNotRead, "folder_not_read", "folder cannot be read"},
    {Reason::kFileNotRead, "file_not_read", "file cannot be read"},
    {Reason::kFileNotFound, "file_not_found", "no such file"},
    {Reason::kFileNotOpened, "file_not_opened", "file cannot be opened"},
    {Reason::kNoPermission, "no_permission", "no permission to read"},
    {Reason::kNotRegular, "not_regular", "not a regular file"},
    {Reason::kSymbolicLink, "symbolic_link", "symbolic link (follow_links is off)"},
    {Reason::kLinkOutside, "link_outside", "symbolic link that leads out of the site or nowhere"},
    {Reason::kLinkNotFollowed, "link_not_followed", "symbolic link to what is read where it lies"},
    {Reason::kFileTooLarge, "file_too_large", "larger than the limit (--max-file-size)"},
    {Reason::kReadError, "read_error", "read error"},
    {Reason::kForRobots, "for_robots", "meant for robots"},
    {Reason::kOtherKind, "other_kind", "of a kind that is not read"},
    {Reason::kRobotsRefused, "robots_refused", "robots.txt of its server does not allow it"},
    {Reason::kPageGone, "page_gone", "there is no such page (404, 410)"},
    {Reason::kAccessRefused, "access_refused", "the server refuses it (401, 403)"},
    {Reason::kServerError, "server_error", "the server answers with an error"},
    {Reason::kNoAnswer, "no_answer", "no answer, or none that is whole"},
    {Reason::kBadEncoding, "bad_encoding", "its compressed form is damaged"},
    {Reason::kBadCertificate, "bad_certificate", "the certificate of its server is not trusted"},
    {Reason::kRedirectedTooOften, "redirected_too_often", "redirected too often"},
    {Reason::kRedirectedOutside, "redirected_outside", "redirected to what the crawl leaves out"},
    {Reason::kPrivateNetwork, "private_network", "its server is in a private network"},
    {Reason::kBinary, "binary", "binary file"},
    {Reason::kNotConverted, "not_converted", "character set cannot be converted"},
    {Reason::kMarkupTooSlow, "markup_too_slow", "markup takes too long to read"},
    {Reason::kMarkupTooLarge, "markup_too_large", "markup grows too large"},
    {Reason::kStopped, "stopped", "reading was stopped"},
    {Reason::kNoMemory, "no_memory", "not enough memory to read it"},
    {Reason::kNoindex, "noindex", "noindex"},
    {Reason::kNoText, "no_text", "no text"},
    {Reason::kCopy, "copy", "copy of another page (canonical address)"},
    {Reason::kEqual, "equal", "copy of another page (the same text)"},
    {Reason::kSimilar, "similar", "nearly the same text as another page"},
    {Reason::kRefresh, "refresh", "only leads on to another page (refresh)"},
    {Reason::kAddressTooLong, "address_too_long", "address too long"},
    {Reason::kEncrypted, "encrypted", "encrypted: it opens with a password only"},
    {Reason::kDamaged, "damaged", "damaged, or not what its name says"},
    {Reason::kDocumentTooSlow, "document_too_slow", "takes too long to read"},
    {Reason::kDocumentTooLarge, "document_too_large", "grows too large when it is unpacked"},
    {Reason::kReaderFailed, "reader_failed", "the program that reads it broke down"},
    {Reason::kReaderMissing, "reader_missing",
     "the program vela_extract, which reads it, does not lie beside vela_index or cannot run"},
    {Reason::kNoPdfProgram, "no_pdf_program",
     "the program pdftotext, which reads it, is not installed (package poppler-utils)"},
    {Reason::kNoOldOfficeProgram, "no_old_office_program",
     "the program that reads it is not installed (package catdoc)"},
    {Reason::kNotWellFormed, "not_well_formed", "no well-formed XHTML, read as HTML"},
    {Reason::kLeftOff, "left_off", "\"vela:off\" without \"vela:on\": all behind it is left out"},
    {Reason::kNothingChosen, "nothing_chosen", "no text in only_elements: taken as a whole"},
    {Reason::kBrokenLink, "broken_link", "link that leads nowhere"},
    {Reason::kBrokenPlace, "no_place", "link to a place that its page does not have"},
    {Reason::kNotInList, "not_in_list", "not in the list of values"},
    {Reason::kNoAmount, "no_amount", "no amount"},
    {Reason::kNoWholeNumber, "no_whole_number", "no whole number"},
    {Reason::kUnusedExclude, "unused_exclude", "the pattern \"%\" to exclude leaves nothing out"},
    {Reason::kUnusedCategory, "unused_category", "the category \"%\" fits no page"},
    {Reason::kUnusedBoost, "unused_boost", "this [[boost]] fits no page"},
    {Reason::kUnusedField, "unused_field", "no page has a value for the field \"%\""},
    {Reason::kUnusedContent, "unused_content", "this [[content]] holds for no page"},
    {Reason::kUnusedSelector, "unused_selector",
     "the selector \"%\" fits nothing that is content otherwise"},
    {Reason::kFileDatesShared, "file_dates_shared",
     "most files were changed on one day, %: their time is not shown as the date of a page "
     "(file_dates)"},
    {Reason::kNoPageToRecommend, "no_page_to_recommend", "there is no page % to recommend"},
    {Reason::kNoKeyword, "no_keyword", "the keywords of % hold no word"},
    {Reason::kKeywordsTooLong, "keywords_too_long", "the keywords of % are too long"},
    {Reason::kTemplateLanguage, "template_language",
     "the template is in another language than the search (%): change its words and its lang, or "
     "take a built-in one (--template default)"},
    {Reason::kTemplateWithoutResults, "template_without_results",
     "the template % shows no results: it has neither <!--VELASEARCH--> nor "
     "<!--VELA_SHOW_RESULTS-->"},
    {Reason::kLogFolderNotGiven, "log_folder_not_given",
     "searches are logged here, but unless the web server runs as the user of this run it cannot "
     "write; as root: %"},
    {Reason::kCrawlStopped, "crawl_stopped",
     "the crawl has left addresses out, as it reached its limit (% in [crawl])"},
    {Reason::kStartRedirected, "start_redirected",
     "it leads to %, which is on no host of the crawl: begin there, or add the host to hosts in "
     "[crawl]"},
    {Reason::kSitemapDamaged, "sitemap_damaged", "the sitemap % is damaged"},
    {Reason::kArchiveDamaged, "archive_damaged", "the archive % is damaged"},
    {Reason::kStateNotKept, "state_not_kept",
     "what was made of the pages is not kept for the next run: %"},
    {Reason::kExcluded, "excluded", "excluded by the pattern \"%\""},
    {Reason::kNotIncluded, "not_included", "fits no pattern of include in [crawl]"},
    {Reason::kHiddenName, "hidden_name", "\"%\" begins with a dot"},
    {Reason::kToolFolder, "tool_folder", "\"%\" is no folder of pages"},
    {Reason::kIndexFolder, "index_folder", "it lies in the folder of the index"},
    {Reason::kNotListed, "not_listed", "not in the list (--list)"},
    {Reason::kNotOfSite, "not_of_site", "not below %, the address of the site"},
    {Reason::kNotFetched, "not_fetched", "no run has fetched such a page"},
};

constexpr bool EachReasonHasItsPlace() {
  for (size_t i = 0; i < std::size(kReasonWords); ++i) {
    if (kReasonWords[i].reason != static_cast<Reason>(i)) return false;
  }
  return std::size(kReasonWords) == static_cast<size_t>(kLastReason) + 1;
}
static_assert(EachReasonHasItsPlace());

}  // namespace

std::string_view ReasonCode(Reason reason) {
  return kReasonWords[static_cast<size_t>(reason)].code;
}

std::optional<Reason> ReasonOfCode(std::string_view code) {
  for (size_t i = 0; i < std::size(kReasonWords); ++i) {
    if (kReasonWords[i].code == code) return static_cast<Reason>(i);
  }
  return std::nullopt;
}

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
