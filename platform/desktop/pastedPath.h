#pragma once

#include <QtCore/QString>

class QMimeData;

/// Extracts a path from text or data that the user pastes or drops. The address of a file becomes its path, of several
/// files the first one counts, and blanks and line ends around the path are removed.
namespace pastedPath {

QString fromText(const QString& text);

/// Returns the path of the first local file, else the path in the text; empty if the data has neither.
QString fromMimeData(const QMimeData& data);

/// Returns a field's text after an edit by the user, given the text before and after it. If the edit inserted several
/// characters at once, they are cleaned as a path; the text around them is unchanged.
QString cleaned(const QString& before, const QString& after);

}  // namespace pastedPath
