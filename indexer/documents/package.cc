#include "indexer/documents/package.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

namespace vela::indexer {

namespace {

// More parts than any document has.
constexpr size_t kPartLimit = 50000;
// What an entry of an archive costs beside its content.
constexpr size_t kEntryBytes = 512;

// Takes the whole content of the entry at hand.
Reason Unpack(struct archive* archive, ReadingBudget& budget, std::string& part) {
  std::array<char, size_t{1} << 16> portion;
  for (;;) {
    const la_ssize_t got = archive_read_data(archive, portion.data(), portion.size());
    if (got == 0) return Reason::kNone;
    if (got < 0) return Reason::kDamaged;
    const auto bytes = static_cast<size_t>(got);
    if (!TakeSteps(budget, bytes) || !TakeBytes(budget, bytes)) return budget.status;
    part.append(portion.data(), bytes);
  }
}

}  // namespace

Reason Package::Open(std::string_view zip, bool (*isWanted)(std::string_view name),
                     ReadingBudget& budget) {
  const std::unique_ptr<struct archive, decltype(&archive_read_free)> archive(archive_read_new(),
                                                                              &archive_read_free);
  if (archive == nullptr) throw std::bad_alloc();
  if (archive_read_support_format_zip_seekable(archive.get()) != ARCHIVE_OK ||
      archive_read_open_memory(archive.get(), zip.data(), zip.size()) != ARCHIVE_OK) {
    return Reason::kDamaged;
  }
  for (size_t count = 0;; ++count) {
    struct archive_entry* entry = nullptr;
    const int result = archive_read_next_header(archive.get(), &entry);
    if (result == ARCHIVE_EOF) break;
    if (result < ARCHIVE_WARN) return Reason::kDamaged;
    if (count == kPartLimit) return Reason::kMarkupTooLarge;
    if (!TakeSteps(budget, 1) || !TakeBytes(budget, kEntryBytes)) return budget.status;
    const char* name = archive_entry_pathname_utf8(entry);
    if (name == nullptr || archive_entry_filetype(entry) != AE_IFREG || !isWanted(name)) continue;
    if (archive_entry_is_encrypted(entry) != 0) return Reason::kEncrypted;
    const auto [part, isNew] = parts_.try_emplace(name);
    if (!isNew) continue;
    const Reason reason = Unpack(archive.get(), budget, part->second);
    if (reason != Reason::kNone) return reason;
  }
  return parts_.empty() ? Reason::kDamaged : Reason::kNone;
}

std::string_view Package::Part(std::string_view name) const {
  const auto found = parts_.find(name);
  return found == parts_.end() ? std::string_view() : std::string_view(found->second);
}

std::string ResolvePart(std::string_view from, std::string_view reference) {
  std::string at;
  if (reference.starts_with('/')) {
    reference.remove_prefix(1);
  } else if (const size_t slash = from.rfind('/'); slash != from.npos) {
    at = from.substr(0, slash);
  }
  while (!reference.empty()) {
    const size_t end = std::min(reference.find('/'), reference.size());
    const std::string_view name = reference.substr(0, end);
    reference.remove_prefix(std::min(end + 1, reference.size()));
    if (name == "..") {
      if (at.empty()) return {};
      const size_t slash = at.rfind('/');
      at.resize(slash == at.npos ? 0 : slash);
    } else if (!name.empty() && name != ".") {
      at.append(at.empty() ? "" : "/").append(name);
    }
  }
  return at;
}

}  // namespace vela::indexer
