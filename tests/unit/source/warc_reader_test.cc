#include "indexer/source/warc_reader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/indexer_site.h"

namespace vela::indexer {
namespace {

// A reader of `bytes` that come in pieces of `piece` bytes.
WarcReader ReaderOf(const std::string& bytes, uint64_t limit, size_t piece = 7) {
  return {[bytes, piece, at = size_t{0}](std::span<char> into) mutable {
            const size_t got = std::min({piece, into.size(), bytes.size() - at});
            std::copy_n(bytes.data() + at, got, into.data());
            at += got;
            return got;
          },
          limit};
}

std::string RecordOf(const std::string& fields, const std::string& block) {
  return "WARC/1.1\r\n" + fields + "Content-Length: " + std::to_string(block.size()) + "\r\n\r\n" +
         block + "\r\n\r\n";
}

std::string ResponseOf(const std::string& address, const std::string& answer) {
  return RecordOf(
      "WARC-Type: response\r\nContent-Type: application/http;msgtype=response\r\n"
      "WARC-Date: 2026-01-02T03:04:05Z\r\nWARC-Target-URI: " +
          address + "\r\n",
      answer);
}

TEST(WarcReader, GivesAnswersAndResources) {
  const std::string archive =
      RecordOf("WARC-Type: warcinfo\r\n", "software: x\r\n") +
      RecordOf("WARC-Type: request\r\nWARC-Target-URI: http://x.example/\r\n",
               "GET / HTTP/1.1\r\n\r\n") +
      ResponseOf("http://x.example/",
                 "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=koi8-r\r\n"
                 "Last-Modified: Thu, 01 Jan 1970 00:01:40 GMT\r\nX-Robots-Tag: noarchive\r\n\r\n"
                 "<p>WARC/1.1\n\nx") +
      ResponseOf("http://x.example/gone", "HTTP/1.1 404 Not Found\r\n\r\ngone") +
      ResponseOf("dns:x.example", "HTTP/1.1 200 OK\r\n\r\nx") +
      RecordOf(
          "WARC-Type: resource\r\nContent-Type: text/plain\r\n"
          "WARC-Target-URI: <https://x.example/t>\r\n",
          "text") +
      ResponseOf("http://x.example/large", "HTTP/1.1 200 OK\r\n\r\n" + std::string(70000, 'x')) +
      ResponseOf("http://x.example/last", "HTTP/1.0 200 OK\n\nlast");
  WarcReader reader = ReaderOf(archive, 1000);
  ArchivedPage page;
  ASSERT_TRUE(reader.Next(page));
  EXPECT_EQ(page.address, "http://x.example/");
  EXPECT_EQ(page.date, "2026-01-02T03:04:05Z");
  EXPECT_EQ(page.answer.bytes, "<p>WARC/1.1\n\nx");
  EXPECT_EQ(page.answer.mediaType, "text/html");
  EXPECT_EQ(page.answer.charset, "koi8-r");
  EXPECT_EQ(page.answer.modifiedTime, 100);
  EXPECT_EQ(page.robotsTag, "noarchive\n");
  ASSERT_TRUE(reader.Next(page));
  EXPECT_EQ(page.address, "https://x.example/t");
  EXPECT_EQ(page.answer.bytes, "text");
  EXPECT_EQ(page.answer.charset, "");
  ASSERT_TRUE(reader.Next(page));
  EXPECT_EQ(page.address, "http://x.example/last");
  EXPECT_EQ(page.answer.bytes, "last");
  EXPECT_FALSE(reader.Next(page));
  EXPECT_FALSE(reader.isDamaged());
  EXPECT_EQ(reader.tooLarge(), 1u);
}

TEST(WarcReader, UnpacksWhatWasSent) {
  const std::string packed(
      "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\x4b\x4c\x4a\x06\x00\xc2\x41\x24\x35\x03\x00\x00"
      "\x00",
      23);
  const struct {
    const char* what;
    std::string answer;
    uint64_t limit;
    bool isRead;
    const char* bytes;
  } kCases[] = {
      {"chunks",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n1;x=y\r\nc\r\n0\r\n\r\n",
       10, true, "abc"},
      {"chunks that were joined before", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nxyz",
       10, true, ""},
      {"a chunk that is cut off",
       "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nffffffffffffffff\r\nab", 10, true,
       "ab"},
      {"gzip", "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + packed, 10, true, "abc"},
      {"gzip that was unpacked before", "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\nabc", 10,
       true, "abc"},
      {"gzip beyond the limit", "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + packed, 2,
       false, nullptr},
      {"what cannot be unpacked", "HTTP/1.1 200 OK\r\nContent-Encoding: x\r\n\r\nabc", 10, false,
       nullptr},
      {"no HTTP", "abc", 10, false, nullptr},
      {"a redirect", "HTTP/1.1 301 Moved\r\n\r\n", 10, false, nullptr},
      {"nothing", "", 10, false, nullptr},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    ArchivedPage page;
    ASSERT_EQ(ReadHttpAnswer(c.answer, c.limit, page), c.isRead);
    if (c.isRead) {
      EXPECT_EQ(page.answer.bytes, c.bytes);
    }
  }
}

TEST(WarcReader, EndsWhereTheArchiveIsDamaged) {
  const std::string good = ResponseOf("http://x.example/", "HTTP/1.1 200 OK\r\n\r\nabc");
  const struct {
    const char* what;
    std::string bytes;
    int pages;
    bool isDamaged;
  } kCases[] = {
      {"empty", "", 0, false},
      {"whole", good + good, 2, false},
      {"a block that is cut off", good + good.substr(0, good.size() - 5), 1, true},
      {"fields that are cut off", good + good.substr(0, 30), 1, true},
      {"no archive", "<html>\r\n</html>\r\n", 0, true},
      {"a length that is none", "WARC/1.0\r\nContent-Length: x\r\n\r\n", 0, true},
      {"a length beyond all",
       "WARC/1.0\r\nWARC-Type: warcinfo\r\nContent-Length: 18446744073709551615\r\n\r\nabc", 0,
       true},
      {"a line without end", std::string(100000, 'x'), 0, true},
  };
  for (const auto& c : kCases) {
    for (const size_t piece : {size_t{1}, size_t{1000}}) {
      SCOPED_TRACE(c.what);
      WarcReader reader = ReaderOf(c.bytes, 100, piece);
      ArchivedPage page;
      int pages = 0;
      while (reader.Next(page)) ++pages;
      EXPECT_EQ(pages, c.pages);
      EXPECT_EQ(reader.isDamaged(), c.isDamaged);
    }
  }
}

TEST(WarcReader, OpensFilesPackedOrNot) {
  const TestSite site;
  const std::filesystem::path file = site.scratch.path() / "a.warc";
  WriteFile(file, ResponseOf("http://x.example/", "HTTP/1.1 200 OK\r\n\r\nabc"));
  WarcReader reader(OpenArchive(file), 100);
  ArchivedPage page;
  ASSERT_TRUE(reader.Next(page));
  EXPECT_EQ(page.answer.bytes, "abc");
}

}  // namespace
}  // namespace vela::indexer
