// Helpers for the simulator's tests: an error handler that records reports, an event recorder
// that a callback fills from the event thread, and a fixture that opens a board channel.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "platform/board/sim/vrxsim.h"
#include "platform/board/vrx_params.h"
#include "platform/board/vrx_sdk.h"

namespace vrxsim_test {

struct Report {
  std::string function;
  uint32_t status;
  std::string message;
};

// Error reports of every handle created by the fixture.
class Reports {
 public:
  static uint32_t handler(const char* function, uint32_t status, const char* message) {
    std::lock_guard lock(mutex());
    list().push_back({function, status, message});
    return 1;
  }
  static std::vector<Report> take() {
    std::lock_guard lock(mutex());
    return std::exchange(list(), {});
  }

 private:
  static std::mutex& mutex() {
    static std::mutex m;
    return m;
  }
  static std::vector<Report>& list() {
    static std::vector<Report> reports;
    return reports;
  }
};

// Collects callback deliveries; counts bits and remembers the order.
class EventRecorder {
 public:
  static void callback(uint32_t handle, uint32_t mask, void* context) {
    static_cast<EventRecorder*>(context)->record(handle, mask);
  }
  void record(uint32_t handle, uint32_t mask) {
    std::lock_guard lock(m_mutex);
    m_masks.push_back(mask);
    m_handle = handle;
    m_changed.notify_all();
  }
  // Waits until at least `n` deliveries carried any of `bits`; false on time-out.
  bool wait_for(uint32_t bits, std::size_t n, std::chrono::milliseconds timeout = std::chrono::seconds(5)) {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return count_locked(bits) >= n; });
  }
  std::size_t count(uint32_t bits) const {
    std::lock_guard lock(m_mutex);
    return count_locked(bits);
  }
  uint32_t all_bits() const {
    std::lock_guard lock(m_mutex);
    uint32_t bits = 0;
    for (uint32_t m : m_masks) bits |= m;
    return bits;
  }
  uint32_t handle() const {
    std::lock_guard lock(m_mutex);
    return m_handle;
  }

 private:
  std::size_t count_locked(uint32_t bits) const {
    std::size_t n = 0;
    for (uint32_t m : m_masks) n += (m & bits) != 0;
    return n;
  }
  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  std::vector<uint32_t> m_masks;
  uint32_t m_handle = 0;
};

// Destroys a handle when the scope ends, so that no callback outlives what it writes to:
// declare it after the objects the callback uses.
class HandleGuard {
 public:
  explicit HandleGuard(uint32_t& handle) : m_handle(handle) {}
  ~HandleGuard() {
    if (m_handle) VRX_Destroy(&m_handle);
  }
  HandleGuard(const HandleGuard&) = delete;
  HandleGuard& operator=(const HandleGuard&) = delete;

 private:
  uint32_t& m_handle;
};

// A created (not yet opened) handle; open() opens board 1 channel A unless told otherwise.
class SimBoard : public ::testing::Test {
 protected:
  void SetUp() override {
    vrxsim_fault_clear();
    Reports::take();
    ASSERT_EQ(VRX_Create(&m_handle, &Reports::handler), VRX_OK);
  }
  void TearDown() override {
    if (m_handle) VRX_Destroy(&m_handle);
    vrxsim_fault_clear();
  }
  void open(uint32_t board_number = 0xC0010001, uint32_t channel = vrx::ChannelA,
            uint32_t mode = vrx::BoardModeNormal) {
    ASSERT_EQ(set(vrx::ParamBoardNumber, board_number), VRX_OK);
    ASSERT_EQ(set(vrx::ParamChannelNumber, channel), VRX_OK);
    ASSERT_EQ(set(vrx::ParamBoardMode, mode), VRX_OK);
    ASSERT_EQ(VRX_Open(&m_handle), VRX_OK);
  }
  uint32_t set(uint32_t id, uint32_t value) { return VRX_ParameterSet(m_handle, id, &value); }
  uint32_t get(uint32_t id) {
    uint32_t value = 0;
    EXPECT_EQ(VRX_ParameterGet(m_handle, id, &value), VRX_OK) << std::hex << id;
    return value;
  }
  uint32_t acquire(uint32_t operation, void* argument = nullptr) {
    return VRX_Acquire(m_handle, operation, argument);
  }
  uint32_t start(EventRecorder& recorder, uint32_t operation = VRX_ACQ_START) {
    VRX_ParameterSet(m_handle, vrx::ParamEventContext, &recorder);
    return acquire(operation, reinterpret_cast<void*>(&EventRecorder::callback));
  }

  // Events of the fixture's handle. TearDown destroys the handle, joining its event thread,
  // before this recorder goes.
  EventRecorder m_events;
  uint32_t m_handle = 0;
};

}  // namespace vrxsim_test
