#include "output/section_links.h"

#include "text/ascii.h"
#include "text/percent_code.h"

namespace vela {

namespace {

// What may stand in a fragment as it is, in an attribute and in XML, too. Viewers of PDF files look
// for "page=7".
bool IsPlainInFragment(char c) {
  return IsAlphaNumeric(c) || std::string_view("-._~:=").find(c) != std::string_view::npos;
}

// False, and the address as it was, when it has a fragment or no room.
bool AppendFragment(LinkText& target, std::string_view anchor) {
  if (View(target).find('#') != std::string_view::npos) return false;
  LinkText longer = target;
  Append(longer, "#");
  size_t length = View(longer).size();
  for (const char c : anchor) {
    if (IsPlainInFragment(c)) {
      Append(longer, {&c, 1});
      ++length;
    } else {
      const PercentCode code(c);
      Append(longer, code.view());
      length += code.view().size();
    }
  }
  if (View(longer).size() != length) return false;
  target = longer;
  return true;
}

bool IsTextBetweenTags(std::string_view text) { return text.find_first_of("<>\"'") == text.npos; }

}  // namespace

void LeadToSection(const ResultBlocks& blocks, Result& result) {
  if (result.plan != nullptr && !result.plan->isInText) return;
  const uint64_t position =
      result.plan != nullptr ? result.plan->answer : result.entry.firstPosition;
  PageSection section;
  if (!blocks.files.sections.Find(position, section) ||
      !AppendFragment(result.target, section.anchor)) {
    return;
  }
  if (IsTextBetweenTags(section.heading) && section.heading != result.texts.title) {
    result.sectionHeading = section.heading;
  }
}

}  // namespace vela
