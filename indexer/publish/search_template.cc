#include "indexer/publish/search_template.h"

#include <filesystem>

#include "indexer/config/built_in_template.h"
#include "indexer/config/embedded_files.h"
#include "indexer/config/owner_file.h"
#include "indexer/publish/open_search.h"
#include "indexer/report/index_error.h"

namespace vela::indexer {

namespace {

// Takes out the line that links to the description of the search.
void RemoveOpenSearchLink(std::string& page) {
  const size_t at = page.find(kOpenSearchName);
  if (at == page.npos) return;
  const size_t begin = page.rfind('\n', at) + 1;
  page.erase(begin, page.find('\n', at) + 1 - begin);
}

[[noreturn]] void RefuseUnknown(const std::string& name) {
  std::string text = "There is no template " + name + ". Give one of ";
  for (const std::string_view each : BuiltInTemplates()) text.append(each).append(", ");
  throw IndexError(ExitStatus::kFailed, text + "or the path of a file that can be read.");
}

constexpr std::string_view kMetaCharset = "<meta charset=\"";

// What stands between `opening`, from `at` on, and the next quote.
std::string_view QuotedBehind(std::string_view page, std::string_view opening, size_t at = 0) {
  const size_t begin = page.find(opening, at);
  if (begin == page.npos) return {};
  page.remove_prefix(begin + opening.size());
  return page.substr(0, page.find('"'));
}

// The set that the template was written in; UTF-8 where it names none that is known.
IndexCharset CharsetOf(std::string_view page) {
  try {
    return IndexCharset(std::string(QuotedBehind(page, kMetaCharset)));
  } catch (const IndexError&) {
    return {};
  }
}

}  // namespace

std::string LoadTemplate(const std::string& name, const TemplateWords& words, bool openSearch,
                         const IndexCharset& charset) {
  if (!IsBuiltInTemplate(name)) {
    std::error_code error;
    if (!std::filesystem::exists(name, error)) RefuseUnknown(name);
    return ReadOwnersFile(name, "--template");
  }
  const EmbeddedFile* file = FindEmbeddedFile(BuiltInTemplateFile(name));
  if (file == nullptr) {
    throw IndexError(ExitStatus::kUsage, "This vela_index was built without the template \"" +
                                             name + "\". Give --template default or a file.");
  }
  std::string page = FillTemplateWords(file->content, words);
  if (!openSearch) RemoveOpenSearchLink(page);
  std::string content = charset.WithReferences(page);
  const std::string_view named = QuotedBehind(content, kMetaCharset);
  if (!charset.utf8() && !named.empty()) {
    content.replace(static_cast<size_t>(named.data() - content.data()), named.size(),
                    charset.name());
  }
  return content;
}

std::string_view UnchangedTemplate(std::string_view page) {
  const IndexCharset charset = CharsetOf(page);
  const bool openSearch = page.find(kOpenSearchName) != page.npos;
  for (const std::string_view language : BuiltInLanguages()) {
    const TemplateWords words = LoadLanguage(std::string(language)).templateWords;
    for (const std::string_view name : BuiltInTemplates()) {
      if (LoadTemplate(std::string(name), words, openSearch, charset) == page) return name;
    }
  }
  return {};
}

std::string_view TemplateLanguage(std::string_view page) {
  const size_t html = page.find("<html");
  if (html == page.npos) return {};
  return QuotedBehind(page.substr(0, page.find('>', html)), " lang=\"", html);
}

std::string FillTemplateWords(std::string_view page, const TemplateWords& words) {
  constexpr std::string_view kOpen = "{{";
  constexpr std::string_view kClose = "}}";
  std::string filled;
  while (true) {
    const size_t open = page.find(kOpen);
    const size_t close = page.find(kClose, open);
    if (close == page.npos) return filled.append(page);
    const size_t begin = open + kOpen.size();
    const auto word = words.find(page.substr(begin, close - begin));
    if (word == words.end()) {
      filled.append(page.substr(0, begin));
      page.remove_prefix(begin);
    } else {
      filled.append(page.substr(0, open)).append(word->second);
      page.remove_prefix(close + kClose.size());
    }
  }
}

}  // namespace vela::indexer
