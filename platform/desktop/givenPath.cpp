#include "platform/desktop/givenPath.h"

#include <algorithm>

#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>

namespace givenPath {

QString in(const QString& text) {
    const QUrl address(text.trimmed().section('\n', 0, 0).trimmed());
    if (address.isLocalFile()) return QDir::toNativeSeparators(address.toLocalFile());
    return QString(text).remove('\r').remove('\n').trimmed();
}

QString in(const QMimeData& data) {
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) return QDir::toNativeSeparators(url.toLocalFile());
    }
    return data.hasText() ? in(data.text()) : QString();
}

QString cleaned(const QString& before, const QString& after) {
    const auto [oldBegin, newBegin] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto start = newBegin - after.begin();
    // The end that both have in common may not reach back into the beginning.
    const auto longest = std::min(before.size(), after.size()) - start;
    qsizetype ending = 0;
    while (ending < longest && before[before.size() - 1 - ending] == after[after.size() - 1 - ending]) ++ending;
    const QString broughtIn = after.mid(start, after.size() - start - ending);
    if (broughtIn.size() < 2 && broughtIn != "\n") return after;
    // An address may share letters with what it took the place of.
    if (after.startsWith("file:")) return in(after);
    return after.left(start) + in(broughtIn) + after.right(ending);
}

}  // namespace givenPath
