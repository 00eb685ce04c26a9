#include "indexer/public_files.h"

#include <filesystem>

#include "indexer/embedded_files.h"
#include "indexer/open_search.h"
#include "indexer/out_file.h"
#include "indexer/owner_files.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

constexpr char kTemplateName[] = "search_template.html";

void WriteWhole(const fs::path& path, std::string_view content) {
  OutFile file(path);
  file.Write(content);
  file.Finish();
}

bool IsPublic(std::string_view name) {
  return name.ends_with(".css") || name.ends_with(".js") || name.ends_with(".xsl");
}

}  // namespace

void WriteTemplate(const std::string& name, const std::string& language,
                   const IndexCharset& charset, const IndexFolder& folder) {
  if (name.empty() && folder.OldHas(kTemplateName)) return;
  WriteWhole(folder.fresh() / kTemplateName,
             LoadTemplate(name.empty() ? "default" : name, language, charset));
}

void WritePublicFiles(const SiteConfig& config, bool suggestions, const IndexCharset& charset,
                      const IndexFolder& folder) {
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (IsPublic(file.name)) WriteWhole(folder.fresh() / file.name, file.content);
  }
  if (!config.searchAddress.empty()) {
    WriteWhole(folder.fresh() / kOpenSearchName, OpenSearchDocument(config, suggestions, charset));
  }
  if (config.logging) {
    const fs::path logs = fs::path(config.logFile).parent_path();
    const std::string first = logs.empty() ? "" : logs.begin()->string();
    // One that the old index has comes along with its logs and permissions.
    if (!first.empty() && first != ".." && !folder.OldHas(first)) {
      fs::create_directories(folder.fresh() / logs);
    }
  }
}

}  // namespace vela::indexer
