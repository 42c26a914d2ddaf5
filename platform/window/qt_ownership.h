// Qt objects that belong to a parent object (layouts, helper widgets of a composite) are made
// here and deleted by Qt with their parent; everything else is held by std::unique_ptr.
#pragma once

#include <utility>

namespace vrc::window {

template <typename QtType, typename... Arguments>
QtType* make_child(Arguments&&... arguments) {
  return new QtType(std::forward<Arguments>(arguments)...);  // owned by its Qt parent
}

}  // namespace vrc::window
