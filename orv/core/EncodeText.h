// EncodeText.h: the items of encoded text, one primitive each to write, to read and to skip.
// (Library-internal.)
//
// An encoded text is a flat sequence of items, one to a line:
//     <type letter, name length "," name "[" count "]" "=" values ">" CR LF
// Type letters: b bools (t or f), d signed and u unsigned 32-bit integers, f doubles ("%.18e", 0 as "0"), s a
// string in double quotes with every byte below 32, 127, double quote, "<" and ">" as \xHH, v raw bytes as
// HH; "{" opens a block and "}" closes it (both without "=" and values).  Elements are separated by ",".  "<"
// and ">" never occur inside a value, so the next "<" after an item's start always begins the next item.
//
// docs/formats/encoded-text.md tells the format in full.  Failures: code 1026, unit "EncodeText".
#pragma once

#include <cstddef>
#include <string>

namespace orv {

inline constexpr char kBlockBegin = '{';
inline constexpr char kBlockEnd = '}';

/// Appends one item.
///
/// @param name   null writes the name length 0 and no name.
/// @param type   one of the eight letters, else "Bad data type while encoding data."; the header written so
///               far stays in `out`.
/// @param data   for b: const bool*, d: const int*, u: const unsigned*, f: const double*, s: a terminated
///               text (null means empty), v: bytes; unused for blocks.
/// @param count  elements; for s the text's own length is written instead.  For b, d, f, u and v a count of
///               0 or null data raises "Bad count or bad data pointer while encoding data.".
///
/// A backslash in a string is written as it is, but the reader takes it for the beginning of an escape: a
/// text that holds one does not come back (deliberate).
void ORVEncodeValue(std::string& out, const char* name, char type, const void* data, size_t count);

/// Reads the header of the item that starts at the cursor, which does not move.  False, without a report,
/// when the cursor is at or past the end, no "<" stands there or the header is malformed.
bool ORVDecodeInfo(const std::string& data, size_t* offset, std::string& name, char& type, size_t& count);

/// Moves the cursor by at least one character to the next "<".  False, with the cursor at the end, when there
/// is none. It looks at no header, so it enters blocks.
bool ORVSkipItem(const std::string& data, size_t* offset);

/// Values of the item that starts at the cursor, which stays.  Raised: "Offset out of range while parsing
/// encoded data.", "Corrupt data while parsing encoded data.", and, for another type letter, "Mismatched data
/// type while parsing encoded data." by the bool and int forms but the "Corrupt data ..." text by the others
/// (deliberate).
void ORVDecodeValue(const std::string& data, size_t* offset, bool* value);
void ORVDecodeValue(const std::string& data, size_t* offset, int* value);
/// Elements `start` to `start + count - 1` of the item; more than the item's count is corrupt.
void ORVDecodeValue(const std::string& data, size_t* offset, double* values, size_t start, size_t count);
/// The decoded characters are appended to `value`.
void ORVDecodeValue(const std::string& data, size_t* offset, std::string& value);

}  // namespace orv
