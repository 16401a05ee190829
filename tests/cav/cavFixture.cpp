#include "tests/cav/cavFixture.h"

#include <filesystem>
#include <sstream>

#include "tests/cav/rsdSource.h"
#include "tests/support/sqlFile.h"

const std::string intoTree =
    "INSERT INTO tree (name,colour,breed,sex,dob,oldId,fatherId,motherId,ps,pd,tag,prefix,suffix,health,cage,notes,"
    "customfield1,customfield2,customfield3,customfield4,customfield5,customfield6,customfield7,customfield8,"
    "customfield9,customfield10,customfield11,customfield12,customfield13,customfield14,customfield15)VALUES ('";

std::string insertOf(const std::map<std::string, std::string>& values) {
    const std::size_t first = intoTree.find('(') + 1;
    std::istringstream columns(intoTree.substr(first, intoTree.find(')') - first));
    std::string list;
    for (std::string column; std::getline(columns, column, ',');) {
        const auto value = values.find(column);
        const std::string standard = column == "sex" ? "undefined" : column == "dob" ? "1925-01-01" : "";
        list += (list.empty() ? "" : "','") + (value == values.end() ? standard : value->second);
    }
    return intoTree + list + "')";
}

const char* const lostRow =
    "Unable to connect to Tolvaris database. Make sure the database isn't opened in your Tolvaris program.";

std::string connectTo(const std::string& file) {
    return "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file + ";UID=;PWD=qr7vhdnmx;";
}

void CavTest::convertToCav(const std::string& from, const std::string& source, const std::string& destination) {
    if (!std::filesystem::exists(destination)) write(std::filesystem::path(destination).filename().string(), "");
    driver.answers.push_front("Yes");
    driver.files.push_back(destination);
    convert(from, "Cav", source);
}

void CavTest::convertToCav(const std::string& from, const std::string& source) {
    convertToCav(from, source, destination());
}

std::string CavTest::rsdSource(const std::string& sql) const {
    const std::string source = path("herd.rsd");
    if (!std::filesystem::exists(source)) makeRsdSource(source);
    SqlFile(source).run(sql);
    return source;
}

std::vector<std::string> CavTest::log() const {
    static constexpr const char* words[] = {"connect ", "refused connect ", "",          "refused ",
                                            "commit",   "rollback",         "disconnect"};
    std::vector<std::string> lines;
    for (const recording::Event& event : recorder.events()) {
        lines.push_back(std::to_string(event.connection) + ": " + words[static_cast<int>(event.kind)] + event.text);
    }
    return lines;
}

std::vector<std::string> CavTest::boxes() const {
    std::vector<std::string> texts;
    for (const Box& box : driver.boxes) {
        if (box.title != "Find database") texts.push_back(box.text);
    }
    return texts;
}

void CavTest::headingRows(const std::vector<recording::Row>& ids) {
    recorder.answer("SELECT * FROM cavyUser", {"id"}, ids);
}
