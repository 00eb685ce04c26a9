#include "indexer/publish/search_template.h"

#include "indexer/config/built_in_template.h"
#include "indexer/config/embedded_files.h"
#include "indexer/config/owner_file.h"
#include "indexer/publish/open_search.h"
#include "indexer/publish/template_words.h"
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

std::string LoadTemplate(const std::string& name, const Options& options,
                         const IndexCharset& charset) {
  if (!IsBuiltInTemplate(name)) return ReadOwnersFile(name, "--template");
  const EmbeddedFile* file = FindEmbeddedFile(BuiltInTemplateFile(name));
  if (file == nullptr) {
    throw IndexError(ExitStatus::kUsage, "This vela_index was built without the template \"" +
                                             name + "\". Give --template default or a file.");
  }
  std::string page(file->content);
  TranslateTemplate(page, options.language);
  if (options.config.searchAddress.empty()) RemoveOpenSearchLink(page);
  std::string content = charset.WithReferences(page);
  constexpr std::string_view kUtf8Meta = "<meta charset=\"utf-8\">";
  const size_t at = content.find(kUtf8Meta);
  if (!charset.utf8() && at != content.npos) {
    content.replace(at, kUtf8Meta.size(), "<meta charset=\"" + charset.name() + "\">");
  }
  return content;
}

}  // namespace vela::indexer
