#include "inspector/show/page_name.h"

#include <algorithm>
#include <charconv>

#include "inspector/findings/plain_text.h"
#include "text/ascii.h"
#include "text/shown_numbers.h"

namespace vela::inspector {

namespace {

// The address as a browser shows it: the page data has it safe for HTML.
std::string TypedAddress(std::string_view stored) {
  std::string typed;
  while (!stored.empty()) {
    constexpr std::string_view kAmpersands[] = {"&amp;", "&#38;"};
    const auto* reference = std::ranges::find_if(
        kAmpersands, [&](std::string_view each) { return stored.starts_with(each); });
    typed += stored[0];
    stored.remove_prefix(reference == std::end(kAmpersands) ? 1 : reference->size());
  }
  return typed;
}

struct PagesOfAddress {
  std::optional<uint32_t> whole;  // has the very address
  std::optional<uint32_t> first;  // the first whose address ends so
  uint64_t ending = 0;            // how many end so
};

PagesOfAddress FindAddress(const OpenedIndex& index, std::string_view address) {
  PagesOfAddress found;
  for (uint32_t page = 0; page < PageCount(index); ++page) {
    const std::string typed = TypedAddress(TextsOf(index, page).url);
    if (typed == address) {
      found.whole = page;
      return found;
    }
    if (!typed.ends_with(address)) continue;
    if (found.ending++ == 0) found.first = page;
  }
  return found;
}

}  // namespace

std::optional<uint32_t> FindPage(const OpenedIndex& index, std::string_view name) {
  if (name.empty()) return {};
  if (std::ranges::all_of(name, IsDigit)) {
    uint32_t page = 0;
    const auto read = std::from_chars(name.data(), name.data() + name.size(), page);
    if (read.ec != std::errc() || page >= PageCount(index)) return {};
    return page;
  }
  const PagesOfAddress found = FindAddress(index, name);
  if (found.whole.has_value()) return found.whole;
  return found.ending == 1 ? found.first : std::nullopt;
}

std::string PageName(const OpenedIndex& index, uint32_t page) {
  return "page " + std::to_string(page) + ", " + Printable(TextsOf(index, page).url);
}

std::string NoPageText(const OpenedIndex& index, std::string_view name) {
  if (!name.empty() && std::ranges::all_of(name, IsDigit)) {
    return "There is no page " + Printable(name) + ": the index has " +
           CountOfText(PageCount(index), "page", "pages") + ", counted from 0.";
  }
  const PagesOfAddress found = FindAddress(index, name);
  if (found.ending > 1) {
    return CountText(found.ending) + " pages have an address that ends in " + Quoted(name) +
           ". Give more of it.";
  }
  return "The index has no page of the address " + Quoted(name) +
         ". What vela_index left out, such as a copy of another page, and why, stands in the file "
         "of its --report.";
}

}  // namespace vela::inspector
