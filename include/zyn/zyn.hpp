// zyn for C++: the C interface of zyn/zyn.h with values in place of pointers, and nothing that it costs. Header only, C++20.
//
//     zyn::Builder build;
//     auto& logon = build.make(zyn::Init<ZynUserLogon>{.loginPassword = "open sesame"});
//     uint8_t octets[256];
//     const auto message = zyn::encode<zyn::TransRequest>("TRADER01", logon, octets);
//     if (!message) return complain(message.failure().text);
//
//     const auto request = zyn::decode<zyn::TransRequest>(*message);
//     if (request) request->view().upTransMsg().visit(...);
//
// Everything works on the context that the calling thread has bound, as in C. What a Decode gives lives until the next Decode
// or Encode on that context, and so do the strings of a Failure; zyn::copy makes a message that lasts.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>

#include "zyn/cpp/base.hpp"
#include "zyn/cpp/records.hpp"
#include "zyn/zyn.h"

namespace zyn {

// The particulars of a failure (zyn/failure.h).
using Failure = ZynFailure;

// Either a value or why there is none. To take the value of a failure ends the program.
template <typename T> class [[nodiscard]] Result {
public:
    Result(T value) : either_(std::in_place_index<0>, std::move(value)) {}
    Result(const Failure& failure) : either_(std::in_place_index<1>, failure) {}

    bool ok() const { return either_.index() == 0; }
    explicit operator bool() const { return ok(); }
    T& operator*() { return value(); }
    const T& operator*() const { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    T& value() { return ok() ? *std::get_if<0>(&either_) : (std::abort(), *std::get_if<0>(&either_)); }
    const T& value() const { return const_cast<Result*>(this)->value(); }
    const Failure& failure() const {
        return ok() ? (std::abort(), *std::get_if<1>(&either_)) : *std::get_if<1>(&either_);
    }

private:
    std::variant<T, Failure> either_;
};

// The four kinds of messages: which envelope each has, and which CHOICE tells its messages apart.
struct TransRequest {
    using Envelope = ZynTransReq;
    using Messages = ZynTransReqChoice;
    static constexpr auto decoder = ZynTransRequestDecode;
    static constexpr auto encoder = ZynTransRequestEncode;
};
struct QueryRequest {
    using Envelope = ZynQueryReq;
    using Messages = ZynQueryReqChoice;
    static constexpr auto decoder = ZynQueryRequestDecode;
    static constexpr auto encoder = ZynQueryRequestEncode;
};
struct TransReply {
    using Envelope = ZynTransRep;
    using Messages = ZynTransRep;
    static constexpr auto decoder = ZynTransReplyDecode;
    static constexpr auto encoder = ZynTransReplyEncode;
};
struct QueryReply {
    using Envelope = ZynQueryRep;
    using Messages = ZynQueryRep;
    static constexpr auto decoder = ZynQueryReplyDecode;
    static constexpr auto encoder = ZynQueryReplyEncode;
};
template <typename Kind>
concept Request = std::is_same_v<Kind, TransRequest> || std::is_same_v<Kind, QueryRequest>;
template <typename Kind>
concept Reply = std::is_same_v<Kind, TransReply> || std::is_same_v<Kind, QueryReply>;

// A decoded message: the envelope itself, and below it records in the library's arena.
template <typename Envelope> class Decoded {
public:
    explicit Decoded(const Envelope& envelope) : envelope_(envelope) {}
    View<Envelope> view() const { return View<Envelope>(envelope_); }
    Envelope& get() { return envelope_; }

private:
    Envelope envelope_;
};

namespace detail {

inline Failure lastFailure() {
    Failure failure = {};
    ZynLastFailure(&failure);
    return failure;
}

inline Result<std::span<const uint8_t>> encoded(uint32_t length, std::span<uint8_t> buffer) {
    if (length == 0) return lastFailure();
    return std::span<const uint8_t>(buffer.first(length));
}

inline uint32_t sizeOf(std::span<const uint8_t> octets) {
    return static_cast<uint32_t>(std::min<std::size_t>(octets.size(), UINT32_MAX));
}

} // namespace detail

// Decodes one message; what stands behind it in octets is left alone.
template <typename Kind> Result<Decoded<typename Kind::Envelope>> decode(std::span<const uint8_t> octets) {
    typename Kind::Envelope envelope;
    if (Kind::decoder(octets.data(), detail::sizeOf(octets), &envelope) != 0) return detail::lastFailure();
    return Decoded<typename Kind::Envelope>(envelope);
}

// Encodes a message from user, up to 12 characters, and gives the octets at the front of buffer. number is that of the
// alternative; it is found by the record's type where only one alternative has it.
template <Request Kind, typename T>
Result<std::span<const uint8_t>> encode(std::string_view user, T& message, uint32_t number, std::span<uint8_t> buffer) {
    char padded[12];
    std::fill(std::copy_n(user.data(), std::min(user.size(), sizeof padded), padded), padded + sizeof padded, ' ');
    return detail::encoded(Kind::encoder(padded, &message, number, buffer.data(), detail::sizeOf(buffer)), buffer);
}
template <Request Kind, typename T>
Result<std::span<const uint8_t>> encode(std::string_view user, T& message, std::span<uint8_t> buffer) {
    return encode<Kind>(user, message, View<typename Kind::Messages>::numberOf(&message), buffer);
}

// The same for replies, which name no user. A successful Encode ends what was decoded before it.
template <Reply Kind, typename T>
Result<std::span<const uint8_t>> encode(T& message, uint32_t number, std::span<uint8_t> buffer) {
    return detail::encoded(Kind::encoder(&message, number, buffer.data(), detail::sizeOf(buffer)), buffer);
}
template <Reply Kind, typename T> Result<std::span<const uint8_t>> encode(T& message, std::span<uint8_t> buffer) {
    return encode<Kind>(message, View<typename Kind::Messages>::numberOf(&message), buffer);
}

// The record in ASN.1 value notation. Throws std::bad_alloc when memory is refused.
template <typename T> std::string notation(View<T> view) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* stream = open_memstream(&text, &size);
    if (!stream) throw std::bad_alloc();
    View<T>::printer_(stream, const_cast<T*>(&view.get()), 0);
    const bool good = std::fclose(stream) == 0;
    const std::unique_ptr<char, void (*)(void*)> owner(text, std::free);
    if (!good || !text) throw std::bad_alloc();
    return std::string(text, size);
}

// Whether two trees hold the same values (ZynTreeEqual).
template <typename T> bool equal(View<T> one, View<T> other) {
    return ZynTreeEqual(ZynTypeByName(View<T>::name_), &one.get(), &other.get()) != 0;
}

// A tree of its own, in one block of memory, which refers to nothing outside.
template <typename T> class Copy {
public:
    explicit Copy(View<T> original) {
        const ZynType* type = ZynTypeByName(View<T>::name_);
        const std::size_t size = ZynTreeSize(type, &original.get());
        block_ = std::make_unique<std::max_align_t[]>((size + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t));
        record_ = static_cast<T*>(ZynTreeCopy(type, &original.get(), block_.get(), size));
    }
    View<T> view() const { return View<T>(*record_); }
    T& get() const { return *record_; }

private:
    std::unique_ptr<std::max_align_t[]> block_;
    T* record_;
};
template <typename T> Copy<T> copy(View<T> original) { return Copy<T>(original); }

// A context of its own (zyn/context.h). It must not be bound anywhere when it ends. Throws std::bad_alloc when memory is
// refused.
class Context {
public:
    Context() : context_(ZynContextNew()) {
        if (!context_) throw std::bad_alloc();
    }
    ZynContext* get() const { return context_.get(); }
    void setIndent(unsigned short spaces) { ZynContextSetIndent(get(), spaces); }

    // Binds the context to the thread for as long as it lives; then the one before is bound again.
    class [[nodiscard]] Use {
    public:
        explicit Use(const Context& context) : before_(ZynContextUse(context.get())) {}
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use() { ZynContextUse(before_); }

    private:
        ZynContext* before_;
    };
    Use use() const { return Use(*this); }

private:
    struct Free {
        void operator()(ZynContext* context) const { ZynContextFree(context); }
    };
    std::unique_ptr<ZynContext, Free> context_;
};

// Several functions as one, for visit: visit(overloaded{[](View<ZynReplyOK>) {...}, [](auto) {...}}).
template <typename... F> struct overloaded : F... { using F::operator()...; };
template <typename... F> overloaded(F...) -> overloaded<F...>;

} // namespace zyn
