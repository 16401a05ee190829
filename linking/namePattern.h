#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace linking {

/// A text to look for in names, with LIKE's wildcards in it: % for any text and _ for any one character. It is folded
/// as NameIndex folds names. A U+0080 in it is LIKE's alone to judge.
class NamePattern {
  public:
    explicit NamePattern(std::u32string folded);
    NamePattern(const NamePattern&) = delete;
    NamePattern& operator=(const NamePattern&) = delete;

    /// Whether the folded name contains the text, as LIKE finds it.
    bool isIn(std::u32string_view name) const;

    /// What stands between the wildcards, as it stands in every name that contains the text.
    const std::vector<std::u32string_view>& pieces() const { return pieces_; }

  private:
    std::u32string text_;
    std::vector<std::u32string_view> parts_;   ///< between the %, with _ in them
    std::vector<std::u32string_view> pieces_;  ///< none is empty
};

}  // namespace linking
