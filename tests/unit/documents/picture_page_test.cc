#include "indexer/documents/picture_page.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

using namespace std::string_literals;

std::string BigEndian(size_t value, size_t width) {
  std::string bytes;
  for (size_t i = width; i-- > 0;) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}
std::string LittleEndian(size_t value, size_t width) {
  const std::string bytes = BigEndian(value, width);
  return {bytes.rbegin(), bytes.rend()};
}

struct ExifField {
  size_t tag;
  std::string value;  // more than 4 bytes
};
constexpr size_t kBytes = 1;
constexpr size_t kAscii = 2;

// One directory, little-endian.
std::string Exif(const std::vector<ExifField>& fields) {
  constexpr size_t kHeadBytes = 8;
  constexpr size_t kFieldBytes = 12;
  std::string head = "II*\0"s + LittleEndian(kHeadBytes, 4) + LittleEndian(fields.size(), 2);
  const size_t dataAt = head.size() + fields.size() * kFieldBytes + 4;
  std::string data;
  for (const ExifField& field : fields) {
    const size_t type = field.tag >= 0x9C9B && field.tag <= 0x9C9F ? kBytes : kAscii;
    head += LittleEndian(field.tag, 2) + LittleEndian(type, 2);
    head += LittleEndian(field.value.size(), 4) + LittleEndian(dataAt + data.size(), 4);
    data += field.value;
  }
  return head + LittleEndian(0, 4) + data;
}

std::string Segment(size_t marker, const std::string& data) {
  return "\xFF"s + static_cast<char>(marker) + BigEndian(data.size() + 2, 2) + data;
}
std::string Jpeg(const std::string& segments) {
  return "\xFF\xD8"s + segments + "\xFF\xDA" + "picture\xFF\xD9";
}
std::string ExifSegment(const std::string& exif) { return Segment(0xE1, "Exif\0\0"s + exif); }
std::string XmpSegment(const std::string& xmp) {
  return Segment(0xE1, "http://ns.adobe.com/xap/1.0/\0"s + xmp);
}

std::string Dataset(size_t number, const std::string& text) {
  return "\x1C\x02"s + static_cast<char>(number) + BigEndian(text.size(), 2) + text;
}
std::string IptcSegment(const std::string& iptc) {
  const std::string other =
      "8BIM" + BigEndian(0x03ED, 2) + "\x03" + "abc" + BigEndian(1, 4) + "x\0"s;
  return Segment(0xED, "Photoshop 3.0\0"s + other + "8BIM" + BigEndian(0x0404, 2) + "\0\0"s +
                           BigEndian(iptc.size(), 4) + iptc);
}

std::string Chunk(const std::string& type, const std::string& data) {
  return BigEndian(data.size(), 4) + type + data + "crc.";
}
std::string Png(const std::string& chunks) {
  return "\x89PNG\r\n\x1A\n" + Chunk("IHDR", "0123456789012") + chunks + Chunk("IDAT", "data") +
         Chunk("IEND", "");
}
std::string Webp(const std::string& type, const std::string& data) {
  const std::string chunks = "VP8L" + LittleEndian(3, 4) + "abc\0"s + type +
                             LittleEndian(data.size(), 4) + data +
                             std::string(data.size() % 2, '\0');
  return "RIFF" + LittleEndian(chunks.size() + 4, 4) + "WEBP" + chunks;
}

const std::string kExif = Exif({{0x010E, "A bridge at dawn\0"s},
                                {0x0132, "2026:03:05 10:20:30\0"s},
                                {0x013B, "Ann Lee\0"s},
                                {0x9C9B, "O\0l\0d\0 \0\xFC\0\0\0"s},
                                {0x9C9E, "r\0i\0v\0e\0r\0\0\0"s}});
const std::string kXmp =
    "<?xpacket begin='' id='x'?><x:xmpmeta xmlns:x='x'><r:RDF xmlns:r='r' xmlns:d='d'>"
    "<r:Description xmlns:p='p' p:DateCreated='2025-01-02'>"
    "<d:title><r:Alt><r:li>The mill</r:li><r:li>Die M\xC3\xBChle</r:li></r:Alt></d:title>"
    "<d:subject><r:Bag><r:li>water</r:li><r:li>wheel</r:li></r:Bag></d:subject>"
    "</r:Description></r:RDF></x:xmpmeta>";

// "TITLE|DESCRIPTION|TEXT|NAME=VALUE ...", or the reason.
std::string Read(const std::string& bytes) {
  ReadingBudget budget = StartReading({}, bytes.size());
  PageContent page;
  const Reason reason = ReadPicturePage(bytes, budget, page);
  if (reason != Reason::kNone) return std::string(ReasonCode(reason));
  std::string all = page.title + "|" + page.description + "|";
  for (const TextRun& run : page.body) all += run.text;
  all += "|";
  for (const auto& [name, value] : page.metas) all += name + "=" + value + " ";
  return all;
}

const std::string kOfExif =
    "Old \xC3\xBC|A bridge at dawn|river Ann Lee |"
    "keywords=river author=Ann Lee dcterms.date=2026-03-05T10:20:30 ";

TEST(PicturePage, TakesWhatAPictureSays) {
  const struct {
    const char* what;
    std::string bytes;
    std::string said;
  } kCases[] = {
      {"EXIF of a JPEG", Jpeg(Segment(0xE0, "JFIF\0"s) + ExifSegment(kExif)), kOfExif},
      {"of a PNG", Png(Chunk("eXIf", kExif)), kOfExif},
      {"of a WebP", Webp("EXIF", kExif), kOfExif},
      {"of a TIFF", kExif, kOfExif},
      {"texts that are no UTF-8 are Latin-1", Jpeg(ExifSegment(Exif({{0x010E, "Caf\xE9.\0"s}}))),
       "|Caf\xC3\xA9.||"},
      {"XMP", Jpeg(XmpSegment(kXmp)),
       "The mill||water, wheel |keywords=water, wheel dcterms.date=2025-01-02 "},
      {"XMP comes before EXIF, which says the rest", Jpeg(ExifSegment(kExif) + XmpSegment(kXmp)),
       "The mill|A bridge at dawn|water, wheel Ann Lee |"
       "keywords=water, wheel author=Ann Lee dcterms.date=2025-01-02 "},
      {"XMP of a PNG", Png(Chunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0"s + kXmp)),
       "The mill||water, wheel |keywords=water, wheel dcterms.date=2025-01-02 "},
      {"XMP of a WebP", Webp("XMP ", kXmp),
       "The mill||water, wheel |keywords=water, wheel dcterms.date=2025-01-02 "},
      {"IPTC",
       Jpeg(IptcSegment(Dataset(5, "Harbour") + Dataset(25, "ships") + Dataset(25, "sea") +
                        Dataset(120, "Ships at sea") + Dataset(55, "20240102"))),
       "Harbour|Ships at sea|ships, sea |keywords=ships, sea dcterms.date=2024-01-02 "},
      {"texts of PNG", Png(Chunk("tEXt", "Title\0Lamp"s) + Chunk("iTXt", "Author\0\0\0\0\0Ben"s)),
       "Lamp||Ben |author=Ben "},
      {"a picture that says nothing", Jpeg(""), "|||"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Read(c.bytes), c.said);
  }
}

TEST(PicturePage, EndsOnWhateverItIsGiven) {
  const std::string many = "II*\0"s + LittleEndian(8, 4) + "\xFF\xFF";
  const std::string loop = "II*\0"s + LittleEndian(8, 4) + LittleEndian(0, 2) + LittleEndian(8, 4);
  const std::string inItself = "II*\0"s + LittleEndian(8, 4) + LittleEndian(1, 2) +
                               LittleEndian(0x8769, 2) + LittleEndian(4, 2) + LittleEndian(1, 4) +
                               LittleEndian(8, 4) + LittleEndian(0, 4);
  const std::string huge = "II*\0"s + LittleEndian(8, 4) + LittleEndian(1, 2) +
                           LittleEndian(0x010E, 2) + LittleEndian(2, 2) +
                           LittleEndian(0xFFFFFFFF, 4) + LittleEndian(0xFFFFFFF0, 4) +
                           LittleEndian(0, 4);
  const struct {
    const char* what;
    std::string bytes;
    const char* said;
  } kCases[] = {
      {"nothing", "", "damaged"},
      {"a page", "<html>", "damaged"},
      {"GIF", "GIF89a\1\0\1\0"s, "|||"},
      {"GIF of the year before", "GIF87a", "|||"},
      {"AVIF",
       "\0\0\0\x1C"
       "ftypavif\0\0\0\0"s,
       "|||"},
      {"HEIC",
       "\0\0\0\x18"
       "ftypheic"s,
       "|||"},
      {"a film",
       "\0\0\0\x18"
       "ftypisom"s,
       "damaged"},
      {"half a box",
       "\0\0\0\x18"
       "ftyp"s,
       "damaged"},
      {"SVG", "\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- a --><svg></svg>", "|||"},
      {"a text about SVG", "how to write <svg>", "damaged"},
      {"SVG far behind", "<!--" + std::string(1100, '-') + "--><svg>", "damaged"},
      {"more fields than bytes", Jpeg(ExifSegment(many)), "|||"},
      {"a directory that follows itself", Jpeg(ExifSegment(loop)), "|||"},
      {"a directory in itself", Jpeg(ExifSegment(inItself)), "|||"},
      {"a text of four gigabytes", Jpeg(ExifSegment(huge)), "|||"},
      {"a segment without room for its length", "\xFF\xD8\xFF\xE1\0\1"s, "|||"},
      {"a chunk longer than the file", Png("\xFF\xFF\xFF\xFFtEXt"), "|||"},
      {"a chunk of WebP longer than the file", Webp("EXIF", "").substr(0, 28) + "\xFF\xFF\xFF\xFF",
       "|||"},
      {"XML that declares entities", Jpeg(XmpSegment("<!DOCTYPE x [<!ENTITY a 'b'>]><x>&a;</x>")),
       "|||"},
      {"a resource of four gigabytes",
       Jpeg(Segment(0xED, "Photoshop 3.0\0"s + "8BIM\4\4\0\0\xFF\xFF\xFF\xFF"s)), "|||"},
      {"a resource whose name is longer than the rest",
       Jpeg(Segment(0xED, "Photoshop 3.0\0"s + "8BIM\4\4\xFFx"s)), "|||"},
      {"a packed text, which is not unpacked",
       Png(Chunk("iTXt", "Title\0\1\0\0\0"s + "\x78\x9C\xED\xC1"s)), "|||"},
      {"a dataset longer than the rest", Jpeg(IptcSegment("\x1C\x02\x05\x7F\xFFx")), "|||"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(Read(c.bytes), c.said);
  }
}

TEST(PicturePage, CutAnywhereItSaysAPartOfTheSame) {
  for (const std::string& whole :
       {Jpeg(ExifSegment(kExif) + XmpSegment(kXmp) + IptcSegment(Dataset(5, "Harbour"))),
        Png(Chunk("eXIf", kExif) + Chunk("tEXt", "Title\0Lamp"s)), Webp("EXIF", kExif), kExif}) {
    for (size_t length = 0; length < whole.size(); ++length) {
      SCOPED_TRACE(length);
      const std::string said = Read(whole.substr(0, length));
      EXPECT_TRUE(said == "damaged" || said.find('|') != said.npos) << said;
    }
  }
}

}  // namespace
}  // namespace vela::indexer
