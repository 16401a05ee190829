// Dates as breeders of all regions type them.

#include <QtCore/QDate>
#include <QtCore/QLocale>

#include "fieldtext/normalisers.h"
#include "platform/values/date.h"
#include "platform/values/dateRegion.h"
#include "tests/support/programFixture.h"

namespace {

using Dates = ProgramTest;

std::string sql(const std::optional<Date>& date) { return date ? date->sqlForm() : std::string(); }

std::string readIn(const std::string& text, const std::string& locale) {
    return sql(dates::parse(text, dates::Region(QLocale(QString::fromStdString(locale)))));
}

TEST_F(Dates, AreReadInTheOrderOfTheRegion) {
    struct Case {
        std::vector<const char*> texts;
        const char* british;
        const char* american;
    };
    for (const Case& c :
         {Case{{"3/4/2010", "03-04-2010", "3.4.2010", "3 4 2010", " 3 / 4 / 2010 ", "3/4/10", "3/4/2010 10:30",
                "3/4/2010 0:00:00", "3/4/2010 10:30:15.123456 pm", "\uFF13\uFF0F\uFF14\uFF0F\uFF12\uFF10\uFF11\uFF10",
                "\u0663/\u0664/2010"},
               "2010-04-03",
               "2010-03-04"},
          {{"2010-4-3", "2010/04/03", "3 April 2010", "3-Apr-10", "APRIL 3 2010", "2010 apr 3", "April 3, 2010",
            "3. Apr. 2010", "3rd April 2010", "April 3rd, 2010", "2010-04-03T00:00:00Z", "2010-04-03T00:00:00+02:00",
            "2010-04-03 00:00:00.000 +0000", "2010-04-03 23:59-05", "2010-04-03 10:00 UTC", "2010-04-03 10:00 -23:59"},
           "2010-04-03",
           "2010-04-03"},
          {{"1/31/2010"}, "", "2010-01-31"},
          {{"3/4/69"}, "1969-04-03", "1969-03-04"},
          {{"3/4/68"}, "2068-04-03", "2068-03-04"},
          {{"3 Sept 2010"}, "2010-09-03", "2010-09-03"},
          {{"29/2/2008"}, "2008-02-29", ""},
          {{"2/29/2000"}, "", "2000-02-29"},
          {{"Saturday, 3 April 2010"}, "2010-04-03", ""},
          {{"Sat, April 3, 2010"}, "", "2010-04-03"},
          {{"29/2/2009", "29/2/1900", "0/4/2010", "3/4/0000", "3/4/201", "3/4/20100", "3//4/2010", "3/4-2010", "3/4",
            "20100403", "", "3 Nonsense 2010", "3/4/2010 24:00", "3/4/2010 10:60", "2010-04-03 10:00 +24:00",
            "2010-04-03 10:00 +02:", "2010-04-03 10:00 +0260", "2010-04-03 10:00 CET"},
           "",
           ""}}) {
        for (const char* text : c.texts) {
            EXPECT_EQ(readIn(text, "en_GB"), c.british) << text;
            EXPECT_EQ(readIn(text, "en_US"), c.american) << text;
        }
    }
}

// The short, medium and long form, each in capitals too, and the weekday in its stand-alone form.
TEST_F(Dates, AreReadInEveryFormOfEveryRegion) {
    int regions = 0;
    for (const QLocale& locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
        const dates::Region region(locale);
        const QString longForm = locale.dateFormat(QLocale::LongFormat);
        QString shortForm = locale.dateFormat(QLocale::ShortFormat);
        shortForm.replace("yyyy", "yy");
        for (int month = 1; month <= 12; ++month) {
            const QDate day(2010, month, 3);
            const QString weekday = "'" + locale.standaloneDayName(day.dayOfWeek()).replace("'", "''") + "'";
            const QString name = locale.monthName(month, QLocale::ShortFormat);
            QStringList texts;
            for (const QString& form :
                 {shortForm, QString(shortForm).replace("yy", "yyyy"), longForm,
                  QString(longForm).replace("yyyy", "yy"), QString(longForm).replace("MMMM", "MMM"),
                  QString(longForm).replace("dddd", weekday)}) {
                texts << locale.toString(day, form);
            }
            // Names such as "1月" are no abbreviations.
            if (name.front().isLetter()) texts << QString(texts[4]).replace(name, name + ".").replace("..", ".");
            for (const QString& text : texts) {
                // The capitals of "Oujoß" have no way back.
                const bool isColognian = locale.language() == QLocale::Colognian;
                for (const QString& written : {text, isColognian ? text : locale.toUpper(text)}) {
                    EXPECT_EQ(sql(dates::parse(written.toStdString(), region)), day.toString(Qt::ISODate).toStdString())
                        << locale.name().toStdString() << " " << written.toStdString();
                }
            }
        }
        ++regions;
    }
    EXPECT_GT(regions, 500);
}

TEST_F(Dates, AreReadAsOneRegionWritesThem) {
    const struct {
        const char* region;
        const char* text;
        const char* date;
    } cases[] = {
        {"sv_SE", "10-04-03", "2010-04-03"},
        {"sv_SE", "3/4/2010", "2010-04-03"},  // as in the long form
        {"ja_JP", "4/3/2010", "2010-04-03"},
        {"ja_JP", "10/13/03", ""},
        {"hu_HU", "2010. 4. 3. 8:15:00", "2010-04-03"},
        {"pt_PT", "1.º de abril de 2010", "2010-04-01"},
        {"it_IT", "1° aprile 2010", "2010-04-01"},
        {"fr_FR", "jeudi 1er avril 2010", "2010-04-01"},
        {"fr_FR", "3 FE\u0301VRIER 2010", "2010-02-03"},  // the accent as a character of its own
        {"fr_FR", "3 DECEMBRE 2010", "2010-12-03"},
        {"tr_TR", "3 ARALIK 2010", "2010-12-03"},
        {"ar_EG", "\u0663\u200F/\u0664\u200F/\u0662\u0660\u0661\u0660", "2010-04-03"},
        {"ar_EG", "3/4/10", "2010-04-03"},
        {"de_DE", "Sa. 3.4.2010", ""},
        {"C", "3/4/2010", "2010-03-04"},
        // The toolkit knows the territory in other languages only, in each of its releases.
        {"wa_BE", "03/04/10", "2010-04-03"},
        {"wa_BE", "10-04-03", "2010-04-03"},
        // Here only its earlier releases.
        {"ku_TR", "03/04/2010", "2010-04-03"},
        {"nv_US", "03/04/2010", "2010-03-04"},
        // The year of another calendar stays as it was typed.
        {"th_TH", "03/04/2553", "2553-04-03"},
    };
    for (const auto& c : cases) EXPECT_EQ(readIn(c.text, c.region), c.date) << c.region << " " << c.text;
}

TEST_F(Dates, HaveARegionThatIsNotThatOfTheLanguage) {
    const struct {
        const char* all;
        const char* time;
        const char* language;
        const char* date;
    } cases[] = {{"", "de_DE@euro", "en_US.UTF-8", "2010-04-03"},
                 {"", "C", "de_DE.UTF-8", "2010-03-04"},
                 {"", "", "de_DE.UTF-8", "2010-04-03"},
                 {"en_US", "de_DE", "de_DE", "2010-03-04"},
                 {"", "", "", "2010-03-04"}};
    for (const auto& c : cases) {
        qputenv("LC_ALL", c.all);
        qputenv("LC_TIME", c.time);
        qputenv("LANG", c.language);
        EXPECT_EQ(sql(dates::parse("3/4/2010", dates::Region::ofTheComputer())), c.date)
            << c.all << " " << c.time << " " << c.language;
    }
    qputenv("LC_ALL", "en_GB.UTF-8");
    EXPECT_EQ(sql(appSystem::CDate("3/4/2010")), "2010-04-03") << "the region of the process";
}

TEST_F(Dates, InSqlFormPassUnread) {
    for (const auto& [text, result] : {std::pair{"", ""},
                                       {"2010-13-99", "2010-13-99"},
                                       {"2010-04-03 10:00", "2010-04-03 10:00"},
                                       {"éééé-04-03", "éééé-04-03"},
                                       {"2010-4-3", "2010-04-03"},
                                       {"spring", ""}}) {
        EXPECT_EQ(appSystem::convDisplayDateToSql(text), result) << text;
    }
    EXPECT_EQ(sql(dates::parseSql("2010-04-03T00:00:00+02:00")), "2010-04-03");
    EXPECT_EQ(sql(dates::parseSql("2010-4-03")), "");
}

}  // namespace
