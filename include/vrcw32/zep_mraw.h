/*
 * vrcw32 imaging library: MRAW sequence files.
 *
 * An MRAW file holds frames of one image geometry, uncompressed: a 64-byte per-file header that
 * describes the image, then per frame a 320-byte per-image header (frame number, time stamp,
 * stride, user values and blocks) followed by the frame's pixel bytes exactly as they lie in the
 * image's strip. Header fields are stored most significant byte first.
 *
 * Files are reached through handles 1..8. One handle is used by one thread at a time; allocation,
 * close and the table's initialisation are guarded by the library lock.
 */
#ifndef VRCW32_ZEP_MRAW_H
#define VRCW32_ZEP_MRAW_H

#include "vrcw32/zep_core.h"

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

#define ZEP_MRAW_HANDLES 9u                 /* table slots; slot 0 is never issued */
#define ZEP_MRAW_FILE_NAME_LENGTH 256       /* characters of the file name, terminator included */
#define ZEP_MRAW_USER_BLOCK_BYTES 128       /* bytes of each user block */
#define ZEP_MRAW_HEADER_BUFFER_BYTES 512    /* bytes of each header buffer */
#define ZEP_MRAW_PER_FILE_HEADER_BYTES 64   /* per-file header as written */
#define ZEP_MRAW_PER_IMAGE_HEADER_BYTES 320 /* per-image header as written */
#define ZEP_MRAW_ID_BYTES 27                /* "MRAW " and the maker identification */

/* The handle record, fields in their defined order; ZEP_MRAW_GetInfo / ZEP_MRAW_SetInfo copy it
 * whole. */
typedef struct ZEP_MRAW_RECORD {
  uint32_t handle;                                        /* the slot number */
  struct ZEP_MRAW_RECORD *self;                           /* address of this record */
  char file_name[ZEP_MRAW_FILE_NAME_LENGTH];              /* path given to Create or Open */
  FILE *file;                                             /* the open stream */
  uint32_t frame_count;                                   /* frames in the file / written */
  ZEP_IMAGE *image;                                       /* image describing the frames */
  uint32_t image_handle;                                  /* that image's handle */
  uint32_t frame_number;                                  /* frame last written or read, from 1 */
  int64_t time_stamp;                                     /* seconds since 1970, current frame */
  uint32_t frame_stride;                                  /* per-image header + frame bytes */
  uint32_t user_value[3];                                 /* carried in every per-image header */
  uint8_t user_block1[ZEP_MRAW_USER_BLOCK_BYTES];         /* carried in every per-image header */
  uint8_t user_block2[ZEP_MRAW_USER_BLOCK_BYTES];         /* carried in every per-image header */
  uint32_t header_per_file_length;                        /* 64 when written */
  uint32_t header_per_image_length;                       /* 320 when written */
  uint8_t header_per_file[ZEP_MRAW_HEADER_BUFFER_BYTES];  /* per-file header bytes */
  uint8_t header_per_image[ZEP_MRAW_HEADER_BUFFER_BYTES]; /* per-image header bytes */
  uint32_t width;                                         /* of the frames */
  uint32_t height;                                        /* of the frames */
  uint32_t is_colour;                                     /* ZEP_image_is_colour of the frames */
  uint32_t user_time; /* non-zero: the caller sets time_stamp; zero: each write stamps now */
  uint32_t in_use;    /* slot allocated */
} ZEP_MRAW_RECORD;

/* Clears handles 1..8 (a stream still open is closed first). ZEP_Init calls it. */
uint32_t ZEP_MRAW_InitLibrary(void);
/* Creates (truncates) the file at `path` for writing; the handle is stored in `handle_out`. */
uint32_t ZEP_MRAW_Create(uint32_t *handle_out, const char *path);
/* Opens the file at `path` for reading: checks the identification, reads the per-file header,
 * takes the frame count from the last frame and stands on frame 1. The frames' geometry is held
 * by an image that Open creates (record field image_handle) and Close destroys. */
uint32_t ZEP_MRAW_Open(uint32_t *handle_out, const char *path);
/* Appends the image's strip as the next frame; the first frame also writes the per-file header.
 * Every frame must have the first frame's geometry and hold all its lines in one strip. */
uint32_t ZEP_MRAW_ImageWrite(uint32_t handle, uint32_t image);
/* Reads a frame into `image` (one strip of all lines): `frame` 1..count-1 that frame, 0 the
 * next one, below 0 or from the frame count on the last one. */
uint32_t ZEP_MRAW_ImageRead(uint32_t handle, uint32_t image, int32_t frame);
/* Moves `count` frames forwards (backwards when negative) from the current position. */
uint32_t ZEP_MRAW_SkipFrames(uint32_t handle, int32_t count);
uint32_t ZEP_MRAW_Close(uint32_t handle);
uint32_t ZEP_MRAW_GetInfo(uint32_t handle, ZEP_MRAW_RECORD *record_out);
/* Copies `record` over the handle's record; the slot's own handle, address, stream and in-use
 * word are kept. */
uint32_t ZEP_MRAW_SetInfo(uint32_t handle, const ZEP_MRAW_RECORD *record);

ZEP_API_END
#ifdef __cplusplus
}
#endif

#endif
