#pragma once

#include <QtWidgets/QLabel>

#include "platform/desktop/picture.h"

/// Shows a picture at its own size, in the resolution that suits the screen.
class PictureWidget : public QLabel {
  public:
    PictureWidget(const Picture& picture, QWidget* parent);

    /// Returns whether assistive technology should present the picture: it is inside the window and has a name.
    bool isInformative() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Picture picture_;
};
