#include "indexer/collect/block_bytes.h"

#include <bit>
#include <limits>

#include "format/page_data.h"
#include "indexer/collect/number_bytes.h"
#include "indexer/collect/number_table.h"
#include "indexer/collect/section_pages.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

constexpr size_t kHashBytes = 8;
constexpr size_t kMetaValuesLimit = kFieldLimit * (kFieldTextLimit + 1);

class Writer {
 public:
  void Number(uint64_t number) {
    for (; number >= 0x80; number >>= 7) bytes_ += static_cast<char>(number | 0x80);
    bytes_ += static_cast<char>(number);
  }
  void Signed(int64_t number) {
    Number(static_cast<uint64_t>(number) << 1 ^ static_cast<uint64_t>(number >> 63));
  }
  void Fixed(uint64_t number) {
    for (size_t i = 0; i < sizeof number; ++i) bytes_ += static_cast<char>(number >> (8 * i));
  }
  void Text(std::string_view text) {
    Number(text.size());
    bytes_ += text;
  }
  void Byte(uint8_t byte) { bytes_ += static_cast<char>(byte); }
  std::string Finish() {
    Fixed(TextHash(bytes_));
    return std::move(bytes_);
  }

 private:
  std::string bytes_;
};

// After the first read that did not fit, every further one gives 0 or nothing.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  uint8_t Byte() {
    const std::string_view byte = Bytes(1);
    return byte.empty() ? 0 : static_cast<uint8_t>(byte[0]);
  }
  uint64_t Number(uint64_t limit = std::numeric_limits<uint64_t>::max()) {
    uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const uint8_t byte = Byte();
      const uint64_t bits = byte & 0x7FU;
      Check(shift < 63 || bits <= 1);
      number |= bits << shift;
      if ((byte & 0x80) == 0) {
        Check(number <= limit);
        return bad_ ? 0 : number;
      }
    }
    Check(false);
    return 0;
  }
  uint32_t Number32() {
    return static_cast<uint32_t>(Number(std::numeric_limits<uint32_t>::max()));
  }
  uint8_t Number8() { return static_cast<uint8_t>(Number(std::numeric_limits<uint8_t>::max())); }
  int64_t Signed() {
    const uint64_t number = Number();
    return static_cast<int64_t>(number >> 1 ^ (0 - (number & 1)));
  }
  uint64_t Fixed() {
    const std::string_view bytes = Bytes(sizeof(uint64_t));
    uint64_t number = 0;
    for (size_t i = bytes.size(); i-- > 0;) {
      number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
  }
  bool Flag() { return Number(1) != 0; }
  std::string_view Text(size_t limit = std::numeric_limits<size_t>::max()) {
    return Bytes(Number(limit));
  }
  // The entries of a list that take `least` bytes each at least.
  size_t Count(size_t least) { return Number(rest_.size() / least); }

  void Check(bool holds) { bad_ = bad_ || !holds; }
  bool bad() const { return bad_; }
  bool IsAtEnd() const { return !bad_ && rest_.empty(); }

 private:
  std::string_view Bytes(uint64_t count) {
    Check(count <= rest_.size());
    if (bad_) return {};
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return bytes;
  }

  std::string_view rest_;
  bool bad_ = false;
};

// Bits of a WordOfPage.
constexpr uint8_t kWritten = 1;
constexpr uint8_t kOwnForm = 2;

void WriteWords(const PageWords& page, Writer& out) {
  out.Number(page.words.size());
  for (const WordOfPage& word : page.words) {
    out.Byte(word.bytes);
    out.Number(word.token);
    out.Byte(word.total);
    out.Byte(word.body);
    out.Byte(word.zones);
    out.Byte(word.blocks);
    out.Byte(
        static_cast<uint8_t>((word.isWritten ? kWritten : 0) | (word.isOwnForm ? kOwnForm : 0)));
  }
  out.Number(page.forms.size());
  for (const FormOfPage& form : page.forms) {
    out.Number(form.word);
    out.Byte(form.bytes);
  }
  out.Number(page.signs.size());
  for (const SignsOfPage& signs : page.signs) {
    out.Byte(signs.form);
    out.Number(signs.bytes);
    out.Number(signs.count);
  }
  out.Text(page.wordTexts);
  out.Text(page.formTexts);
  out.Text(page.signTexts);
  out.Number(page.tokenCount);
  out.Text(page.tokens);
  out.Number(page.bodyTokens);
  out.Number(page.bodyWords);
  out.Number(page.titleWords);
}

void ReadWords(Reader& in, PageWords& page) {
  constexpr size_t kLeastWord = 7;
  constexpr size_t kLeastForm = 2;
  constexpr size_t kLeastSigns = 3;
  page.words.resize(in.Count(kLeastWord));
  uint64_t wordBytes = 0;
  for (WordOfPage& word : page.words) {
    word.bytes = in.Byte();
    word.token = in.Number32();
    word.total = in.Byte();
    word.body = in.Byte();
    word.zones = in.Byte();
    word.blocks = in.Byte();
    const uint8_t bits = in.Byte();
    word.isWritten = (bits & kWritten) != 0;
    word.isOwnForm = (bits & kOwnForm) != 0;
    in.Check(word.bytes != 0 && (bits & ~(kWritten | kOwnForm)) == 0);
    wordBytes += word.bytes;
  }
  page.forms.resize(in.Count(kLeastForm));
  uint64_t formBytes = 0;
  for (FormOfPage& form : page.forms) {
    form.word = in.Number32();
    form.bytes = in.Byte();
    in.Check(form.word < page.words.size());
    formBytes += form.bytes;
  }
  page.signs.resize(in.Count(kLeastSigns));
  uint64_t signBytes = 0;
  for (SignsOfPage& signs : page.signs) {
    const uint8_t form = in.Byte();
    in.Check(form < kSignFormCount);
    signs.form = static_cast<SignForm>(form % kSignFormCount);
    signs.bytes = in.Number32();
    signs.count = in.Number32();
    in.Check(signs.bytes != 0);
    signBytes += signs.bytes;
  }
  page.wordTexts = in.Text();
  page.formTexts = in.Text();
  page.signTexts = in.Text();
  in.Check(page.wordTexts.size() == wordBytes && page.formTexts.size() == formBytes &&
           page.signTexts.size() == signBytes);
  page.tokenCount = in.Number32();
  page.tokens = in.Text();
  uint64_t tokens = 0;
  for (std::string_view rest = page.tokens; !rest.empty(); ++tokens) {
    const uint32_t token = TakeNumber(rest);
    const size_t known = token % 2 != 0 ? page.signs.size() : page.forms.size();
    in.Check(token == kRunEndToken || (token - 1) / 2 < known);
  }
  for (const WordOfPage& word : page.words) in.Check(word.token < page.tokenCount);
  page.bodyTokens = in.Number32();
  page.bodyWords = in.Number32();
  page.titleWords = in.Number32();
  in.Check(tokens == page.tokenCount && page.bodyTokens <= page.tokenCount &&
           page.bodyWords <= page.tokenCount && page.titleWords <= page.words.size());
}

void WriteFacts(const PageFacts& facts, Writer& out) {
  for (const std::string* text : {&facts.path, &facts.address, &facts.canonical, &facts.title,
                                  &facts.image, &facts.language}) {
    out.Text(*text);
  }
  out.Number(facts.fileSize);
  for (const int64_t time : {facts.time, facts.ownTime, facts.fileTime}) out.Signed(time);
  out.Number(static_cast<uint64_t>(facts.fileType));
}

void ReadFacts(Reader& in, PageFacts& facts) {
  facts.path = in.Text();
  facts.address = in.Text();
  facts.canonical = in.Text();
  facts.title = in.Text(kPageTitleLimit);
  facts.image = in.Text(kAddressLimit);
  facts.language = in.Text();
  facts.fileSize = in.Number();
  for (int64_t* time : {&facts.time, &facts.ownTime, &facts.fileTime}) *time = in.Signed();
  facts.fileType = static_cast<FileType>(in.Number(kFileTypeCount - 1));
}

void WriteMetaValues(const PageBlock& block, Writer& out) {
  out.Text(block.metaValues);
  out.Number(block.metaFaults.size());
  for (const Finding& fault : block.metaFaults) {
    out.Number(static_cast<uint64_t>(fault.reason));
    out.Text(fault.where);
    out.Text(fault.subject);
  }
  out.Number(block.usedFields.size());
  for (const bool isUsed : block.usedFields) out.Number(isUsed ? 1 : 0);
}

void ReadMetaValues(Reader& in, PageBlock& block) {
  constexpr size_t kLeastFault = 3;
  block.metaValues = in.Text(kMetaValuesLimit);
  block.metaFaults.resize(in.Count(kLeastFault));
  for (Finding& fault : block.metaFaults) {
    const uint64_t reason = in.Number();
    const bool isFault = reason >= static_cast<uint64_t>(Reason::kNotInList) &&
                         reason <= static_cast<uint64_t>(Reason::kNoWholeNumber);
    in.Check(isFault);
    fault.reason = isFault ? static_cast<Reason>(reason) : Reason::kNotInList;
    fault.where = in.Text();
    fault.subject = in.Text();
  }
  const size_t fields = in.Count(1);
  for (size_t i = 0; i < fields; ++i) block.usedFields.push_back(in.Flag());
}

void WriteSuggestions(const PageSuggestions& page, Writer& out) {
  out.Text(page.title);
  out.Number(page.texts.size());
  for (const PageSuggestions::Text& text : page.texts) {
    out.Text(text.text);
    out.Number(text.isHeading ? 1 : 0);
  }
  const RunningText& running = page.running;
  out.Number(running.words.size());
  for (const RunningText::Word& word : running.words) out.Byte(word.bytes);
  out.Text(running.texts);
  out.Text(running.sequence);
}

void ReadSuggestions(Reader& in, PageSuggestions& page) {
  constexpr size_t kLeastText = 2;
  page.title = in.Text(kTitleBytesLimit);
  page.texts.resize(in.Count(kLeastText));
  for (PageSuggestions::Text& text : page.texts) {
    text.text = in.Text(kSuggestedBytesLimit);
    text.isHeading = in.Flag();
    in.Check(!text.text.empty());
  }
  RunningText& running = page.running;
  running.words.resize(in.Count(1));
  for (RunningText::Word& word : running.words) {
    word.bytes = in.Byte();
    in.Check(word.bytes != 0 && word.bytes <= kPhraseBytesLimit);
  }
  const std::string_view texts = in.Text();
  running.texts = texts;
  size_t at = 0;
  for (RunningText::Word& word : running.words) {
    in.Check(word.bytes <= texts.size() - at);
    if (in.bad()) return;
    word.hash = TextHash(LowerUtf8Copy(texts.substr(at, word.bytes)));
    at += word.bytes;
  }
  running.sequence = in.Text();
  for (std::string_view rest = running.sequence; !rest.empty();) {
    in.Check(TakeNumber(rest) <= running.words.size());
  }
}

void ReadSections(Reader& in, PageBlock& block) {
  constexpr size_t kLeastSection = 3;
  constexpr size_t kTextLimit = std::numeric_limits<uint16_t>::max();
  block.sections.resize(in.Count(kLeastSection));
  for (PageSection& section : block.sections) {
    section.token = in.Number32();
    section.anchor = in.Text(kTextLimit);
    section.heading = in.Text(kTextLimit);
    in.Check(section.token <= block.words.bodyTokens && !section.anchor.empty());
  }
}

void ReadLinkWords(Reader& in, PageBlock& block) {
  constexpr size_t kLeastLink = 16;
  block.linkWords.resize(in.Count(kLeastLink));
  for (LinkWord& link : block.linkWords) {
    link.address = in.Fixed();
    link.word = in.Fixed();
  }
}

void ReadPictureTexts(Reader& in, PageBlock& block) {
  constexpr size_t kLeastText = 10;
  block.pictureTexts.resize(in.Count(kLeastText));
  for (PictureText& each : block.pictureTexts) {
    each.picture = in.Fixed();
    each.text = in.Text(kPictureTextLimit);
    in.Check(!each.text.empty());
  }
}

void ReadAddresses(Reader& in, PageBlock& block) {
  constexpr size_t kLeastAddress = 11;
  block.addresses.resize(in.Count(kLeastAddress));
  for (AddressBlock& each : block.addresses) {
    each.address = in.Text();
    ReadWords(in, each.words);
  }
  in.Check(!block.addresses.empty());
}

// Bits of a ContentUse.
constexpr uint8_t kIsChosen = 1;
constexpr uint8_t kLacksChosen = 2;
constexpr uint8_t kIsLeftOff = 4;

void WriteUse(const ContentUse& use, Writer& out) {
  out.Number(use.rule);
  out.Number(use.excluded);
  out.Byte(static_cast<uint8_t>((use.isChosen ? kIsChosen : 0) |
                                (use.lacksChosen ? kLacksChosen : 0) |
                                (use.isLeftOff ? kIsLeftOff : 0)));
  out.Number(use.selectors.size());
  for (const uint32_t selector : use.selectors) out.Number(selector);
}

void ReadUse(Reader& in, ContentUse& use) {
  use.rule = static_cast<uint32_t>(in.Number(kContentRuleLimit));
  use.excluded = in.Number32();
  const uint8_t bits = in.Byte();
  in.Check((bits & ~(kIsChosen | kLacksChosen | kIsLeftOff)) == 0);
  use.isChosen = (bits & kIsChosen) != 0;
  use.lacksChosen = (bits & kLacksChosen) != 0;
  use.isLeftOff = (bits & kIsLeftOff) != 0;
  use.selectors.resize(in.Count(1));
  for (uint32_t& selector : use.selectors) {
    selector = static_cast<uint32_t>(in.Number(kSelectorCountLimit - 1));
  }
}

// What a block may hold beside its own fields.
enum class Nesting : uint8_t { kPieces, kNone };

bool ReadBlockOf(std::string_view bytes, Nesting nesting, PageBlock& block);

// Each as the bytes of a block.
void ReadPieces(Reader& in, Nesting nesting, PageBlock& block) {
  constexpr size_t kLeastPiece = 30;
  const size_t count = in.Count(kLeastPiece);
  in.Check(count == 0 || nesting == Nesting::kPieces);
  for (size_t i = 0; i < count && !in.bad(); ++i) {
    PageBlock& piece = block.pieces.emplace_back();
    in.Check(ReadBlockOf(in.Text(), Nesting::kNone, piece) && !piece.anchor.empty());
  }
}

bool ReadFields(Reader& in, Nesting nesting, PageBlock& block) {
  in.Check(in.Byte() == kBlockVersion);
  ReadFacts(in, block.facts);
  block.description = in.Text(kPageDescriptionLimit);
  const auto linkShare = std::bit_cast<float>(in.Number32());
  in.Check(linkShare >= 0 && linkShare <= 1);
  block.linkShare = linkShare;
  block.markupFault = in.Text();
  ReadUse(in, block.use);
  block.prints.isLong = in.Flag();
  block.prints.whole = in.Fixed();
  block.prints.body = in.Fixed();
  block.prints.isComparable = in.Flag();
  block.prints.similar = in.Fixed();
  ReadMetaValues(in, block);
  ReadWords(in, block.words);
  ReadAddresses(in, block);
  ReadSections(in, block);
  ReadLinkWords(in, block);
  ReadPictureTexts(in, block);
  block.isSilent = in.Flag();
  ReadSuggestions(in, block.suggestions);
  block.anchor = in.Text(kSectionAnchorLimit);
  ReadPieces(in, nesting, block);
  return in.IsAtEnd();
}

bool ReadBlockOf(std::string_view bytes, Nesting nesting, PageBlock& block) {
  block = {};
  if (bytes.size() < kHashBytes) return false;
  const std::string_view fields = bytes.substr(0, bytes.size() - kHashBytes);
  Reader in(fields);
  const bool isWhole = TextHash(fields) == Reader(bytes.substr(fields.size())).Fixed() &&
                       ReadFields(in, nesting, block);
  if (!isWhole) block = {};
  return isWhole;
}

}  // namespace

std::string BlockBytes(const PageBlock& block) {
  Writer out;
  out.Byte(kBlockVersion);
  WriteFacts(block.facts, out);
  out.Text(block.description);
  out.Number(std::bit_cast<uint32_t>(block.linkShare));
  out.Text(block.markupFault);
  WriteUse(block.use, out);
  out.Number(block.prints.isLong ? 1 : 0);
  out.Fixed(block.prints.whole);
  out.Fixed(block.prints.body);
  out.Number(block.prints.isComparable ? 1 : 0);
  out.Fixed(block.prints.similar);
  WriteMetaValues(block, out);
  WriteWords(block.words, out);
  out.Number(block.addresses.size());
  for (const AddressBlock& each : block.addresses) {
    out.Text(each.address);
    WriteWords(each.words, out);
  }
  out.Number(block.sections.size());
  for (const PageSection& section : block.sections) {
    out.Number(section.token);
    out.Text(section.anchor);
    out.Text(section.heading);
  }
  out.Number(block.linkWords.size());
  for (const LinkWord& link : block.linkWords) {
    out.Fixed(link.address);
    out.Fixed(link.word);
  }
  out.Number(block.pictureTexts.size());
  for (const PictureText& each : block.pictureTexts) {
    out.Fixed(each.picture);
    out.Text(each.text);
  }
  out.Number(block.isSilent ? 1 : 0);
  WriteSuggestions(block.suggestions, out);
  out.Text(block.anchor);
  out.Number(block.pieces.size());
  for (const PageBlock& piece : block.pieces) out.Text(BlockBytes(piece));
  return out.Finish();
}

bool ReadBlock(std::string_view bytes, PageBlock& block) {
  return ReadBlockOf(bytes, Nesting::kPieces, block);
}

}  // namespace vela::indexer
