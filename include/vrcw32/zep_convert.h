/* clang-format off */
/*
 * vrcw32 imaging library: colour maps, paletted images, pixel-format conversion, YUV 4:2:2 and the
 * conversion look-up tables.
 *
 * Conversions work strip by strip. Every ZEP_convert_to_* member (and every YUV 4:2:2 member) is
 * called as (src, dst, mode): mode 3 converts the next strip of `src` into `dst`, mode 4 abandons
 * a conversion in progress. Each member keeps one process-wide state (idle or busy) and a count of
 * source lines done, so one conversion per member can be in progress at a time. On the first
 * strip the member copies the source's parameters to the destination and gives it the member's
 * type; a source with lines_this_strip 0 only sets the destination's parameters; a source that
 * already has the member's type is copied. On the last strip the source's lines_this_strip is cut
 * to the lines that remain, and so is the destination's. Each strip replaces the destination's
 * data with a newly allocated strip.
 *
 * Outputs whose details this header fixes (beyond the rules every member shares):
 *   RGB24, BGR24, RGBX32, BGRX32, XBGR32, XRGB32
 *     accept Y8, Y16, RGB15, RGB16 and the other 24/32-bit formats (ZEP_convert_to_RGB24 does
 *     not take XRGB32) and write R, G, B in their byte order; the X byte is 0. A 5-bit or 6-bit
 *     component c becomes 8 bits by repeating its top bits: (c << 3) | (c >> 2), (c << 2) | (c >> 4).
 *     A Y16 sample s of data width w is the grey value s >> (w - 8) (s << (8 - w) below 8 bits).
 *   RGB15, RGB16   accept Y8, Y16, the 24/32-bit formats and the other 16-bit format.
 *   Y16            accepts Y8 (sample = y << (data width - 8)) and the 24/32-bit and 16-bit colour
 *                  formats, whose grey value is Y8's (77 R + 150 G + 29 B) >> 8 first.
 *   CMYK32         from PALETTED: each byte is the complement of the map entry's byte. From Y8,
 *                  Y16, RGB15, RGB16 and the 24/32-bit formats: C = 255 - R, M = 255 - G,
 *                  Y = 255 - B, then K = min(C, M, Y) is taken out of each (C - K, M - K, Y - K, K),
 *                  so that R = 255 - (C + K) gives the source back.
 *   RGB8           one byte per pixel of 3-3-2 colour: (R & 0xE0) | ((G & 0xE0) >> 3) | (B >> 6),
 *                  from Y8, Y16, PALETTED, RGB15, RGB16 and the 24/32-bit formats. The dither
 *                  variant adds the 4 x 4 ordered-dither threshold t (0..15, the Bayer matrix at
 *                  (x mod 4, y mod 4) of the image's pixel position) before quantising:
 *                  R' = min(255, R + (t << 1)), G' = min(255, G + (t << 1)), B' = min(255, B + (t << 2)).
 *   YUV422 _LUT members with 24/32-bit outputs read the RGB16 table (203) and widen its 5-6-5
 *                  value to 8 bits as above; the RGB15 and RGB16 _LUT members read tables 204 and
 *                  203 directly.
 *   YUV422 to Y8   Y of each pixel; to Y16: Y << (data width - 8).
 *   HSI (108)      four bytes per pixel from the R, G, B of the YUV arithmetic, integers only:
 *                    bytes 0-1  hue in degrees 0..359, little-endian; with mx = max(R, G, B),
 *                               mn = min(R, G, B), d = mx - mn: 0 when d = 0, else
 *                               60 (G - B) / d when mx = R, 120 + 60 (B - R) / d when mx = G,
 *                               240 + 60 (R - G) / d otherwise (division truncating towards 0),
 *                               plus 360 when negative
 *                    byte 2     saturation: 0 when R + G + B = 0, else 255 - 765 mn / (R + G + B)
 *                    byte 3     intensity: (R + G + B) / 3
 *   YUV422 members read and write lines with no padding between them (at even widths and the
 *                  usual line alignment of 2 there is none); strip bytes past the lines are 0.
 *
 * Conversion tables (ids 200..205) are process-wide; the _LUT members need the table they read
 * to have been generated or loaded: without it they fail with "Conversion LUT does not exist"
 * (0x100B0000).
 */
/* clang-format on */
#ifndef VRCW32_ZEP_CONVERT_H
#define VRCW32_ZEP_CONVERT_H

#include "vrcw32/zep_core.h"

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

/* ---- Modes of the strip protocol -------------------------------------------------------- */

#define ZEP_MODE_NEXT_STRIP 3 /* convert the next strip */
#define ZEP_MODE_RESET 4      /* abandon a conversion in progress */

/* ---- Colour map ------------------------------------------------------------------------- */

#define ZEP_CMAP_ENTRIES 256
#define ZEP_CMAP_ENTRY_BYTES 4 /* red, green, blue, unused */

/* Named colours of ZEP_cmap_set_colour. */
#define ZEP_COLOUR_BLACK 0
#define ZEP_COLOUR_DARK_BLUE 1
#define ZEP_COLOUR_DARK_GREEN 2
#define ZEP_COLOUR_DARK_CYAN 3
#define ZEP_COLOUR_DARK_RED 4
#define ZEP_COLOUR_DARK_MAGENTA 5
#define ZEP_COLOUR_DARK_YELLOW 6
#define ZEP_COLOUR_GREY 7
#define ZEP_COLOUR_DARK_GREY 8
#define ZEP_COLOUR_BLUE 9
#define ZEP_COLOUR_GREEN 10
#define ZEP_COLOUR_CYAN 11
#define ZEP_COLOUR_RED 12
#define ZEP_COLOUR_MAGENTA 13
#define ZEP_COLOUR_YELLOW 14
#define ZEP_COLOUR_WHITE 15

/* Preset maps of ZEP_cmap_set_type. */
#define ZEP_CMAP_BLACK 0    /* all 256 entries black, cmap_colours unchanged */
#define ZEP_CMAP_NAMED 1    /* the 16 named colours, cmap_colours 16 */
#define ZEP_CMAP_GREY 2     /* entry i = (i, i, i), cmap_colours 256 */
#define ZEP_CMAP_CUBE_332 3 /* 3-3-2 colour cube, cmap_colours 256 */

#define ZEP_CMAP_HISTOGRAM_ENTRIES 4096
#define ZEP_CMAP_NO_INDEX 0xFFFFFFFFu /* histogram entry without a map index */

/* The colour-map search aid of an image (field cmap_info): a histogram of quantised colours. */
typedef struct ZEP_CMAP_INFO {
  uint32_t histogram[ZEP_CMAP_HISTOGRAM_ENTRIES][3]; /* key, occurrence count, map index */
  uint32_t histogram_size;                           /* entries in use */
  uint8_t red_bits;                                  /* quantisation depths */
  uint8_t green_bits;
  uint8_t blue_bits;
  uint8_t grey_bits;
  uint32_t colours_to_add; /* map entries the next generation fills */
  uint32_t colours_found;  /* distinct keys counted by the last generation */
  uint32_t coverage;       /* percentage of pixels whose colour got its own entry */
  uint32_t reserved[2];
} ZEP_CMAP_INFO;

/* Returns a value: a new search aid from malloc with its defaults, or null when memory runs out.
 * Stored as an image's cmap_info it belongs to the image (freed by ZEP_cmap_destroy_info and
 * ZEP_image_destroy); otherwise the caller frees it with free(). */
ZEP_CMAP_INFO *ZEP_cmap_create_info(void);
/* Frees the image's search aid and nulls cmap_info. */
uint32_t ZEP_cmap_destroy_info(uint32_t handle);

/* Returns a value: entry `index` as 0x00RRGGBB, or an error code. */
uint32_t ZEP_cmap_get_RGB_colour(uint32_t handle, uint16_t index);
uint32_t ZEP_cmap_set_RGB_colour(uint32_t handle, uint16_t index, uint8_t red, uint8_t green,
                                 uint8_t blue);
uint32_t ZEP_cmap_set_colour(uint32_t handle, uint16_t index, uint16_t colour);
uint32_t ZEP_cmap_set_type(uint32_t handle, uint16_t type, uint32_t unused);
/* Return values: 1 or 0, or an error code. */
uint32_t ZEP_cmap_is_grayscale(uint32_t handle);
uint32_t ZEP_image_is_colour(uint32_t handle);
/* ZEP_cmap_copy, which copies the 256-entry map, is declared with the image functions. */

/* Returns a value: the index of the map entry nearest to (red, green, blue) by squared distance; the lowest index
 * wins a tie; 0 for an empty map. */
uint32_t ZEP_cmap_find_closest_colour(uint32_t handle, uint8_t red, uint8_t green, uint8_t blue);

/* Builds the map from the image's colours (strip protocol; ZEP_RGB24, ZEP_Y16, ZEP_Y8). The
 * generation state is process-wide: a strip of an image without colour-map information that
 * arrives while a generation is busy fails with "Colourmap information does not exist"
 * (0x100B0000). */
uint32_t ZEP_cmap_generate(uint32_t handle, uint16_t colours, uint16_t mode);

/* Fills counts[0..255] with the pixels the last generation counted for each map entry (0 for an
 * entry that no quantised colour received). Errors: unknown handle 0x10040000, no colour-map
 * information 0x100B0000 ("Colourmap information does not exist"). */
uint32_t ZEP_cmap_get_occurrences(uint32_t handle, uint32_t counts[ZEP_CMAP_ENTRIES]);

/* ---- The conversion family -------------------------------------------------------------- */

uint32_t ZEP_image_convert(uint32_t src, uint32_t dst, uint16_t out_type, uint32_t dst_flags,
                           uint16_t mode);

uint32_t ZEP_convert_to_Y8(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_Y16(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_RGB8(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_RGB8_dither(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_RGB15(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_RGB16(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_RGB24(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_BGR24(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_RGBX32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_BGRX32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_XBGR32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_XRGB32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_CMYK32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_YUV422(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_paletted(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_convert_to_paletted_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_paletted_to_RGB24_or_Y8(uint32_t src, uint32_t dst, uint16_t mode);

/* ---- YUV 4:2:2 -------------------------------------------------------------------------- */

uint32_t ZEP_YUV422_to_Y8(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_Y16(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGB15(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGB16(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGB24(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_BGR24(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGBX32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_BGRX32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_XBGR32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_XRGB32(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGB15_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGB16_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGB24_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_BGR24_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_RGBX32_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_BGRX32_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_XBGR32_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_XRGB32_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_paletted_LUT(uint32_t src, uint32_t dst, uint16_t mode);
uint32_t ZEP_YUV422_to_HSI(uint32_t src, uint32_t dst, uint16_t mode);

/* Returns a value: (V << 16) | (U << 8) | Y of one RGB colour, U and V with their offset of 128. */
uint32_t ZEP_CK_get_YUV_values_RGB(uint8_t red, uint8_t green, uint8_t blue);

/* ---- Conversion tables ------------------------------------------------------------------ */

#define ZEP_LUT_RGB16_TO_PALETTED 200  /* 65536 bytes: RGB16 value -> map index */
#define ZEP_LUT_Y8_TO_PALETTED 201     /* 256 bytes: Y8 value -> map index */
#define ZEP_LUT_Y16_TO_PALETTED 202    /* 2^data width bytes: Y16 sample -> map index */
#define ZEP_LUT_YUV422_TO_RGB16 203    /* 2^19 16-bit entries: (Y>>1)<<12 | (U>>2)<<6 | V>>2 */
#define ZEP_LUT_YUV422_TO_RGB15 204    /* as 203, RGB15 values */
#define ZEP_LUT_YUV422_TO_PALETTED 205 /* 32768 bytes: (Y>>3)<<10 | (U>>3)<<5 | V>>3 -> index */

/* Build table `id`; the paletted tables against the colour map of `handle`, table 202 with
 * 2^(data width of `handle`) entries. */
uint32_t ZEP_image_conv_LUT_generate(uint32_t handle, uint16_t id);
uint32_t ZEP_image_conv_LUT_destroy(uint16_t id);
/* The table's bytes as held in memory (16-bit entries least significant byte first), no header. */
uint32_t ZEP_image_conv_LUT_save(uint32_t handle, uint16_t id, const char *path);
uint32_t ZEP_image_conv_LUT_load(uint32_t handle, uint16_t id, const char *path);

uint32_t ZEP_generate_RGB16_to_paletted_LUT(uint32_t handle);
uint32_t ZEP_generate_Y8_to_paletted_LUT(uint32_t handle);
uint32_t ZEP_generate_Y16_to_paletted_LUT(uint32_t handle);
uint32_t ZEP_generate_YUV422_to_RGB16_LUT(uint32_t handle);
uint32_t ZEP_generate_YUV422_to_RGB15_LUT(uint32_t handle);
uint32_t ZEP_generate_YUV422_to_paletted_LUT(uint32_t handle);
uint32_t ZEP_destroy_RGB16_to_paletted_LUT(void);
uint32_t ZEP_destroy_Y8_to_paletted_LUT(void);
uint32_t ZEP_destroy_Y16_to_paletted_LUT(void);
uint32_t ZEP_destroy_YUV422_to_RGB16_LUT(void);
uint32_t ZEP_destroy_YUV422_to_RGB15_LUT(void);
uint32_t ZEP_destroy_YUV422_to_paletted_LUT(void);

ZEP_API_END
#ifdef __cplusplus
}
#endif

#endif
