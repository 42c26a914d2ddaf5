// Test support: an error handler and a message box that record what the library reports, each
// installed for a test's lifetime, and an image handle destroyed with its scope.
#pragma once

#include "vrcw32/zep.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vrc::test {

struct Report {
  std::string function;
  uint32_t code;
  std::string message;
};

class ErrorCapture {
 public:
  ErrorCapture() {
    ZEP_Init();
    reports().clear();
    ZEP_ErrHandlerInstall(&record);
  }
  ~ErrorCapture() { ZEP_ErrHandlerInstall(nullptr); }
  ErrorCapture(const ErrorCapture &) = delete;
  ErrorCapture &operator=(const ErrorCapture &) = delete;

  const std::vector<Report> &all() const { return reports(); }
  const Report &last() const { return reports().back(); }
  std::size_t count() const { return reports().size(); }
  void clear() { reports().clear(); }

 private:
  static std::vector<Report> &reports() {
    static std::vector<Report> list;
    return list;
  }
  static uint32_t record(uint32_t, const char *function, uint32_t code, const char *message) {
    reports().push_back({function ? function : "", code, message ? message : ""});
    return 1;
  }
};

// Records what the library shows in a message box (the default handler's report, a lock
// failure), for a test's lifetime.
class MessageBoxCapture {
 public:
  struct Shown {
    std::string text;
    std::string caption;
    int count = 0;
  };

  MessageBoxCapture() {
    shown() = {};
    ZEP_SetMessageBox(&record);
  }
  ~MessageBoxCapture() { ZEP_SetMessageBox(nullptr); }
  MessageBoxCapture(const MessageBoxCapture &) = delete;
  MessageBoxCapture &operator=(const MessageBoxCapture &) = delete;

  const std::string &text() const { return shown().text; }
  const std::string &caption() const { return shown().caption; }
  int count() const { return shown().count; }

 private:
  static Shown &shown() {
    static Shown last;
    return last;
  }
  static uint32_t record(const char *text, const char *caption) {
    shown().text = text;
    shown().caption = caption;
    ++shown().count;
    return 1;
  }
};

// An image handle destroyed at the end of the scope.
class ScopedImage {
 public:
  ScopedImage() : m_handle(ZEP_image_create()) {}
  ~ScopedImage() { ZEP_image_destroy(m_handle); }
  ScopedImage(const ScopedImage &) = delete;
  ScopedImage &operator=(const ScopedImage &) = delete;
  operator uint32_t() const { return m_handle; }
  ZEP_IMAGE &record() const {
    return *static_cast<ZEP_IMAGE *>(ZEP_image_get_ptr(m_handle, ZEP_IMAGE_RECORD_PTR));
  }

 private:
  uint32_t m_handle;
};

}  // namespace vrc::test
