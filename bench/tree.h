// Record trees that live outside the library's arena, which every successful Encode resets.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <random>
#include <vector>

#include "records/tables.h"

namespace zyn::bench {

// Zero-filled memory, 8-byte aligned, that lives as long as the object. Neighbouring pieces lie next to each other.
class TreeMemory {
public:
    void* take(std::size_t size);
    template <typename T> T* of(const T& value) { return new (take(sizeof(T))) T(value); }

private:
    std::vector<std::unique_ptr<uint64_t[]>> blocks;
    std::size_t usedWords = 0;
    std::size_t blockWords = 0;
};

// copyTree makes the value at to, zero-filled and of the same type, a deep copy of the one at from.
void copyTree(TypeId type, const void* from, void* to, TreeMemory& memory);

// sameTree compares two values member by member, and lists in list order or, for peers that sort them, in any order.
enum class ListOrder { same, any };
bool sameTree(TypeId type, const void* a, const void* b, ListOrder order = ListOrder::same);

// randomTree fills the zero-filled value at to: half of the OPTIONAL fields, short texts, lists of up to three
// elements.
void randomTree(TypeId type, void* to, std::mt19937& random, TreeMemory& memory);

// appendElement puts a new element at the end of the list and gives its zero-filled memory.
void* appendElement(AsnList* list, std::size_t size, TreeMemory& memory);

// What field's member holds, made new where the member is a pointer.
void* makeValue(void* record, const Field& field, TreeMemory& memory);

} // namespace zyn::bench
