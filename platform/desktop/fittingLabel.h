#pragma once

#include <QtWidgets/QLabel>

/// A label that shows as much of a text as it has room for, in one line or in several. What does not fit is shortened
/// and shown whole when pointed at. Texts are plain, whatever they look like.
class FittingLabel : public QLabel {
  public:
    FittingLabel(bool severalLines, QWidget* parent);

    void setWhole(const QString& text);

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fit();
    QString oneLine() const;
    QString severalLines() const;
    int lineHeight() const;

    QString whole_;
    bool severalLines_;
};
