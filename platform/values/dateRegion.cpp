#include "platform/values/dateRegion.h"

#include <algorithm>
#include <array>

#include <QtCore/QLocale>

namespace dates {
namespace {

using Kind = Piece::Kind;

/// Returns the locale of the system's settings for dates.
QLocale computersLocale() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    // QLocale::system() is named after the language. The language may be unset while dates have a region of their own.
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const QByteArray name = qgetenv(variable); !name.isEmpty()) return QLocale(QString::fromLocal8Bit(name));
    }
    return QLocale::c();
#else
    return QLocale::system();
#endif
}

/// Whether the toolkit has no forms for the locale and gives those of the Unicode locale data's root instead.
bool hasRootForms(const QLocale& locale) {
    return locale.dateFormat(QLocale::ShortFormat) == "yyyy-MM-dd" &&
           locale.dateFormat(QLocale::LongFormat) == "yyyy MMMM d, dddd";
}

/// Returns the locale that gives the order of day, month and year. Without forms of its own, a locale has the order of
/// its territory, in whichever language the toolkit knows it: 3/4/2010 is 3 April for Occitan in France.
QLocale orderingLocale(const QLocale& locale) {
    if (!hasRootForms(locale)) return locale;
    const auto neighbours = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, locale.territory());
    const auto known = std::find_if_not(neighbours.begin(), neighbours.end(), hasRootForms);
    return known == neighbours.end() ? locale : *known;
}

Kind kindOf(QChar letter, qsizetype count) {
    if (letter == 'y') return Kind::year;
    if (letter == 'M') return count > 2 ? Kind::monthName : Kind::month;
    return count > 2 ? Kind::weekday : Kind::day;
}

void appendLiteral(Form& form, const QString& text) {
    if (form.empty() || form.back().kind != Kind::literal) form.push_back({Kind::literal});
    form.back().text += text.toStdString();
}

/// Adapts a form with a month name: the day may have an ordinal ending, and a full stop belongs to the name.
void allowWords(Form& form) {
    for (std::size_t i = 1; i < form.size(); ++i) {
        if (form[i - 1].kind != Kind::monthName || form[i].kind != Kind::literal) continue;
        if (form[i].text.starts_with('.')) form[i].text.erase(0, 1);
    }
    const auto isMonthName = [](const Piece& piece) { return piece.kind == Kind::monthName; };
    if (std::none_of(form.begin(), form.end(), isMonthName)) return;
    for (Piece& piece : form) {
        if (piece.kind == Kind::day) piece.kind = Kind::ordinalDay;
    }
}

/// Parses a pattern of the toolkit such as "dddd, d 'de' MMMM yyyy".
Form formOf(const QString& pattern) {
    Form form;
    for (qsizetype at = 0; at < pattern.size();) {
        const QChar c = pattern[at];
        if (c == '\'') {
            const qsizetype closing = pattern.indexOf('\'', at + 1);
            const qsizetype end = closing < 0 ? pattern.size() : closing;
            appendLiteral(form, end == at + 1 ? QString("'") : pattern.mid(at + 1, end - at - 1));
            at = end + 1;
        } else if (c == 'd' || c == 'M' || c == 'y') {
            qsizetype end = at;
            while (end < pattern.size() && pattern[end] == c) ++end;
            form.push_back({kindOf(c, end - at)});
            at = end;
        } else {
            appendLiteral(form, c);
            ++at;
        }
    }
    for (Piece& piece : form) piece.text = comparable(piece.text);
    allowWords(form);
    return form;
}

/// Makes the last piece of a form from the literal there: the text without the punctuation around it.
Piece ending(std::string_view text) {
    static constexpr std::string_view marks = " .,-";
    const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
    const std::size_t end = text.find_last_not_of(marks) + 1;
    return {Kind::ending, std::string(text.substr(begin, end > begin ? end - begin : 0))};
}

Form withEnding(Form form) {
    if (!form.empty() && form.back().kind == Kind::literal) {
        form.back() = ending(form.back().text);
    } else {
        form.push_back(ending(""));
    }
    return form;
}

Form withoutWeekday(Form form) {
    const auto isWeekday = [](const Piece& piece) { return piece.kind == Kind::weekday; };
    if (!form.empty() && isWeekday(form.front())) {
        form.erase(form.begin(), std::find_if(form.begin() + 1, form.end(),
                                              [](const Piece& piece) { return piece.kind != Kind::literal; }));
    } else {
        const auto weekday = std::find_if(form.begin(), form.end(), isWeekday);
        form.erase(weekday, form.end());
    }
    return form;
}

bool comesFirst(const Form& form, std::array<Kind, 2> first, std::array<Kind, 2> second) {
    const auto place = [&](const std::array<Kind, 2>& kinds) {
        return std::find_if(form.begin(), form.end(),
                            [&](const Piece& piece) { return piece.kind == kinds[0] || piece.kind == kinds[1]; });
    };
    return place(first) < place(second);
}

constexpr std::array years{Kind::year, Kind::fourDigitYear};
constexpr std::array months{Kind::month, Kind::monthName};
constexpr std::array days{Kind::day, Kind::ordinalDay};

Form numbers(Kind first, Kind second, Kind third) {
    return {{first}, {Kind::separator}, {second}, {Kind::sameSeparator}, {third}};
}

Form words(Kind first, Kind second, Kind third) {
    return {{first}, {Kind::looseSeparator}, {second}, {Kind::looseSeparator}, {third}};
}

/// Returns the short and the long form as the toolkit has them.
std::vector<Form> ownForms(const Form& shortForm, const Form& longForm) {
    return {withEnding(shortForm), withEnding(withoutWeekday(longForm)), withEnding(longForm)};
}

/// Returns the forms that are accepted beside the region's own.
std::vector<Form> lenientForms(bool yearFirst, bool monthFirst) {
    std::vector<Form> forms{numbers(Kind::fourDigitYear, Kind::month, Kind::day)};
    if (yearFirst) forms.push_back(numbers(Kind::year, Kind::month, Kind::day));
    // Where two digits in front are the year, those at the end are not.
    const Kind year = yearFirst ? Kind::fourDigitYear : Kind::year;
    forms.push_back(monthFirst ? numbers(Kind::month, Kind::day, year) : numbers(Kind::day, Kind::month, year));
    forms.push_back(words(Kind::ordinalDay, Kind::monthName, Kind::year));
    forms.push_back(words(Kind::monthName, Kind::ordinalDay, Kind::year));
    forms.push_back(words(Kind::fourDigitYear, Kind::monthName, Kind::ordinalDay));
    return forms;
}

/// Sorts names by length, the longest first, and keeps the first of several equal ones.
template <typename Names, typename TextOf>
void sortForSearch(Names& names, TextOf textOf) {
    std::stable_sort(names.begin(), names.end(), [&](const auto& a, const auto& b) {
        return textOf(a).size() != textOf(b).size() ? textOf(a).size() > textOf(b).size() : textOf(a) < textOf(b);
    });
    const auto isSame = [&](const auto& a, const auto& b) { return textOf(a) == textOf(b); };
    names.erase(std::unique(names.begin(), names.end(), isSame), names.end());
    std::erase_if(names, [&](const auto& name) { return textOf(name).empty(); });
}

std::string nameOf(const QString& name) {
    std::string found = comparable(name.toStdString());
    if (!found.empty() && found.back() == '.') found.pop_back();
    return found;
}

}  // namespace

std::string comparable(std::string_view text) {
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::all_of(text.begin(), text.end(), isAscii)) {
        std::string out(text);
        for (char& c : out) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
            if (c >= '\t' && c <= '\r') c = ' ';
        }
        return out;
    }
    // The composed form is the same for either spelling of an accent, full-width digits and narrow blanks.
    const QString composed =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).normalized(QString::NormalizationForm_KC);
    QString out;
    for (const char32_t code : composed.toUcs4()) {
        if (QChar::category(code) == QChar::Other_Format) continue;
        if (const int digit = QChar::digitValue(code); digit >= 0) {
            out += QChar('0' + digit);
        } else if (QChar::isSpace(code)) {
            out += ' ';
        } else if (code == 0x2019) {
            out += '\'';
        } else if (code == 0x130 || code == 0x131) {
            // The small letters of "ARALIK" are "aralık" in Turkish and "aralik" elsewhere.
            out += 'i';
        } else {
            out += QStringView(QChar::fromUcs4(code));
        }
    }
    return out.toCaseFolded().toStdString();
}

std::string withoutAccents(std::string_view text) {
    QString letters =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).normalized(QString::NormalizationForm_D);
    letters.removeIf([](QChar c) { return c.unicode() >= 0x300 && c.unicode() <= 0x36F; });
    return letters.normalized(QString::NormalizationForm_C).toStdString();
}

Region::Region(const QLocale& locale) {
    for (const QLocale& language : {locale, QLocale(QLocale::English)}) {
        for (const auto length : {QLocale::LongFormat, QLocale::ShortFormat}) {
            for (int month = 1; month <= 12; ++month) {
                months_.emplace_back(nameOf(language.monthName(month, length)), month);
                months_.emplace_back(nameOf(language.standaloneMonthName(month, length)), month);
            }
            for (int day = 1; day <= 7; ++day) {
                weekdays_.push_back(nameOf(language.dayName(day, length)));
                weekdays_.push_back(nameOf(language.standaloneDayName(day, length)));
            }
        }
    }
    months_.emplace_back("sept", 9);
    // Of two months whose names differ in an accent alone, the one that is written without it has the bare name.
    for (std::size_t i = 0, named = months_.size(); i < named; ++i) {
        months_.emplace_back(withoutAccents(months_[i].first), months_[i].second);
    }
    for (std::size_t i = 0, named = weekdays_.size(); i < named; ++i) {
        weekdays_.push_back(withoutAccents(weekdays_[i]));
    }
    sortForSearch(months_, [](const auto& name) -> const std::string& { return name.first; });
    sortForSearch(weekdays_, [](const auto& name) -> const std::string& { return name; });

    forms_ = ownForms(formOf(locale.dateFormat(QLocale::ShortFormat)), formOf(locale.dateFormat(QLocale::LongFormat)));
    const QLocale ordering = orderingLocale(locale);
    const Form shortForm = formOf(ordering.dateFormat(QLocale::ShortFormat));
    const Form longForm = formOf(ordering.dateFormat(QLocale::LongFormat));
    const bool yearFirst = comesFirst(shortForm, years, days);
    // A short form that begins with the year doesn't say how day and month are ordered in front of a year.
    // Without regional settings, dates have the C library's own order, month first.
    const bool monthFirst =
        locale.language() == QLocale::C || comesFirst(yearFirst ? longForm : shortForm, months, days);
    for (Form& form : lenientForms(yearFirst, monthFirst)) forms_.push_back(std::move(form));
}

Region Region::ofTheComputer() { return Region(computersLocale()); }

std::pair<std::size_t, int> Region::monthAt(std::string_view text) const {
    for (const auto& [name, month] : months_) {
        if (text.starts_with(name)) return {name.size(), month};
    }
    return {0, 0};
}

std::size_t Region::weekdayAt(std::string_view text) const {
    for (const std::string& name : weekdays_) {
        if (text.starts_with(name)) return name.size();
    }
    return 0;
}

}  // namespace dates
