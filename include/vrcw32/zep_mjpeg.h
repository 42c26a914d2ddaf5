/*
 * vrcw32 imaging library: MJPEG sequence files.
 *
 * An MJPEG file is a stream of JPEG frames coded with the default Huffman tables. The first frame
 * is a JFIF image without its Huffman tables; every later frame is abbreviated to a comment
 * segment, a bare SOS marker, the entropy data and EOI. Each frame's 296-byte comment (numbers
 * most significant byte first) holds its number, its data length, a time stamp, user values and
 * the lengths of its own record and the previous one, so that a reader skips frames without
 * decoding them.
 *
 * Writing keeps the newest frame in memory until the next one arrives (its record's length is
 * then patched in): a file closed after n frames holds n - 1.
 *
 * Files are reached through handles 1..8. One handle is used by one thread at a time; allocation,
 * close and the table's initialisation are guarded by the library lock.
 */
#ifndef VRCW32_ZEP_MJPEG_H
#define VRCW32_ZEP_MJPEG_H

#include "vrcw32/zep_core.h"

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

#define ZEP_MJPEG_HANDLES 9u             /* table slots; slot 0 is never issued */
#define ZEP_MJPEG_FILE_NAME_LENGTH 256   /* characters of the file name, terminator included */
#define ZEP_MJPEG_COMMENT_BYTES 296      /* the binary comment of every frame */
#define ZEP_MJPEG_USER_TEXT_BYTES 128    /* bytes of each user text */
#define ZEP_MJPEG_LATER_RECORD_EXTRA 304 /* a later record's bytes beyond its entropy data */
#define ZEP_MJPEG_MODE_DEBUG 1u          /* mode bit: ZEP_MJPEG_DEBUG_DumpData writes its dump */

/* The handle record, fields in their defined order; ZEP_MJPEG_GetInfo / ZEP_MJPEG_SetInfo copy it
 * whole. The comment fields hold the values of the frame last written or read. */
typedef struct ZEP_MJPEG_RECORD {
  uint32_t handle;                               /* the slot number */
  struct ZEP_MJPEG_RECORD *self;                 /* address of this record */
  char file_name[ZEP_MJPEG_FILE_NAME_LENGTH];    /* path given to Create or Open */
  uint32_t mode;                                 /* the mode word given to Create */
  FILE *file;                                    /* the open stream */
  uint32_t jpeg_image;                           /* JPEG image with the file's tables */
  uint32_t frame_count;                          /* frames in the file / written */
  uint8_t comment[ZEP_MJPEG_COMMENT_BYTES];      /* the current frame's comment bytes */
  uint32_t frame_number;                         /* from 1 */
  uint32_t data_length;                          /* bytes of entropy data */
  int64_t time_stamp;                            /* seconds since 1970; low 32 bits stored */
  uint32_t user_value;                           /* the value given to Create */
  uint32_t next_frame_length;                    /* this frame's record length */
  uint32_t further_values[3];                    /* stored at comment offsets 20, 24, 32 */
  uint32_t previous_frame_length;                /* the previous frame's record length */
  uint32_t further_value_last;                   /* stored at comment offset 36 */
  uint8_t user_text1[ZEP_MJPEG_USER_TEXT_BYTES]; /* carried in every comment */
  uint8_t user_text2[ZEP_MJPEG_USER_TEXT_BYTES]; /* carried in every comment */
  uint32_t user_time;       /* non-zero: the caller sets time_stamp; zero: each write stamps now */
  uint32_t is_colour;       /* the frames have three components */
  uint32_t in_use;          /* slot allocated */
  uint32_t buffer_index;    /* the buffer holding the current record */
  uint32_t buffer_size;     /* bytes of each buffer */
  uint8_t *buffers[2];      /* records being built / data read */
  uint32_t buffer_bytes[2]; /* bytes held in each buffer */
} ZEP_MJPEG_RECORD;

/* Clears handles 1..8 (streams still open are closed, buffers freed). ZEP_Init calls it. */
uint32_t ZEP_MJPEG_InitLibrary(void);
/* Creates (truncates) the file at `path`; every frame's comment carries `user_value`. */
uint32_t ZEP_MJPEG_Create(uint32_t *handle_out, const char *path, uint32_t user_value,
                          uint32_t mode);
/* Opens the file at `path`: reads its JPEG header, learns the frame count from the last frame and
 * stands before frame 1 (the first read of the next frame gives frame 1). */
uint32_t ZEP_MJPEG_Open(uint32_t *handle_out, const char *path);
/* Adds the compressed JPEG image as the next frame; the frame before it goes to the file. */
uint32_t ZEP_MJPEG_ImageWrite(uint32_t handle, uint32_t jpeg_image);
/* Reads a frame into the JPEG image (tables, size and entropy data, ready to decompress):
 * `frame` from 1; 0 the next one; -1 or beyond the count the last one; below -1 the first. */
uint32_t ZEP_MJPEG_ImageRead(uint32_t handle, uint32_t jpeg_image, int32_t frame);
/* Move over `count` frames by their stored record lengths (scanning where one is unknown). */
uint32_t ZEP_MJPEG_SkipForwards(uint32_t handle, uint32_t count);
uint32_t ZEP_MJPEG_SkipBackwards(uint32_t handle, uint32_t count);
/* Move over `count` frames by searching their comment markers. */
uint32_t ZEP_MJPEG_ScanForwards(uint32_t handle, uint32_t count);
uint32_t ZEP_MJPEG_ScanBackwards(uint32_t handle, uint32_t count);
/* Copies the user value, the time stamp and the user texts of one handle to another. */
uint32_t ZEP_MJPEG_CopyParams(uint32_t from_handle, uint32_t to_handle);
uint32_t ZEP_MJPEG_GetInfo(uint32_t handle, ZEP_MJPEG_RECORD *record_out);
/* Copies `record` over the handle's record; the slot's handle, address, stream, JPEG image,
 * buffers and in-use word are kept. */
uint32_t ZEP_MJPEG_SetInfo(uint32_t handle, const ZEP_MJPEG_RECORD *record);
/* Frees the buffers and closes the file; a frame still held in memory is not written. */
uint32_t ZEP_MJPEG_Close(uint32_t handle);
/* With ZEP_MJPEG_MODE_DEBUG in the record's mode, appends the current record's bytes to the text
 * file at `path`; otherwise does nothing. */
uint32_t ZEP_MJPEG_DEBUG_DumpData(const ZEP_MJPEG_RECORD *record, const char *path);

ZEP_API_END
#ifdef __cplusplus
}
#endif

#endif
