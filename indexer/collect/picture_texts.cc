#include "indexer/collect/picture_texts.h"

#include <algorithm>
#include <unordered_set>

#include "indexer/collect/number_table.h"
#include "indexer/site/address.h"
#include "indexer/site/canonical_addresses.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace {

bool IsCalledPicture(std::string_view address, const FileEndings& endings) {
  const size_t dot = address.rfind('.');
  if (dot == address.npos) return false;
  const std::string ending = LowerAsciiCopy(address.substr(dot + 1));
  const auto& ofPictures = endings[static_cast<size_t>(FileType::kPicture)];
  return std::ranges::find(ofPictures, ending) != ofPictures.end();
}

}  // namespace

std::vector<PictureText> PictureTextsOf(const Page& page, const std::string& base,
                                        const FileEndings& endings) {
  std::vector<PictureText> texts;
  std::unordered_set<uint64_t> known;
  for (const PagePicture& picture : page.content.pictures) {
    if (texts.size() == kPageTextsLimit) break;
    const std::string_view address =
        std::string_view(picture.address).substr(0, picture.address.find('?'));
    if (!IsCalledPicture(address, endings) || !IsBelow(address, base)) continue;
    const uint64_t print = AddressPrint(InSpellingOf(base, address));
    if (!known.insert(print ^ TextHash(picture.text)).second) continue;
    texts.push_back({.picture = print, .text = picture.text});
  }
  return texts;
}

void PictureTexts::AddPicture(std::string_view address) {
  const auto place = static_cast<uint32_t>(texts_.size());
  if (places_.TryAdd(AddressPrint(address), place).second) texts_.emplace_back();
}

void PictureTexts::Add(std::span<const PictureText> texts) {
  for (const PictureText& each : texts) {
    const uint32_t* const place = places_.Find(each.picture);
    if (place == nullptr) continue;
    std::vector<std::string>& known = texts_[*place];
    if (known.size() == kMostTexts || each.text.size() > mostBytes_ - bytes_) continue;
    if (std::ranges::find(known, each.text) != known.end()) continue;
    known.push_back(each.text);
    bytes_ += each.text.size();
    ++count_;
  }
}

std::span<const std::string> PictureTexts::Of(std::string_view address) const {
  const uint32_t* const place = places_.Find(AddressPrint(address));
  if (place == nullptr) return {};
  return texts_[*place];
}

}  // namespace vela::indexer
