#pragma once

#include "platform/desktop/picture.h"

/// The program's pictures, each loaded from the file of its name at first use and kept. A picture that cannot be loaded
/// is empty, and the next use tries again.
namespace pictures {

const Picture& mac();
const Picture& csv();
const Picture& linux();
const Picture& windows();
const Picture& tolvaris();
const Picture& arrow();
const Picture& settings();
const Picture& elephant();
const Picture& about_16();
const Picture& exit_16();
const Picture& help_16();

}  // namespace pictures
