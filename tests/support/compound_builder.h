// compound_builder.h: compound files, as older office programs keep documents in, made of streams.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vela::support {

inline std::string LittleEndian(uint64_t number, size_t width) {
  std::string bytes;
  for (size_t i = 0; i < width; ++i) bytes += static_cast<char>(number >> (8 * i));
  return bytes;
}

// A file with those streams, "NAME" in the root or all "FOLDER/NAME" in one folder. Those of less
// than 4096 bytes lie in small sectors.
inline std::string CompoundOf(const std::vector<std::pair<std::string, std::string>>& streams) {
  constexpr size_t kSector = 512;
  constexpr size_t kSmall = 64;
  constexpr uint32_t kEnd = 0xFFFFFFFE;
  constexpr uint32_t kNone = 0xFFFFFFFF;
  std::string sectors;
  std::vector<uint32_t> next;
  const auto add = [&](std::string bytes) {  // its first sector
    if (bytes.empty()) return kEnd;
    bytes.resize((bytes.size() + kSector - 1) / kSector * kSector);
    const auto first = static_cast<uint32_t>(next.size());
    sectors += bytes;
    for (size_t i = 0; i < bytes.size() / kSector; ++i) {
      next.push_back(static_cast<uint32_t>(next.size()) + 1);
    }
    next.back() = kEnd;
    return first;
  };

  std::string small;
  std::string smallNext;
  const auto entry = [](const std::string& name, char kind, uint32_t right, uint32_t child,
                        uint32_t first, size_t size) {
    std::string bytes;
    for (const char c : name) bytes.append({c, '\0'});
    bytes.resize(64);
    bytes += LittleEndian(static_cast<uint32_t>(2 * name.size() + 2), 2) + kind + '\1';
    bytes += LittleEndian(kNone, 4) + LittleEndian(right, 4) + LittleEndian(child, 4);
    bytes.resize(116);
    return bytes + LittleEndian(first, 4) + LittleEndian(static_cast<uint32_t>(size), 8);
  };
  std::string entries;
  std::string folder;
  uint32_t number = 1;
  for (size_t i = 0; i < streams.size(); ++i) {
    const auto& [path, bytes] = streams[i];
    const size_t slash = path.find('/');
    if (slash != path.npos && folder.empty()) {
      folder = path.substr(0, slash);
      entries += entry(folder, 1, kNone, ++number, 0, 0);
    }
    uint32_t first = kEnd;
    if (bytes.size() >= 4096) {
      first = add(bytes);
    } else if (!bytes.empty()) {
      first = static_cast<uint32_t>(small.size() / kSmall);
      small += bytes;
      small.resize((small.size() + kSmall - 1) / kSmall * kSmall);
      for (uint32_t at = first + 1; at < small.size() / kSmall; ++at) {
        smallNext += LittleEndian(at, 4);
      }
      smallNext += LittleEndian(kEnd, 4);
    }
    const uint32_t right = i + 1 < streams.size() ? number + 1 : kNone;
    entries += entry(slash == path.npos ? path : path.substr(slash + 1), 2, right, kNone, first,
                     bytes.size());
    ++number;
  }
  const size_t smallBytes = small.size();
  const uint32_t smallFirst = add(std::move(small));
  const uint32_t smallTable = add(std::move(smallNext));
  const uint32_t directory =
      add(entry("Root Entry", 5, kNone, 1, smallFirst, smallBytes) + entries);

  // The table stands behind all else and counts itself.
  size_t tables = 1;
  while (tables * (kSector / 4) < next.size() + tables) ++tables;
  const auto firstTable = static_cast<uint32_t>(next.size());
  std::string table;
  for (const uint32_t one : next) table += LittleEndian(one, 4);
  for (size_t i = 0; i < tables; ++i) table += LittleEndian(0xFFFFFFFD, 4);
  while (table.size() < tables * kSector) table += LittleEndian(kNone, 4);

  std::string file = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  file.resize(24);
  file += LittleEndian(62, 2) + LittleEndian(3, 2) + LittleEndian(0xFFFE, 2) + LittleEndian(9, 2) +
          LittleEndian(6, 2);
  file.resize(44);
  file += LittleEndian(static_cast<uint32_t>(tables), 4) + LittleEndian(directory, 4);
  file += LittleEndian(0, 4) + LittleEndian(4096, 4) + LittleEndian(smallTable, 4);
  file += LittleEndian(1, 4) + LittleEndian(kEnd, 4) + LittleEndian(0, 4);
  for (uint32_t i = 0; i < 109; ++i) {
    file += LittleEndian(i < tables ? firstTable + i : kNone, 4);
  }
  return file + sectors + table;
}

}  // namespace vela::support
