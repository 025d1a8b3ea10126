// The list that holds the elements of a SET OF.
#include "zyn/asn.h"

namespace {

void* elementOf(AsnListNode* node) { return node ? &node->data : nullptr; }

void* moveTo(AsnList* list, AsnListNode* node) {
    list->curr = node;
    return elementOf(node);
}

// Links a new node between two neighbours, either of which may be missing, and makes it curr.
void* addBetween(AsnList* list, AsnListNode* prev, AsnListNode* next) {
    auto* node = static_cast<AsnListNode*>(
        NibbleAlloc(static_cast<uint32_t>(sizeof(AsnListNode) + static_cast<size_t>(list->dataSize))));
    if (!node) return nullptr;
    node->prev = prev;
    node->next = next;
    (prev ? prev->next : list->first) = node;
    (next ? next->prev : list->last) = node;
    ++list->count;
    return moveTo(list, node);
}

} // namespace

AsnList* AsnListNew(int dataSize) {
    auto* list = static_cast<AsnList*>(NibbleAlloc(sizeof(AsnList)));
    if (list) AsnListInit(list, dataSize);
    return list;
}

void AsnListInit(AsnList* list, int dataSize) { *list = {nullptr, nullptr, nullptr, 0, dataSize}; }

void* AsnListAppend(AsnList* list) { return addBetween(list, list->last, nullptr); }

void* AsnListPrepend(AsnList* list) { return addBetween(list, nullptr, list->first); }

void* AsnListAdd(AsnList* list) { return list->curr ? addBetween(list, list->curr, list->curr->next) : nullptr; }

void* AsnListInsert(AsnList* list) { return list->curr ? addBetween(list, list->curr->prev, list->curr) : nullptr; }

void AsnListRemove(AsnList* list) {
    AsnListNode* node = list->curr;
    if (!node) return;
    (node->next ? node->next->prev : list->last) = node->prev;
    (node->prev ? node->prev->next : list->first) = node->next;
    list->curr = node->next;
    --list->count;
}

void* AsnListFirst(AsnList* list) { return moveTo(list, list->first); }

void* AsnListLast(AsnList* list) { return moveTo(list, list->last); }

void* AsnListNext(AsnList* list) { return moveTo(list, list->curr ? list->curr->next : list->first); }

void* AsnListPrev(AsnList* list) { return moveTo(list, list->curr ? list->curr->prev : list->last); }

void* AsnListCurr(AsnList* list) { return elementOf(list->curr); }

int AsnListCount(AsnList* list) { return list->count; }

AsnList* AsnListConcat(AsnList* l1, AsnList* l2) {
    if (l2->count == 0) return l1;
    if (l1->count == 0) {
        l1->first = l1->curr = l2->first;
    } else {
        l1->last->next = l2->first;
        l2->first->prev = l1->last;
    }
    l1->last = l2->last;
    l1->count += l2->count;
    return l1;
}

long int GetAsnListElmtIndex(void* elmt, AsnList* list) {
    if (!list) return -1;
    long int index = 0;
    for (AsnListNode* node = list->first; node && node->data; node = node->next, ++index) {
        if (node->data == elmt) return index;
    }
    return -1;
}

void AsnListFree(AsnList*) {}
