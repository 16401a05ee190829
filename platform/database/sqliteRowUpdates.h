#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/database/sqliteStatement.h"
#include "platform/values/textPool.h"

/// What single columns of a table's rows will be: new texts that are gathered in any order and written some hundred
/// rows at a time. A row is decoded and encoded as a whole whenever one of its columns changes, so it pays to know all
/// of them first; one UPDATE of 200 rows then takes two thirds of the time that 200 UPDATEs take.
///
/// A gathered text is in the table once it is written only, and goes with the object if it never is.
class SQLiteRowUpdates {
  public:
    /// A set of columns, a bit for each.
    using Columns = unsigned;
    static constexpr Columns allColumns = ~0U;

    /// The table's `id` is its row number. Raises DatabaseFailure if the table or a column is missing.
    SQLiteRowUpdates(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view table,
                     const std::vector<std::string>& columns);

    /// Gathers a text for a column, numbered from 0 in the order given to the constructor. The last one counts.
    void set(std::int64_t row, int column, std::string_view text);

    /// The text gathered for a column of a row and not written yet; nothing if there is none. Good until the
    /// next set(). Cheapest for rows near to that of the call before.
    std::optional<std::string_view> find(std::int64_t row, int column) const;

    /// Writes the texts of the first rows that have any in these columns, and forgets them; false if none has. Opens a
    /// transaction if none is open. Raises DatabaseFailure if the database refuses; these rows' texts are forgotten
    /// then, too.
    bool writeNext(Columns columns = allColumns);

  private:
    friend struct GatheredText;

    /// Texts of neighbouring rows, column by column for each row; `none` where there is none.
    struct Span {
        Columns columns = 0;  ///< those that a row has a text for
        std::vector<TextPool::Number> texts;
    };

    /// The texts of a row that lies in one of the spans, else null.
    const TextPool::Number* rowOf(std::int64_t row) const;
    static bool has(Columns columns, int column) { return (columns >> static_cast<unsigned>(column) & 1U) != 0; }
    void forget(std::map<std::int64_t, Span>::iterator span, Columns columns);

    std::shared_ptr<detail::SQLiteConnection> connection_;
    int width_;
    SQLiteStatement statement_;
    TextPool texts_;                                                 ///< herds have few parents with many offspring
    std::map<std::int64_t, Span> spans_;                             ///< by number
    mutable std::pair<std::int64_t, const Span*> last_{0, nullptr};  ///< the one found last
    Columns writing_ = 0;
};
