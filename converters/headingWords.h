#pragma once

#include <string>
#include <vector>

#include "converters/columnRecognition.h"

namespace columnRecognition {

/// The words by which breeders head the column of a field.
struct HeadingWords {
    Key key;
    std::vector<std::string> words;
};

/// All fields with their words. Tested from the top, and within a row from left to right.
const std::vector<HeadingWords>& headingWords();

}  // namespace columnRecognition
