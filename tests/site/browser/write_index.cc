// write_index: writes the index directory of a recipe, for tests that are not written in C++.
//   write_index RECIPE DIRECTORY
#include <cstdio>
#include <exception>
#include <filesystem>

#include "support/index_builder.h"
#include "support/recipe.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: write_index RECIPE DIRECTORY\n", stderr);
    return 2;
  }
  try {
    const std::filesystem::path recipe = argv[1];
    vela::support::IndexBuilder index;
    vela::support::ApplyRecipe(vela::support::ReadWholeFile(recipe), recipe.parent_path(), index);
    index.WriteTo(argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "write_index: %s\n", error.what());
    return 1;
  }
  return 0;
}
