// The panel's property sheet: the windowing layer's sheet with a caption and a parent window
// (null allowed). It adds no data and no message handling of its own; CVrxCtrl builds on it.
#pragma once

#include <string>

#include "platform/window/property_sheet.h"
#include "vrcw32/vrc.h"

class VRC_API CVrxSheet : public vrc::window::PropertySheet {
 public:
  CVrxSheet(std::string caption, CWnd *parent) : PropertySheet(std::move(caption), parent) {}
};
