// Test support for JPEG files: smooth test pictures in every source format, JPEG images made by
// our encoder, libjpeg-turbo's cjpeg and djpeg as outside encoder and decoder, PNM pictures and
// the peak signal-to-noise ratio between two pictures.
#pragma once

#include "files/files_support.h"

#include <cstdint>
#include <string>

namespace vrc::test {

// A picture as 8-bit samples: grey (1 channel) or RGB (3 channels), rows without padding.
struct Picture {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t channels = 0;
  Bytes samples;
};

// A smooth picture with some detail (gradients and a gentle ripple), the kind of content the
// codec is meant for; grey when `channels` is 1.
Picture smooth_picture(uint32_t width, uint32_t height, uint32_t channels);

// Makes `image` a whole-image strip of `type` holding `picture` (an RGB picture converted by the
// library into the type; a grey picture for ZEP_Y8).
void fill_image(uint32_t image, const Picture &picture, uint16_t type);

// The picture an image holds, as the library converts it to RGB24 (or Y8 for a grey image).
Picture picture_of(uint32_t image);

// Peak signal-to-noise ratio in dB between pictures of one geometry (infinity when equal).
double psnr(const Picture &a, const Picture &b);

// A PGM or PPM file (binary, maxval 255) as written by djpeg; an empty picture when unreadable.
Picture read_pnm(const std::string &path);
void write_pnm(const std::string &path, const Picture &picture);

// djpeg's decoding of a JPEG file (`options` such as "-nosmooth").
Picture djpeg(const std::string &jpeg_path, const std::string &options = "");
// Runs cjpeg with `options` on `picture`; the JPEG file's bytes.
Bytes cjpeg(const Picture &picture, const std::string &options);

// An image handle made by ZEP_JPEG_image_create, destroyed with its scope.
class ScopedJpeg {
 public:
  ScopedJpeg() : m_handle(ZEP_JPEG_image_create()) {}
  ~ScopedJpeg() { ZEP_image_destroy(m_handle); }
  ScopedJpeg(const ScopedJpeg &) = delete;
  ScopedJpeg &operator=(const ScopedJpeg &) = delete;
  operator uint32_t() const { return m_handle; }
  ZEP_IMAGE &image() const {
    return *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(m_handle, ZEP_IMAGE_RECORD_PTR));
  }
  ZEP_JPEG_RECORD &record() const {
    return *static_cast<ZEP_JPEG_RECORD *>(ZEP_image_get_ptr(m_handle, ZEP_JPEG_RECORD_PTR));
  }

 private:
  uint32_t m_handle;
};

// Compresses `source` into `jpeg` at quality scale `quality`; the status.
uint32_t compress(uint32_t source, uint32_t jpeg, uint16_t quality);

// The JPEG file of a `type` picture of width x height compressed at quality scale `quality`.
Bytes jpeg_file(uint16_t type, uint32_t width, uint32_t height, uint16_t quality = 16);

// Decodes JPEG image `jpeg` into a new picture (grey for grey data, else RGB24).
Picture decode(uint32_t jpeg);

uint32_t write_jpeg(uint32_t jpeg, const std::string &path);
uint32_t read_jpeg(uint32_t jpeg, const std::string &path);

}  // namespace vrc::test
