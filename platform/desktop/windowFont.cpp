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
    const double share = std::min(regularWidth / widthOf(font, false), boldWidth / widthOf(font, true));
    if (share < 0.99) font.setStretch(static_cast<int>(share * 100));
    return font;
}
