// A trader enters an order, amends it, reads the order book, withdraws the order and reads the book again. Both sides
// of the protocol run in this one process and see of each other nothing but octets. Each message is shown twice: as
// octets, and as value notation, which the library writes to the standard error stream.
#include <cstdio>
#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>
#include <zyn/zyn.h>

namespace {

using Octets = std::vector<uint8_t>;

// Numbers of alternatives; a query reply has the number of its request.
enum : uint32_t { order = 426, orderAmend = 427, orderWithdraw = 430 };
enum : uint32_t { replyBad = 17, replyOK = 18 };
enum : uint32_t { orderbookByPrice = 288 };

// What both ends have agreed on for the ENUMERATED fields of this example.
enum : AsnInt { buy = 1, sell = 2, limitOrder = 2, goodForDay = 0, withdrawOne = 1 };

constexpr char trader[] = "TRADER01    "; // a userId is 12 bytes of text
constexpr char security[] = "ACME";
constexpr char board[] = "MAIN";

std::string textOf(const AsnOcts& v) {
    std::string text(ZynTextStrGetLen(&v), ' ');
    ZynTextStrGet(&v, text.data(), 0);
    return text;
}

// set points at text, which must stay where it is until the Encode.
void set(AsnOcts& v, const char* text) { ZynTextStrSet(&v, text, 0); }

double valueOf(const AsnFixedReal& v) {
    double value;
    ZynFixedRealGet(&v, &value);
    return value;
}

// make gives a zero-filled record in the arena, where it stays until the next Encode has succeeded.
template <typename Record> Record* make() {
    void* memory = ZynEncodeMemAlloc(sizeof(Record));
    if (!memory) throw std::bad_alloc();
    return static_cast<Record*>(memory);
}

AsnFixedReal* makePrice(double value) {
    AsnFixedReal* price = make<AsnFixedReal>();
    ZynFixedRealSetWithDecimals(price, value, 2);
    return price;
}

// encoded calls one of the Encodes with what it takes ahead of its block, and returns what it wrote.
template <typename Encode, typename... Arguments> Octets encoded(Encode encode, Arguments... arguments) {
    Octets octets(4096);
    octets.resize(encode(arguments..., octets.data(), static_cast<uint32_t>(octets.size())));
    if (octets.empty()) throw std::runtime_error("a message could not be encoded");
    return octets;
}

// decoded fills *message by one of the Decodes and shows it.
template <typename Message>
void decoded(const Octets& octets, Message* message, int32_t decode(const uint8_t*, uint32_t, Message*),
             int print(void*, Message*)) {
    std::printf("  %zu octets:", octets.size());
    for (const uint8_t octet : octets) std::printf(" %02X", octet);
    std::printf("\n");
    const int32_t code = decode(octets.data(), static_cast<uint32_t>(octets.size()), message);
    if (code != 0) throw std::runtime_error("a message could not be decoded, code " + std::to_string(code));
    print(nullptr, message);
    std::fputc('\n', stderr);
}

// The exchange's side of both channels.
class Exchange {
public:
    Exchange() {
        add({"TRADER02", buy, 101.25, 300});
        add({"TRADER03", buy, 101.00, 150});
        add({"TRADER02", sell, 102.50, 200});
    }

    Octets transact(const Octets& octets) {
        ZynTransReq request;
        decoded(octets, &request, ZynTransRequestDecode, ZynTransRequestPrint);
        std::string orderNo;
        switch (request.upTransMsg->choiceId) {
        case order: orderNo = enter(request.userId, *request.upTransMsg->order->order); break;
        case orderAmend: orderNo = amend(*request.upTransMsg->orderAmend); break;
        case orderWithdraw: orderNo = withdraw(*request.upTransMsg->orderWithdraw); break;
        default: break;
        }
        if (orderNo.empty()) {
            ZynReplyBad bad = {};
            set(bad.infoMessage, "refused");
            return encoded(ZynTransReplyEncode, &bad, replyBad);
        }
        ZynReplyOK ok = {};
        set(ok.infoMessage, "done");
        set(ok.extraInfo, orderNo.c_str());
        return encoded(ZynTransReplyEncode, &ok, replyOK);
    }

    Octets query(const Octets& octets) {
        ZynQueryReq request;
        decoded(octets, &request, ZynQueryRequestDecode, ZynQueryRequestPrint);
        if (request.upQueryMsg->choiceId != orderbookByPrice) throw std::runtime_error("an unknown query");
        const ZynOrderbookByPriceReq& asked = *request.upQueryMsg->orderbookByPriceReq;
        const std::string userId = textOf(request.userId);

        // The request stays in the arena until the reply is encoded, so that the reply may point into it.
        ZynOrderbookByPriceRep book = {};
        book.seqNum = asked.seqNum;
        book.secBoardId = asked.secBoardId;
        book.bidList = pricePoints(buy, userId);
        book.offerList = pricePoints(sell, userId);
        return encoded(ZynQueryReplyEncode, &book, orderbookByPrice);
    }

private:
    struct Order {
        std::string userId;
        AsnInt side;
        double price;
        AsnInt quantity;
    };

    std::string add(const Order& entered) {
        std::string orderNo = std::to_string(++lastOrderNo_);
        orders_[orderNo] = entered;
        return orderNo;
    }

    // Each of these three returns the number of the order, or an empty text if it refuses.
    std::string enter(const AsnOcts& userId, const ZynOrderEntry& entry) {
        if (!entry.price) return "";
        return add({textOf(userId), entry.buySell, valueOf(*entry.price), entry.quantity});
    }

    std::string amend(const ZynOrderAmend& change) {
        const auto found = orders_.find(textOf(change.orderId->orderNo));
        if (found == orders_.end()) return "";
        found->second.quantity = change.quantity;
        if (change.price) found->second.price = valueOf(*change.price);
        return found->first;
    }

    std::string withdraw(const ZynOrderWithdraw& selection) {
        if (!selection.orderId) return "";
        const std::string orderNo = textOf(selection.orderId->orderNo);
        return orders_.erase(orderNo) == 1 ? orderNo : "";
    }

    // pricePoints makes one side of the book as a list in the arena, its elements in the order of their prices.
    AsnList* pricePoints(AsnInt side, const std::string& userId) const {
        struct Depth {
            AsnInt user, all;
        };
        std::map<double, Depth> depths;
        for (const auto& [orderNo, resting] : orders_) {
            if (resting.side != side) continue;
            depths[resting.price].all += resting.quantity;
            if (resting.userId == userId) depths[resting.price].user += resting.quantity;
        }

        AsnList* list = ZynListNew();
        if (!list) throw std::bad_alloc();
        for (const auto& [price, depth] : depths) {
            auto* point = static_cast<ZynPricePoint*>(ZynListAppend(list, sizeof(ZynPricePoint)));
            if (!point) throw std::bad_alloc();
            const double best = side == buy ? depths.rbegin()->first : depths.begin()->first;
            point->price = makePrice(price);
            point->userDepth = depth.user;
            point->userHasBest = depth.user > 0 && price == best;
            point->depth = make<AsnInt>();
            *point->depth = depth.all;
        }
        return list;
    }

    std::map<std::string, Order> orders_;
    int lastOrderNo_ = 0;
};

// The trader's side: each function below sends one request and reads the reply.

std::string transact(Exchange& exchange, const char* what, void* record, uint32_t choiceId) {
    std::printf("\n== %s: the request\n", what);
    const Octets reply = exchange.transact(encoded(ZynTransRequestEncode, trader, record, choiceId));
    std::printf("== %s: the reply\n", what);
    ZynTransRep message;
    decoded(reply, &message, ZynTransReplyDecode, ZynTransReplyPrint);
    if (message.choiceId != replyOK) throw std::runtime_error(std::string(what) + ": refused");
    return textOf(message.replyOK->extraInfo);
}

std::string enterOrder(Exchange& exchange) {
    ZynSecOptBoardId id = {};
    set(id.secCode, security);
    set(id.boardId, board);
    ZynOrderEntry entry = {};
    entry.secBoardId = &id;
    entry.type = limitOrder;
    entry.buySell = buy;
    entry.quantity = 500;
    entry.price = makePrice(101.25);
    entry.duration = goodForDay;
    set(entry.brokerRef, "example");
    ZynOrder entered = {};
    entered.order = &entry;
    return transact(exchange, "enter an order", &entered, order);
}

void amendOrder(Exchange& exchange, const std::string& orderNo) {
    ZynOrderId id = {};
    set(id.orderNo, orderNo.c_str());
    ZynOrderAmend amended = {};
    amended.orderId = &id;
    amended.price = makePrice(101.50);
    amended.quantity = 400;
    amended.duration = goodForDay;
    transact(exchange, "amend the order", &amended, orderAmend);
}

void withdrawOrder(Exchange& exchange, const std::string& orderNo) {
    ZynOrderId id = {};
    set(id.orderNo, orderNo.c_str());
    ZynOrderWithdraw withdrawn = {};
    withdrawn.operation = withdrawOne;
    withdrawn.orderId = &id;
    transact(exchange, "withdraw the order", &withdrawn, orderWithdraw);
}

void printSide(const char* name, const AsnList& points) {
    for (const AsnListNode* node = points.first; node; node = node->next) {
        const auto& point = *static_cast<const ZynPricePoint*>(node->data);
        std::printf("  %s %.2f: %d, of which %d ours\n", name, valueOf(*point.price), point.depth ? *point.depth : 0,
                    point.userDepth);
    }
}

void readBook(Exchange& exchange) {
    std::printf("\n== read the book: the request\n");
    ZynSecBoardId id = {};
    set(id.secCode, security);
    set(id.boardId, board);
    ZynOrderbookByPriceReq asked = {};
    asked.seqNum = 1;
    asked.secBoardId = &id;
    const Octets reply = exchange.query(encoded(ZynQueryRequestEncode, trader, &asked, orderbookByPrice));
    std::printf("== read the book: the reply\n");
    ZynQueryRep message;
    decoded(reply, &message, ZynQueryReplyDecode, ZynQueryReplyPrint);
    if (message.choiceId != orderbookByPrice) throw std::runtime_error("another reply than was asked for");
    printSide("bid", *message.orderbookByPriceRep->bidList);
    printSide("offer", *message.orderbookByPriceRep->offerList);
}

} // namespace

int main() {
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // so that both streams keep their order in one file
    try {
        Exchange exchange;
        const std::string orderNo = enterOrder(exchange);
        amendOrder(exchange, orderNo);
        readBook(exchange);
        withdrawOrder(exchange, orderNo);
        readBook(exchange);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "order: %s\n", failure.what());
        return 1;
    }
    ZynShutdown();
}
