#pragma once

#include <string>

#include "platform/desktop/menuBar.h"
#include "platform/desktop/window.h"

class FileReference;

/// The light blue that frmMain and frmSplash share.
inline constexpr Colour lightBlue{219, 231, 242};

/// The program's one working window: source form, target form, file, Convert.
class FrmMain : public Window {
  public:
    FrmMain();

    PushButton& cmdBrowse() { return *cmdBrowse_; }
    GroupBox& fmeOptions() { return *fmeOptions_; }
    RadioButton& optFromCsv() { return *optFromCsv_; }
    RadioButton& optFromRsd() { return *optFromRsd_; }
    RadioButton& optFromCav() { return *optFromCav_; }
    GroupBox& fmeOptions1() { return *fmeOptions1_; }
    RadioButton& optToCav() { return *optToCav_; }
    RadioButton& optToRsd() { return *optToRsd_; }
    RadioButton& optToCsv() { return *optToCsv_; }
    PushButton& cmdConvert() { return *cmdConvert_; }
    Canvas& cvFromLinux() { return *cvFromLinux_; }
    Canvas& cvFromWindows() { return *cvFromWindows_; }
    Canvas& cvFromMac() { return *cvFromMac_; }
    Canvas& cvArrow() { return *cvArrow_; }
    Canvas& cvFromCSV() { return *cvFromCSV_; }
    Canvas& cvToLinux() { return *cvToLinux_; }
    Canvas& cvToWindows() { return *cvToWindows_; }
    Canvas& cvToMac() { return *cvToMac_; }
    Canvas& cvToCSV() { return *cvToCSV_; }
    Canvas& cvFromCav() { return *cvFromCav_; }
    Canvas& cvToCav() { return *cvToCav_; }
    Label& lblSource() { return *lblSource_; }
    Label& lblDestination() { return *lblDestination_; }
    TextField& txtFilePath() { return *txtFilePath_; }
    Label& lblDestinationFilePath() { return *lblDestinationFilePath_; }

    const Menu* HelpMenu() const;
    const MenuItem* AboutItem() const;
    const MenuItem* HelpFileItem() const;
    const Menu* FileMenu() const;
    const MenuItem* FileQuit() const;

    /// Left edges of the icons that show where a file of the chosen form can be used. Both empty txtFilePath.
    void showFromIcons(int csv, int windows, int mac, int linux, int cav);
    void showToIcons(int csv, int windows, int mac, int linux, int cav);

    /// Starts the companion program, if it is found beside this one or among the applications.
    bool launchTolvaris();

    /// Makes a page in the current folder that sends the browser to the address, and opens it. No failure leaves this.
    void makeHelpPage(const std::string& url);
    void launchWebpage(const FileReference& file, const std::string& text);

    /// Has the user pick the empty database that a route into CAV fills. Empty if there is none.
    std::string makeCavFile();

    /// The chosen forms: "csv", "rsd", "cav" or empty.
    std::string fromFileType;
    std::string toFileType;

    /// Left edges of icons: out of sight, the three places for the source, the three for the target.
    int p0 = -50;
    int p1 = 166;
    int p2 = 201;
    int p3 = 236;
    int p4 = 334;
    int p5 = 369;
    int p6 = 404;

  private:
    void createControls();
    void connectControls();
    void AddMenuHandlers();
    void Event_Open() override;
    void Event_Close() override;

    void cmdBrowse_Action();
    void optFromCsv_Action();
    void optFromRsd_Action();
    void optFromCav_Action();
    void optToCav_Action();
    void optToRsd_Action();
    void optToCsv_Action();
    void cmdConvert_Action();
    bool _aboutItem_Action();
    bool _HelpFileItem_Action();

    void convertFromCav();
    void convertFromRsd();
    void convertFromCsv();

    PushButton* cmdBrowse_;
    GroupBox* fmeOptions_;
    RadioButton* optFromCsv_;
    RadioButton* optFromRsd_;
    RadioButton* optFromCav_;
    GroupBox* fmeOptions1_;
    RadioButton* optToCav_;
    RadioButton* optToRsd_;
    RadioButton* optToCsv_;
    PushButton* cmdConvert_;
    Canvas* cvFromLinux_;
    Canvas* cvFromWindows_;
    Canvas* cvFromMac_;
    Canvas* cvArrow_;
    Canvas* cvFromCSV_;
    Canvas* cvToLinux_;
    Canvas* cvToWindows_;
    Canvas* cvToMac_;
    Canvas* cvToCSV_;
    Canvas* cvFromCav_;
    Canvas* cvToCav_;
    Label* lblSource_;
    Label* lblDestination_;
    TextField* txtFilePath_;
    Label* lblDestinationFilePath_;
};

/// The selector window; use of one that does not exist creates and shows it.
FrmMain& frmMain();
