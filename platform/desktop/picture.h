#pragma once

#include <memory>
#include <string>

class QPixmap;

/// A loaded picture, shared by all that show it; empty if it could not be loaded.
class Picture {
  public:
    Picture() = default;
    explicit Picture(std::shared_ptr<const QPixmap> pixmap) : pixmap_(std::move(pixmap)) {}

    /// Loads a picture file by its name from the program's resources. Empty, and nothing reported, if that fails.
    static Picture load(const std::string& fileName);

    explicit operator bool() const { return pixmap_ != nullptr; }
    const QPixmap& pixmap() const { return *pixmap_; }

  private:
    std::shared_ptr<const QPixmap> pixmap_;
};
