// The exported acquisition-library calls (VRX_) and the simulator's own (vrxsim_).
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/board/sim/api_guard.h"
#include "platform/board/sim/handle_table.h"
#include "platform/board/sim/vrxsim.h"
#include "platform/board/sim/write_trace.h"

namespace vrxsim {
namespace {

// Runs `body(channel, report)` on the channel of `handle`. An unknown handle has no error
// handler to report through, so it only returns VRX_ERR_BAD_HANDLE.
template <typename Body>
uint32_t on_channel(const char* function, uint32_t handle, Body&& body) noexcept {
  std::shared_ptr<Channel> channel = handles().find(handle);
  if (!channel) return VRX_ERR_BAD_HANDLE;
  const CallReport report(function, channel->error_handler());
  return guarded(report, [&] { return body(*channel, report); });
}

// Memory blocks handed out by VRX_MemoryAlloc, so that a free can be checked.
std::mutex g_memory_mutex;
std::map<void*, std::unique_ptr<uint8_t[]>> g_memory_blocks;

}  // namespace
}  // namespace vrxsim

using vrxsim::Channel;
using vrxsim::CallReport;
using vrxsim::on_channel;

extern "C" {

uint32_t VRX_ErrHandlerDefault(const char* function_name, uint32_t status, const char* message) {
  std::fprintf(stderr, "%s: %s (status 0x%04X)\n", function_name ? function_name : "?",
               message ? message : "", status);
  return 1;
}

uint32_t VRX_Create(uint32_t* handle_out, VRX_ERR_HANDLER error_handler) {
  const CallReport report("VRX_Create", error_handler);
  return vrxsim::guarded(report, [&] {
    if (!handle_out) return report.fail(VRX_ERR_NULL_ARGUMENT, "No handle pointer given");
    *handle_out = vrxsim::handles().add(error_handler);
    return VRX_OK;
  });
}

uint32_t VRX_Open(uint32_t* handle) {
  if (!handle) return VRX_ERR_NULL_ARGUMENT;
  return on_channel("VRX_Open", *handle, [](Channel& c, const CallReport& r) { return c.open(r); });
}

uint32_t VRX_Close(uint32_t* handle) {
  if (!handle) return VRX_ERR_NULL_ARGUMENT;
  return on_channel("VRX_Close", *handle, [](Channel& c, const CallReport& r) { return c.close(r); });
}

uint32_t VRX_Destroy(uint32_t* handle) {
  if (!handle) return VRX_ERR_NULL_ARGUMENT;
  const uint32_t status = on_channel("VRX_Destroy", *handle, [&](Channel&, const CallReport&) {
    // The channel closes itself when the last call holding it returns.
    vrxsim::handles().remove(*handle);
    return VRX_OK;
  });
  if (status == VRX_OK) *handle = 0;
  return status;
}

uint32_t VRX_ParameterGet(uint32_t handle, uint32_t parameter, void* value) {
  return on_channel("VRX_ParameterGet", handle,
                    [&](Channel& c, const CallReport& r) { return c.get_parameter(r, parameter, value); });
}

uint32_t VRX_ParameterSet(uint32_t handle, uint32_t parameter, void* value) {
  const uint32_t status = on_channel("VRX_ParameterSet", handle, [&](Channel& c, const CallReport& r) {
    return c.set_parameter(r, parameter, value);
  });
  vrxsim::write_trace().record(handle, parameter, value, status);
  return status;
}

uint32_t VRX_Acquire(uint32_t handle, uint32_t operation, void* argument) {
  return on_channel("VRX_Acquire", handle,
                    [&](Channel& c, const CallReport& r) { return c.acquire(r, operation, argument); });
}

uint32_t VRX_CameraConfigSave(uint32_t handle, const char* path, uint32_t mode) {
  return on_channel("VRX_CameraConfigSave", handle,
                    [&](Channel& c, const CallReport& r) { return c.save_config(r, path, mode); });
}

uint32_t VRX_ControlRead(uint32_t handle, uint32_t port, uint32_t* address, uint8_t* data,
                         uint32_t* byte_count, uint32_t timeout_ms) {
  return on_channel("VRX_ControlRead", handle, [&](Channel& c, const CallReport& r) {
    if (!address || !byte_count) return r.fail(VRX_ERR_NULL_ARGUMENT, "No address or byte count given");
    return c.control_read(r, port, *address, data, *byte_count, timeout_ms);
  });
}

uint32_t VRX_ControlWrite(uint32_t handle, uint32_t port, uint32_t* address, const uint8_t* data,
                          uint32_t* byte_count, uint32_t) {
  return on_channel("VRX_ControlWrite", handle, [&](Channel& c, const CallReport& r) {
    if (!address || !byte_count) return r.fail(VRX_ERR_NULL_ARGUMENT, "No address or byte count given");
    return c.control_write(r, port, *address, data, *byte_count);
  });
}

uint32_t VRX_ControlReset(uint32_t handle, uint32_t port, void*, uint32_t) {
  return on_channel("VRX_ControlReset", handle,
                    [&](Channel& c, const CallReport& r) { return c.control_reset(r, port); });
}

uint32_t VRX_CommsTransmit(uint32_t handle, const uint8_t* data, uint32_t* byte_count, uint32_t) {
  return on_channel("VRX_CommsTransmit", handle, [&](Channel& c, const CallReport& r) {
    if (!byte_count) return r.fail(VRX_ERR_NULL_ARGUMENT, "No byte count given");
    return c.comms_transmit(r, data, *byte_count);
  });
}

uint32_t VRX_CommsReceive(uint32_t handle, uint8_t* data, uint32_t* byte_count, uint32_t timeout_ms) {
  return on_channel("VRX_CommsReceive", handle, [&](Channel& c, const CallReport& r) {
    if (!byte_count) return r.fail(VRX_ERR_NULL_ARGUMENT, "No byte count given");
    return c.comms_receive(r, data, *byte_count, timeout_ms);
  });
}

uint32_t VRX_Test(uint32_t handle, uint32_t test_id, void*) {
  return on_channel("VRX_Test", handle, [&](Channel& c, const CallReport& r) { return c.test(r, test_id); });
}

uint32_t VRX_MemoryAlloc(uint32_t, void** block_out, uint32_t size, uint32_t, uint32_t) {
  const CallReport report("VRX_MemoryAlloc", nullptr);
  return vrxsim::guarded(report, [&] {
    if (!block_out) return VRX_ERR_NULL_ARGUMENT;
    auto block = std::make_unique<uint8_t[]>(size == 0 ? 1 : size);
    std::lock_guard lock(vrxsim::g_memory_mutex);
    *block_out = block.get();
    vrxsim::g_memory_blocks.emplace(block.get(), std::move(block));
    return VRX_OK;
  });
}

uint32_t VRX_MemoryFreeAndNull(uint32_t, void** block) {
  const CallReport report("VRX_MemoryFreeAndNull", nullptr);
  return vrxsim::guarded(report, [&] {
    if (!block) return VRX_ERR_NULL_ARGUMENT;
    std::lock_guard lock(vrxsim::g_memory_mutex);
    if (*block && vrxsim::g_memory_blocks.erase(*block) == 0) return VRX_ERR_MEMORY;
    *block = nullptr;
    return VRX_OK;
  });
}

uint32_t vrxsim_fault_call(const char* function_name, uint32_t count, uint32_t status) {
  if (!function_name) return VRX_ERR_NULL_ARGUMENT;
  vrxsim::faults().add_call(function_name, count, status);
  return VRX_OK;
}

uint32_t vrxsim_fault_parameter(uint32_t parameter, uint32_t directions, uint32_t count, uint32_t status) {
  if ((directions & (VRXSIM_READ | VRXSIM_WRITE)) == 0) return VRX_ERR_BAD_VALUE;
  vrxsim::faults().add_parameter(parameter, directions & VRXSIM_READ, directions & VRXSIM_WRITE, count, status);
  return VRX_OK;
}

uint32_t vrxsim_fault_drop_events(uint32_t event_mask, uint32_t count) {
  vrxsim::faults().add_drop(event_mask, count);
  return VRX_OK;
}

uint32_t vrxsim_fault_delay_events(uint32_t delay_ms, uint32_t count) {
  vrxsim::faults().add_delay(delay_ms, count);
  return VRX_OK;
}

uint32_t vrxsim_fault_load(const char* faults) {
  std::string error;
  if (!faults) return VRX_ERR_NULL_ARGUMENT;
  return vrxsim::faults().load(faults, error) ? VRX_OK : VRX_ERR_BAD_VALUE;
}

void vrxsim_fault_clear(void) { vrxsim::faults().clear(); }

uint32_t vrxsim_set_frame_rate(uint32_t handle, double frames_per_second) {
  return on_channel("vrxsim_set_frame_rate", handle,
                    [&](Channel& c, const CallReport& r) { return c.set_frame_rate(r, frames_per_second); });
}

uint32_t vrxsim_raise_event(uint32_t handle, uint32_t event_mask) {
  return on_channel("vrxsim_raise_event", handle,
                    [&](Channel& c, const CallReport& r) { return c.raise_event(r, event_mask); });
}

uint32_t vrxsim_trigger(uint32_t handle) {
  return on_channel("vrxsim_trigger", handle, [&](Channel& c, const CallReport& r) { return c.trigger(r); });
}

uint32_t vrxsim_inject_frame(uint32_t handle, const void* data, uint32_t size) {
  return on_channel("vrxsim_inject_frame", handle, [&](Channel& c, const CallReport& r) {
    if (!data && size > 0) return r.fail(VRX_ERR_NULL_ARGUMENT, "No frame data given");
    const auto* bytes = static_cast<const uint8_t*>(data);
    return c.inject_frame(r, std::vector<uint8_t>(bytes, bytes + size));
  });
}

uint32_t vrxsim_parameter_force(uint32_t handle, uint32_t parameter, uint32_t value) {
  return on_channel("vrxsim_parameter_force", handle,
                    [&](Channel& c, const CallReport& r) { return c.force_parameter(r, parameter, value); });
}

uint32_t vrxsim_set_pocl_camera(uint32_t handle, uint32_t attached) {
  return on_channel("vrxsim_set_pocl_camera", handle,
                    [&](Channel& c, const CallReport& r) { return c.set_pocl_camera(r, attached != 0); });
}

uint32_t vrxsim_set_cxp_trip(uint32_t handle, uint32_t tripped) {
  return on_channel("vrxsim_set_cxp_trip", handle,
                    [&](Channel& c, const CallReport& r) { return c.set_cxp_trip(r, tripped != 0); });
}

void vrxsim_trace_writes(uint32_t on) {
  if (on)
    vrxsim::write_trace().start();
  else
    vrxsim::write_trace().stop();
}

uint32_t vrxsim_traced_writes(VRXSIM_PARAMETER_WRITE* writes, uint32_t capacity, uint32_t* count) {
  if (!count || (!writes && capacity > 0)) return VRX_ERR_NULL_ARGUMENT;
  const std::vector<VRXSIM_PARAMETER_WRITE> recorded = vrxsim::write_trace().writes();
  *count = static_cast<uint32_t>(recorded.size());
  std::copy_n(recorded.begin(), std::min<std::size_t>(capacity, recorded.size()), writes);
  return VRX_OK;
}

uint64_t vrxsim_event_time_ns(uint32_t handle) {
  std::shared_ptr<Channel> channel = vrxsim::handles().find(handle);
  return channel ? channel->event_time_ns() : 0;
}

}  // extern "C"
