#include "settings/file_pieces.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/scratch_directory.h"

namespace vela {
namespace {

std::string Piece(const FilePieces& file, uint64_t offset, size_t size) {
  std::string piece(size, '?');
  return file.Read(offset, size, piece.data()) ? piece : "none";
}

void ExpectLetters(const FilePieces& file) {
  EXPECT_EQ(file.size(), 10u);
  EXPECT_EQ(Piece(file, 0, 10), "abcdefghij");
  EXPECT_EQ(Piece(file, 3, 4), "defg");
  EXPECT_EQ(Piece(file, 9, 1), "j");
  EXPECT_EQ(Piece(file, 10, 0), "");
  EXPECT_EQ(Piece(file, 0, 11), "none");
  EXPECT_EQ(Piece(file, 9, 2), "none");
  EXPECT_EQ(Piece(file, 11, 0), "none");
  EXPECT_EQ(Piece(file, UINT64_MAX, 2), "none");
}

TEST(FilePieces, WhatLiesInTheFileIsRead) {
  const support::ScratchDirectory scratch;
  std::ofstream(scratch.path() / "file") << "abcdefghij";
  std::ofstream(scratch.path() / "empty") << "";
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  FilePieces file;
  ASSERT_TRUE(file.Open(directory, "file"));
  ExpectLetters(file);
  file.Open("abcdefghij");
  ExpectLetters(file);
  ASSERT_TRUE(file.Open(directory, "empty"));
  EXPECT_EQ(file.size(), 0u);
  EXPECT_EQ(Piece(file, 0, 1), "none");
  EXPECT_FALSE(file.Open(directory, "missing"));
  EXPECT_EQ(Piece(file, 0, 1), "none");
}

TEST(FilePieces, AFileThatHasBecomeShorterIsNotRead) {
  const support::ScratchDirectory scratch;
  std::ofstream(scratch.path() / "file") << "abcdefghij";
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  FilePieces file;
  ASSERT_TRUE(file.Open(directory, "file"));
  std::filesystem::resize_file(scratch.path() / "file", 5);
  EXPECT_EQ(Piece(file, 3, 2), "de");
  EXPECT_EQ(Piece(file, 3, 4), "none");
}

TEST(FileStretches, WhatLiesInTheFileIsRead) {
  const support::ScratchDirectory scratch;
  const std::string large(100000, 'x');
  std::ofstream(scratch.path() / "file") << "abcdef" + large;
  std::filesystem::create_directory(scratch.path() / "directory");
  IndexDirectory directory;
  OpenIndexDirectory(directory, scratch.path().string());
  FileStretches file(directory, "file");
  EXPECT_EQ(file.Read(1, 4), "bcd");
  EXPECT_EQ(file.Read(0, 2), "ab");
  EXPECT_EQ(file.Read(4, 100), "ef" + large.substr(0, 94));
  EXPECT_EQ(file.Read(6, 6 + FileStretches::kLimit).size(), FileStretches::kLimit);
  EXPECT_EQ(file.Read(6, 7 + FileStretches::kLimit), "") << "too long";
  EXPECT_EQ(file.Read(100000, 100007), "") << "reaches beyond the end";
  EXPECT_EQ(file.Read(200000, 200001), "");
  EXPECT_EQ(file.Read(3, 3), "");
  EXPECT_EQ(file.Read(4, 3), "");
  EXPECT_EQ(file.Read(UINT64_MAX - 1, UINT64_MAX), "");
  for (const char* name : {"directory", "missing"}) {
    FileStretches none(directory, name);
    EXPECT_EQ(none.Read(0, 1), "") << name;
    EXPECT_EQ(none.Read(0, 1), "") << name;
  }
}

}  // namespace
}  // namespace vela
