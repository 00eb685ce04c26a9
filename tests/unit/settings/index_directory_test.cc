// index_directory_test.cc: opening files of one directory, and reading their lines.

#include "settings/index_directory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "format/index_directory.h"
#include "support/scratch_directory.h"

namespace vela {
namespace {

using namespace std::string_view_literals;

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

TEST(IndexDirectory, OpensAWholeFile) {
  const support::ScratchDirectory scratch;
  WriteFile(scratch.path() / "file", "some\0bytes\n"sv);
  WriteFile(scratch.path() / "empty", "");
  const std::string large(100000, 'x');
  WriteFile(scratch.path() / "large", large);
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  EXPECT_EQ(View(directory.path), scratch.path().string());
  for (const bool wholeSoon : {false, true}) {
    FileImage file;
    ASSERT_TRUE(file.Open(directory, "file", wholeSoon));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.bytes(), "some\0bytes\n"sv);
    ASSERT_TRUE(file.Open(directory, "empty", wholeSoon));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(file.bytes(), "");
    ASSERT_TRUE(file.Open(directory, "large", wholeSoon));
    EXPECT_EQ(file.bytes(), large);
    file.Close();
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.bytes(), "");
  }
}

TEST(IndexDirectory, PiecesAreCopiedFromFilesOfAnySize) {
  const support::ScratchDirectory scratch;
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  for (const size_t size : {size_t{10}, size_t{100000}}) {
    WriteFile(scratch.path() / "file", std::string(size - 4, 'x') + "last");
    for (const bool wholeSoon : {false, true}) {
      FileImage file;
      ASSERT_TRUE(file.Open(directory, "file", wholeSoon));
      char piece[6] = {};
      EXPECT_TRUE(file.CopyTo(piece, size - 5, 5));
      EXPECT_STREQ(piece, "xlast");
    }
  }
}

TEST(IndexDirectory, WhatIsNoFileCannotBeOpened) {
  const support::ScratchDirectory scratch;
  std::filesystem::create_directory(scratch.path() / "directory");
  ASSERT_EQ(mkfifo((scratch.path() / "pipe").c_str(), 0600), 0);
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  for (const char* name : {"directory", "pipe", "missing", ""}) {
    SCOPED_TRACE(name);
    FileImage file;
    EXPECT_FALSE(file.Open(directory, name, false));
    EXPECT_FALSE(file.isOpen());
    EXPECT_EQ(file.bytes(), "");
  }
}

TEST(IndexDirectory, AMissingDirectoryOpensNothing) {
  IndexDirectory directory;
  OpenIndexDirectory(directory, "/nowhere/at/all");
  EXPECT_EQ(View(directory.path), "/nowhere/at/all");
  FileImage file;
  EXPECT_FALSE(file.Open(directory, "file", false));
}

TEST(IndexDirectory, AnEmptyPathIsTheRoot) {
  IndexDirectory directory;
  OpenIndexDirectory(directory, "");
  FileImage file;
  EXPECT_TRUE(file.Open(directory, "etc/passwd", false));
}

TEST(IndexDirectory, AReplacedDirectoryStaysTheSameOne) {
  const support::ScratchDirectory scratch;
  std::filesystem::create_directory(scratch.path() / "index");
  std::filesystem::create_directory(scratch.path() / "next");
  WriteFile(scratch.path() / "index" / "file", "old");
  WriteFile(scratch.path() / "next" / "file", "new");
  IndexDirectory directory;
  OpenIndexDirectory(directory, (scratch.path() / "index").string());
  std::filesystem::rename(scratch.path() / "index", scratch.path() / "previous");
  std::filesystem::rename(scratch.path() / "next", scratch.path() / "index");
  FileImage file;
  ASSERT_TRUE(file.Open(directory, "file", false));
  EXPECT_EQ(file.bytes(), "old");
}

TEST(IndexDirectory, IsThatOfThePresentGeneration) {
  const support::ScratchDirectory scratch;
  const std::filesystem::path generations = scratch.path() / kGenerations;
  std::filesystem::create_directories(generations / "1");
  std::filesystem::create_directories(generations / "2");
  WriteFile(scratch.path() / "file", "plain");
  WriteFile(generations / "1" / "file", "one");
  WriteFile(generations / "2" / "file", "two");
  const std::filesystem::path link = scratch.path() / kCurrentGeneration;
  const struct {
    const char* what;
    const char* current;  // what the link names; null for no link
    const char* expected;
  } cases[] = {
      {"no link", nullptr, "plain"},       {"the first", "1", "one"},
      {"the second", "2", "two"},          {"one that is not there", "3", "plain"},
      {"no directory", "1/file", "plain"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    std::filesystem::remove(link);
    if (c.current != nullptr) std::filesystem::create_symlink(c.current, link);
    IndexDirectory directory;
    OpenIndexDirectory(directory, scratch.path().string());
    EXPECT_EQ(View(directory.path), scratch.path().string());
    FileImage file;
    ASSERT_TRUE(file.Open(directory, "file", false));
    EXPECT_EQ(file.bytes(), c.expected);
    // A request stays with the generation that it began with.
    std::filesystem::remove(link);
    std::filesystem::create_symlink("2", link);
    ASSERT_TRUE(file.Open(directory, "file", false));
    EXPECT_EQ(file.bytes(), c.expected);
  }
}

TEST(IndexDirectory, ClosingTwiceIsHarmless) {
  const support::ScratchDirectory scratch;
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  EXPECT_GE(directory.descriptor, 0);
  CloseIndexDirectory(directory);
  EXPECT_EQ(directory.descriptor, -1);
  CloseIndexDirectory(directory);
  EXPECT_EQ(directory.descriptor, -1);
}

TEST(ReadLine, CutsTextIntoLines) {
  const struct {
    const char* what;
    std::string_view text;
    size_t limit;
    std::vector<std::string_view> expected;
  } cases[] = {
      {"nothing", "", 10, {}},
      {"one line", "abc\n", 10, {"abc\n"}},
      {"no line feed at the end", "abc", 10, {"abc"}},
      {"several", "a\n\nb\n", 10, {"a\n", "\n", "b\n"}},
      {"a carriage return stays", "a\r\nb", 10, {"a\r\n", "b"}},
      {"as long as the limit", "abcd\nx", 5, {"abcd\n", "x"}},
      {"one over the limit", "abcde\nx", 5, {"abcde", "\n", "x"}},
      {"far over the limit", "abcdefghijkl\nx", 5, {"abcde", "fghij", "kl\n", "x"}},
      {"a limit of one", "a\nb", 1, {"a", "\n", "b"}},
      {"a NUL is a byte like any other", "a\0b\nc"sv, 10, {"a\0b\n"sv, "c"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    LineReader reader{c.text};
    std::vector<std::string_view> lines;
    std::string_view line;
    while (ReadLine(reader, c.limit, line)) lines.push_back(line);
    EXPECT_EQ(lines, c.expected);
    EXPECT_FALSE(ReadLine(reader, c.limit, line));
  }
}

TEST(ReadLine, ALineEndsAtItsFirstNul) {
  EXPECT_EQ(UpToNul(""), "");
  EXPECT_EQ(UpToNul("abc\n"), "abc\n");
  EXPECT_EQ(UpToNul("ab\0cd\0"sv), "ab");
  EXPECT_EQ(UpToNul("\0ab"sv), "");
}

}  // namespace
}  // namespace vela
