// Reporting a failure once, where it is found, and the guard that keeps exceptions from crossing
// the C boundary.
#pragma once

#include "vrcw32/zep_core.h"

#include <cstdint>
#include <new>
#include <stdexcept>

namespace vrc::core {

// Reports `code` through the installed handler under `function_name` and returns `code`.
uint32_t report(const char *function_name, uint32_t code, const char *message = "");

// Runs `body` and returns its status; an escaped std::bad_alloc becomes the memory error code, a
// std::invalid_argument or std::out_of_range (a bad argument that reached the standard library)
// the bad-parameter code, and any other exception the internal-error code, each reported under
// `function_name`.
template <typename Body>
uint32_t api_guard(const char *function_name, Body body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc &) {
    return report(function_name, ZEP_ERR_MEMORY);
  } catch (const std::invalid_argument &) {
    return report(function_name, ZEP_ERR_BAD_PARAM);
  } catch (const std::out_of_range &) {
    return report(function_name, ZEP_ERR_BAD_PARAM);
  } catch (...) {
    return report(function_name, ZEP_ERR_INTERNAL, "Unexpected exception");
  }
}

}  // namespace vrc::core

namespace vrc::core {

// The record of `handle`; for an unknown handle, reports 0x10040000 with an empty text under
// `function_name` and returns null.
ZEP_IMAGE *record_or_report(uint32_t handle, const char *function_name);

}  // namespace vrc::core
