// index_directory.h: the directory that holds the settings, the index files and the template.
//
// One handle is taken at the start of a request and every file is opened relative to it, so that
// replacing the directory by renaming another into its place never mixes two generations.
// Where the directory holds its generations inside (format/index_directory.h), the handle is that
// of the present one.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "text/fixed_text.h"
#include "text/owned_array.h"

namespace vela {

// Owns the handle; closed with its owner or by CloseIndexDirectory. Move is not needed.
struct IndexDirectory {
  FixedText<512> path;  // as shown in messages
  int descriptor = -1;

  IndexDirectory() = default;
  IndexDirectory(const IndexDirectory&) = delete;
  IndexDirectory& operator=(const IndexDirectory&) = delete;
  ~IndexDirectory();
};

// Takes the handle of `path` (cut to 511 bytes), or of its present generation; an empty path is the
// root. When it cannot be taken, every later open fails.
void OpenIndexDirectory(IndexDirectory& directory, std::string_view path);
void CloseIndexDirectory(IndexDirectory& directory);

// A handle, for the caller to close, of a regular file of the directory, and its size; -1 when
// there is none, as of a directory or a pipe.
int OpenRegularFile(const IndexDirectory& directory, const char* name, size_t& size);

// Copies up to `size` bytes of the file from `offset` on to `to`. Returns how many: fewer where it
// ends before, and -1 where it cannot be read.
ssize_t ReadFileAt(int descriptor, uint64_t offset, size_t size, char* to);

// A whole file, mapped where that can be and read otherwise. Owns its memory.
class FileImage {
 public:
  FileImage() = default;
  FileImage(const FileImage&) = delete;
  FileImage& operator=(const FileImage&) = delete;
  ~FileImage() { Close(); }

  // Opens a regular file of the directory; anything else (a directory, a pipe) cannot be opened.
  // With `wholeSoon`, for files that are read from end to end, a little one is copied and of a
  // larger one all pages are brought in at once.
  [[nodiscard]] bool Open(const IndexDirectory& directory, const char* name, bool wholeSoon);
  void Close();

  bool isOpen() const { return open_; }
  std::string_view bytes() const { return bytes_; }

  // Copies `size` bytes from `offset` on, which the file has, to `to`, without bringing the file's
  // memory in. False where they cannot be read.
  [[nodiscard]] bool CopyTo(char* to, size_t offset, size_t size) const;

 private:
  // Brings in the `size` bytes, at least 1, of a file. False when that cannot be.
  bool Take(int descriptor, size_t size, bool wholeSoon);

  bool open_ = false;
  int descriptor_ = -1;  // of a file that is mapped
  std::string_view bytes_;
  OwnedArray<char> copy_;  // where the file is not mapped
};

// Hands out a text the way a line-oriented read with a buffer of fixed size does.
struct LineReader {
  std::string_view rest;
};

// Takes the next line, its line feed included; of a longer line a piece of `limit` bytes (at least
// 1). False at the end of the text.
bool ReadLine(LineReader& reader, size_t limit, std::string_view& line);

// The bytes of a line before its first NUL.
std::string_view UpToNul(std::string_view line);

}  // namespace vela
