#include "output/sections.h"

#include <cstdarg>

#include "text/numbers.h"

namespace vela {

namespace {

constexpr int32_t kSectionCapacity = 100;
constexpr int32_t kResultBlockSize = 7261;

GrowText& TextOf(OutputSections& sections, Section section) {
  return sections.texts[static_cast<size_t>(section)];
}

}  // namespace

bool AllocateSections(OutputSections& sections, int32_t perPage) {
  for (GrowText& text : sections.texts) {
    if (!text.TryCreate(kSectionCapacity)) return false;
  }
  return sections.results.TryCreate(SaturateToInt32(int64_t{perPage} * kResultBlockSize));
}

int32_t AppendSection(OutputSections& sections, Section section, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t result = TextOf(sections, section).AppendFormatted(format, arguments);
  va_end(arguments);
  return result;
}

int32_t AppendResults(OutputSections& sections, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t result = sections.results.AppendFormatted(format, arguments);
  va_end(arguments);
  return result;
}

int32_t AppendSectionRaw(OutputSections& sections, Section section, std::string_view text) {
  return TextOf(sections, section).AppendRaw(text);
}

int32_t AppendResultsRaw(OutputSections& sections, std::string_view text) {
  return sections.results.AppendRaw(text);
}

void ClearSection(OutputSections& sections, Section section) { TextOf(sections, section).Clear(); }

std::string_view SectionText(const OutputSections& sections, Section section) {
  return sections.texts[static_cast<size_t>(section)].view();
}

}  // namespace vela
