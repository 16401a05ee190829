#pragma once

#include <string>

/// Writes an RSD file of the older layout, whose matings have a column `numUndefined`, with four empty tables.
void makeRsdSource(const std::string& path);
