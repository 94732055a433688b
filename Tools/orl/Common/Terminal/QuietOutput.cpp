#include "QuietOutput.h"

#include <iostream>
#include <streambuf>

namespace orl {

namespace {

class DiscardingBuffer : public std::streambuf
{
protected:
    int_type overflow(int_type inCharacter) override { return traits_type::not_eof(inCharacter); }
    std::streamsize xsputn(const char*, std::streamsize inCount) override { return inCount; }
};

bool sIsSilenced = false;

} // namespace

// The buffer is never destroyed, because std::cout is flushed after static objects are destroyed.
void SilenceOutput()
{
    static DiscardingBuffer& buffer = *new DiscardingBuffer;
    std::cout.rdbuf(&buffer);
    sIsSilenced = true;
}

bool IsOutputSilenced()
{
    return sIsSilenced;
}

} // namespace orl
