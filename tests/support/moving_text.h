// moving_text.h: the few pieces of an answer that the clock decides.
//
// An expected text holds {DATE} for "2026-03-05", {TIME} for "09:04:07" and {SECONDS} for "0.042";
// everything else in it is compared byte by byte.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

namespace vela::support {

// `actual`, with a placeholder wherever `expected` has it and a text of its form stands there. Up
// to the first difference only: what follows is returned as it is.
std::string WithPlaceholders(std::string_view actual, std::string_view expected);

// The local date and time of a line that begins with "DATE, TIME"; empty for any other line.
std::string LoggedTime(std::string_view line);

// The same text for a moment in the time zone `zone`.
std::string LocalTime(time_t moment, const std::string& zone);

}  // namespace vela::support
