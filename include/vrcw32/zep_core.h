/*
 * vrcw32 imaging library: the image object, the handle table, status codes, the error handler,
 * byte-order helpers, the library lock and small utilities.
 *
 * RESULTS. Every function is a plain C function that never throws. Unless its comment says
 * "Returns a value", a function returns a status: 0 (or, for a few, another number up to 0xFFFF,
 * such as the handle of ZEP_image_create) on success, and above 0xFFFF an error code, class |
 * detail (ZEP_ERR_*), which has been reported once through the installed error handler where it
 * was found. Test statuses with ZEP_IS_ERROR. A function that returns a value (a parameter, a
 * count, a pointer) may return numbers above 0xFFFF that are no error: ZEP_IS_ERROR must not be
 * used on them; ZEP_image_query_parameter gives a parameter with a separate status.
 *
 * OWNERSHIP AND LIFETIME. An image record owns its pixel buffer (`data`), colour map (`cmap`),
 * colour-map search aid (`cmap_info`) and JPEG record from ZEP_image_create to
 * ZEP_image_destroy, which frees them all with free(), a caller's locked buffer included (see
 * ZEP_FLAG_LOCKED). Pointers the library hands out point into the record or its buffers; each
 * function's comment says how long they stay valid. Texts the library returns are its own.
 *
 * THREADING. One process-wide recursive lock (ZEP_CriticalSectionBegin / End) guards the handle
 * table (creating and destroying images, setting flags on all images, freeing data), installing
 * the error handler, the allocation counters and the conversion tables. Nothing else is locked:
 *   - one image must not be used by two threads at once; different images may be used on
 *     different threads at the same time, and so may the byte-order and text helpers;
 *   - the strip-wise operations keep process-wide state between calls: at most one conversion
 *     per ZEP_convert_to_* / ZEP_YUV422_to_* member, one ZEP_cmap_generate, and one file per
 *     file function left open between calls (one raw-data file in all) may be in progress in the
 *     whole process at a time;
 *   - the error handler runs on the thread that met the failure; the table's last-code words are
 *     written without the lock.
 * ZEP_Init may run on any thread; the first ZEP_image_create runs it when nobody has.
 */
#ifndef VRCW32_ZEP_CORE_H
#define VRCW32_ZEP_CORE_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

/* Declarations between ZEP_API_BEGIN and ZEP_API_END are what libvrcw32.so exports; the library
 * is built with hidden visibility for everything else. */
#if defined(__GNUC__)
#define ZEP_API_BEGIN _Pragma("GCC visibility push(default)")
#define ZEP_API_END _Pragma("GCC visibility pop")
#else
#define ZEP_API_BEGIN
#define ZEP_API_END
#endif

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

/* ---- Handles ---------------------------------------------------------------------------- */

#define ZEP_MAX_HANDLES 65536u       /* slots in the handle table; slot 0 is never issued */
#define ZEP_ALL_IMAGES 0x10001u      /* destroy / set flags on every image */
#define ZEP_ANY_IMAGES_LEFT 0x10002u /* destroy only: is any image left? */
#define ZEP_NAME_LENGTH 128          /* characters of a name field, terminator included */

/* ---- Pixel formats (image type) --------------------------------------------------------- */

#define ZEP_NONE 0
#define ZEP_Y1 1
#define ZEP_Y8 2
#define ZEP_PALETTED 3
#define ZEP_RGB8 4
#define ZEP_RGB15 5
#define ZEP_RGB16 6
#define ZEP_RGB24 7
#define ZEP_BGR24 8
#define ZEP_RGBX32 9
#define ZEP_BGRX32 10
#define ZEP_XBGR32 11
#define ZEP_YUV422 12
#define ZEP_CMYK32 13
#define ZEP_Y16 14
#define ZEP_XRGB32 15
#define ZEP_DATA32_8 16
#define ZEP_DATA64 17
#define ZEP_DATA32 100
#define ZEP_DCT32_A 101
#define ZEP_DCT32_B 102
#define ZEP_DATA16_A 103
#define ZEP_DATA16_B 104
#define ZEP_PALETTED_TO_DIRECT 105 /* only as the requested output of ZEP_image_convert */
#define ZEP_DATA16_C 106
#define ZEP_HSI 108
#define ZEP_TYPE_LIMIT 109 /* every accepted type code is below this */

/* ---- Parameter ids (ZEP_image_get_parameter / ZEP_image_set_parameter) ------------------- */

#define ZEP_IMAGE_TYPE 10
#define ZEP_IMAGE_WIDTH 11
#define ZEP_IMAGE_HEIGHT 12
#define ZEP_IMAGE_DEPTH 13
#define ZEP_LINES_THIS_STRIP 14
#define ZEP_BYTES_PER_LINE 15
#define ZEP_STRIP_BYTES 16
#define ZEP_DATA_WIDTH 17
#define ZEP_NUM_FRAMES 18
#define ZEP_CURRENT_FRAME 19
#define ZEP_CMAP_COLOURS 20
#define ZEP_JPEG_LENGTH 21
#define ZEP_LIBRARY_ID 22
#define ZEP_FIELD_MODE 23
#define ZEP_LINE_ALIGN 24
#define ZEP_DERIVED_LINE_ALIGN 25
#define ZEP_BYTES_PER_PIXEL 26

#define ZEP_LIBRARY_ID_VALUE 0x00044200u /* value of ZEP_LIBRARY_ID after initialisation */

/* ---- Pointer ids (ZEP_image_get_ptr / ZEP_image_set_ptr) -------------------------------- */

#define ZEP_DATA_PTR 100
#define ZEP_CMAP_PTR 101
#define ZEP_JPEG_BUFFER_PTR 102
#define ZEP_JPEG_POSITION_PTR 103
#define ZEP_IMAGE_RECORD_PTR 104
#define ZEP_JPEG_RECORD_PTR 105
#define ZEP_JPEG_INFO_BLOCK 106

#define ZEP_JPEG_INFO_BLOCK_BYTES 32

/* ---- Flags ------------------------------------------------------------------------------ */

/* ZEP_FLAG_LOCKED: `data` is the caller's buffer (a frame-grabber buffer, say).
 * ZEP_image_free_data leaves it, ZEP_image_malloc_a_strip keeps it, ZEP_image_move refuses the
 * image. ZEP_image_destroy and ZEP_ImageUnlockAndDestroy nevertheless free it with free(): a
 * buffer that did not come from malloc, or that must outlive the image, is detached first with
 * ZEP_image_set_ptr(handle, ZEP_DATA_PTR, NULL). */
#define ZEP_FLAG_LOCKED 1u
#define ZEP_FLAG_JPEG 2u     /* the content is the compressed data of the JPEG record */
#define ZEP_FLAG_DIB 4u      /* ZEP_image_convert makes a device-independent bitmap */
#define ZEP_FLAG_USE_LUT 16u /* conversions use the precomputed conversion tables */
#define ZEP_FLAG_FIELDS 32u  /* the data holds two interleaved fields */
#define ZEP_FLAG_DITHER 128u /* dithered conversion requested (refused by ZEP_image_convert) */

/* ---- Status codes ----------------------------------------------------------------------- */

#define ZEP_OK 0u
#define ZEP_ERR_NOT_ZEP 0x10010000u     /* "(Not generated by ZEP library)" */
#define ZEP_ERR_INTERNAL 0x10020000u    /* "(Internal error in library)" */
#define ZEP_ERR_BAD_PARAM 0x10030000u   /* "(Bad parameter)" */
#define ZEP_ERR_HANDLE 0x10040000u      /* "(Invalid handle)" */
#define ZEP_ERR_CORRUPT 0x10050000u     /* "(Corrupt image)" */
#define ZEP_ERR_MEMORY 0x10060000u      /* "(Memory allocation failed)" */
#define ZEP_ERR_UNSUPPORTED 0x10070000u /* "(Not supported)" */
#define ZEP_ERR_NO_HANDLES 0x10080000u  /* "(Run out of handles)" */
#define ZEP_ERR_OPEN 0x10090000u        /* "(Open failed)" */
#define ZEP_ERR_CLOSE 0x100A0000u       /* "(Close failed)" */
#define ZEP_ERR_STATE 0x100B0000u       /* "(Invalid state)" */
#define ZEP_ERR_UNEXPECTED 0x100C0000u  /* "(Unexpected condition/character received)" */
#define ZEP_ERR_SYSTEM 0x100D0000u      /* "(System call failed)" */

#define ZEP_ERR_CLASS_MASK 0xFFFF0000u
#define ZEP_ERR_LIBRARY_MASK 0xFF000000u
#define ZEP_ERR_LIBRARY_ZEP 0x10000000u
/* For statuses only (see RESULTS above): a value of ZEP_image_get_parameter above 0xFFFF is a
 * value, not an error. */
#define ZEP_IS_ERROR(status) ((uint32_t)(status) > 0xFFFFu)

/* ---- Records ---------------------------------------------------------------------------- */

struct ZEP_JPEG_RECORD; /* the JPEG record of an image; opaque here */

/* The image record, fields in their defined order. */
typedef struct ZEP_IMAGE {
  uint16_t type;                     /* pixel-format code; 0 = none */
  uint16_t data_width;               /* significant bits per sample */
  char name[ZEP_NAME_LENGTH];        /* free text name */
  char infilename[ZEP_NAME_LENGTH];  /* file the image was read from */
  char outfilename[ZEP_NAME_LENGTH]; /* file the image is to be written to */
  uint32_t width;                    /* pixels per line */
  uint32_t height;                   /* lines in the image */
  uint32_t depth;                    /* bits per pixel */
  uint32_t line_align;               /* lines are padded to a multiple of this many bytes */
  uint32_t derived_line_align;       /* line alignment of a rotation's destination; 0 = keep */
  uint32_t skip_bytes;               /* padding bytes at the end of each line */
  uint32_t num_frames;               /* frames held (JPEG sequences) */
  uint32_t current_frame;            /* 1-based frame index of sequences */
  uint8_t *data;                     /* pixel buffer of the current strip */
  uint32_t data_aux;                 /* travels with data on ZEP_image_move */
  uint32_t strip_bytes;              /* lines_this_strip x bytes_per_line */
  uint32_t flags;                    /* ZEP_FLAG_* bits */
  uint32_t cmap_colours;             /* colour-map entries in use */
  uint8_t *cmap;                     /* 256 entries of 4 bytes: red, green, blue, unused */
  void *cmap_info;                   /* colour-map search aid, freed with the image */
  uint32_t lines_this_strip;         /* lines per strip buffer */
  uint32_t bytes_per_line;           /* bytes per line including padding */
  uint32_t field_mode;               /* field/frame arrangement */
  struct ZEP_JPEG_RECORD *jpeg;      /* JPEG record, or null */
} ZEP_IMAGE;

typedef uint32_t (*ZEP_ERR_HANDLER)(uint32_t library, const char *function_name, uint32_t code,
                                    const char *message);

/* One entry of the error-handler table; the library reports through entry 1. */
typedef struct ZEP_ERR_ENTRY {
  uint32_t library_id;     /* 0x00044200 for entry 1 */
  uint32_t last_zep_code;  /* last ZEP error code reported */
  uint32_t other_code;     /* last code of another library; 0 when none is pending */
  ZEP_ERR_HANDLER handler; /* null switches reporting off */
} ZEP_ERR_ENTRY;

#define ZEP_LIBRARY_NUMBER 1u
#define ZEP_ERR_TEXT_LIMIT 511 /* characters of the default handler's text */
#define ZEP_ERR_CAPTION "ERROR REPORTED by ZEP Default Error Handler"

/* Command-line record filled by ZEP_Util_ParseCommand. Options beyond ZEP_CMD_OPTIONS and
 * arguments beyond ZEP_CMD_ARGUMENTS are ignored; longer words are cut to 127 characters. */
#define ZEP_CMD_OPTIONS 3
#define ZEP_CMD_ARGUMENTS 32
typedef struct ZEP_CMD_LINE {
  uint32_t argc;        /* argument count as given */
  uint32_t n_options;   /* options stored */
  uint32_t n_arguments; /* plain arguments stored */
  char program[ZEP_NAME_LENGTH];
  char option[ZEP_CMD_OPTIONS][ZEP_NAME_LENGTH];
  char argument[ZEP_CMD_ARGUMENTS][ZEP_NAME_LENGTH];
} ZEP_CMD_LINE;

/* ---- Library start-up ------------------------------------------------------------------- */

/* Starts the library: creates the lock, installs ZEP_ErrHandlerDefault (replacing any handler
 * installed before, so install yours after it) and sets the library word (ZEP_LIBRARY_ID).
 * Returns 0. ZEP_image_create runs it on first use. */
uint32_t ZEP_Init(void);
/* The same as ZEP_Init, under the other name programs call it by. */
uint32_t ZEP_InitLibrary(void);

/* ---- Image life cycle ------------------------------------------------------------------- */

/* The handle (1..65535) of a new image with the defaults of the record (height 32767, line
 * alignment 2, 8 lines per strip, a 256-entry map of 0xAA bytes), or an error: 0x10080000 when
 * every handle is in use, 0x1006000x when memory runs out. */
uint32_t ZEP_image_create(void);
/* Frees the image's record, data (even when ZEP_FLAG_LOCKED), colour map, search aid and JPEG
 * record; an unknown handle is ignored. ZEP_ALL_IMAGES destroys every image, the conversion
 * tables, and closes the files file functions left open. ZEP_ANY_IMAGES_LEFT destroys nothing
 * and returns 0x10020000 (not reported) while any image exists, else 0. */
uint32_t ZEP_image_destroy(uint32_t handle);
/* The same as ZEP_image_destroy, which releases locked data too. Returns 0. */
uint32_t ZEP_ImageUnlockAndDestroy(uint32_t handle);
/* Validates the record against its type and recomputes skip_bytes, bytes_per_line and
 * strip_bytes. An unknown handle gives 0x10050000 without a report. */
uint32_t ZEP_image_check(uint32_t handle);
/* Checks nothing and always returns 0; kept for programs that call it. */
uint32_t ZEP_ImageCheck2(uint32_t handle);
/* Returns a value: parameter `id` of the image, or an error code for an unknown handle or id or
 * a JPEG length without a JPEG record. ZEP_LIBRARY_ID is answered for any handle. A parameter
 * can exceed 0xFFFF: use ZEP_image_query_parameter where that matters. */
uint32_t ZEP_image_get_parameter(uint32_t handle, uint16_t id);
/* Stores parameter `id` in *value; the status, reported under this function's name. */
uint32_t ZEP_image_query_parameter(uint32_t handle, uint16_t id, uint32_t *value);
/* ZEP_IMAGE_TYPE also sets the depth (and for some types the data width) the type demands and
 * clears ZEP_FLAG_DIB; a refused type code stays stored. */
uint32_t ZEP_image_set_parameter(uint32_t handle, uint16_t id, uint32_t value);
/* Returns a value: the pointer `id` of the image, null for an unknown handle or id. Valid until:
 *   ZEP_DATA_PTR           the strip buffer is freed or replaced (ZEP_image_free_data, a read,
 *                          conversion or copy into the image, ZEP_image_move, destroy)
 *   ZEP_CMAP_PTR           destroy or ZEP_image_set_ptr(ZEP_CMAP_PTR); 256 entries of 4 bytes
 *   ZEP_JPEG_BUFFER_PTR, ZEP_JPEG_POSITION_PTR   the JPEG data is freed (free_data, destroy)
 *   ZEP_IMAGE_RECORD_PTR, ZEP_JPEG_RECORD_PTR, ZEP_JPEG_INFO_BLOCK   destroy */
void *ZEP_image_get_ptr(uint32_t handle, uint16_t id);
/* Stores a pointer without freeing the old one or copying. The record then owns it: data and
 * colour maps given here are freed with free() by ZEP_image_free_data (data, unless locked) and
 * ZEP_image_destroy, so they must come from malloc (a colour map of 1024 bytes).
 * ZEP_IMAGE_RECORD_PTR replaces the handle's record itself. */
uint32_t ZEP_image_set_ptr(uint32_t handle, uint16_t id, void *value);
/* Returns a value: 1 when any bit of `mask` is set, else 0; 0x10040000 for an unknown handle. */
uint32_t ZEP_image_get_flags(uint32_t handle, uint32_t mask);
/* `on` 1 sets the bits, anything else clears them; ZEP_ALL_IMAGES sets them on every image. */
uint32_t ZEP_image_set_flags(uint32_t handle, uint32_t mask, uint32_t on);
/* Checks the image and allocates bytes_per_line x lines_this_strip bytes with malloc into
 * `data`, without freeing a buffer already there (call ZEP_image_free_data first). A locked
 * image that has data keeps it. */
uint32_t ZEP_image_malloc_a_strip(uint32_t handle);
/* Frees `data` unless locked, and the JPEG data. */
uint32_t ZEP_image_free_data(uint32_t handle);
/* Returns a value: the padding bytes at the end of a line of `width` pixels of `depth` bits. */
uint32_t ZEP_image_calc_skip_bytes(uint32_t width, uint32_t depth, uint32_t line_align);
/* Returns a value: ceil(height / lines_this_strip) cut to 16 bits (0 when lines_this_strip is
 * 0), or 0x10040000 for an unknown handle. */
uint32_t ZEP_image_calc_total_strips(uint32_t handle);
/* Checks src, copies its parameters to dst (as ZEP_image_copy_parameters), then its current
 * strip into a new buffer of dst, whose old data is freed unless locked. An image whose content
 * is JPEG data (ZEP_FLAG_JPEG) is decompressed into a dst that has a JPEG record instead. With
 * lines_this_strip 0 only the parameters are copied. */
uint32_t ZEP_image_copy(uint32_t src, uint32_t dst);
/* Copies type, data width, the three names, geometry, alignments, skip bytes, frames, flags,
 * colour-map size and entries, field mode, lines per strip and bytes per line; never data,
 * strip_bytes or cmap_info. When both images have JPEG records their JPEG parameters are copied
 * too, and an error of that step is returned. */
uint32_t ZEP_image_copy_parameters(uint32_t src, uint32_t dst);
/* ZEP_image_copy_parameters without the JPEG step. */
uint32_t ZEP_image_copy_parameters_raw(uint32_t src, uint32_t dst);
/* Frees dst's data, copies src's parameters to dst and hands src's strip buffer (and data_aux)
 * to dst; src's data becomes null. For an image whose content is JPEG data and a dst with a JPEG
 * record, the JPEG buffer moves instead. Either image locked: 0x10070000, nothing moves. */
uint32_t ZEP_image_move(uint32_t src, uint32_t dst);
/* Copies src's 256-entry colour map into dst's (nothing when either map is null). */
uint32_t ZEP_cmap_copy(uint32_t src, uint32_t dst);

/* Sets width, height and type, makes the whole image one strip and fills it with `colour`
 * (see ZEP_DrawPixel for the colour value of each format). Returns 0. */
uint32_t ZEP_ImageMake(uint32_t handle, uint32_t width, uint32_t height, uint16_t type,
                       uint32_t colour);

/* Writes `colour` into pixel (x, y) of the current strip (y counts lines of the strip) in the
 * image's own layout. Colour value per format:
 *   Y8, PALETTED, RGB8      bits 0-7: the grey value, the map index, the 3-3-2 colour byte
 *   RGB15, RGB16            0x00RRGGBB, packed 5-5-5 / 5-6-5 into a little-endian word
 *   RGB24, BGR24            0x00RRGGBB, bytes written R,G,B / B,G,R
 *   RGBX32, BGRX32          0xXXRRGGBB, bytes written R,G,B,X / B,G,R,X
 *   XBGR32, XRGB32          0xXXRRGGBB, bytes written X,B,G,R / X,R,G,B
 *   YUV422                  0x00VVUUYY (as ZEP_CK_get_YUV_values_RGB returns it): an even pixel
 *                           writes Y and U of its pair, an odd pixel Y and V
 *   Y16                     bits 0-15, a little-endian sample
 *   CMYK32, HSI, DATA32     the value's four bytes, least significant first
 *   DATA16_A/_C             bits 0-15, little-endian
 *   DATA32_8, DATA64, DCT32_A/_B, DATA16_B
 *                           pixels of these types occupy bytes_per_line / width bytes each
 *                           (their line rules); the value's bytes fill them least significant
 *                           first, zeros after the fourth
 *   Y1                      the line rule gives 1-bit images no data bytes: nothing is written
 * Errors: unknown handle 0x10040000; no data, or (x, y) outside the strip 0x10030000. */
uint32_t ZEP_DrawPixel(uint32_t handle, uint32_t colour, uint32_t x, uint32_t y);

/* Unchecked accessors: the caller passes a live handle (a dead one reads as 0 or null, with no
 * report). They return values. */
uint32_t ZEP_get_width(uint32_t handle);
uint32_t ZEP_get_height(uint32_t handle);
uint16_t ZEP_get_depth(uint32_t handle);
uint32_t ZEP_get_bytes_per_line(uint32_t handle);
uint32_t ZEP_get_lines_this_strip(uint32_t handle);
/* A new block of count x bytes_per_line bytes (and one spare) from malloc; the caller frees it
 * with free(). Null when memory runs out. */
uint8_t *ZEP_malloc_N_lines(uint32_t handle, uint16_t count);
/* The record's 128-character name field itself: valid until the image is destroyed, and may be
 * written (127 characters and the terminator at most). */
char *ZEP_image_get_infilename(uint32_t handle);
char *ZEP_image_get_outfilename(uint32_t handle);
uint32_t ZEP_copy_outfilename(uint32_t dst, uint32_t src);

/* Names of 128 characters or more are cut to 127. */
uint32_t ZEP_image_set_infilename(uint32_t handle, const char *name);
uint32_t ZEP_image_set_outfilename(uint32_t handle, const char *name);

/* The name of an image pixel format as tools show it ("RGB24", "Y16"); null for 0, for the working
 * formats of the codec and processing operations and for codes that are no type. The text is
 * the library's own and lives as long as the process. */
const char *ZEP_pixel_format_name(uint32_t type);

/* ---- Errors ----------------------------------------------------------------------------- */

/* Returns a value. With `code` 0: the address of the library's ZEP_ERR_ENTRY (valid for the
 * life of the process), calling nothing. Otherwise calls the installed handler with the four
 * arguments and returns its result; 0 when none is installed. */
uintptr_t ZEP_ErrProcess(uint32_t library, const char *function_name, uint32_t code,
                         const char *message);
/* Installs the process-wide handler every report goes to (null: reports are dropped, codes are
 * still returned). The handler runs on the failing thread, with texts valid only during the
 * call. Returns 0. */
uint32_t ZEP_ErrHandlerInstall(ZEP_ERR_HANDLER handler);
/* The handler ZEP_Init installs: composes the report and shows it (see ZEP_SetMessageBox).
 * Returns a value: the box's result, 1 when written to standard error. */
uint32_t ZEP_ErrHandlerDefault(uint32_t library, const char *function_name, uint32_t code,
                               const char *message);

/* Where the default handler shows its text. A GUI application registers its message box here;
 * without one the text goes to standard error. The function returns the box's result. */
typedef uint32_t (*ZEP_MESSAGE_BOX)(const char *text, const char *caption);
void ZEP_SetMessageBox(ZEP_MESSAGE_BOX show);

/* ---- Byte order: i = least significant byte first, m = most significant byte first ------ */
/* The getters return values; the stream putters return the result of the last character write
 * (EOF on failure). No bounds or end-of-file checks are made. */

uint16_t ZEP_fget_ui16i(FILE *f);
uint16_t ZEP_fget_ui16m(FILE *f);
uint32_t ZEP_fget_ui32i(FILE *f);
uint32_t ZEP_fget_ui32m(FILE *f);
int ZEP_fput_ui8(FILE *f, uint8_t value);
int ZEP_fput_ui16i(FILE *f, uint16_t value);
int ZEP_fput_ui16m(FILE *f, uint16_t value);
int ZEP_fput_ui32i(FILE *f, uint32_t value);
int ZEP_fput_ui32m(FILE *f, uint32_t value);
uint16_t ZEP_mget_ui16i(const uint8_t *p);
uint16_t ZEP_mget_ui16m(const uint8_t *p);
uint32_t ZEP_mget_ui32i(const uint8_t *p);
uint32_t ZEP_mget_ui32m(const uint8_t *p);
void ZEP_mput_ui8(uint8_t *p, uint8_t value);
void ZEP_mput_ui16i(uint8_t *p, uint16_t value);
void ZEP_mput_ui16m(uint8_t *p, uint16_t value);
void ZEP_mput_ui32i(uint8_t *p, uint32_t value);
void ZEP_mput_ui32m(uint8_t *p, uint32_t value);

/* ---- Lock, allocation counters, text utilities ------------------------------------------ */

/* The library lock (recursive; see THREADING). Each returns 0. */
uint32_t ZEP_CriticalSectionInit(void);
uint32_t ZEP_CriticalSectionBegin(void);
uint32_t ZEP_CriticalSectionEnd(void);

/* malloc and free that count allocations, frees and bytes under the lock. ZEP_DebugMallocPrint
 * returns a value: the byte total allocated so far. */
void *ZEP_DebugMalloc(size_t size);
void ZEP_DebugFree(void *pointer);
uint32_t ZEP_DebugMallocPrint(void);

/* Reads the leading decimal number of `text` into `value`; returns a value: the position in
 * `text` of the first white-space character after the token (or of the text's end). A null text or value is reported
 * as a bad parameter and returns null. */
char *ZEP_sscanf(char *text, uint16_t *value);
/* Splits argv into the ZEP_CMD_LINE record `record`; returns 0, or 0x10030000 (reported) for a
 * null record or argument list. */
uint32_t ZEP_Util_ParseCommand(void *record, int argc, char **argv);

ZEP_API_END
#ifdef __cplusplus
}
#endif

#endif
