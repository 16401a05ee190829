#include "platform/desktop/picture.h"

#include <QtGui/QIcon>
#include <QtGui/QPixmap>

#include "platform/files/files.h"

struct Picture::Sizes {
    QPixmap normal;
    QPixmap sharp;  ///< of twice the size; null if there is none
};

namespace {

QPixmap loaded(const std::string& fileName) { return QPixmap(QString::fromStdString(folders::resources() + fileName)); }

}  // namespace

Picture Picture::load(const std::string& fileName) {
    Sizes sizes{loaded(fileName), loaded(std::string(fileName).insert(fileName.rfind('.'), "@2x"))};
    if (sizes.normal.isNull()) return {};
    sizes.sharp.setDevicePixelRatio(2);
    Picture picture;
    picture.sizes_ = std::make_shared<const Sizes>(std::move(sizes));
    return picture;
}

const QPixmap& Picture::pixmap(double pixelRatio) const {
    return pixelRatio > 1 && !sizes_->sharp.isNull() ? sizes_->sharp : sizes_->normal;
}

QIcon Picture::icon() const {
    QIcon icon(sizes_->normal);
    if (!sizes_->sharp.isNull()) icon.addPixmap(sizes_->sharp);
    return icon;
}
