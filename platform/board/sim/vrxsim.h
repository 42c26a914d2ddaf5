/*
 * Extra calls of the simulated frame grabber (libvrxsim.so), for tests and demonstrations.
 *
 * Fault injection. A fault makes a call fail with a chosen status instead of doing its work (the
 * failure is reported through the handle's error handler like any other):
 *   vrxsim_fault_call("VRX_Open", 2, 0x8107)        the next 2 calls of VRX_Open fail with 0x8107;
 *                                                   any VRX_, VBL_, VDL_ or VIL_ name works;
 *   vrxsim_fault_parameter(id, VRXSIM_WRITE, 1, s)  the next write of parameter `id` fails with s
 *                                                   (VRXSIM_READ, VRXSIM_WRITE or both);
 *   vrxsim_fault_drop_events(mask, n)               the next n deliveries lose the bits of `mask`;
 *   vrxsim_fault_delay_events(ms, n)                the next n deliveries wait `ms` first (n = 0:
 *                                                   every delivery, until cleared);
 *   vrxsim_fault_clear()                            forgets every fault.
 * The environment variable VRXSIM_FAULTS, read when the first handle is created, holds the same
 * faults as entries separated by ';' (numbers in C notation):
 *   call:VRX_Open:2:0x8107;param:0xC0021100:w:1:0x8103;drop:0x2:10;delay:50:0
 * vrxsim_fault_load() takes such a text at any time.
 *
 * Other environment variables: VRXSIM_FPS (frames per second of a free-running camera, default
 * 30), VRXSIM_BOARDS (installed boards as a comma list of board type codes, default
 * "0xC0013005,0xC0016004": a PoCL Camera Link Base board and a four-link CoaXPress board).
 *
 * Every call returns 0 on success or a VRX_ status.
 */
#ifndef VRC_PLATFORM_BOARD_SIM_VRXSIM_H
#define VRC_PLATFORM_BOARD_SIM_VRXSIM_H

#include <stdint.h>

#include "platform/board/vrx_sdk.h"

#ifdef __cplusplus
extern "C" {
#endif

#define VRXSIM_READ 1u
#define VRXSIM_WRITE 2u

VRX_API uint32_t vrxsim_fault_call(const char *function_name, uint32_t count, uint32_t status);
VRX_API uint32_t vrxsim_fault_parameter(uint32_t parameter, uint32_t directions, uint32_t count,
                                        uint32_t status);
VRX_API uint32_t vrxsim_fault_drop_events(uint32_t event_mask, uint32_t count);
VRX_API uint32_t vrxsim_fault_delay_events(uint32_t delay_ms, uint32_t count);
VRX_API uint32_t vrxsim_fault_load(const char *faults);
VRX_API void vrxsim_fault_clear(void);

/* Frames per second of the handle's free-running camera (overrides VRXSIM_FPS; 1 .. 100000). */
VRX_API uint32_t vrxsim_set_frame_rate(uint32_t handle, double frames_per_second);
/* Delivers events (for example VRX_EVENT_TEST) through the event thread, subject to the mask. */
VRX_API uint32_t vrxsim_raise_event(uint32_t handle, uint32_t event_mask);
/* One edge on the acquisition-trigger input. */
VRX_API uint32_t vrxsim_trigger(uint32_t handle);
/* The next captured frame is these bytes (the rest of the buffer keeps the test pattern). */
VRX_API uint32_t vrxsim_inject_frame(uint32_t handle, const void *data, uint32_t size);
/* Stores a value without validation, as a board with odd firmware might report it. */
VRX_API uint32_t vrxsim_parameter_force(uint32_t handle, uint32_t parameter, uint32_t value);
/* Inside an event callback: when its events happened, in steady-clock nanoseconds. */
VRX_API uint64_t vrxsim_event_time_ns(uint32_t handle);
/* Whether a PoCL camera (one that draws power over the cable) is attached; default no. */
VRX_API uint32_t vrxsim_set_pocl_camera(uint32_t handle, uint32_t attached);
/* Trips (1) or restores (0) the CoaXPress camera power, as an over-current would; writing
   "Trip Reset" to the power parameter restores it too. CoaXPress boards only. */
VRX_API uint32_t vrxsim_set_cxp_trip(uint32_t handle, uint32_t tripped);

/* Write trace: from vrxsim_trace_writes(1) on, every VRX_ParameterSet is recorded with its
   handle, parameter, value (0 for the pointer-valued ones) and returned status, refused writes
   included, until vrxsim_trace_writes(0); starting again clears the record. */
typedef struct VRXSIM_PARAMETER_WRITE {
  uint32_t handle, parameter, value, status;
} VRXSIM_PARAMETER_WRITE;
VRX_API void vrxsim_trace_writes(uint32_t on);
/* Copies up to `capacity` recorded writes, oldest first; *count receives how many there are. */
VRX_API uint32_t vrxsim_traced_writes(VRXSIM_PARAMETER_WRITE *writes, uint32_t capacity,
                                      uint32_t *count);

#ifdef __cplusplus
}
#endif

#endif
