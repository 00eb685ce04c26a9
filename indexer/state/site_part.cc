#include "indexer/state/site_part.h"

#include <charconv>
#include <system_error>
#include <utility>

#include "indexer/state/page_row.h"
#include "indexer/state/text_list.h"

namespace vela::indexer {

namespace {

void AppendLeftOut(const LeftOut& leftOut, std::string& text) {
  AppendNumber(static_cast<int64_t>(leftOut.entries.size()), text);
  for (const LeftOut::Entry& entry : leftOut.entries) {
    AppendText(ReasonCode(entry.reason), text);
    AppendText(entry.path, text);
    AppendText(entry.where, text);
    AppendText(entry.value, text);
  }
}

bool TakeLeftOut(std::string_view& text, LeftOut& leftOut) {
  const std::optional<int64_t> count = TakeNumberText(text);
  for (int64_t i = 0; i < count.value_or(0); ++i) {
    const std::optional<Reason> reason = ReasonOfCode(TakeText(text).value_or("?"));
    const std::optional<std::string> path = TakeText(text);
    const std::optional<std::string> where = TakeText(text);
    const std::optional<std::string> value = TakeText(text);
    if (!reason.has_value() || !path.has_value() || !where.has_value() || !value.has_value()) {
      return false;
    }
    AddLeftOut(leftOut, *reason, *path, *where, *value);
  }
  return count.has_value();
}

void AppendTexts(const std::vector<std::string>& texts, std::string& text) {
  AppendNumber(static_cast<int64_t>(texts.size()), text);
  for (const std::string& each : texts) AppendText(each, text);
}

bool TakeTexts(std::string_view& text, std::vector<std::string>& texts) {
  const std::optional<int64_t> count = TakeNumberText(text);
  for (int64_t i = 0; i < count.value_or(0); ++i) {
    std::optional<std::string> each = TakeText(text);
    if (!each.has_value()) return false;
    texts.push_back(std::move(*each));
  }
  return count.has_value();
}

void AppendLook(const SiteLook& look, std::string& text) {
  AppendNumber(static_cast<int64_t>(look.languages.size()), text);
  for (const auto& [code, pages] : look.languages) {
    AppendText(code, text);
    AppendNumber(static_cast<int64_t>(pages), text);
  }
  AppendTexts(look.habits.names, text);
  AppendText(look.habits.sharedTitle, text);
  AppendNumber(static_cast<int64_t>(look.habits.repeatedTexts.size()), text);
  for (const uint64_t hash : look.habits.repeatedTexts) {
    AppendNumber(static_cast<int64_t>(hash), text);
  }
  AppendTexts(look.repeatedTexts, text);
}

bool TakeLook(std::string_view& text, SiteLook& look) {
  const std::optional<int64_t> languages = TakeNumberText(text);
  for (int64_t i = 0; i < languages.value_or(0); ++i) {
    const std::optional<std::string> code = TakeText(text);
    const std::optional<int64_t> pages = TakeNumberText(text);
    if (!code.has_value() || !pages.has_value() || *pages < 0) return false;
    look.languages[*code] = static_cast<size_t>(*pages);
  }
  if (!languages.has_value() || !TakeTexts(text, look.habits.names)) return false;
  std::optional<std::string> sharedTitle = TakeText(text);
  const std::optional<int64_t> hashes = TakeNumberText(text);
  if (!sharedTitle.has_value() || !hashes.has_value()) return false;
  look.habits.sharedTitle = std::move(*sharedTitle);
  for (int64_t i = 0; i < *hashes; ++i) {
    const std::optional<int64_t> hash = TakeNumberText(text);
    if (!hash.has_value()) return false;
    look.habits.repeatedTexts.push_back(static_cast<uint64_t>(*hash));
  }
  return TakeTexts(text, look.repeatedTexts);
}

void AppendFingerprint(const Fingerprint& fingerprint, std::string& text) {
  AppendNumber(static_cast<int64_t>(fingerprint.high), text);
  AppendNumber(static_cast<int64_t>(fingerprint.low), text);
}

bool ReadAll(std::string_view text, PartNotes& notes) {
  const std::optional<int64_t> number = TakeNumberText(text);
  const std::optional<int64_t> count = TakeNumberText(text);
  const std::optional<int64_t> high = TakeNumberText(text);
  const std::optional<int64_t> low = TakeNumberText(text);
  std::optional<std::string> base = TakeText(text);
  if (!TakeLook(text, notes.look)) return false;
  std::optional<std::string> sought = TakeText(text);
  if (!number.has_value() || !count.has_value() || !high.has_value() || !low.has_value() ||
      !base.has_value() || !sought.has_value() || *number < 1 || *number > *count ||
      *count > int64_t{kPartLimit}) {
    return false;
  }
  notes.part = {.number = static_cast<uint32_t>(*number), .count = static_cast<uint32_t>(*count)};
  notes.list = {.high = static_cast<uint64_t>(*high), .low = static_cast<uint64_t>(*low)};
  notes.base = std::move(*base);
  notes.listing.sought = std::move(*sought);
  if (!TakeLeftOut(text, notes.listing.leftOut) || !TakeLeftOut(text, notes.listing.otherKinds)) {
    return false;
  }
  while (!text.empty()) {
    const std::optional<Reason> reason = ReasonOfCode(TakeText(text).value_or("?"));
    std::optional<std::string> where = TakeText(text);
    std::optional<std::string> subject = TakeText(text);
    if (!reason.has_value() || !where.has_value() || !subject.has_value()) return false;
    notes.listing.unused.push_back({*reason, std::move(*where), std::move(*subject)});
  }
  return true;
}

}  // namespace

std::optional<PartNumber> ReadPartNumber(std::string_view text) {
  PartNumber part;
  const char* end = text.data() + text.size();
  const auto number = std::from_chars(text.data(), end, part.number);
  if (number.ec != std::errc() || number.ptr == end || *number.ptr != '/') return {};
  const auto count = std::from_chars(number.ptr + 1, end, part.count);
  if (count.ec != std::errc() || count.ptr != end) return {};
  if (part.number < 1 || part.number > part.count || part.count > kPartLimit) return {};
  return part;
}

Fingerprint ListFingerprintOf(const ItemList& items) {
  ListFingerprint list;
  for (const SourceItem& item : items) list.Add(ItemFingerprint(item));
  return list.Finish();
}

void KeepPart(const PartNumber& part, ItemList& items) {
  items.KeepIf([&](const SourceItem& item) {
    return FingerprintOf(item.path).low % part.count == part.number - 1;
  });
}

std::string PartText(const PartNotes& notes) {
  std::string text;
  AppendNumber(notes.part.number, text);
  AppendNumber(notes.part.count, text);
  AppendFingerprint(notes.list, text);
  AppendText(notes.base, text);
  AppendLook(notes.look, text);
  AppendText(notes.listing.sought, text);
  AppendLeftOut(notes.listing.leftOut, text);
  AppendLeftOut(notes.listing.otherKinds, text);
  for (const Finding& finding : notes.listing.unused) {
    AppendText(ReasonCode(finding.reason), text);
    AppendText(finding.where, text);
    AppendText(finding.subject, text);
  }
  return text;
}

bool ReadPartText(std::string_view text, PartNotes& notes) {
  notes = PartNotes();
  // What stands twice in a list, or in another order, is noticed, too.
  if (ReadAll(text, notes) && PartText(notes) == text) return true;
  notes = PartNotes();
  return false;
}

}  // namespace vela::indexer
