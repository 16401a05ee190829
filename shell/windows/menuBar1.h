#pragma once

#include "platform/desktop/menuBar.h"

/// The menu bar of frmMain, built at first use and kept for the life of the process.
class MenuBar1 : public MenuBar {
  public:
    MenuBar1();

  private:
    void Untitled0();  ///< the File menu
    void Untitled1();  ///< the Help menu
};

MenuBar1& menuBar1();
