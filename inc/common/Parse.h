#pragma once

#include "../platform/Api.h"

/// Base of every binary parser: four readers over a cursor that the caller owns. Reads are
/// big-endian, most significant bit first. A read that would leave the data clears the item's valid
/// flag, yields 0 or null and does not move the cursor; every later read on that item does nothing,
/// so a parser reads straight through and tests the flag once.
class VYR_API IParse {
  public:
    /// Cursor over bytes that it does not own. Plain record, filled by the caller; used by one
    /// thread at a time.
    struct SItem {
        const unsigned char* buffer;  ///< start of the data, not null
        unsigned int size;            ///< length in bytes
        unsigned int bitsize;         ///< length in bits: size x 8
        unsigned int bitpos;          ///< cursor, in bits from the start of buffer
        bool valid;                   ///< true while every read stayed inside the data
    };

    virtual ~IParse();

    /// Parses the item; what the result says is the parser's own matter.
    virtual bool Parse(SItem* item) = 0;

  protected:
    /// Reads `bits` bits (1 to 32) and advances. A wider request advances by all of them and yields
    /// the low 32; 0 bits yield 0.
    unsigned int t_Value(SItem* item, unsigned int bits);

    /// Reads up to 64 bits and advances. Required: a byte-aligned read of 40, 48, 56 or 64 bits
    /// yields only the low 32 bits of the field; every other read yields the whole field.
    unsigned long long t_Value64(SItem* item, unsigned int bits);

    /// Pointer to the next `count` bytes inside the item's buffer (nothing is copied; it lives as
    /// long as the buffer), and advances. The cursor must be byte-aligned.
    const unsigned char* t_Byte(SItem* item, unsigned int count);

    /// Copy of the next `count` bytes followed by a zero byte, in a new array that the caller frees
    /// with delete[]; null when the bytes are not there or the cursor is unaligned. Throws std::bad_alloc when
    /// memory is out, as what the library has in place of an exception is up to the parser's Parse.
    unsigned char* t_AllocAndCopy(SItem* item, unsigned int count);
};
