// reason.h: why something of the site or of the configuration found no use. The program counts and
// compares these; their texts are for people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vela::indexer {

enum class Reason : uint8_t {
  kNone,  // nothing stands against it

  // A file or folder.
  kFolderNotRead,
  kFileNotRead,
  kFileNotFound,
  kFileNotOpened,
  kNoPermission,
  kNotRegular,
  kSymbolicLink,
  kLinkOutside,
  kLinkNotFollowed,
  kFileTooLarge,
  kReadError,
  kForRobots,
  kOtherKind,  // `where` is the ending of its name, or its media type

  // An address that was asked for on the web.
  kRobotsRefused,
  kPageGone,
  kAccessRefused,
  kServerError,
  kNoAnswer,
  kBadEncoding,
  kBadCertificate,
  kRedirectedTooOften,
  kRedirectedOutside,
  kPrivateNetwork,

  // A page.
  kBinary,
  kNotConverted,
  kMarkupTooSlow,
  kMarkupTooLarge,
  kStopped,
  kNoMemory,
  kNoindex,
  kNoText,
  kCopy,
  kEqual,
  kSimilar,
  kRefresh,
  kAddressTooLong,

  // A document that another process reads.
  kEncrypted,
  kDamaged,
  kDocumentTooSlow,
  kDocumentTooLarge,
  kReaderFailed,
  kReaderMissing,
  kNoPdfProgram,
  kNoOldOfficeProgram,

  // A page that is indexed all the same.
  kNotWellFormed,  // the value is where and why
  kLeftOff,
  kNothingChosen,

  // A link of a page; the value is where it leads to.
  kBrokenLink,
  kBrokenPlace,

  // The value of a meta field; `where` is the field.
  kNotInList,
  kNoAmount,
  kNoWholeNumber,

  // A rule of the owner's or the template; `subject` is what it names, `where` the file and line.
  kUnusedExclude,
  kUnusedCategory,
  kUnusedBoost,
  kUnusedField,
  kUnusedContent,
  kUnusedSelector,
  kFileDatesShared,  // `subject`: the day
  kNoPageToRecommend,
  kNoKeyword,
  kKeywordsTooLong,
  kTemplateLanguage,
  kTemplateWithoutResults,
  kLogFolderNotGiven,  // `subject`: the commands that give it to the web server

  // A crawl.
  kCrawlStopped,     // `subject`: the key of [crawl] whose limit was reached
  kStartRedirected,  // `where`: a first address; `subject`: where it leads to
  kSitemapDamaged,   // `subject`: its address
  kArchiveDamaged,   // `subject`: its file

  // What is kept from run to run.
  kStateNotKept,  // `subject`: why

  // Why something that an owner asks for is in no list of pages.
  kExcluded,  // `subject`: the pattern
  kNotIncluded,
  kHiddenName,  // `subject`: the name
  kToolFolder,  // the same
  kIndexFolder,
  kNotListed,
  kNotOfSite,  // `subject`: the address of the site
  kNotFetched,
};

constexpr Reason kLastReason = Reason::kNotFetched;

// The reason as programs know it: small letters and "_". It stays when the words change.
std::string_view ReasonCode(Reason reason);

// None when no reason is called so.
std::optional<Reason> ReasonOfCode(std::string_view code);

// The words for a person; "%" stands for the subject.
std::string_view ReasonText(Reason reason);

// A reason, and what it is about.
struct Finding {
  Reason reason = Reason::kNone;
  std::string where;    // empty where the subject says it
  std::string subject;  // a category's name, an address, a value; empty where there is none
};

// "WHERE: TEXT", with the subject in its place.
std::string FindingText(const Finding& finding);

}  // namespace vela::indexer
