// Dialog templates: what a property page holds, as a table of (control id, kind, caption,
// group box). The layout is worked out from the table: group boxes fill a grid of `columns`
// columns in order of first mention; inside a group a Label sits left of the control after it,
// consecutive push buttons share a row, and everything else takes a row of its own.
#pragma once

#include <span>

#include "platform/window/controls.h"

namespace vrc::window {

struct ControlTemplate {
  int id;
  ControlKind kind;
  const char* caption;  // text of labels, buttons, check boxes, group boxes and static texts
  const char* group;    // caption of the group box it sits in, or "" for none
};

struct DialogTemplate {
  int id;               // template id
  const char* caption;  // tab caption
  std::span<const ControlTemplate> controls;
  int columns = 2;      // group boxes per row
};

}  // namespace vrc::window
