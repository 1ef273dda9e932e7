/// save, load
#include <fmt/format.h>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/configuration_access.h"
#include "tool/text.h"

namespace velmora::tool {

void saveConfiguration(Session& session, const std::string& file) {
  const Failures missing = writeConfiguration(session, file);
  printError(fmt::format("{}: settings of {} ports saved", file, kPorts));
  missing.throwIfAny();
}

void loadConfiguration(Session& session, const std::string& file, const LoadForm& form) {
  const std::vector<LoadDifference> differences = applyConfiguration(session, file);
  printError(fmt::format("{}: settings of {} ports loaded{}", file, kPorts,
                         differences.empty() ? "" : ", with differences"));
  if (form.json) printJson(differencesJson(file, differences));
  Failures failures;
  for (const LoadDifference& difference : differences)
    failures.add(Failure(fmt::format("{}: {}", file, difference.message())));
  if (!form.force) failures.throwIfAny();
  for (const std::string& message : failures.messages()) printError(message);
}

}  // namespace velmora::tool
