#include <gtest/gtest.h>
#include <pthread.h>

#include <bit>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "board/virtual_board.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "platform/dervin.h"
#include "tests/fakes/wrapper_double.h"
#include "tests/temporary_directory.h"

namespace velmora {
namespace {

[[maybe_unused]] const int kErrorsAreLogged = setenv("KORV_LOG_LEVEL", "6", 1);

KTdevice* const kDevice = reinterpret_cast<KTdevice*>(16);
constexpr int kRecorded = -7;

/// Positions of virtual operations, from 1: the compiler keeps a pointer to one as 1 plus its
/// offset in the virtual table, followed by the object's offset.
template <class... Operations>
std::vector<long> ordersOf(Operations... operations) {
  struct Words {
    long offset;
    long adjustment;
  };
  return {(std::bit_cast<Words>(operations).offset - 1) / long{sizeof(void*)} + 1 ...};
}

TEST(WrapperBase, VirtualOperationsKeepTheirOrder) {
  using W = FgKtWrapper;
  EXPECT_EQ(ordersOf(&W::logger, &W::loadParameters, &W::saveParameters, &W::processChannelToDma,
                     &W::mapDmaToFormat, &W::setDmaAlignment, &W::getDmaAlignment),
            (std::vector<long>{1, 2, 3, 4, 5, 6, 7}));
  // The two destructors are 8 and 9.
  const auto others = ordersOf(
      &W::initParameterInfo, &W::Fg_setParameterWithType, &W::Fg_getParameterWithType,
      &W::Fg_freeParameterStringWithType, &W::Fg_getParameterIdByName, &W::Fg_getParameterName,
      &W::Fg_getParameterId, &W::Fg_getNrOfParameter, &W::Fg_saveConfig, &W::Fg_loadConfig,
      &W::Fg_getParameterInfoXML, &W::Fg_AllocShading, &W::Fg_FreeShading, &W::Shad_SetSubValueLine,
      &W::Shad_SetMultValueLine, &W::Shad_SetFixedPatternNoiseLine, &W::Shad_GetMaxLine,
      &W::Shad_GetAccess, &W::Shad_FreeAccess, &W::Shad_WriteActLine, &W::Fg_getEventMask,
      &W::Fg_getEventName, &W::getVendorName, &W::getAppletName, &W::getAppletVersion,
      &W::getLoadAppletId);
  long order = 10;
  for (const long position : others) EXPECT_EQ(position, order++);
  EXPECT_EQ(order, 36);
}

TEST(WrapperBase, LogsUnderItsOwnName) {
  WrapperDouble wrapper("Double");
  testing::internal::CaptureStderr();
  EXPECT_EQ(wrapper.initializeDllFunctions("libnowhere.so"), -2031);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "korv.wrapper.FgKtWrapper error: thread-id=" +
                std::to_string(static_cast<unsigned long>(pthread_self())) +
                "|error opening dll 'libnowhere.so'\n");
  EXPECT_EQ(wrapper.Fg_getLastErrorNumber(), -2031);
}

/// With no library, and with one but no inner handle.
TEST(WrapperBase, DoesWithoutRuntimeAndHandle) {
  WrapperDouble wrapper("Double");
  EXPECT_EQ(wrapper.Fg_getLastErrorNumber(), 0);
  EXPECT_EQ(wrapper.fgError().setErr(kRecorded), kRecorded);
  EXPECT_EQ(wrapper.fgError().setErrLevel2(-8, "text"), -2130);
  board::startJournal();
  for (const bool bound : {false, true}) {
    SCOPED_TRACE(bound);
    const int result = bound ? wrapper.initializeDllFunctions("libvorn5.so") : 0;
    EXPECT_EQ(result, 0);
    EXPECT_EQ(wrapper.wrapperFg()[runtime::kAcquireEx] != nullptr, bound);
    int value = 0;
    for (const int result :
         {wrapper.getUnwrappedParameterWithType(1, &value, 0, 2),
          wrapper.setUnwrappedParameterWithType(1, &value, 0, 2),
          wrapper.freeUnwrappedParameterString(1, &value, 0, 22),
          wrapper.getUnwrappedParameter(1, &value, 0), wrapper.setUnwrappedParameter(1, &value, 0),
          wrapper.Fg_getLastErrorNumberKt(), bound ? -12 : wrapper.getParameterIdByName("any")})
      EXPECT_EQ(result, -12);
    EXPECT_EQ(wrapper.getUnwrappedParameterInfo(), nullptr);
    EXPECT_EQ(wrapper.releaseInnerHandle(), 0);
    EXPECT_EQ(wrapper.Fg_getLastErrorNumber(), kRecorded);
  }
  EXPECT_TRUE(board::takeJournal().empty());
  board::stopJournal();
}

TEST(WrapperBase, HoldersKeepTheLatestHandle) {
  for (const uintptr_t address : {0U, 16U, 32U}) {
    const auto device = reinterpret_cast<KTdevice*>(address);
    EXPECT_EQ(FgKtWrapper::accessDeviceHandle(device), device);
    EXPECT_EQ(FgKtWrapper::accessDeviceHandle(nullptr), device);
    const auto design = reinterpret_cast<fpga_design*>(address);
    EXPECT_EQ(FgKtWrapper::accessDesignHandle(design), design);
    EXPECT_EQ(FgKtWrapper::accessDesignHandle(nullptr), design);
  }
}

TEST(WrapperBase, EventsHaveTheMasksOfTheirIndices) {
  const TemporaryDirectory directory;
  const std::string file = directory / "events.hap";
  std::ofstream out(file);
  out << "velmora-design 1\nboard 3652\n";
  for (int i = 0; i < 70; ++i) out << "event Event" << i << ' ' << i % 3 << '\n';
  out << "end\n";
  out.close();
  {
    WrapperDouble wrapper("Double");
    wrapper.initHandles(kDevice, HapLoadHapFileWithType(file.c_str(), 3652, 1));
    EXPECT_EQ(wrapper.boardHandle(), kDevice);
    ASSERT_NE(wrapper.designHandle(), nullptr);
    wrapper.setError(kRecorded);
    for (int i = 0; i < 70; ++i) {
      const std::string name = "Event" + std::to_string(i);
      const uint64_t mask = i < 64 ? uint64_t{1} << i : 0;
      EXPECT_EQ(wrapper.Fg_getEventMask(name.c_str()), mask);
      if (mask != 0) {
        EXPECT_STREQ(wrapper.Fg_getEventName(mask), name.c_str());
      }
    }
    for (const char* name : {"", "Event", "event0", "Event00", static_cast<const char*>(nullptr)})
      EXPECT_EQ(wrapper.Fg_getEventMask(name), 0U);
    for (const uint64_t mask : {uint64_t{0}, uint64_t{3}, UINT64_MAX})
      EXPECT_EQ(wrapper.Fg_getEventName(mask), nullptr) << mask;
    EXPECT_EQ(wrapper.Fg_getLastErrorNumber(), kRecorded);
  }
  EXPECT_EQ(board::outstanding().designs, 0);
}

TEST(AppletImplementation, RefusesWhatItDoesNotOffer) {
  FgKtWrapperImpl applet;
  const auto expectText = [](auto call, const char* text) {
    try {
      call();
      ADD_FAILURE() << "nothing thrown instead of " << text;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), text);
    }
  };
  expectText([&] { applet.processChannelToDma(0, 0); },
             "processChannelToDma() is not implemented.");
  expectText([&] { applet.mapDmaToFormat(0); }, "mapDmaToFormat() is not implemented.");
  expectText([&] { applet.setDmaAlignment(0, 0); }, "setDmaAlignment() is not implemented.");
  expectText([&] { applet.getDmaAlignment(0); }, "getDmaAlignment() is not implemented.");
}

}  // namespace
}  // namespace velmora
