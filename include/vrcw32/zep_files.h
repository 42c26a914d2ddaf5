/*
 * vrcw32 imaging library: image files.
 *
 * Format detection by content, reading and writing BMP, TIFF and EPS files, BMP images in memory,
 * device-independent-bitmap images for display, and raw pixel data. File names come from the
 * image's infilename (reading) and outfilename (writing).
 *
 * The `action` argument of the file functions: ZEP_ACTION_DATA transfers the pixels and closes
 * the file, ZEP_ACTION_CLOSE only closes it after the header work, and any other value returns
 * with the file left open. A file left open (also by a strip of an image taller than its strip)
 * stays open in a process-wide slot of its function, one per function, until the same function
 * opens another file or every image is destroyed (ZEP_image_destroy(ZEP_ALL_IMAGES)).
 * The functions return statuses (see zep_core.h).
 */
#ifndef VRCW32_ZEP_FILES_H
#define VRCW32_ZEP_FILES_H

#include "vrcw32/zep_core.h"

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

/* ---- File-format codes ------------------------------------------------------------------ */

#define ZEP_FILE_UNKNOWN 0 /* not recognised */
#define ZEP_FILE_TIFF 3
#define ZEP_FILE_JPEG 8
#define ZEP_FILE_EPS 9
#define ZEP_FILE_BMP 10
#define ZEP_FILE_RAW 11 /* raw pixel data, written only */

/* ---- Actions of the file functions ------------------------------------------------------ */

#define ZEP_ACTION_DATA 3  /* transfer the pixel data, then close */
#define ZEP_ACTION_CLOSE 4 /* close after the header */

/* ---- The file formats the library knows ------------------------------------------------ */

typedef struct ZEP_FILE_FORMAT_INFO {
  uint16_t code;          /* ZEP_FILE_* */
  const char *name;       /* "TIFF", as tools show it */
  const char *extensions; /* file-name extensions, lower case, without dots, blank-separated,
                             the usual one first: "tif tiff" */
  uint32_t detected;      /* 1 when ZEP_image_find_file_format recognises the format */
  uint32_t readable;      /* 1 when ZEP_image_read reads it */
  uint32_t writable;      /* 1 when ZEP_image_write writes it */
} ZEP_FILE_FORMAT_INFO;

/* The index-th file format the library knows (0, 1, ...), or null after the last. The record and
 * its texts belong to the library and live as long as the process. */
const ZEP_FILE_FORMAT_INFO *ZEP_file_format_info(uint32_t index);
/* 1 when ZEP_image_write stores pixels of `type` in `format` as they are, else 0. */
uint32_t ZEP_file_format_stores_type(uint32_t format, uint32_t type);

/* ---- Detection and dispatch ------------------------------------------------------------- */

/* The format of the file at `path` from its first bytes: 0 (not recognised), 3, 8, 9 or 10, or
 * an error code when the file cannot be opened or closed. */
uint32_t ZEP_image_find_file_format(const char *path);
/* Reads the image's input file; only `format` 0 (detect) is accepted. */
uint32_t ZEP_image_read(uint32_t handle, uint16_t format, uint16_t action);
/* Writes the image's output file in `format` (3, 8, 9, 10 or 11); `unused` is ignored. */
uint32_t ZEP_image_write(uint32_t handle, uint32_t unused, uint16_t format, uint16_t action);
/* Writes the current strip as raw pixel data, no header. One raw file is open at a time. */
uint32_t ZEP_write_raw_data_file(uint32_t handle, uint16_t action);

/* ---- BMP files and device-independent bitmaps ------------------------------------------- */

uint32_t ZEP_read_BMP_file(uint32_t handle, uint16_t action);
uint32_t ZEP_write_BMP_file(uint32_t handle);
/* Writes a complete BMP into `buffer` (the caller makes it large enough: 1078 or 54 bytes of
 * header plus height x row bytes) and stores its length in `size_out`. */
uint32_t ZEP_image_write_BMP_buffer(uint32_t handle, uint8_t *buffer, uint32_t *size_out);
/* Makes `dst` a BGR24 image with 4-byte line alignment holding the pixels of `src`. */
uint32_t ZEP_convert_to_DIB_w31(uint32_t src, uint32_t dst, uint32_t flags, uint16_t action);

/* ---- TIFF files ------------------------------------------------------------------------- */

uint32_t ZEP_write_TIFF_file(uint32_t handle, uint16_t action);
uint32_t ZEP_read_TIFF_file(uint32_t handle, uint16_t action);

/* ---- EPS files -------------------------------------------------------------------------- */

uint32_t ZEP_write_EPS_file(uint32_t handle, uint16_t action);
uint32_t ZEP_read_EPS_file(uint32_t handle, uint16_t action);

ZEP_API_END
#ifdef __cplusplus
}
#endif

#endif
