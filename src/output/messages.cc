#include "output/messages.h"

#include <iterator>

#include "format/page_data.h"
#include "format/page_info.h"
#include "format/page_text.h"
#include "format/settings_file.h"

namespace vela {

namespace {

// What stands around a message in XML mode.
enum class Wrapping : uint8_t {
  kNone,
  kElement,      // <vela:error>...</vela:error>
  kElementLine,  // and a line feed behind it
  kOpenElement,  // only the opening tag
};

struct Wording {
  std::string_view text;
  Wrapping wrapping;
};

// In the order of Message.
constexpr Wording kWordings[] = {
    {"Error: Out of memory", Wrapping::kElementLine},
    {"Out of memory", Wrapping::kElementLine},
    {"Error: out of memory", Wrapping::kElement},
    {"Content-type: text/html\n\nError: Memory Allocation Error", Wrapping::kNone},
    {"Invalid stemming algorithm specified in settings file.<br />\n", Wrapping::kElementLine},
    {"Failed to initialize stemmer.<br />\n", Wrapping::kElementLine},
    {"Error: Category number is invalid. Incorrect settings file used?", Wrapping::kElementLine},
    {"Error: Corrupted or invalid index files. Please re-index and try again.",
     Wrapping::kElementLine},
    {"Error: Corrupted or invalid index files. Please re-index your and try again.",
     Wrapping::kElement},
    {"Can not find the vela_autocomplete.vdat index file.<br />Please make sure the generated "
     "index files are uploaded to the same path as this search script.<br />Also check file "
     "permissions have been set to allow reading.<br />",
     Wrapping::kNone},
    {"Can not find one or more of the Vela index files.<br />Please make sure the generated index "
     "files are uploaded to the same path as this search script.<br />Also check file permissions "
     "have been set to allow reading.<br />",
     Wrapping::kNone},
    {"Can not find one or more of the Vela index files.<br />Please make sure the generated index "
     "files are uploaded to the same path as this search script.<br />Also check file permissions "
     "have been set to allow reading.<br />\n",
     Wrapping::kElementLine},
    // Kept: without the line breaks of the others (golden index/spelling_missing).
    {"Can not find one or more of the Vela index files. Please make sure the generated index files "
     "are uploaded to the same path as this search script. Also check file permissions have been "
     "set to allow reading.",
     Wrapping::kElementLine},
    {"<b>Vela config error:</b> The \"vela_pagetext.vdat\" file is not properly created for the "
     "search settings specified in \"setting.php\"<br />Please check that you have re-indexed and "
     "try again.",
     Wrapping::kElementLine},
    {"Pageinfo file does not match PageInfoSize specified.", Wrapping::kNone},
    {"Pageinfo file and PageInfoSize does not match NumPages specified.", Wrapping::kNone},
    // Kept: called a warning, it fails the request all the same (golden index/pageinfo_slack).
    {"Warning: Pageinfo file and PageInfoSize does not match NumPages specified.", Wrapping::kNone},
    {"Can not find one or more of the Vela index files.<br />Please make sure the generated index "
     "files are uploaded to the same path as this search script.<br />Also check file permissions "
     "have been set to allow reading.<br />\n",
     Wrapping::kNone},
    {"Failed to load dictionary file.<br />\n", Wrapping::kElement},
    {"Error: Could not allocate memory for storing base words.<br />", Wrapping::kNone},
    {"Error: Out of memory for storing word variants.", Wrapping::kElement},
    {"Error: Out of memory for storing base words. Settings file have been modified or invalid.",
     Wrapping::kElement},
    {"Error: Out of memory for storing word variants. Settings file have been modified or invalid.",
     Wrapping::kElement},
    {"Error in wordmap file: expected data not found.", Wrapping::kElementLine},
    {"Error in wordmap: page number is invalid.", Wrapping::kElementLine},
    {"Error seeking in file. This CGI build does not support files larger than 2GB in size. Please "
     "contact Brantel for help.",
     Wrapping::kOpenElement},
    {"Error seeking in file. This may be due to an incompatible CGI build for your operating "
     "system. Please contact Brantel for help.",
     Wrapping::kOpenElement},
};
static_assert(std::size(kWordings) == kMessageCount);

// Kept: a round decimal number, not 2^31 (unit messages_test).
constexpr uint64_t kLargeFileOffset = 2000000000;

void Open(Response& response, Wrapping wrapping) {
  if (response.xml && wrapping != Wrapping::kNone) WriteRaw(response, "<vela:error>");
}

void Close(Response& response, Wrapping wrapping) {
  if (!response.xml) return;
  if (wrapping == Wrapping::kElement) WriteRaw(response, "</vela:error>");
  if (wrapping == Wrapping::kElementLine) WriteRaw(response, "</vela:error>\n");
}

void WriteCannotOpen(Response& response, const char* name) {
  Open(response, Wrapping::kElementLine);
  WriteOut(response, "Unable to open %s<br />Check file permissions and that file exists", name);
  Close(response, Wrapping::kElementLine);
}

// Whatever its cause, it ends by saying that the file cannot be opened.
void WritePageInfoFailure(Response& response, LoadStatus status) {
  if (status == LoadStatus::kTooShort) WriteMessage(response, Message::kPageInfoTooShort);
  if (status == LoadStatus::kRecordBeyondEnd) WriteMessage(response, Message::kPageInfoRecords);
  if (status == LoadStatus::kSlackAtEnd) WriteMessage(response, Message::kPageInfoSlack);
  WriteCannotOpen(response, kPageInfoFileName);
}

void WriteCorruptEntry(Response& response, int32_t entry) {
  Open(response, Wrapping::kElement);
  WriteOut(response,
           "Error: Corrupted dictionary data. Invalid dictionary entry at record #%d<br />", entry);
  Close(response, Wrapping::kElement);
}

void WriteTooManyEntries(Response& response, int32_t entries, int32_t numKeywords) {
  Open(response, Wrapping::kElement);
  WriteOut(response,
           "Error: Dictionary data (entry %d) does not match NumKeywords (%d) specified in "
           "settings.vdat<br />",
           entries, numKeywords);
  Close(response, Wrapping::kElement);
}

}  // namespace

void WriteMessage(Response& response, Message message) {
  const Wording& wording = kWordings[static_cast<size_t>(message)];
  Open(response, wording.wrapping);
  WriteRaw(response, wording.text);
  Close(response, wording.wrapping);
}

void WriteSettingsFailure(Response& response, SettingsStatus status,
                          const IndexDirectory& directory) {
  // Kept: the line about the missing text comes ahead of the header (unit messages_test).
  if (status == SettingsStatus::kMissingText) {
    WriteRaw(response,
             "Error: Missing text in the settings.vdat file. Check that your VLANG file is valid "
             "if you have modified it.<br />\n");
  }
  WriteRaw(response, "Content-type: text/html\n\n");
  switch (status) {
    case SettingsStatus::kOk:
      break;
    case SettingsStatus::kInvalid:
    case SettingsStatus::kMissingText:
    case SettingsStatus::kInvalidDictIdLen:
      WriteRaw(response,
               "Unable to load settings.vdat file.<br />The file appears to be invalid and may "
               "have been corrupted.");
      break;
    case SettingsStatus::kNoMemory:
      WriteRaw(response,
               "Unable to load settings.vdat file due to lack of memory.<br />Check that the file "
               "is valid and not corrupted and that server load is normal.");
      break;
    case SettingsStatus::kCannotOpen:
      WriteOut(response, "Unable to open %s/%s.<br />Check file permissions and that file exists",
               directory.path.bytes, kSettingsFileName);
      break;
  }
}

void WriteFormFailure(Response& response, std::string_view reason) {
  WriteRaw(response, "Content-type: text/html\n\n<H3>");
  WriteRaw(response, reason);
  WriteRaw(response, "</H3>\n");
}

void WriteOpenFailure(Response& response, const OpenResult& result) {
  if (result.status == LoadStatus::kOk) return;
  const bool cannotOpen = result.status == LoadStatus::kCannotOpen;
  switch (result.file) {
    case IndexFile::kPageData:
      WriteCannotOpen(response, kPageDataFileName);
      break;
    case IndexFile::kRecommended:
      WriteMessage(response,
                   cannotOpen ? Message::kRecommendedMissing : Message::kOutOfMemoryForIndex);
      break;
    case IndexFile::kPageInfo:
      WritePageInfoFailure(response, result.status);
      break;
    case IndexFile::kPageText:
      if (cannotOpen) {
        WriteCannotOpen(response, kPageTextFileName);
      } else {
        WriteMessage(response, Message::kPageTextPlaceholder);
      }
      break;
    case IndexFile::kWordMap:
      WriteMessage(response, Message::kWordMapMissing);
      break;
    case IndexFile::kSpelling:
      WriteMessage(response, cannotOpen ? Message::kSpellingMissing : Message::kOutOfMemory);
      break;
  }
}

void WriteDictionaryFailure(Response& response, const DictionaryResult& result,
                            const Settings& settings) {
  switch (result.status) {
    case DictionaryStatus::kOk:
      return;
    case DictionaryStatus::kNoMemory:
      WriteMessage(response, Message::kOutOfMemoryForIndex);
      return;
    case DictionaryStatus::kCorruptEntry:
      WriteCorruptEntry(response, result.entries);
      return;
    case DictionaryStatus::kBaseWordBlockFull:
      WriteMessage(response, Message::kBaseWordBlockFull);
      return;
    case DictionaryStatus::kVariantBlockFull:
      WriteMessage(response, Message::kVariantBlockFull);
      return;
    case DictionaryStatus::kTooManyEntries:
      WriteTooManyEntries(response, result.entries, settings.NumKeywords);
      return;
    // What keeps the lines from being read at all is followed by a second message.
    case DictionaryStatus::kCannotOpen:
      WriteMessage(response, Message::kDictionaryMissing);
      break;
    case DictionaryStatus::kNoBaseWordBlock:
      WriteMessage(response, Message::kNoBaseWordBlock);
      break;
    case DictionaryStatus::kNoVariantBlock:
      WriteMessage(response, Message::kNoVariantBlock);
      break;
  }
  WriteMessage(response, Message::kDictionaryFailed);
}

void WriteTermFailure(Response& response, const TermResult& result) {
  switch (result.status) {
    case TermStatus::kOk:
      break;
    case TermStatus::kNoMemory:
      WriteMessage(response, Message::kOutOfMemoryForSearch);
      break;
    case TermStatus::kSeekFailed:
      WriteSeekFailure(response, result.offset);
      break;
    case TermStatus::kMissingData:
      WriteMessage(response, Message::kWordListMissing);
      break;
    case TermStatus::kInvalidPage:
      WriteMessage(response, Message::kWordListPage);
      break;
  }
}

void WriteSeekFailure(Response& response, uint64_t offset) {
  WriteMessage(response,
               offset > kLargeFileOffset ? Message::kSeekBeyondLimit : Message::kSeekFailed);
}

}  // namespace vela
