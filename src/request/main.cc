// The search program: run by the web server once per request.

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <new>
#include <span>
#include <string_view>

#include "output/messages.h"
#include "request/driver.h"
#include "request/search_context.h"
#include "request/usage.h"

namespace {

// Set up at compile time, so that start-up runs no code for it.
constinit vela::SearchContext g_context;

// The context is all the state there is, so these two can complete the response from anywhere.
[[noreturn]] void EndWith(vela::Message message) {
  vela::WriteMessage(g_context.response, message);
  vela::EndRequest(g_context);
  _exit(g_context.exitStatus);
}

void EndOutOfMemory() { EndWith(vela::Message::kOutOfMemory); }

// A mapped index file that is cut short under the running request raises this.
void EndVanishedFile(int) {
  if (g_context.ended) _exit(g_context.exitStatus);
  EndWith(vela::Message::kCorruptIndex);
}

const char* Environment(const char* name) { return getenv(name); }

}  // namespace

int main(int argc, char** argv) {
  const std::span<const char* const> arguments(argv, static_cast<size_t>(argc));
  const vela::CgiSource source = {Environment, STDIN_FILENO};
  if (const std::string_view text = vela::UsageText(arguments, source); !text.empty()) {
    return write(STDOUT_FILENO, text.data(), text.size()) < 0 ? 1 : 0;
  }
  std::set_new_handler(EndOutOfMemory);
  struct sigaction action = {};
  action.sa_handler = EndVanishedFile;
  action.sa_flags = static_cast<int>(SA_NODEFER);
  sigaction(SIGBUS, &action, nullptr);
  // A visitor who does not wait for the end is no reason to leave the search out of the log.
  signal(SIGPIPE, SIG_IGN);
  const int status = vela::RunRequest(g_context, arguments, source);
  // Everything is written and the kernel frees the rest.
  _exit(status);
}
