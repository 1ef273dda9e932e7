/// What the exports do not show of the base: the layout of its virtual table, calls before
/// start-up, the plain event lookup, and the operations that no export reaches.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <stdexcept>
#include <vector>

#include "board/control.h"
#include "external/dervin.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "tests/temporary_directory.h"
#include "wrapper/wrapper_function_table.h"

namespace {

using namespace velmora;

/// Positions of virtual operations, from 1: the compiler keeps a pointer to one as 1 plus its
/// offset in the virtual table, followed by the object's offset.
template <class... Operations>
std::vector<long> ordersOf(Operations... operations) {
  using Words = std::array<long, 2>;
  return {(std::bit_cast<Words>(operations)[0] - 1) / long{sizeof(void*)} + 1 ...};
}

TEST(WrapperBase, VirtualOperationsKeepTheirOrder) {
  using W = FgKtWrapper;
  std::vector<long> expected;
  for (long order = 1; order <= 35; ++order)
    if (order != 8 && order != 9) expected.push_back(order);  // These are the destructors.
  EXPECT_EQ(
      ordersOf(&W::logger, &W::loadParameters, &W::saveParameters, &W::processChannelToDma,
               &W::mapDmaToFormat, &W::setDmaAlignment, &W::getDmaAlignment, &W::initParameterInfo,
               &W::Fg_setParameterWithType, &W::Fg_getParameterWithType,
               &W::Fg_freeParameterStringWithType, &W::Fg_getParameterIdByName,
               &W::Fg_getParameterName, &W::Fg_getParameterId, &W::Fg_getNrOfParameter,
               &W::Fg_saveConfig, &W::Fg_loadConfig, &W::Fg_getParameterInfoXML,
               &W::Fg_AllocShading, &W::Fg_FreeShading, &W::Shad_SetSubValueLine,
               &W::Shad_SetMultValueLine, &W::Shad_SetFixedPatternNoiseLine, &W::Shad_GetMaxLine,
               &W::Shad_GetAccess, &W::Shad_FreeAccess, &W::Shad_WriteActLine, &W::Fg_getEventMask,
               &W::Fg_getEventName, &W::getVendorName, &W::getAppletName, &W::getAppletVersion,
               &W::getLoadAppletId),
      expected);
}

TEST(WrapperBase, DoesWithoutRuntimeAndHandle) {
  FgKtWrapperImpl wrapper;
  EXPECT_EQ(wrapper.Fg_getLastErrorNumber(), 0);
  EXPECT_EQ(wrapper.getParameterIdByName("any"), -12);
  board::startJournal();
  for (const bool bound : {false, true}) {
    EXPECT_EQ(wrapper.initializeDllFunctions(bound ? "libvorn5.so" : "libnone.so"),
              bound ? 0 : -2031);
    int value = 0;
    for (const int result :
         {wrapper.getUnwrappedParameterWithType(1, &value, 0, 2),
          wrapper.setUnwrappedParameterWithType(1, &value, 0, 2),
          wrapper.freeUnwrappedParameterString(1, &value, 0, 22),
          wrapper.getUnwrappedParameter(1, &value, 0), wrapper.setUnwrappedParameter(1, &value, 0),
          wrapper.Fg_getLastErrorNumberKt()})
      EXPECT_EQ(result, -12) << bound;
    EXPECT_EQ(wrapper.getUnwrappedParameterInfo(), nullptr);
    EXPECT_EQ(wrapper.releaseInnerHandle(), 0);
    EXPECT_EQ(wrapper.Fg_getLastErrorNumber(), -2031);
  }
  EXPECT_TRUE(board::takeJournal().empty());
}

TEST(WrapperBase, EventsHaveTheMasksOfTheirIndices) {
  const TemporaryDirectory directory;
  const std::string file = directory / "events.hap";
  std::ofstream(file) << "velmora-design 1\nboard 3652\nevent Event{0-69} 1\nend\n";
  FgKtWrapperImpl wrapper;
  wrapper.initHandles(nullptr, HapLoadHapFileWithType(file.c_str(), 3652, 1));
  for (int i = 0; i < 70; ++i) {
    const std::string name = "Event" + std::to_string(i);
    const uint64_t mask = i < 64 ? uint64_t{1} << i : 0;
    EXPECT_EQ(wrapper.FgKtWrapper::Fg_getEventMask(name.c_str()), mask);
    EXPECT_STREQ(wrapper.FgKtWrapper::Fg_getEventName(mask), mask ? name.c_str() : nullptr);
  }
}

/// The runtime's tools know the table by position.
TEST(WrapperBase, FunctionTableHasItsPositions) {
  void* const library = dlopen("libvorn5.so", RTLD_NOW);
  WrapperFunctionTable table;
  table.bind(library);
  std::string found = "# Positions of the runtime's functions in the wrapper function table.\n";
  for (std::size_t position = 0; position < 42; ++position) {
    Dl_info symbol = {};
    const auto function = table[RuntimeEntry<void()>{{position, ""}}];
    if (function && dladdr(reinterpret_cast<void*>(function), &symbol))
      found += std::to_string(position) + ' ' + symbol.dli_sname + '\n';
  }
  EXPECT_EQ(found, contentOf(TEST_DATA "/runtime_symbols.txt"));
  dlclose(library);
}

TEST(AppletImplementation, RefusesWhatItDoesNotOffer) {
  FgKtWrapperImpl applet;
  EXPECT_THROW(applet.processChannelToDma(0, 0), std::runtime_error);
  EXPECT_THROW(applet.mapDmaToFormat(0), std::runtime_error);
  EXPECT_THROW(applet.setDmaAlignment(0, 0), std::runtime_error);
  EXPECT_THROW(applet.getDmaAlignment(0), std::runtime_error);
}

}  // namespace
