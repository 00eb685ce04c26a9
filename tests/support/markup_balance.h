// markup_balance.h: whether the elements of an answer are closed in the order in which they opened.
#pragma once

#include <string>
#include <string_view>

namespace vela::support {

// What is wrong with the elements of the HTML page, "" for nothing: an element that is not closed,
// or closed out of order. Text, attributes and the content of scripts and styles are passed over;
// html, head and body, which belong to the site's template, are not looked at.
std::string UnbalancedElement(std::string_view html);

}  // namespace vela::support
