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
  Message message;
  Wrapping wrapping;
  std::string_view text;
};

constexpr Wording kWordings[] = {
    {Message::kOutOfMemory, Wrapping::kElementLine, "Error: Out of memory"},
    {Message::kOutOfMemoryForSearch, Wrapping::kElementLine, "Out of memory"},
    {Message::kOutOfMemoryForIndex, Wrapping::kElement, "Error: out of memory"},
    {Message::kOutOfMemoryForForm, Wrapping::kNone,
     "Content-type: text/html\n\nError: Memory Allocation Error"},
    {Message::kInvalidStemmer, Wrapping::kElementLine,
     "Invalid stemming algorithm specified in settings file.<br />\n"},
    {Message::kNoStemmer, Wrapping::kElementLine, "Failed to initialize stemmer.<br />\n"},
    {Message::kInvalidCategory, Wrapping::kElementLine,
     "Error: Category number is invalid. Incorrect settings file used?"},
    {Message::kCorruptIndex, Wrapping::kElementLine,
     "Error: Corrupted or invalid index files. Please re-index and try again."},
    {Message::kCorruptRecommended, Wrapping::kElement,
     "Error: Corrupted or invalid index files. Please re-index your and try again."},
    {Message::kAutoCompleteMissing, Wrapping::kNone,
     "Can not find the vela_autocomplete.vdat index file.<br />Please make sure the generated "
     "index files are uploaded to the same path as this search script.<br />Also check file "
     "permissions have been set to allow reading.<br />"},
    {Message::kRecommendedMissing, Wrapping::kNone,
     "Can not find one or more of the Vela index files.<br />Please make sure the generated index "
     "files are uploaded to the same path as this search script.<br />Also check file permissions "
     "have been set to allow reading.<br />"},
    {Message::kWordMapMissing, Wrapping::kElementLine,
     "Can not find one or more of the Vela index files.<br />Please make sure the generated index "
     "files are uploaded to the same path as this search script.<br />Also check file permissions "
     "have been set to allow reading.<br />\n"},
    // Kept: without the line breaks of the others (golden index/spelling_missing).
    {Message::kSpellingMissing, Wrapping::kElementLine,
     "Can not find one or more of the Vela index files. Please make sure the generated index files "
     "are uploaded to the same path as this search script. Also check file permissions have been "
     "set to allow reading."},
    {Message::kPageTextPlaceholder, Wrapping::kElementLine,
     "<b>Vela config error:</b> The \"vela_pagetext.vdat\" file is not properly created for the "
     "search settings specified in \"setting.php\"<br />Please check that you have re-indexed and "
     "try again."},
    {Message::kPageInfoTooShort, Wrapping::kNone,
     "Pageinfo file does not match PageInfoSize specified."},
    {Message::kPageInfoRecords, Wrapping::kNone,
     "Pageinfo file and PageInfoSize does not match NumPages specified."},
    // Kept: called a warning, it fails the request all the same (golden index/pageinfo_slack).
    {Message::kPageInfoSlack, Wrapping::kNone,
     "Warning: Pageinfo file and PageInfoSize does not match NumPages specified."},
    {Message::kDictionaryMissing, Wrapping::kNone,
     "Can not find one or more of the Vela index files.<br />Please make sure the generated index "
     "files are uploaded to the same path as this search script.<br />Also check file permissions "
     "have been set to allow reading.<br />\n"},
    {Message::kDictionaryFailed, Wrapping::kElement, "Failed to load dictionary file.<br />\n"},
    {Message::kNoBaseWordBlock, Wrapping::kNone,
     "Error: Could not allocate memory for storing base words.<br />"},
    {Message::kNoVariantBlock, Wrapping::kElement,
     "Error: Out of memory for storing word variants."},
    {Message::kBaseWordBlockFull, Wrapping::kElement,
     "Error: Out of memory for storing base words. Settings file have been modified or invalid."},
    {Message::kVariantBlockFull, Wrapping::kElement,
     "Error: Out of memory for storing word variants. Settings file have been modified or "
     "invalid."},
    {Message::kWordListMissing, Wrapping::kElementLine,
     "Error in wordmap file: expected data not found."},
    {Message::kWordListPage, Wrapping::kElementLine, "Error in wordmap: page number is invalid."},
    {Message::kSeekBeyondLimit, Wrapping::kOpenElement,
     "Error seeking in file. This CGI build does not support files larger than 2GB in size. Please "
     "contact Brantel for help."},
    {Message::kSeekFailed, Wrapping::kOpenElement,
     "Error seeking in file. This may be due to an incompatible CGI build for your operating "
     "system. Please contact Brantel for help."},
};

constexpr bool EachMessageHasItsPlace() {
  for (size_t i = 0; i < std::size(kWordings); ++i) {
    if (kWordings[i].message != static_cast<Message>(i)) return false;
  }
  return std::size(kWordings) == static_cast<size_t>(Message::kCount);
}
static_assert(EachMessageHasItsPlace());

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

void WriteFileMissing(Response& response, IndexFile file) {
  switch (file) {
    case IndexFile::kPageData:
      WriteCannotOpen(response, kPageDataFileName);
      break;
    case IndexFile::kRecommended:
      WriteMessage(response, Message::kRecommendedMissing);
      break;
    case IndexFile::kPageInfo:
      WriteCannotOpen(response, kPageInfoFileName);
      break;
    case IndexFile::kPageText:
      WriteCannotOpen(response, kPageTextFileName);
      break;
    case IndexFile::kWordMap:
      WriteMessage(response, Message::kWordMapMissing);
      break;
    case IndexFile::kSpelling:
      WriteMessage(response, Message::kSpellingMissing);
      break;
  }
}

void WriteNoMemoryForFile(Response& response, IndexFile file) {
  switch (file) {
    case IndexFile::kRecommended:
      WriteMessage(response, Message::kOutOfMemoryForIndex);
      break;
    case IndexFile::kSpelling:
      WriteMessage(response, Message::kOutOfMemory);
      break;
    // Kept: memory for the page info is not spoken of (unit messages_test). The others take none.
    case IndexFile::kPageInfo:
    case IndexFile::kPageData:
    case IndexFile::kPageText:
    case IndexFile::kWordMap:
      WriteFileMissing(response, file);
      break;
  }
}

// Whatever is wrong with it, the message about that is followed by one that it cannot be opened.
void WriteWrongPageInfo(Response& response, Message message) {
  WriteMessage(response, message);
  WriteFileMissing(response, IndexFile::kPageInfo);
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
  switch (result.status) {
    case LoadStatus::kOk:
      break;
    case LoadStatus::kCannotOpen:
      WriteFileMissing(response, result.file);
      break;
    case LoadStatus::kNoMemory:
      WriteNoMemoryForFile(response, result.file);
      break;
    case LoadStatus::kPlaceholder:
      WriteMessage(response, Message::kPageTextPlaceholder);
      break;
    case LoadStatus::kTooShort:
      WriteWrongPageInfo(response, Message::kPageInfoTooShort);
      break;
    case LoadStatus::kRecordBeyondEnd:
      WriteWrongPageInfo(response, Message::kPageInfoRecords);
      break;
    case LoadStatus::kSlackAtEnd:
      WriteWrongPageInfo(response, Message::kPageInfoSlack);
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
