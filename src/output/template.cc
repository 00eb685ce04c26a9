#include "output/template.h"

#include "format/template_file.h"
#include "output/markup.h"
#include "output/xml_document.h"
#include "text/fixed_text.h"

namespace vela {

namespace {

constexpr std::string_view kFormMarker = "<!--VELA_SHOW_SEARCHFORM-->";
constexpr std::string_view kQueryMarker = "<!--VELA_SHOW_QUERY-->";

// A longer line comes in pieces, each treated as a line.
constexpr size_t kLineLimit = 1023;

constexpr Section kFormOrder[] = {
    Section::kJavaScripts,  Section::kFormStart,         Section::kSearchBox,
    Section::kSearchButton, Section::kResultsPerPage,    Section::kMatchOptions,
    Section::kCategories,   Section::kCustomMetaOptions, Section::kDateRange,
    Section::kFormEnd,
};

constexpr Section kBeforeResults[] = {
    Section::kHeading,    Section::kSummary,     Section::kCatSummary, Section::kSuggestion,
    Section::kPagesCount, Section::kRecommended, Section::kSorting,
};

constexpr Section kAfterResults[] = {Section::kPageNumbers, Section::kSearchTime};

template <size_t N>
void WriteSections(Response& response, const PageParts& parts, const Section (&order)[N]) {
  for (Section section : order) WriteRaw(response, SectionText(parts.sections, section));
}

void WriteIncludedFile(Response& response, const IndexDirectory& directory, const char* name) {
  FileImage file;
  if (!file.Open(directory, name, true)) {
    // Kept: the break tag has a backslash (golden output/template_include_missing).
    WriteOut(response, "Error: Failed to include file: %s\n<br \\>", name);
    return;
  }
  LineReader reader{file.bytes()};
  std::string_view line;
  while (ReadLine(reader, kLineLimit, line)) WriteRaw(response, UpToNul(line));
}

void WriteAutoComplete(Response& response, const PageParts& parts) {
  constexpr std::string_view kHandler = "function() { VelaAutoComplete_OnLoad('vela_searchbox');}";
  FixedText<6144> address;
  AppendSafeAddress(address, parts.scriptUrl);
  WriteRaw(response, "<script language=\"javascript\" type=\"text/javascript\">\n");
  WriteOut(response, "var VelaAutoComplete_URL = \"%s?vela_ac=1\";\n", address.bytes);
  WriteIncludedFile(response, parts.directory, "vela_autocomplete.js");
  WriteRaw(response, "if (window.addEventListener) window.addEventListener('load', ");
  WriteRaw(response, kHandler);
  WriteRaw(response, ", false);");
  WriteRaw(response, " else if (window.attachEvent) window.attachEvent('onload', ");
  WriteRaw(response, kHandler);
  WriteRaw(response, ");");
  WriteRaw(response, " else window['onload'] = ");
  WriteRaw(response, kHandler);
  WriteRaw(response, "</script>\n");
  WriteRaw(response, "<style>\n");
  WriteIncludedFile(response, parts.directory, "vela_autocomplete.css");
  WriteRaw(response, "</style>\n");
}

void WriteDatePicker(Response& response, const PageParts& parts) {
  WriteRaw(response, "<style>\n");
  WriteIncludedFile(response, parts.directory, "vela_datepicker.css");
  WriteRaw(response, "</style>\n");
  WriteRaw(response, "<script language=\"javascript\" type=\"text/javascript\">\n");
  WriteIncludedFile(response, parts.directory, "vela_datepicker.js");
  WriteRaw(response, "</script>\n");
}

void WriteHeadScripts(Response& response, const PageParts& parts) {
  if (parts.settings.UseAutoComplete == 1) WriteAutoComplete(response, parts);
  if (SearchesDates(parts.settings)) WriteDatePicker(response, parts);
}

void WriteWholePage(Response& response, const PageParts& parts) {
  WriteSections(response, parts, kFormOrder);
  WriteSections(response, parts, kBeforeResults);
  WriteRaw(response, parts.sections.results.view());
  WriteSections(response, parts, kAfterResults);
}

// Writes what the marker at the start of `text` stands for; the marker's length, 0 for none.
size_t WriteMarker(Response& response, const PageParts& parts, std::string_view text) {
  if (text.starts_with(kWholePageMarker)) {
    WriteWholePage(response, parts);
    return kWholePageMarker.size();
  }
  if (text.starts_with(kFormMarker)) {
    WriteSections(response, parts, kFormOrder);
    return kFormMarker.size();
  }
  if (text.starts_with(kResultsMarker)) {
    WriteRaw(response, parts.sections.results.view());
    return kResultsMarker.size();
  }
  if (text.starts_with(kQueryMarker)) {
    WriteRaw(response, parts.displayQuery);
    return kQueryMarker.size();
  }
  for (size_t i = 0; i < kSectionCount; ++i) {
    if (!text.starts_with(kSectionMarkers[i])) continue;
    WriteRaw(response, SectionText(parts.sections, static_cast<Section>(i)));
    return kSectionMarkers[i].size();
  }
  return 0;
}

// Writes one line of the template. The scripts go in front of what stands with "</head>".
void WriteTemplateLine(Response& response, const PageParts& parts, std::string_view rest,
                       bool& scriptsDue) {
  while (!rest.empty()) {
    if (scriptsDue && rest.find("</head>") != rest.npos) {
      WriteHeadScripts(response, parts);
      scriptsDue = false;
    }
    const size_t marker = rest.find(kTemplateMarkerPrefix);
    WriteRaw(response, rest.substr(0, marker));
    if (marker == rest.npos) return;
    rest.remove_prefix(marker);
    const size_t length = WriteMarker(response, parts, rest);
    if (length == 0) {
      WriteRaw(response, rest);
      return;
    }
    rest.remove_prefix(length);
  }
}

}  // namespace

void FillTemplate(Response& response, const PageParts& parts) {
  if (response.xml) {
    WriteXmlClosing(response);
    return;
  }
  bool scriptsDue = parts.settings.UseAutoComplete == 1 || SearchesDates(parts.settings);
  FileImage file;
  if (!file.Open(parts.directory, kTemplateFileName, true)) {
    WriteRaw(response, "Error: Could not open template file.");
    return;
  }
  LineReader reader{file.bytes()};
  std::string_view line;
  while (ReadLine(reader, kLineLimit, line)) {
    WriteTemplateLine(response, parts, UpToNul(line), scriptsDue);
  }
  if (scriptsDue) WriteHeadScripts(response, parts);
}

}  // namespace vela
