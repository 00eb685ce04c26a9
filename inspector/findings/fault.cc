#include "inspector/findings/fault.h"

#include <iterator>

namespace vela::inspector {

namespace {

constexpr std::string_view kBuildAgain = "Write the index again with vela_index.";
constexpr std::string_view kCopyAgain =
    "Copy the whole index directory again, or write it again with vela_index: its files belong "
    "together.";
constexpr std::string_view kCorrectSettings =
    "Correct the line, or write the index again with vela_index.";

constexpr FaultRow kFaults[] = {
    {"unreadable", "the search program cannot use the file", kCopyAgain},
    {"missing", "the file is not there, or is no file", kCopyAgain},
    {"not_used", "the file is there, but nothing uses it", kBuildAgain},
    {"wrong_form", "a line or record is not of the form of its file", kBuildAgain},
    {"wrong_size", "the file has another size than is said of it", kCopyAgain},
    {"wrong_count", "there are more or fewer than are said to be", kCopyAgain},
    {"wrong_order", "entries do not stand in the order of their file", kBuildAgain},
    {"beyond_end", "something reaches beyond the end of its file", kCopyAgain},
    {"bad_text", "a text is not of the character set of the index, or has control characters",
     kBuildAgain},
    {"unsafe_text", "a text has markup, which would become part of the results page", kBuildAgain},
    {"too_long", "a line or text is longer than what is read of it", kBuildAgain},
    {"repeated", "what may be there once is there again", kBuildAgain},
    {"unknown_key", "the search program knows no such key", "Correct the key, or remove the line."},
    {"no_number", "the value is not a number", kCorrectSettings},
    {"out_of_range", "the value is not one that the key can have", kCorrectSettings},
    {"missing_text", "a text of the search page is missing", kBuildAgain},
    {"missing_marker", "the page has no place for the results",
     "Put the line <!--VELASEARCH--> where the results belong."},
    {"unknown_word", "a number is that of no word", kCopyAgain},
    {"unknown_page", "a number is that of no page", kCopyAgain},
    {"unknown_variant", "a word has no such spelling", kCopyAgain},
    {"bad_score", "a page has a word without a score, so that the word does not find it",
     kBuildAgain},
    {"bad_weight", "weights of words and titles do not fit together", kBuildAgain},
    {"no_block", "a word stands nowhere in the text of a page that has it", kBuildAgain},
    {"misplaced", "a place does not lie where its page or word does", kCopyAgain},
    {"not_first", "a word stands on its page before the place that is said to be its first",
     kBuildAgain},
    {"not_listed", "a word stands on a page that it does not find", kBuildAgain},
    {"unclaimed", "bytes belong to nothing", kBuildAgain},
    {"bad_category", "a page is in a category that does not exist", kBuildAgain},
    {"bad_field", "the values of the meta fields of a page do not fit their definitions",
     kBuildAgain},
    {"bad_reference", "a place named elsewhere is not where something begins", kCopyAgain},
    {"other_file", "the file was made for another one, and is not used", kCopyAgain},
    {"other_content", "the file says something else than the one that it was made from",
     kBuildAgain},
    {"bad_checksum", "a block was changed after it was written", kCopyAgain},
};
static_assert(std::size(kFaults) == static_cast<size_t>(Fault::kCount));

}  // namespace

const FaultRow& RowOf(Fault fault) { return kFaults[static_cast<size_t>(fault)]; }

}  // namespace vela::inspector
