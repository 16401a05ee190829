#pragma once

#include <QtCore/QStringList>
#include <QtGui/QFont>

/// Returns the font of the windows: the first of the families that is installed, or the system's. The geometry of the
/// windows is fixed, so a font that is wider than Liberation Sans is stretched narrower until texts take the same
/// width.
QFont windowFont(const QStringList& families = {"Liberation Sans", "Helvetica", "Arial", "Nimbus Sans", "DejaVu Sans"});
