#pragma once

#include <QtWidgets/QProxyStyle>

/// The widget style on every platform, one for all because the geometry of the windows is fixed and their backgrounds
/// are light. Buttons of message boxes have no icons. The question icon is drawn, so that it is sharp at any scale.
class WindowStyle : public QProxyStyle {
  public:
    WindowStyle();

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;
};
