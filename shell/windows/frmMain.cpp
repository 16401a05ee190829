#include "shell/windows/frmMain.h"

#include "platform/desktop/messageBox.h"
#include "platform/desktop/openFileDialog.h"
#include "platform/values/text.h"
#include "shell/state/paths.h"
#include "shell/windows/fileTypes.h"
#include "shell/windows/fontSize.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/frmWait.h"
#include "shell/windows/menuBar1.h"
#include "shell/windows/pictures.h"

namespace {

constexpr Colour black{0, 0, 0};
constexpr Colour navy{0, 0, 128};

}  // namespace

FrmMain::FrmMain()
    : Window({.name = "frmMain",
              .title = "Tolvaris File Converter",
              .width = 594,
              .height = 250,
              .kind = WindowLayout::Kind::document,
              .centred = true,
              .background = lightBlue,
              .menuBar = &menuBar1()}) {
    createControls();
    connectControls();
    AddMenuHandlers();
}

void FrmMain::createControls() {
    cmdBrowse_ = &add<PushButton>("cmdBrowse", {503, 180, 80, 22}, "Browse");
    fmeOptions_ = &add<GroupBox>("fmeOptions", {10, 14, 279, 119}, "From");
    QWidget* from = fmeOptions_->widget();
    optFromCsv_ = &addInside<RadioButton>(from, "optFromCsv", {26, 37, 242, 20}, "CSV (Comma Seperated Values)");
    optFromRsd_ = &addInside<RadioButton>(from, "optFromRsd", {26, 63, 242, 20}, "New Tolvaris (Multi-platform)");
    optFromCav_ = &addInside<RadioButton>(from, "optFromCav", {26, 86, 242, 26}, "Old Tolvaris Database (.cav)");
    fmeOptions1_ = &add<GroupBox>("fmeOptions1", {301, 14, 279, 119}, "To");
    QWidget* to = fmeOptions1_->widget();
    optToCav_ = &addInside<RadioButton>(to, "optToCav", {314, 63, 213, 20}, "Old Tolvaris Database (.cav)");
    optToRsd_ = &addInside<RadioButton>(to, "optToRsd", {314, 37, 253, 20}, "New Tolvaris (Multi-platform)");
    optToCsv_ = &addInside<RadioButton>(to, "optToCsv", {314, 92, 253, 20}, "CSV (Comma Seperated Values)");
    cmdConvert_ = &add<PushButton>("cmdConvert", {503, 208, 80, 22}, "Convert");
    // All icons but the arrow wait right of the window until a form is chosen.
    cvFromLinux_ = &add<Canvas>("cvFromLinux", {727, 139, 32, 32}, pictures::linux());
    cvFromWindows_ = &add<Canvas>("cvFromWindows", {692, 139, 32, 32}, pictures::windows());
    cvFromMac_ = &add<Canvas>("cvFromMac", {657, 139, 32, 32}, pictures::mac());
    cvArrow_ = &add<Canvas>("cvArrow", {280, 139, 32, 32}, pictures::arrow());
    cvFromCSV_ = &add<Canvas>("cvFromCSV", {621, 139, 32, 32}, pictures::csv());
    cvToLinux_ = &add<Canvas>("cvToLinux", {934, 139, 32, 32}, pictures::linux());
    cvToWindows_ = &add<Canvas>("cvToWindows", {899, 139, 32, 32}, pictures::windows());
    cvToMac_ = &add<Canvas>("cvToMac", {864, 139, 32, 32}, pictures::mac());
    cvToCSV_ = &add<Canvas>("cvToCSV", {828, 139, 32, 32}, pictures::csv());
    cvFromCav_ = &add<Canvas>("cvFromCav", {764, 139, 32, 32}, pictures::tolvaris());
    cvToCav_ = &add<Canvas>("cvToCav", {972, 139, 32, 32}, pictures::tolvaris());
    lblSource_ = &add<Label>("lblSource", {10, 164, 69, 18}, "Source:");
    lblDestination_ = &add<Label>("lblDestination", {10, 208, 69, 18}, "New File:");
    txtFilePath_ = &add<TextField>("txtFilePath", {10, 183, 485, 20});
    lblDestinationFilePath_ = &add<Label>("lblDestinationFilePath", {15, 226, 476, 16}, "");

    for (Canvas* icon : {cvFromLinux_, cvToLinux_}) icon->setAccessibleName("Linux");
    for (Canvas* icon : {cvFromWindows_, cvToWindows_}) icon->setAccessibleName("Windows");
    for (Canvas* icon : {cvFromMac_, cvToMac_}) icon->setAccessibleName("Mac");
    for (Canvas* icon : {cvFromCSV_, cvToCSV_}) icon->setAccessibleName("CSV file");
    for (Canvas* icon : {cvFromCav_, cvToCav_}) icon->setAccessibleName("Tolvaris database");
    lblSource_->setCaptionOf(*txtFilePath_);
    lblDestination_->setCaptionOf(*lblDestinationFilePath_);
    // As on the screen.
    setTabOrder({optFromCsv_, optFromRsd_, optFromCav_, optToRsd_, optToCav_, optToCsv_, cmdBrowse_, cmdConvert_});

    fmeOptions_->setBold();
    fmeOptions1_->setBold();
    lblSource_->setColour(black);
    lblDestination_->setColour(black);
    lblDestination_->setVisible(false);
    txtFilePath_->setTextSize(10);
    txtFilePath_->setColour(navy);
    txtFilePath_->setTabStop(false);
    txtFilePath_->takePaths();
    lblDestinationFilePath_->setTextSize(10);
    lblDestinationFilePath_->setColour(navy);
}

void FrmMain::connectControls() {
    cmdBrowse_->onAction([this] { cmdBrowse_Action(); });
    optFromCsv_->onAction([this] { optFromCsv_Action(); });
    optFromRsd_->onAction([this] { optFromRsd_Action(); });
    optFromCav_->onAction([this] { optFromCav_Action(); });
    optToCav_->onAction([this] { optToCav_Action(); });
    optToRsd_->onAction([this] { optToRsd_Action(); });
    optToCsv_->onAction([this] { optToCsv_Action(); });
    cmdConvert_->onAction([this] { cmdConvert_Action(); });
    takeFiles([this](const std::string& path) { txtFilePath_->setText(path); });
}

void FrmMain::Event_Open() {
    appSystem::setFontSize(frmMain());
    optFromCav_->setText("Old Tolvaris file" + std::string(text::endOfLine()) + "(Run converter in Windows)");
    optFromCav_->setEnabled(false);
    if (appSystem::quillmoorInstalled()) optToCsv_->setVisible(false);
    showFromIcons(p0, p0, p0, p0, p3);
}

void FrmMain::Event_Close() { frmWait().close(); }

void FrmMain::showFromIcons(int csv, int windows, int mac, int linux, int cav) {
    txtFilePath_->setText("");
    cvFromCSV_->setLeft(csv);
    cvFromWindows_->setLeft(windows);
    cvFromMac_->setLeft(mac);
    cvFromLinux_->setLeft(linux);
    cvFromCav_->setLeft(cav);
}

void FrmMain::showToIcons(int csv, int windows, int mac, int linux, int cav) {
    txtFilePath_->setText("");
    cvToCSV_->setLeft(csv);
    cvToWindows_->setLeft(windows);
    cvToMac_->setLeft(mac);
    cvToLinux_->setLeft(linux);
    cvToCav_->setLeft(cav);
}

void FrmMain::optFromCsv_Action() {
    showFromIcons(p3, p0, p0, p0, p0);
    fromFileType = "csv";
}

void FrmMain::optFromRsd_Action() {
    showFromIcons(p0, p1, p2, p3, p0);
    fromFileType = "rsd";
}

void FrmMain::optFromCav_Action() {
    showFromIcons(p0, p0, p0, p0, p3);
    fromFileType = "cav";
}

void FrmMain::optToCav_Action() {
    showToIcons(p0, p0, p0, p0, p4);
    toFileType = "cav";
}

void FrmMain::optToRsd_Action() {
    showToIcons(p0, p4, p5, p6, p0);
    toFileType = "rsd";
}

void FrmMain::optToCsv_Action() {
    showToIcons(p4, p0, p0, p0, p0);
    toFileType = "csv";
}

void FrmMain::cmdBrowse_Action() {
    if (fromFileType.empty() || toFileType.empty()) {
        showMessage("Please select file type options");
        return;
    }
    OpenFileDialog dialog;
    dialog.initialFolder = FileReference(txtFilePath_->text()).parent();
    if (optFromRsd_->selected()) {
        dialog.title = "Select a Tolvaris data file";
        dialog.filter = DatabaseFiles::All();
    } else if (optFromCav_->selected()) {
        dialog.title = "Select a Tolvaris data file";
        dialog.filter = CAVFiles::All();
    } else if (optFromCsv_->selected()) {
        dialog.title = "Select a csv file";
        dialog.filter = CSVFiles::All();
    }
    if (const auto file = dialog.showModal()) txtFilePath_->setText(file->nativePath());
}

FrmMain& frmMain() { return SingletonWindow<FrmMain>::get(); }
