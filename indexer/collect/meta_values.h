// meta_values.h: the values of the custom meta fields, from a page's meta elements to its record.
//
// format/meta_fields.h draws them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/config/site_config.h"
#include "indexer/extract/page.h"
#include "indexer/report/reason.h"
#include "indexer/words/index_charset.h"

namespace vela::indexer {

// The values of one page in the order of the fields. What does not fit its field is left out and
// added to `findings`: `where` is the field, `subject` the value.
std::string EncodeMetaValues(const std::vector<FieldRule>& fields, const IndexCharset& charset,
                             std::span<const MetaElement> elements, std::vector<Finding>& findings);

// "4.50", "£4", "-3,25" in hundredths. False when the text is no amount or one beyond 32 bits.
bool ReadAmount(std::string_view text, int32_t& hundredths);

}  // namespace vela::indexer
