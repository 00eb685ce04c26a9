#include "indexer/write/page_text_writer.h"

#include <cstring>

#include "format/page_text.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

constexpr size_t kNumberBytes = 4;
constexpr size_t kVariantBytes = 1;
constexpr size_t kSizeBytes = 8;
constexpr size_t kHeadBytes = 4 * kNumberBytes + kSizeBytes;
constexpr size_t kTokenBytes = kNumberBytes + kVariantBytes;

uint32_t NumberAt(const char* at) {
  uint32_t number = 0;
  memcpy(&number, at, sizeof number);
  return number;
}

// Takes so many tokens off the start of `bytes`.
void TakeTokens(size_t count, std::string_view& bytes, std::vector<PageToken>& tokens) {
  tokens.clear();
  for (const char* at = bytes.data(); tokens.size() < count; at += kTokenBytes) {
    tokens.push_back({NumberAt(at), static_cast<uint8_t>(at[kNumberBytes])});
  }
  bytes.remove_prefix(count * kTokenBytes);
}

}  // namespace

PageTextWriter::PageTextWriter(const std::filesystem::path& folder)
    : temporary_(folder / "pagetext.tmp") {
  waiting_.emplace(temporary_);
  written_.open(temporary_, std::ios::binary);
  std::filesystem::remove(temporary_);  // gone with the process, however it ends
}

void PageTextWriter::Add(const TextStretch& stretch) {
  waiting_->WriteNumber(stretch.tokenCount, kNumberBytes);
  waiting_->WriteNumber(stretch.end, kNumberBytes);
  waiting_->WriteNumber(stretch.forms.size(), kNumberBytes);
  waiting_->WriteNumber(stretch.signs.size(), kNumberBytes);
  waiting_->WriteNumber(stretch.tokens.size(), kSizeBytes);
  for (const std::span<const PageToken> tokens : {stretch.forms, stretch.signs}) {
    for (const PageToken& token : tokens) {
      waiting_->WriteNumber(uint64_t{token.variant} << 8 * kNumberBytes | token.number,
                            kTokenBytes);
    }
  }
  waiting_->Write(stretch.tokens);
  ++stretches_;
}

// False when the file holds no more.
bool PageTextWriter::ReadStretch() {
  const auto read = [this](size_t bytes) {
    read_.bytes.resize(bytes);
    written_.read(read_.bytes.data(), static_cast<std::streamsize>(bytes));
    return static_cast<size_t>(written_.gcount()) == bytes;
  };
  if (!read(kHeadBytes)) return false;
  const char* const head = read_.bytes.data();
  TextStretch& stretch = read_.stretch;
  stretch.tokenCount = NumberAt(head);
  stretch.end = NumberAt(head + kNumberBytes);
  const size_t forms = NumberAt(head + 2 * kNumberBytes);
  const size_t signs = NumberAt(head + 3 * kNumberBytes);
  uint64_t tokens = 0;
  memcpy(&tokens, head + 4 * kNumberBytes, sizeof tokens);
  if (!read((forms + signs) * kTokenBytes + tokens)) return false;
  stretch.tokens = read_.bytes;
  TakeTokens(forms, stretch.tokens, read_.forms);
  TakeTokens(signs, stretch.tokens, read_.signs);
  return true;
}

uint64_t PageTextWriter::Finish(const std::filesystem::path& path, const ReservedEntries& reserved,
                                const std::vector<uint32_t>& order, size_t tokenBytes) {
  waiting_->Close();
  waiting_.reset();
  const uint32_t firstWord = reserved.numbers.limit + 1;
  std::vector<uint32_t> numbers(order.size());
  for (uint32_t place = 0; place < order.size(); ++place) numbers[order[place]] = firstWord + place;

  const size_t variantShift = 8 * (tokenBytes - kTokenVariantWidth);
  const auto inFile = [&](PageToken token) {
    const uint32_t number = token.number >= kWordBase ? numbers[token.number - kWordBase]
                                                      : reserved.finals[token.number];
    return number | uint64_t{token.variant} << variantShift;
  };
  std::vector<uint64_t> forms;  // as they stand in the file
  std::vector<uint64_t> signs;
  OutFile out(path);
  uint64_t expected = 0;
  for (; stretches_ != 0 && ReadStretch(); --stretches_) {
    forms.clear();
    for (const PageToken& form : read_.forms) forms.push_back(inFile(form));
    signs.clear();
    for (const PageToken& sign : read_.signs) signs.push_back(inFile(sign));
    ForEachToken(
        read_.stretch, std::span<const uint64_t>(forms), std::span<const uint64_t>(signs),
        [&](uint32_t number) {
          return inFile({number, 0});
        },
        [&](uint64_t token) { out.WriteNumber(token, tokenBytes); });
    expected += read_.stretch.tokenCount + (read_.stretch.end != kNone32 ? 1 : 0);
  }
  if (stretches_ != 0 || out.size() != expected * tokenBytes) {
    throw IndexError(ExitStatus::kFailed, "Cannot read the temporary file " + temporary_.string() +
                                              " back. Check the disk it lies on.");
  }
  written_.close();
  read_ = {};
  return out.Finish();
}

}  // namespace vela::indexer
