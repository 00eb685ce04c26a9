#include "indexer/extract/page_bytes.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "index/byte_cursor.h"
#include "indexer/words/clean_text.h"
#include "text/ascii.h"

namespace vela::indexer {

namespace {

constexpr size_t kCountWidth = 4;
constexpr uint8_t kLowestHeading = 6;

void WriteCount(size_t count, std::string& out) {
  for (size_t i = 0; i < kCountWidth; ++i) out += static_cast<char>(count >> (8 * i));
}

void WriteText(std::string_view text, std::string& out) {
  WriteCount(text.size(), out);
  out += text;
}

size_t TakeCount(ByteCursor& cursor) {
  return static_cast<size_t>(TakeLittleEndian(cursor, kCountWidth));
}

void TakeText(ByteCursor& cursor, std::string& text) {
  const std::string_view taken = Take(cursor, TakeCount(cursor));
  if (std::ranges::any_of(taken, IsControl) || !IsValidUtf8(taken)) cursor.bad = true;
  text = taken;
}

bool IsBlank(std::string_view text) { return text.find_first_not_of(' ') == text.npos; }

// The one-line texts of a page, in their order.
constexpr std::string PageContent::*kTexts[] = {
    &PageContent::title, &PageContent::description, &PageContent::canonical,
    &PageContent::base,  &PageContent::time,        &PageContent::markupFault,
};

void TakePage(ByteCursor& cursor, PageContent& page) {
  for (const auto text : kTexts) TakeText(cursor, page.*text);
  for (size_t left = TakeCount(cursor); left != 0 && !cursor.bad; --left) {
    MetaElement& meta = page.metas.emplace_back();
    TakeText(cursor, meta.first);
    TakeText(cursor, meta.second);
    if (meta.first.empty() || meta.second.empty()) cursor.bad = true;
  }
  for (size_t left = TakeCount(cursor); left != 0 && !cursor.bad; --left) {
    TextRun& run = page.body.emplace_back();
    run.headingLevel = static_cast<uint8_t>(TakeLittleEndian(cursor, 1));
    TakeText(cursor, run.anchor);
    TakeText(cursor, run.text);
    if (run.headingLevel > kLowestHeading || IsBlank(run.text)) cursor.bad = true;
  }
}

}  // namespace

bool IsReasonOfReader(Reason reason) {
  return reason == Reason::kNotConverted || reason == Reason::kNoindex ||
         reason == Reason::kNoMemory || reason == Reason::kEncrypted ||
         reason == Reason::kDamaged || reason == Reason::kMarkupTooSlow ||
         reason == Reason::kMarkupTooLarge;
}

std::string PageBytes(Reason reason, const PageContent& page) {
  std::string out(1, static_cast<char>(reason));
  if (reason != Reason::kNone) return out;
  for (const auto text : kTexts) WriteText(page.*text, out);
  WriteCount(page.metas.size(), out);
  for (const auto& [name, content] : page.metas) {
    WriteText(name, out);
    WriteText(content, out);
  }
  WriteCount(page.body.size(), out);
  for (const TextRun& run : page.body) {
    out += static_cast<char>(run.headingLevel);
    WriteText(run.anchor, out);
    WriteText(run.text, out);
  }
  return out;
}

bool ReadPageBytes(std::string_view bytes, Reason& reason, PageContent& page) {
  page = PageContent();
  ByteCursor cursor{bytes};
  reason = static_cast<Reason>(TakeLittleEndian(cursor, 1));
  if (reason == Reason::kNone) {
    TakePage(cursor, page);
  } else if (!IsReasonOfReader(reason)) {
    cursor.bad = true;
  }
  if (!cursor.bad && cursor.rest.empty()) return true;
  page = PageContent();
  return false;
}

}  // namespace vela::indexer
