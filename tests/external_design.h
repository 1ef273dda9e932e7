#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/temporary_directory.h"

namespace fixture {

/// Sets an environment variable for a while.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) { setenv(name, value, 1); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { unsetenv(name_); }

 private:
  const char* name_;
};

/// For a while, applets are opened on a design of these manifest records instead of their own.
class ExternalDesign {
 public:
  explicit ExternalDesign(const std::string& records) : before_(std::filesystem::current_path()) {
    std::ofstream(directory_ / "Velmora.hap") << "velmora-design 1\nboard 3652\n"
                                              << records << "\nend\n";
    std::filesystem::current_path(directory_ / "");
  }
  ExternalDesign(const ExternalDesign&) = delete;
  ExternalDesign& operator=(const ExternalDesign&) = delete;
  ~ExternalDesign() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_;
  TemporaryDirectory directory_;
  EnvironmentVariable forced_{"__KORV_FORCE_EXTERNAL_HAP", ""};
};

/// Registers of all widths that make a difference, and design parameters of every kind below groups
/// of which two have the same title.
inline constexpr const char* kEveryKindOfRecord = R"(
register Bit 1 rw
register Word 32 rw
register Status 8 ro
register Odd 33 ro
register Wide 64 rw
uint   Device1_Process0_B_Uint rw shared 1 4000000000 5 unit=px
int    Device1_Process0_A_Int ro shared -5 5 1
uint64 Device1_Process0_A_Deep_Uint64 rw shared 0 18446744073709551615 2
int64  Device1_Process0_A_Deep_Int64 rw shared -9223372036854775808 5 1
double Device1_Process0_A_Deep_Deeper_Double rw shared -0.5 0.5 0.25
enum   Device1_Process1_Enum rw shared On=1 Off=0
string Device1_Process1_B_String rw shared start
uint_field   Device1_Process0_B_Field rw shared 3 4 5
int_field    Device1_Process2_Field rw shared 3 -4 5
double_field Field rw shared 3 0.5 5
)";

}  // namespace fixture
