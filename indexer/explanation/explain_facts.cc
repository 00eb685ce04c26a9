#include "indexer/explanation/explain_facts.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "indexer/collect/site_habits.h"
#include "indexer/explanation/wording.h"
#include "indexer/extract/declared_facts.h"
#include "indexer/extract/page_date.h"
#include "indexer/extract/read_page.h"
#include "indexer/words/lower_copy.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

std::string_view CharsetOriginText(CharsetOrigin origin) {
  constexpr std::string_view kTexts[] = {
      "",
      "its byte-order mark says so",
      "the bytes are text as such",
      "the server says so",
      "the page says so",
      "the page switches to it",
      "nothing else is said, and the bytes are valid as such",
      "a guess from its bytes, as nothing is said that fits them",
      "the last resort, as nothing else fits its bytes",
  };
  return kTexts[static_cast<size_t>(origin)];
}

// With the meta element that it is from.
std::string DescriptionText(const PageContent& content) {
  if (content.description.empty()) return "none";
  const auto from = std::ranges::find(content.metas, content.description, &MetaElement::second);
  const std::string text = Quoted(content.description);
  return from == content.metas.end() ? text : text + ": " + from->first;
}

void ExplainDate(const Page& page, const SiteConfig& config, Explanation& said) {
  constexpr std::pair<DateSource, const char*> kSources[] = {
      {DateSource::kMeta, "what the page declares (meta)"},
      {DateSource::kTime, "its first time element (time)"},
      {DateSource::kFile, "its file (file)"},
  };
  std::string tried;
  for (const DateSource source : config.dates) {
    const char* text =
        std::ranges::find(kSources, source, [](const auto& each) { return each.first; })->second;
    const int64_t time = PageDate(page.content, page.facts.fileTime, {source});
    if (time == 0) {
      tried += tried.empty() ? "" : ", ";
      tried += text;
      continue;
    }
    std::string date = DateText(time) + ": from " + text;
    if (source == DateSource::kFile && !config.trustsFileDates) {
      date += ", unless most files were changed on one day";
    }
    said.Add("Date", date);
    return;
  }
  said.Add("Date", tried.empty() ? "none is looked for (dates)" : "none in " + tried);
}

}  // namespace

void ExplainFile(const SourceItem& item, const FileContent& file, const Options& options,
                 Explanation& said) {
  std::string from = "from the web, as the last run has fetched it";
  if (!options.warc.empty()) from = "from an archive (--warc)";
  if (!options.site.empty()) {
    from = (fs::path(options.site) / (item.file.empty() ? item.path : item.file)).string();
  }
  if (file.size != 0) from += ", " + BytesText(file.size);
  if (file.modifiedTime != 0) from += ", changed " + DateText(file.modifiedTime);
  said.Add("Source", from);
  if (item.path != item.address) said.Add("Address", item.address);
  std::string type(kFileTypeEndings[static_cast<size_t>(item.type)].key);
  type += item.mediaType.empty() ? ", by the ending of its name"
                                 : ", as its server says (" + item.mediaType + ")";
  if (item.isXml) type += "; sent as XML";
  if (item.type >= FileType::kPdf) type += "; read by a program of its own, locked in";
  said.Add("Read as", type);
}

void ExplainCharset(const ReadingNotes& notes, Explanation& said) {
  if (notes.charset.empty()) return;
  said.Add("Characters",
           notes.charset + ": " + std::string(CharsetOriginText(notes.charsetOrigin)));
}

void ExplainFacts(const Page& page, const Options& options, Explanation& said) {
  const PageContent& content = page.content;
  const Page seen = AsSeen(options.config.habits, page);
  std::string origin = "its own title";
  if (content.title.empty()) {
    origin = HeadingTitle(content).empty() ? "the name of its file" : "its first heading";
    if (!SaysAnything(content)) origin += ", unless a page has an alternative text for it";
  }
  if (seen.facts.title != page.facts.title) {
    origin += ", where it is " + Quoted(page.facts.title) + " (site_name)";
  }
  said.Add("Title", Quoted(seen.facts.title) + ": " + origin);
  said.Add("Description", DescriptionText(content));
  std::string language = page.facts.language + ": the page says so";
  PageContent silent;
  silent.metas = content.metas;
  if (page.facts.language.empty()) {
    language = options.config.recognisesLanguages
                   ? "not known: the page names none, and its text is too short or mixed"
                   : "the page names none (recognise_languages is off)";
  } else if (content.language.empty() && FactOf(silent, PageFact::kLanguage).empty()) {
    language = page.facts.language + ": recognised from its text";
  }
  said.Add("Language", language);
  ExplainDate(page, options.config, said);
  if (!page.facts.image.empty()) said.Add("Picture", page.facts.image);
  if (!content.markupFault.empty()) {
    said.Add("Remark", FindingText({Reason::kNotWellFormed, {}, {}}) + ": " + content.markupFault);
  }
  said.Add("Robots", options.site.empty() ? "neither the page nor its server forbids to find it"
                                          : "the page does not forbid to find it");
}

void ExplainFields(const Page& page, const std::vector<FieldRule>& fields,
                   const std::vector<Finding>& faults, Explanation& said) {
  std::vector<std::string> details;
  for (const FieldRule& field : fields) {
    const std::string_view value = MetaContent(page.content, LowerUtf8Copy(field.meta));
    std::string text = field.name + ": ";
    text += value.empty() ? "nothing, as the page has no " + field.meta
                          : Quoted(Excerpt(std::string(value))) + " (" + field.meta + ")";
    for (const Finding& fault : faults) {
      if (fault.where != field.name) continue;
      text += "; left out: " + Quoted(Excerpt(fault.subject)) + ", " +
              std::string(ReasonText(fault.reason));
    }
    details.push_back(std::move(text));
  }
  said.AddList("Fields", " in the configuration", std::move(details));
  std::vector<std::string> declared;
  for (const auto& [name, value] : page.content.metas) {
    declared.push_back(name + " = " + Quoted(Excerpt(value)));
  }
  said.AddList("Declared", " for fields to take, no text of the page", std::move(declared));
}

}  // namespace vela::indexer
