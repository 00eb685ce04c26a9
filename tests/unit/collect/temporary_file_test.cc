#include "indexer/collect/temporary_file.h"

#include <gtest/gtest.h>

#include "indexer/report/index_error.h"
#include "support/scratch_directory.h"

namespace vela::indexer {
namespace {

std::string ReadAll(TemporaryFile& file) {
  std::string bytes(static_cast<size_t>(file.size()), '\0');
  file.Read(0, bytes);
  return bytes;
}

TEST(TemporaryFile, GivesBackWhatWasAppended) {
  const support::ScratchDirectory scratch;
  TemporaryFile file(scratch.path() / "some.tmp");
  EXPECT_EQ(file.size(), 0u);
  std::string expected;
  // Through the buffer, beside it, and through it again.
  for (const size_t length : {1U, 100000U, 100000U, 300000U, 7U}) {
    const std::string bytes(length, static_cast<char>('a' + expected.size() % 26));
    file.Append(bytes);
    expected += bytes;
    EXPECT_EQ(file.size(), expected.size());
  }
  EXPECT_EQ(ReadAll(file), expected);
  file.Append("end");
  EXPECT_EQ(ReadAll(file), expected + "end");
  std::string piece(5, '\0');
  file.Read(expected.size() - 2, piece);
  EXPECT_EQ(piece, expected.substr(expected.size() - 2) + "end");
}

TEST(TemporaryFile, HasNoName) {
  const support::ScratchDirectory scratch;
  TemporaryFile file(scratch.path() / "some.tmp");
  file.Append(std::string(1000000, 'x'));
  EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST(TemporaryFile, BeginsAnewWhenCleared) {
  const support::ScratchDirectory scratch;
  TemporaryFile file(scratch.path() / "some.tmp");
  file.Append(std::string(1000000, 'x'));
  file.Clear();
  EXPECT_EQ(file.size(), 0u);
  file.Append("new");
  EXPECT_EQ(ReadAll(file), "new");
}

TEST(TemporaryFile, SaysWhereItCannotBe) {
  const support::ScratchDirectory scratch;
  TemporaryFile file(scratch.path() / "none" / "some.tmp");
  EXPECT_THROW(file.Append(std::string(1000000, 'x')), IndexError);
}

// Less than what was appended is there to be read.
TEST(TemporaryFile, EndsWhereItEnds) {
  const support::ScratchDirectory scratch;
  TemporaryFile file(scratch.path() / "some.tmp");
  file.Append("abc");
  std::string bytes(4, '\0');
  EXPECT_THROW(file.Read(0, bytes), IndexError);
}

}  // namespace
}  // namespace vela::indexer
