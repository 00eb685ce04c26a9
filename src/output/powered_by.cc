#include "output/powered_by.h"

namespace vela {

namespace {

constexpr char kProductHomePage[] = "https://vela-search.example/";

}  // namespace

void AppendPoweredBy(OutputSections& sections, const Settings& settings) {
  if (settings.VelaInfo != 1) return;
  AppendSection(sections, Section::kPageNumbers, "\n<center><p><small>%s <a href=\"",
                Text(settings.language, Str::kPoweredBy));
  AppendSectionRaw(sections, Section::kPageNumbers, kProductHomePage);
  AppendSectionRaw(sections, Section::kPageNumbers,
                   "\" target=\"_blank\"><b>Vela Search Engine</b></a></small></p></center>\n");
}

}  // namespace vela
