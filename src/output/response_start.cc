#include "output/response_start.h"

namespace vela {

void WriteHeader(Response& response, const Settings& settings) {
  const char* type = response.xml ? "text/xml" : "text/html";
  if (settings.NoCharset != 0) {
    WriteOut(response, "Content-type: %s;\n\n", type);
  } else {
    WriteOut(response, "Content-type: %s; charset=%s\n\n", type, settings.Charset.bytes);
  }
}

}  // namespace vela
