#include "platform/desktop/windowFont.h"

#include <algorithm>

#include <QtGui/QFontMetricsF>

namespace {

/// A text with the letters of the windows' texts, in about their frequencies.
constexpr const char* sample =
    "Use this program to export and import Tolvaris Animal Breeder files. CSV (Comma Seperated Values), 98980 records";

/// Width of the sample in Liberation Sans, in multiples of the text size.
constexpr double regularWidth = 51.8;
constexpr double boldWidth = 55.3;

/// The narrowest stretch, in percent, at which letters are still legible.
constexpr int narrowest = 60;

double widthOf(QFont font, bool bold) {
    constexpr int large = 200;
    font.setPixelSize(large);
    font.setBold(bold);
    return QFontMetricsF(font).horizontalAdvance(sample) / large;
}

}  // namespace

QFont windowFont(const QStringList& families) {
    QFont font;
    font.setFamilies(families);
    font.setStyleHint(QFont::SansSerif);
    // A new font is a copy of the application's, so the stretch is set in every case. A narrower stretch may select
    // another face of the family, which has a width of its own, so the result is measured again.
    int stretch = QFont::Unstretched;
    double share = 0;
    do {
        font.setStretch(stretch);
        share = std::min(regularWidth / widthOf(font, false), boldWidth / widthOf(font, true));
        stretch = static_cast<int>(stretch * share);
    } while (share < 0.99 && stretch > narrowest);
    return font;
}
