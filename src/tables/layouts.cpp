#include "morvath.h"

#include <cstddef>
#include <cstdint>

// The records are a binary interface on 32-bit targets, where every field is
// one word; other targets have the same fields in the same order.
#define WORD(record, field, word) \
    static_assert(sizeof(void*) != 4 || offsetof(record, field) == 4 * (word))
#define WORDS(record, count) \
    static_assert(sizeof(void*) != 4 || sizeof(record) == 4 * (count))

WORD(PsuInfoEntry, id, 0);
WORD(PsuInfoEntry, name, 1);
WORD(PsuInfoEntry, manufacturer, 2);
WORD(PsuInfoEntry, partNumber, 3);
WORD(PsuInfoEntry, serialNumber, 4);
WORD(PsuInfoEntry, rating, 5);
WORD(PsuInfoEntry, firmwareVersion, 6);
WORD(PsuInfoEntry, reserved1, 7);
WORD(PsuInfoEntry, reserved2, 8);
WORDS(PsuInfoEntry, 9);
