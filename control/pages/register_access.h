// Reading and writing registers by hand through the SDK's control ports: the camera's (over its
// serial link) and the frame grabber's register space. Addresses, data and byte counts are typed
// as hexadecimal text; every check, message and display rule lives here so that every page with
// register controls (the Register page, the CXP page's camera registers) behaves the same. The
// controls are found on the page by id; a page wires its buttons to these calls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CVrxPage;

namespace vrc::pages {

// Control ids of the camera register controls.
inline constexpr int IdCameraWriteAddress = 17390;
inline constexpr int IdCameraWriteData = 17391;
inline constexpr int IdCameraReadAddress = 17392;
inline constexpr int IdCameraReadCount = 17393;
inline constexpr int IdCameraReadResult = 17394;
inline constexpr int IdCameraWrite = 17400;
inline constexpr int IdCameraRead = 17402;
inline constexpr int IdCameraReset = 17404;

// Control ids of the frame-grabber register controls.
inline constexpr int IdGrabberWriteAddress = 17395;
inline constexpr int IdGrabberWriteData = 17396;
inline constexpr int IdGrabberReadAddress = 17397;
inline constexpr int IdGrabberReadResult = 17399;
inline constexpr int IdGrabberWrite = 17401;
inline constexpr int IdGrabberRead = 17403;

// The page's receive buffer: a camera read asks for at most this many bytes.
inline constexpr uint32_t kReceiveBufferSize = 0x10000;

// A hexadecimal number as "%Nx" reads it (at most `digits` digits); 0 when none parses.
uint32_t parse_hex(std::string_view text, int digits = 8);
// The bytes of a data text: an odd first digit alone, then each pair of digits; at least one.
std::vector<uint8_t> bytes_of_data_text(std::string_view text);
// Upper-case digits of `bytes`, cut to 96 digits, in lines of 32 separated by CR LF.
std::string camera_read_display(const std::vector<uint8_t> &bytes);
// Upper-case digits on one line.
std::string hex_digits(const std::vector<uint8_t> &bytes);

// The camera's buttons.
void WriteCameraRegister(CVrxPage &page, uint32_t timeout_ms);
void ReadCameraRegister(CVrxPage &page, uint32_t timeout_ms);
void ResetCamera(CVrxPage &page, uint32_t timeout_ms);
// The frame grabber's buttons.
void WriteGrabberRegister(CVrxPage &page, uint32_t timeout_ms);
void ReadGrabberRegister(CVrxPage &page, uint32_t timeout_ms);

}  // namespace vrc::pages
