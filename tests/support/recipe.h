// recipe.h: the text forms of an index directory and of a request, as the golden cases hold them.
//
// An index recipe is read line by line; empty lines and lines that begin with "#" are skipped.
//
//   base NAME                          begins with the recipe NAME of the folder `indexes`
//   set KEY = VALUE                    one line of the settings file
//   drop KEY                           the line is left out, a derived one too
//   settings                           the "|" lines below follow the keys in the settings file
//   page URL|TITLE|DESCRIPTION|IMAGE| [size=N] [date=N] [boost=N] [type=N] [cats=HEX] [meta=BYTES]
//   word WORD [PAGE:SCORE[:FLAGS-HEX[:POSITION]]]...    POSITION: a byte, or #N for token N
//   word WORD offset=N                 a list position given by hand
//   word WORD empty                    a list of no records
//   variant TEXT                       a variant spelling of the word above
//   tokens WORD[:VARIANT][*TIMES]...   page text; WORD is a number or a word above
//   spelling KEY WORD...               a line of the spelling file; WORD as in tokens
//   recommend PAGE KEYWORDS            a line of the recommended file
//   suggest TEXT                       a line of the autocomplete file
//   file NAME                          the "|" lines below are the file
//   omit NAME | directory NAME | folder NAME | link NAME TARGET | cut NAME LENGTH
//   patch NAME OFFSET BYTES | append NAME BYTES
//
// A "|" line ends with a line feed unless a lone "\" stands at its end. BYTES and "|" lines know
// the escapes \\ \n \r \t \s (a blank) and \xHH.
//
// A request is read the same way:
//
//   NAME=VALUE        an environment variable, which may hold the escapes; TZ is UTC unless given
//   program TEXT      the program's own path; index/search.cgi unless given
//   argument TEXT     one further argument
//   inside DIRECTORY  the working directory, below the folder that holds `index`
//   body TEXT         appended to standard input
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "support/index_builder.h"
#include "support/run_program.h"

namespace vela::support {

// The whole file. Throws std::runtime_error when it cannot be read.
std::string ReadWholeFile(const std::filesystem::path& path);

// Resolves the escapes above. Throws std::runtime_error for an unknown one.
std::string Unescape(std::string_view text);

// Applies the recipe's lines to `index`. `indexes` is the folder of the named recipes. Throws
// std::runtime_error with the line for anything it does not understand.
void ApplyRecipe(std::string_view recipe, const std::filesystem::path& indexes,
                 IndexBuilder& index);

// The request of the text above. Its working directory is relative.
Request ParseRequest(std::string_view text);

}  // namespace vela::support
