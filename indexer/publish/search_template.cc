#include "indexer/publish/search_template.h"

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

}  // namespace

std::string LoadTemplate(const std::string& name, const TemplateWords& words, bool openSearch,
                         const IndexCharset& charset) {
  if (!IsBuiltInTemplate(name)) return ReadOwnersFile(name, "--template");
  const EmbeddedFile* file = FindEmbeddedFile(BuiltInTemplateFile(name));
  if (file == nullptr) {
    throw IndexError(ExitStatus::kUsage, "This vela_index was built without the template \"" +
                                             name + "\". Give --template default or a file.");
  }
  std::string page = FillTemplateWords(file->content, words);
  if (!openSearch) RemoveOpenSearchLink(page);
  std::string content = charset.WithReferences(page);
  constexpr std::string_view kUtf8Meta = "<meta charset=\"utf-8\">";
  const size_t at = content.find(kUtf8Meta);
  if (!charset.utf8() && at != content.npos) {
    content.replace(at, kUtf8Meta.size(), "<meta charset=\"" + charset.name() + "\">");
  }
  return content;
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
