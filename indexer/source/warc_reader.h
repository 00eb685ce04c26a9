// warc_reader.h: the pages in a web archive (WARC 1.0 and 1.1).
//
// An archive is a row of records, each "WARC/1.1", fields, an empty line, a block of Content-Length
// bytes and two line ends. A record of type "response" holds an answer as its server sent it, one
// of type "resource" what was at an address. Nothing in it is trusted.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/source/page_store.h"

namespace vela::indexer {

struct ArchivedPage {
  std::string address;  // as the archive has it
  std::string date;     // "2026-03-05T10:00:00Z"; of two the later one is greater
  PageAnswer answer;
  std::string robotsTag;  // X-Robots-Tag of the answer, one field a line
};

class WarcReader {
 public:
  // Gives the next bytes of the archive, unpacked: how many, 0 at its end. Throws IndexError.
  using Input = std::function<size_t(std::span<char>)>;

  // Of answers with more than `pageLimit` bytes only their number is kept.
  WarcReader(Input input, uint64_t pageLimit) : input_(std::move(input)), pageLimit_(pageLimit) {}

  // Moves to the next answer with a status of success. False at the end, or where the archive is
  // damaged. Throws std::bad_alloc when there is no memory.
  bool Next(ArchivedPage& page);

  bool isDamaged() const { return isDamaged_; }
  uint64_t tooLarge() const { return tooLarge_; }  // answers passed over for their size

 private:
  struct Record;

  bool Fill();
  bool ReadLine(std::string& line);
  bool ReadFields(Record& record);
  bool ReadBlock(uint64_t length, std::string& block);
  bool Skip(uint64_t length);

  Input input_;
  uint64_t pageLimit_;
  std::string buffer_;
  size_t at_ = 0;
  bool isDamaged_ = false;
  uint64_t tooLarge_ = 0;
};

// Reads an answer of HTTP/1 as it was sent, with its head, into `page`; chunks are joined and gzip
// is unpacked, to at most `limit` bytes. False when it is no success or damaged.
[[nodiscard]] bool ReadHttpAnswer(std::string_view bytes, uint64_t limit, ArchivedPage& page);

// Reads an archive file, also one of gzip. Throws IndexError when it cannot be opened.
WarcReader::Input OpenArchive(const std::string& path);

}  // namespace vela::indexer
