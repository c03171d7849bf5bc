// Byte lists and buffers printed to standard output, for whoever debugs a card.
//
// Each byte is one entry: "A:65|" for the byte 0x41, ".:5|" for a byte below 0x20.
#pragma once

#include "runtime/ByteList.h"

// "List size: ", the number of bytes, a new line, "Content: " and the entries; the
// first kMaxText bytes of a longer list.
void PrintQList(const QList& l);

// "Buffer content: " and the entries of the first `len` bytes.
void PrintBuffer(const char* buf, int len);

// The text `id`, a blank and then as PrintBuffer.
void PrintBufferID(const char* buf, int len, const char* id);
