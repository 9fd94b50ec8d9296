#pragma once
// Conversions between the encodings a path passes through on its way to the file system:
// the modified UTF-8 that a Java front end hands over, the UTF-8 the engine keeps, and the
// UTF-16 that the Windows file functions take.

#include <string>
#include <string_view>

namespace vexa {

// Turns the modified UTF-8 of JNI's GetStringUTFChars into UTF-8: a character beyond U+FFFF
// arrives as two three-byte surrogates and is joined into its four-byte form; an unpaired
// surrogate keeps its three bytes, so that it still reaches a Windows file name. False when
// the text holds a NUL (C0 80), which no path can.
bool utf8_from_java(std::string_view modified, std::string& out);

// Decodes UTF-8 into UTF-16 code units. Surrogates written one by one (as a Java text or an
// unpaired one in a Windows name comes) are taken as they stand. False when the bytes are not
// UTF-8: a path in a legacy code page, which the caller then opens as it is.
bool utf16_from_utf8(std::string_view text, std::u16string& out);

// Encodes UTF-16 code units as UTF-8; an unpaired surrogate becomes its own three bytes.
std::string utf8_from_utf16(std::u16string_view text);

}  // namespace vexa
