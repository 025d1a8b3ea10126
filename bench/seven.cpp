// The seven messages by which the codec is judged: what an exchange's day consists of, from a logon to an order
// book.
#include <cstring>

#include "bench/message.h"
#include "zyn/zyn.h"

namespace zyn::bench {
namespace {

AsnOcts text(const char* characters) {
    AsnOcts result;
    ZynTextStrSet(&result, characters, 0);
    return result;
}

// Makes the values that records point to.
struct Maker {
    TreeMemory& memory;

    AsnInt* number(AsnInt value) { return memory.of(value); }
    AsnBool* flag(bool value) { return memory.of(static_cast<AsnBool>(value)); }
    AsnFixedReal* price(double value) { return memory.of(AsnFixedReal{.value = value, .decimals = nullptr}); }
    AsnFixedReal* price(double value, AsnInt decimals) {
        return memory.of(AsnFixedReal{.value = value, .decimals = number(decimals)});
    }
    AsnLongInt* quantity(double value) { return memory.of(AsnLongInt{.value = value}); }
    AsnDateTime* time(AsnInt date, AsnInt time) { return memory.of(AsnDateTime{.date = date, .time = time}); }
    ZynOrderId* orderId(const char* no, AsnInt speedIndex) {
        return memory.of(ZynOrderId{.orderNo = text(no), .speedIndex = number(speedIndex)});
    }
    ZynSecBoardId* secBoardId() { return memory.of(ZynSecBoardId{.secCode = text("ALDR"), .boardId = text("MAIN")}); }
    AsnSequenceContext* context(AsnInt seqNum, AsnInt recNum) {
        return memory.of(AsnSequenceContext{.seqNum = number(seqNum), .recNum = number(recNum)});
    }
};

Message logon(Maker make) {
    auto* logon =
        make.memory.of(ZynUserLogon{.loginPassword = text("correct horse"), .reconnectionFlag = make.flag(false)});
    return makeMessage("logon", ZYN_TRANS_REQUEST, 455, logon);
}

Message order(Maker make) {
    auto* entry = make.memory.of(ZynOrderEntry{});
    entry->secBoardId = make.memory.of(ZynSecOptBoardId{.secCode = text("ALDR"), .boardId = text("MAIN")});
    entry->type = 2;
    entry->buySell = 1;
    entry->quantity = 12'000;
    entry->visibleQuantity = make.number(1'500);
    entry->price = make.price(101.35, 2);
    entry->triggerPrice = make.price(100.5, 2);
    entry->minFillQuantity = make.number(100);
    entry->duration = 6;
    entry->expiryTime = make.time(20'260'331, 173'000);
    entry->trdAccId = text("HOUSE1");
    entry->brokerRef = text("S-88");
    entry->purgeOnLogoff = make.flag(true);
    entry->allowSoftQtyLimit = make.flag(false);
    entry->allowSoftPriceLimit = make.flag(true);
    entry->positionType = make.number(1);
    entry->isPrivate = make.flag(false);
    return makeMessage("order", ZYN_TRANS_REQUEST, 426, make.memory.of(ZynOrder{.order = entry}));
}

Message amendment(Maker make) {
    auto* amend = make.memory.of(ZynOrderAmend{});
    amend->orderId = make.orderId("2026031700421", 7);
    amend->price = make.price(101.4, 2);
    amend->quantity = 11'000;
    amend->visibleQuantity = make.number(1'000);
    amend->duration = 6;
    amend->brokerRef = text("S-88");
    return makeMessage("amendment", ZYN_TRANS_REQUEST, 427, amend);
}

Message goodReply(Maker make) {
    auto* reply = make.memory.of(ZynReplyOK{});
    reply->infoMessage = text("Order entered");
    reply->extraInfo = text("2026031700421");
    reply->replyHint = make.number(1);
    return makeMessage("reply", ZYN_TRANS_REPLY, 18, reply);
}

// A session's figures of a traded share: those of a bond, an option and an auction are absent.
ZynSecBoardRepDynamic* boardFigures(Maker make) {
    auto* d = make.memory.of(ZynSecBoardRepDynamic{});
    d->secBoardState = text("OPEN-CONT");
    d->sessionName = text("DAY");
    d->hasNews = make.flag(true);
    d->changeStateTime = make.time(20'260'317, 90'000);
    d->upperPriceLimit = make.price(111.49, 2);
    d->lowerPriceLimit = make.price(91.22, 2);
    d->inheritedStatus = make.number(2);
    d->bidPrice = make.price(101.35, 2);
    d->bidDepth = make.number(42'000);
    d->bidDepthTotal = make.number(318'000);
    d->numBids = make.number(117);
    d->offerPrice = make.price(101.4, 2);
    d->offerDepth = make.number(27'500);
    d->offerDepthTotal = make.number(402'300);
    d->numOffers = make.number(131);
    d->refPrice = make.price(101.1, 2);
    d->openPrice = make.price(101.05, 2);
    d->highPrice = make.price(102.8, 2);
    d->lowPrice = make.price(100.55, 2);
    d->waPrice = make.price(101.6125, 4);
    d->closePrice = make.price(101.1, 2);
    d->lastPrice = make.price(101.35, 2);
    d->lastTime = make.time(20'260'317, 142'501);
    d->lastQuantity = make.number(700);
    d->lastValue = make.price(70'945.0, 2);
    d->changePrice = make.price(0.25, 2);
    d->changePricePercent = make.price(0.2472, 4);
    d->changeLTP = make.price(-0.05, 2);
    d->marketCap = make.price(8.1e9, 2);
    d->numOrders = make.number(2'411);
    d->numOpenOrders = make.number(248);
    d->numTrades = make.number(1'306);
    d->volumeToday = make.quantity(1'845'200.0);
    d->valueToday = make.price(187'498'310.75, 2);
    d->volatility = make.price(0.1875, 4);
    d->isActive = make.flag(true);
    d->offMktLastPrice = make.price(101.45, 2);
    d->prevDate = make.number(20'260'316);
    d->prevPrice = make.price(101.1, 2);
    d->tradeDate = make.number(20'260'317);
    return d;
}

Message boardReport(Maker make) {
    auto* report = make.memory.of(ZynSecBoardRep{});
    report->seqContext = make.context(48'211, 1);
    report->secBoardId = make.secBoardId();
    report->dynamics = boardFigures(make);
    return makeMessage("board", ZYN_QUERY_REPLY, 294, report);
}

AsnList* pricePoints(Maker make, double first, AsnInt orders) {
    auto* list = make.memory.of(AsnList{});
    for (int i = 0; i < 10; ++i) {
        auto* point = static_cast<ZynPricePoint*>(appendElement(list, sizeof(ZynPricePoint), make.memory));
        point->price = make.price(first + i * 0.05, 2);
        point->userDepth = 500 + 100 * i;
        point->userHasBest = i == 0;
        point->depth = make.number(40'000 + 1'250 * i);
        point->numOrders = make.number(orders + i);
    }
    return list;
}

Message orderBook(Maker make) {
    auto* book = make.memory.of(ZynOrderbookByPriceRep{});
    book->seqNum = 48'305;
    book->secBoardId = make.memory.of(ZynSecBoardId{.secCode = text("ALDR-2031"), .boardId = text("MAIN-1")});
    book->bidList = pricePoints(make, 100.91, 3);
    book->offerList = pricePoints(make, 101.41, 130);
    book->numOtherOpenOrders = 61;
    return makeMessage("book", ZYN_QUERY_REPLY, 288, book);
}

Message tradeReport(Maker make) {
    auto* statics = make.memory.of(ZynTradeRepStatic{});
    statics->buyOrderId = make.orderId("2026031700421", 7);
    statics->sellOrderId = make.orderId("2026031700398", 2);
    statics->time = make.memory.of(AsnDateTimeMS{.date = 20'260'317, .time = 142'501, .millisec = 318});
    statics->buyBrokerRef = text("S-088");
    statics->buyTraderId = text("TRD0042");
    statics->sellTraderId = text("TRD0107");
    statics->buyFirmId = text("NORTH");
    statics->sellFirmId = text("HARBOR");
    statics->buyTrdAccId = text("HOUSE-1");
    statics->sellTrdAccId = text("CLIENT-9");
    statics->secBoardId = make.secBoardId();
    statics->instrId = text("SHARES");
    statics->price = make.price(101.35, 2);
    statics->quantity = 700;
    statics->value = make.price(70'945.0, 2);
    statics->tradeSourceId = text("AUTO");
    statics->details = make.memory.of(ZynTradeRepStaticDetails{});
    statics->details->buyFee = make.price(7.09, 2);
    auto* report = make.memory.of(ZynTradeRep{});
    report->seqContext = make.context(48'317, 1);
    report->tradeId = make.memory.of(ZynTradeId{.tradeNo = text("900317001306"), .speedIndex = make.number(4)});
    report->statics = statics;
    report->dynamics = make.memory.of(ZynTradeRepDynamic{.status = 1, .amendTime = nullptr});
    return makeMessage("trade", ZYN_QUERY_REPLY, 303, report);
}

} // namespace

std::vector<Message> sevenMessages(TreeMemory& memory) {
    const Maker make{memory};
    return {logon(make),       order(make),     amendment(make),  goodReply(make),
            boardReport(make), orderBook(make), tradeReport(make)};
}

} // namespace zyn::bench
