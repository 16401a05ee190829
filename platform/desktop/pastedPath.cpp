#include "platform/desktop/pastedPath.h"

#include <algorithm>

#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>

namespace pastedPath {

QString fromText(const QString& text) {
    const QUrl address(text.trimmed().section('\n', 0, 0).trimmed());
    if (address.isLocalFile()) return QDir::toNativeSeparators(address.toLocalFile());
    return QString(text).remove('\r').remove('\n').trimmed();
}

QString fromMimeData(const QMimeData& data) {
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) return QDir::toNativeSeparators(url.toLocalFile());
    }
    return data.hasText() ? fromText(data.text()) : QString();
}

QString cleaned(const QString& before, const QString& after) {
    const auto [oldBegin, newBegin] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto start = newBegin - after.begin();
    // The common ending must not overlap the common beginning.
    const auto longest = std::min(before.size(), after.size()) - start;
    qsizetype ending = 0;
    while (ending < longest && before[before.size() - 1 - ending] == after[after.size() - 1 - ending]) ++ending;
    const QString inserted = after.mid(start, after.size() - start - ending);
    if (inserted.size() < 2 && inserted != "\n") return after;
    // An address may have letters in common with the text that it replaced.
    if (after.startsWith("file:")) return fromText(after);
    return after.left(start) + fromText(inserted) + after.right(ending);
}

}  // namespace pastedPath
