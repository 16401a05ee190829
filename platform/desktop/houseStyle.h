#pragma once

#include <QtWidgets/QProxyStyle>

/// The one style of the windows on every platform: their geometry is fixed and their backgrounds are light. Buttons of
/// boxes carry no pictures, and the question mark is drawn, so that it is sharp at any scale.
class HouseStyle : public QProxyStyle {
  public:
    HouseStyle();

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;
};
