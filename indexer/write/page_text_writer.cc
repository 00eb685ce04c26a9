#include "indexer/write/page_text_writer.h"

#include <cstring>

#include "format/page_text.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {
constexpr size_t kWaitingBytes = 5;  // 4 of the number, 1 of the variant
}

PageTextWriter::PageTextWriter(const std::filesystem::path& folder)
    : temporary_(folder / "pagetext.tmp") {
  waiting_.emplace(temporary_);
  written_.open(temporary_, std::ios::binary);
  std::filesystem::remove(temporary_);  // gone with the process, however it ends
}

void PageTextWriter::Add(const std::vector<PageToken>& tokens) {
  for (const PageToken& token : tokens) {
    waiting_->WriteNumber(uint64_t{token.variant} << 32 | token.number, kWaitingBytes);
  }
  tokens_ += tokens.size();
}

uint64_t PageTextWriter::Finish(const std::filesystem::path& path, const ReservedEntries& reserved,
                                const std::vector<uint32_t>& order, size_t tokenBytes) {
  waiting_->Close();
  waiting_.reset();
  const uint32_t firstWord = reserved.numbers.limit + 1;
  std::vector<uint32_t> numbers(order.size());
  for (uint32_t place = 0; place < order.size(); ++place) numbers[order[place]] = firstWord + place;

  const size_t variantShift = 8 * (tokenBytes - kTokenVariantWidth);
  OutFile out(path);
  std::vector<char> buffer(kWaitingBytes * 16384);
  while (written_) {
    written_.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    const auto got = static_cast<size_t>(written_.gcount());
    for (size_t i = 0; i + kWaitingBytes <= got; i += kWaitingBytes) {
      uint32_t number = 0;
      memcpy(&number, &buffer[i], sizeof number);
      number = number >= kWordBase ? numbers[number - kWordBase] : reserved.finals[number];
      const auto variant = static_cast<unsigned char>(buffer[i + sizeof number]);
      out.WriteNumber(number | uint64_t{variant} << variantShift, tokenBytes);
    }
  }
  if (out.size() != tokens_ * tokenBytes) {
    throw IndexError(ExitStatus::kFailed, "Cannot read the temporary file " + temporary_.string() +
                                              " back. Check the disk it lies on.");
  }
  written_.close();
  return out.Finish();
}

}  // namespace vela::indexer
