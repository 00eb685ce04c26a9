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

}  // namespace
}  // namespace vela
