#pragma once

#include <memory>
#include <utility>

/// Makes a widget inside another, which owns it from then on; the toolkit deletes children with their parent.
template <typename Widget, typename Parent, typename... Arguments>
Widget* makeChild(Parent* parent, Arguments&&... arguments) {
    return std::make_unique<Widget>(std::forward<Arguments>(arguments)..., parent).release();
}
