#include "stores/rsdSchema.h"

#include <array>

#include "platform/database/sqliteDatabase.h"

namespace appSystem {
namespace {

/// A column's affinity follows from its declared type, so "MEMO", "DATE" and "String" columns give numbers back as
/// numbers, and the one column without a type keeps values as they come.
constexpr std::array<const char*, 19> statements{
    "Create Table settings (id integer NOT NULL PRIMARY KEY, Breeder Varchar, Email Varchar, StudNum Varchar, "
    "PhoneNum Varchar, Background Varchar, Logo Varchar, Stud Varchar, Animal Varchar, Male Varchar, "
    "Female Varchar, Gestation integer, Country Varchar, CustomDetails Varchar, CustomName1 Varchar, "
    "CustomName2 Varchar, CustomName3 Varchar, Organisation Varchar, Father Varchar, Mother Varchar, "
    "Prefix Varchar, CustomName4 Varchar, CustomName5 Varchar, NestBox Varchar, Wean Varchar, "
    "Rebreed Varchar, WeightMeasure Varchar, Version Varchar, CustomName6 Varchar, CustomName7 Varchar, "
    "CustomName8 Varchar, CustomName9 Varchar, CustomName10 Varchar, CustomName11 Varchar, "
    "CustomName12 Varchar, CustomName13 Varchar, CustomName14 Varchar, CustomName15 Varchar, Shelter Varchar, "
    "BreederName Varchar, StorePhotos Varchar, PictureQuality Varchar, autoBackup Varchar, autoSave Varchar, "
    "backupPath Varchar, recent Varchar, checkPregnant Varchar, egglayer Varchar, lifeYears Integer, "
    "checkUpdates Varchar, columnWidths Varchar, customEventName Varchar, customEventInterval Varchar, "
    "proestrus Varchar, estrus Varchar, diestrus Varchar, anestrus Varchar, showMonths Varchar, "
    "useBreedColorLists VarChar)",
    "Create Table tree(id integer NOT NULL PRIMARY KEY, name Varchar, fatherId Varchar, motherId Varchar, "
    "colour Varchar, breed Varchar, sex Varchar, dob DATE, notes varchar, ps Varchar, pd Varchar, "
    "cage Varchar, tag Varchar, customField1 Varchar, customField2 Varchar, customField3 Varchar, "
    "customfield4 Varchar, customField5 Varchar, customField6 Varchar, deceased Varchar, dateDeceased DATE, "
    "health MEMO, journal MEMO, callname Varchar, sold Varchar, datesold DATE, breeder Varchar, "
    "owner Varchar, prefix Varchar, suffix Varchar, CustomField7 Varchar, CustomField8 Varchar, "
    "CustomField9 Varchar, CustomField10 Varchar, CustomField11 Varchar, CustomField12 Varchar, "
    "CustomField13 Varchar, CustomField14 Varchar, CustomField15 Varchar, coi Varchar, DateAdded DATE, "
    "BoughtFrom Varchar, DateBought DATE, purchasePrice Varchar, birthEstimate Varchar, oldId Integer, "
    "leased Varchar, deceasedReason Varchar, grouped Varchar, proestrusDate Varchar, estrusDate Varchar, "
    "diestrusDate Varchar, anestrusDate Varchar, breederId Varchar, forSale Varchar, cycle Varchar)",
    "Create Table preferences(id integer NOT NULL PRIMARY KEY, columnWidths Varchar)",
    "Create Table weights(id integer NOT NULL PRIMARY KEY, nameId varchar, weightDate DATE, "
    "weightTime Varchar, name Varchar, weight Varchar, pregnant Varchar)",
    "Create table vaccinations(id integer NOT NULL PRIMARY KEY, nameId varchar, duedate DATE, name Varchar, "
    "vaccination Varchar, done Varchar)",
    "Create table breeding(id integer NOT NULL PRIMARY KEY, fatherId varchar, motherId varchar, "
    "breed Varchar, Boar Varchar, Sow Varchar, mated DATE, due DATE, born DATE, numBoars Varchar, "
    "numSows Varchar, notes Varchar, sold Varchar, unsuccessful Varchar, stillBorn Varchar, "
    "undefined Varchar, numEggs Varchar, numInfertile Varchar)",
    "Create table soldstock(id integer NOT NULL PRIMARY KEY, nameId varchar, motherId Varchar, "
    "fatherId Varchar, Offspring Varchar, DateSold DATE, SoldTo Varchar, Notes Varchar, Price Varchar)",
    "Create table purchases(id integer NOT NULL PRIMARY KEY, nameId varchar, motherId Varchar, "
    "fatherId Varchar, Offspring Varchar, DatePurchased DATE, purchasedFrom Varchar, Notes Varchar, "
    "Price Varchar)",
    "Create table contacts(id integer NOT NULL PRIMARY KEY, name Varchar, address Varchar, city Varchar, "
    "state Varchar, country Varchar, postcode Varchar, phone Varchar, email Varchar, notes String, "
    "category Varchar, organisation Varchar)",
    "Create table reminders(id integer NOT NULL PRIMARY KEY, duedate DATE, reminder Varchar, done Varchar)",
    "Create table shows(id integer NOT NULL PRIMARY KEY, nameId varchar, name Varchar, show Varchar, "
    "showDate DATE, class Varchar, competitorNum String, place Varchar, judge Varchar, awards Varchar, "
    "points Varchar)",
    "Create table print(id integer NOT NULL PRIMARY KEY, Name varChar, Orientation varChar, Margin Varchar, "
    "FontSize varChar, FontName varChar, FontColour Varchar, FontBold Varchar, FontItalic Varchar, "
    "SubjectFontSize Varchar, SubjectFontName varChar, SubjectFontColour Varchar, SubjectFontBold Varchar, "
    "SubjectFontItalic Varchar, TitleFontSize varChar, TitleFontName varChar, TitleFontColour Varchar, "
    "TitleFontBold Varchar, TitleFontItalic Varchar, CustomFontSize varChar, CustomFontName varChar, "
    "CustomFontColour Varchar, CustomFontBold Varchar, CustomFontItalic Varchar, CustomFontSize_1 varChar, "
    "CustomFontName_1 varChar, CustomFontColour_1 Varchar, CustomFontBold_1 Varchar, "
    "CustomFontItalic_1 Varchar, ShowBorder Varchar, ShowShadow Varchar, PicSize varChar, LineColour Varchar, "
    "Generationchoice varChar, PrintWhat Varchar, picLeft varChar, picTop varChar, logoLeft varChar, "
    "logoTop varChar, logoSize varChar, background Varchar, bracketWidth Varchar, detailsLeft Varchar, "
    "detailsTop Varchar, certLeft Varchar, certTop Varchar, otherDetailsLeft Varchar, "
    "otherDetailsTop Varchar, otherDetails Varchar, otherDetailsLeft_1 Varchar, otherDetailsTop_1 Varchar, "
    "otherDetails_1 Varchar, wrapLength varChar, objectPositions Varchar, backgroundPic Blob, logoPic Blob, "
    "transparency Varchar, nameColour Varchar, prefixColour Varchar, prefixPartColour Varchar, suffixColour, "
    "suffixPartColour Varchar, bracketType Varchar, gen0 Varchar, gen1 Varchar, gen2 Varchar, gen3 Varchar, "
    "gen4 Varchar, gen5 Varchar, fieldChoices Varchar)",
    "Create table expenditure(id integer NOT NULL PRIMARY KEY, nameId varchar, expense_date DATE, "
    "name Varchar, details Varchar, expense Varchar, income Varchar, category Varchar)",
    "Create table journal(id integer NOT NULL PRIMARY KEY, nameId varchar, name Varchar, journalDate DATE, "
    "note Varchar, journalTime Varchar)",
    "Create table diet(id integer NOT NULL PRIMARY KEY, nameId varchar, day varchar, time varchar, "
    "feed varchar)",
    "Create table produce(id integer NOT NULL PRIMARY KEY, nameId varchar, product varchar, produceDate DATE, "
    "amount varchar, notes varchar, name varchar)",
    "Create table pictures(id integer NOT NULL PRIMARY KEY, nameId varchar, name varChar, pic0 blob, "
    "pic1 blob, pic2 blob, pic3 blob, pic4 blob, pic5 blob, pic6 blob, pic7 blob, pic8 blob, "
    "pic0caption varChar, pic1caption varChar, pic2caption varChar, pic3caption varChar, pic4caption varChar, "
    "pic5caption varChar, pic6caption varChar, pic7caption varChar, pic8caption varChar)",
    "Create table productInfo(id integer NOT NULL PRIMARY KEY, productName varChar, productMeasure varChar)",
    "Create table recent(id integer NOT NULL PRIMARY KEY, nameId varChar, dateAdded varChar)"};

}  // namespace

void makeRSDfields(SQLiteDatabase& db) {
    for (const char* statement : statements) db.execute(statement);
}

}  // namespace appSystem
