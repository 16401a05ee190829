#include "platform/desktop/openFileDialog.h"

#include <QtWidgets/QFileDialog>

#include "platform/desktop/control.h"
#include "platform/desktop/dialogParent.h"
#include "platform/desktop/eventHandler.h"
#include "platform/files/fileType.h"

namespace {

/// In the toolkit's form, in both letter cases, as files from other systems come in capitals.
QString filterText(const FileType& type) {
    const QString extensions = QString::fromStdString(type.extensions);
    QStringList patterns;
    for (const QString& extension : (extensions + ';' + extensions.toUpper()).split(';')) patterns << "*." + extension;
    return QString::fromStdString(type.name) + " (" + patterns.join(' ') + ")";
}

/// The folder that a file was picked in last.
FileReference& lastFolder() {
    static FileReference folder;
    return folder;
}

}  // namespace

std::optional<FileReference> OpenFileDialog::showModal() const {
    QFileDialog dialog(dialogParent(), QString::fromStdString(title));
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (const FileType* type = FileType::named(filter)) dialog.setNameFilter(filterText(*type));
    const FileReference& start = initialFolder.exists() ? initialFolder : lastFolder();
    dialog.setDirectory(start.exists() ? QString::fromStdString(start.nativePath()) : QDir::currentPath());
    Control::applyChanges();
    const bool picked = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    events::rethrowPending();
    if (!picked) return std::nullopt;
    const FileReference file(QDir::toNativeSeparators(dialog.selectedFiles().front()).toStdString());
    lastFolder() = file.parent();
    return file;
}
