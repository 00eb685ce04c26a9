#include "indexer/documents/picture_page.h"

#include <libexif/exif-data.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "index/byte_cursor.h"
#include "indexer/documents/paragraphs.h"
#include "indexer/documents/picture_parts.h"
#include "indexer/documents/xml_reading.h"
#include "indexer/extract/meta_elements.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/symbols.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr size_t kTextLimit = 20000;  // bytes of one text
constexpr size_t kKeywordLimit = 200;

enum class Property : uint8_t { kTitle, kDescription, kAuthor, kDate, kKeyword, kNone };

// What a picture says in one of its ways, or in all.
struct Said {
  std::string texts[static_cast<size_t>(Property::kKeyword)];  // by Property
  std::vector<std::string> keywords;

  // Of several texts the first counts.
  void Add(Property property, std::string text) {
    if (property == Property::kNone) return;
    text = OneLine(std::move(text));
    if (text.empty()) return;
    if (property == Property::kKeyword) {
      if (keywords.size() < kKeywordLimit) keywords.push_back(std::move(text));
    } else if (std::string& known = texts[static_cast<size_t>(property)]; known.empty()) {
      known = std::move(text);
    }
  }
  // What is not said yet.
  void Complete(Said other) {
    for (size_t i = 0; i < std::size(texts); ++i) {
      if (texts[i].empty()) texts[i] = std::move(other.texts[i]);
    }
    if (keywords.empty()) keywords = std::move(other.keywords);
  }
};

// Latin-1 where it is no UTF-8.
std::string TextOf(std::string_view bytes) {
  bytes = bytes.substr(0, std::min(bytes.find('\0'), kTextLimit));
  if (IsValidUtf8(bytes)) return std::string(bytes);
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

// UTF-16, little-endian, up to a NUL. Halves of pairs become U+FFFD.
std::string WideText(std::string_view bytes) {
  std::string text;
  ByteCursor cursor{bytes};
  char32_t high = 0;
  while (cursor.rest.size() >= 2 && text.size() < kTextLimit) {
    auto unit = static_cast<char32_t>(TakeLittleEndian(cursor, 2));
    if (unit == 0) break;
    if (unit >= 0xD800 && unit < 0xDC00) {
      high = unit;
      continue;
    }
    if (unit >= 0xDC00 && unit < 0xE000) {
      unit = high == 0 ? 0xFFFD : 0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00);
    }
    high = 0;
    text += Utf8Text(unit);
  }
  return text;
}

// "2026-03-05T10:00:00" of "2026:03:05 10:00:00" (EXIF) and "2026-03-05" of "20260305" (IPTC).
std::string DateText(std::string_view date) {
  constexpr size_t kDay = 10;
  constexpr size_t kPlainDay = 8;
  const auto joined = [](std::string_view year, std::string_view month, std::string_view day) {
    return std::string(year).append("-").append(month).append("-").append(day);
  };
  if (date.size() >= kDay && date[4] == ':' && date[7] == ':') {
    const std::string day = joined(date.substr(0, 4), date.substr(5, 2), date.substr(8, 2));
    return date.size() == kDay ? day : day + "T" + std::string(date.substr(kDay + 1));
  }
  if (date.size() == kPlainDay && std::ranges::all_of(date, IsDigit)) {
    return joined(date.substr(0, 4), date.substr(4, 2), date.substr(6));
  }
  return std::string(date);
}

// Properties are elements or, where they are plain, attributes of the element that says what they
// are of; texts in several languages and lists are elements inside.
class XmpReader : public XmlHandler {
 public:
  explicit XmpReader(Said& filled) : said_(filled) {}

  void Start(const XmlTag& tag) override {
    const std::string_view name = tag.name();
    if (name == "Description") {
      for (const auto& [attribute, property] : kProperties) {
        said_.Add(property, std::string(tag.Value(attribute).substr(0, kTextLimit)));
      }
    } else if (const Property property = PropertyOf(name); property != Property::kNone) {
      open_ = property;
      element_ = name;
    }
    text_.clear();
  }
  void Text(std::string_view text) override {
    text_ += text.substr(0, kTextLimit - std::min(kTextLimit, text_.size()));
  }
  void End(std::string_view name) override {
    if (open_ != Property::kNone && (name == "li" || name == element_)) {
      said_.Add(open_, std::exchange(text_, {}));
    }
    if (name == element_) open_ = Property::kNone;
  }

 private:
  static constexpr std::pair<std::string_view, Property> kProperties[] = {
      {"title", Property::kTitle},
      {"Headline", Property::kTitle},
      {"description", Property::kDescription},
      {"creator", Property::kAuthor},
      {"subject", Property::kKeyword},
      {"DateTimeOriginal", Property::kDate},
      {"DateCreated", Property::kDate},
      {"CreateDate", Property::kDate},
  };
  static Property PropertyOf(std::string_view name) {
    for (const auto& [element, property] : kProperties) {
      if (element == name) return property;
    }
    return Property::kNone;
  }

  Said& said_;
  Property open_ = Property::kNone;
  std::string element_;
  std::string text_;
};

// Datasets: 0x1C, two numbers in a byte each, the length in 2 bytes, the data.
void ReadIptc(std::string_view iptc, Said& said) {
  constexpr uint64_t kMark = 0x1C;
  constexpr uint64_t kApplication = 2;
  constexpr size_t kLongData = 0x8000;
  constexpr std::pair<uint64_t, Property> kProperties[] = {
      {5, Property::kTitle},   {105, Property::kTitle}, {120, Property::kDescription},
      {80, Property::kAuthor}, {55, Property::kDate},   {25, Property::kKeyword},
  };
  ByteCursor cursor{iptc};
  while (TakeLittleEndian(cursor, 1) == kMark && !cursor.bad) {
    const uint64_t record = TakeLittleEndian(cursor, 1);
    const uint64_t number = TakeLittleEndian(cursor, 1);
    const uint64_t high = TakeLittleEndian(cursor, 1);
    const size_t size = high << 8 | TakeLittleEndian(cursor, 1);
    if (size >= kLongData) return;
    const std::string_view data = Take(cursor, size);
    if (record != kApplication) continue;
    for (const auto& [dataset, property] : kProperties) {
      if (dataset == number) said.Add(property, TextOf(data));
    }
  }
}

struct ExifRelease {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};

// The library looks at no more than the first 64 kB, which are all that JPEG has room for.
void ReadExif(std::string_view exif, Said& said) {
  enum class Form : uint8_t { kText, kWide };
  struct Tag {
    ExifIfd directory;
    ExifTag tag;
    Form form;
    Property property;
  };
  constexpr Tag kTags[] = {
      {EXIF_IFD_0, EXIF_TAG_XP_TITLE, Form::kWide, Property::kTitle},
      {EXIF_IFD_0, EXIF_TAG_IMAGE_DESCRIPTION, Form::kText, Property::kDescription},
      {EXIF_IFD_0, EXIF_TAG_XP_SUBJECT, Form::kWide, Property::kDescription},
      {EXIF_IFD_0, EXIF_TAG_XP_COMMENT, Form::kWide, Property::kDescription},
      {EXIF_IFD_0, EXIF_TAG_ARTIST, Form::kText, Property::kAuthor},
      {EXIF_IFD_0, EXIF_TAG_XP_AUTHOR, Form::kWide, Property::kAuthor},
      {EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL, Form::kText, Property::kDate},
      {EXIF_IFD_0, EXIF_TAG_DATE_TIME, Form::kText, Property::kDate},
      {EXIF_IFD_0, EXIF_TAG_XP_KEYWORDS, Form::kWide, Property::kKeyword},
  };
  if (exif.empty() || exif.size() > UINT32_MAX / 2) return;
  std::string bytes("Exif\0\0", 6);
  bytes += exif;
  const std::unique_ptr<ExifData, ExifRelease> data(exif_data_new());
  if (data == nullptr) throw std::bad_alloc();
  // What the library would add or mend is not what the picture says.
  exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
  exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(bytes.data()),
                      static_cast<unsigned int>(bytes.size()));
  for (const Tag& tag : kTags) {
    const ExifEntry* entry = exif_content_get_entry(data->ifd[tag.directory], tag.tag);
    if (entry == nullptr || entry->data == nullptr) continue;
    const std::string_view value(reinterpret_cast<const char*>(entry->data), entry->size);
    said.Add(tag.property, tag.form == Form::kWide ? WideText(value) : TextOf(value));
  }
}

void ReadTexts(const PictureParts& parts, Said& said) {
  constexpr std::pair<std::string_view, Property> kKeywords[] = {
      {"Title", Property::kTitle},         {"Description", Property::kDescription},
      {"Comment", Property::kDescription}, {"Author", Property::kAuthor},
      {"Creation Time", Property::kDate},
  };
  for (const auto& [keyword, property] : kKeywords) {
    for (const auto& [name, text] : parts.texts) {
      if (name == keyword) said.Add(property, TextOf(text));
    }
  }
}

void Fill(Said said, ReadingBudget& budget, PageContent& page) {
  const auto text = [&said](Property property) -> std::string& {
    return said.texts[static_cast<size_t>(property)];
  };
  std::string keywords;
  for (const std::string& keyword : said.keywords) {
    keywords += (keywords.empty() ? "" : ", ") + keyword;
  }
  page.title = std::move(text(Property::kTitle));
  page.description = std::move(text(Property::kDescription));
  Paragraphs paragraphs(budget);
  for (const std::string& line : {keywords, text(Property::kAuthor)}) {
    if (line.empty()) continue;
    paragraphs.Begin();
    paragraphs.Append(line);
    paragraphs.End();
  }
  AddMeta("keywords", std::move(keywords), page);
  AddMeta("author", std::move(text(Property::kAuthor)), page);
  AddMeta("dcterms.date", DateText(text(Property::kDate)), page);
  paragraphs.CopyTo(page);
}

}  // namespace

Reason ReadPicturePage(std::string_view bytes, ReadingBudget& budget, PageContent& page) {
  PictureParts parts;
  if (!FindPictureParts(bytes, parts)) return Reason::kDamaged;
  Said said;
  if (!parts.xmp.empty()) {
    XmpReader xmp(said);
    const Reason reason = ReadXmlBeside(parts.xmp, budget, xmp);
    if (reason != Reason::kNone) return reason;
  }
  Said iptc;
  ReadIptc(parts.iptc, iptc);
  said.Complete(std::move(iptc));
  Said exif;
  ReadExif(parts.exif, exif);
  said.Complete(std::move(exif));
  Said texts;
  ReadTexts(parts, texts);
  said.Complete(std::move(texts));
  Fill(std::move(said), budget, page);
  return budget.status;
}

}  // namespace vela::indexer
