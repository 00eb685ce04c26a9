#include "indexer/config/built_in_template.h"

#include "format/template_file.h"

namespace vela::indexer {

namespace {

struct BuiltInTemplate {
  std::string_view name;
  std::string_view file;
};
constexpr BuiltInTemplate kTemplates[] = {
    {"default", kTemplateFileName},
    {"minimal", "search_template_minimal.html"},
    {"embed", "search_template_embed.html"},
};

}  // namespace

std::vector<std::string_view> BuiltInTemplates() {
  std::vector<std::string_view> names;
  for (const BuiltInTemplate& each : kTemplates) names.push_back(each.name);
  return names;
}

std::string_view BuiltInTemplateFile(std::string_view name) {
  for (const BuiltInTemplate& each : kTemplates) {
    if (each.name == name) return each.file;
  }
  return {};
}

}  // namespace vela::indexer
