#pragma once

#include <QtCore/QString>

class QMimeData;

/// The path in what somebody pastes or drops: a file's address becomes its path, of several files the first one counts,
/// and blanks and line ends around it go.
namespace givenPath {

QString in(const QString& text);

/// Empty if the data hold neither a file nor a text.
QString in(const QMimeData& data);

/// A field's text after a change by the user that may have brought in several letters at once: those are a given path,
/// what stands around them stays.
QString cleaned(const QString& before, const QString& after);

}  // namespace givenPath
