#pragma once

#include <QtCore/QStringList>
#include <QtGui/QFont>

/// The font of the windows: the first of the families that is installed, or the system's. Their geometry is fixed, so a
/// font that runs wider than the first one, Liberation Sans, is set narrower until its texts take the same room.
QFont windowFont(const QStringList& families = {"Liberation Sans", "Helvetica", "Arial", "Nimbus Sans", "DejaVu Sans"});
