// add_lookup DIRECTORY: writes the lookup file of an index and its generation into the settings,
// where the indexer would write one. For compare.py.
#include "support/with_lookup.h"

int main(int argc, char** argv) {
  if (argc == 2) vela::support::AddLookup(argv[1]);
  return argc == 2 ? 0 : 2;
}
