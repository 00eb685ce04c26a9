// messages.h: what the answer says when something is wrong. Every wording stands in messages.cc,
// with its wrapping in XML mode and its end; the readers of files and the stages of a request only
// hand on what has happened.
#pragma once

#include <cstdint>
#include <string_view>

#include "index/dictionary.h"
#include "index/index_files.h"
#include "output/response.h"
#include "search/lookup.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "settings/settings_file.h"

namespace vela {

// The messages that are the same each time, in the order of their wordings.
enum class Message : uint8_t {
  kOutOfMemory,
  kOutOfMemoryForSearch,
  kOutOfMemoryForIndex,
  kOutOfMemoryForForm,
  kInvalidStemmer,
  kNoStemmer,
  kInvalidCategory,
  kCorruptIndex,
  kCorruptRecommended,
  kAutoCompleteMissing,
  kRecommendedMissing,
  kWordMapMissing,
  kSpellingMissing,
  kPageTextPlaceholder,
  kPageInfoTooShort,
  kPageInfoRecords,
  kPageInfoSlack,
  kDictionaryMissing,
  kDictionaryFailed,
  kNoBaseWordBlock,
  kNoVariantBlock,
  kBaseWordBlockFull,
  kVariantBlockFull,
  kWordListMissing,
  kWordListPage,
  kSeekBeyondLimit,
  kSeekFailed,
  kCount,  // of the messages; no message itself
};

void WriteMessage(Response& response, Message message);

// The whole response of a request whose settings could not be read: no template is filled and
// nothing is wrapped, since the request has not been looked at yet.
void WriteSettingsFailure(Response& response, SettingsStatus status,
                          const IndexDirectory& directory);

// The whole response of a request that could not be decoded.
void WriteFormFailure(Response& response, std::string_view reason);

// Nothing is written for what went well.
void WriteOpenFailure(Response& response, const OpenResult& result);
void WriteDictionaryFailure(Response& response, const DictionaryResult& result,
                            const Settings& settings);
void WriteTermFailure(Response& response, const TermResult& result);

// A position that a file cannot take. Kept: in XML mode the error element is not closed (unit
// messages_test).
void WriteSeekFailure(Response& response, uint64_t offset);

}  // namespace vela
