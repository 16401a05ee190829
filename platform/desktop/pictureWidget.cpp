#include "platform/desktop/pictureWidget.h"

#include <QtGui/QPainter>
#include <QtGui/QPixmap>

PictureWidget::PictureWidget(const Picture& picture, QWidget* parent) : QLabel(parent), picture_(picture) {
    setFocusPolicy(Qt::NoFocus);
    if (picture) setPixmap(picture.pixmap());
}

bool PictureWidget::isInformative() const {
    return !accessibleName().isEmpty() && parentWidget()->rect().intersects(geometry());
}

void PictureWidget::paintEvent(QPaintEvent*) {
    if (!picture_) return;
    const QPixmap& shown = picture_.pixmap(devicePixelRatioF());
    QRect place(QPoint(), picture_.pixmap().size());
    place.moveCenter({place.center().x(), rect().center().y()});
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, shown);
}
