#include "indexer/documents/compound_file.h"

#include <algorithm>
#include <utility>

namespace vela::indexer {

namespace {

constexpr std::string_view kBegin = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr size_t kHeaderBytes = 512;
constexpr size_t kFirstTableSectors = 109;
constexpr uint32_t kNoSector = 0xFFFFFFFA;  // from here on
constexpr size_t kEntryBytes = 128;
constexpr size_t kNameBytes = 64;
constexpr uint32_t kFolder = 1;
constexpr uint32_t kStream = 2;
constexpr uint32_t kRoot = 5;

}  // namespace

uint32_t NumberAt(std::string_view bytes, size_t offset, size_t width) {
  uint32_t number = 0;
  for (size_t i = 0; i < width && offset < bytes.size() && i < bytes.size() - offset; ++i) {
    number |= uint32_t{static_cast<unsigned char>(bytes[offset + i])} << (8 * i);
  }
  return number;
}

std::string_view CompoundFile::Sector(uint32_t number) const {
  const uint64_t begin = (uint64_t{number} + 1) * sectorBytes_;
  // The last one may be cut where its stream ends.
  return begin < bytes_.size() ? bytes_.substr(begin, sectorBytes_) : std::string_view();
}

std::string CompoundFile::Chain(Extent extent, ReadingBudget& budget) const {
  std::string all;
  // It cannot be longer than the file: where sectors lead back to one another, it ends there.
  const size_t wanted = std::min<size_t>(extent.bytes, bytes_.size());
  if (!TakeBytes(budget, wanted)) return all;
  for (uint32_t at = extent.first; at < next_.size() && all.size() < wanted; at = next_[at]) {
    const std::string_view sector = Sector(at);
    if (sector.empty() || !TakeSteps(budget, sector.size())) break;
    all.append(sector.substr(0, wanted - all.size()));
  }
  return all;
}

std::string CompoundFile::SmallChain(Extent extent, ReadingBudget& budget) const {
  std::string all;
  const size_t wanted = std::min<size_t>(extent.bytes, smallSectors_.size());
  if (!TakeBytes(budget, wanted)) return all;
  const size_t known = smallNext_.size() / 4;
  for (uint32_t at = extent.first; at < known && all.size() < wanted;
       at = NumberAt(smallNext_, size_t{at} * 4, 4)) {
    const uint64_t begin = uint64_t{at} * smallSectorBytes_;
    if (begin >= smallSectors_.size() || !TakeSteps(budget, smallSectorBytes_)) break;
    all.append(smallSectors_, begin, std::min(smallSectorBytes_, wanted - all.size()));
  }
  return all;
}

Reason CompoundFile::Open(std::string_view bytes, ReadingBudget& budget) {
  bytes_ = bytes;
  const uint32_t shift = NumberAt(bytes, 30, 2);
  const uint32_t smallShift = NumberAt(bytes, 32, 2);
  if (!bytes.starts_with(kBegin) || bytes.size() < kHeaderBytes || shift < 9 || shift > 12 ||
      smallShift < 4 || smallShift >= shift) {
    return Reason::kDamaged;
  }
  sectorBytes_ = size_t{1} << shift;
  smallSectorBytes_ = size_t{1} << smallShift;
  smallStreams_ = NumberAt(bytes, 56, 4);

  // The table has no more entries than the file has sectors.
  const size_t sectors = bytes.size() / sectorBytes_;
  if (!TakeBytes(budget, sectors * sizeof next_[0])) return budget.status;
  next_.reserve(sectors);
  const auto addTable = [&](uint32_t number) {
    const std::string_view table = Sector(number);
    for (size_t at = 0; at + 4 <= table.size() && next_.size() < sectors; at += 4) {
      next_.push_back(NumberAt(table, at, 4));
    }
    return table.size() >= sizeof next_[0] && next_.size() < sectors;
  };
  bool goesOn = true;
  for (size_t i = 0; i < kFirstTableSectors && goesOn; ++i) {
    goesOn = addTable(NumberAt(bytes, 76 + 4 * i, 4));
  }
  // Each of these adds to the table, and so they end.
  for (uint32_t at = NumberAt(bytes, 68, 4); at < kNoSector && goesOn;) {
    const std::string_view more = Sector(at);
    if (more.size() < sectorBytes_) break;
    for (size_t i = 0; i + 4 < sectorBytes_ && goesOn; i += 4) {
      goesOn = addTable(NumberAt(more, i, 4));
    }
    at = NumberAt(more, sectorBytes_ - 4, 4);
  }

  const std::string directory =
      Chain({.first = NumberAt(bytes, 48, 4), .bytes = UINT32_MAX}, budget);
  const auto entryAt = [&directory](uint32_t number) {
    const uint64_t begin = uint64_t{number} * kEntryBytes;
    if (begin + kEntryBytes > directory.size()) return std::string_view();
    return std::string_view(directory).substr(begin, kEntryBytes);
  };
  const std::string_view root = entryAt(0);
  if (NumberAt(root, 66, 1) != kRoot) return Reason::kDamaged;
  // A tree for each folder. What is embedded has streams of the same names, in folders of its own.
  struct Place {
    uint32_t number = 0;
    std::string folder;  // "" or, in UTF-16, "FOLDER/"
  };
  std::vector<bool> isSeen(directory.size() / kEntryBytes);
  std::vector<Place> waiting = {{.number = NumberAt(root, 76, 4), .folder = {}}};
  while (!waiting.empty() && TakeSteps(budget, 1)) {
    const Place place = std::move(waiting.back());
    waiting.pop_back();
    if (place.number >= isSeen.size() || isSeen[place.number]) continue;
    isSeen[place.number] = true;
    const std::string_view entry = entryAt(place.number);
    const uint32_t nameBytes = NumberAt(entry, 64, 2);
    if (!TakeBytes(budget, sizeof(Entry) + 2 * sizeof(Place) + 4 * kNameBytes)) break;
    waiting.push_back({NumberAt(entry, 68, 4), place.folder});
    waiting.push_back({NumberAt(entry, 72, 4), place.folder});
    if (nameBytes < 2 || nameBytes > kNameBytes) continue;
    std::string name = place.folder + std::string(entry.substr(0, nameBytes - 2));
    const uint32_t kind = NumberAt(entry, 66, 1);
    if (kind == kFolder && place.folder.empty()) {
      waiting.push_back({NumberAt(entry, 76, 4), std::move(name) + std::string("/\0", 2)});
    } else if (kind == kStream) {
      entries_.push_back(
          {.name = std::move(name),
           .extent = {.first = NumberAt(entry, 116, 4), .bytes = NumberAt(entry, 120, 4)}});
    }
  }
  smallNext_ = Chain({.first = NumberAt(bytes, 60, 4), .bytes = UINT32_MAX}, budget);
  smallSectors_ = Chain({.first = NumberAt(root, 116, 4), .bytes = NumberAt(root, 120, 4)}, budget);
  return budget.status;
}

std::string CompoundFile::Stream(std::string_view name, ReadingBudget& budget) const {
  std::string wide;
  for (const char c : name) wide.append({c, '\0'});
  const auto found = std::ranges::find(entries_, wide, &Entry::name);
  if (found == entries_.end()) return {};
  return found->extent.bytes < smallStreams_ ? SmallChain(found->extent, budget)
                                             : Chain(found->extent, budget);
}

}  // namespace vela::indexer
