// section_links.h: results that lead to the place on the page (the setting SectionLinks).
#pragma once

#include "output/result_facts.h"

namespace vela {

// Lets the result lead to the section in which its page answers, where the index knows one and the
// address has no fragment yet, and sets the heading that stands beside its title: none when that
// is what the title says, or could be more than text.
void LeadToSection(const ResultBlocks& blocks, Result& result);

}  // namespace vela
