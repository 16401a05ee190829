#include "platform/desktop/openFileDialog.h"

#include <algorithm>

#include <QtGui/QScreen>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeView>

#include "platform/desktop/control.h"
#include "platform/desktop/dialogParent.h"
#include "platform/desktop/eventHandler.h"
#include "platform/files/fileType.h"

namespace {

/// A pattern that takes each letter small and capital: *.[cC][sS][vV]. Some desktops compare patterns letter by letter,
/// and files from other systems come as Dogs.CSV or Dogs.Csv.
QString inEitherCase(const QString& extension) {
    QString pattern("*.");
    for (const QChar letter : extension) pattern += '[' + letter.toLower() + letter.toUpper() + ']';
    return pattern;
}

/// In the toolkit's form, such as "CSV Files (*.csv *.txt) (*.[cC][sS][vV] *.[tT][xX][tT])": what people see, and the
/// patterns, which are not shown.
QString filterText(const FileType& type) {
    QStringList shown;
    QStringList patterns;
    for (const QString& extension : QString::fromStdString(type.extensions).split(';')) {
        shown << "*." + extension;
        patterns << inEitherCase(extension);
    }
    return QString("%1 (%2) (%3)").arg(QString::fromStdString(type.name), shown.join(' '), patterns.join(' '));
}

/// Gives the toolkit's own dialog columns in which size, type and date can be read, and a width that leaves space for
/// names beside them, also with large text. Does nothing for a dialog of the desktop.
void fitColumns(QFileDialog& dialog) {
    const auto* files = dialog.findChild<QTreeView*>("treeView");
    if (files == nullptr) return;
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    const int widest = dialog.screen()->availableSize().width();
    dialog.resize(std::min(44 * dialog.fontMetrics().height(), widest), dialog.sizeHint().height());
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
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    if (const FileType* type = FileType::named(filter)) dialog.setNameFilter(filterText(*type));
    const FileReference& start = initialFolder.exists() ? initialFolder : lastFolder();
    dialog.setDirectory(start.exists() ? QString::fromStdString(start.nativePath()) : QDir::currentPath());
    fitColumns(dialog);
    Control::applyChanges();
    const bool picked = dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    events::rethrowPending();
    if (!picked) return std::nullopt;
    const FileReference file(QDir::toNativeSeparators(dialog.selectedFiles().front()).toStdString());
    lastFolder() = file.parent();
    return file;
}
