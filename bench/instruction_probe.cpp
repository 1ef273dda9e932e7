/// Runs one operation of the applet in `counted`, for an instruction counter to look at; before
/// that a few times unseen, so that nothing happens for the first time.
#include <iterator>
#include <string_view>

#include "bench/idle_applet.h"

namespace {

using bench::IdleApplet;

struct Operation {
  std::string_view name;
  void (*run)(IdleApplet& applet);
};

constexpr Operation kOperations[] = {
    {"get", [](IdleApplet& applet) { applet.get(FG_WIDTH); }},
    {"set", [](IdleApplet& applet) { applet.set(FG_WIDTH, 1000U); }},
    {"refused", [](IdleApplet& applet) { applet.set(FG_WIDTH, bench::kRefusedWidth); }},
    {"open", [](IdleApplet&) { IdleApplet{}; }},
};

}  // namespace

extern "C" [[gnu::noinline]] void counted(const Operation& operation, IdleApplet& applet) {
  operation.run(applet);
}

int main(int argc, char** argv) {
  IdleApplet applet;
  for (const Operation& operation : kOperations) {
    if (argc != 2 || operation.name != argv[1]) continue;
    for (int i = 0; i < 3; ++i) operation.run(applet);
    counted(operation, applet);
    return 0;
  }
  return 1;
}
