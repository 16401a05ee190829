#include "platform/desktop/picture.h"

#include <QtGui/QPixmap>

#include "platform/files/files.h"

Picture Picture::load(const std::string& fileName) {
    auto pixmap = std::make_shared<const QPixmap>(QString::fromStdString(folders::resources() + fileName));
    return pixmap->isNull() ? Picture() : Picture(std::move(pixmap));
}
