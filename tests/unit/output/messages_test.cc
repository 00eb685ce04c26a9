#include "output/messages.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;

// How a message stands in an XML answer.
std::string Plain(const std::string& text) { return text; }
std::string Wrapped(const std::string& text) { return "<vela:error>" + text + "</vela:error>"; }
std::string WrappedLine(const std::string& text) { return Wrapped(text) + "\n"; }
std::string Opened(const std::string& text) { return "<vela:error>" + text; }

std::string Written(bool xml, const std::function<void(Response&)>& write) {
  CapturedResponse captured(xml);
  write(captured.response);
  return captured.Text();
}

void Expect(const std::function<void(Response&)>& write, const std::string& html,
            const std::string& xml) {
  EXPECT_EQ(Written(false, write), html);
  EXPECT_EQ(Written(true, write), xml);
}

const std::string kCannotFind =
    "Can not find one or more of the Vela index files.<br />Please make sure the generated index "
    "files are uploaded to the same path as this search script.<br />Also check file permissions "
    "have been set to allow reading.<br />";

const std::string kLargeSeek =
    "Error seeking in file. This CGI build does not support files larger than 2GB in size. Please "
    "contact Brantel for help.";

std::string CannotOpen(const std::string& name) {
  return "Unable to open " + name + "<br />Check file permissions and that file exists";
}

TEST(WriteMessage, Table) {
  const struct {
    Message message;
    std::string text;
    std::string (*xml)(const std::string&);
  } cases[] = {
      {Message::kOutOfMemory, "Error: Out of memory", WrappedLine},
      {Message::kOutOfMemoryForSearch, "Out of memory", WrappedLine},
      {Message::kOutOfMemoryForIndex, "Error: out of memory", Wrapped},
      {Message::kOutOfMemoryForForm, "Content-type: text/html\n\nError: Memory Allocation Error",
       Plain},
      {Message::kInvalidStemmer, "Invalid stemming algorithm specified in settings file.<br />\n",
       WrappedLine},
      {Message::kNoStemmer, "Failed to initialize stemmer.<br />\n", WrappedLine},
      {Message::kInvalidCategory,
       "Error: Category number is invalid. Incorrect settings file used?", WrappedLine},
      {Message::kCorruptIndex,
       "Error: Corrupted or invalid index files. Please re-index and try again.", WrappedLine},
      {Message::kCorruptRecommended,
       "Error: Corrupted or invalid index files. Please re-index your and try again.", Wrapped},
      {Message::kAutoCompleteMissing,
       "Can not find the vela_autocomplete.vdat index file.<br />Please make sure the generated "
       "index files are uploaded to the same path as this search script.<br />Also check file "
       "permissions have been set to allow reading.<br />",
       Plain},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Expect([&](Response& response) { WriteMessage(response, c.message); }, c.text, c.xml(c.text));
  }
}

TEST(WriteSettingsFailure, TableNeverWrapped) {
  const std::string invalid =
      "Content-type: text/html\n\nUnable to load settings.vdat file.<br />The file appears to be "
      "invalid and may have been corrupted.";
  const struct {
    const char* what;
    SettingsStatus status;
    std::string expected;
  } cases[] = {
      {"invalid", SettingsStatus::kInvalid, invalid},
      {"word identifier", SettingsStatus::kInvalidDictIdLen, invalid},
      {"missing text, ahead of the header", SettingsStatus::kMissingText,
       "Error: Missing text in the settings.vdat file. Check that your VLANG file is valid if you "
       "have modified it.<br />\n" +
           invalid},
      {"memory", SettingsStatus::kNoMemory,
       "Content-type: text/html\n\nUnable to load settings.vdat file due to lack of memory.<br "
       "/>Check that the file is valid and not corrupted and that server load is normal."},
      {"cannot open", SettingsStatus::kCannotOpen,
       "Content-type: text/html\n\nUnable to open /srv/index/settings.vdat.<br />Check file "
       "permissions and that file exists"},
  };
  IndexDirectory directory;
  Set(directory.path, "/srv/index");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Expect([&](Response& response) { WriteSettingsFailure(response, c.status, directory); },
           c.expected, c.expected);
  }
}

TEST(WriteFormFailure, NeverWrapped) {
  const std::string expected = "Content-type: text/html\n\n<H3>Request method error</H3>\n";
  Expect([](Response& response) { WriteFormFailure(response, "Request method error"); }, expected,
         expected);
}

TEST(WriteOpenFailure, Table) {
  const std::string pageInfo = CannotOpen("vela_pageinfo.vdat");
  const struct {
    const char* what;
    OpenResult result;
    std::string before;  // of another message, unwrapped
    std::string text;
    std::string (*xml)(const std::string&);
  } cases[] = {
      {"nothing", {}, "", "", Plain},
      {"page data",
       {LoadStatus::kCannotOpen, IndexFile::kPageData},
       "",
       CannotOpen("vela_pagedata.vdat"),
       WrappedLine},
      {"recommended links",
       {LoadStatus::kCannotOpen, IndexFile::kRecommended},
       "",
       kCannotFind,
       Plain},
      {"memory for these",
       {LoadStatus::kNoMemory, IndexFile::kRecommended},
       "",
       "Error: out of memory",
       Wrapped},
      {"page info", {LoadStatus::kCannotOpen, IndexFile::kPageInfo}, "", pageInfo, WrappedLine},
      {"memory for it", {LoadStatus::kNoMemory, IndexFile::kPageInfo}, "", pageInfo, WrappedLine},
      {"too short a page info",
       {LoadStatus::kTooShort, IndexFile::kPageInfo},
       "Pageinfo file does not match PageInfoSize specified.",
       pageInfo,
       WrappedLine},
      {"too few records",
       {LoadStatus::kRecordBeyondEnd, IndexFile::kPageInfo},
       "Pageinfo file and PageInfoSize does not match NumPages specified.",
       pageInfo,
       WrappedLine},
      {"too many records",
       {LoadStatus::kSlackAtEnd, IndexFile::kPageInfo},
       "Warning: Pageinfo file and PageInfoSize does not match NumPages specified.",
       pageInfo,
       WrappedLine},
      {"page text",
       {LoadStatus::kCannotOpen, IndexFile::kPageText},
       "",
       CannotOpen("vela_pagetext.vdat"),
       WrappedLine},
      {"its placeholder",
       {LoadStatus::kPlaceholder, IndexFile::kPageText},
       "",
       "<b>Vela config error:</b> The \"vela_pagetext.vdat\" file is not properly created for the "
       "search settings specified in \"setting.php\"<br />Please check that you have re-indexed "
       "and try again.",
       WrappedLine},
      {"word map",
       {LoadStatus::kCannotOpen, IndexFile::kWordMap},
       "",
       kCannotFind + "\n",
       WrappedLine},
      {"spelling",
       {LoadStatus::kCannotOpen, IndexFile::kSpelling},
       "",
       "Can not find one or more of the Vela index files. Please make sure the generated index "
       "files are uploaded to the same path as this search script. Also check file permissions "
       "have been set to allow reading.",
       WrappedLine},
      {"memory for it",
       {LoadStatus::kNoMemory, IndexFile::kSpelling},
       "",
       "Error: Out of memory",
       WrappedLine},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Expect([&](Response& response) { WriteOpenFailure(response, c.result); }, c.before + c.text,
           c.before + c.xml(c.text));
  }
}

TEST(WriteDictionaryFailure, Table) {
  const std::string second = "Failed to load dictionary file.<br />\n";
  const struct {
    const char* what;
    DictionaryResult result;
    std::string text;
    std::string (*xml)(const std::string&);
    bool hasSecond;  // the message about the file as a whole follows
  } cases[] = {
      {"nothing", {}, "", Plain, false},
      {"no file", {DictionaryStatus::kCannotOpen}, kCannotFind + "\n", Plain, true},
      {"no memory", {DictionaryStatus::kNoMemory}, "Error: out of memory", Wrapped, false},
      {"no block for words",
       {DictionaryStatus::kNoBaseWordBlock},
       "Error: Could not allocate memory for storing base words.<br />",
       Plain,
       true},
      {"no block for variants",
       {DictionaryStatus::kNoVariantBlock},
       "Error: Out of memory for storing word variants.",
       Wrapped,
       true},
      {"a corrupt entry",
       {DictionaryStatus::kCorruptEntry, 2},
       "Error: Corrupted dictionary data. Invalid dictionary entry at record #2<br />",
       Wrapped,
       false},
      {"too many words",
       {DictionaryStatus::kBaseWordBlockFull, 2},
       "Error: Out of memory for storing base words. Settings file have been modified or invalid.",
       Wrapped,
       false},
      {"too many variants",
       {DictionaryStatus::kVariantBlockFull, 2},
       "Error: Out of memory for storing word variants. Settings file have been modified or "
       "invalid.",
       Wrapped,
       false},
      {"too many entries",
       {DictionaryStatus::kTooManyEntries, 3},
       "Error: Dictionary data (entry 3) does not match NumKeywords (2) specified in "
       "settings.vdat<br />",
       Wrapped,
       false},
  };
  Settings settings;
  settings.NumKeywords = 2;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Expect([&](Response& response) { WriteDictionaryFailure(response, c.result, settings); },
           c.text + (c.hasSecond ? second : ""),
           c.xml(c.text) + (c.hasSecond ? Wrapped(second) : ""));
  }
}

TEST(WriteTermFailure, Table) {
  const struct {
    const char* what;
    TermResult result;
    std::string text;
    std::string (*xml)(const std::string&);
  } cases[] = {
      {"nothing", {}, "", Plain},
      {"memory", {TermStatus::kNoMemory}, "Out of memory", WrappedLine},
      {"seek", {TermStatus::kSeekFailed, UINT64_MAX}, kLargeSeek, Opened},
      {"missing data",
       {TermStatus::kMissingData},
       "Error in wordmap file: expected data not found.",
       WrappedLine},
      {"a page that is not there",
       {TermStatus::kInvalidPage},
       "Error in wordmap: page number is invalid.",
       WrappedLine},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Expect([&](Response& response) { WriteTermFailure(response, c.result); }, c.text,
           c.xml(c.text));
  }
}

TEST(WriteSeekFailure, TwoGigabytesAreCountedInDecimalAndTheElementStaysOpen) {
  const std::string other =
      "Error seeking in file. This may be due to an incompatible CGI build for your operating "
      "system. Please contact Brantel for help.";
  const struct {
    uint64_t offset;
    std::string text;
  } cases[] = {{0, other}, {2000000000, other}, {2000000001, kLargeSeek}, {UINT64_MAX, kLargeSeek}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.offset);
    Expect([&](Response& response) { WriteSeekFailure(response, c.offset); }, c.text,
           Opened(c.text));
  }
}

}  // namespace
}  // namespace vela
