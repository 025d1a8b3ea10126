// What the C++ interface is made of: views, which read a record, and what a record is built from. The views and Inits of
// the records themselves are generated from the protocol's modules; zyn/zyn.hpp includes everything.
//
// A View is a pointer to a record of the C interface and nothing more. It owns nothing and lives as long as its record: what
// was decoded until the next Decode or Encode on the same context, what a Builder made as long as the Builder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "zyn/asn.h"

namespace zyn {

// The octets of an OCTET STRING, as text or as numbers. Made from a caller's text it refers to that text.
class Octets {
public:
    constexpr Octets() = default;
    constexpr Octets(const char* text) : Octets(std::string_view(text)) {}
    constexpr Octets(std::string_view text) : data_(text.data()), size_(text.size()) {}
    Octets(std::span<const uint8_t> octets)
        : data_(reinterpret_cast<const char*>(octets.data())), size_(octets.size()) {}
    explicit Octets(const AsnOcts& value) : data_(reinterpret_cast<const char*>(value.octs)), size_(value.octetLen) {}

    constexpr std::string_view text() const { return {data_, size_}; }
    constexpr operator std::string_view() const { return text(); }
    std::span<const uint8_t> octets() const { return {reinterpret_cast<const uint8_t*>(data_), size_}; }
    constexpr std::size_t size() const { return size_; }
    friend constexpr bool operator==(Octets one, std::string_view other) { return one.text() == other; }
    friend constexpr bool operator==(Octets one, const char* other) { return one.text() == other; }
    friend constexpr bool operator==(Octets one, Octets other) { return one.text() == other.text(); }

    // As a record holds it: present, with up to 4 GiB less one octet.
    AsnOcts value() const {
        static constexpr char none[] = "";
        return {static_cast<uint32_t>(size_), reinterpret_cast<uint8_t*>(const_cast<char*>(data_ ? data_ : none))};
    }

private:
    const char* data_ = nullptr;
    std::size_t size_ = 0;
};

// The bits of a BIT STRING, the first one in the highest bit of the first octet.
class Bits {
public:
    constexpr Bits(std::span<const uint8_t> octets, std::size_t size) : octets_(octets.data()), size_(size) {}
    explicit Bits(const AsnBits& value) : octets_(value.bits), size_(static_cast<std::size_t>(value.bitLen)) {}

    constexpr std::size_t size() const { return size_; }
    constexpr bool operator[](std::size_t bit) const { return octets_[bit / 8] >> (7 - bit % 8) & 1; }
    AsnBits value() const {
        static constexpr uint8_t none[1] = {};
        return {static_cast<int32_t>(size_), const_cast<uint8_t*>(octets_ ? octets_ : none)};
    }

private:
    const uint8_t* octets_;
    std::size_t size_;
};

// Reads a record of type T: each field is a function of its name. An OPTIONAL field gives a std::optional. Specialised for
// each SEQUENCE and CHOICE of the protocol.
template <typename T> class View;

// Builds a record of type T with designated initialisers. A required field that is left out does not compile; one that is a
// record is given by reference, so that it cannot be null. Specialised for each SEQUENCE and CHOICE of the protocol.
template <typename T> struct Init;

// The number of an alternative, as a type.
template <uint32_t n> using Number = std::integral_constant<uint32_t, n>;

namespace detail {

template <typename T> std::optional<T> optional(const T* value) {
    return value ? std::optional<T>(*value) : std::nullopt;
}
inline std::optional<bool> optionalBool(const AsnBool* value) {
    return value ? std::optional<bool>(*value != 0) : std::nullopt;
}
inline std::optional<Octets> optional(const AsnOcts& value) {
    return value.octs ? std::optional<Octets>(Octets(value)) : std::nullopt;
}
inline std::optional<Bits> optional(const AsnBits& value) {
    return value.bits ? std::optional<Bits>(Bits(value)) : std::nullopt;
}
template <typename T> std::optional<View<T>> optionalView(const T* record) {
    return record ? std::optional<View<T>>(View<T>(*record)) : std::nullopt;
}

template <typename From, typename T>
concept Gives = std::is_convertible_v<From, T> && !requires {
    typename std::remove_cvref_t<From>::RequiredMark;
};

// The slot of a record without fields may be null.
template <typename T> inline constexpr T empty = {};

// Calls f with the value of an alternative, and with its number if f takes one: two alternatives may be of one type.
template <uint32_t n, typename F, typename Value> decltype(auto) visitWith(F&& f, Value value) {
    if constexpr (std::is_invocable_v<F, Value, Number<n>>) return std::forward<F>(f)(value, Number<n>());
    else {
        static_assert(std::is_invocable_v<F, Value>, "visit: an alternative is not handled; its type and number are in "
                                                     "the instantiation above");
        return std::forward<F>(f)(value);
    }
}

} // namespace detail

// The elements of a SET OF, in the order of the message; a forward range of View<T>.
template <typename T> class List {
public:
    class iterator {
    public:
        using value_type = View<T>;
        using difference_type = std::ptrdiff_t;
        using reference = View<T>;
        using pointer = void;
        using iterator_category = std::input_iterator_tag;
        using iterator_concept = std::forward_iterator_tag;

        iterator() = default;
        explicit iterator(const AsnListNode* node) : node_(node) {}
        View<T> operator*() const { return View<T>(*static_cast<const T*>(node_->data)); }
        iterator& operator++() {
            node_ = node_->next;
            return *this;
        }
        iterator operator++(int) {
            const iterator before = *this;
            node_ = node_->next;
            return before;
        }
        bool operator==(const iterator&) const = default;

    private:
        const AsnListNode* node_ = nullptr;
    };

    // Null: an empty list.
    explicit List(const AsnList* list) : list_(list) {}
    iterator begin() const { return iterator(list_ ? list_->first : nullptr); }
    iterator end() const { return iterator(); }
    std::size_t size() const { return list_ ? static_cast<std::size_t>(list_->count) : 0; }
    bool empty() const { return size() == 0; }

private:
    const AsnList* list_;
};

// A record that is there. Encode moves the cursors of lists in it, hence no const.
template <typename T> class Ref {
public:
    Ref(T& record) : record_(&record) {}
    T* get() const { return record_; }

private:
    T* record_;
};

// A list of T's that is there; from Builder::list.
template <typename T> class ListRef {
public:
    explicit ListRef(AsnList& list) : list_(&list) {}
    AsnList* get() const { return list_; }

private:
    AsnList* list_;
};

// A value that has to be given: it has no default.
template <typename T> class Required {
public:
    using RequiredMark = void;
    template <detail::Gives<T> From> constexpr Required(From&& from) : value_(std::forward<From>(from)) {}
    constexpr const T& value() const { return value_; }

private:
    T value_;
};

// Holds the records of a message that is being built, until it is cleared or destroyed. Texts are not copied, unless by
// copy(). Throws std::bad_alloc when memory is refused.
class Builder {
public:
    Builder() = default;
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    ~Builder() { clear(); }

    // A record made of init, such as make(Init<ZynBoardId>{.boardId = "MAIN"}).
    template <typename T> T& make(const Init<T>& init) {
        T& record = *::new (allocate(sizeof(T))) T();
        init.fill(record, *this);
        return record;
    }

    // A list, to be filled by append, or at once by the Inits of a range.
    template <typename T> ListRef<T> list() {
        auto* list = ::new (allocate(sizeof(AsnList))) AsnList();
        list->dataSize = sizeof(void*);
        return ListRef<T>(*list);
    }
    template <typename T> T& append(ListRef<T> to, const Init<T>& init) {
        AsnList& list = *to.get();
        auto* node = ::new (allocate(sizeof(AsnListNode) + sizeof(void*))) AsnListNode();
        T& record = make(init);
        node->data = &record;
        node->prev = list.last;
        (list.last ? list.last->next : list.first) = node;
        list.last = list.curr = node;
        ++list.count;
        return record;
    }
    template <typename T> ListRef<T> list(std::initializer_list<Init<T>> elements) {
        const ListRef<T> made = list<T>();
        for (const Init<T>& init : elements) append(made, init);
        return made;
    }

    // A copy of a value, as OPTIONAL numbers need it, and one of a text.
    template <typename T> T* keep(T value) { return ::new (allocate(sizeof(T))) T(value); }
    Octets copy(std::string_view text) {
        if (text.empty()) return std::string_view("");
        auto* octets = static_cast<char*>(allocate(text.size()));
        std::memcpy(octets, text.data(), text.size());
        return std::string_view(octets, text.size());
    }

    // Drops all that was made; everything that refers to it is invalid then.
    void clear() {
        while (blocks_) {
            Block* next = blocks_->next;
            ::operator delete(blocks_);
            blocks_ = next;
        }
        free_ = end_ = nullptr;
    }

private:
    struct alignas(std::max_align_t) Block {
        Block* next;
    };
    static constexpr std::size_t blockSize = 4096, alignment = alignof(std::max_align_t);

    void* allocate(std::size_t size) {
        size = (size + alignment - 1) / alignment * alignment;
        if (static_cast<std::size_t>(end_ - free_) < size) {
            const std::size_t room = size > blockSize ? size : blockSize;
            auto* block = static_cast<Block*>(::operator new(sizeof(Block) + room));
            block->next = blocks_;
            blocks_ = block;
            free_ = reinterpret_cast<char*>(block + 1);
            end_ = free_ + room;
        }
        void* memory = free_;
        free_ += size;
        return memory;
    }

    Block* blocks_ = nullptr;
    char* free_ = nullptr;
    char* end_ = nullptr;
};

} // namespace zyn
