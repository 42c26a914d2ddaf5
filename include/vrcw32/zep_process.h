/*
 * vrcw32 imaging library: image processing.
 *
 * Region crop (strip by strip) and the insertion of a whole image into another.
 */
#ifndef VRCW32_ZEP_PROCESS_H
#define VRCW32_ZEP_PROCESS_H

#include "vrcw32/zep_convert.h" /* ZEP_MODE_NEXT_STRIP, ZEP_MODE_RESET */
#include "vrcw32/zep_core.h"

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

/* Index of each value in the region array of ZEP_IP_crop: first column and first line (0-based),
 * then width and height, all signed 16-bit. */
#define ZEP_REGION_X 0
#define ZEP_REGION_Y 1
#define ZEP_REGION_WIDTH 2
#define ZEP_REGION_HEIGHT 3

/* Copies the region of `in` into `out`, one strip of `in` per call with mode ZEP_MODE_NEXT_STRIP;
 * the region is clipped to the image. One crop runs at a time in the process: reset with
 * ZEP_MODE_RESET (and a sound `in`) before starting a new crop when an earlier one was not
 * completed. The call that takes the last strip sets the lines_this_strip of `in` to the lines of
 * that strip which belong to the image. */
uint32_t ZEP_IP_crop(uint32_t in, uint32_t out, int16_t *region, uint16_t mode);

/* Pastes the whole of `insert` into `in` with its top-left pixel at column x, line y (1-based).
 * Both images hold their whole height in one strip and have the same pixel format. */
uint32_t ZEP_IP_image_insert(uint32_t in, uint32_t insert, uint32_t x, uint32_t y);

ZEP_API_END

#ifdef __cplusplus
}
#endif

#endif
