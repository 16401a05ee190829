#pragma once

#include <memory>
#include <string>

class QIcon;
class QPixmap;

/// A loaded picture, shared by all that show it; empty if it could not be loaded.
class Picture {
  public:
    Picture() = default;

    /// Loads a picture file by its name from the program's resources, and with it the one of twice the size that lies
    /// beside it under the name with "@2x" at its end. Empty, and nothing reported, if there is none of that name.
    static Picture load(const std::string& fileName);

    explicit operator bool() const { return sizes_ != nullptr; }

    /// The picture for a screen with so many pixels to one of the window's. Of a larger size it is to be drawn smaller.
    const QPixmap& pixmap(double pixelRatio = 1) const;

    /// For a menu or a title bar.
    QIcon icon() const;

  private:
    struct Sizes;
    std::shared_ptr<const Sizes> sizes_;
};
