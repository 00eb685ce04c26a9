// lookup_facts_test.cc: whether the tables of a lookup file were made from a file.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "index/lookup_file.h"
#include "support/scratch_directory.h"

namespace vela {
namespace {

struct Folder {
  support::ScratchDirectory scratch;
  IndexDirectory directory;
  FileImage image;

  Folder() { OpenIndexDirectory(directory, scratch.path().string()); }
  const FileImage& With(const std::string& bytes) {
    std::ofstream(scratch.path() / "file", std::ios::binary) << bytes;
    EXPECT_TRUE(image.Open(directory, "file", false));
    return image;
  }
};

std::string Bytes(size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  return bytes;
}

TEST(LookupFacts, TellTheFileFromAnother) {
  Folder folder;
  for (const size_t size : {size_t{1}, size_t{60'000}, size_t{300'000}}) {
    SCOPED_TRACE(size);
    std::string bytes = Bytes(size);
    const LookupFileFacts facts = {bytes.size(), FileSample(bytes)};
    EXPECT_TRUE(IsFileOf(facts, bytes));
    EXPECT_TRUE(IsFileOf(facts, folder.With(bytes), size));
    EXPECT_FALSE(IsFileOf(facts, folder.With(bytes + "x"), size + 1)) << "longer";
    EXPECT_TRUE(IsFileOf(facts, folder.With(bytes + "x"), size)) << "its beginning";
    EXPECT_FALSE(IsFileOf(facts, folder.With(bytes.substr(1)), size)) << "shorter than it says";
    bytes[size - size / 1000 - 1] ^= 1;  // in the last piece
    EXPECT_FALSE(IsFileOf(facts, folder.With(bytes), size)) << "a byte near its end";
    EXPECT_FALSE(IsFileOf(facts, bytes));
  }
  EXPECT_FALSE(IsFileOf({}, folder.With(""), 0));
}

}  // namespace
}  // namespace vela
