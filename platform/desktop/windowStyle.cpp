#include "platform/desktop/windowStyle.h"

#include <QtGui/QIcon>
#include <QtGui/QIconEngine>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "platform/desktop/windowFont.h"

namespace {

/// A white question mark on a blue disc.
class QuestionMark : public QIconEngine {
  public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        const QRectF disc = QRectF(rect).adjusted(1, 1, -1, -1);
        QLinearGradient blue(disc.topLeft(), disc.bottomLeft());
        blue.setColorAt(0, QColor(91, 143, 196));
        blue.setColorAt(1, QColor(42, 92, 148));
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(QColor(31, 70, 115), disc.width() / 32));
        painter->setBrush(blue);
        painter->drawEllipse(disc);
        QFont font = windowFont();
        font.setBold(true);
        font.setPixelSize(static_cast<int>(disc.height() * 0.72));
        QPainterPath mark;
        mark.addText(0, 0, font, "?");
        mark.translate(disc.center() - mark.boundingRect().center());
        painter->fillPath(mark, Qt::white);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap drawn(size);
        drawn.fill(Qt::transparent);
        QPainter painter(&drawn);
        paint(&painter, drawn.rect(), mode, state);
        return drawn;
    }

    QIconEngine* clone() const override { return new QuestionMark; }
};

}  // namespace

WindowStyle::WindowStyle() : QProxyStyle("Fusion") {}

int WindowStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returned) const {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

QIcon WindowStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
    if (icon == SP_MessageBoxQuestion) return QIcon(new QuestionMark);
    return QProxyStyle::standardIcon(icon, option, widget);
}
