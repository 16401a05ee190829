#include "platform/desktop/windowFont.h"

#include <algorithm>

#include <QtGui/QFontMetricsF>

namespace {

/// All letters, in about the shares that the windows' texts have.
constexpr const char* sample =
    "Use this program to export and import Tolvaris Animal Breeder files. CSV (Comma Seperated Values), 98980 records";

/// What the sample takes in Liberation Sans, in text sizes.
constexpr double regularWidth = 51.8;
constexpr double boldWidth = 55.3;

/// In percent; narrower letters are not to be read.
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
    // Said also where nothing is to be narrowed: a font made here starts as a copy of the application's. Twice and
    // more, since the toolkit may take another face of the family for a narrower font, which runs by its own width.
    int stretch = QFont::Unstretched;
    double share = 0;
    do {
        font.setStretch(stretch);
        share = std::min(regularWidth / widthOf(font, false), boldWidth / widthOf(font, true));
        stretch = static_cast<int>(stretch * share);
    } while (share < 0.99 && stretch > narrowest);
    return font;
}
