// Whatever a cell holds, a date that is read from it is a real day, in its region as in the database.

#include <array>

#include <QtCore/QDate>
#include <QtCore/QLocale>

#include "fieldtext/normalisers.h"
#include "platform/values/date.h"
#include "platform/values/dateRegion.h"
#include "tests/fuzz/fuzzTarget.h"

namespace {

void check(const std::optional<Date>& date) {
    if (!date) return;
    fuzz::demand(QDate::isValid(date->year, date->month, date->day), "a date that is read is a real day");
    fuzz::demand(dates::parseSql(date->sqlForm()) == date, "the SQL form reads back");
    fuzz::demand(dates::parseSql(date->sqlFormWithTime()) == date, "the SQL form with a time reads back");
    fuzz::demand(dates::parse(date->sqlForm()) == date, "every region reads the SQL form");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::array<dates::Region, 7> regions{dates::Region(QLocale("en_GB")), dates::Region(QLocale("en_US")),
                                                      dates::Region(QLocale("sv_SE")), dates::Region(QLocale("hu_HU")),
                                                      dates::Region(QLocale("ar_EG")), dates::Region(QLocale("ja_JP")),
                                                      dates::Region(QLocale("bg_BG"))};
    const std::string_view text = fuzz::textOf(data, size);
    for (const dates::Region& region : regions) check(dates::parse(text, region));
    check(dates::parseSql(text));
    const std::string sql = appSystem::convDisplayDateToSql(text);
    fuzz::demand(sql.empty() || sql == text || dates::parseSql(sql).has_value(), "a date for the database is one");
    return 0;
}
