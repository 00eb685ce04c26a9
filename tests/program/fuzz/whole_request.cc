#include "program/fuzz/whole_request.h"

#include <memory>

#include "program/fuzz/check.h"
#include "program/fuzz/written.h"
#include "request/driver.h"
#include "request/search_context.h"
#include "support/recipe.h"

namespace vela::fuzz {
namespace {

const std::map<std::string, std::string>* g_environment = nullptr;

const char* Environment(const char* name) {
  const auto found = g_environment->find(name);
  return found == g_environment->end() ? nullptr : found->second.c_str();
}

}  // namespace

support::IndexBuilder WholeIndex() {
  const std::filesystem::path recipe = VELA_DAMAGE_RECIPE;
  support::IndexBuilder index;
  support::ApplyRecipe(support::ReadWholeFile(recipe), recipe.parent_path(), index);
  index.Set("Timing", "0");
  return index;
}

Answer AnswerRequest(const std::filesystem::path& directory,
                     const std::map<std::string, std::string>& environment,
                     const std::string& body) {
  const Sink output;
  const Sink input;
  VELA_CHECK(pwrite(input.descriptor(), body.data(), body.size(), 0) ==
             static_cast<ssize_t>(body.size()));
  lseek(input.descriptor(), 0, SEEK_SET);
  const std::string path = (directory / "search.cgi").string();
  const char* arguments[] = {path.c_str()};
  g_environment = &environment;
  const auto context = std::make_unique<SearchContext>();
  context->response.descriptor = output.descriptor();
  Answer answer;
  answer.exitStatus = RunRequest(*context, arguments, {Environment, input.descriptor()});
  ReleaseSearchContext(*context);
  answer.output = output.Bytes();
  return answer;
}

}  // namespace vela::fuzz
