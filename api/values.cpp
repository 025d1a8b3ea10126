// Prices, quantities, lists, and the arena memory that callers build records from.
#include "zyn/values.h"

#include <cstring>
#include <limits>

#include "api/setup.h"

namespace {

constexpr double nullMarker = -99999999.0; // stands for the null value on this interface, never on the wire
constexpr AsnInt nullDecimals = -1;

void setWithDecimals(AsnFixedReal* v, double value, AsnInt decimals) {
    v->value = value;
    v->decimals = static_cast<AsnInt*>(ZynEncodeMemAlloc(sizeof(AsnInt)));
    if (v->decimals) *v->decimals = decimals;
    else v->value = std::numeric_limits<double>::quiet_NaN(); // no wire form: better no message than a wrong price
}

} // namespace

void ZynFixedRealSet(AsnFixedReal* v, double value) {
    if (value == nullMarker) return setWithDecimals(v, 0.0, nullDecimals);
    v->value = value;
    v->decimals = nullptr;
}

void ZynFixedRealSetWithDecimals(AsnFixedReal* v, double value, int32_t decimals) {
    if (value == nullMarker) setWithDecimals(v, 0.0, nullDecimals);
    else setWithDecimals(v, value, decimals);
}

void ZynFixedRealGet(const AsnFixedReal* v, double* out) { *out = v->value; }

void ZynLongIntSet(AsnLongInt* v, double value) { v->value = value; }

void ZynLongIntGet(const AsnLongInt* v, double* out) { *out = v->value; }

void* ZynEncodeMemAlloc(uint32_t size) { return zyn::setUp() ? NibbleAlloc(size) : nullptr; }

void ZynEncodeMemReset(void) { ResetNibbleMem(); }

AsnList* ZynListNew(void) { return zyn::setUp() ? AsnListNew(sizeof(void*)) : nullptr; }

void* ZynListAppend(AsnList* list, uint32_t size) {
    if (!zyn::setUp()) return nullptr;
    const AsnList before = *list;
    void* data = AsnListAppend(list);
    if (!data) return nullptr;
    void* element = NibbleAlloc(size);
    if (!element) {
        *list = before;
        if (list->last) list->last->next = nullptr;
        return nullptr;
    }
    std::memcpy(data, &element, sizeof element);
    return element;
}

int32_t ZynListCount(const AsnList* list) { return list->count; }
