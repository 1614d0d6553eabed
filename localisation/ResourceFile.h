// Whether a file is a whole PE module whose resources can be looked up without leaving it.
#pragma once

#include <cstddef>
#include <span>

namespace vixa {

// True when `file` is a PE file, of either width, whose sections all lie inside it and whose resource tree, if it has
// one, points only into its own sections. The system's resource functions follow that tree unchecked, so a language
// file is let near them only after this.
bool IsWholeResourceModule(std::span<const std::byte> file) noexcept;

} // namespace vixa
