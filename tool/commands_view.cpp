/// view
#include <fmt/format.h>

#include <cstdio>
#include <thread>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/interrupts.h"
#include "tool/parameter_access.h"
#include "tool/text.h"
#include "tool/view_server.h"

namespace velmora::tool {
namespace {

constexpr std::chrono::milliseconds kLook{50};

}  // namespace

void viewBoard(Session& session, const std::string& listen) {
  const Interrupts interrupts;
  LiveBoard board(session);
  board.run(parsePorts("all").value(), true);
  const ViewServer server(board, parseListenAddress(listen).value());
  printLine(server.url());
  printError("Ctrl-C ends it.");
  std::fflush(stdout);
  while (!Interrupts::came() && !server.ended()) std::this_thread::sleep_for(kLook);
  if (!Interrupts::came()) throw Failure("the server has ended");
}

}  // namespace velmora::tool
