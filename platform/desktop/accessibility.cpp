#include "platform/desktop/accessibility.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <QtGui/QAccessible>
#include <QtWidgets/QAccessibleWidget>

#include "platform/desktop/fittingLabel.h"
#include "platform/desktop/pictureWidget.h"
#include "platform/desktop/windowWidget.h"

namespace {

/// A window. Its role is asked of the widget each time: the toolkit may make this object before the widget has its
/// window flags, which tell a dialog from a window (Qt 6.8 does).
class WindowInterface : public QAccessibleWidget {
  public:
    explicit WindowInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Window) {}

    QAccessible::Role role() const override {
        return widget()->windowType() == Qt::Dialog ? QAccessible::Dialog : QAccessible::Window;
    }
};

/// The area of a window that holds its controls.
class ContentInterface : public QAccessibleWidget {
  public:
    explicit ContentInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Client) {}

    int childCount() const override { return static_cast<int>(children().size()); }

    QAccessibleInterface* child(int index) const override {
        const auto all = children();
        return index >= 0 && index < static_cast<int>(all.size()) ? all[static_cast<std::size_t>(index)] : nullptr;
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto all = children();
        const auto found = std::find(all.begin(), all.end(), child);
        return found == all.end() ? -1 : static_cast<int>(found - all.begin());
    }

  private:
    std::vector<QAccessibleInterface*> children() const {
        std::vector<QAccessibleInterface*> informative;
        for (int i = 0; i < QAccessibleWidget::childCount(); ++i) {
            QAccessibleInterface* child = QAccessibleWidget::child(i);
            const auto* picture = dynamic_cast<const PictureWidget*>(child->object());
            if (picture == nullptr || picture->isInformative()) informative.push_back(child);
        }
        return informative;
    }
};

/// A label that shows a value goes by the name of the label before it as long as there is none.
class LabelInterface : public QAccessibleWidget {
  public:
    explicit LabelInterface(QWidget* widget) : QAccessibleWidget(widget, QAccessible::StaticText) {}

    QString text(QAccessible::Text which) const override {
        const QString own = QAccessibleWidget::text(which);
        if (which != QAccessible::Name || !own.isEmpty()) return own;
        const auto captions = relations(QAccessible::Label);
        return captions.isEmpty() ? own : captions.front().first->text(QAccessible::Name);
    }
};

template <typename Interface>
QAccessibleInterface* made(QWidget* widget) {
    // The toolkit keeps and deletes it.
    return new Interface(widget);
}

QAccessibleInterface* describe(const QString&, QObject* object) {
    if (object == nullptr || !object->isWidgetType()) return nullptr;
    auto* widget = static_cast<QWidget*>(object);
    if (dynamic_cast<WindowWidget*>(widget) != nullptr) return made<WindowInterface>(widget);
    if (dynamic_cast<FittingLabel*>(widget) != nullptr) return made<LabelInterface>(widget);
    if (widget->property("contentArea").toBool()) return made<ContentInterface>(widget);
    return nullptr;
}

}  // namespace

namespace accessibility {

void install() { QAccessible::installFactory(describe); }

}  // namespace accessibility
