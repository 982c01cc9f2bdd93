// Numbers as the C library's formatted scan and the standard library's streams read them in the C locale. C libraries
// differ in odd forms (half an exponent, hexadecimal) and take the decimal point from the locale of the process: these
// functions do not, so that a file gives the same table on every system.
#pragma once

namespace Lumvane {

/// Scans one number as sscanf does with "%f", as glibc has it: white space, a sign, then decimal digits with a point and
/// an exponent, hexadecimal ones behind "0x", "inf", "infinity" or "nan" in any letter case. An exponent without digits
/// is passed over. The value is the nearest float: beyond the range infinity or zero. Returns the end of what was taken,
/// null when that is no number; `value` is then as before.
const char* scanNumber(const char* text, const char* end, float& value);

/// Extracts one number as an input stream does: decimal only. Null, unlike in a scan, also for half an exponent and for
/// what is beyond the largest float.
const char* extractNumber(const char* text, const char* end, float& value);

}  // namespace Lumvane
