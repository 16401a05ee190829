#pragma once

#include <QtWidgets/QLabel>

#include "platform/desktop/picture.h"

/// Shows a picture at its own size, from the one that suits the screen that it is on.
class PictureWidget : public QLabel {
  public:
    PictureWidget(const Picture& picture, QWidget* parent);

    /// Whether somebody who cannot see it misses something: it stands in the window and has a name.
    bool isTelling() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Picture picture_;
};
