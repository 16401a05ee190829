#pragma once

#include <QtWidgets/QLabel>

/// A label that shows as much of a text as fits, in one line or in several. A text that does not fit is elided, and
/// shown in full as a tooltip. Texts are plain text, also if they look like HTML.
class FittingLabel : public QLabel {
  public:
    FittingLabel(bool severalLines, QWidget* parent);

    void setFullText(const QString& text);

  protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void fit();
    QString elided() const;
    QString wrapped() const;
    int lineHeight() const;

    QString fullText_;
    bool severalLines_;
};
