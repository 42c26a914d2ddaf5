/*
 * The frame-grabber SDK as the control panel sees it: the acquisition library (VRX_), the buffer
 * library (VBL_), the display library (VDL_) and the image-conversion library (VIL_).
 *
 * Every call returns 0 on success or a non-zero status; VRX_STATUS_TIMEOUT (0x8000) marks a read
 * that timed out with partial data. A failing VRX_ call on a handle also reports itself once,
 * through the error handler given to VRX_Create, with its function name, status and a message.
 *
 * Parameter values travel by address: VRX_ParameterSet reads, and VRX_ParameterGet writes, one
 * uint32_t at `value`, with three exceptions that carry pointers instead:
 *   ParamConfigFile (set)    value is the `const char*` path itself;
 *   ParamEventContext (set)  value is the context pointer itself, handed back to the callback;
 *   ParamBoardInfo (get)     value points to a `const char*` that receives the board information
 *                            text ("key=value" lines, among them "Model"), valid until VRX_Close.
 * ParamPowerOutput (get) reads its in-value as the mask of lines to test. Ids, enumerated values
 * and value tables are in vrx_params.h.
 *
 * The simulated board (libvrxsim.so) adds the fault-injection calls of vrxsim.h.
 */
#ifndef VRC_PLATFORM_BOARD_VRX_SDK_H
#define VRC_PLATFORM_BOARD_VRX_SDK_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define VRX_API __attribute__((visibility("default")))

/* ---- Statuses ---------------------------------------------------------------------------- */

#define VRX_OK 0u
#define VRX_STATUS_TIMEOUT 0x8000u        /* time-out; the byte count says what did arrive */
#define VRX_ERR_BAD_HANDLE 0x8101u        /* not a handle from VRX_Create, or already destroyed */
#define VRX_ERR_BAD_PARAMETER 0x8102u     /* unknown parameter id, operation, port or test id */
#define VRX_ERR_BAD_VALUE 0x8103u         /* a value outside the parameter's table or range */
#define VRX_ERR_NOT_OPEN 0x8104u          /* the call needs an open board */
#define VRX_ERR_ALREADY_OPEN 0x8105u      /* VRX_Open on an open handle */
#define VRX_ERR_BUSY 0x8106u              /* not allowed while acquisition runs */
#define VRX_ERR_NO_BOARD 0x8107u          /* no installed board matches type, number and channel */
#define VRX_ERR_NO_BUFFER 0x8108u         /* no captured buffer to get, or nothing to release */
#define VRX_ERR_FILE 0x8109u              /* configuration file cannot be read, parsed or written */
#define VRX_ERR_NOT_SUPPORTED 0x810Au     /* the board model lacks the feature */
#define VRX_ERR_ADDRESS 0x810Bu           /* register address not mapped, or write to read-only */
#define VRX_ERR_READ_ONLY 0x810Cu         /* parameter cannot be written */
#define VRX_ERR_WRITE_ONLY 0x810Du        /* parameter cannot be read */
#define VRX_ERR_MEMORY 0x810Eu            /* allocation failed, or free of an unknown block */
#define VRX_ERR_TEST_FAILED 0x810Fu       /* a board self-test failed */
#define VRX_ERR_NULL_ARGUMENT 0x8110u     /* a required pointer argument is null */
#define VIL_NOT_IMPLEMENTED 10u           /* VIL_Convert: no conversion between these formats */

/* ---- Acquisition operations (VRX_Acquire) ------------------------------------------------- */

#define VRX_ACQ_START 0xC0030100u          /* argument: VRX_EVENT_CALLBACK */
#define VRX_ACQ_FREEZE 0xC0030400u         /* stop after the frame in progress */
#define VRX_ACQ_ABORT 0xC0030500u          /* stop at once */
#define VRX_ACQ_BUFFER_GET 0xC0030600u     /* argument: VRX_BUFFER_RECORD* */
#define VRX_ACQ_BUFFER_RELEASE 0xC0030700u /* hand back the buffer got, or drop the oldest */
#define VRX_ACQ_REGISTER_CALLBACK 0xC0030900u /* argument: VRX_EVENT_CALLBACK */
#define VRX_ACQ_RESTART 0xC0030A00u        /* argument: VRX_EVENT_CALLBACK; keeps the counters */
#define VRX_ACQ_SOFTWARE_TRIGGER 0xC0030B00u

/* ---- Event bits (callback mask, interrupt enable mask) ----------------------------------- */

#define VRX_EVENT_TEST 0x00000001u
#define VRX_EVENT_BUFFER_READY 0x00000002u
#define VRX_EVENT_FIFO_OVERFLOW 0x00000004u
#define VRX_EVENT_FRAME_LOST 0x00000008u
#define VRX_EVENT_START_OF_FRAME 0x00000020u
#define VRX_EVENT_END_OF_FRAME 0x00000040u
#define VRX_EVENT_START_OF_LINE 0x00000080u
#define VRX_EVENT_END_OF_LINE 0x00000100u
#define VRX_EVENT_ACQ_TRIG_START 0x00000200u
#define VRX_EVENT_ACQ_TRIG_END 0x00000400u
#define VRX_EVENT_TIMEOUT 0x00000800u
#define VRX_EVENT_GLOBAL_ENABLE 0x80000000u

/* ---- Types -------------------------------------------------------------------------------- */

/* Error handler: called once per failing call, on the calling thread. */
typedef uint32_t (*VRX_ERR_HANDLER)(const char *function_name, uint32_t status, const char *message);

/* Event callback: called on the board's event thread with the events of one moment. */
typedef void (*VRX_EVENT_CALLBACK)(uint32_t handle, uint32_t event_mask, void *context);

/* Filled by VRX_ACQ_BUFFER_GET: the buffer's data and its VBL_ buffer handle. */
typedef struct VRX_BUFFER_RECORD {
  void *address;
  uint32_t buffer;
} VRX_BUFFER_RECORD;

/* Where VDL_BufferPaint delivers a painted picture: 32-bit pixels, bytes B, G, R, X. */
typedef void (*VDL_PAINT_SINK)(void *sink_context, const uint8_t *bgrx, uint32_t width,
                               uint32_t height, uint32_t bytes_per_line);

/* ---- Acquisition library ------------------------------------------------------------------ */

VRX_API uint32_t VRX_Create(uint32_t *handle_out, VRX_ERR_HANDLER error_handler);
VRX_API uint32_t VRX_Open(uint32_t *handle);
VRX_API uint32_t VRX_Close(uint32_t *handle);
VRX_API uint32_t VRX_Destroy(uint32_t *handle);
VRX_API uint32_t VRX_ParameterGet(uint32_t handle, uint32_t parameter, void *value);
VRX_API uint32_t VRX_ParameterSet(uint32_t handle, uint32_t parameter, void *value);
VRX_API uint32_t VRX_Acquire(uint32_t handle, uint32_t operation, void *argument);
VRX_API uint32_t VRX_CameraConfigSave(uint32_t handle, const char *path, uint32_t mode);
VRX_API uint32_t VRX_ControlRead(uint32_t handle, uint32_t port, uint32_t *address, uint8_t *data,
                                 uint32_t *byte_count, uint32_t timeout_ms);
VRX_API uint32_t VRX_ControlWrite(uint32_t handle, uint32_t port, uint32_t *address,
                                  const uint8_t *data, uint32_t *byte_count, uint32_t timeout_ms);
VRX_API uint32_t VRX_ControlReset(uint32_t handle, uint32_t port, void *argument,
                                  uint32_t timeout_ms);
/* Serial link to the camera: *byte_count in = bytes offered or wanted, out = bytes moved. */
VRX_API uint32_t VRX_CommsTransmit(uint32_t handle, const uint8_t *data, uint32_t *byte_count,
                                   uint32_t timeout_ms);
VRX_API uint32_t VRX_CommsReceive(uint32_t handle, uint8_t *data, uint32_t *byte_count,
                                  uint32_t timeout_ms);
VRX_API uint32_t VRX_Test(uint32_t handle, uint32_t test_id, void *argument);
/* Zeroed memory; handle 0 and the two trailing arguments 0 are accepted. */
VRX_API uint32_t VRX_MemoryAlloc(uint32_t handle, void **block_out, uint32_t size, uint32_t flags,
                                 uint32_t reserved);
VRX_API uint32_t VRX_MemoryFreeAndNull(uint32_t handle, void **block);
/* Writes "FUNCTION: MESSAGE (status 0x....)" to standard error; returns 1. */
VRX_API uint32_t VRX_ErrHandlerDefault(const char *function_name, uint32_t status,
                                       const char *message);

/* ---- Buffer library ----------------------------------------------------------------------- */

#define VBL_BUFFER_TYPE_VIRTUAL 1u    /* ordinary process memory */
#define VBL_BUFFER_TYPE_CONTIGUOUS 3u /* the alternative buffer kind, same behaviour here */

#define VBL_WIDTH 1u       /* pixels */
#define VBL_HEIGHT 2u      /* lines */
#define VBL_ADDRESS 3u     /* get only: void* of the data (written to a void* at `value`) */
#define VBL_LINE_LENGTH 4u /* bytes per line; 0 before VBL_BufferInit means "just the pixels" */
#define VBL_FORMAT 7u      /* capture format code, 0xC0022601 + k */

VRX_API uint32_t VBL_BufferCreate(uint32_t *buffer_out, uint32_t type);
VRX_API uint32_t VBL_BufferParameterSet(uint32_t buffer, uint32_t item, uint32_t value);
VRX_API uint32_t VBL_BufferParameterGet(uint32_t buffer, uint32_t item, void *value);
VRX_API uint32_t VBL_BufferInit(uint32_t buffer);
VRX_API uint32_t VBL_BufferDestroy(uint32_t *buffer);

/* ---- Display library ---------------------------------------------------------------------- */

#define VDL_PARAM_FORMAT 0xC00A0100u        /* format the display shows buffers as (capture code) */
#define VDL_PARAM_INTERPOLATION 0xC00A0200u /* 0 pixel duplication, 1 averaging, 2 median */
#define VDL_PARAM_BAYER 0xC00A0300u         /* 0 off, else a Bayer colour type 0xC0021201..04 */

VRX_API uint32_t VDL_DisplayCreate(uint32_t *display_out, VDL_PAINT_SINK sink, void *sink_context);
VRX_API uint32_t VDL_DisplayDestroy(uint32_t *display);
VRX_API uint32_t VDL_DisplayParameterGet(uint32_t display, uint32_t parameter, uint32_t *value);
VRX_API uint32_t VDL_DisplayParameterSet(uint32_t display, uint32_t parameter, uint32_t value);
/* A buffer of the display's format, sized and initialised like a VBL_ buffer. */
VRX_API uint32_t VDL_BufferCreate(uint32_t display, uint32_t *buffer_out, uint32_t type);
VRX_API uint32_t VDL_BufferDestroy(uint32_t *buffer);
/* Converts any VBL_ buffer (capture buffers included) for the screen and hands it to the sink. */
VRX_API uint32_t VDL_BufferPaint(uint32_t display, uint32_t buffer);

/* ---- Image-conversion library ------------------------------------------------------------- */

/* Converts the source buffer's pixels into the destination buffer's format and size (the
   smaller of the two sizes is converted). VIL_NOT_IMPLEMENTED when a format is unknown. */
VRX_API uint32_t VIL_Convert(uint32_t source_buffer, uint32_t destination_buffer);

#ifdef __cplusplus
}
#endif

#endif
