// Floor: Strings
// The standard streams of the process, redirection of streams, and output of narrow text to 16-bit streams.
#pragma once

#include <ORLConfig.h>

#include <tvxcore/UTF16Facets.h>

#include <istream>
#include <ostream>
#include <streambuf>
#include <string>

namespace ORL {

/// References to std::cin, std::cout, std::clog and std::cerr, bound when the library is loaded.
ORL_API extern std::basic_istream<char>& In;
ORL_API extern std::basic_ostream<char>& Out;
ORL_API extern std::basic_ostream<char>& Log;
ORL_API extern std::basic_ostream<char>& Err;

/// Replaces the stream's buffer and resets the stream to the state of a new one: flags, width, precision, fill, locale,
/// exceptions, error state, tied stream, callbacks, iword and pword. Returns the previous buffer; the caller owns both
/// buffers. Not thread-safe: no other thread may use the stream during the call.
ORL_API std::basic_streambuf<char>* SetStreamBuffer(std::basic_ostream<char>& ioStream,
                                                    std::basic_streambuf<char>* inBuffer);
ORL_API std::basic_streambuf<unsigned short>* SetStreamBuffer(std::basic_ostream<unsigned short>& ioStream,
                                                              std::basic_streambuf<unsigned short>* inBuffer);

/// Converts a UTF-8 string to UTF-16 and writes it with the stream's width and fill. A zero byte ends the string.
ORL_API std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream,
                                                       const char* inText);
ORL_API std::basic_ostream<unsigned short>& operator<<(std::basic_ostream<unsigned short>& ioStream,
                                                       const std::string& inText);

} // namespace ORL
