#include "indexer/extract/document_readers.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "indexer/extract/outside_program.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

namespace fs = std::filesystem;

constexpr char kRichText[] = "{\\rtf1{\\info{\\title T}}Some text\\par}";

// Where the tests' own program lies, vela_extract does.
fs::path ProgramFolder() { return fs::read_symlink("/proc/self/exe").parent_path(); }

void WriteProgram(const fs::path& path, const std::string& script) {
  std::ofstream(path) << "#!/bin/sh\n" << script << "\n";
  chmod(path.c_str(), 0755);
}

// A document of one page with that text, whose places are found without a table of them.
std::string PdfOf(const std::string& text) {
  const std::string stream = "BT /F 12 Tf 50 700 Td (" + text + ") Tj ET";
  return "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
         "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
         "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 800]/Contents 4 0 R"
         "/Resources<</Font<</F 5 0 R>>>>>>endobj\n"
         "4 0 obj<</Length " +
         std::to_string(stream.size()) + ">>stream\n" + stream +
         "\nendstream endobj\n5 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\n"
         "6 0 obj<</Title(A title)>>endobj\n"
         "trailer<</Root 1 0 R/Info 6 0 R>>\n%%EOF\n";
}

Reason Read(DocumentReaders& readers, FileType type, const std::string& bytes, PageContent& page,
            const ReadingLimits& limits = {}) {
  ReadingBudget budget = StartReading(limits, bytes.size());
  return readers.Read(type, bytes, budget, page);
}

TEST(DocumentReaders, ReadInAProcessOfItsOwn) {
  DocumentReaders readers;
  for (int i = 0; i < 3; ++i) {
    PageContent page;
    ASSERT_EQ(Read(readers, FileType::kRichText, kRichText, page), Reason::kNone);
    EXPECT_EQ(page.title, "T");
    ASSERT_EQ(page.body.size(), 1u);
    EXPECT_EQ(page.body[0].text, "Some text ");
    EXPECT_EQ(Read(readers, FileType::kWord, "no archive", page), Reason::kDamaged);
  }
}

TEST(DocumentReaders, ServeSeveralThreadsAtOnce) {
  DocumentReaders readers;
  std::vector<std::thread> threads;
  std::atomic<int> read = 0;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int n = 0; n < 20; ++n) {
        PageContent page;
        if (Read(readers, FileType::kRichText, kRichText, page) == Reason::kNone) ++read;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(read, 80);
}

TEST(DocumentReaders, ReadPdf) {
  DocumentReaders readers;
  PageContent page;
  ASSERT_EQ(Read(readers, FileType::kPdf, PdfOf("Hello page"), page), Reason::kNone);
  EXPECT_EQ(page.title, "A title");
  ASSERT_EQ(page.body.size(), 1u);
  EXPECT_EQ(page.body[0].text, "Hello page ");
  EXPECT_EQ(page.body[0].anchor, "page=1");
  EXPECT_EQ(Read(readers, FileType::kPdf, "%PDF-1.4\nnothing", page), Reason::kDamaged);
}

TEST(DocumentReaders, AWordFileMayBeOfAnotherFormat) {
  DocumentReaders readers;
  PageContent page;
  EXPECT_EQ(Read(readers, FileType::kOldWord, kRichText, page), Reason::kNone);
  EXPECT_EQ(page.title, "T");
  // Of text the programs for the older formats would make text.
  for (const FileType type : {FileType::kOldWord, FileType::kOldSlides, FileType::kOldSheets}) {
    EXPECT_EQ(Read(readers, type, "plain text", page), Reason::kDamaged);
  }
  const std::string cut = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(1000, '\0');
  EXPECT_EQ(Read(readers, FileType::kOldSheets, cut, page), Reason::kDamaged);
}

TEST(DocumentReaders, SayWhichProgramIsMissing) {
  const support::ScratchDirectory scratch;
  DocumentReaders readers(scratch.path(), "");
  PageContent page;
  EXPECT_EQ(Read(readers, FileType::kRichText, kRichText, page), Reason::kReaderMissing);
  EXPECT_EQ(Read(readers, FileType::kPdf, PdfOf("x"), page), Reason::kReaderMissing);
}

TEST(DocumentReaders, AProgramThatBreaksDownCostsTheDocument) {
  const struct {
    const char* what;
    const char* script;
    Reason reason;
  } cases[] = {
      {"ends", "exit 0", Reason::kReaderFailed},
      {"cannot run", "exit 127", Reason::kReaderMissing},
      {"is killed", "kill -9 $$", Reason::kReaderFailed},
      {"talks nonsense", "cat >/dev/null & printf '\\2\\0\\0\\0\\0\\0\\0\\0xy'; sleep 5",
       Reason::kReaderFailed},
      {"claims more than it may", "printf '\\377\\377\\377\\377\\377\\0\\0\\0'; sleep 5",
       Reason::kDocumentTooLarge},
      {"says nothing", "sleep 5", Reason::kDocumentTooSlow},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const support::ScratchDirectory scratch;
    WriteProgram(scratch.path() / "vela_extract", c.script);
    DocumentReaders readers(scratch.path(), "");
    PageContent page;
    EXPECT_EQ(
        Read(readers, FileType::kRichText, kRichText, page, {.time = std::chrono::seconds(1)}),
        c.reason);
    EXPECT_TRUE(page.body.empty());
  }
}

TEST(DocumentReaders, StopWhenTheRunDoes) {
  const support::ScratchDirectory scratch;
  WriteProgram(scratch.path() / "vela_extract", "sleep 5");
  DocumentReaders readers(scratch.path(), "");
  const volatile std::sig_atomic_t stop = 1;
  PageContent page;
  EXPECT_EQ(Read(readers, FileType::kRichText, kRichText, page, {.stop = &stop}), Reason::kStopped);
  EXPECT_EQ(Read(readers, FileType::kPdf, PdfOf("x"), page, {.stop = &stop}), Reason::kStopped);
}

TEST(OutsideProgram, IsFoundInTheFirstFolderThatHasIt) {
  const support::ScratchDirectory scratch;
  fs::create_directory(scratch.path() / "a");
  fs::create_directories(scratch.path() / "b" / "tool");  // a folder is no program
  const std::string path =
      (scratch.path() / "b").string() + "::relative:" + (scratch.path() / "a").string();
  EXPECT_EQ(FindProgram("tool", path), "");
  std::ofstream(scratch.path() / "a" / "tool") << "x";
  EXPECT_EQ(FindProgram("tool", path), "");  // may not be run
  WriteProgram(scratch.path() / "a" / "tool", "");
  EXPECT_EQ(FindProgram("tool", path), (scratch.path() / "a" / "tool").string());
}

TEST(OutsideProgram, RunsWithinLimits) {
  const std::string launcher = (ProgramFolder() / "vela_extract").string();
  const auto run = [&](const char* script, const std::string& input, const ReadingLimits& limits,
                       ProgramOutput& result) {
    ReadingBudget budget = StartReading(limits, 0);
    return RunOutsideProgram(launcher, "/bin/sh", {"-c", script}, input, budget, result);
  };
  ProgramOutput result;
  EXPECT_EQ(run("read line; echo \"<$line>\"; echo no >&2; exit 3", "word\n", {}, result),
            Reason::kNone);
  EXPECT_EQ(result.exitStatus, 3);
  EXPECT_EQ(result.output, "<word>\n");
  EXPECT_EQ(result.errors, "no\n");
  const ReadingLimits second = {.time = std::chrono::seconds(1)};
  EXPECT_EQ(run("while :; do :; done", "", second, result), Reason::kDocumentTooSlow);
  EXPECT_EQ(run("while :; do echo xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx; done", "", {.bytes = 10'000},
                result),
            Reason::kDocumentTooLarge);
}

}  // namespace
}  // namespace vela::indexer
