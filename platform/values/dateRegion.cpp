#include "platform/values/dateRegion.h"

#include <algorithm>
#include <array>

#include <QtCore/QLocale>

#include "platform/values/text.h"

namespace dates {
namespace {

using Kind = Piece::Kind;

/// The locale that dates follow.
QLocale computersLocale() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    // The toolkit's locale of the system is named for the language, which may be none while dates have their region.
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        if (const QByteArray name = qgetenv(variable); !name.isEmpty()) return QLocale(QString::fromLocal8Bit(name));
    }
    return QLocale::c();
#else
    return QLocale::system();
#endif
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

/// The pieces of a pattern such as "dddd, d 'de' MMMM yyyy".
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
    return form;
}

/// What may close a date: the text without marks around it.
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
constexpr std::array days{Kind::day, Kind::day};

Form numbers(Kind first, Kind second, Kind third) {
    return {{first}, {Kind::separator}, {second}, {Kind::sameSeparator}, {third}};
}

Form words(Kind first, Kind second, Kind third) {
    return {{first}, {Kind::looseSeparator}, {second}, {Kind::looseSeparator}, {third}};
}

/// The short and the long form as the toolkit has them.
std::vector<Form> ownForms(const Form& shortForm, const Form& longForm) {
    return {withEnding(shortForm), withEnding(withoutWeekday(longForm)), withEnding(longForm)};
}

/// What people type who don't keep to a form.
std::vector<Form> lenientForms(bool yearFirst, bool monthFirst) {
    std::vector<Form> forms{numbers(Kind::fourDigitYear, Kind::month, Kind::day)};
    if (yearFirst) forms.push_back(numbers(Kind::year, Kind::month, Kind::day));
    // Where two digits in front are the year, those at the end are not.
    const Kind year = yearFirst ? Kind::fourDigitYear : Kind::year;
    forms.push_back(monthFirst ? numbers(Kind::month, Kind::day, year) : numbers(Kind::day, Kind::month, year));
    forms.push_back(words(Kind::day, Kind::monthName, Kind::year));
    forms.push_back(words(Kind::monthName, Kind::day, Kind::year));
    forms.push_back(words(Kind::fourDigitYear, Kind::monthName, Kind::day));
    return forms;
}

/// Each name once, the longest first; of months with the same name, the one that came first.
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
    // The composed form is one for letters with accents in either spelling, full-width figures and narrow blanks.
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
        } else {
            out += QStringView(QChar::fromUcs4(code));
        }
    }
    return text::lower(out.toStdString());
}

Region::Region(const QLocale& locale) {
    for (const QLocale& language : {locale, QLocale(QLocale::English)}) {
        for (const auto length : {QLocale::LongFormat, QLocale::ShortFormat}) {
            for (int month = 1; month <= 12; ++month) {
                months_.emplace_back(nameOf(language.monthName(month, length)), month);
                months_.emplace_back(nameOf(language.standaloneMonthName(month, length)), month);
            }
            for (int day = 1; day <= 7; ++day) weekdays_.push_back(nameOf(language.dayName(day, length)));
        }
    }
    months_.emplace_back("sept", 9);
    sortForSearch(months_, [](const auto& name) -> const std::string& { return name.first; });
    sortForSearch(weekdays_, [](const auto& name) -> const std::string& { return name; });

    const Form shortForm = formOf(locale.dateFormat(QLocale::ShortFormat));
    const Form longForm = formOf(locale.dateFormat(QLocale::LongFormat));
    const bool yearFirst = comesFirst(shortForm, years, days);
    // Where the short form begins with the year, it doesn't tell how day and month stand in front of one.
    // Without regional settings the C library's own form counts, month first.
    const bool monthFirst =
        locale.language() == QLocale::C || comesFirst(yearFirst ? longForm : shortForm, months, days);
    forms_ = ownForms(shortForm, longForm);
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
