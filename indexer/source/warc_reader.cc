#include "indexer/source/warc_reader.h"

#include <curl/curl.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

#include "indexer/report/index_error.h"
#include "indexer/source/gunzip.h"
#include "indexer/source/media_type.h"
#include "indexer/words/lower_copy.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

constexpr size_t kPieceBytes = size_t{1} << 16;
constexpr size_t kLineLimit = size_t{16} << 10;
constexpr size_t kFieldCountLimit = 500;
constexpr uint64_t kHeadLimit = uint64_t{64} << 10;  // of an answer, beside its body

struct Field {
  std::string name;  // in lower case
  std::string value;
};

// "Name: value". False when it is none.
bool SplitField(std::string_view line, Field& field) {
  const size_t colon = line.find(':');
  if (colon == line.npos) return false;
  field.name = LowerAsciiCopy(TrimAll(line.substr(0, colon)));
  field.value = TrimAll(line.substr(colon + 1));
  return true;
}

bool ReadNumber(std::string_view text, int base, uint64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end != text.data();
}

// The line that begins `text`, without its end; it is taken off.
std::string_view TakeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Joins the chunks of a body. What is cut off stays as far as it goes.
std::string JoinChunks(std::string_view body) {
  std::string joined;
  while (!body.empty()) {
    uint64_t length = 0;
    if (!ReadNumber(TakeLine(body), 16, length) || length == 0) break;
    const std::string_view chunk = body.substr(0, std::min<uint64_t>(length, body.size()));
    joined += chunk;
    body.remove_prefix(chunk.size());
    TakeLine(body);
  }
  return joined;
}

bool IsSuccess(std::string_view statusLine) {
  if (!statusLine.starts_with("HTTP/")) return false;
  const size_t blank = statusLine.find(' ');
  uint64_t status = 0;
  return blank != statusLine.npos && ReadNumber(statusLine.substr(blank + 1), 10, status) &&
         (status == 200 || status == 203);
}

}  // namespace

bool ReadHttpAnswer(std::string_view bytes, uint64_t limit, ArchivedPage& page) {
  if (!IsSuccess(TakeLine(bytes))) return false;
  bool isChunked = false;
  std::string encoding;
  while (!bytes.empty()) {
    const std::string_view line = TakeLine(bytes);
    if (line.empty()) break;
    Field field;
    if (!SplitField(line, field)) continue;
    if (field.name == "content-type") {
      MediaType type = ReadMediaType(field.value);
      page.answer.mediaType = std::move(type.name);
      page.answer.charset = std::move(type.charset);
    } else if (field.name == "last-modified") {
      const time_t time = curl_getdate(field.value.c_str(), nullptr);
      page.answer.modifiedTime = std::max<int64_t>(time, 0);
    } else if (field.name == "x-robots-tag") {
      page.robotsTag += field.value + '\n';
    } else if (field.name == "transfer-encoding") {
      isChunked = LowerAsciiCopy(field.value).find("chunked") != std::string::npos;
    } else if (field.name == "content-encoding") {
      encoding = LowerAsciiCopy(field.value);
    }
  }
  std::string body = isChunked ? JoinChunks(bytes) : std::string(bytes);
  // Archives are often written by what has unpacked the answer and kept its fields.
  if (encoding == "gzip" || encoding == "x-gzip") {
    if (!LooksGzipped(body)) {
      encoding.clear();
    } else if (Gunzip(body, limit, page.answer.bytes) != GunzipStatus::kOk) {
      return false;
    }
  } else if (encoding == "deflate") {
    if (Gunzip(body, limit, page.answer.bytes) != GunzipStatus::kOk) return false;
  } else if (!encoding.empty() && encoding != "identity") {
    return false;
  }
  if (encoding.empty() || encoding == "identity") page.answer.bytes = std::move(body);
  return page.answer.bytes.size() <= limit;
}

struct WarcReader::Record {
  std::string type;
  std::string mediaType;  // of the block
  std::string address;
  std::string date;
  uint64_t length = 0;
  bool hasLength = false;
};

// More bytes behind those of the buffer that were read. False at the end.
bool WarcReader::Fill() {
  buffer_.erase(0, at_);
  at_ = 0;
  const size_t used = buffer_.size();
  buffer_.resize(used + kPieceBytes);
  const size_t got = input_({buffer_.data() + used, kPieceBytes});
  buffer_.resize(used + got);
  return got != 0;
}

// False at the end, and for a line that is too long.
bool WarcReader::ReadLine(std::string& line) {
  size_t end = buffer_.find('\n', at_);
  while (end == buffer_.npos) {
    if (buffer_.size() - at_ > kLineLimit || !Fill()) return false;
    end = buffer_.find('\n', at_);
  }
  line.assign(buffer_, at_, end - at_);
  at_ = end + 1;
  if (line.ends_with('\r')) line.pop_back();
  return true;
}

bool WarcReader::ReadFields(Record& record) {
  std::string line;
  for (size_t count = 0; count < kFieldCountLimit; ++count) {
    if (!ReadLine(line)) return false;
    if (line.empty()) return record.hasLength;
    Field field;
    if (!SplitField(line, field)) continue;
    if (field.name == "warc-type") {
      record.type = LowerAsciiCopy(field.value);
    } else if (field.name == "content-type") {
      record.mediaType = field.value;
    } else if (field.name == "warc-date") {
      record.date = field.value;
    } else if (field.name == "warc-target-uri") {
      std::string_view address = field.value;
      if (address.starts_with('<') && address.ends_with('>')) {
        address = address.substr(1, address.size() - 2);
      }
      record.address = address;
    } else if (field.name == "content-length") {
      record.hasLength = ReadNumber(field.value, 10, record.length);
    }
  }
  return false;
}

bool WarcReader::ReadBlock(uint64_t length, std::string& block) {
  block.clear();
  while (block.size() < length) {
    if (at_ == buffer_.size() && !Fill()) return false;
    const size_t taken = std::min<uint64_t>(length - block.size(), buffer_.size() - at_);
    block.append(buffer_, at_, taken);
    at_ += taken;
  }
  return true;
}

bool WarcReader::Skip(uint64_t length) {
  while (length > 0) {
    if (at_ == buffer_.size() && !Fill()) return false;
    const size_t taken = std::min<uint64_t>(length, buffer_.size() - at_);
    at_ += taken;
    length -= taken;
  }
  return true;
}

bool WarcReader::Next(ArchivedPage& page) {
  std::string line;
  std::string block;
  while (!isDamaged_) {
    if (!ReadLine(line)) {
      isDamaged_ = at_ != buffer_.size();  // the end is where a record would begin
      return false;
    }
    if (line.empty()) continue;  // what parts two records
    Record record;
    if (!line.starts_with("WARC/") || !ReadFields(record)) {
      isDamaged_ = true;
      return false;
    }
    const bool isAnswer =
        record.type == "response" && record.mediaType.starts_with("application/http");
    const bool isResource = record.type == "resource";
    const bool isWeb =
        record.address.starts_with("http://") || record.address.starts_with("https://");
    if (!isWeb || (!isAnswer && !isResource)) {
      isDamaged_ = !Skip(record.length);
      continue;
    }
    if (record.length > pageLimit_ + kHeadLimit) {
      ++tooLarge_;
      isDamaged_ = !Skip(record.length);
      continue;
    }
    page = ArchivedPage();
    if (!ReadBlock(record.length, block)) {
      isDamaged_ = true;
      return false;
    }
    page.address = std::move(record.address);
    page.date = std::move(record.date);
    if (isAnswer) {
      if (!ReadHttpAnswer(block, pageLimit_, page)) continue;
    } else {
      MediaType type = ReadMediaType(record.mediaType);
      page.answer.mediaType = std::move(type.name);
      page.answer.charset = std::move(type.charset);
      page.answer.bytes = std::move(block);
    }
    return true;
  }
  return false;
}

WarcReader::Input OpenArchive(const std::string& path) {
  // Reads what is not packed as it is.
  const std::shared_ptr<gzFile_s> file(gzopen(path.c_str(), "rbe"), [](gzFile opened) {
    if (opened != nullptr) gzclose(opened);
  });
  if (file == nullptr) {
    throw IndexError(ExitStatus::kFailed,
                     "Cannot read the archive " + path + ". Check --warc and its permissions.");
  }
  return [file](std::span<char> piece) -> size_t {
    const int got = gzread(file.get(), piece.data(), static_cast<unsigned>(piece.size()));
    return got < 0 ? 0 : static_cast<size_t>(got);
  };
}

}  // namespace vela::indexer
