/*
 * vrcw32 imaging library: the baseline JPEG codec.
 *
 * A JPEG image is an image record that owns a JPEG state block (quantisation and Huffman tables,
 * quality scale) and, once compressed, the entropy-coded data. Its type gives the sampling:
 * ZEP_Y8 (one component), ZEP_YUV422 (Y sampled 2 x 1) or ZEP_DATA16_C (4:1:1 data, decoded only);
 * its width and height are those of the picture.
 */
#ifndef VRCW32_ZEP_JPEG_H
#define VRCW32_ZEP_JPEG_H

#include "vrcw32/zep_core.h"

#ifdef __cplusplus
extern "C" {
#endif
ZEP_API_BEGIN

/* Creates an image with a fresh JPEG state block (quality scale 32); returns the handle. */
uint32_t ZEP_JPEG_image_create(void);
/* Gives `jpeg_image` the type and SOF/SOS fields for coding `source` (grey or colour). */
uint32_t ZEP_JPEG_set_image(uint32_t source, uint32_t jpeg_image);

/* Quality scale 1..400 (16: the standard tables; larger is coarser). */
uint32_t ZEP_JPEG_set_Quality_factor(uint32_t jpeg_image, uint16_t q);
/* Quantisation factor 2..800: quality scale = 50 / f x 16 (50: the standard tables). */
uint32_t ZEP_JPEG_set_Quantization_factor(uint32_t jpeg_image, uint16_t f);
/* Builds both quantisation tables and their reciprocals from the quality scale. */
uint32_t ZEP_JPEG_make_Q_tables(uint32_t jpeg_image);
/* Installs the four default Huffman tables (T.81 Tables K.3 to K.6). */
uint32_t ZEP_JPEG_set_default_H_tables(uint32_t jpeg_image);
/* Builds the encoding code tables from the image's Huffman tables. */
uint32_t ZEP_JPEG_generate_H_codetable_LUTs(uint32_t jpeg_image);
/* Builds the shared decoding lookup tables of the default Huffman tables. */
uint32_t ZEP_JPEG_generate_Huffman_decode_tables(void);
/* Zeroes the chrominance quantisation table, so that chroma carries no detail. */
uint32_t ZEP_JPEG_ConvertToMonoYUV(uint32_t jpeg_image);

/* Codes a whole-image `source` (Y8, RGB24, BGR24, RGBX32, BGRX32, XBGR32 or YUV422). */
uint32_t ZEP_JPEG_compress(uint32_t source, uint32_t jpeg_image);
/* Decodes into `destination`: Y8 for grey data; YUV422, RGB24, BGR24 or BGRX32 (the
 * destination's type) for colour data. */
uint32_t ZEP_JPEG_decompress(uint32_t jpeg_image, uint32_t destination);

ZEP_API_END

#ifdef __cplusplus
}
#endif

#endif
