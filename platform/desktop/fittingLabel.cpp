#include "platform/desktop/fittingLabel.h"

#include <algorithm>
#include <vector>

#include <QtGui/QPainter>
#include <QtGui/QResizeEvent>
#include <QtGui/QTextDocument>
#include <QtGui/QTextLayout>

namespace {

/// Breaks a paragraph into lines, between words where possible and within words that are too long.
QStringList linesOf(const QString& paragraph, const QFont& font, int width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(paragraph, font);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines << paragraph.mid(line.textStart(), line.textLength());
    }
    layout.endLayout();
    return lines.isEmpty() ? QStringList(QString()) : lines;
}

/// Removes the last line and marks the end of the one before it with three dots.
void shorten(QStringList& lines, const QFontMetrics& metrics, int width) {
    const QString rest = lines.takeLast();
    lines.last() = metrics.elidedText(lines.last() + rest, Qt::ElideRight, width);
}

/// Returns a tooltip's text. Text that looks like HTML would be rendered as such, so it is escaped.
QString plain(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

}  // namespace

FittingLabel::FittingLabel(bool severalLines, QWidget* parent) : QLabel(parent), severalLines_(severalLines) {
    setTextFormat(Qt::PlainText);
    if (severalLines) setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void FittingLabel::setFullText(const QString& text) {
    fullText_ = text;
    setAccessibleName(text);
    fit();
}

void FittingLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange) fit();
}

void FittingLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    fit();
}

void FittingLabel::paintEvent(QPaintEvent* event) {
    if (!severalLines_) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QFontMetrics metrics = fontMetrics();
    int baseline = (lineHeight() - metrics.ascent() - metrics.descent()) / 2 + metrics.ascent();
    for (const QString& line : text().split('\n')) {
        painter.drawText(0, baseline, line);
        baseline += lineHeight();
    }
}

void FittingLabel::fit() {
    const QString fitting = severalLines_ ? wrapped() : elided();
    setText(fitting);
    // Breaking into lines adds line ends and takes nothing away.
    const bool shortened = QString(fitting).remove('\n') != QString(fullText_).remove('\n');
    setToolTip(shortened ? plain(fullText_) : QString());
}

QString FittingLabel::elided() const { return fontMetrics().elidedText(fullText_, Qt::ElideMiddle, width()); }

QString FittingLabel::wrapped() const {
    std::vector<QStringList> paragraphs;
    qsizetype lines = 0;
    for (const QString& paragraph : fullText_.split('\n')) {
        paragraphs.push_back(linesOf(paragraph, font(), width()));
        lines += paragraphs.back().size();
    }
    // The lowest row of pixels is empty in nearly every line.
    const qsizetype maxLines = (height() + 1) / lineHeight();
    const auto shorter = [](const QStringList& a, const QStringList& b) { return a.size() < b.size(); };
    for (; lines > maxLines; --lines) {
        // The longest paragraph is shortened, so that a name of many lines leaves space for the count below it.
        QStringList& longest = *std::max_element(paragraphs.begin(), paragraphs.end(), shorter);
        if (longest.size() == 1) break;
        shorten(longest, fontMetrics(), width());
    }
    QStringList shown;
    for (const QStringList& paragraph : paragraphs) shown << paragraph.join('\n');
    return shown.join('\n');
}

/// Limits the line spacing, since with some fonts the texts would not fit the fixed geometry otherwise.
int FittingLabel::lineHeight() const { return std::min(fontMetrics().lineSpacing(), qCeil(font().pixelSize() * 1.15)); }
