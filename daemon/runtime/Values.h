// The value syntaxes of the configuration file and of the two command languages.
//
// Pure functions, free for any thread. None reports an error: what cannot be
// read is 0 or false.
#pragma once

#include <string>

// '0'..'9' and 'A'..'F'; every other character, lower case included, is 0.
unsigned char HexCharToByte(char c);

// Two digits, high one first.
unsigned char HexNum2Byte(char hi, char lo);

// One digit or two; a third and a fourth are ignored, no digit is 0. More than four
// characters end the process.
unsigned char Convert_HexStr2Byte(const std::string& s);

// Decimal with optional white space and sign in front, up to the first other
// character; the ends of the range of long where the number lies outside.
long ATOL(const std::string& s);

// ATOL for a field of type int; the ends of the range of int where it lies outside.
int ATOI(const std::string& s);

// True for "True", "true" and "TRUE" only.
bool ATOB(const std::string& s);

// "TRUE" or "FALSE"; ATOB reads it back.
std::string BTOA(bool b);

// Decimal, "-" for negatives, no padding.
std::string ITOA(int n);
