#include "accessdriver/sql/run/rowSet.h"

#include <cstring>
#include <type_traits>

namespace sql {

namespace {

// A packed value is its place in jet::Value's list of types, one byte, and then the plain bytes of the value;
// text and binary have their length, four bytes, before them.
constexpr std::size_t chunkBytes = std::size_t{64} * 1024;

template <class Plain>
void putPlain(std::string& out, const Plain& value) {
    static_assert(std::is_trivially_copyable_v<Plain>);
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void put(std::string&, std::monostate) {}

template <class Plain>
void put(std::string& out, const Plain& value) {
    putPlain(out, value);
}

template <class Element>
void putLong(std::string& out, const Element* elements, std::size_t size) {
    putPlain(out, static_cast<std::uint32_t>(size));
    out.append(reinterpret_cast<const char*>(elements), size);
}

void put(std::string& out, const std::string& text) { putLong(out, text.data(), text.size()); }
void put(std::string& out, const jet::Bytes& bytes) { putLong(out, bytes.data(), bytes.size()); }

class Unpacker {
  public:
    Unpacker(const std::string& chunk, std::size_t at) : chunk_(chunk), at_(at) {}

    void value(jet::Value& out) {
        const std::size_t type = static_cast<unsigned char>(chunk_[at_++]);
        valueOf<0>(type, out);
    }

  private:
    template <std::size_t index>
    void valueOf(std::size_t type, jet::Value& out) {
        if constexpr (index < std::variant_size_v<jet::Value>) {
            if (type != index) return valueOf<index + 1>(type, out);
            // An old text of the row before keeps its memory.
            if (out.index() != index) out.emplace<index>();
            take(std::get<index>(out));
        }
    }

    void take(std::monostate&) {}

    template <class Plain>
    void take(Plain& out) {
        std::memcpy(&out, chunk_.data() + at_, sizeof out);
        at_ += sizeof out;
    }

    void take(std::string& out) { takeLong(out); }
    void take(jet::Bytes& out) { takeLong(out); }

    template <class Long>
    void takeLong(Long& out) {
        std::uint32_t size = 0;
        take(size);
        out.assign(chunk_.begin() + static_cast<std::ptrdiff_t>(at_),
                   chunk_.begin() + static_cast<std::ptrdiff_t>(at_ + size));
        at_ += size;
    }

    const std::string& chunk_;
    std::size_t at_;
};

}  // namespace

void RowSet::add(const Row& row) {
    if (chunks_.empty() || chunks_.back().size() >= chunkBytes) chunks_.emplace_back().reserve(chunkBytes + 1024);
    std::string& chunk = chunks_.back();
    const Place place{static_cast<std::uint32_t>(chunks_.size() - 1), static_cast<std::uint32_t>(chunk.size())};
    for (const jet::Value& value : row) {
        chunk += static_cast<char>(value.index());
        std::visit([&](const auto& held) { put(chunk, held); }, value);
    }
    // Only now the row counts: there was memory for all of it.
    starts_.push_back(place);
}

void RowSet::keepRest() {
    if (!source_) return;
    const auto source = std::move(source_);
    try {
        Row row(columns_.size());
        while (source->next(row)) add(row);
    } catch (...) {
        failure_ = std::current_exception();
        throw;
    }
}

bool RowSet::next() {
    if (next_ < starts_.size()) {
        moveTo(next_);
        return true;
    }
    if (failure_) std::rethrow_exception(failure_);
    if (!source_) return false;
    if (source_->next(current_)) return true;
    source_.reset();
    return false;
}

void RowSet::moveTo(std::size_t row) {
    const Place place = starts_[row];
    Unpacker unpacker(chunks_[place.chunk], place.offset);
    for (jet::Value& value : current_) unpacker.value(value);
    next_ = row + 1;
}

}  // namespace sql
