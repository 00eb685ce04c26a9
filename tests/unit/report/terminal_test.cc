#include "indexer/report/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace vela::indexer {
namespace {

TEST(Terminal, ColoursTheFirstLineAndWarnings) {
  EXPECT_EQ(Colored(""), "");
  EXPECT_EQ(Colored("Indexed 1 page.\nRead x.\nWarning: y.\n"),
            "\033[1mIndexed 1 page.\033[0m\nRead x.\n\033[33mWarning: y.\033[0m\n");
  EXPECT_EQ(Colored("one line"), "\033[1mone line\033[0m");
}

// The other end of a terminal that the test makes.
class PseudoTerminal {
 public:
  PseudoTerminal() : master_(posix_openpt(O_RDWR | O_NOCTTY)) {
    if (master_ >= 0 && grantpt(master_) == 0 && unlockpt(master_) == 0) {
      slave_ = open(ptsname(master_), O_RDWR | O_NOCTTY);
    }
  }
  ~PseudoTerminal() {
    if (slave_ >= 0) close(slave_);
    if (master_ >= 0) close(master_);
  }
  int descriptor() const { return slave_; }

 private:
  int master_ = -1;
  int slave_ = -1;
};

TEST(Terminal, ColoursAreForTerminalsWhoseOwnersWantThem) {
  const PseudoTerminal terminal;
  ASSERT_GE(terminal.descriptor(), 0) << "no terminal can be made";
  struct winsize size = {.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
  ASSERT_EQ(ioctl(terminal.descriptor(), TIOCSWINSZ, &size), 0);
  setenv("TERM", "xterm", 1);
  unsetenv("NO_COLOR");
  EXPECT_TRUE(ShowsColors(terminal.descriptor()));
  EXPECT_EQ(TerminalWidth(terminal.descriptor()), 80u);
  setenv("NO_COLOR", "", 1);
  EXPECT_TRUE(ShowsColors(terminal.descriptor()));
  setenv("NO_COLOR", "1", 1);
  EXPECT_FALSE(ShowsColors(terminal.descriptor()));
  unsetenv("NO_COLOR");
  setenv("TERM", "dumb", 1);
  EXPECT_FALSE(ShowsColors(terminal.descriptor()));
  unsetenv("TERM");
  EXPECT_FALSE(ShowsColors(terminal.descriptor()));
  setenv("TERM", "xterm", 1);
  const int file = open("/dev/null", O_WRONLY);
  EXPECT_FALSE(ShowsColors(file));
  EXPECT_EQ(TerminalWidth(file), 0u);
  close(file);
}

}  // namespace
}  // namespace vela::indexer
