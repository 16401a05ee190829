#pragma once

/// What assistive technology sees of the windows: frames and dialogs by their titles, and in them the controls without
/// the pictures that say nothing.
namespace accessibility {

/// Makes the toolkit describe the windows so; once, at the start.
void install();

}  // namespace accessibility
